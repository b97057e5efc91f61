// The 2D and 2DI triangle forms against the hard clip, through the slots.
#include <array>
#include <cmath>

#include "pixel/merge.h"
#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

constexpr int kWidth = 128, kHeight = 96;
constexpr OT_Int_Rectangle kClip{24, 100, 16, 80};

bool inside(int x, int y) {
  return x >= kClip.left && x <= kClip.right && y >= kClip.bottom && y <= kClip.top;
}

// Draws `points` whole through DCI in one harness and clipped through 2DI
// in another: inside the clip colour and depth agree, outside nothing.
void expect_clipped_like_whole(const Mode_Case& mode, const Points& points) {
  Renderer_Harness whole(mode, kWidth, kHeight), clipped(mode, kWidth, kHeight);
  clipped.set_hard_clip(kClip);
  whole.draw_dci(points);
  clipped.draw_2di(points);
  int shown = 0;
  for (int y = 0; y < kHeight; ++y)
    for (int x = 0; x < kWidth; ++x) {
      ASSERT_EQ(clipped.pixel(x, y), inside(x, y) ? whole.pixel(x, y) : clipped.clear_value())
          << x << "," << y;
      if (mode.depth()) {
        ASSERT_EQ(clipped.depth(x, y), inside(x, y) ? whole.depth(x, y) : 0xFFFF) << x << "," << y;
      }
      shown += inside(x, y) && whole.pixel(x, y) != whole.clear_value();
    }
  EXPECT_GT(shown, 0);
}

class Clip_Path : public ::testing::TestWithParam<Mode_Case> {};

TEST_P(Clip_Path, StripsCrossingEachSideAgreeWithTheUnclippedWalk) {
  // Inside, then a middle point beyond the left, the right, the bottom,
  // the top. One depth a strip: crossing spans step depth by their own rule.
  expect_clipped_like_whole(GetParam(), {{30, 20, 900}, {90, 25, 900}, {40, 70, 900}, {95, 75, 900}});
  expect_clipped_like_whole(GetParam(),
                            {{30, 20, 3000}, {5, 40, 3000}, {60, 60, 3000}, {70, 30, 3000}, {2, 90, 3000}});
  expect_clipped_like_whole(GetParam(),
                            {{40, 30, 65534}, {120, 45, 65534}, {60, 60, 65534}, {127, 2, 65534}});
  expect_clipped_like_whole(GetParam(), {{1, 1, 7}, {126, 3, 7}, {3, 94, 7}, {125, 93, 7}});
  // A triangle that reaches only the clip's last row: that row is drawn.
  expect_clipped_like_whole(GetParam(), {{30, 80, 0}, {60, 80, 0}, {45, 95, 0}});
  expect_clipped_like_whole(GetParam(), {{33, 5, 0}, {64, 20, 0}, {90, 3, 0}});
}

TEST_P(Clip_Path, FloatFormRoundsAllThreeCoordinatesThenClips) {
  Renderer_Harness a(GetParam(), kWidth, kHeight), b(GetParam(), kWidth, kHeight);
  a.set_hard_clip(kClip);
  b.set_hard_clip(kClip);
  a.draw_2d({{10.5f, 5.4f, 99.5f}, {110.49f, 30.f, 99.5f}, {40.f, 90.5f, 99.5f}, {120.f, 85.f, 99.5f}});
  b.draw_2di({{11, 5, 100}, {110, 30, 100}, {40, 91, 100}, {120, 85, 100}});
  EXPECT_EQ(a.snapshot(), b.snapshot());
  EXPECT_FALSE(a.drawn().empty());
}

TEST_P(Clip_Path, ListsWhollyOutsideDrawNothing) {
  Renderer_Harness h(GetParam(), kWidth, kHeight);
  h.set_hard_clip(kClip);
  h.draw_2di({{0, 0, 0}, {20, 0, 0}, {0, 15, 0}, {20, 15, 0}});
  h.draw_2di({{110, 10, 0}, {127, 10, 0}, {115, 95, 0}});
  h.draw_2di({{30, 81, 0}, {90, 81, 0}, {60, 95, 0}});
  EXPECT_TRUE(h.drawn().empty());
}

