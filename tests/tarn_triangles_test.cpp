// Filled triangle strips through the slots: which pixels the walk owns, the
// depth arithmetic and the depth rules of each filler, the colour lists of
// colorized strips, and the strip outline of the RGB32 depth modes.
#include <map>

#include "pixel/rounding.h"
#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

class Walk : public ::testing::TestWithParam<Mode_Case> {};

TEST_P(Walk, WorkedExamplesOfTheRows) {
  struct Case {
    Points points;
    Pixels expected;
  } cases[] = {
      // Left edges own their pixels, right edges and the last row do not.
      {{{10, 10, 0}, {14, 10, 0}, {10, 14, 0}},
       rows_of({{10, {10, 13}}, {11, {10, 12}}, {12, {10, 11}}, {13, {10, 10}}})},
      // T.y equal M.y: the first part is skipped, row T.y is drawn.
      {{{10, 10, 0}, {20, 10, 0}, {15, 15, 0}},
       rows_of({{10, {10, 19}}, {11, {11, 18}}, {12, {12, 17}}, {13, {13, 16}}, {14, {14, 15}}})},
      // M.y equal B.y: the row of M and B is not drawn; a single point at
      // the least y writes nothing on its row.
      {{{15, 10, 0}, {10, 15, 0}, {20, 15, 0}},
       rows_of({{11, {14, 15}}, {12, {13, 16}}, {13, {12, 17}}, {14, {11, 18}}})},
      // Zero height, and a point.
      {{{5, 20, 0}, {40, 20, 0}, {20, 20, 0}}, {}},
      {{{7, 7, 0}, {7, 7, 0}, {7, 7, 0}}, {}},
      // A strip of 4 draws (0,1,2) and (1,2,3), whatever their winding.
      {{{10, 10, 0}, {20, 10, 0}, {10, 14, 0}, {20, 14, 0}},
       rows_of({{10, {10, 19}}, {11, {10, 19}}, {12, {10, 19}}, {13, {10, 19}}})},
      // The second part's sides by position: a long edge left of M.
      {{{0, 0, 0}, {3, 2, 0}, {1, 4, 0}}, rows_of({{1, {0, 1}}, {2, {1, 2}}, {3, {1, 1}}})},
      // Slopes by division (height 3) truncate toward zero on both signs.
      {{{7, 0, 0}, {0, 3, 0}, {11, 3, 0}}, rows_of({{1, {5, 7}}, {2, {2, 9}}})},
  };
  for (const Case& c : cases) {
    Renderer_Harness h(GetParam());
    h.draw_dci(c.points);
    EXPECT_EQ(h.drawn(), c.expected) << c.points[0].x << "," << c.points[0].y;
    for (const auto& [x, y] : c.expected) ASSERT_EQ(h.pixel(x, y), h.drawn_value());
  }
}

TEST_P(Walk, TrianglesSharingAnEdgeNeitherOverlapNorLeaveAGap) {
  const Points quad{{3, 2, 0}, {30, 5, 0}, {6, 40, 0}, {33, 37, 0}};
  Renderer_Harness both(GetParam()), one(GetParam()), two(GetParam());
  both.draw_dci(quad);
  one.draw_dci({quad[0], quad[1], quad[2]});
  two.draw_dci({quad[1], quad[2], quad[3]});
  Pixels sum = one.drawn();
  for (const auto& p : two.drawn()) EXPECT_TRUE(sum.insert(p).second) << p.first << "," << p.second;
  EXPECT_EQ(both.drawn(), sum);
  // No gap: every row of the quadrilateral is one run.
  std::map<int, std::pair<int, int>> rows;
  for (const auto& [x, y] : sum) rows.try_emplace(y, x, x).first->second.second = x;
  for (const auto& [y, run] : rows)
    for (int x = run.first; x <= run.second; ++x) EXPECT_TRUE(sum.count({x, y})) << x << "," << y;
}

