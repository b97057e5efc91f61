// Antialiased thin lines through the slots: the triples and their weights,
// worked by hand from the filter table, the limit tests, the joints and
// ends, the unshifted window origin, the modes and tests that turn it off,
// and the clipping driver and the mask against the plain drawing.
#include <map>
#include <random>

#include "pixel/mask.h"
#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

constexpr OT_RGB32 kClear{0, 0, 0, 0};  // so that a write at weight 0 shows

// A harness with antialiased lines on, its window cleared to kClear.
struct Aa_Harness : Renderer_Harness {
  explicit Aa_Harness(const Mode_Case& mode, OT_Int_XY origin = {0, 0})
      : Renderer_Harness(mode, 64, 48, origin) {
    rendition().writable_colors()->window_color = kClear;
    rendition().writable_raster()->advanced_options = OT_Advanced_Antialiased_Lines;
    clear();
  }
};

// Red in a row from column x0 on; -1 leaves a pixel untouched.
struct Row {
  int y, x0;
  std::vector<int> red;
};

// Every pixel of the window: the rows' red at alpha 255, all else untouched.
::testing::AssertionResult holds(const Renderer_Harness& h, const std::vector<Row>& rows) {
  std::map<std::pair<int, int>, std::uint32_t> want;
  for (const Row& row : rows)
    for (std::size_t i = 0; i < row.red.size(); ++i)
      if (row.red[i] >= 0) want[{row.x0 + int(i), row.y}] = OT_RGB32::rgba(row.red[i], 0, 0).word();
  const Software_Z_Buffer& r = const_cast<Renderer_Harness&>(h).renderer();
  for (int y = r.origin_y; y < r.origin_y + r.height; ++y)
    for (int x = r.origin_x; x < r.origin_x + r.width; ++x) {
      const auto it = want.find({x, y});
      const std::uint32_t expected = it == want.end() ? kClear.word() : it->second;
      if (h.pixel(x, y) != expected)
        return ::testing::AssertionFailure()
               << "at " << x << "," << y << ": " << std::hex << h.pixel(x, y) << " not " << expected;
    }
  return ::testing::AssertionSuccess();
}

// Red 255 over black at the weights that occur: 256 -> 255, 151 -> 150,
// 47 -> 46, 0 -> 0 (written: alpha 255).
struct Worked_Case {
  const char* name;
  OT_Int_Rectangle clip;
  Points points;
  bool clipped;  // through draw_2di_polyline
  std::vector<Row> rows;
};

const OT_Int_Rectangle kWhole{0, 63, 0, 47};

