// The standard polyline, polymarker and polygon routines.
#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "tests/ombra_recording_renderer.h"

namespace {

using ombra_testing::Call;
using ombra_testing::Dot;
using ombra_testing::Recording_Renderer;

OT_Rendition window(int width, int height) { return OT_Rendition::make_default(width, height, OB_Default_Palette()); }

std::vector<std::pair<int, int>> positions(const std::vector<Dot>& dots) {
  std::vector<std::pair<int, int>> out;
  for (const Dot& d : dots) out.push_back({d.point.x, d.point.y});
  return out;
}

TEST(OmbraStandardDCILines, SegmentsStepAlongTheLongerAxis) {
  Recording_Renderer r;
  r.record_dots();
  const OT_Rendition rendition = window(64, 64);
  const OT_DCI_Point points[2] = {{0, 0, 0}, {5, 2, 50}};
  OB_Standard_Draw_DCI_Polyline(&r, rendition, 2, points);
  const std::vector<std::pair<int, int>> expected = {{0, 0}, {1, 0}, {2, 1}, {3, 1}, {4, 2}, {5, 2}};
  EXPECT_EQ(positions(r.dots), expected);
  for (std::size_t k = 0; k < r.dots.size(); ++k) {
    EXPECT_EQ(r.dots[k].point.z, int(10 * k));
    EXPECT_FALSE(r.dots[k].has_color);
  }
  r.dots.clear();
  const OT_DCI_Point steep[2] = {{3, 4, 0}, {1, -1, 0}};
  OB_Standard_Draw_DCI_Polyline(&r, rendition, 2, steep);
  const std::vector<std::pair<int, int>> down = {{3, 4}, {3, 3}, {2, 2}, {2, 1}, {1, 0}, {1, -1}};
  EXPECT_EQ(positions(r.dots), down);
}

TEST(OmbraStandardDCILines, SharedCornersAreDrawnOnce) {
  Recording_Renderer r;
  r.record_dots();
  const OT_Rendition rendition = window(64, 64);
  const OT_DCI_Point points[4] = {{0, 0, 0}, {3, 0, 0}, {3, 3, 0}, {3, 3, 0}};
  OB_Standard_Draw_DCI_Polyline(&r, rendition, 4, points);
  const std::vector<std::pair<int, int>> expected = {{0, 0}, {1, 0}, {2, 0}, {3, 0}, {3, 1}, {3, 2}, {3, 3}};
  EXPECT_EQ(positions(r.dots), expected);
  r.dots.clear();
  OB_Standard_Draw_DCI_Polyline(&r, rendition, 1, points + 2);
  ASSERT_EQ(r.dots.size(), 1u);
  EXPECT_EQ(r.dots[0].point.x, 3);
}

TEST(OmbraStandardDCILines, ColorizedDotsTakeTheirSegmentsColour) {
  Recording_Renderer r;
  r.record_dots();
  const OT_Rendition rendition = window(64, 64);
  const OT_DCI_Point points[3] = {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}};
  const OT_RGB32 colors[2] = {OT_RGB32::rgba(1, 1, 1), OT_RGB32::rgba(2, 2, 2)};
  OB_Standard_Draw_DCI_Colorized_Polyline(&r, rendition, 3, points, colors, false);
  ASSERT_EQ(r.dots.size(), 5u);
  const int expected[5] = {1, 1, 2, 2, 2};  // the last point with the last segment
  for (int k = 0; k < 5; ++k) {
    ASSERT_TRUE(r.dots[k].has_color);
    EXPECT_EQ(r.dots[k].color.r, expected[k]) << k;
  }
  r.dots.clear();
  OB_Standard_Draw_DCI_Colorized_Polyline(&r, rendition, 3, points, colors + 1, true);
  for (const Dot& d : r.dots) EXPECT_EQ(d.color.r, 2);
}

TEST(OmbraStandardDCILines, GouraudDotsAreInterpolated) {
  Recording_Renderer r;
  r.record_dots();
  const OT_Rendition rendition = window(64, 64);
  const OT_DCI_Point points[2] = {{0, 0, 0}, {4, 0, 0}};
  const OT_RGB32 colors[2] = {OT_RGB32::rgba(0, 100, 0, 255), OT_RGB32::rgba(100, 0, 0, 55)};
  OB_Standard_Draw_DCI_Gouraud_Polyline(&r, rendition, 2, points, colors);
  ASSERT_EQ(r.dots.size(), 5u);
  for (int k = 0; k < 5; ++k) {
    EXPECT_EQ(r.dots[k].color.r, 25 * k);
    EXPECT_EQ(r.dots[k].color.g, 100 - 25 * k);
    EXPECT_EQ(r.dots[k].color.a, 255 - 50 * k);
  }
}

TEST(OmbraStandard2DILines, InsideListGoesWhole) {
  Recording_Renderer r;
  r.record_dci_lines();
  const OT_Rendition rendition = window(20, 20);
  const OT_DCI_Point points[3] = {{0, 0, 0}, {19, 19, 0}, {19, 0, 0}};
  r.draw_2di_polyline(rendition, 3, points);
  ASSERT_EQ(r.calls.size(), 1u);
  EXPECT_EQ(r.calls[0].points.size(), 3u);
}

