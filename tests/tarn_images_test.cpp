// Images in the six modes: the extent (right edge only, at least one row,
// the client's pitch), the depth ramp that runs on through the rows, the
// alpha rules of the blends and the two advanced bits, and the masked twins
// against the plain forms.
#include <random>
#include <string>
#include <tuple>

#include "pixel/mask.h"
#include "primitives/images.h"
#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

// A client block of pixels, `pad` spare bytes after each row (filled with a
// value that no test expects), rows from the top down.
struct Block {
  int width, height, pixel_bytes, row_bytes;
  std::vector<byte> bytes;
  Block(int w, int h, bool mapped, int pad = 0)
      : width(w),
        height(h),
        pixel_bytes(mapped ? 1 : 4),
        row_bytes(w * pixel_bytes + pad),
        bytes(std::size_t(row_bytes) * h, 0xEE) {}
  void set(int col, int row, std::uint32_t value) {
    std::memcpy(&bytes[std::size_t(row) * row_bytes + col * pixel_bytes], &value, pixel_bytes);
  }
};

void draw(Renderer_Harness& h, OT_DCI_Point first, OT_DCI_Point last, int row_bytes, const byte* data) {
  if (h.mode().mapped())
    h.renderer().draw_dci_index8_image(h.rendition(), &first, &last, row_bytes, data);
  else
    h.renderer().draw_dci_rgb32_image(h.rendition(), &first, &last, row_bytes,
                                      reinterpret_cast<const OT_RGB32*>(data), 0, nullptr);
}
void draw(Renderer_Harness& h, OT_DCI_Point first, OT_DCI_Point last, const Block& b) {
  draw(h, first, last, b.row_bytes, b.bytes.data());
}

// Opaque in every mode: the alpha byte 255 is dropped by the index cast.
std::uint32_t opaque(int k) { return OT_RGB32{byte(k), byte(2 * k), byte(3 * k), 255}.word(); }
std::uint32_t value(const Mode_Case& m, int k) { return m.mapped() ? std::uint32_t(k) : opaque(k); }

void set_advanced(Renderer_Harness& h, OT_Advanced_Options bits) {
  h.rendition().writable_raster()->advanced_options = bits;
}

class Images : public ::testing::TestWithParam<Mode_Case> {};

// A 6 x 3 block at x 14..19 in a window whose right edge is x 17 (origin
// 2, 3, width 16): columns 14..17 of each row, rows read 4 spare bytes apart.
TEST_P(Images, CutAtTheRightEdgeKeepsTheSourcePitch) {
  const Mode_Case& m = GetParam();
  Renderer_Harness h(m, 16, 12, {2, 3});
  Block b(6, 3, m.mapped(), 4);
  for (int row = 0; row < 3; ++row)
    for (int col = 0; col < 6; ++col) b.set(col, row, value(m, 10 * row + col + 1));
  draw(h, {14, 8, 100}, {19, 6, 100}, b);
  for (int y = 5; y <= 9; ++y)
    for (int x = 12; x <= 17; ++x) {
      const bool inside = y >= 6 && y <= 8 && x >= 14;
      const std::uint32_t want = inside ? value(m, 10 * (8 - y) + (x - 14) + 1) : h.clear_value();
      EXPECT_EQ(h.pixel(x, y), want) << x << "," << y;
      if (m.depth()) {
        EXPECT_EQ(h.depth(x, y), inside ? 100 : 0xFFFF) << x << "," << y;
      }
    }
}

// The row loop tests its end after the row: equal rows draw one, and so do
// rows given the wrong way round. A negative pitch reads the block upwards.
TEST_P(Images, AtLeastOneRowAndAnyPitch) {
  const Mode_Case& m = GetParam();
  Block b(2, 3, m.mapped());
  for (int row = 0; row < 3; ++row)
    for (int col = 0; col < 2; ++col) b.set(col, row, value(m, 10 * row + col + 1));
  for (int last_y : {10, 12}) {
    Renderer_Harness h(m, 16, 16);
    draw(h, {3, 10, 7}, {4, last_y, 7}, b);
    EXPECT_EQ(h.drawn(), rows_of({{10, {3, 4}}})) << last_y;
    EXPECT_EQ(h.pixel(4, 10), value(m, 2));
  }
  Renderer_Harness h(m, 16, 16);
  draw(h, {3, 10, 7}, {4, 9, 7}, -b.row_bytes, &b.bytes[2 * std::size_t(b.row_bytes)]);
  EXPECT_EQ(h.drawn(), rows_of({{10, {3, 4}}, {9, {3, 4}}}));
  EXPECT_EQ(h.pixel(3, 10), value(m, 21));
  EXPECT_EQ(h.pixel(4, 9), value(m, 12));
}

