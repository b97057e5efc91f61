// The 2D and 2DI triangle forms against the hard clip, through the slots:
// what the seeded comparison with DCI cannot show (tests/tarn_differential_test.cpp
// compares crossing strips, colour lists, merge and the float forms).

#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

constexpr int kWidth = 128, kHeight = 96;
constexpr OT_Int_Rectangle kClip{24, 100, 16, 80};

bool inside(int x, int y) {
  return x >= kClip.left && x <= kClip.right && y >= kClip.bottom && y <= kClip.top;
}

class Clip_Path : public ::testing::TestWithParam<Mode_Case> {};

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

}  // namespace
}  // namespace tarn::testing