// The float form rounds x and y (halves upward) and z, on both sides of
// its 64-point buffer.
TEST_P(Walk, FloatFormIsTheIntegerFormOfTheRoundedPoints) {
  for (int n : {3, 64, 65}) {
    Renderer_Harness dc(GetParam()), dci(GetParam());
    std::vector<OT_Point> points;
    Points rounded;
    for (int i = 0; i < n; ++i) {
      const OT_Point p{0.6f * i + 0.5f, (i % 2) ? 40.5f : 3.49f, 99.5f + i};
      points.push_back(p);
      rounded.push_back({round_float(p.x), round_float(p.y), GetParam().depth() ? round_float(p.z) : 0});
    }
    dc.draw_dc(points);
    dci.draw_dci(rounded);
    EXPECT_EQ(dc.snapshot(), dci.snapshot()) << n;
    EXPECT_GT(dci.drawn().size(), n == 3 ? 0u : 500u);
  }
}

TEST_P(Walk, WindowOriginShiftsTheImageNotTheDevice) {
  Renderer_Harness h(GetParam(), 64, 48, {100, -20});
  h.draw_dci({{110, -10, 0}, {114, -10, 0}, {110, -6, 0}});
  EXPECT_EQ(h.drawn(), rows_of({{-10, {110, 113}}, {-9, {110, 112}}, {-8, {110, 111}}, {-7, {110, 110}}}));
}

// Points far beyond the walk limits, in 32 bits and as floats, through the
// clip path: the triangles cover the clip, which they fill exactly.
TEST_P(Walk, FarPointsFillExactlyTheClip) {
  Renderer_Harness h(GetParam(), 128, 96);
  const OT_Int_Rectangle clip{24, 100, 16, 80};
  h.set_hard_clip(clip);
  const int far = 1000000;
  h.draw_2di({{-far, -far, 10}, {far, -far / 2, 10}, {0, far, 10}});
  h.draw_2di({{INT32_MIN, 5, 3}, {INT32_MAX, 7, 3}, {40, INT32_MAX, 3}, {-far, -far, 3}});
  h.draw_2d({{-3e9f, 50.f, 3}, {3e9f, 52.f, 3}, {40.f, 60.f, 3}});
  for (int y = clip.bottom; y <= clip.top; ++y)
    for (int x = clip.left; x <= clip.right; ++x) ASSERT_EQ(h.pixel(x, y), h.drawn_value()) << x << "," << y;
  if (GetParam().depth()) {
    EXPECT_EQ(h.depth(50, 50), 3);
  }
}

INSTANTIATE_TEST_SUITE_P(AllModes, Walk, ::testing::ValuesIn(kAllModes), mode_name);

// ---- Depth ---------------------------------------------------------------------

class Depth : public ::testing::TestWithParam<Mode_Case> {};

TEST_P(Depth, SpanAndEdgeDepths) {
  Renderer_Harness h(GetParam());
  // Two pixels: the right one takes the middle depth, never zr.
  h.draw_dci({{10, 10, 0}, {12, 10, 1000}, {10, 11, 0}});
  EXPECT_EQ((std::vector<int>{h.depth(10, 10), h.depth(11, 10), h.depth(12, 10)}),
            (std::vector{0, 500, 0xFFFF}));
  // Widths 4 (a shift) and 3 (a division) step from the left end.
  h.draw_dci({{10, 20, 0}, {14, 20, 400}, {10, 21, 0}});
  h.draw_dci({{10, 30, 0}, {13, 30, 300}, {10, 31, 0}});
  for (int i = 0; i < 4; ++i) EXPECT_EQ(h.depth(10 + i, 20), 100 * i);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(h.depth(10 + i, 30), 100 * i);
  // The long edge, 100 a row over 8 rows.
  h.draw_dci({{40, 10, 0}, {60, 10, 0}, {40, 18, 800}});
  for (int row = 10; row < 18; ++row) EXPECT_EQ(h.depth(40, row), 100 * (row - 10)) << row;
  // The float form rounds z.
  h.draw_dc({{40.f, 30.f, 99.5f}, {44.f, 30.f, 99.5f}, {40.f, 34.f, 99.5f}});
  EXPECT_EQ(h.depth(40, 30), 100);
}