const Worked_Case kWorked[] = {
    // Steep, step 1/2: on a centre 256 and 47 beside; half-way the right
    // column rounds in, entries 128 (151) both near, 384 (0) the far one.
    {"steep_centres_and_halves",
     kWhole,
     {{20, 10, 0}, {22, 14, 0}},
     false,
     {{10, 19, {46, 255, 46}},
      {11, 20, {150, 150, 0}},
      {12, 20, {46, 255, 46}},
      {13, 21, {150, 150, 0}},
      {14, 21, {46, 255, 46}}}},
    {"shallow_centres_and_halves",
     kWhole,
     {{10, 20, 0}, {14, 22, 0}},
     false,
     {{19, 10, {46}},
      {20, 10, {255, 150, 46}},
      {21, 10, {46, 150, 255, 150, 46}},
      {22, 11, {0, 46, 150, 255}},
      {23, 13, {0, 46}}}},
    {"horizontal_on_top",
     {0, 63, 5, 30},
     {{10, 30, 0}, {13, 30, 0}},
     false,
     {{29, 10, {46, 46, 46, 46}}, {30, 10, {255, 255, 255, 255}}}},
    {"horizontal_on_bottom",
     {0, 63, 5, 30},
     {{13, 5, 0}, {10, 5, 0}},
     false,
     {{6, 10, {46, 46, 46, 46}}, {5, 10, {255, 255, 255, 255}}}},
    {"vertical_on_left_and_right",
     {8, 50, 0, 47},
     {{8, 10, 0}, {8, 13, 0}},
     false,
     {{10, 8, {255, 46}}, {11, 8, {255, 46}}, {12, 8, {255, 46}}, {13, 8, {255, 46}}}},
    {"vertical_on_right",
     {8, 50, 0, 47},
     {{50, 13, 0}, {50, 11, 0}},
     false,
     {{13, 49, {46, 255}}, {12, 49, {46, 255}}, {11, 49, {46, 255}}}},
    // Diagonals: the first pixel's neighbour behind and the last one's ahead
    // are tested, no other.
    {"diagonal_from_left",
     {10, 40, 0, 47},
     {{10, 5, 0}, {13, 8, 0}},
     false,
     {{5, 10, {255, 46}}, {6, 10, {46, 255, 46}}, {7, 11, {46, 255, 46}}, {8, 12, {46, 255, 46}}}},
    {"diagonal_to_right",
     {10, 40, 0, 47},
     {{38, 5, 0}, {40, 7, 0}},
     false,
     {{5, 37, {46, 255, 46}}, {6, 38, {46, 255, 46}}, {7, 39, {46, 255}}}},
    {"diagonal_leaving_the_clip_untested",
     {10, 40, 0, 47},
     {{12, 20, 0}, {8, 24, 0}},
     false,
     {{20, 11, {46, 255, 46}},
      {21, 10, {46, 255, 46}},
      {22, 9, {46, 255, 46}},
      {23, 8, {46, 255, 46}},
      {24, 8, {255, 46}}}},
    // A point: the triple of a horizontal line.
    {"zero_length",
     kWhole,
     {{30, 30, 0}, {30, 30, 0}},
     false,
     {{29, 30, {46}}, {30, 30, {255}}, {31, 30, {46}}}},
    // The driver's first point counts x = right as outside; a later one
    // doesn't. (40, 20) to beyond: both right, dropped; x = left is inside.
    {"first_point_on_right_dropped", {10, 40, 5, 40}, {{40, 20, 0}, {45, 22, 0}}, true, {}},
    {"first_point_on_right_vertical",
     {10, 40, 5, 40},
     {{40, 20, 0}, {40, 23, 0}},
     true,
     {{20, 39, {46, 255}}, {21, 39, {46, 255}}, {22, 39, {46, 255}}, {23, 39, {46, 255}}}},
    {"first_point_on_left_kept",
     {10, 40, 5, 40},
     {{10, 20, 0}, {5, 22, 0}},
     true,
     {{19, 10, {46}}, {20, 10, {255}}, {21, 10, {46}}}},
    // The end cut at top 3 by truncation: x = 10 + (-60 / 9) = 4, where the
    // line is at y 3.6: its centre row 4 (offset 102, entry 173) lies past
    // the clip and is written. Step 0.9: offsets 25, 230, 281 at x 1; 51,
    // 204, 307 at x 2; 76, 179 at x 3; 153 for row 3 at x 4.
    {"cut_end_past_the_clip",
     {0, 63, 0, 3},
     {{0, 0, 0}, {10, 9, 0}},
     true,
     {{0, 0, {255, 67}},
      {1, 0, {46, 235, 88}},
      {2, 1, {25, 213, 109}},
      {3, 2, {4, 193, 130}},
      {4, 4, {172}}}},
};

class Worked : public ::testing::TestWithParam<Worked_Case> {};

TEST_P(Worked, TriplesAndWeights) {
  const Worked_Case& c = GetParam();
  Aa_Harness h(kRgb32);
  h.set_hard_clip(c.clip);
  c.clipped ? h.line_2di(c.points) : h.line(c.points);
  EXPECT_TRUE(holds(h, c.rows));
}

INSTANTIATE_TEST_SUITE_P(Antialiased, Worked, ::testing::ValuesIn(kWorked),
                         [](const auto& info) { return std::string(info.param.name); });

