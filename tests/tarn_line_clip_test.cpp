// The helpers of the line clip path: direction codes, the walker state of a
// clipped segment, the row at which the unclipped walker crosses a side of
// the hard clip, the rows of a crossing segment with its corner test, and
// the cut to the coordinate limits.
#include <algorithm>
#include <random>
#include <vector>

#include "lines/segment_clipper.h"
#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

// ---- Direction codes and the clipped walker's state ------------------------------

// dy 0: 0 point, 1, 2 horizontal; dx 0: 3, 4 vertical; then by (dy, dx)
// signs (-,-) 5, (-,+) 8, (+,-) 11, (+,+) 14, plus 0 shallow, 1 diagonal,
// 2 steep.
int expected_code(int dx, int dy) {
  if (dy == 0) return dx == 0 ? 0 : dx < 0 ? 1 : 2;
  if (dx == 0) return dy < 0 ? 3 : 4;
  int base = 0;
  if (dy < 0 && dx < 0) base = 5;
  if (dy < 0 && dx > 0) base = 8;
  if (dy > 0 && dx < 0) base = 11;
  if (dy > 0 && dx > 0) base = 14;
  const int adx = std::abs(dx), ady = std::abs(dy);
  return base + (adx > ady ? 0 : adx == ady ? 1 : 2);
}

TEST(Segment_Direction, CodesByTheSignsAndTheMajorAxis) {
  for (int dy = -4; dy <= 4; ++dy)
    for (int dx = -4; dx <= 4; ++dx) EXPECT_EQ(direction_code(dx, dy), expected_code(dx, dy)) << dx << "," << dy;
  EXPECT_EQ(direction_code(-100000, -99999), 5);
  EXPECT_EQ(direction_code(99999, -100000), 10);
  EXPECT_EQ(direction_code(-7, 7), 12);
  EXPECT_EQ(direction_code(1, 30000), 16);
}

TEST(Segment_Direction, ClipLineStartsAtTheFirstPoint) {
  const Clip_Line shallow = make_clip_line({3, -2, 0}, {13, 2, 0});
  EXPECT_EQ(shallow.code, 14);
  EXPECT_EQ(shallow.pos, 3u << 16);
  EXPECT_EQ(shallow.step, (10 << 16) / 4);
  EXPECT_EQ(shallow.x0, 3);
  EXPECT_EQ(shallow.y0, -2);
  EXPECT_EQ(shallow.rows, 4);
  const Clip_Line steep = make_clip_line({-5, 40, 0}, {-12, 7, 0});
  EXPECT_EQ(steep.code, 7);
  EXPECT_EQ(steep.pos, static_cast<std::uint32_t>(-5) << 16);
  EXPECT_EQ(steep.step, (-7 * 65536) / 33);  // truncated toward zero
  EXPECT_EQ(steep.rows, 33);
}

// ---- row_at against the unclipped walker -----------------------------------------

constexpr int kSize = 256;
constexpr OT_Int_Rectangle kClip{100, 130, 60, 190};

struct Segment_Case {
  OT_DCI_Point a, b;
};

// A segment of the given code that runs across both sides of kClip, start
// and end strictly beyond them.
Segment_Case make_segment(int code, std::mt19937& random) {
  auto pick = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); };
  const int group = (code - 5) / 3, kind = (code - 5) % 3;  // kind: 0 shallow, 1 diagonal, 2 steep
  const int sy = group < 2 ? -1 : 1;
  const int sx = group % 2 == 0 ? -1 : 1;
  for (;;) {
    const int x0 = sx > 0 ? pick(20, kClip.left - 1) : pick(kClip.right + 1, 235);
    const int x1 = sx > 0 ? pick(kClip.right + 1, 235) : pick(20, kClip.left - 1);
    const int adx = std::abs(x1 - x0);
    int ady = 0;
    if (kind == 0) ady = pick(1, adx - 1);
    if (kind == 1) ady = adx;
    if (kind == 2) {
      if (adx >= kSize - 2) continue;
      ady = pick(adx + 1, kSize - 1);
    }
    if (ady > kSize - 1) continue;
    const int y0 = sy > 0 ? pick(0, kSize - 1 - ady) : pick(ady, kSize - 1);
    return {{x0, y0, 0}, {x1, y0 + sy * ady, 0}};
  }
}