TEST(OmbraStandard2DILines, CrossingSegmentsAreCutAndRunsKept) {
  Recording_Renderer r;
  r.record_dci_lines();
  const OT_Rendition rendition = window(20, 20);
  // In, in, out right, out above-right, in.
  const OT_DCI_Point points[5] = {{2, 2, 0}, {10, 2, 0}, {30, 2, 200}, {30, 30, 0}, {10, 10, 0}};
  const OT_RGB32 colors[4] = {OT_RGB32::rgba(1, 0, 0), OT_RGB32::rgba(2, 0, 0), OT_RGB32::rgba(3, 0, 0),
                              OT_RGB32::rgba(4, 0, 0)};
  r.draw_2di_colorized_polyline(rendition, 5, points, colors, false);
  ASSERT_EQ(r.calls.size(), 3u);
  // The inside run.
  EXPECT_EQ(r.calls[0].points.size(), 2u);
  EXPECT_EQ(r.calls[0].color_pointer, colors);
  // Segment 1 leaves at x = 19.
  ASSERT_EQ(r.calls[1].points.size(), 2u);
  EXPECT_EQ(r.calls[1].points[0].x, 10);
  EXPECT_EQ(r.calls[1].points[1].x, 19);
  EXPECT_EQ(r.calls[1].points[1].y, 2);
  EXPECT_EQ(r.calls[1].points[1].z, 90);
  EXPECT_EQ(r.calls[1].color_pointer, colors + 1);
  // Segment 2 lies beyond the right side; segment 3 enters at (19, 19).
  EXPECT_EQ(r.calls[2].points[0].x, 19);
  EXPECT_EQ(r.calls[2].points[0].y, 19);
  EXPECT_EQ(r.calls[2].points[1].x, 10);
  EXPECT_EQ(r.calls[2].color_pointer, colors + 3);
}

TEST(OmbraStandard2DILines, SegmentThroughTheClipWithBothEndsOut) {
  Recording_Renderer r;
  r.record_dci_lines();
  const OT_Rendition rendition = window(20, 20);
  const OT_DCI_Point points[2] = {{-10, 5, 0}, {40, 5, 0}};
  const OT_RGB32 colors[2] = {OT_RGB32::rgba(0, 0, 0), OT_RGB32::rgba(250, 0, 0)};
  r.draw_2di_gouraud_polyline(rendition, 2, points, colors);
  ASSERT_EQ(r.calls.size(), 1u);
  EXPECT_EQ(r.calls[0].points[0].x, 0);
  EXPECT_EQ(r.calls[0].points[1].x, 19);
  EXPECT_EQ(r.calls[0].colors[0].r, 50);
  EXPECT_EQ(r.calls[0].colors[1].r, 145);
  r.calls.clear();
  const OT_DCI_Point miss[2] = {{-10, 5, 0}, {5, -10, 0}};
  r.draw_2di_polyline(rendition, 2, miss);
  EXPECT_TRUE(r.calls.empty());
}

TEST(OmbraStandard2DILines, EveryDotOfAClippedPolylineIsInside) {
  Recording_Renderer r;
  r.record_dots();
  OT_Rendition rendition = window(100, 100);
  rendition.set_hard_clip_unrestricted(OT_Int_Rectangle{10, 29, 5, 24}, false);
  unsigned seed = 99;
  std::vector<OT_DCI_Point> points;
  for (int i = 0; i < 300; ++i) {
    seed = seed * 1103515245u + 12345u;
    const int x = int((seed >> 8) % 81) - 20;
    seed = seed * 1103515245u + 12345u;
    points.push_back({x, int((seed >> 8) % 81) - 20, 0});
  }
  r.draw_2di_polyline(rendition, int(points.size()), points.data());
  ASSERT_FALSE(r.dots.empty());
  for (const Dot& d : r.dots) {
    ASSERT_GE(d.point.x, 10);
    ASSERT_LE(d.point.x, 29);
    ASSERT_GE(d.point.y, 5);
    ASSERT_LE(d.point.y, 24);
  }
}

TEST(OmbraStandardLines, FloatFormsRoundAndForward) {
  Recording_Renderer r;
  r.record_dci_lines();
  const OT_Rendition rendition = window(20, 20);
  const OT_Point points[2] = {{1.5f, 2.49f, 0}, {3.0f, 4.0f, 0}};
  r.draw_dc_polyline(rendition, 2, points);
  ASSERT_EQ(r.calls.size(), 1u);
  EXPECT_EQ(r.calls[0].points[0].x, 2);
  EXPECT_EQ(r.calls[0].points[0].y, 2);
  r.calls.clear();
  const OT_Point_D far[2] = {{-1e12, 5.0, 0}, {1e12, 5.0, 0}};
  r.draw_tiled_polyline(rendition, 2, far);
  ASSERT_EQ(r.calls.size(), 1u);
  EXPECT_EQ(r.calls[0].points[0].x, 0);
  EXPECT_EQ(r.calls[0].points[1].x, 19);
}

