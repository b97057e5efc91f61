// Clearing, reading back and writing the buffers, byte for byte, and handing
// a finished region to the window.
#include <algorithm>
#include <tuple>

#include "frame/buffer_services.h"
#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

const Mode_Case& kRgb32 = kAllModes[1];
const Mode_Case& kMapped = kAllModes[2];
const Mode_Case& kZRgb32 = kAllModes[5];
const Mode_Case kDepthModes[] = {kAllModes[3], kAllModes[4], kAllModes[5]};

constexpr byte kMarker = 0xEE;
constexpr byte kWindowIndex = 0x5A;
constexpr OT_RGB32 kWindowColor{0x11, 0x22, 0x33, 0x44};

// Images with 8 bytes after every row, so that a fill of whole rows shows.
constexpr int kPadding = 8;
void padded_factory(void*, int width, int height, const OT_Image_Format* format, OT_Shared_Image* image_out) {
  *image_out =
      OT_Shared_Image(width, height, *format, width * OT_Shared_Image_Data::pixel_bytes(*format) + kPadding, nullptr, false);
}
const OT_Image_Factory kPaddedFactory{nullptr, padded_factory};

int pixel_size(const OT_Shared_Image_Data& image) { return OT_Shared_Image_Data::pixel_bytes(image.format); }

// The image's memory, first row first. Its rows lie row_bytes apart in one block.
std::vector<byte> memory_of(const OT_Shared_Image_Data& image) {
  const byte* first = image.top_rows[0];
  return std::vector<byte>(first, first + std::size_t(image.row_bytes) * image.height);
}

::testing::AssertionResult one_block(const OT_Shared_Image_Data& image) {
  for (int i = 0; i < image.height; ++i)
    if (image.top_rows[i] != image.top_rows[0] + std::ptrdiff_t(i) * image.row_bytes)
      return ::testing::AssertionFailure() << "row " << i << " is not in the block";
  return ::testing::AssertionSuccess();
}

void fill_memory(OT_Shared_Image_Data& image, byte value) {
  std::memset(image.top_rows[0], value, std::size_t(image.row_bytes) * image.height);
}

// Offset in memory_of() of pixel x of device row y (both less the origin).
std::size_t offset(const OT_Shared_Image_Data& image, int y, int x) {
  return std::size_t(image.device_rows[y] - image.top_rows[0]) + std::size_t(x) * pixel_size(image);
}

void put(byte* at, std::uint32_t value, int size) { std::memcpy(at, &value, std::size_t(size)); }
std::uint32_t get(const byte* at, int size) {
  std::uint32_t value = 0;
  std::memcpy(&value, at, std::size_t(size));
  return value;
}

::testing::AssertionResult same_bytes(const std::vector<byte>& actual, const std::vector<byte>& expected) {
  if (actual.size() != expected.size())
    return ::testing::AssertionFailure() << "sizes " << actual.size() << " and " << expected.size();
  std::size_t differences = 0, first = 0;
  for (std::size_t i = 0; i < actual.size(); ++i)
    if (actual[i] != expected[i] && differences++ == 0) first = i;
  if (!differences) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << differences << " bytes differ, the first at offset " << first << ": "
                                       << int(actual[first]) << " where " << int(expected[first]) << " belongs";
}

// A value for each pixel, different from its neighbours and from the marker.
std::uint32_t pattern(OT_Image_Format format, int x, int y) {
  switch (format) {
    case OT_Image_Format_Index8:
      return std::uint32_t(x * 16 + y) & 255;
    case OT_Image_Format_Depth16:
      return 0x8000u | std::uint32_t(y) << 6 | std::uint32_t(x);
    default:
      return 0x80000000u | std::uint32_t(y) << 8 | std::uint32_t(x);
  }
}

void fill_pattern(OT_Shared_Image_Data& image) {
  for (int y = 0; y < image.height; ++y)
    for (int x = 0; x < image.width; ++x)
      put(image.device_rows[y] + x * pixel_size(image), pattern(image.format, x, y), pixel_size(image));
}

// ---- Colour clears ---------------------------------------------------------------

struct Clear_Case {
  const char* name;
  OT_Int_XY origin;
  OT_Int_Rectangle clip;  // device coordinates
  bool writes;
  int l, r, b, t;         // what is written, in image coordinates
  bool whole_rows;        // rows b..t in full, up to row_bytes
};

