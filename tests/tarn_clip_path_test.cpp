// The 2D and 2DI triangle forms: what they draw inside the hard clip must be
// what the all-inside form draws there, and nothing may land outside it,
// wherever the points lie.
#include <random>

#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

constexpr int kWidth = 128, kHeight = 96;
constexpr OT_Int_Rectangle kClip{24, 100, 16, 80};

bool inside(const OT_Int_Rectangle& r, int x, int y) {
  return x >= r.left && x <= r.right && y >= r.bottom && y <= r.top;
}

class Clip_Path : public ::testing::TestWithParam<Mode_Case> {};

// Random strips inside the image, drawn whole through the DCI form and
// clipped through the 2DI form: equal inside the clip, untouched outside it.
TEST_P(Clip_Path, ClippedStripsAgreeWithUnclippedOnesInsideTheClip) {
  std::mt19937 random(7001);
  std::uniform_int_distribution<int> x(0, kWidth - 1), y(0, kHeight - 1), length(3, 9), depth(0, 60000);
  Renderer_Harness whole(GetParam(), kWidth, kHeight), clipped(GetParam(), kWidth, kHeight);
  clipped.set_hard_clip(kClip);
  for (int strip = 0; strip < 200; ++strip) {
    whole.clear();
    clipped.set_hard_clip({0, kWidth - 1, 0, kHeight - 1});
    clipped.clear();
    clipped.set_hard_clip(kClip);
    std::vector<OT_DCI_Point> points;
    const int z = depth(random);
    for (int i = length(random); i > 0; --i) points.push_back({x(random), y(random), z});
    whole.draw_dci(points);
    clipped.draw_2di(points);
    for (int py = 0; py < kHeight; ++py)
      for (int px = 0; px < kWidth; ++px) {
        const std::uint32_t expected = inside(kClip, px, py) ? whole.pixel(px, py) : clipped.clear_value();
        ASSERT_EQ(clipped.pixel(px, py), expected) << "strip " << strip << " at " << px << "," << py;
        if (GetParam().depth() && inside(kClip, px, py)) {
          ASSERT_EQ(clipped.depth(px, py), whole.depth(px, py)) << "strip " << strip << " at " << px << "," << py;
        }
      }
  }
}

TEST_P(Clip_Path, FloatFormRoundsAllThreeCoordinatesThenClips) {
  Renderer_Harness a(GetParam(), kWidth, kHeight), b(GetParam(), kWidth, kHeight);
  a.set_hard_clip(kClip);
  b.set_hard_clip(kClip);
  a.draw_2d({{10.5f, 5.4f, 99.5f}, {110.49f, 30.f, 99.5f}, {40.f, 90.5f, 99.5f}, {120.f, 85.f, 99.5f}});
  b.draw_2di({{11, 5, 100}, {110, 30, 100}, {40, 91, 100}, {120, 85, 100}});
  EXPECT_EQ(a.snapshot(), b.snapshot());
  EXPECT_FALSE(a.drawn().empty());
  if (GetParam().depth()) {
    EXPECT_EQ(a.depth(60, 50), 100);
  }
}

TEST_P(Clip_Path, OnlyTheClipsLastRowForATriangleStartingThere) {
  Renderer_Harness h(GetParam(), kWidth, kHeight);
  h.set_hard_clip(kClip);
  h.draw_2di({{30, 80, 0}, {60, 80, 0}, {45, 95, 0}});
  std::set<std::pair<int, int>> expected;
  for (int x = 30; x < 60; ++x) expected.insert({x, 80});
  EXPECT_EQ(h.drawn(), expected);
}

TEST_P(Clip_Path, ListWhollyOutsideDrawsNothing) {
  Renderer_Harness h(GetParam(), kWidth, kHeight);
  h.set_hard_clip(kClip);
  h.draw_2di({{0, 0, 0}, {20, 0, 0}, {0, 15, 0}, {20, 15, 0}});    // beyond the left and bottom
  h.draw_2di({{110, 10, 0}, {127, 10, 0}, {115, 95, 0}});          // beyond the right
  EXPECT_TRUE(h.drawn().empty());
}

// ---- Points anywhere in the 32-bit range -----------------------------------

// Images with guard bytes on both sides, to catch a write outside.
struct Guarded_Images {
  static constexpr std::size_t kGuard = 4096;
  static constexpr byte kGuardByte = 0xA5;
  std::vector<std::unique_ptr<std::vector<byte>>> blocks;

