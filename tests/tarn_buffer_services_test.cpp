// Clearing, reading back and writing the buffers, byte for byte, in both
// colour systems and the depth buffer, and handing a region to the window.
#include <algorithm>

#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

// Images with 8 bytes after every row, so that a fill of whole rows shows.
void padded_factory(void*, int width, int height, const OT_Image_Format* format, OT_Shared_Image* out) {
  *out = OT_Shared_Image(width, height, *format, width * OT_Shared_Image_Data::pixel_bytes(*format) + 8,
                         nullptr, false);
}
const OT_Image_Factory kPadded{nullptr, padded_factory};

int size_of(const OT_Shared_Image_Data& image) { return OT_Shared_Image_Data::pixel_bytes(image.format); }
std::vector<byte> memory_of(const OT_Shared_Image_Data& image) {
  return std::vector<byte>(image.top_rows[0],
                           image.top_rows[0] + std::size_t(image.row_bytes) * image.height);
}
// Offset in memory_of() of pixel x of image row y.
std::size_t offset(const OT_Shared_Image_Data& image, int y, int x) {
  return std::size_t(image.device_rows[y] - image.top_rows[0]) + std::size_t(x) * size_of(image);
}
void put(byte* at, std::uint32_t value, int size) { std::memcpy(at, &value, std::size_t(size)); }
// A value for each pixel, different from its neighbours.
std::uint32_t pattern(int size, int x, int y) {
  return size == 1   ? std::uint32_t(x * 16 + y) & 255
         : size == 2 ? 0x8000u | y << 6 | x
                     : 0x80000000u | y << 8 | x;
}
void fill_pattern(OT_Shared_Image_Data& image) {
  for (int y = 0; y < image.height; ++y)
    for (int x = 0; x < image.width; ++x)
      put(image.device_rows[y] + x * size_of(image), pattern(size_of(image), x, y), size_of(image));
}

struct Clear_Case {
  const char* name;
  OT_Int_XY origin;
  OT_Int_Rectangle clip;  // device coordinates
  int l, r, b, t;         // written, in image coordinates; l > r: nothing
  bool whole_rows;        // rows b..t in full, up to row_bytes
};

// A window of 13 by 9.
const Clear_Case kClearCases[] = {
    {"whole", {0, 0}, {0, 12, 0, 8}, 0, 12, 0, 8, true},
    {"whole_with_origin", {3, 7}, {3, 15, 7, 15}, 0, 12, 0, 8, true},
    {"band_of_whole_rows", {0, 0}, {0, 12, 2, 5}, 0, 12, 2, 5, true},
    {"inner_with_origin", {10, 20}, {12, 16, 23, 25}, 2, 6, 3, 5, false},
    {"short_of_the_right", {0, 0}, {0, 11, 0, 8}, 0, 11, 0, 8, false},
    {"not_from_the_left", {0, 0}, {1, 12, 0, 8}, 1, 12, 0, 8, false},
    {"one_pixel", {0, 0}, {12, 12, 8, 8}, 12, 12, 8, 8, false},
    {"right_and_top_cut", {0, 0}, {3, 40, 4, 30}, 3, 12, 4, 8, false},
    {"left_and_bottom_raised_with_origin", {10, 20}, {0, 14, 10, 26}, 0, 4, 0, 6, false},
    {"last_column_left", {0, 0}, {-10, 0, 0, 8}, 0, 0, 0, 8, false},
    {"wholly_left", {10, 20}, {0, 9, 20, 28}, 1, 0, 0, 0, false},
    {"bottom_row_left", {0, 0}, {0, 5, -10, 0}, 0, 5, 0, 0, false},
    {"wholly_below", {0, 0}, {0, 5, -10, -1}, 1, 0, 0, 0, false},
};

// Each test runs in both colour systems, with a depth buffer.
class Buffers : public ::testing::TestWithParam<std::tuple<Mode_Case, Clear_Case>> {
 protected:
  const Mode_Case& mode() const { return std::get<0>(GetParam()); }
};

