// Thin polylines through the slots: the walker's pixels, half-open segments
// and the single final pixel, the writers and depth rules of each mode, and
// the 2DI clip path with its runs, dots and clipped segments.
#include "lines/segment_clipper.h"
#include "pixel/merge.h"
#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

class Lines : public ::testing::TestWithParam<Mode_Case> {};

TEST_P(Lines, WorkedExamplesOfTheWalk) {
  const struct {
    Points points;
    Pixels expected;  // the last point is the polyline's final pixel
  } cases[] = {
      {{{0, 0, 0}, {10, 2, 0}}, rows_of({{0, {0, 2}}, {1, {3, 7}}, {2, {8, 10}}})},
      {{{10, 0, 0}, {0, 2, 0}}, rows_of({{0, {8, 10}}, {1, {3, 7}}, {2, {0, 2}}})},
      {{{0, 2, 0}, {10, 0, 0}}, rows_of({{2, {0, 2}}, {1, {3, 7}}, {0, {8, 10}}})},
      {{{10, 2, 0}, {0, 0, 0}}, rows_of({{2, {8, 10}}, {1, {3, 7}}, {0, {0, 2}}})},
      {{{0, 0, 0}, {3, 7, 0}}, {{0, 0}, {0, 1}, {1, 2}, {1, 3}, {2, 4}, {2, 5}, {3, 6}, {3, 7}}},
      {{{3, 7, 0}, {0, 0, 0}}, {{0, 0}, {0, 1}, {1, 2}, {1, 3}, {2, 4}, {2, 5}, {3, 6}, {3, 7}}},
      {{{5, 3, 0}, {2, 3, 0}}, {{5, 3}, {4, 3}, {3, 3}, {2, 3}}},
      {{{7, 9, 0}, {7, 9, 0}}, {{7, 9}}},
      {{{7, 9, 0}, {7, 9, 0}, {7, 9, 0}}, {{7, 9}}},
      {{{4, 8, 0}, {4, 4, 0}}, {{4, 8}, {4, 7}, {4, 6}, {4, 5}, {4, 4}}},
      {{{20, 20, 0}, {16, 24, 0}, {20, 28, 0}},
       {{20, 20}, {19, 21}, {18, 22}, {17, 23}, {16, 24}, {17, 25}, {18, 26}, {19, 27}, {20, 28}}},
      // Two rows wider than 16 pixels, and a zero-length segment mid-list.
      {{{40, 30, 0}, {60, 31, 0}, {60, 31, 0}, {30, 32, 0}},
       rows_of({{30, {40, 49}}, {31, {46, 60}}, {32, {30, 45}}})},
  };
  for (const auto& c : cases) {
    Renderer_Harness h(GetParam());
    h.line(c.points);
    EXPECT_EQ(h.drawn(), c.expected) << c.points[0].x << "," << c.points[0].y << " to " << c.points[1].x
                                     << "," << c.points[1].y;
    for (const auto& [x, y] : c.expected) ASSERT_EQ(h.pixel(x, y), h.drawn_value());
  }
}

TEST_P(Lines, SteepSegmentsGoingDownLeftHitThePixelsOfTheirReverse) {
  for (int dx = 1; dx < 9; ++dx)
    for (int dy = dx + 1; dy < 20; ++dy) {
      Renderer_Harness forward(GetParam()), backward(GetParam());
      const OT_DCI_Point a{30, 25, 0}, b{30 - dx, 25 - dy, 0};
      forward.line({a, b});
      backward.line({b, a});
      ASSERT_EQ(forward.drawn(), backward.drawn()) << dx << "," << dy;
    }
}

