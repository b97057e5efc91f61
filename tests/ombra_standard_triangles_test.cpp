// The standard polytriangle routines: what they send back through the slots.
#include <gtest/gtest.h>

#include <map>

#include "tests/ombra_recording_renderer.h"

namespace {

using ombra_testing::Call;
using ombra_testing::Recording_Renderer;
using ombra_testing::rectangle_pixels;

OT_Rendition window(int width, int height) { return OT_Rendition::make_default(width, height, OB_Default_Palette()); }

std::vector<std::tuple<int, int, int>> spans_of(const std::vector<Call>& calls) {
  std::vector<std::tuple<int, int, int>> spans;
  for (const Call& call : calls) {
    EXPECT_EQ(call.points.size(), 2u);
    EXPECT_EQ(call.points[0].y, call.points[1].y);
    spans.emplace_back(call.points[0].y, call.points[0].x, call.points[1].x);
  }
  return spans;
}

TEST(OmbraStandardDCITriangles, SpansFollowTheWalkOfTheRenderer) {
  Recording_Renderer r;
  r.record_dci_lines();
  const OT_Rendition rendition = window(64, 64);
  const OT_DCI_Point points[3] = {{10, 10, 0}, {14, 10, 0}, {10, 14, 0}};
  OB_Standard_Draw_DCI_Polytriangle(&r, rendition, 3, points);
  const std::vector<std::tuple<int, int, int>> expected = {{10, 10, 13}, {11, 10, 12}, {12, 10, 11}, {13, 10, 10}};
  EXPECT_EQ(spans_of(r.calls), expected);
  for (const Call& call : r.calls) EXPECT_EQ(call.slot, "dci_polyline");
}

TEST(OmbraStandardDCITriangles, NeverCallsAPolytriangleSlot) {
  Recording_Renderer r;
  r.record_dci_triangles();
  r.record_2di_triangles();
  r.record_dots();
  const OT_Rendition rendition = window(64, 64);
  const OT_DCI_Point points[4] = {{0, 0, 0}, {8, 0, 0}, {0, 8, 0}, {8, 8, 0}};
  const OT_RGB32 colors[4] = {};
  OB_Standard_Draw_DCI_Polytriangle(&r, rendition, 4, points);
  OB_Standard_Draw_DCI_Colorized_Polytriangle(&r, rendition, 4, points, colors, false);
  OB_Standard_Draw_DCI_Gouraud_Polytriangle(&r, rendition, 4, points, colors);
  OB_Standard_Draw_DCI_Textured_Polytriangle(&r, rendition, 4, points, colors, nullptr, 0, nullptr, nullptr);
  EXPECT_TRUE(r.calls.empty());
  EXPECT_EQ(r.dots.size(), 4u * 64u);  // through the standard polylines
}

TEST(OmbraStandardDCITriangles, StripSharesEdgesWithoutGapOrOverlap) {
  Recording_Renderer r;
  r.record_dots();
  const OT_Rendition rendition = window(64, 64);
  const OT_DCI_Point points[5] = {{0, 0, 0}, {9, 0, 0}, {2, 7, 0}, {11, 6, 0}, {4, 13, 0}};
  OB_Standard_Draw_DCI_Polytriangle(&r, rendition, 5, points);
  std::map<std::pair<int, int>, int> seen;
  for (const auto& dot : r.dots) ++seen[{dot.point.x, dot.point.y}];
  for (const auto& [where, times] : seen) EXPECT_EQ(times, 1) << where.first << "," << where.second;
  // A rectangle as two triangles is exactly its pixels.
  Recording_Renderer q;
  q.record_dots();
  const OT_DCI_Point rectangle[4] = {{3, 2, 0}, {8, 2, 0}, {3, 6, 0}, {8, 6, 0}};
  OB_Standard_Draw_DCI_Polytriangle(&q, rendition, 4, rectangle);
  EXPECT_EQ(q.dots.size(), 20u);
  EXPECT_EQ(q.dot_positions(), rectangle_pixels(3, 7, 2, 5));
}

TEST(OmbraStandardDCITriangles, DegenerateTrianglesDrawNothing) {
  Recording_Renderer r;
  r.record_dci_lines();
  const OT_Rendition rendition = window(64, 64);
  const OT_DCI_Point flat[3] = {{0, 5, 0}, {10, 5, 0}, {4, 5, 0}};
  const OT_DCI_Point line[3] = {{0, 0, 0}, {5, 5, 0}, {10, 10, 0}};
  OB_Standard_Draw_DCI_Polytriangle(&r, rendition, 3, flat);
  OB_Standard_Draw_DCI_Polytriangle(&r, rendition, 3, line);
  EXPECT_TRUE(r.calls.empty());
}

TEST(OmbraStandardDCITriangles, DepthFollowsTheTrianglesPlane) {
  Recording_Renderer r;
  r.record_dci_lines();
  const OT_Rendition rendition = window(64, 64);
  // z = 1000 + 10x + 100y
  const OT_DCI_Point points[3] = {{0, 0, 1000}, {20, 0, 1200}, {0, 20, 3000}};
  OB_Standard_Draw_DCI_Polytriangle(&r, rendition, 3, points);
  ASSERT_FALSE(r.calls.empty());
  for (const Call& call : r.calls)
    for (const OT_DCI_Point& p : call.points) EXPECT_EQ(p.z, 1000 + 10 * p.x + 100 * p.y);
}

TEST(OmbraStandardDCITriangles, ColorizedSpansTakeTheirTrianglesColour) {
  Recording_Renderer r;
  r.record_dci_lines();
  const OT_Rendition rendition = window(64, 64);
  const OT_DCI_Point points[4] = {{0, 0, 0}, {8, 0, 0}, {0, 8, 0}, {8, 8, 0}};
  const OT_RGB32 colors[2] = {OT_RGB32::rgba(1, 2, 3), OT_RGB32::rgba(4, 5, 6)};
  OB_Standard_Draw_DCI_Colorized_Polytriangle(&r, rendition, 4, points, colors, false);
  int first = 0, second = 0;
  for (const Call& call : r.calls) {
    EXPECT_EQ(call.slot, "dci_colorized_polyline");
    EXPECT_TRUE(call.single);
    first += call.color_pointer == colors;
    second += call.color_pointer == colors + 1;
  }
  EXPECT_EQ(first, 8);
  EXPECT_EQ(second, 7);  // its single corner at the least y writes nothing on that row
  r.calls.clear();
  OB_Standard_Draw_DCI_Colorized_Polytriangle(&r, rendition, 4, points, colors + 1, true);
  for (const Call& call : r.calls) EXPECT_EQ(call.color_pointer, colors + 1);
  r.calls.clear();
  OB_Standard_Draw_DCI_Colorized_Polytriangle(&r, rendition, 4, points, nullptr, false);
  for (const Call& call : r.calls) EXPECT_EQ(call.slot, "dci_polyline");
}

TEST(OmbraStandardDCITriangles, GouraudSpanEndsCarryTheColourPlane) {
  Recording_Renderer r;
  r.record_dci_lines();
  const OT_Rendition rendition = window(64, 64);
  // red = 10x, green = 5y, blue 7, alpha 255.
  const OT_DCI_Point points[3] = {{0, 0, 0}, {20, 0, 0}, {0, 20, 0}};
  const OT_RGB32 colors[3] = {OT_RGB32::rgba(0, 0, 7), OT_RGB32::rgba(200, 0, 7), OT_RGB32::rgba(0, 100, 7)};
  OB_Standard_Draw_DCI_Gouraud_Polytriangle(&r, rendition, 3, points, colors);
  ASSERT_EQ(r.calls.size(), 20u);
  for (const Call& call : r.calls) {
    ASSERT_EQ(call.slot, "dci_gouraud_polyline");
    ASSERT_EQ(call.colors.size(), 2u);
    for (int e = 0; e < 2; ++e)
      EXPECT_EQ(call.colors[e], OT_RGB32::rgba(10 * call.points[e].x, 5 * call.points[e].y, 7)) << e;
  }
}

TEST(OmbraStandardDCITriangles, TexturedDrawsInVertexColoursOrTheRenditionsColour) {
  Recording_Renderer r;
  r.record_dci_lines();
  const OT_Rendition rendition = window(64, 64);
  const OT_DCI_Point points[3] = {{0, 0, 0}, {6, 0, 0}, {0, 6, 0}};
  const OT_RGB32 colors[3] = {OT_RGB32::rgba(9, 9, 9), OT_RGB32::rgba(9, 9, 9), OT_RGB32::rgba(9, 9, 9)};
  const OT_Parameter params[3] = {};
  OB_Standard_Draw_DCI_Textured_Polytriangle(&r, rendition, 3, points, colors, params, 1, nullptr, nullptr);
  ASSERT_EQ(r.calls.size(), 6u);
  for (const Call& call : r.calls) {
    EXPECT_EQ(call.slot, "dci_gouraud_polyline");
    EXPECT_EQ(call.colors[0], OT_RGB32::rgba(9, 9, 9));
  }
  r.calls.clear();
  OB_Standard_Draw_DCI_Textured_Polytriangle(&r, rendition, 3, points, nullptr, params, 1, nullptr, nullptr);
  ASSERT_EQ(r.calls.size(), 6u);
  for (const Call& call : r.calls) EXPECT_EQ(call.slot, "dci_polyline");
}

TEST(OmbraStandard2DITriangles, StripInsideGoesWholeToTheDCISlot) {
  Recording_Renderer r;
  r.record_dci_triangles();
  const OT_Rendition rendition = window(20, 20);
  const OT_DCI_Point points[4] = {{0, 0, 1}, {19, 0, 2}, {0, 19, 3}, {19, 19, 4}};
  r.draw_2di_polytriangle(rendition, 4, points);
  ASSERT_EQ(r.calls.size(), 1u);
  EXPECT_EQ(r.calls[0].slot, "dci_polytriangle");
  ASSERT_EQ(r.calls[0].points.size(), 4u);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(r.calls[0].points[i].x, points[i].x);
    EXPECT_EQ(r.calls[0].points[i].z, points[i].z);
  }
}