// A window of 13 by 9.
const Clear_Case kClearCases[] = {
    {"whole", {0, 0}, {0, 12, 0, 8}, true, 0, 12, 0, 8, true},
    {"whole_with_origin", {3, 7}, {3, 15, 7, 15}, true, 0, 12, 0, 8, true},
    {"whole_overhanging", {0, 0}, {-4, 40, -3, 30}, true, 0, 12, 0, 8, true},
    {"whole_rows_of_a_band", {0, 0}, {0, 12, 2, 5}, true, 0, 12, 2, 5, true},
    {"inner", {0, 0}, {2, 6, 3, 5}, true, 2, 6, 3, 5, false},
    {"inner_with_origin", {10, 20}, {12, 16, 23, 25}, true, 2, 6, 3, 5, false},
    {"one_pixel", {0, 0}, {12, 12, 8, 8}, true, 12, 12, 8, 8, false},
    {"right_and_top_cut", {0, 0}, {3, 40, 4, 30}, true, 3, 12, 4, 8, false},
    {"left_and_bottom_raised", {0, 0}, {-5, 4, -2, 6}, true, 0, 4, 0, 6, false},
    {"left_and_bottom_raised_with_origin", {10, 20}, {0, 14, 10, 26}, true, 0, 4, 0, 6, false},
    {"last_column_left", {0, 0}, {-10, 0, 0, 8}, true, 0, 0, 0, 8, false},
    {"wholly_left", {0, 0}, {-10, -1, 0, 8}, false, 0, 0, 0, 0, false},
    {"wholly_left_with_origin", {10, 20}, {0, 9, 20, 28}, false, 0, 0, 0, 0, false},
    {"bottom_row_left", {0, 0}, {0, 5, -10, 0}, true, 0, 5, 0, 0, false},
    {"wholly_below", {0, 0}, {0, 5, -10, -1}, false, 0, 0, 0, 0, false},
};

// Writes `value` of `size` bytes over the pixels (or whole rows) a clear covers.
void apply(std::vector<byte>& memory, const OT_Shared_Image_Data& image, int l, int r, int b, int t, bool whole_rows,
           std::uint32_t value, int size) {
  if (whole_rows) {
    const std::size_t from = offset(image, t, 0);
    const std::size_t length = std::size_t(t - b + 1) * image.row_bytes;
    for (std::size_t i = 0; i + size <= length; i += size) put(&memory[from + i], value, size);
    return;
  }
  for (int y = b; y <= t; ++y)
    for (int x = l; x <= r; ++x) put(&memory[offset(image, y, x)], value, size);
}

class Buffer_Clear_Color : public ::testing::TestWithParam<std::tuple<Mode_Case, Clear_Case>> {};

TEST_P(Buffer_Clear_Color, WritesExactlyTheClippedRectangle) {
  const auto& [mode, c] = GetParam();
  Renderer_Harness h(mode, 13, 9, c.origin, kPaddedFactory);
  OT_Shared_Image_Data& image = *h.renderer().color_image;
  ASSERT_GT(image.row_bytes, image.width * pixel_size(image));
  ASSERT_TRUE(one_block(image));
  OT_Rendition_Colors* colors = h.rendition().writable_colors();
  colors->window_index = kWindowIndex;
  colors->window_color = kWindowColor;
  h.set_hard_clip(c.clip);
  fill_memory(image, kMarker);

  std::vector<byte> expected = memory_of(image);
  if (c.writes) {
    if (mode.mapped())
      apply(expected, image, c.l, c.r, c.b, c.t, c.whole_rows, kWindowIndex, 1);
    else
      apply(expected, image, c.l, c.r, c.b, c.t, c.whole_rows, kWindowColor.word(), 4);
  }
  h.renderer().clear_color(h.rendition());
  EXPECT_TRUE(same_bytes(memory_of(image), expected));
}

INSTANTIATE_TEST_SUITE_P(Buffer, Buffer_Clear_Color,
                         ::testing::Combine(::testing::ValuesIn(kAllModes), ::testing::ValuesIn(kClearCases)),
                         [](const auto& info) {
                           return std::string(std::get<0>(info.param).name) + "_" + std::get<1>(info.param).name;
                         });

// The host's rectangle fill comes back through the slot as strips.
std::vector<std::vector<OT_DCI_Point>> g_strips;
void record_strip(OT_Renderer_Data*, const OT_Rendition&, int count, const OT_DCI_Point* points) {
  g_strips.emplace_back(points, points + count);
}

class Buffer_Patterned_Clear : public ::testing::TestWithParam<Mode_Case> {};

TEST_P(Buffer_Patterned_Clear, GoesToTheHostsRectangleFillWithTheRawClip) {
  const Mode_Case& mode = GetParam();
  Renderer_Harness h(mode, 13, 9, {3, 7}, kPaddedFactory);
  Software_Z_Buffer& r = h.renderer();
  r.draw_dci_polytriangle.install(&r, record_strip);
  set_face_pattern(h.rendition(), 32);
  const OT_Int_Rectangle clip{-3, 20, -2, 30};  // beyond the image on every side
  h.set_hard_clip(clip);
  fill_memory(*r.color_image, kMarker);
  const std::vector<byte> before = memory_of(*r.color_image);

  g_strips.clear();
  r.clear_color(h.rendition());
  EXPECT_TRUE(same_bytes(memory_of(*r.color_image), before));
  ASSERT_EQ(g_strips.size(), 1u);
  ASSERT_EQ(g_strips[0].size(), 4u);
  int min_x = INT32_MAX, max_x = INT32_MIN, min_y = INT32_MAX, max_y = INT32_MIN;
  for (const OT_DCI_Point& p : g_strips[0]) {
    min_x = std::min(min_x, p.x);
    max_x = std::max(max_x, p.x);
    min_y = std::min(min_y, p.y);
    max_y = std::max(max_y, p.y);
  }
  EXPECT_EQ(min_x, clip.left);
  EXPECT_EQ(min_y, clip.bottom);
  EXPECT_TRUE(max_x == clip.right || max_x == clip.right + 1) << max_x;
  EXPECT_TRUE(max_y == clip.top || max_y == clip.top + 1) << max_y;
}