TEST_P(Depth, EqualDepthDrawsNearerWinsAndPositiveBiasMovesAway) {
  Renderer_Harness h(GetParam());
  const Points at500 = rectangle(0, 0, 40, 40, 500);
  h.draw_dci(at500);
  h.set_color(OT_RGB32{255, 0, 0, 255}, 4);
  h.draw_dci(rectangle(0, 0, 40, 40, 501));
  EXPECT_EQ(h.pixel(5, 5), h.drawn_value());
  h.draw_dci(at500);  // at or below: equal draws
  EXPECT_NE(h.pixel(5, 5), h.drawn_value());
  h.set_color(Renderer_Harness::kColor, Renderer_Harness::kIndex);
  h.rendition().writable_face()->depth_bias = 150;
  h.draw_dci(rectangle(0, 0, 40, 40, 400));  // 550 once biased
  EXPECT_EQ(std::pair(h.pixel(5, 5) == h.drawn_value(), int(h.depth(5, 5))), std::pair(false, 500));
  h.draw_dci(rectangle(0, 0, 40, 40, 300));
  EXPECT_EQ(std::pair(h.pixel(5, 5) == h.drawn_value(), int(h.depth(5, 5))), std::pair(true, 450));
}

TEST_P(Depth, DepthDisabledNeitherReadsNorWrites) {
  Renderer_Harness h(GetParam());
  h.draw_dci(rectangle(0, 0, 40, 40, 100));
  h.rendition().writable_device()->depth_enabled = 0;
  h.set_color(OT_RGB32{255, 0, 0, 255}, 4);
  h.draw_dci(rectangle(0, 0, 40, 40, 900));
  h.draw_dc(as_floats(rectangle(41, 0, 60, 40, 900)));
  EXPECT_NE(h.pixel(5, 5), h.drawn_value());
  EXPECT_NE(h.pixel(50, 5), h.clear_value());
  EXPECT_EQ(std::pair(h.depth(5, 5), h.depth(50, 5)), (std::pair<std::uint16_t, std::uint16_t>(100, 0xFFFF)));
}

INSTANTIATE_TEST_SUITE_P(DepthModes, Depth, ::testing::ValuesIn(kDepthModes), mode_name);

// Which filler follows "ZBuffer Test" and "ZBuffer Write", set through
// their setters between primitives: the opaque RGB32 one both, the alpha
// one only the write, the mapped one neither.
TEST(Depth_Options, EachFillerFollowsItsOptions) {
  struct Case {
    int test, first, second;
    bool shows[3];  // z_mapped, z_rgb32_alpha, z_rgb32
  } cases[] = {
      {2, 500, 500, {true, true, true}},   {1, 500, 500, {true, true, false}},
      {1, 500, 499, {true, true, true}},   {5, 500, 500, {true, true, false}},
      {5, 500, 501, {false, false, true}}, {5, 500, 499, {true, true, false}},
      {3, 500, 500, {true, true, true}},   {0, 500, 501, {false, false, false}},
      {-1, 500, 500, {true, true, true}},
  };
  for (int m = 0; m < 3; ++m)
    for (const Case& c : cases) {
      Renderer_Harness h(kDepthModes[m]);
      h.draw_dci(rectangle(0, 0, 40, 40, c.first));
      h.set_depth_test(c.test);
      h.set_color(OT_RGB32{255, 0, 0, 255}, 4);
      h.draw_dci(rectangle(0, 0, 40, 40, c.second));
      EXPECT_EQ(h.pixel(5, 5) != h.drawn_value(), c.shows[m]) << kDepthModes[m].name << " test " << c.test;
    }
  // A cleared image under test 1 refuses only 0xFFFF.
  Renderer_Harness h(kZRgb32);
  h.set_depth_test(1);
  h.draw_dci(rectangle(0, 0, 40, 40, 0xFFFF));
  EXPECT_TRUE(h.drawn().empty());
  h.draw_dci(rectangle(0, 0, 40, 40, 0xFFFE));
  EXPECT_EQ(h.pixel(5, 5), h.drawn_value());
  // With 5 it accepts nothing.
  h.clear();
  h.set_depth_test(5);
  h.draw_dci(rectangle(0, 0, 40, 40, 0));
  EXPECT_TRUE(h.drawn().empty());
}

