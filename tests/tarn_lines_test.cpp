// Thin polylines: the walker's pixels, the half-open segments and the single
// final pixel, the depth rules, and the clip path against the unclipped walk.
#include <random>

#include "lines/segment_clipper.h"
#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

using Pixels = std::set<std::pair<int, int>>;

void draw_line(Renderer_Harness& h, std::vector<OT_DCI_Point> points) {
  h.renderer().draw_dci_polyline(h.rendition(), static_cast<int>(points.size()), points.data());
}
void draw_clipped_line(Renderer_Harness& h, std::vector<OT_DCI_Point> points) {
  h.renderer().draw_2di_polyline(h.rendition(), static_cast<int>(points.size()), points.data());
}

Pixels columns_by_row(std::vector<std::pair<int, std::pair<int, int>>> rows) { return rows_of(std::move(rows)); }

class Lines : public ::testing::TestWithParam<Mode_Case> {};

TEST_P(Lines, ShallowSegmentsRunARowAtATime) {
  Renderer_Harness h(GetParam());
  draw_line(h, {{0, 0, 0}, {10, 2, 0}});
  // The end point (10, 2) is the polyline's final pixel.
  EXPECT_EQ(h.drawn(), columns_by_row({{0, {0, 2}}, {1, {3, 7}}, {2, {8, 10}}}));
  h.clear();
  draw_line(h, {{10, 0, 0}, {0, 2, 0}});
  EXPECT_EQ(h.drawn(), columns_by_row({{0, {8, 10}}, {1, {3, 7}}, {2, {0, 2}}}));
}

TEST_P(Lines, SteepSegmentsWriteAPixelARow) {
  Renderer_Harness h(GetParam());
  draw_line(h, {{0, 0, 0}, {3, 7, 0}});
  EXPECT_EQ(h.drawn(), (Pixels{{0, 0}, {0, 1}, {1, 2}, {1, 3}, {2, 4}, {2, 5}, {3, 6}, {3, 7}}));
}

TEST_P(Lines, HorizontalBackwardsAndItsFinalPixel) {
  Renderer_Harness h(GetParam());
  draw_line(h, {{5, 3, 0}, {2, 3, 0}});
  EXPECT_EQ(h.drawn(), (Pixels{{5, 3}, {4, 3}, {3, 3}, {2, 3}}));
}

TEST_P(Lines, TwoIdenticalPointsWriteOnePixel) {
  Renderer_Harness h(GetParam());
  draw_line(h, {{7, 9, 0}, {7, 9, 0}});
  EXPECT_EQ(h.drawn(), (Pixels{{7, 9}}));
}

TEST_P(Lines, SteepWithBothNegativeMatchesItsReverse) {
  for (int dx = 1; dx < 9; ++dx)
    for (int dy = dx + 1; dy < 20; ++dy) {
      Renderer_Harness forward(GetParam()), backward(GetParam());
      const OT_DCI_Point a{30, 25, 0}, b{30 - dx, 25 - dy, 0};
      draw_line(forward, {a, b});
      draw_line(backward, {b, a});
      ASSERT_EQ(forward.drawn(), backward.drawn()) << dx << "," << dy;
    }
}

TEST_P(Lines, WideAndPatternedLinesGoToTheHost) {
  Renderer_Harness h(GetParam());
  h.rendition().writable_line()->weight = 1;
  draw_line(h, {{1, 1, 0}, {20, 5, 0}});
  EXPECT_FALSE(h.drawn().empty());
  h.clear();
  // The host's routine breaks the line into dots through the slots; what
  // it writes is its own business, but the renderer's walker is not used:
  // record the calls that come back.
  static int dots = 0;
  dots = 0;
  h.renderer().draw_dci_dot.function = [](OT_Renderer_Data*, const OT_Rendition&, const OT_DCI_Point*,
                                          const OT_RGB32*) { ++dots; };
  h.rendition().writable_line()->weight = 2;
  draw_line(h, {{1, 1, 0}, {20, 5, 0}});
  EXPECT_TRUE(h.drawn().empty());
  EXPECT_GT(dots, 0);
}

INSTANTIATE_TEST_SUITE_P(AllModes, Lines, ::testing::ValuesIn(kAllModes), mode_name);

TEST(LineAlpha, ClosedPolylineBlendsItsFirstPointTwice) {
  Renderer_Harness h(kAllModes[0]);  // rgb32_alpha
  h.rendition().writable_colors()->color = OT_RGB32{200, 0, 0, 128};
  draw_line(h, {{10, 10, 0}, {20, 10, 0}, {20, 20, 0}, {10, 10, 0}});
  // Once: 0 + (200 * 128 >> 8) = 100; twice: 100 + ((200 - 100) * 128 >> 8) = 150.
  EXPECT_EQ(h.pixel(10, 10), (OT_RGB32{150, 0, 0, 255}.word()));
  EXPECT_EQ(h.pixel(20, 10), (OT_RGB32{100, 0, 0, 255}.word()));
}

TEST(LineAlpha, OpaqueSingleColourStoresItsAlphaByte) {
  Renderer_Harness h(kAllModes[0]);
  h.rendition().writable_colors()->color = OT_RGB32{1, 2, 3, 255};
  draw_line(h, {{0, 0, 0}, {5, 0, 0}});
  EXPECT_EQ(h.pixel(2, 0), (OT_RGB32{1, 2, 3, 255}.word()));
  h.rendition().writable_colors()->color = OT_RGB32{1, 2, 3, 254};
  draw_line(h, {{0, 1, 0}, {5, 1, 0}});
  EXPECT_EQ(h.pixel(2, 1) >> 24, 255u);
}