TEST_P(Lines, WideOrPatternedLinesGoToTheHost) {
  for (int way = 0; way < 2; ++way) {
    Renderer_Harness h(GetParam());
    static int dots;
    dots = 0;
    // Patterned lines come back as dots, wide ones as strips.
    h.renderer().draw_dci_dot.function = [](OT_Renderer_Data*, const OT_Rendition&, const OT_DCI_Point*,
                                            const OT_RGB32*) { ++dots; };
    h.renderer().draw_2di_polytriangle.function = [](OT_Renderer_Data*, const OT_Rendition&, int,
                                                     const OT_DCI_Point*) { ++dots; };
    h.renderer().draw_2di_colorized_polytriangle.function = [](OT_Renderer_Data*, const OT_Rendition&, int,
                                                               const OT_DCI_Point*, const OT_RGB32*,
                                                               bool) { ++dots; };
    h.renderer().draw_2di_gouraud_polytriangle.function =
        [](OT_Renderer_Data*, const OT_Rendition&, int, const OT_DCI_Point*, const OT_RGB32*) { ++dots; };
    (way ? h.rendition().writable_line()->pattern : h.rendition().writable_line()->weight) = 2 + way;
    h.line({{1, 1, 0}, {20, 5, 0}});
    h.line_2di({{-10, 1, 0}, {20, 5, 0}});
    // The colour lists too.
    const OT_DCI_Point p[2] = {{1, 9, 0}, {20, 14, 0}};
    const OT_RGB32 c[2] = {OT_RGB32::rgba(0, 0, 0), OT_RGB32::rgba(250, 0, 0)};
    Software_Z_Buffer& r = h.renderer();
    r.draw_dci_gouraud_polyline(h.rendition(), 2, p, c);
    r.draw_2di_gouraud_polyline(h.rendition(), 2, p, c);
    r.draw_dci_colorized_polyline(h.rendition(), 2, p, c, false);
    r.draw_2di_colorized_polyline(h.rendition(), 2, p, c, false);
    EXPECT_TRUE(h.drawn().empty());
    EXPECT_GT(dots, 0);
  }
}

// Merge control merges every pixel, the final one too, in the modes
// without depth; the depth walkers have no merge.
TEST_P(Lines, MergeEveryPixelWithoutDepth) {
  const Mode_Case& mode = GetParam();
  Renderer_Harness h(mode);
  h.set_color(OT_RGB32{0, 255, 255, 255}, 6);
  h.line({{0, 5, 0}, {10, 5, 0}});
  byte merged = byte(h.pixel(3, 5));
  Merge_Mapped(h.renderer()).apply(&merged, 5);
  h.rendition().writable_raster()->write_mode = 20;
  h.set_color(OT_RGB32{255, 255, 0, mode.alpha && !mode.depth() ? byte(100) : byte(255)}, 5);
  h.line({{0, 5, 0}, {10, 5, 0}});
  const std::uint32_t plain = mode.mapped() ? 5u : OT_RGB32{255, 255, 0, 255}.word();
  // Cyan AND yellow.
  const std::uint32_t want = mode.depth() ? plain : mode.mapped() ? merged : OT_RGB32{0, 255, 0, 255}.word();
  for (int x : {0, 3, 10}) EXPECT_EQ(h.pixel(x, 5), want) << x;
}

TEST(Line_Writers, BlendingWalkerUsesTheWeightFormOncePerPixelButTwiceOnAClosedStart) {
  for (const Mode_Case& mode : {kRgb32Alpha, kZRgb32Alpha}) {
    Renderer_Harness h(mode);
    h.set_color(OT_RGB32{200, 0, 0, 128}, 0);
    h.line({{10, 10, 5}, {30, 10, 5}, {30, 20, 5}, {10, 10, 5}});
    // Once: 0 + (200 * 128 >> 8) = 100; twice: 100 + (100 * 128 >> 8) = 150.
    const std::uint32_t once = OT_RGB32{100, 0, 0, 255}.word();
    EXPECT_EQ((std::vector{h.pixel(10, 10), h.pixel(20, 10), h.pixel(30, 10), h.pixel(30, 15)}),
              (std::vector{OT_RGB32{150, 0, 0, 255}.word(), once, once, once}))
        << mode.name;
    // Alpha 255 takes the opaque walker and keeps its alpha byte; 254
    // blends and leaves 255 in it.
    h.set_color(OT_RGB32{1, 2, 3, 255}, 0);
    h.line({{0, 40, 5}, {5, 40, 5}});
    EXPECT_EQ(h.pixel(2, 40), (OT_RGB32{1, 2, 3, 255}.word()));
    h.set_color(OT_RGB32{1, 2, 3, 254}, 0);
    h.line({{0, 41, 5}, {5, 41, 5}});
    EXPECT_EQ(h.pixel(2, 41) >> 24, 255u);
  }
  // The opaque walker stores the alpha byte as it came.
  Renderer_Harness h(kRgb32);
  h.set_color(OT_RGB32{1, 2, 3, 7}, 0);
  h.line({{0, 0, 0}, {5, 0, 0}});
  EXPECT_EQ(h.pixel(5, 0), (OT_RGB32{1, 2, 3, 7}.word()));
}