TEST(Depth_Options, WriteOffLeavesDepthInTheRgb32FillersSoALaterFaceBehindOverwrites) {
  for (const Mode_Case& mode : kDepthModes) {
    Renderer_Harness h(mode);
    h.set_depth_write(0);
    h.draw_dci(rectangle(0, 0, 40, 40, 300));
    EXPECT_EQ(h.depth(5, 5), mode.mapped() ? 300 : 0xFFFF) << mode.name;
    h.set_color(OT_RGB32{255, 0, 0, 255}, 4);
    h.draw_dci(rectangle(0, 0, 40, 40, 600));
    EXPECT_EQ(h.pixel(5, 5) != h.drawn_value(), !mode.mapped()) << mode.name;
  }
}

// In the alpha paths a pixel of alpha 0 writes its depth and keeps its colour.
TEST(Depth_Alpha, BlendsExactlyAndAlphaZeroWritesDepthOnly) {
  for (bool alpha_path : {false, true}) {
    Renderer_Harness h(alpha_path ? kZRgb32 : kZRgb32Alpha);
    h.rendition().writable_colors()->window_color = OT_RGB32{0, 0, 0, 0};
    h.clear();
    if (alpha_path) h.rendition().writable_raster()->advanced_options = OT_Advanced_Alpha_Path;
    h.set_color(OT_RGB32{255, 0, 0, 128}, 0);
    h.draw_dci(rectangle(0, 0, 20, 20, 10));
    EXPECT_EQ(h.pixel(5, 5), (OT_RGB32{128, 0, 0, 255}.word()));
    EXPECT_EQ(h.depth(5, 5), 10);
    const OT_RGB32 clear{9, 9, 9, 0}, other{9, 9, 9, 128};
    h.colorized(rectangle(30, 0, 50, 20, 7), {clear, other}, false);
    EXPECT_EQ(h.pixel(31, 1), (OT_RGB32{0, 0, 0, 255}.word()));
    EXPECT_EQ(h.depth(31, 1), 7);
  }
}

// ---- Colorized lists -------------------------------------------------------------

class Colorized : public ::testing::TestWithParam<Mode_Case> {};

// Five points, three triangles: (0,1,2) of zero height, then two.
const Points kSkipFirst{{0, 5, 100}, {30, 5, 100}, {15, 5, 100}, {0, 20, 100}, {30, 20, 100}};

TEST_P(Colorized, ListStepsItsColourPerTriangleAndASkippedOneUsesItsColour) {
  Renderer_Harness h(GetParam());
  const OT_RGB32 c0 = OT_RGB32::rgba(255, 0, 0), c1 = OT_RGB32::rgba(0, 200, 0),
                 c2 = OT_RGB32::rgba(0, 0, 255);
  h.colorized(kSkipFirst, {c0, c1, c2}, false);
  // Triangle 1 is (30,5) (15,5) (0,20), triangle 2 (15,5) (0,20) (30,20).
  EXPECT_EQ(h.pixel(24, 7), h.flat_value(c1, 24, 7));
  EXPECT_EQ(h.pixel(20, 18), h.flat_value(c2, 20, 18));
  for (const auto& [x, y] : h.drawn()) ASSERT_NE(h.pixel(x, y), h.flat_value(c0, x, y));
}

// A single colour after a first triangle of zero height: the mapped
// fillers have lost it and draw index 0; the RGB32 ones keep it.
TEST_P(Colorized, SingleColourAfterAZeroHeightFirstTriangle) {
  Renderer_Harness h(GetParam());
  const OT_RGB32 c = OT_RGB32::rgba(100, 150, 200);
  OT_Rendition_Colors* colors = h.rendition().writable_colors();
  colors->window_index = 1;
  h.clear();
  h.colorized(kSkipFirst, {c}, true);
  EXPECT_EQ(h.pixel(24, 7), h.mode().mapped() ? 0u : c.word());
  EXPECT_EQ(h.pixel(20, 18), h.mode().mapped() ? 0u : c.word());
  // Without the skipped triangle the colour is dithered per pixel.
  h.colorized(rectangle(0, 30, 40, 40), {c}, true);
  for (int x = 0; x < 40; ++x) ASSERT_EQ(h.pixel(x, 33), h.flat_value(c, x, 33)) << x;
}

INSTANTIATE_TEST_SUITE_P(AllModes, Colorized, ::testing::ValuesIn(kAllModes), mode_name);