// Both sides of the right edge (x 15): a block from x 15 keeps one column,
// from x 16 none. A block one column wide draws that column; its depth takes
// no step, whatever the z at its ends.
TEST_P(Images, OneColumnAndNone) {
  const Mode_Case& m = GetParam();
  Block b(4, 2, m.mapped());
  for (int row = 0; row < 2; ++row)
    for (int col = 0; col < 4; ++col) b.set(col, row, value(m, 10 * row + col + 1));
  Renderer_Harness h(m, 16, 16);
  draw(h, {15, 9, 10}, {18, 8, 90}, b);
  draw(h, {16, 5, 10}, {19, 4, 90}, b);
  draw(h, {3, 12, 10}, {3, 11, 90}, b);
  EXPECT_EQ(h.drawn(), rows_of({{9, {15, 15}}, {8, {15, 15}}, {12, {3, 3}}, {11, {3, 3}}}));
  EXPECT_EQ(h.pixel(15, 8), value(m, 11));
  EXPECT_EQ(h.pixel(3, 11), value(m, 11));
  if (m.depth()) {
    EXPECT_EQ(h.depth(3, 12), 10);
    EXPECT_EQ(h.depth(3, 11), 10);
  }
}

INSTANTIATE_TEST_SUITE_P(Modes, Images, ::testing::ValuesIn(kAllModes), mode_name);

// Depth ramps, worked by hand. Step = (dz << 15) / dx, truncated; start
// (z << 15) + 0x4000; each row goes on from the last row's last pixel.
struct Ramp_Case {
  const char* name;
  int x0, x1, z0, z1;
  std::vector<std::vector<int>> depths;  // by row from the top, from x0 on
};
const Ramp_Case kRamps[] = {
    // Step 25 exactly: rows 0..100, 100..200, 200..300.
    {"quarter", 0, 4, 0, 100, {{0, 25, 50, 75, 100}, {100, 125, 150, 175, 200}, {200, 225, 250, 275, 300}}},
    // Step 109226 / 32768: accumulators 16384, 125610, 234836, 344062, ...
    {"thirds", 0, 3, 0, 10, {{0, 3, 7, 10}, {10, 13, 17, 20}, {20, 23, 27, 30}}},
    // Step -109226 from 671744: 20, 17, 13, 10, then 10, 7, 3, 0, then below
    // zero, where the shift floors: -92838 gives -3, stored as 65533.
    {"falling", 0, 3, 20, 10, {{20, 17, 13, 10}, {10, 7, 3, 0}, {0, 65533, 65529, 65526}}},
    // Over the full width 13..20 (step 10), though only 13..15 are in the window.
    {"cut", 13, 20, 0, 70, {{0, 10, 20}, {20, 30, 40}, {40, 50, 60}}},
};

class Depth_Ramps : public ::testing::TestWithParam<std::tuple<Mode_Case, Ramp_Case>> {};

TEST_P(Depth_Ramps, RunOnThroughTheRows) {
  const auto& [m, c] = GetParam();
  Renderer_Harness h(m, 16, 16);
  h.set_depth_test(1);  // neither option is read by images
  h.set_depth_write(0);
  Block b(c.x1 - c.x0 + 1, 3, m.mapped());
  for (int row = 0; row < 3; ++row)
    for (int col = 0; col < b.width; ++col) b.set(col, row, value(m, 1 + col));
  draw(h, {c.x0, 8, c.z0}, {c.x1, 6, c.z1}, b);
  for (int row = 0; row < 3; ++row)
    for (int i = 0; i < int(c.depths[row].size()); ++i)
      EXPECT_EQ(h.depth(c.x0 + i, 8 - row), c.depths[row][i]) << row << "," << i;
}

std::string ramp_name(const ::testing::TestParamInfo<std::tuple<Mode_Case, Ramp_Case>>& info) {
  return std::string(std::get<0>(info.param).name) + "_" + std::get<1>(info.param).name;
}
INSTANTIATE_TEST_SUITE_P(Modes, Depth_Ramps,
                         ::testing::Combine(::testing::ValuesIn(kDepthModes), ::testing::ValuesIn(kRamps)),
                         ramp_name);