// The rows of the steep walk without the correction of segments going down
// and to the left, row by row from the start: the column on each.
std::vector<std::pair<int, int>> uncorrected_steep_walk(const OT_DCI_Point& a, const OT_DCI_Point& b) {
  const int dx = b.x - a.x, dy = b.y - a.y, rows = std::abs(dy), sy = dy < 0 ? -1 : 1;
  const std::int32_t step = static_cast<std::int32_t>((std::int64_t(dx) << 16) / rows);
  std::int32_t pos = (a.x << 16) | 0x8000;
  std::vector<std::pair<int, int>> out;
  for (int k = 0; k < rows; ++k, pos += step) out.push_back({pos >> 16, a.y + sy * k});
  return out;
}

// Where the walker is at column c: the first row in walking order that has
// the column, on the side where the segment enters, the last one on the
// side where it leaves.
int walker_row(const std::vector<int>& rows_with_column, int dy, bool entering) {
  const auto [low, high] = std::minmax_element(rows_with_column.begin(), rows_with_column.end());
  const bool first = entering;
  return (dy > 0) == first ? *low : *high;
}

// The clamp to the clip in y: a line rising to the right can leave the
// rectangle through the top before reaching its right side and come into it
// from below its left side; a falling one the other way round.
int clamp_one_side(int row, int c, int dx, int dy) {
  const bool rising = (dx > 0) == (dy > 0);
  const bool at_right = c == kClip.right;
  return rising == at_right ? std::min(row, kClip.top) : std::max(row, kClip.bottom);
}

TEST(Row_At, MatchesTheUnclippedWalkerOnBothSidesForEveryCode) {
  std::mt19937 random(2024);
  Renderer_Harness h(kAllModes[1], kSize, kSize);  // rgb32
  int compared = 0, clamped = 0, code7_differs = 0;
  for (int code = 5; code <= 16; ++code) {
    for (int n = 0; n < 150; ++n) {
      const Segment_Case s = make_segment(code, random);
      ASSERT_EQ(direction_code(s.b.x - s.a.x, s.b.y - s.a.y), code);
      const int dx = s.b.x - s.a.x, dy = s.b.y - s.a.y;
      h.clear();
      h.renderer().draw_dci_polyline(h.rendition(), 2, &s.a);
      const std::vector<std::pair<int, int>> model = uncorrected_steep_walk(s.a, s.b);
      const Clip_Line line = make_clip_line(s.a, s.b);
      for (const int c : {kClip.left, kClip.right}) {
        std::vector<int> rows;
        if (code == 7) {
          // The clipped walker doesn't correct these; row_at follows it,
          // and the drawn (corrected) walk is off by a column here and there.
          for (const auto& [x, y] : model)
            if (x == c) rows.push_back(y);
          std::vector<int> drawn_rows;
          for (int y = 0; y < kSize; ++y)
            if (h.pixel(c, y) == h.drawn_value()) drawn_rows.push_back(y);
          if (drawn_rows != rows) ++code7_differs;
        } else {
          for (int y = 0; y < kSize; ++y)
            if (h.pixel(c, y) == h.drawn_value()) rows.push_back(y);
        }
        ASSERT_FALSE(rows.empty()) << "code " << code;
        const bool entering = (c == kClip.left) == (dx > 0);
        const int raw = walker_row(rows, dy, entering);
        const int expected = clamp_one_side(raw, c, dx, dy);
        clamped += expected != raw;
        ++compared;
        ASSERT_EQ(row_at(line, c, kClip), expected)
            << "code " << code << " (" << s.a.x << "," << s.a.y << ")-(" << s.b.x << "," << s.b.y << ") at column "
            << c << (entering ? ", entering" : ", leaving");
      }
    }
  }
  EXPECT_EQ(compared, 12 * 150 * 2);
  EXPECT_GT(clamped, 50);
  EXPECT_GT(code7_differs, 0);
}