// ---- Depth ------------------------------------------------------------------------

class Line_Depth : public ::testing::TestWithParam<Mode_Case> {};

TEST_P(Line_Depth, DepthStepsAlongTheMajorAxisWithoutBias) {
  Renderer_Harness h(GetParam());
  h.rendition().writable_face()->depth_bias = 50;
  h.line({{0, 0, 0}, {8, 2, 800}});    // shallow: 8 steps of 100
  h.line({{20, 0, 0}, {21, 3, 300}});  // steep: 3 steps of 100
  EXPECT_EQ((std::vector<int>{h.depth(0, 0), h.depth(1, 0), h.depth(4, 1), h.depth(8, 2), h.depth(20, 1),
                              h.depth(21, 2)}),
            (std::vector<int>{0, 100, 400, 800, 100, 200}));
}

// The RGB32 depth walkers follow "ZBuffer Test" and "ZBuffer Write", the
// mapped one neither; the final pixel follows at-or-below and always
// writes its depth, in every depth form.
TEST_P(Line_Depth, WalkersAndTheFinalPixelFollowTheirOwnRules) {
  const Mode_Case& mode = GetParam();
  Renderer_Harness h(mode);
  h.set_depth_test(5);
  h.line({{0, 0, 100}, {10, 0, 100}});
  EXPECT_EQ(h.drawn(), (mode.mapped() ? rows_of({{0, {0, 10}}}) : Pixels{{10, 0}}));
  EXPECT_EQ(h.depth(10, 0), 100);
  h.set_depth_test(2);
  h.set_depth_write(0);
  h.line({{0, 2, 100}, {10, 2, 300}});
  EXPECT_EQ(h.depth(5, 2), mode.mapped() ? 200 : 0xFFFF);
  EXPECT_EQ(h.depth(10, 2), 300);
  EXPECT_EQ(h.pixel(5, 2), h.drawn_value());
  // Final pixel: z compared as a signed number, stored as 16 bits.
  h.line({{0, 4, 5}, {10, 4, -1}});
  EXPECT_EQ(h.depth(10, 4), 0xFFFF);
  EXPECT_EQ(h.pixel(10, 4), h.drawn_value());
  h.poke_depth(10, 6, 50);
  h.poke_depth(10, 7, 50);
  h.line({{0, 6, 5}, {10, 6, 51}});
  h.line({{0, 7, 5}, {10, 7, 50}});
  EXPECT_EQ(h.pixel(10, 6), h.clear_value());
  EXPECT_EQ(h.pixel(10, 7), h.drawn_value());
  // depth_enabled 0: no read, no write.
  h.poke_depth(5, 8, 0);
  h.rendition().writable_device()->depth_enabled = 0;
  h.line({{0, 8, 7}, {10, 8, 7}});
  EXPECT_EQ(h.depth(5, 8), 0);
  EXPECT_EQ(h.depth(6, 8), 0xFFFF);
  EXPECT_EQ(h.pixel(5, 8), h.drawn_value());
}

INSTANTIATE_TEST_SUITE_P(DepthModes, Line_Depth, ::testing::ValuesIn(kDepthModes), mode_name);

// ---- Clip path (tests/tarn_differential_test.cpp compares random polylines) ----------