TEST_P(Buffers, ClearWritesExactlyTheClippedRectangleOfEachBuffer) {
  const Clear_Case& c = std::get<1>(GetParam());
  Renderer_Harness h(mode(), 13, 9, c.origin, kPadded);
  OT_Rendition_Colors* colors = h.rendition().writable_colors();
  colors->window_index = 0x5A;
  colors->window_color = OT_RGB32{0x11, 0x22, 0x33, 0x44};
  h.set_hard_clip(c.clip);
  for (OT_Shared_Image_Data* image : {h.renderer().color_image.get(), h.renderer().depth_image.get()}) {
    const bool depth = image->format == OT_Image_Format_Depth16;
    // The depth clear takes the clip without a cut: only clips inside.
    if (depth && (c.clip.left < c.origin.x || c.clip.bottom < c.origin.y || c.clip.right > c.origin.x + 12 ||
                  c.clip.top > c.origin.y + 8))
      continue;
    std::memset(image->top_rows[0], 0xEE, std::size_t(image->row_bytes) * image->height);
    std::vector<byte> expected = memory_of(*image);
    const int size = size_of(*image);
    const std::uint32_t value = depth ? 0xFFFF : mode().mapped() ? 0x5A : colors->window_color.word();
    if (c.whole_rows) {
      for (std::size_t i = offset(*image, c.t, 0); i < offset(*image, c.b, 0) + image->row_bytes; i += size)
        put(&expected[i], value, size);
    } else {
      for (int y = c.b; y <= c.t; ++y)
        for (int x = c.l; x <= c.r; ++x) put(&expected[offset(*image, y, x)], value, size);
    }
    if (depth)
      h.renderer().clear_depth(h.rendition());
    else
      h.renderer().clear_color(h.rendition());
    EXPECT_TRUE(memory_of(*image) == expected) << (depth ? "depth" : "colour");
  }
}

INSTANTIATE_TEST_SUITE_P(Clear, Buffers,
                         ::testing::Combine(::testing::Values(kZRgb32, kZMapped),
                                            ::testing::ValuesIn(kClearCases)),
                         [](const auto& info) {
                           return std::string(std::get<0>(info.param).name) + "_" +
                                  std::get<1>(info.param).name;
                         });

class Buffer : public ::testing::TestWithParam<Mode_Case> {};

// With a face pattern the host's rectangle fill takes the raw clip and
// comes back through the triangle slot; the depth clear ignores it.
TEST_P(Buffer, PatternedClearGoesToTheHostsRectangleFillWithTheRawClip) {
  Renderer_Harness h(GetParam(), 13, 9, {3, 7}, kPadded);
  static std::vector<OT_DCI_Point> strip;
  strip.clear();
  h.renderer().draw_dci_polytriangle.function = [](OT_Renderer_Data*, const OT_Rendition&, int n,
                                                   const OT_DCI_Point* p) { strip.assign(p, p + n); };
  set_face_pattern(h.rendition(), 32);
  const OT_Int_Rectangle clip{-3, 20, -2, 30};
  h.set_hard_clip(clip);
  const std::vector<byte> before = memory_of(*h.renderer().color_image);
  h.renderer().clear_color(h.rendition());
  EXPECT_TRUE(memory_of(*h.renderer().color_image) == before);
  ASSERT_EQ(strip.size(), 4u);
  const auto [x0, x1] = std::minmax({strip[0].x, strip[1].x, strip[2].x, strip[3].x});
  const auto [y0, y1] = std::minmax({strip[0].y, strip[1].y, strip[2].y, strip[3].y});
  EXPECT_EQ(std::pair(x0, y0), std::pair(clip.left, clip.bottom));
  EXPECT_TRUE((x1 == clip.right || x1 == clip.right + 1) && (y1 == clip.top || y1 == clip.top + 1))
      << x1 << " " << y1;
  h.poke_depth(5, 9, 7);
  h.set_hard_clip({3, 15, 7, 15});
  h.renderer().clear_depth(h.rendition());
  EXPECT_EQ(std::pair(h.depth(5, 9), h.depth(15, 15)),
            (std::pair<std::uint16_t, std::uint16_t>(0xFFFF, 0xFFFF)));
}

// ---- Reads ---------------------------------------------------------------------------

void read(Renderer_Harness& h, bool depth, OT_DCI_Point first, OT_DCI_Point last, OT_Image_Format format,
          OT_Shared_Image& image) {
  if (depth)
    h.renderer().read_depth_rectangle(h.rendition(), &first, &last, &format, image);
  else
    h.renderer().read_color_rectangle(h.rendition(), &first, &last, &format, image);
}