// The model of the steep walk used for code 7 is the walker's own for the
// steep codes that have no correction.
TEST(Row_At, UncorrectedModelIsTheWalkOfTheOtherSteepCodes) {
  std::mt19937 random(99);
  Renderer_Harness h(kAllModes[1], kSize, kSize);
  for (int code : {10, 13, 16})
    for (int n = 0; n < 30; ++n) {
      const Segment_Case s = make_segment(code, random);
      h.clear();
      h.renderer().draw_dci_polyline(h.rendition(), 2, &s.a);
      std::set<std::pair<int, int>> walked;
      for (const auto& p : uncorrected_steep_walk(s.a, s.b)) walked.insert(p);
      walked.insert({s.b.x, s.b.y});  // the polyline's final pixel
      ASSERT_EQ(h.drawn(), walked) << code;
    }
}

TEST(Row_At, Code7ClippedTakesTheUncorrectedColumn) {
  // Down and to the left, steep: the unclipped walk is lowered by the low
  // bits of step * rows, the clipped one isn't; row_at follows the latter.
  const OT_DCI_Point a{140, 180, 0}, b{95, 60, 0};
  const Clip_Line line = make_clip_line(a, b);
  ASSERT_EQ(line.code, 7);
  const std::int32_t s = line.step;
  // First row at or left of the right side, last row at or right of the left.
  int first = -1, last = -1;
  for (const auto& [x, y] : uncorrected_steep_walk(a, b)) {
    if (first < 0 && x <= kClip.right) first = y;
    if (x >= kClip.left) last = y;
  }
  ASSERT_GE(last, kClip.bottom);
  ASSERT_LE(first, kClip.top);
  EXPECT_EQ(row_at(line, kClip.right, kClip), first);
  EXPECT_EQ(row_at(line, kClip.left, kClip), last);
  EXPECT_EQ(first, a.y - 1 + static_cast<std::int32_t>(((a.x - kClip.right) << 16) - 0x8000) / s);
}

// ---- clip_rows ---------------------------------------------------------------------

TEST(Row_Range, EndsInsideAndOnTheSides) {
  const OT_Int_Rectangle clip = kClip;
  Clip_Rows rows{};
  // From inside to beyond the right side: the start row, the row at the
  // right side, and the end row is included.
  OT_DCI_Point a{110, 100, 0}, b{150, 110, 0};
  ASSERT_TRUE(clip_rows(make_clip_line(a, b), b, 0, 4, clip, rows));
  EXPECT_EQ(rows.first_row, 100);
  EXPECT_EQ(rows.last_row, row_at(make_clip_line(a, b), clip.right, clip));
  EXPECT_TRUE(rows.include_end);
  // From beyond the left side to inside: the end row, left out.
  a = {80, 100, 0};
  b = {120, 130, 0};
  ASSERT_TRUE(clip_rows(make_clip_line(a, b), b, 1, 0, clip, rows));
  EXPECT_EQ(rows.first_row, row_at(make_clip_line(a, b), clip.left, clip));
  EXPECT_EQ(rows.last_row, 130);
  EXPECT_FALSE(rows.include_end);
  // From above the top to below the bottom: the top and the bottom rows.
  a = {110, 200, 0};
  b = {120, 50, 0};
  ASSERT_TRUE(clip_rows(make_clip_line(a, b), b, 2, 8, clip, rows));
  EXPECT_EQ(rows.first_row, clip.top);
  EXPECT_EQ(rows.last_row, clip.bottom);
  EXPECT_TRUE(rows.include_end);
  // A corner code with a side bit takes the side.
  a = {90, 200, 0};
  b = {125, 100, 0};
  ASSERT_TRUE(clip_rows(make_clip_line(a, b), b, 1 | 2, 0, clip, rows));
  EXPECT_EQ(rows.first_row, std::min(row_at(make_clip_line(a, b), clip.left, clip), clip.top));
}