TEST(OmbraStandard2DITriangles, TrianglesBeyondOneSideAreDropped) {
  Recording_Renderer r;
  r.record_dci_triangles();
  const OT_Rendition rendition = window(20, 20);
  const OT_DCI_Point points[4] = {{20, 0, 0}, {30, 0, 0}, {20, 10, 0}, {40, 50, 0}};
  r.draw_2di_polytriangle(rendition, 4, points);
  EXPECT_TRUE(r.calls.empty());
}

TEST(OmbraStandard2DITriangles, CrossingTriangleIsCutToTheClipsPixels) {
  Recording_Renderer r;
  r.record_dots();
  const OT_Rendition rendition = window(20, 20);
  // Half of a 40 x 40 square: its pixels inside the clip are the whole clip.
  const OT_DCI_Point big[3] = {{0, 0, 0}, {40, 0, 0}, {0, 40, 0}};
  r.draw_2di_polytriangle(rendition, 3, big);
  EXPECT_EQ(r.dots.size(), 400u);
  EXPECT_EQ(r.dot_positions(), rectangle_pixels(0, 19, 0, 19));
  // Out on the left and below: the pixels are those of x + y < 20.
  Recording_Renderer q;
  q.record_dots();
  const OT_DCI_Point corner[3] = {{-10, -10, 0}, {30, -10, 0}, {-10, 30, 0}};
  q.draw_2di_polytriangle(rendition, 3, corner);
  std::set<std::pair<int, int>> expected;
  for (int y = 0; y < 20; ++y)
    for (int x = 0; x + y < 20; ++x) expected.insert({x, y});
  EXPECT_EQ(q.dot_positions(), expected);
  EXPECT_EQ(q.dots.size(), expected.size());
}