// Native answers in the buffer's own format; a held image of that size and
// format is reused, another one replaced; another buffer's format gives none.
// The mapped colour read and the depth reads copy without a clip from
// first.y down to last.y, into rows w pixels apart.
TEST_P(Buffer, ReadFormatsHeldImagesAndTheUnclippedCopy) {
  for (bool depth : {false, true}) {
    Renderer_Harness h(GetParam(), 16, 12, {3, 7}, kPadded);
    OT_Shared_Image_Data& source = depth ? *h.renderer().depth_image : *h.renderer().color_image;
    fill_pattern(source);
    const OT_Image_Format own = source.format;
    const OT_Image_Format other =
        own == OT_Image_Format_Index8 ? OT_Image_Format_RGB32 : OT_Image_Format_Index8;
    const OT_DCI_Point first{5, 14, 0}, last{8, 10, 0};
    OT_Shared_Image image;
    read(h, depth, first, last, OT_Image_Format_Native, image);
    ASSERT_TRUE(image);
    EXPECT_EQ((std::vector<int>{image->format, image->width, image->height}), (std::vector<int>{own, 4, 5}));
    for (const OT_Shared_Image& wrong :
         {OT_Shared_Image(5, 5, own, 0, nullptr, false), OT_Shared_Image(4, 5, other, 0, nullptr, false)}) {
      image = wrong;
      read(h, depth, first, last, OT_Image_Format_Native, image);
      ASSERT_TRUE(image);
      EXPECT_NE(image.get(), wrong.get());
      EXPECT_EQ(image->format, own);
      EXPECT_EQ(wrong->count.load(), 1u);
    }
    const int size = size_of(source);
    const OT_Shared_Image held(4, 5, own, 4 * size + 8, nullptr, false);
    image = held;
    read(h, depth, first, last, other, image);
    EXPECT_FALSE(image);
    std::memset(held->top_rows[0], 0xEE, std::size_t(held->row_bytes) * 5);
    std::vector<byte> expected = memory_of(*held);
    for (int row = 0; row < 5; ++row)
      for (int i = 0; i < 4; ++i)
        put(&expected[std::size_t((row * 4 + i) * size)], pattern(size, 2 + i, 7 - row), size);
    image = held;
    read(h, depth, first, last, own, image);
    ASSERT_EQ(image.get(), held.get());
    // The RGB32 read has cuts of its own, below.
    if (depth || GetParam().mapped()) {
      EXPECT_TRUE(memory_of(*held) == expected) << depth;
    }
  }
}

// A full-frame image holds the whole buffer and refreshes only the rows asked
// for, through top_rows by the device row number: a single row too, and the
// bottom row of a request.
TEST(Read, FullFrameImageRefreshesOnlyTheRowsAsked) {
  const struct { int top, bottom; } cases[] = {{4, 4}, {11, 9}, {2, 0}};
  for (const auto& c : cases) {
    Renderer_Harness h(kRgb32, 16, 12);
    OT_Shared_Image_Data& source = *h.renderer().color_image;
    fill_pattern(source);
    OT_Shared_Image image(16, 12, OT_Image_Format_RGB32, source.row_bytes, nullptr, false);
    image->full_frame = 1;
    std::memset(image->top_rows[0], 0xEE, std::size_t(image->row_bytes) * 12);
    const OT_Shared_Image held = image;
    read(h, false, {0, c.top, 0}, {15, c.bottom, 0}, OT_Image_Format_Native, image);
    ASSERT_EQ(image.get(), held.get());
    for (int y = 0; y < 12; ++y) {
      const bool asked = y >= c.bottom && y <= c.top;
      for (int i = 0; i < 64; ++i)
        ASSERT_EQ(image->top_rows[y][i], asked ? source.top_rows[y][i] : byte{0xEE}) << c.top << " " << y;
    }
  }
}

// The RGB32 read cuts at the right, at x 0, at row 0 and at the height of
// the request: rows 100 down to 50 of a buffer 110 high copy row 50 alone.
TEST(Read, Rgb32ReadCopiesWhatTheCutsLeave) {
  const struct {
    OT_Int_XY origin;
    OT_DCI_Point first, last;
    int height, from_y, to_y, x, pixels;
  } cases[] = {{{0, 0}, {13, 4, 0}, {18, 0, 0}, 12, 4, 0, 13, 3},
               {{0, 0}, {-2, 4, 0}, {3, 0, 0}, 12, 4, 0, 0, 4},
               {{0, 0}, {2, 7, 0}, {5, 3, 0}, 12, 4, 3, 2, 4},
               {{0, 0}, {2, 3, 0}, {5, -2, 0}, 12, 3, 0, 2, 4},
               {{3, 7}, {5, 14, 0}, {8, 10, 0}, 12, 4, 3, 2, 4},
               {{0, 0}, {2, 100, 0}, {5, 50, 0}, 110, 50, 50, 2, 4}};
  for (const auto& c : cases) {
    Renderer_Harness h(kRgb32, 16, c.height, c.origin, kPadded);
    fill_pattern(*h.renderer().color_image);
    const int w = c.last.x - c.first.x + 1, rows = c.first.y - c.last.y + 1;
    const OT_Shared_Image held(w, rows, OT_Image_Format_RGB32, w * 4, nullptr, false);
    std::memset(held->top_rows[0], 0xEE, std::size_t(w) * 4 * rows);
    std::vector<byte> expected = memory_of(*held);
    for (int y = c.from_y, row = 0; y >= c.to_y; --y, ++row)
      for (int i = 0; i < c.pixels; ++i)
        put(&expected[std::size_t((row * w + i) * 4)], pattern(4, c.x + i, y), 4);
    OT_Shared_Image image = held;
    read(h, false, c.first, c.last, OT_Image_Format_RGB32, image);
    ASSERT_EQ(image.get(), held.get());
    EXPECT_TRUE(memory_of(*held) == expected) << c.first.x << "," << c.first.y;
  }
}