// A joint is written once, by the segment that starts there; the blend of
// alpha 128: a centre 255 * 128 >> 8 = 127, a neighbour 255 * 128 * 47 >> 16
// = 23; over 127, 127 + (128 * 6016 >> 16) = 138; over 23, 23 + (232 * 6016
// >> 16) = 44. The DCI list and the 2DI list that leaves the window agree.
TEST(Antialiased, JointWrittenOnceUnderBlending) {
  const std::vector<Row> rows = {{9, 10, {23, 23, 23, 23, -1}},
                                 {10, 10, {127, 127, 127, 138, 127, 23}},
                                 {11, 10, {23, 23, 23, 44, 127, 23}},
                                 {12, 13, {23, 127, 23}},
                                 {13, 13, {23, 127, 23}},
                                 {14, 13, {23, 127, 23}}};
  for (bool clipped : {false, true}) {
    Aa_Harness h(kRgb32Alpha);
    h.set_color(OT_RGB32::rgba(255, 0, 0, 128), 0);
    if (clipped) {
      h.line_2di({{10, 10, 0}, {14, 10, 0}, {14, 60, 0}});
      for (int y = 15; y < 48; ++y) ASSERT_EQ(h.pixel(14, y), OT_RGB32::rgba(127, 0, 0).word());
      for (int y = 15; y < 48; ++y) h.poke(14, y, kClear.word()), h.poke(13, y, 0), h.poke(15, y, 0);
    } else {
      h.line({{10, 10, 0}, {14, 10, 0}, {14, 14, 0}});
    }
    EXPECT_TRUE(holds(h, rows)) << clipped;
  }
}

// The driver's later points on the clip's left or right edge are inside: the
// joint there is blended once (127), not by two crossing segments (191).
TEST(Antialiased, LaterPointsOnTheClipEdgeAreInside) {
  Aa_Harness h(kRgb32Alpha);
  h.set_color(OT_RGB32::rgba(255, 0, 0, 128), 0);
  h.set_hard_clip({10, 40, 0, 47});
  h.line_2di({{20, 20, 0}, {10, 20, 0}, {20, 25, 0}});
  h.line_2di({{30, 30, 0}, {40, 30, 0}, {30, 35, 0}});
  h.line_2di({{20, 37, 0}, {25, 47, 0}, {30, 37, 0}});
  h.line_2di({{20, 10, 0}, {25, 0, 0}, {30, 10, 0}});
  for (const auto& [x, y] : {std::pair{10, 20}, {40, 30}, {25, 47}, {25, 0}})
    EXPECT_EQ(h.pixel(x, y), OT_RGB32::rgba(127, 0, 0).word()) << x << "," << y;
}

// The alpha mode: 255 takes the opaque routine, 254 blends: 255 * 254 * 151
// >> 16 = 149 half-way, where the opaque routine has 150. The opaque mode's
// exact cases store the colour whole (alpha 7 kept), its table weights set
// alpha 255; its 2DI driver blends a translucent colour.
TEST(Antialiased, OpaqueAndBlendingRoutines) {
  for (const auto& [alpha, half] : {std::pair{255, 150}, {254, 149}}) {
    Aa_Harness h(kRgb32Alpha);
    h.set_color(OT_RGB32::rgba(255, 0, 0, alpha), 0);
    h.line({{20, 10, 0}, {22, 14, 0}});
    h.line_2di({{30, 10, 0}, {32, 14, 0}, {32, 90, 0}});
    EXPECT_EQ(h.pixel(20, 11), OT_RGB32::rgba(half, 0, 0).word()) << alpha;
    EXPECT_EQ(h.pixel(30, 11), OT_RGB32::rgba(half, 0, 0).word()) << alpha;
  }
  Aa_Harness h(kRgb32);
  h.set_color(OT_RGB32::rgba(255, 0, 0, 7), 0);
  h.line({{10, 5, 0}, {14, 5, 0}, {16, 9, 0}});
  EXPECT_EQ(h.pixel(12, 5), OT_RGB32::rgba(255, 0, 0, 7).word());
  EXPECT_EQ(h.pixel(15, 7), OT_RGB32::rgba(255, 0, 0, 255).word());
  h.line_2di({{10, 20, 0}, {14, 20, 0}, {14, 90, 0}});
  EXPECT_EQ(h.pixel(12, 20), OT_RGB32::rgba(6, 0, 0, 255).word());  // 255 * 7 >> 8
}

// The points index the image as they are: at origin (5, 3) the line at
// (10..13, 10) lands on device (15..18, 13); the clip is in device terms.
TEST(Antialiased, WindowOriginIsNotSubtracted) {
  Aa_Harness h(kRgb32, {5, 3});
  h.line({{10, 10, 0}, {13, 10, 0}});
  EXPECT_TRUE(
      holds(h, {{12, 15, {46, 46, 46, 46}}, {13, 15, {255, 255, 255, 255}}, {14, 15, {46, 46, 46, 46}}}));
  // Points past the image draw what lies inside it, and nothing beyond.
  h.clear();
  h.line({{60, 44, 0}, {70, 50, 0}});
  EXPECT_EQ(h.pixel(65, 47), OT_RGB32::rgba(255, 0, 0).word());
}