// ---- Strip outline ----------------------------------------------------------------

// With advanced_options bit 32 the RGB32 depth modes draw a strip's edges
// as three polylines (all points, even ones, odd ones), on a private copy
// of the rendition, with the face's bias in edge_depth_bias meanwhile.
TEST(Strip_Outline, DrawsTheEdgesOfTheStripInTheRgb32DepthModes) {
  for (const Mode_Case& mode : kAllModes) {
    Renderer_Harness h(mode);
    h.rendition().writable_raster()->advanced_options = OT_Advanced_Strip_Outline;
    h.rendition().writable_face()->depth_bias = 9;
    static std::vector<int> biases;
    biases.clear();
    const Points square{{10, 10, 100}, {30, 10, 100}, {10, 30, 100}, {30, 30, 100}};
    for (int form = 0; form < 4; ++form) {
      h.clear();
      const OT_RGB32 color = Renderer_Harness::kColor;
      if (form == 0) h.draw_dci(square);
      if (form == 1) h.draw_2d(as_floats(square));
      if (form == 2) h.colorized(square, {color}, true);
      if (form == 3)
        h.renderer().draw_2di_colorized_polytriangle(h.rendition(), 4, square.data(), &color, true);
      if (mode.depth() && !mode.mapped()) {
        Pixels edges;
        for (int k = 10; k <= 30; ++k) edges.insert({{k, 10}, {k, 30}, {10, k}, {30, k}, {40 - k, k}});
        EXPECT_EQ(h.drawn(), edges) << mode.name << " form " << form;
        EXPECT_EQ(h.depth(20, 10), 100);
      } else {
        EXPECT_EQ(h.drawn().size(), 400u) << mode.name << " form " << form;
      }
    }
    EXPECT_EQ(h.rendition()->raster->advanced_options, OT_Advanced_Strip_Outline);
    EXPECT_EQ(h.renderer().edge_depth_bias, 0);
  }
  // A single triangle is two polylines.
  Renderer_Harness h(kZRgb32);
  h.rendition().writable_raster()->advanced_options = OT_Advanced_Strip_Outline;
  h.draw_dci({{10, 10, 100}, {30, 10, 100}, {10, 30, 100}});
  Pixels edges;
  for (int k = 10; k <= 30; ++k) edges.insert({{k, 10}, {10, k}, {40 - k, k}});
  EXPECT_EQ(h.drawn(), edges);
}

// One colour of alpha 0 ends the call at once; under merge only the first
// colour of a list is made opaque, the later ones blend.
TEST(Colorized_Alpha, SingleAlphaZeroDrawsNothingAndMergeMakesOnlyTheFirstColourOpaque) {
  Renderer_Harness h(kRgb32Alpha);
  h.rendition().writable_colors()->window_color = OT_RGB32::rgba(255, 255, 255, 0);
  h.clear();
  const std::vector<std::uint32_t> before = h.snapshot();
  h.colorized(rectangle(0, 0, 20, 20), {OT_RGB32::rgba(200, 100, 50, 0)}, true);
  EXPECT_EQ(h.snapshot(), before);
  h.rendition().writable_colors()->window_color = OT_RGB32::rgba(255, 255, 255);
  h.clear();
  h.rendition().writable_raster()->write_mode = 20;
  // Triangles 0 and 1 make the square [0,20)^2, triangle 2 lies below it.
  h.colorized(
      {{0, 0, 0}, {20, 0, 0}, {0, 20, 0}, {20, 20, 0}, {0, 40, 0}},
      {OT_RGB32::rgba(10, 20, 30, 128), OT_RGB32::rgba(200, 100, 50, 128), OT_RGB32::rgba(0, 0, 0, 0)},
      false);
  EXPECT_EQ(h.pixel(2, 2), OT_RGB32::rgba(10, 20, 30).word());  // merged onto the background
  // (255 * 127 + c * 128) / 255 per channel.
  EXPECT_EQ(h.pixel(17, 17), OT_RGB32::rgba(227, 177, 152).word());
  EXPECT_EQ(h.pixel(2, 25), OT_RGB32::rgba(255, 255, 255).word());
}

}  // namespace
}  // namespace tarn::testing