// Images with guard bytes on both sides, to catch a write outside.
struct Guarded_Images {
  static constexpr std::size_t kGuard = 4096;
  std::vector<std::unique_ptr<std::vector<byte>>> blocks;
  static void make(void* context, int width, int height, const OT_Image_Format* format,
                   OT_Shared_Image* out) {
    const int row_bytes = width * OT_Shared_Image_Data::pixel_bytes(*format);
    auto block = std::make_unique<std::vector<byte>>(kGuard * 2 + std::size_t(row_bytes) * height, 0xA5);
    *out = OT_Shared_Image(width, height, *format, row_bytes, block->data() + kGuard, false);
    static_cast<Guarded_Images*>(context)->blocks.push_back(std::move(block));
  }
  bool intact() const {
    for (const auto& b : blocks)
      for (std::size_t i = 0; i < kGuard; ++i)
        if ((*b)[i] != 0xA5 || (*b)[b->size() - 1 - i] != 0xA5) return false;
    return true;
  }
};

TEST_P(Clip_Path, FarPointsFillExactlyTheClipAndWriteNothingOutside) {
  Guarded_Images images;
  Renderer_Harness h(GetParam(), kWidth, kHeight, {0, 0}, {&images, &Guarded_Images::make});
  h.set_hard_clip(kClip);
  const int far = 1000000;
  h.draw_2di({{-far, -far, 10}, {far, -far / 2, 10}, {0, far, 10}});
  h.draw_2di({{INT32_MIN, 5, 3}, {INT32_MAX, 7, 3}, {40, INT32_MAX, 3}, {-far, -far, 3}});
  h.draw_2d({{-3e9f, 50.f, 3}, {3e9f, 52.f, 3}, {40.f, 60.f, 3}});
  for (int y = 0; y < kHeight; ++y)
    for (int x = 0; x < kWidth; ++x)
      ASSERT_EQ(h.pixel(x, y), inside(x, y) ? h.drawn_value() : h.clear_value()) << x << "," << y;
  if (GetParam().depth()) {
    EXPECT_EQ(h.depth(50, 50), 3);
  }
  EXPECT_TRUE(images.intact());
}

INSTANTIATE_TEST_SUITE_P(AllModes, Clip_Path, ::testing::ValuesIn(kAllModes), mode_name);

TEST(Clip_Path_Colorized, CrossingTrianglesTakeTheirOwnColoursFromTheList) {
  const Points strip{{30, 20, 100}, {90, 25, 100}, {5, 60, 100}, {95, 75, 100}, {40, 90, 100}};
  const std::vector<OT_RGB32> colors{OT_RGB32::rgba(255, 0, 0), OT_RGB32::rgba(0, 255, 0),
                                     OT_RGB32::rgba(0, 0, 255)};
  for (const Mode_Case& mode : {kRgb32Alpha, kRgb32, kZRgb32Alpha, kZRgb32}) {
    Renderer_Harness whole(mode, kWidth, kHeight), clipped(mode, kWidth, kHeight);
    clipped.set_hard_clip(kClip);
    whole.colorized(strip, colors, false);
    clipped.renderer().draw_2di_colorized_polytriangle(clipped.rendition(), 5, strip.data(), colors.data(),
                                                       false);
    for (int y = kClip.bottom; y <= kClip.top; ++y)
      for (int x = kClip.left; x <= kClip.right; ++x)
        ASSERT_EQ(clipped.pixel(x, y), whole.pixel(x, y)) << mode.name << " " << x << "," << y;
  }
}

// In the mapped mode under merge with a pattern, crossing triangles merge
// while inside runs store plainly.
TEST(Clip_Path_Merge, MappedPatternMergesOnlyInCrossingTriangles) {
  Renderer_Harness h(kMapped, kWidth, kHeight);
  const byte solid[1] = {0};
  h.rendition().writable_face()->pattern = 74;
  h.rendition().writable_face()->user_pattern = OT_User_Pattern(new OT_User_Pattern_Data(8, 1, solid, 1));
  h.rendition().writable_raster()->write_mode = 20;
  h.set_hard_clip(kClip);
  byte merged = 0;
  for (byte index : {byte(5), byte(3)}) {
    h.set_color({}, index);
    h.draw_2di({{30, 20, 0}, {60, 20, 0}, {30, 40, 0}});   // inside
    h.draw_2di({{70, 20, 0}, {120, 20, 0}, {70, 40, 0}});  // crossing the right side
    merge_mapped(h.renderer(), &merged, index);
  }
  EXPECT_EQ(h.pixel(32, 22), 3u);
  EXPECT_NE(merged, 3);
  EXPECT_EQ(h.pixel(72, 22), merged);
}

}  // namespace
}  // namespace tarn::testing