INSTANTIATE_TEST_SUITE_P(Buffer, Buffer_Patterned_Clear, ::testing::ValuesIn(kAllModes), mode_name);

// ---- Depth clears ------------------------------------------------------------------

struct Depth_Clear_Case {
  const char* name;
  OT_Int_XY origin;
  OT_Int_Rectangle clip;
  int l, r, b, t;
  bool whole_rows;
};

const Depth_Clear_Case kDepthClearCases[] = {
    {"whole", {0, 0}, {0, 12, 0, 8}, 0, 12, 0, 8, true},
    {"whole_with_origin", {3, 7}, {3, 15, 7, 15}, 0, 12, 0, 8, true},
    {"whole_rows_of_a_band", {0, 0}, {0, 12, 2, 5}, 0, 12, 2, 5, true},
    {"inner", {0, 0}, {2, 6, 3, 5}, 2, 6, 3, 5, false},
    {"inner_with_origin", {10, 20}, {12, 16, 23, 25}, 2, 6, 3, 5, false},
    {"from_left_short_of_right", {0, 0}, {0, 11, 0, 8}, 0, 11, 0, 8, false},
    {"to_right_not_from_left", {0, 0}, {1, 12, 0, 8}, 1, 12, 0, 8, false},
    {"one_pixel", {0, 0}, {12, 12, 0, 0}, 12, 12, 0, 0, false},
};

class Buffer_Clear_Depth : public ::testing::TestWithParam<std::tuple<Mode_Case, Depth_Clear_Case>> {};

TEST_P(Buffer_Clear_Depth, SetsExactlyTheClipToTheFarthestDepth) {
  const auto& [mode, c] = GetParam();
  Renderer_Harness h(mode, 13, 9, c.origin, kPaddedFactory);
  OT_Shared_Image_Data& depth = *h.renderer().depth_image;
  ASSERT_TRUE(one_block(depth));
  h.set_hard_clip(c.clip);
  fill_memory(depth, 0x11);
  std::vector<byte> expected = memory_of(depth);
  apply(expected, depth, c.l, c.r, c.b, c.t, c.whole_rows, 0xFFFF, 2);
  h.renderer().clear_depth(h.rendition());
  EXPECT_TRUE(same_bytes(memory_of(depth), expected));
}

INSTANTIATE_TEST_SUITE_P(Buffer, Buffer_Clear_Depth,
                         ::testing::Combine(::testing::ValuesIn(kDepthModes), ::testing::ValuesIn(kDepthClearCases)),
                         [](const auto& info) {
                           return std::string(std::get<0>(info.param).name) + "_" + std::get<1>(info.param).name;
                         });

TEST(Buffer_Clear_Depth_Pattern, DepthClearIgnoresTheFacePattern) {
  Renderer_Harness h(kZRgb32, 13, 9, {0, 0}, kPaddedFactory);
  OT_Shared_Image_Data& depth = *h.renderer().depth_image;
  set_face_pattern(h.rendition(), 32);
  fill_memory(depth, 0x11);
  h.renderer().clear_depth(h.rendition());
  const std::vector<byte> after = memory_of(depth);
  EXPECT_TRUE(same_bytes(after, std::vector<byte>(after.size(), 0xFF)));
}

// ---- Reads -------------------------------------------------------------------------

OT_Shared_Image new_image(int width, int height, OT_Image_Format format, int row_bytes = 0) {
  return OT_Shared_Image(width, height, format, row_bytes, nullptr, false);
}

void read_color(Renderer_Harness& h, OT_DCI_Point first, OT_DCI_Point last, OT_Image_Format format,
                OT_Shared_Image& image) {
  h.renderer().read_color_rectangle(h.rendition(), &first, &last, &format, image);
}

void read_depth(Renderer_Harness& h, OT_DCI_Point first, OT_DCI_Point last, OT_Image_Format format,
                OT_Shared_Image& image) {
  h.renderer().read_depth_rectangle(h.rendition(), &first, &last, &format, image);
}

OT_Image_Format color_format(const Mode_Case& mode) {
  return mode.mapped() ? OT_Image_Format_Index8 : OT_Image_Format_RGB32;
}

class Buffer_Read : public ::testing::TestWithParam<Mode_Case> {};