// Merge control, the mapped modes and the depth modes draw as without the
// bit; depth off brings it back.
class Turned_Off : public ::testing::TestWithParam<Mode_Case> {};

TEST_P(Turned_Off, DrawsAsWithoutTheBit) {
  const Mode_Case& mode = GetParam();
  const bool rgb32 = !mode.mapped() && !mode.depth();
  for (int setting = 0; setting < 3; ++setting) {
    Aa_Harness with(mode), without(mode);
    for (Renderer_Harness* h :
         {static_cast<Renderer_Harness*>(&with), static_cast<Renderer_Harness*>(&without)}) {
      if (setting == 1) h->rendition().writable_raster()->write_mode = 20;
      if (setting == 2) h->renderer().force_merge = 1;
      if (h == &without) h->rendition().writable_raster()->advanced_options = 0;
      h->line({{3, 3, 0}, {20, 40, 0}, {50, 30, 0}});
      h->line_2di({{-20, 5, 0}, {90, 20, 0}});
      const OT_RGB32 colors[2] = {OT_RGB32::rgba(250, 0, 0), OT_RGB32::rgba(0, 250, 0)};
      const OT_DCI_Point p[3] = {{5, 44, 0}, {30, 20, 0}, {60, 10, 0}};
      h->renderer().draw_dci_colorized_polyline(h->rendition(), 3, p, colors, false);
    }
    EXPECT_EQ(with.snapshot() == without.snapshot(), !rgb32 || setting > 0) << setting;
  }
  if (mode.depth() && !mode.mapped()) {
    Aa_Harness h(mode);
    h.rendition().writable_device()->depth_enabled = 0;
    h.line({{10, 10, 0}, {20, 10, 0}});
    h.line_2di({{10, 20, 0}, {20, 20, 0}});
    EXPECT_NE(h.pixel(15, 11), kClear.word());
    EXPECT_NE(h.pixel(15, 21), kClear.word());
  }
}

INSTANTIATE_TEST_SUITE_P(AllModes, Turned_Off, ::testing::ValuesIn(kAllModes), mode_name);

// Far points are cut with 64-bit products: a diagonal and a horizontal line
// 200000 long draw their pixels inside the clip exactly, the diagonal's
// neighbours tested only beyond its first and last pixel.
TEST(Antialiased, FarPointsCutToTheClip) {
  Aa_Harness diagonal(kRgb32), horizontal(kRgb32);
  diagonal.set_hard_clip({10, 40, 0, 47});
  diagonal.line_2di({{-100000, -100010, 0}, {100000, 99990, 0}});
  std::vector<Row> rows = {{0, 10, {255, 46}}, {30, 39, {46, 255}}};
  for (int y = 1; y < 30; ++y) rows.push_back({y, 9 + y, {46, 255, 46}});
  EXPECT_TRUE(holds(diagonal, rows));
  horizontal.set_hard_clip({10, 40, 0, 47});
  horizontal.line_2di({{-100000, 20, 0}, {100000, 20, 0}});
  const std::vector<int> neighbours(31, 46), centres(31, 255);
  EXPECT_TRUE(holds(horizontal, {{19, 10, neighbours}, {20, 10, centres}, {21, 10, neighbours}}));
}