TEST(OmbraStandard2DITriangles, CutPointsStayInTheRegionThatTheWalkFills) {
  Recording_Renderer r;
  r.record_dci_triangles();
  OT_Rendition rendition = window(100, 100);
  rendition.set_hard_clip_unrestricted(OT_Int_Rectangle{10, 29, 5, 24}, false);
  unsigned seed = 12345;
  auto next = [&seed] {
    seed = seed * 1103515245u + 12345u;
    return int((seed >> 8) % 81) - 20;
  };
  for (int i = 0; i < 200; ++i) {
    const OT_DCI_Point points[3] = {{next(), next(), 0}, {next(), next(), 0}, {next(), next(), 0}};
    r.draw_2di_polytriangle(rendition, 3, points);
  }
  ASSERT_FALSE(r.calls.empty());
  for (const Call& call : r.calls) {
    ASSERT_GE(call.points.size(), 3u);
    ASSERT_LE(call.points.size(), 7u);
    for (const OT_DCI_Point& p : call.points) {
      EXPECT_GE(p.x, 10);
      EXPECT_LE(p.x, 30);
      EXPECT_GE(p.y, 5);
      EXPECT_LE(p.y, 25);
    }
  }
  // And every pixel that comes out lies in the clip.
  Recording_Renderer q;
  q.record_dots();
  seed = 12345;
  for (int i = 0; i < 200; ++i) {
    const OT_DCI_Point points[3] = {{next(), next(), 0}, {next(), next(), 0}, {next(), next(), 0}};
    q.draw_2di_polytriangle(rendition, 3, points);
  }
  ASSERT_FALSE(q.dots.empty());
  for (const auto& dot : q.dots) {
    ASSERT_GE(dot.point.x, 10);
    ASSERT_LE(dot.point.x, 29);
    ASSERT_GE(dot.point.y, 5);
    ASSERT_LE(dot.point.y, 24);
  }
}