TEST_P(Buffer_Read, NativeFormatAnswersInTheBuffersFormatAndIsNotChanged) {
  const Mode_Case& mode = GetParam();
  Renderer_Harness h(mode, 16, 12);
  const OT_DCI_Point first{2, 7, 0}, last{5, 3, 0};
  OT_Image_Format format = OT_Image_Format_Native;
  OT_Shared_Image image;
  h.renderer().read_color_rectangle(h.rendition(), &first, &last, &format, image);
  EXPECT_EQ(format, OT_Image_Format_Native);
  ASSERT_TRUE(image);
  EXPECT_EQ(image->format, color_format(mode));
  EXPECT_EQ(image->width, 4);
  EXPECT_EQ(image->height, 5);
  if (mode.depth()) {
    OT_Shared_Image depth;
    h.renderer().read_depth_rectangle(h.rendition(), &first, &last, &format, depth);
    EXPECT_EQ(format, OT_Image_Format_Native);
    ASSERT_TRUE(depth);
    EXPECT_EQ(depth->format, OT_Image_Format_Depth16);
    EXPECT_EQ(depth->width, 4);
    EXPECT_EQ(depth->height, 5);
  }
}

TEST_P(Buffer_Read, FormatOfAnotherBufferReleasesTheImage) {
  const Mode_Case& mode = GetParam();
  Renderer_Harness h(mode, 16, 12);
  const OT_Image_Format other_color = mode.mapped() ? OT_Image_Format_RGB32 : OT_Image_Format_Index8;
  for (const OT_Image_Format format : {other_color, OT_Image_Format_Depth16}) {
    const OT_Shared_Image held = new_image(4, 5, color_format(mode));
    OT_Shared_Image image = held;
    read_color(h, {2, 7, 0}, {5, 3, 0}, format, image);
    EXPECT_FALSE(image) << format;
    EXPECT_EQ(held->count.load(), 1u);
  }
  if (mode.depth()) {
    for (const OT_Image_Format format : {OT_Image_Format_Index8, OT_Image_Format_RGB32}) {
      const OT_Shared_Image held = new_image(4, 5, OT_Image_Format_Depth16);
      OT_Shared_Image image = held;
      read_depth(h, {2, 7, 0}, {5, 3, 0}, format, image);
      EXPECT_FALSE(image) << format;
      EXPECT_EQ(held->count.load(), 1u);
    }
  }
}

TEST_P(Buffer_Read, HeldImageOfTheRightSizeAndFormatIsReused) {
  const Mode_Case& mode = GetParam();
  Renderer_Harness h(mode, 16, 12);
  const OT_Shared_Image held = new_image(4, 5, color_format(mode));
  OT_Shared_Image image = held;
  read_color(h, {2, 7, 0}, {5, 3, 0}, color_format(mode), image);
  EXPECT_EQ(image.get(), held.get());
  image = held;
  read_color(h, {2, 7, 0}, {5, 3, 0}, OT_Image_Format_Native, image);
  EXPECT_EQ(image.get(), held.get());
  if (mode.depth()) {
    const OT_Shared_Image held_depth = new_image(4, 5, OT_Image_Format_Depth16);
    image = held_depth;
    read_depth(h, {2, 7, 0}, {5, 3, 0}, OT_Image_Format_Depth16, image);
    EXPECT_EQ(image.get(), held_depth.get());
  }
}