// The test is at or below whatever "ZBuffer Test" says; a passing pixel
// stores its depth whatever "ZBuffer Write" says. depth_enabled 0 reads and
// writes no depth.
class Depth_Images : public ::testing::TestWithParam<Mode_Case> {};

TEST_P(Depth_Images, AtOrBelowAndDepthOff) {
  const Mode_Case& m = GetParam();
  for (byte enabled : {1, 0}) {
    Renderer_Harness h(m, 16, 16);
    h.set_depth_test(5);
    h.set_depth_write(0);
    h.rendition().writable_device()->depth_enabled = enabled;
    h.poke_depth(1, 4, 99);
    h.poke_depth(2, 4, 100);
    h.poke_depth(3, 4, 101);
    Block b(3, 1, m.mapped());
    for (int col = 0; col < 3; ++col) b.set(col, 0, value(m, 5 + col));
    draw(h, {1, 4, 100}, {3, 4, 100}, b);
    EXPECT_EQ(h.pixel(1, 4), enabled ? h.clear_value() : value(m, 5));
    EXPECT_EQ(h.pixel(2, 4), value(m, 6));
    EXPECT_EQ(h.pixel(3, 4), value(m, 7));
    EXPECT_EQ(h.depth(1, 4), 99);
    EXPECT_EQ(h.depth(2, 4), 100);
    EXPECT_EQ(h.depth(3, 4), enabled ? 100 : 101);
  }
}

INSTANTIATE_TEST_SUITE_P(Modes, Depth_Images, ::testing::ValuesIn(kDepthModes), mode_name);

// The alpha rules, over one row of five alphas on the old word kOld (blue 17,
// green 32, red 0, alpha 64) and the colour blue 0, green 100, red 255:
// (old * (255 - a) + colour * a) / 255 per channel, worked by hand.
constexpr std::uint32_t kOld = 0x40002011;
constexpr byte kAlphas[] = {0, 1, 128, 254, 255};
constexpr std::uint32_t source(byte alpha) { return OT_RGB32{0, 100, 255, alpha}.word(); }
constexpr std::uint32_t kBlended[] = {kOld, OT_RGB32{16, 32, 1, 255}.word(), OT_RGB32{8, 66, 128, 255}.word(),
                                      OT_RGB32{0, 99, 254, 255}.word(), source(255)};
constexpr std::uint32_t kCopied[] = {source(0), source(1), source(128), source(254), source(255)};
enum Result { Copied, Blended };

struct Alpha_Case {
  const char* name;
  const Mode_Case& mode;
  OT_Advanced_Options bits;
  bool masked;
  Result result;
};
const Alpha_Case kAlphaCases[] = {
    {"rgb32_copies", kRgb32, 0, false, Copied},
    {"rgb32_bit8_blends", kRgb32, 8, false, Blended},
    {"rgb32_bits_8_4_copy", kRgb32, 12, false, Copied},
    {"rgb32_masked_copies", kRgb32, 4, true, Copied},
    {"rgb32_masked_bit8_blends_despite_4", kRgb32, 12, true, Blended},
    {"rgb32_alpha_blends", kRgb32Alpha, 0, false, Blended},
    {"rgb32_alpha_bit4_copies", kRgb32Alpha, 4, false, Copied},
    {"rgb32_alpha_masked_bit4_blends", kRgb32Alpha, 4, true, Blended},
    {"z_rgb32_copies", kZRgb32, 0, false, Copied},
    {"z_rgb32_bit8_blends", kZRgb32, 8, false, Blended},
    {"z_rgb32_masked_bit8_blends", kZRgb32, 12, true, Blended},
    {"z_rgb32_alpha_blends", kZRgb32Alpha, 0, false, Blended},
    {"z_rgb32_alpha_bit4_copies", kZRgb32Alpha, 4, false, Copied},
    {"z_rgb32_alpha_masked_bit4_blends", kZRgb32Alpha, 4, true, Blended},
};

class Image_Alpha : public ::testing::TestWithParam<Alpha_Case> {};