TEST(OmbraStandard2DITriangles, InsideRunsStayTogetherAndColoursFollowTheTriangles) {
  Recording_Renderer r;
  r.record_dci_triangles();
  const OT_Rendition rendition = window(20, 20);
  const OT_DCI_Point points[6] = {{1, 1, 0}, {1, 5, 0}, {5, 1, 0}, {5, 5, 0}, {30, 1, 0}, {30, 5, 0}};
  const OT_RGB32 colors[4] = {OT_RGB32::rgba(1, 0, 0), OT_RGB32::rgba(2, 0, 0), OT_RGB32::rgba(3, 0, 0),
                              OT_RGB32::rgba(4, 0, 0)};
  r.draw_2di_colorized_polytriangle(rendition, 6, points, colors, false);
  ASSERT_EQ(r.calls.size(), 3u);
  EXPECT_EQ(r.calls[0].points.size(), 4u);  // triangles 0 and 1 as one strip
  EXPECT_EQ(r.calls[0].color_pointer, colors);
  EXPECT_FALSE(r.calls[0].single);
  EXPECT_EQ(r.calls[1].color_pointer, colors + 2);
  EXPECT_TRUE(r.calls[1].single);
  EXPECT_EQ(r.calls[2].color_pointer, colors + 3);
  EXPECT_TRUE(r.calls[2].single);
  r.calls.clear();
  r.draw_2di_colorized_polytriangle(rendition, 6, points, colors + 1, true);
  ASSERT_EQ(r.calls.size(), 3u);
  for (const Call& call : r.calls) EXPECT_EQ(call.color_pointer, colors + 1);
}

TEST(OmbraStandard2DITriangles, GouraudColoursAreInterpolatedToTheCut) {
  Recording_Renderer r;
  r.record_dci_triangles();
  const OT_Rendition rendition = window(20, 20);
  const OT_DCI_Point points[3] = {{0, 0, 0}, {40, 0, 400}, {0, 40, 0}};
  const OT_RGB32 colors[3] = {OT_RGB32::rgba(0, 0, 0), OT_RGB32::rgba(200, 0, 0), OT_RGB32::rgba(0, 0, 0)};
  r.draw_2di_gouraud_polytriangle(rendition, 3, points, colors);
  ASSERT_EQ(r.calls.size(), 1u);
  const Call& call = r.calls[0];
  EXPECT_EQ(call.slot, "dci_gouraud_polytriangle");
  ASSERT_EQ(call.points.size(), 4u);
  for (std::size_t k = 0; k < 4; ++k) {
    EXPECT_EQ(call.colors[k].r, 5 * call.points[k].x) << k;
    EXPECT_EQ(call.points[k].z, 10 * call.points[k].x) << k;
  }
}

