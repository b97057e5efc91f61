// Which pixels a solid triangle strip owns, in every mode, through the
// integer and the float forms.
#include <random>

#include "pixel/rounding.h"
#include "tests/tarn_test_support.h"
#include "triangles/triangle_walk.h"

namespace tarn::testing {
namespace {

using Pixels = std::set<std::pair<int, int>>;

class Walk : public ::testing::TestWithParam<Mode_Case> {};

TEST_P(Walk, RightTriangleOwnsItsLeftEdgeAndNotItsRightOrTop) {
  Renderer_Harness h(GetParam());
  h.draw_dci({{10, 10, 0}, {14, 10, 0}, {10, 14, 0}});
  EXPECT_EQ(h.drawn(), rows_of({{10, {10, 13}}, {11, {10, 12}}, {12, {10, 11}}, {13, {10, 10}}}));
  EXPECT_EQ(h.pixel(10, 10), h.drawn_value());
}

TEST_P(Walk, EqualLeastYSkipsTheFirstPartAndDrawsRowTY) {
  Renderer_Harness h(GetParam());
  h.draw_dci({{10, 10, 0}, {20, 10, 0}, {15, 15, 0}});
  EXPECT_EQ(h.drawn(), rows_of({{10, {10, 19}}, {11, {11, 18}}, {12, {12, 17}}, {13, {13, 16}}, {14, {14, 15}}}));
}

TEST_P(Walk, EqualGreatestYLeavesTheRowOfMAndBUndrawn) {
  Renderer_Harness h(GetParam());
  h.draw_dci({{15, 10, 0}, {10, 15, 0}, {20, 15, 0}});
  // Row 10 has a single point: left and right are equal there.
  EXPECT_EQ(h.drawn(), rows_of({{11, {14, 15}}, {12, {13, 16}}, {13, {12, 17}}, {14, {11, 18}}}));
}

TEST_P(Walk, ZeroHeightTrianglesDrawNothing) {
  Renderer_Harness h(GetParam());
  h.draw_dci({{5, 20, 0}, {40, 20, 0}, {20, 20, 0}});
  h.draw_dci({{7, 7, 0}, {7, 7, 0}, {7, 7, 0}});
  EXPECT_TRUE(h.drawn().empty());
}

TEST_P(Walk, FourPointStripCoversItsSquareOnce) {
  Renderer_Harness h(GetParam());
  // Triangles (0,1,2) and (1,2,3), whatever their winding.
  h.draw_dci({{10, 10, 0}, {20, 10, 0}, {10, 20, 0}, {20, 20, 0}});
  Pixels square;
  for (int y = 10; y < 20; ++y)
    for (int x = 10; x < 20; ++x) square.insert({x, y});
  EXPECT_EQ(h.drawn(), square);
}

TEST_P(Walk, SharedEdgeLeavesNoGap) {
  Renderer_Harness h(GetParam());
  // Two triangles meeting on a slanted diagonal fill the quad without a hole.
  h.draw_dci({{3, 2, 0}, {30, 5, 0}, {6, 40, 0}, {33, 37, 0}});
  Renderer_Harness one(GetParam()), two(GetParam());
  one.draw_dci({{3, 2, 0}, {30, 5, 0}, {6, 40, 0}});
  two.draw_dci({{30, 5, 0}, {6, 40, 0}, {33, 37, 0}});
  const Pixels a = one.drawn(), b = two.drawn();
  Pixels both;
  for (const auto& p : a) EXPECT_EQ(b.count(p), 0u) << "overlap at " << p.first << "," << p.second;
  both.insert(a.begin(), a.end());
  both.insert(b.begin(), b.end());
  EXPECT_EQ(h.drawn(), both);
  // Every row of the quad between its two slanted sides is continuous.
  for (int y = 5; y < 37; ++y) {
    int first = -1, last = -1, count = 0;
    for (int x = 0; x < 64; ++x)
      if (both.count({x, y})) {
        if (first < 0) first = x;
        last = x;
        ++count;
      }
    EXPECT_EQ(count, last - first + 1) << "gap in row " << y;
  }
}

TEST_P(Walk, FloatFormRoundsHalvesUpward) {
  Renderer_Harness dc(GetParam()), dci(GetParam());
  dc.draw_dc({{9.5f, 9.5f, 0}, {13.49f, 10.4f, 0}, {10.2f, 13.5f, 0}});
  dci.draw_dci({{10, 10, 0}, {13, 10, 0}, {10, 14, 0}});
  EXPECT_EQ(dc.drawn(), dci.drawn());
  EXPECT_FALSE(dci.drawn().empty());
}

// A zigzag strip of n points across the window.
std::vector<OT_Point> zigzag(int n) {
  std::vector<OT_Point> points;
  for (int i = 0; i < n; ++i)
    points.push_back({0.6f * i + 0.3f, (i % 2) ? 40.4f : 3.6f, 0.0f});
  return points;
}

TEST_P(Walk, FloatFormAgreesWithIntegerFormOnBothSidesOfSixtyFourPoints) {
  for (int n : {64, 65}) {
    Renderer_Harness dc(GetParam()), dci(GetParam());
    const std::vector<OT_Point> points = zigzag(n);
    dc.draw_dc(points);
    std::vector<OT_DCI_Point> rounded;
    for (const OT_Point& p : points) rounded.push_back({round_float(p.x), round_float(p.y), 0});
    dci.draw_dci(rounded);
    EXPECT_EQ(dc.snapshot(), dci.snapshot()) << n << " points";
    EXPECT_GT(dci.drawn().size(), 500u) << n << " points";
  }
}

TEST_P(Walk, WindowOriginShiftsTheImageNotTheDevice) {
  Renderer_Harness h(GetParam(), 64, 48, {100, -20});
  h.draw_dci({{110, -10, 0}, {114, -10, 0}, {110, -6, 0}});
  EXPECT_EQ(h.drawn(), rows_of({{-10, {110, 113}}, {-9, {110, 112}}, {-8, {110, 111}}, {-7, {110, 110}}}));
}

INSTANTIATE_TEST_SUITE_P(AllModes, Walk, ::testing::ValuesIn(kAllModes), mode_name);

// ---- The walk against a direct reading of its rules -----------------------

// Coverage by the rules, row by row: the long edge stepped k times on row k;
// the short edge from the long edge's start (first part, k steps) or from M
// (second part); sides by slope in the first part and by position in the
// second; spans xl <= x < xr of the upper 16 bits.
Pixels coverage_by_rule(OT_DCI_Point t, OT_DCI_Point m, OT_DCI_Point b) {
  if (t.y > m.y) std::swap(t, m);
  if (m.y > b.y) std::swap(m, b);
  if (t.y > m.y) std::swap(t, m);
  Pixels out;
  const int h = b.y - t.y, h1 = m.y - t.y, h2 = b.y - m.y;
  if (h < 1) return out;
  const std::uint32_t l0 = (std::uint32_t(t.x) << 16) + 0x8000u;
  const std::uint32_t dl = std::uint32_t(slope(b.x - t.x, h));
  for (int k = 0; k < h; ++k) {
    const std::uint32_t l = l0 + std::uint32_t(k) * dl;
    std::uint32_t s;
    bool short_left;
    if (k < h1) {
      const std::int32_t ds = slope(m.x - t.x, h1);
      s = l0 + std::uint32_t(k) * std::uint32_t(ds);
      short_left = !(ds > std::int32_t(dl));
    } else {
      const std::uint32_t s0 = (std::uint32_t(m.x) << 16) + 0x8000u;
      s = s0 + std::uint32_t(k - h1) * std::uint32_t(slope(b.x - m.x, h2));
      short_left = s0 < l0 + std::uint32_t(h1) * dl;
    }
    const int xl = int((short_left ? s : l) >> 16), xr = int((short_left ? l : s) >> 16);
    for (int x = xl; x < xr; ++x) out.insert({x, t.y + k});
  }
  return out;
}

TEST(WalkRule, RandomTrianglesMatchTheRuleInEveryMode) {
  std::mt19937 random(20261122);
  std::uniform_int_distribution<int> x(0, 63), y(0, 47);
  for (const Mode_Case& mode : kAllModes) {
    Renderer_Harness h(mode);
    for (int i = 0; i < 150; ++i) {
      const OT_DCI_Point a{x(random), y(random), 0}, b{x(random), y(random), 0}, c{x(random), y(random), 0};
      h.clear();
      h.draw_dci({a, b, c});
      ASSERT_EQ(h.drawn(), coverage_by_rule(a, b, c))
          << mode.name << ": (" << a.x << "," << a.y << ") (" << b.x << "," << b.y << ") (" << c.x << "," << c.y
          << ")";
    }
  }
}

TEST(WalkRule, SlopeShiftsAgreeWithDivisionAndTruncateTowardZero) {
  for (int h : {1, 2, 4, 8})
    for (int d : {-300, -7, -1, 0, 1, 7, 300}) EXPECT_EQ(slope(d, h), (d * 65536) / h) << d << "/" << h;
  EXPECT_EQ(slope(1, 3), 21845);
  EXPECT_EQ(slope(-1, 3), -21845);
  EXPECT_EQ(slope15(1, 3), 10922);
  EXPECT_EQ(slope15(-5, 8), -5 * 4096);
}

}  // namespace
}  // namespace tarn::testing