TEST_P(Buffer_Read, HeldImageOfAnotherSizeOrFormatIsReplaced) {
  const Mode_Case& mode = GetParam();
  Renderer_Harness h(mode, 16, 12);
  const OT_Image_Format other_color = mode.mapped() ? OT_Image_Format_RGB32 : OT_Image_Format_Index8;
  const OT_Shared_Image held[] = {new_image(5, 5, color_format(mode)), new_image(4, 4, color_format(mode)),
                                  new_image(4, 5, other_color)};
  for (const OT_Shared_Image& old : held) {
    OT_Shared_Image image = old;
    read_color(h, {2, 7, 0}, {5, 3, 0}, OT_Image_Format_Native, image);
    ASSERT_TRUE(image);
    EXPECT_NE(image.get(), old.get());
    EXPECT_EQ(image->width, 4);
    EXPECT_EQ(image->height, 5);
    EXPECT_EQ(image->format, color_format(mode));
    EXPECT_EQ(image->row_bytes, 4 * OT_Shared_Image_Data::pixel_bytes(color_format(mode)));
    EXPECT_EQ(old->count.load(), 1u);
  }
  if (mode.depth()) {
    const OT_Shared_Image held_depth[] = {new_image(4, 6, OT_Image_Format_Depth16),
                                          new_image(3, 5, OT_Image_Format_Depth16),
                                          new_image(4, 5, OT_Image_Format_Index8)};
    for (const OT_Shared_Image& old : held_depth) {
      OT_Shared_Image image = old;
      read_depth(h, {2, 7, 0}, {5, 3, 0}, OT_Image_Format_Native, image);
      ASSERT_TRUE(image);
      EXPECT_NE(image.get(), old.get());
      EXPECT_EQ(image->width, 4);
      EXPECT_EQ(image->height, 5);
      EXPECT_EQ(image->format, OT_Image_Format_Depth16);
      EXPECT_EQ(image->row_bytes, 8);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Buffer, Buffer_Read, ::testing::ValuesIn(kAllModes), mode_name);

// The mapped colour read and the depth read copy without a clip, from first.y
// down to last.y, into rows that follow each other w pixels apart.
struct Unclipped_Read {
  const char* name;
  const Mode_Case* mode;
  bool depth;
};

const Unclipped_Read kUnclippedReads[] = {
    {"mapped_color", &kAllModes[2], false},
    {"z_mapped_color", &kAllModes[3], false},
    {"z_mapped_depth", &kAllModes[3], true},
    {"z_rgb32_alpha_depth", &kAllModes[4], true},
    {"z_rgb32_depth", &kAllModes[5], true},
};

class Buffer_Unclipped_Read : public ::testing::TestWithParam<Unclipped_Read> {
 protected:
  void read(Renderer_Harness& h, OT_DCI_Point first, OT_DCI_Point last, OT_Shared_Image& image) {
    if (GetParam().depth)
      read_depth(h, first, last, OT_Image_Format_Native, image);
    else
      read_color(h, first, last, OT_Image_Format_Native, image);
  }
  OT_Shared_Image_Data& buffer(Renderer_Harness& h) {
    return GetParam().depth ? *h.renderer().depth_image : *h.renderer().color_image;
  }
};

TEST_P(Buffer_Unclipped_Read, CopiesFromTheTopRowDownIntoStorageOrder) {
  Renderer_Harness h(*GetParam().mode, 16, 12, {3, 7}, kPaddedFactory);
  OT_Shared_Image_Data& source = buffer(h);
  fill_pattern(source);
  OT_Shared_Image image;
  read(h, {2 + 3, 7 + 7, 0}, {5 + 3, 3 + 7, 0}, image);
  ASSERT_TRUE(image);
  const int size = pixel_size(source);
  EXPECT_EQ(image->row_bytes, 4 * size);
  for (int row = 0; row < 5; ++row)
    for (int i = 0; i < 4; ++i)
      EXPECT_EQ(get(image->top_rows[0] + (row * 4 + i) * size, size), pattern(source.format, 2 + i, 7 - row))
          << "row " << row << " pixel " << i;
}

TEST_P(Buffer_Unclipped_Read, HeldImageWithWiderRowsIsFilledWPixelsARow) {
  Renderer_Harness h(*GetParam().mode, 16, 12, {0, 0}, kPaddedFactory);
  OT_Shared_Image_Data& source = buffer(h);
  fill_pattern(source);
  const int size = pixel_size(source);
  const OT_Shared_Image held = new_image(4, 5, source.format, 4 * size + 8);
  ASSERT_TRUE(one_block(*held));
  fill_memory(*held, kMarker);
  std::vector<byte> expected = memory_of(*held);
  for (int row = 0; row < 5; ++row)
    for (int i = 0; i < 4; ++i) put(&expected[std::size_t((row * 4 + i) * size)], pattern(source.format, 2 + i, 7 - row), size);

  OT_Shared_Image image = held;
  read(h, {2, 7, 0}, {5, 3, 0}, image);
  ASSERT_EQ(image.get(), held.get());
  EXPECT_TRUE(same_bytes(memory_of(*held), expected));
}

INSTANTIATE_TEST_SUITE_P(Buffer, Buffer_Unclipped_Read, ::testing::ValuesIn(kUnclippedReads),
                         [](const auto& info) { return std::string(info.param.name); });

// ---- The RGB32 read ------------------------------------------------------------------

struct Rgb32_Read_Case {
  const char* name;
  OT_Int_XY origin;
  OT_DCI_Point first, last;
  // What arrives: result rows from `row` on, from device rows `from_y` down
  // to `to_y` (image coordinates), `pixels` pixels from column `x`.
  int from_y, to_y, x, pixels;
};

// A buffer of 16 by 12.
const Rgb32_Read_Case kRgb32ReadCases[] = {
    {"from_row_zero", {0, 0}, {2, 4, 0}, {5, 0, 0}, 4, 0, 2, 4},
    {"cut_at_the_right", {0, 0}, {13, 4, 0}, {18, 0, 0}, 4, 0, 13, 3},
    {"ends_at_the_right", {0, 0}, {12, 4, 0}, {15, 0, 0}, 4, 0, 12, 4},
    {"negative_x", {0, 0}, {-2, 4, 0}, {3, 0, 0}, 4, 0, 0, 4},
    // The top is cut to the height of the request, not of the buffer.
    {"top_at_the_height_of_the_request", {0, 0}, {2, 5, 0}, {5, 1, 0}, 4, 1, 2, 4},
    {"top_above_the_height_of_the_request", {0, 0}, {2, 7, 0}, {5, 3, 0}, 4, 3, 2, 4},
    {"bottom_below_zero", {0, 0}, {2, 3, 0}, {5, -2, 0}, 3, 0, 2, 4},
    {"with_origin", {3, 7}, {5, 14, 0}, {8, 10, 0}, 4, 3, 2, 4},
};

class Buffer_Rgb32_Read : public ::testing::TestWithParam<Rgb32_Read_Case> {};

TEST_P(Buffer_Rgb32_Read, CopiesWhatTheCutsLeaveIntoTheHeldImage) {
  const Rgb32_Read_Case& c = GetParam();
  Renderer_Harness h(kRgb32, 16, 12, c.origin, kPaddedFactory);
  fill_pattern(*h.renderer().color_image);
  const int w = c.last.x - c.first.x + 1, height = c.first.y - c.last.y + 1;
  const OT_Shared_Image held = new_image(w, height, OT_Image_Format_RGB32, w * 4);
  ASSERT_TRUE(one_block(*held));
  fill_memory(*held, kMarker);
  std::vector<byte> expected = memory_of(*held);
  for (int y = c.from_y, row = 0; y >= c.to_y; --y, ++row)
    for (int i = 0; i < c.pixels; ++i)
      put(&expected[std::size_t((row * w + i) * 4)], pattern(OT_Image_Format_RGB32, c.x + i, y), 4);

  OT_Shared_Image image = held;
  read_color(h, c.first, c.last, OT_Image_Format_RGB32, image);
  ASSERT_EQ(image.get(), held.get());
  EXPECT_TRUE(same_bytes(memory_of(*held), expected));
}

INSTANTIATE_TEST_SUITE_P(Buffer, Buffer_Rgb32_Read, ::testing::ValuesIn(kRgb32ReadCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(Buffer_Rgb32_Read_Tall, RowsHundredDownToFiftyCopyRowFiftyAlone) {
  Renderer_Harness h(kRgb32, 16, 110);
  fill_pattern(*h.renderer().color_image);
  const OT_Shared_Image held = new_image(4, 51, OT_Image_Format_RGB32, 16);
  fill_memory(*held, kMarker);
  std::vector<byte> expected = memory_of(*held);
  for (int i = 0; i < 4; ++i) put(&expected[std::size_t(i * 4)], pattern(OT_Image_Format_RGB32, 2 + i, 50), 4);

  OT_Shared_Image image = held;
  read_color(h, {2, 100, 0}, {5, 50, 0}, OT_Image_Format_Native, image);
  ASSERT_EQ(image.get(), held.get());
  EXPECT_TRUE(same_bytes(memory_of(*held), expected));

  OT_Shared_Image fresh;
  read_color(h, {2, 100, 0}, {5, 50, 0}, OT_Image_Format_RGB32, fresh);
  ASSERT_TRUE(fresh);
  EXPECT_EQ(fresh->width, 4);
  EXPECT_EQ(fresh->height, 51);
  EXPECT_EQ(fresh->row_bytes, 16);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(get(fresh->top_rows[0] + i * 4, 4), pattern(OT_Image_Format_RGB32, 2 + i, 50));
}

// The full-frame form: a copy of the whole buffer that is refreshed in part.
struct Full_Frame_Case {
  const char* name;
  OT_Int_XY origin;
  OT_DCI_Point first, last;
  bool writes;
  int from_row, to_row, x, pixels;  // rows of top_rows, columns in the image
};

const Full_Frame_Case kFullFrameCases[] = {
    {"to_the_end_of_the_rows", {0, 0}, {3, 6, 0}, {5, 2, 0}, true, 6, 2, 3, 13},
    {"last_x_without_the_origin", {3, 0}, {6, 6, 0}, {8, 2, 0}, true, 6, 2, 3, 10},
    {"negative_x", {0, 0}, {-2, 6, 0}, {4, 2, 0}, true, 6, 2, 0, 16},
    {"rows_cut_to_the_buffer", {0, 0}, {3, 200, 0}, {5, -5, 0}, true, 11, 0, 3, 13},
    {"top_at_the_height", {0, 0}, {3, 12, 0}, {5, 10, 0}, true, 11, 10, 3, 13},
    {"rows_with_origin", {0, 4}, {3, 10, 0}, {5, 6, 0}, true, 6, 2, 3, 13},
    {"top_below_bottom", {0, 0}, {3, 2, 0}, {5, 5, 0}, false, 0, 0, 0, 0},
};

void full_frame_expectation(std::vector<byte>& expected, const OT_Shared_Image_Data& target,
                            const OT_Shared_Image_Data& buffer, const Full_Frame_Case& c) {
  if (!c.writes) return;
  for (int y = c.from_row; y >= c.to_row; --y)
    for (int i = 0; i < c.pixels; ++i) {
      const byte* from = buffer.top_rows[y] + (c.x + i) * 4;
      std::memcpy(&expected[std::size_t(target.top_rows[y] - target.top_rows[0]) + (c.x + i) * 4], from, 4);
    }
}

class Buffer_Full_Frame_Read : public ::testing::TestWithParam<Full_Frame_Case> {};

TEST_P(Buffer_Full_Frame_Read, RefreshesRowsThroughTopRowsByDeviceRowNumber) {
  const Full_Frame_Case& c = GetParam();
  Renderer_Harness h(kRgb32, 16, 12, c.origin, kPaddedFactory);
  OT_Shared_Image_Data& buffer = *h.renderer().color_image;
  fill_pattern(buffer);
  // The row pitch is not part of the match.
  const OT_Shared_Image held = new_image(16, 12, OT_Image_Format_RGB32, 64);
  held->full_frame = 1;
  ASSERT_TRUE(one_block(*held));
  fill_memory(*held, kMarker);
  std::vector<byte> expected = memory_of(*held);
  full_frame_expectation(expected, *held, buffer, c);

  OT_Shared_Image image = held;
  read_color(h, c.first, c.last, OT_Image_Format_Native, image);
  ASSERT_EQ(image.get(), held.get());
  EXPECT_TRUE(same_bytes(memory_of(*held), expected));
}

INSTANTIATE_TEST_SUITE_P(Buffer, Buffer_Full_Frame_Read, ::testing::ValuesIn(kFullFrameCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(Buffer_Full_Frame_Read_Replace, ImageNotOfTheBuffersSizeOrFormatMakesANewFullFrameImage) {
  Renderer_Harness h(kRgb32, 16, 12, {0, 0}, kPaddedFactory);
  OT_Shared_Image_Data& buffer = *h.renderer().color_image;
  fill_pattern(buffer);
  const OT_Shared_Image held[] = {new_image(15, 12, OT_Image_Format_RGB32), new_image(16, 13, OT_Image_Format_RGB32),
                                  new_image(16, 12, OT_Image_Format_Index8)};
  for (const OT_Shared_Image& old : held) {
    old->full_frame = 1;
    OT_Shared_Image image = old;
    read_color(h, {3, 6, 0}, {5, 2, 0}, OT_Image_Format_Native, image);
    ASSERT_TRUE(image);
    EXPECT_NE(image.get(), old.get());
    EXPECT_EQ(old->count.load(), 1u);
    EXPECT_EQ(image->width, 16);
    EXPECT_EQ(image->height, 12);
    EXPECT_EQ(image->format, OT_Image_Format_RGB32);
    EXPECT_EQ(image->row_bytes, buffer.row_bytes);
    EXPECT_EQ(image->full_frame, 1);
    for (int y = 2; y <= 6; ++y)
      for (int x = 3; x < 16; ++x)
        EXPECT_EQ(get(image->top_rows[y] + x * 4, 4), get(buffer.top_rows[y] + x * 4, 4)) << x << ", " << y;
  }
}

TEST(Buffer_Rgb32_Read_Replace, PlainImageOfAnotherSizeIsReplacedByAPlainOne) {
  Renderer_Harness h(kRgb32, 16, 12);
  fill_pattern(*h.renderer().color_image);
  const OT_Shared_Image old = new_image(16, 12, OT_Image_Format_RGB32);  // full_frame clear
  OT_Shared_Image image = old;
  read_color(h, {3, 4, 0}, {5, 0, 0}, OT_Image_Format_RGB32, image);
  ASSERT_TRUE(image);
  EXPECT_NE(image.get(), old.get());
  EXPECT_EQ(image->width, 3);
  EXPECT_EQ(image->height, 5);
  EXPECT_EQ(image->row_bytes, 12);
  EXPECT_EQ(image->full_frame, 0);
  EXPECT_EQ(get(image->top_rows[0], 4), pattern(OT_Image_Format_RGB32, 3, 4));
  EXPECT_EQ(get(image->top_rows[0] + 4 * 12 + 8, 4), pattern(OT_Image_Format_RGB32, 5, 0));
}

// ---- Writing depth -------------------------------------------------------------------

struct Depth_Write_Case {
  const char* name;
  OT_Int_XY origin;
  OT_DCI_Point first, last;
  int row_pixels;    // data row pitch in pixels; negative steps backwards
  int rows_written;  // image rows first.y - origin_y downwards
  int x, pixels;     // image columns written
};

// A depth buffer of 16 by 12.
const Depth_Write_Case kDepthWriteCases[] = {
    {"inside", {0, 0}, {2, 6, 0}, {5, 3, 0}, 4, 4, 2, 4},
    {"wider_data_rows", {0, 0}, {2, 6, 0}, {5, 3, 0}, 7, 4, 2, 4},
    {"backwards_data_rows", {0, 0}, {2, 6, 0}, {5, 3, 0}, -4, 4, 2, 4},
    {"cut_at_the_right", {0, 0}, {13, 6, 0}, {20, 5, 0}, 8, 2, 13, 3},
    {"cut_at_the_right_with_origin", {3, 7}, {17, 12, 0}, {25, 11, 0}, 9, 2, 14, 2},
    {"last_column", {0, 0}, {15, 6, 0}, {18, 5, 0}, 4, 2, 15, 1},
    {"beyond_the_right", {0, 0}, {16, 6, 0}, {18, 3, 0}, 4, 0, 0, 0},
    {"beyond_the_right_with_origin", {3, 7}, {19, 12, 0}, {22, 11, 0}, 4, 0, 0, 0},
    {"last_above_first", {0, 0}, {2, 3, 0}, {5, 6, 0}, 4, 1, 2, 4},
    {"one_row", {0, 0}, {2, 11, 0}, {5, 11, 0}, 4, 1, 2, 4},
};

class Buffer_Write_Depth : public ::testing::TestWithParam<std::tuple<Mode_Case, Depth_Write_Case>> {};

TEST_P(Buffer_Write_Depth, WritesItsRowsClippedOnTheRightOnly) {
  const auto& [mode, c] = GetParam();
  Renderer_Harness h(mode, 16, 12, c.origin, kPaddedFactory);
  OT_Shared_Image_Data& depth = *h.renderer().depth_image;
  ASSERT_TRUE(one_block(depth));
  fill_memory(depth, 0x11);

  // Data rows of distinct values; with a negative pitch the first row given
  // is the last in memory.
  const int stride = std::abs(c.row_pixels), rows = 6;
  std::vector<std::uint16_t> data(std::size_t(stride) * rows);
  for (int k = 0; k < rows; ++k)
    for (int i = 0; i < stride; ++i) data[std::size_t(k * stride + i)] = std::uint16_t(0x4000 + k * 0x100 + i);
  const int first_row = c.row_pixels < 0 ? rows - 1 : 0;
  const auto* start = reinterpret_cast<const byte*>(&data[std::size_t(first_row * stride)]);

  std::vector<byte> expected = memory_of(depth);
  const int top = c.first.y - c.origin.y;
  for (int n = 0; n < c.rows_written; ++n) {
    const int data_row = c.row_pixels < 0 ? first_row - n : n;
    for (int i = 0; i < c.pixels; ++i)
      put(&expected[offset(depth, top - n, c.x + i)], data[std::size_t(data_row * stride + i)], 2);
  }
  h.renderer().write_depth_rectangle(h.rendition(), &c.first, &c.last, c.row_pixels * 2, start);
  EXPECT_TRUE(same_bytes(memory_of(depth), expected));
}

INSTANTIATE_TEST_SUITE_P(Buffer, Buffer_Write_Depth,
                         ::testing::Combine(::testing::ValuesIn(kDepthModes), ::testing::ValuesIn(kDepthWriteCases)),
                         [](const auto& info) {
                           return std::string(std::get<0>(info.param).name) + "_" + std::get<1>(info.param).name;
                         });

// ---- The window update -----------------------------------------------------------------

struct Update_Call {
  void* context;
  OT_DCI_Point first, last;
  const OT_Shared_Image* image;
  int x, y;
};
std::vector<Update_Call> g_updates;

void record_update(void* context, const OT_DCI_Point* first, const OT_DCI_Point* last, const OT_Shared_Image* image,
                   int x, int y) {
  g_updates.push_back({context, *first, *last, image, x, y});
}

struct Update_Case {
  const char* name;
  OT_Int_XY origin;
  int x, y;
};

const Update_Case kUpdateCases[] = {
    {"origin_0_0", {0, 0}, 10, 84},
    {"origin_3_7", {3, 7}, 13, 91},
    {"origin_negative", {-4, -9}, 6, 75},
};

class Buffer_Update : public ::testing::TestWithParam<Update_Case> {};

TEST_P(Buffer_Update, HandsTheRegionToTheWindowInItsDownwardRows) {
  const Update_Case& c = GetParam();
  Renderer_Harness h(kRgb32, 32, 100, c.origin);
  Software_Z_Buffer& r = h.renderer();
  int context = 0;
  r.window_update.context = &context;
  r.window_update.function = record_update;
  const OT_Int_Rectangle region{10, 20, 5, 15};

  g_updates.clear();
  r.update(region);
  ASSERT_EQ(g_updates.size(), 1u);
  const Update_Call& call = g_updates[0];
  EXPECT_EQ(call.context, &context);
  EXPECT_EQ(call.first.x, 10);
  EXPECT_EQ(call.first.y, 15);
  EXPECT_EQ(call.first.z, 0);
  EXPECT_EQ(call.last.x, 20);
  EXPECT_EQ(call.last.y, 5);
  EXPECT_EQ(call.last.z, 0);
  EXPECT_EQ(call.image, &r.color_image);
  EXPECT_EQ(call.x, c.x);
  EXPECT_EQ(call.y, c.y);

  // The height is the window's at the time of the call, not the buffer's.
  r.requested_renderer_options.set_window_size({32, 120});
  r.update_current_options();
  g_updates.clear();
  r.update(region);
  ASSERT_EQ(g_updates.size(), 1u);
  EXPECT_EQ(g_updates[0].y, c.y + 20);
  EXPECT_EQ(g_updates[0].x, c.x);
}

INSTANTIATE_TEST_SUITE_P(Buffer, Buffer_Update, ::testing::ValuesIn(kUpdateCases),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace tarn::testing