TEST(LineDepth, FinalPixelIgnoresTheOptions) {
  Renderer_Harness h(kAllModes[5]);  // z_rgb32
  int five = 5;
  renderer_of(&h.renderer()).depth_test = five;
  draw_line(h, {{0, 0, 100}, {10, 0, 100}});
  // Greater-than against the cleared 0xFFFF fails everywhere but at the last
  // point, which follows at-or-below.
  EXPECT_EQ(h.drawn(), (Pixels{{10, 0}}));
  EXPECT_EQ(h.depth(10, 0), 100);
}

TEST(LineDepth, FinalPixelWritesDepthEvenWithoutZBufferWrite) {
  Renderer_Harness h(kAllModes[5]);
  h.renderer().depth_write = 0;
  draw_line(h, {{0, 0, 100}, {10, 0, 300}});
  EXPECT_EQ(h.depth(5, 0), 0xFFFF);
  EXPECT_EQ(h.depth(10, 0), 300);
  EXPECT_EQ(h.pixel(5, 0), h.drawn_value());
}

TEST(LineDepth, DepthStepsAlongTheMajorAxis) {
  Renderer_Harness h(kAllModes[3]);  // z_mapped
  draw_line(h, {{0, 0, 0}, {8, 2, 800}});
  // Shallow: |dx| = 8 steps of 100.
  EXPECT_EQ(h.depth(0, 0), 0);
  EXPECT_EQ(h.depth(1, 0), 100);
  EXPECT_EQ(h.depth(4, 1), 400);
  EXPECT_EQ(h.depth(8, 2), 800);
}

// ---- Clip path ---------------------------------------------------------------

constexpr int kWidth = 128, kHeight = 96;
constexpr OT_Int_Rectangle kClip{24, 100, 16, 80};

bool inside(int x, int y) { return x >= kClip.left && x <= kClip.right && y >= kClip.bottom && y <= kClip.top; }

class Line_Clip : public ::testing::TestWithParam<Mode_Case> {};

// Every segment both ways: clipped and unclipped agree inside the clip, but
// for the one-column difference that clipped steep segments of direction
// code 7 may show; those are left out here and tested on their own.
TEST_P(Line_Clip, ClippedSegmentsAgreeWithUnclippedOnes) {
  std::mt19937 random(4242);
  std::uniform_int_distribution<int> x(0, kWidth - 1), y(0, kHeight - 1);
  Renderer_Harness whole(GetParam(), kWidth, kHeight), clipped(GetParam(), kWidth, kHeight);
  int compared = 0;
  while (compared < 300) {
    const OT_DCI_Point a{x(random), y(random), 50}, b{x(random), y(random), 50};
    if (direction_code(b.x - a.x, b.y - a.y) == 7) continue;
    ++compared;
    whole.clear();
    clipped.set_hard_clip({0, kWidth - 1, 0, kHeight - 1});
    clipped.clear();
    clipped.set_hard_clip(kClip);
    draw_line(whole, {a, b});
    draw_clipped_line(clipped, {a, b});
    for (int py = 0; py < kHeight; ++py)
      for (int px = 0; px < kWidth; ++px) {
        const std::uint32_t expected = inside(px, py) ? whole.pixel(px, py) : clipped.clear_value();
        ASSERT_EQ(clipped.pixel(px, py), expected)
            << "(" << a.x << "," << a.y << ")-(" << b.x << "," << b.y << ") at " << px << "," << py;
      }
  }
}

TEST_P(Line_Clip, FarEndsNeverWriteOutsideTheClip) {
  std::mt19937 random(17);
  std::uniform_int_distribution<int> any(INT32_MIN, INT32_MAX), near(-200000, 200000);
  Renderer_Harness h(GetParam(), kWidth, kHeight);
  h.set_hard_clip(kClip);
  for (int i = 0; i < 2000; ++i) {
    std::vector<OT_DCI_Point> points;
    for (int k = 0; k < 4; ++k) {
      const bool huge = i % 2;
      points.push_back({huge ? any(random) : near(random), huge ? any(random) : near(random), 7});
    }
    draw_clipped_line(h, points);
  }
  for (int py = 0; py < kHeight; ++py)
    for (int px = 0; px < kWidth; ++px)
      if (!inside(px, py)) {
        ASSERT_EQ(h.pixel(px, py), h.clear_value()) << px << "," << py;
      }
}

TEST_P(Line_Clip, LastPointAloneInsideIsWrittenByTheDot) {
  Renderer_Harness h(GetParam(), kWidth, kHeight);
  h.set_hard_clip(kClip);
  draw_clipped_line(h, {{0, 0, 0}, {40, 40, 0}});
  EXPECT_EQ(h.pixel(40, 40), h.drawn_value());
  EXPECT_EQ(h.pixel(24, 24), h.drawn_value());
  EXPECT_EQ(h.pixel(23, 23), h.clear_value());
}

INSTANTIATE_TEST_SUITE_P(AllModes, Line_Clip, ::testing::ValuesIn(kAllModes), mode_name);

TEST(Segment_Limits, CutEndGetsZeroDepthWithoutKeepDepth) {
  OT_DCI_Point out[2];
  ASSERT_TRUE(clip_segment_to_limits({-100000, 5, 9}, {100, 5, 3}, out, false));
  EXPECT_EQ(out[0].x, -4000);
  EXPECT_EQ(out[0].y, 5);
  EXPECT_EQ(out[0].z, 0);
  EXPECT_EQ(out[1].x, 100);
  EXPECT_EQ(out[1].z, 3);
  ASSERT_TRUE(clip_segment_to_limits({-100000, 5, 9}, {100, 5, 3}, out, true));
  // 9 + (3 - 9) * 96000 / 100100 = 3.25, rounded.
  EXPECT_EQ(out[0].z, 3);
}

}  // namespace
}  // namespace tarn::testing