struct Corner_Case {
  OT_DCI_Point a, b;
  short start_code, end_code;
};

// Segments whose outcodes share no bit but which pass a corner outside the
// rectangle, one for each of the four tests, each beside a slightly moved
// one that gets in.
TEST(Row_Range, SegmentPassingACornerIsDropped) {
  const OT_Int_Rectangle clip = kClip;
  const Corner_Case misses[] = {
      {{90, 180, 0}, {125, 220, 0}, 1, 2},  // left, then over the top-left corner
      {{90, 70, 0}, {125, 30, 0}, 1, 8},    // left, then under the bottom-left corner
      {{105, 230, 0}, {140, 185, 0}, 2, 4}, // from the top, past the top-right corner
      {{105, 20, 0}, {140, 70, 0}, 8, 4},   // from below, past the bottom-right corner
  };
  const Corner_Case hits[] = {
      {{90, 175, 0}, {125, 215, 0}, 1, 2},
      {{90, 75, 0}, {125, 35, 0}, 1, 8},
      {{105, 220, 0}, {145, 170, 0}, 2, 4},
      {{105, 30, 0}, {145, 80, 0}, 8, 4},
  };
  for (const Corner_Case& c : misses) {
    ASSERT_EQ(local_outcode(clip, c.a), c.start_code);
    ASSERT_EQ(local_outcode(clip, c.b), c.end_code);
    ASSERT_EQ(c.start_code & c.end_code, 0);
    Clip_Rows rows{};
    EXPECT_FALSE(clip_rows(make_clip_line(c.a, c.b), c.b, c.start_code, c.end_code, clip, rows))
        << c.a.x << "," << c.a.y;
  }
  for (const Corner_Case& c : hits) {
    ASSERT_EQ(local_outcode(clip, c.a), c.start_code);
    ASSERT_EQ(local_outcode(clip, c.b), c.end_code);
    Clip_Rows rows{};
    EXPECT_TRUE(clip_rows(make_clip_line(c.a, c.b), c.b, c.start_code, c.end_code, clip, rows))
        << c.a.x << "," << c.a.y;
  }
}

class Row_Range_Drawn : public ::testing::TestWithParam<Mode_Case> {};

TEST_P(Row_Range_Drawn, SegmentPassingACornerDrawsNothing) {
  Renderer_Harness h(GetParam(), kSize, kSize);
  h.set_hard_clip(kClip);
  const std::vector<std::vector<OT_DCI_Point>> misses{
      {{90, 180, 5}, {125, 220, 5}}, {{90, 70, 5}, {125, 30, 5}}, {{105, 230, 5}, {140, 185, 5}},
      {{105, 20, 5}, {140, 70, 5}}};
  for (const auto& m : misses) h.renderer().draw_2di_polyline(h.rendition(), 2, m.data());
  EXPECT_TRUE(h.drawn().empty());
  const std::vector<OT_DCI_Point> hit{{90, 175, 5}, {125, 215, 5}};
  h.renderer().draw_2di_polyline(h.rendition(), 2, hit.data());
  EXPECT_FALSE(h.drawn().empty());
  for (const auto& [x, y] : h.drawn()) {
    EXPECT_GE(x, kClip.left);
    EXPECT_LE(y, kClip.top);
  }
}

INSTANTIATE_TEST_SUITE_P(Row, Row_Range_Drawn, ::testing::ValuesIn(kAllModes), mode_name);

// ---- The cut to the coordinate limits -----------------------------------------------