  static void make(void* context, int width, int height, const OT_Image_Format* format, OT_Shared_Image* out) {
    auto* self = static_cast<Guarded_Images*>(context);
    const int row_bytes = width * OT_Shared_Image_Data::pixel_bytes(*format);
    auto block = std::make_unique<std::vector<byte>>(kGuard * 2 + std::size_t(row_bytes) * height, kGuardByte);
    *out = OT_Shared_Image(width, height, *format, row_bytes, block->data() + kGuard, false);
    self->blocks.push_back(std::move(block));
  }

  bool intact() const {
    for (const auto& block : blocks) {
      for (std::size_t i = 0; i < kGuard; ++i)
        if ((*block)[i] != kGuardByte || (*block)[block->size() - 1 - i] != kGuardByte) return false;
    }
    return true;
  }
};

TEST_P(Clip_Path, FarPointsNeitherCrashNorWriteOutsideTheClip) {
  Guarded_Images images;
  Renderer_Harness h(GetParam(), kWidth, kHeight, {0, 0}, {&images, &Guarded_Images::make});
  h.set_hard_clip(kClip);
  const int far = 1000000;
  // A triangle holding the whole window: everything inside the clip, once.
  h.draw_2di({{-far, -far, 10}, {far, -far / 2, 10}, {0, far, 10}});
  for (int py = 0; py < kHeight; ++py)
    for (int px = 0; px < kWidth; ++px)
      ASSERT_EQ(h.pixel(px, py), inside(kClip, px, py) ? h.drawn_value() : h.clear_value()) << px << "," << py;
  if (GetParam().depth()) {
    EXPECT_EQ(h.depth(50, 50), 10);
  }

  std::mt19937 random(99);
  std::uniform_int_distribution<int> coordinate(-far, far);
  std::uniform_int_distribution<int> any(INT32_MIN, INT32_MAX);
  for (int strip = 0; strip < 300; ++strip) {
    std::vector<OT_DCI_Point> points;
    for (int i = 0; i < 5; ++i) {
      const bool huge = strip % 3 == 2;
      points.push_back({huge ? any(random) : coordinate(random), huge ? any(random) : coordinate(random), 5});
    }
    h.draw_2di(points);
    std::vector<OT_Point> floats;
    for (const OT_DCI_Point& p : points) floats.push_back({float(p.x), float(p.y), 5.f});
    h.draw_2d(floats);
  }
  for (int py = 0; py < kHeight; ++py)
    for (int px = 0; px < kWidth; ++px)
      if (!inside(kClip, px, py)) {
        ASSERT_EQ(h.pixel(px, py), h.clear_value()) << px << "," << py;
      }
  EXPECT_TRUE(images.intact());
}

INSTANTIATE_TEST_SUITE_P(AllModes, Clip_Path, ::testing::ValuesIn(kAllModes), mode_name);

TEST(Clip_Path_Colorized, ClippedListsStepTheirColoursLikeTheUnclippedOnes) {
  std::mt19937 random(31);
  std::uniform_int_distribution<int> x(0, kWidth - 1), y(0, kHeight - 1), channel(0, 255);
  for (const Mode_Case& mode : kAllModes) {
    Renderer_Harness whole(mode, kWidth, kHeight), clipped(mode, kWidth, kHeight);
    for (int strip = 0; strip < 60; ++strip) {
      whole.clear();
      clipped.set_hard_clip({0, kWidth - 1, 0, kHeight - 1});
      clipped.clear();
      clipped.set_hard_clip(kClip);
      std::vector<OT_DCI_Point> points;
      std::vector<OT_RGB32> colors;
      for (int i = 0; i < 7; ++i) points.push_back({x(random), y(random), 100});
      for (int i = 0; i < 5; ++i)
        colors.push_back(OT_RGB32::rgba(channel(random), channel(random), channel(random), 255));
      whole.renderer().draw_dci_colorized_polytriangle(whole.rendition(), 7, points.data(), colors.data(), false);
      clipped.renderer().draw_2di_colorized_polytriangle(clipped.rendition(), 7, points.data(), colors.data(),
                                                          false);
      for (int py = kClip.bottom; py <= kClip.top; ++py)
        for (int px = kClip.left; px <= kClip.right; ++px) {
          if (mode.mapped()) {
            // Crossing triangles dither in the addition form, runs in the
            // comparison form: the same pixels are drawn, their indices may
            // differ by a level.
            ASSERT_EQ(clipped.pixel(px, py) != 0, whole.pixel(px, py) != 0) << mode.name << " " << px << "," << py;
          } else {
            ASSERT_EQ(clipped.pixel(px, py), whole.pixel(px, py)) << mode.name << " " << px << "," << py;
          }
        }
    }
  }
}

}  // namespace
}  // namespace tarn::testing