// Alpha 0 in a blend changes neither colour nor depth; the masks used here
// hide nothing of the row.
TEST_P(Image_Alpha, PixelsAndDepths) {
  const Alpha_Case& c = GetParam();
  Renderer_Harness h(c.mode, 16, 16);
  if (c.masked) h.use_mask(box(0, 0, 16, 16));
  set_advanced(h, c.bits);
  Block b(5, 1, false);
  for (int i = 0; i < 5; ++i) {
    b.set(i, 0, source(kAlphas[i]));
    h.poke(2 + i, 7, kOld);
    if (c.mode.depth()) h.poke_depth(2 + i, 7, 500);
  }
  draw(h, {2, 7, 40}, {6, 7, 40}, b);
  for (int i = 0; i < 5; ++i) {
    const std::uint32_t want = c.result == Copied ? kCopied[i] : kBlended[i];
    EXPECT_EQ(h.pixel(2 + i, 7), want) << i;
    if (c.mode.depth()) {
      EXPECT_EQ(h.depth(2 + i, 7), want == kOld ? 500 : 40) << i;
    }
  }
}
INSTANTIATE_TEST_SUITE_P(Cases, Image_Alpha, ::testing::ValuesIn(kAlphaCases),
                         [](const auto& info) { return std::string(info.param.name); });

// The masked twins against the plain forms: a seeded block over a seeded
// old image, at a column that isn't on a byte of the mask and across the
// box's edges. Unmasked pixels equal the plain form's, masked ones stay old;
// the depth ramp goes on under masked pixels. Bit 4 is set for the masked
// call: under a mask it counts for nothing.
TEST_P(Images, MaskedTwinsMatchThePlainFormsWhereTheMaskIsClear) {
  const Mode_Case& m = GetParam();
  std::mt19937 random(20261123u + unsigned(m.buffer_depth) + unsigned(m.alpha) * 7);
  const int width = 40, height = 24;
  Block b(23, 9, m.mapped(), 3);
  std::vector<std::uint32_t> old(std::size_t(width) * height);
  std::vector<std::uint16_t> old_depth(old.size());
  for (int row = 0; row < 9; ++row)
    for (int col = 0; col < 23; ++col) {
      const std::uint32_t word = random();
      const int pick = random() % 4;  // alpha 0, 255 or as drawn
      b.set(col, row, pick == 0 ? word & 0xFFFFFF : pick == 1 ? word | 0xFF000000 : word);
    }
  for (std::size_t i = 0; i < old.size(); ++i) {
    old[i] = random();
    old_depth[i] = std::uint16_t(random() % 1200);
  }
  auto prepare = [&](Renderer_Harness& h) {
    for (int y = 0; y < height; ++y)
      for (int x = 0; x < width; ++x) {
        h.poke(x, y, old[y * width + x]);
        if (m.depth()) h.poke_depth(x, y, old_depth[y * width + x]);
      }
    draw(h, {5, 18, 100}, {27, 10, 160}, b);
  };
  Renderer_Harness plain(m, width, height), masked(m, width, height);
  masked.use_mask(box(11, 12, 21, 16));
  set_advanced(masked, OT_Advanced_Images);
  prepare(plain);
  prepare(masked);
  const Frame_Buffer_Mask& mask = *masked.renderer().mask_cache->head;
  int shown = 0, hidden = 0;
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) {
      const bool clear = !masked_bit(mask, x, y);
      const bool in_block = x >= 5 && x <= 27 && y >= 10 && y <= 18;
      if (in_block) ++(clear ? shown : hidden);
      const std::uint32_t old_pixel = m.mapped() ? byte(old[y * width + x]) : old[y * width + x];
      EXPECT_EQ(masked.pixel(x, y), clear ? plain.pixel(x, y) : old_pixel) << x << "," << y;
      if (m.depth()) {
        EXPECT_EQ(masked.depth(x, y), clear ? plain.depth(x, y) : old_depth[y * width + x]) << x << "," << y;
      }
    }
  EXPECT_GT(shown, 20);
  EXPECT_GT(hidden, 20);
  EXPECT_NE(plain.snapshot(), masked.snapshot());
}

// In the depth blend the mask is asked before depth_enabled: a masked call
// keeps the depth test even with depth off.
TEST(Images, MaskedDepthBlendKeepsDepthWithDepthOff) {
  Renderer_Harness h(kZRgb32Alpha, 16, 16);
  h.use_mask(box(0, 0, 16, 16));
  h.rendition().writable_device()->depth_enabled = 0;
  h.poke_depth(3, 3, 10);
  Block b(2, 1, false);
  b.set(0, 0, opaque(5));
  b.set(1, 0, opaque(6));
  draw(h, {3, 3, 50}, {4, 3, 50}, b);
  EXPECT_EQ(h.pixel(3, 3), h.clear_value());
  EXPECT_EQ(h.pixel(4, 3), opaque(6));
  EXPECT_EQ(h.depth(4, 3), 50);
}

}  // namespace
}  // namespace tarn::testing