// Random polylines with points around a smaller hard clip: through the
// driver they draw inside the clip what the whole lines draw, but next to
// the clip's edges: a cut leaves out whole steps, and those whose centre
// lies beyond the edge still reach the edge row with a neighbour, or the row
// inside it from a centre that rounds onto the edge.
TEST(Antialiased, ClippedMatchesWholeInsideTheClip) {
  std::mt19937 random(2026);
  std::uniform_int_distribution<int> x_of(0, 63), y_of(0, 47);
  const OT_Int_Rectangle clip{12, 51, 10, 37};
  int compared = 0;
  for (int round = 0; round < 300; ++round) {
    const Mode_Case& mode = round % 2 ? kRgb32 : kRgb32Alpha;
    Aa_Harness whole(mode), cut(mode);
    const byte alpha = round % 4 == 0 ? 170 : 255;
    Points points;
    for (int i = 0, n = 2 + round % 5; i < n; ++i) points.push_back({x_of(random), y_of(random), 0});
    if (points[0].x == clip.right || points[0].y == clip.top) continue;  // counted outside as a first point
    for (Renderer_Harness* h : {static_cast<Renderer_Harness*>(&whole), static_cast<Renderer_Harness*>(&cut)})
      h->set_color(OT_RGB32::rgba(200, 100, 50, alpha), 0);
    whole.line(points);
    cut.set_hard_clip(clip);
    cut.line_2di(points);
    for (int y = clip.bottom + 2; y <= clip.top - 2; ++y)
      for (int x = clip.left + 2; x <= clip.right - 2; ++x) {
        compared += whole.pixel(x, y) != kClear.word();
        ASSERT_EQ(whole.pixel(x, y), cut.pixel(x, y)) << round << " at " << x << "," << y;
      }
  }
  EXPECT_GT(compared, 20000);
}

// Behind a mask: the plain drawing where the bit is clear, nothing where
// set; translucent colours too, and in the opaque mode the DCI walker. The
// opaque mode's 2DI tests the mask first and antialiases only inside runs.
TEST(Antialiased, MaskedIsPlainIntersectedWithTheMask) {
  std::mt19937 random(77);
  for (int round = 0; round < 60; ++round) {
    // The DCI walker in both modes; the driver, which blends behind the
    // mask, in the alpha mode.
    const bool dci = round % 3 == 0;
    const Mode_Case& mode = dci && round % 2 ? kRgb32 : kRgb32Alpha;
    std::uniform_int_distribution<int> x_of(dci ? 0 : -20, dci ? 63 : 83), y_of(dci ? 0 : -20, dci ? 47 : 67);
    Aa_Harness masked(mode), plain(mode);
    masked.use_mask(box(9.5f, 7.5f, 41.5f, 30.5f));
    Points points;
    for (int i = 0; i < 4; ++i) points.push_back({x_of(random), y_of(random), 0});
    for (Renderer_Harness* h :
         {static_cast<Renderer_Harness*>(&masked), static_cast<Renderer_Harness*>(&plain)}) {
      h->set_color(OT_RGB32::rgba(30, 200, 90, mode.alpha && round % 2 == 0 ? 120 : 255), 0);
      dci ? h->line(points) : h->line_2di(points);
    }
    const Frame_Buffer_Mask& mask = *masked.renderer().mask_cache->head;
    for (int y = 0; y < 48; ++y)
      for (int x = 0; x < 64; ++x)
        ASSERT_EQ(masked.pixel(x, y), masked_bit(mask, x, y) ? kClear.word() : plain.pixel(x, y))
            << round << " at " << x << "," << y;
  }
  for (const Mode_Case* mode : {&kRgb32, &kRgb32Alpha}) {
    Aa_Harness h(*mode);
    h.use_mask(box(-5, -5, 100, 100));
    h.line_2di({{10, 10, 0}, {20, 10, 0}, {20, 90, 0}});
    EXPECT_EQ(h.pixel(15, 11), OT_RGB32::rgba(46, 0, 0).word());                 // the run
    EXPECT_EQ(h.pixel(21, 30) == kClear.word(), mode == &kRgb32) << mode->name;  // the crossing segment
  }
}

// The colorized 2DI list antialiases its inside runs, as the DCI walker
// draws them, and never its crossing segments.
TEST(Antialiased, ColorizedListAntialiasesInsideRunsOnly) {
  Aa_Harness h(kRgb32);
  const OT_DCI_Point p[3] = {{10, 10, 0}, {20, 10, 0}, {20, 90, 0}};
  const OT_RGB32 colors[2] = {OT_RGB32::rgba(255, 0, 0), OT_RGB32::rgba(0, 0, 255)};
  h.renderer().draw_2di_colorized_polyline(h.rendition(), 3, p, colors, false);
  EXPECT_EQ(h.pixel(15, 11), OT_RGB32::rgba(46, 0, 0).word());
  EXPECT_EQ(h.pixel(20, 30), OT_RGB32::rgba(0, 0, 255).word());
  EXPECT_EQ(h.pixel(21, 30), kClear.word());
}

}  // namespace
}  // namespace tarn::testing