TEST(OmbraStandardMarkers, InsidePointsBecomeDots) {
  Recording_Renderer r;
  r.record_dots();
  const OT_Rendition rendition = window(20, 20);
  const OT_DCI_Point points[4] = {{0, 0, 5}, {20, 0, 0}, {19, 19, 0}, {-1, 3, 0}};
  r.draw_2di_polymarker(rendition, 4, points);
  const std::vector<std::pair<int, int>> expected = {{0, 0}, {19, 19}};
  EXPECT_EQ(positions(r.dots), expected);
  EXPECT_EQ(r.dots[0].point.z, 5);
  EXPECT_FALSE(r.dots[0].has_color);
  r.dots.clear();
  r.draw_dci_polymarker(rendition, 4, points);
  EXPECT_EQ(r.dots.size(), 4u);
}

double area(const Call& call) {
  const OT_DCI_Point &a = call.points[0], &b = call.points[1], &c = call.points[2];
  return 0.5 * std::fabs((double(b.x) - a.x) * (double(c.y) - a.y) - (double(c.x) - a.x) * (double(b.y) - a.y));
}

class Polygon_Renderer : public Recording_Renderer {
 public:
  Polygon_Renderer() {
    record_dci_triangles();
    record_2di_triangles();
    // A polygon slot must never be called by the host's polygons.
    auto polygon = [](OT_Renderer_Data* o, const OT_Rendition&, int, const OT_DCI_Point*, const OT_RGB32*) {
      ++static_cast<Polygon_Renderer*>(o)->polygon_calls;
    };
    draw_2di_polygon.install(this, polygon);
    draw_dci_polygon.install(this, polygon);
  }
  int polygon_calls = 0;
};

TEST(OmbraStandardPolygons, ConcavePolygonBecomesTrianglesOfItsArea) {
  Polygon_Renderer r;
  const OT_Rendition rendition = window(64, 64);
  const OT_Point points[6] = {{0, 0, 0}, {20, 0, 0}, {20, 20, 0}, {10, 5, 0}, {0, 20, 0}, {0, 10, 0}};
  r.draw_2d_polygon(rendition, 6, points, nullptr);
  // (0, 10) lies on a straight side: it may or may not be a corner.
  ASSERT_GE(r.calls.size(), 3u);
  ASSERT_LE(r.calls.size(), 4u);
  double total = 0.0;
  for (const Call& call : r.calls) {
    EXPECT_EQ(call.slot, "2di_polytriangle");
    ASSERT_EQ(call.points.size(), 3u);
    total += area(call);
  }
  EXPECT_EQ(total, 250.0);
  EXPECT_EQ(r.polygon_calls, 0);
}

TEST(OmbraStandardPolygons, OneColourForTheWholePolygon) {
  Polygon_Renderer r;
  const OT_Rendition rendition = window(64, 64);
  const OT_DCI_Point points[4] = {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}};
  const OT_RGB32 color = OT_RGB32::rgba(1, 2, 3);
  r.draw_dci_polygon.install(&r, OB_Standard_Draw_DCI_Polygon);
  r.draw_dci_polygon(rendition, 4, points, &color);
  ASSERT_EQ(r.calls.size(), 2u);
  for (const Call& call : r.calls) {
    EXPECT_EQ(call.slot, "dci_colorized_polytriangle");
    EXPECT_EQ(call.color_pointer, &color);
    EXPECT_TRUE(call.single);
  }
}

TEST(OmbraStandardPolygons, IntegerCornersKeepTheirExactValues) {
  Polygon_Renderer r;
  const OT_Rendition rendition = window(64, 64);
  const int big = 16777217;  // not a float
  const OT_DCI_Point points[4] = {{big, 0, 7}, {big + 10, 0, 7}, {big + 10, 10, 7}, {big, 10, 7}};
  OB_Standard_Draw_2DI_Polygon(&r, rendition, 4, points, nullptr);
  ASSERT_EQ(r.calls.size(), 2u);
  std::set<std::pair<int, int>> corners;
  for (const Call& call : r.calls)
    for (const OT_DCI_Point& p : call.points) {
      corners.insert({p.x, p.y});
      EXPECT_EQ(p.z, 7);
    }
  const std::set<std::pair<int, int>> expected = {{big, 0}, {big + 10, 0}, {big + 10, 10}, {big, 10}};
  EXPECT_EQ(corners, expected);
}

TEST(OmbraStandardPolygons, FewerThanThreePointsDrawNothing) {
  Polygon_Renderer r;
  const OT_Rendition rendition = window(64, 64);
  const OT_Point points[2] = {{0, 0, 0}, {5, 5, 0}};
  OB_Standard_Draw_DC_Polygon(&r, rendition, 2, points, nullptr);
  EXPECT_TRUE(r.calls.empty());
}

}  // namespace