// ---- Writing depth and the window update ----------------------------------------------

TEST_P(Buffer, WriteDepthRowsFromFirstDownwardsCutOnTheRightOnly) {
  const struct {
    OT_Int_XY origin;
    OT_DCI_Point first, last;
    int row_pixels, rows, x, pixels;
  } cases[] = {{{0, 0}, {2, 6, 0}, {5, 3, 0}, 7, 4, 2, 4},      {{0, 0}, {2, 6, 0}, {5, 3, 0}, -4, 4, 2, 4},
               {{3, 7}, {17, 12, 0}, {25, 11, 0}, 9, 2, 14, 2}, {{0, 0}, {15, 6, 0}, {18, 5, 0}, 4, 2, 15, 1},
               {{0, 0}, {16, 6, 0}, {18, 3, 0}, 4, 0, 0, 0},    {{0, 0}, {2, 3, 0}, {5, 6, 0}, 4, 1, 2, 4}};
  for (const auto& c : cases) {
    Renderer_Harness h(GetParam(), 16, 12, c.origin, kPadded);
    OT_Shared_Image_Data& depth = *h.renderer().depth_image;
    std::memset(depth.top_rows[0], 0x11, std::size_t(depth.row_bytes) * depth.height);
    const int stride = std::abs(c.row_pixels);
    std::vector<std::uint16_t> data(std::size_t(stride) * 6);
    for (std::size_t i = 0; i < data.size(); ++i) data[i] = std::uint16_t(0x4000 + i);
    const int first_row = c.row_pixels < 0 ? 5 : 0;  // a negative pitch steps backwards
    std::vector<byte> expected = memory_of(depth);
    for (int n = 0; n < c.rows; ++n)
      for (int i = 0; i < c.pixels; ++i)
        put(&expected[offset(depth, c.first.y - c.origin.y - n, c.x + i)],
            data[std::size_t((c.row_pixels < 0 ? first_row - n : n) * stride + i)], 2);
    h.renderer().write_depth_rectangle(h.rendition(), &c.first, &c.last, c.row_pixels * 2,
                                       reinterpret_cast<const byte*>(&data[std::size_t(first_row * stride)]));
    EXPECT_TRUE(memory_of(depth) == expected) << c.first.x << "," << c.first.y;
  }
}

TEST(Update, HandsTheRegionToTheWindowInItsDownwardRows) {
  for (const auto& [origin, x, y] : {std::tuple{OT_Int_XY{0, 0}, 10, 84}, std::tuple{OT_Int_XY{3, 7}, 13, 91},
                                     std::tuple{OT_Int_XY{-4, -9}, 6, 75}}) {
    Renderer_Harness h(kRgb32, 32, 100, origin);
    Software_Z_Buffer& r = h.renderer();
    static std::vector<std::vector<std::intptr_t>> calls;
    calls.clear();
    r.window_update.function = [](void*, const OT_DCI_Point* first, const OT_DCI_Point* last,
                                  const OT_Shared_Image* image, int x, int y) {
      calls.push_back({first->x, first->y, last->x, last->y, reinterpret_cast<std::intptr_t>(image), x, y});
    };
    r.update(OT_Int_Rectangle{10, 20, 5, 15});
    // The height is the window's at the time of the call.
    r.requested_renderer_options.set_window_size({32, 120});
    r.update_current_options();
    r.update(OT_Int_Rectangle{10, 20, 5, 15});
    const std::intptr_t image = reinterpret_cast<std::intptr_t>(&r.color_image);
    EXPECT_EQ(calls, (std::vector<std::vector<std::intptr_t>>{{10, 15, 20, 5, image, x, y},
                                                              {10, 15, 20, 5, image, x, y + 20}}));
  }
}

INSTANTIATE_TEST_SUITE_P(ColourSystems, Buffer, ::testing::Values(kZRgb32, kZMapped), mode_name);

}  // namespace
}  // namespace tarn::testing