TEST(OmbraStandard2DITriangles, TexturedListsAreInterpolatedToTheCut) {
  Recording_Renderer r;
  r.record_dci_triangles();
  const OT_Rendition rendition = window(20, 20);
  const OT_DCI_Point points[3] = {{0, 0, 0}, {40, 0, 0}, {0, 40, 0}};
  const OT_Parameter params[3] = {{0, 0, 1}, {40, 0, 1}, {0, 40, 1}};
  const float w[3] = {1, 3, 1};
  r.draw_2di_textured_polytriangle(rendition, 3, points, nullptr, params, 1, w, nullptr);
  ASSERT_EQ(r.calls.size(), 1u);
  ASSERT_EQ(r.parameters[0].size(), 4u);
  for (std::size_t k = 0; k < 4; ++k) {
    EXPECT_FLOAT_EQ(r.parameters[0][k].u, float(r.calls[0].points[k].x));
    EXPECT_FLOAT_EQ(r.parameters[0][k].v, float(r.calls[0].points[k].y));
    EXPECT_FLOAT_EQ(r.w_values[0][k], 1.0f + r.calls[0].points[k].x / 20.0f);
  }
  EXPECT_EQ(r.calls[0].color_pointer, nullptr);
}

TEST(OmbraStandard2DTriangles, FloatPointsAreRoundedToNearest) {
  Recording_Renderer r;
  r.record_2di_triangles();
  r.record_dci_triangles();
  const OT_Rendition rendition = window(20, 20);
  const OT_Point points[3] = {{0.5f, -0.5f, 2.5f}, {1.49f, -1.5f, -2.5f}, {-0.51f, 7.0f, 0.0f}};
  r.draw_2d_polytriangle(rendition, 3, points);
  r.draw_dc_polytriangle(rendition, 3, points);
  ASSERT_EQ(r.calls.size(), 2u);
  EXPECT_EQ(r.calls[0].slot, "2di_polytriangle");
  EXPECT_EQ(r.calls[1].slot, "dci_polytriangle");
  for (const Call& call : r.calls) {
    EXPECT_EQ(call.points[0].x, 1);
    EXPECT_EQ(call.points[0].y, 0);
    EXPECT_EQ(call.points[0].z, 3);
    EXPECT_EQ(call.points[1].x, 1);
    EXPECT_EQ(call.points[1].y, -1);
    EXPECT_EQ(call.points[1].z, -2);
    EXPECT_EQ(call.points[2].x, -1);
  }
}

TEST(OmbraStandard2DTriangles, LongListsAndOtherFamiliesKeepTheirArguments) {
  Recording_Renderer r;
  r.record_2di_triangles();
  const OT_Rendition rendition = window(20, 20);
  std::vector<OT_Point_D> points;
  for (int i = 0; i < 100; ++i) points.push_back({i + 0.25, -i - 0.75, 0.5});
  const OT_RGB32 colors[100] = {};
  r.draw_tiled_colorized_polytriangle(rendition, 100, points.data(), colors, true);
  r.draw_tiled_gouraud_polytriangle(rendition, 100, points.data(), colors);
  ASSERT_EQ(r.calls.size(), 2u);
  EXPECT_EQ(r.calls[0].slot, "2di_colorized_polytriangle");
  EXPECT_EQ(r.calls[0].color_pointer, colors);
  EXPECT_TRUE(r.calls[0].single);
  EXPECT_EQ(r.calls[1].slot, "2di_gouraud_polytriangle");
  for (const Call& call : r.calls) {
    ASSERT_EQ(call.points.size(), 100u);
    for (int i = 0; i < 100; ++i) {
      ASSERT_EQ(call.points[i].x, i);
      ASSERT_EQ(call.points[i].y, -i - 1);
      ASSERT_EQ(call.points[i].z, 1);
    }
  }
}

TEST(OmbraStandardTriangles, WholeChainEndsInDots) {
  Recording_Renderer r;
  r.record_dots();
  const OT_Rendition rendition = window(64, 64);
  const OT_Point points[3] = {{10.2f, 9.8f, 0}, {14.4f, 10.1f, 0}, {9.6f, 14.3f, 0}};
  r.draw_2d_polytriangle(rendition, 3, points);
  std::set<std::pair<int, int>> expected;
  for (int y = 10; y < 14; ++y)
    for (int x = 10; x < 24 - y; ++x) expected.insert({x, y});
  EXPECT_EQ(r.dot_positions(), expected);
  for (const auto& dot : r.dots) EXPECT_FALSE(dot.has_color);
}

}  // namespace