// Down and to the left, steep: the clipped walker has no correction, and
// row_at follows it; the drawn segment differs from the unclipped one.
TEST(Line_Clip, CodeSevenTakesTheUncorrectedColumn) {
  const OT_DCI_Point a{140, 180, 0}, b{95, 60, 0};
  const Clip_Line line = make_clip_line(a, b);
  ASSERT_EQ(line.code, 7);
  const OT_Int_Rectangle clip{100, 130, 60, 190};
  // The step is -45 * 65536 / 120 = -24576; at x 130 the row is 180 - 1 +
  // (10 * 65536 - 0x8000) / step = 179 - 25, at x 100 it is 180 + (40 *
  // 65536 + 0x8000) / step = 180 - 108, both truncated toward zero.
  EXPECT_EQ(std::pair(row_at(line, clip.right, clip), row_at(line, clip.left, clip)), std::pair(154, 72));
  // The other steep codes with the same magnitudes have no such rows.
  EXPECT_EQ(
      (std::vector{make_clip_line({10, 5, 0}, {12, 30, 0}).code, make_clip_line({10, 30, 0}, {12, 5, 0}).code,
                   make_clip_line({12, 5, 0}, {10, 30, 0}).code}),
      (std::vector{16, 10, 13}));
}

// Segments whose outcodes share no bit but that pass a corner outside.
TEST_P(Lines, SegmentPassingACornerDrawsNothing) {
  Renderer_Harness h(GetParam(), 256, 256);
  h.set_hard_clip({100, 130, 60, 190});
  for (const Points& miss : {Points{{90, 180, 5}, {125, 220, 5}}, Points{{90, 70, 5}, {125, 30, 5}},
                             Points{{105, 230, 5}, {140, 185, 5}}, Points{{105, 20, 5}, {140, 70, 5}}})
    h.line_2di(miss);
  EXPECT_TRUE(h.drawn().empty());
  h.line_2di({{90, 175, 5}, {125, 215, 5}});
  EXPECT_FALSE(h.drawn().empty());
}

// Lists of 64 and 65 points (fixed and allocated outcodes) give the pixels
// of the unclipped walk inside the clip.
TEST(Line_Clip, LongListsAgreeWithTheUnclippedWalk) {
  for (int n : {64, 65}) {
    Points zigzag;
    for (int i = 0; i < n; ++i) zigzag.push_back({2 * i, i % 2 ? 90 : 5, 7});
    Renderer_Harness whole(kRgb32, 136, 96), clipped(kRgb32, 136, 96);
    const OT_Int_Rectangle clip{24, 100, 16, 80};
    clipped.set_hard_clip(clip);
    whole.line(zigzag);
    clipped.line_2di(zigzag);
    EXPECT_TRUE(matches_inside_clip(clipped, whole, clip)) << n;
  }
}

TEST(Line_Clip, FarEndsAreCutToTheLimitsFirst) {
  OT_DCI_Point out[2];
  auto cut = [&out](OT_DCI_Point a, OT_DCI_Point b, bool depth) {
    return clip_segment_to_limits(a, b, out, depth)
               ? std::vector{out[0].x, out[0].y, out[0].z, out[1].x, out[1].y, out[1].z}
               : std::vector<int>{};
  };
  EXPECT_EQ(cut({-100000, 5, 9}, {100, 5, 3}, false), (std::vector{-4000, 5, 0, 100, 5, 3}));
  EXPECT_EQ(cut({-100000, 5, 9}, {100, 5, 3}, true)[2], 3);  // 9 - 6 * 96000 / 100100 = 3.25
  EXPECT_EQ(cut({-4000, 28760, 1}, {28760, -4000, 2}, false),
            (std::vector{-4000, 28760, 1, 28760, -4000, 2}));
  EXPECT_EQ(cut({-5000, 0, 0}, {-4001, 10, 0}, false), std::vector<int>{});
  EXPECT_EQ(cut({0, 30000, 0}, {0, -30000, 0}, false), (std::vector{0, 28760, 0, 0, -4000, 0}));
}

INSTANTIATE_TEST_SUITE_P(AllModes, Lines, ::testing::ValuesIn(kAllModes), mode_name);

}  // namespace
}  // namespace tarn::testing