TEST(Segment_Limits, InsideTheLimitsNothingChanges) {
  OT_DCI_Point out[2];
  for (bool keep : {false, true}) {
    ASSERT_TRUE(clip_segment_to_limits({-4000, 28760, 11}, {28760, -4000, 12}, out, keep));
    EXPECT_EQ(out[0].x, -4000);
    EXPECT_EQ(out[0].y, 28760);
    EXPECT_EQ(out[0].z, 11);
    EXPECT_EQ(out[1].x, 28760);
    EXPECT_EQ(out[1].y, -4000);
    EXPECT_EQ(out[1].z, 12);
  }
}

TEST(Segment_Limits, OneBeyondIsCutBackToTheLimit) {
  OT_DCI_Point out[2];
  ASSERT_TRUE(clip_segment_to_limits({28761, 5, 9}, {0, 5, 9}, out, true));
  EXPECT_EQ(out[0].x, 28760);
  EXPECT_EQ(out[0].y, 5);
  ASSERT_TRUE(clip_segment_to_limits({0, -4001, 9}, {0, 100, 9}, out, true));
  EXPECT_EQ(out[0].y, -4000);
  EXPECT_EQ(out[0].x, 0);
  ASSERT_TRUE(clip_segment_to_limits({0, 0, 4}, {30000, 300, 1004}, out, true));
  EXPECT_EQ(out[0].x, 0);
  EXPECT_EQ(out[1].x, 28760);
  EXPECT_EQ(out[1].y, 288);  // 300 * 28760 / 30000 = 287.6
  EXPECT_EQ(out[1].z, 963);  // 1000 * 0.95867 + 4
  ASSERT_TRUE(clip_segment_to_limits({0, 0, 4}, {30000, 300, 1004}, out, false));
  EXPECT_EQ(out[1].z, 0);
  EXPECT_EQ(out[0].z, 4);  // an uncut end keeps its z
  ASSERT_TRUE(clip_segment_to_limits({10, 40000, 0}, {10, 0, 0}, out, false));
  EXPECT_EQ(out[0].x, 10);
  EXPECT_EQ(out[0].y, 28760);
  EXPECT_EQ(out[1].y, 0);
}

TEST(Segment_Limits, NothingRemainsBeyondOneLimitOrPastACorner) {
  OT_DCI_Point out[2];
  EXPECT_FALSE(clip_segment_to_limits({-5000, 0, 0}, {-4500, 100, 0}, out, true));
  EXPECT_FALSE(clip_segment_to_limits({100, 29000, 0}, {200, 40000, 0}, out, true));
  // Crossing x = -4000 after leaving past y = -4000.
  EXPECT_FALSE(clip_segment_to_limits({-4800, -3500, 0}, {-3500, -4800, 0}, out, true));
  // Closer to the corner's inside it does get in.
  ASSERT_TRUE(clip_segment_to_limits({-4500, -3000, 0}, {-3000, -4500, 0}, out, true));
  EXPECT_EQ(out[0].x, -4000);
  EXPECT_EQ(out[0].y, -3500);
  EXPECT_EQ(out[1].x, -3500);
  EXPECT_EQ(out[1].y, -4000);
}

TEST(Segment_Limits, HalvesRoundUpAboveZeroAndTowardZeroBelow) {
  OT_DCI_Point out[2];
  // t = 0.5 at the cut: dy * t = -2.5 gives -2, dz * t = 2.5 gives 3.
  ASSERT_TRUE(clip_segment_to_limits({-6000, 0, 0}, {-2000, -5, 5}, out, true));
  EXPECT_EQ(out[0].x, -4000);
  EXPECT_EQ(out[0].y, -2);
  EXPECT_EQ(out[0].z, 3);
  ASSERT_TRUE(clip_segment_to_limits({-6000, 0, 0}, {-2000, 5, -5}, out, true));
  EXPECT_EQ(out[0].y, 3);
  EXPECT_EQ(out[0].z, -2);
}

}  // namespace
}  // namespace tarn::testing
