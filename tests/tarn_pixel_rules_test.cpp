// The pixel rules shared by all primitives, by their worked values:
// rounding, slopes, the two blends, merge control, the two forms of the
// mapped dither, the depth test and the mask cursor.
#include <cmath>

#include "pixel/blend.h"
#include "pixel/depth_test.h"
#include "pixel/dither.h"
#include "pixel/fixed_point.h"
#include "pixel/mask.h"
#include "pixel/merge.h"
#include "pixel/rounding.h"
#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

TEST(Rounding, HalvesGoUpOnBothSidesAndOutOfRangeIsTheIndefiniteInteger) {
  EXPECT_EQ(round_float(0.5f), 1);
  EXPECT_EQ(round_float(-0.5f), 0);
  EXPECT_EQ(round_float(-0.50001f), -1);
  EXPECT_EQ(round_float(1.5f), 2);
  EXPECT_EQ(round_float(-1.5f), -1);
  EXPECT_EQ(round_float(-2.4f), -2);
  EXPECT_EQ(round_float(0.49999997f), 1);  // x + 0.5 rounds to 1 in float
  EXPECT_EQ(round_float(-0.5000005f), 0);  // x less a hair under a half
  EXPECT_EQ(round_float(-0.5000015f), -1);
  EXPECT_EQ(round_float(2147483520.0f), 2147483520);
  for (float out : {3e9f, -3e9f, NAN, INFINITY}) EXPECT_EQ(round_float(out), INT32_MIN);
  EXPECT_EQ(round_double(0.5), 1);
  EXPECT_EQ(round_double(-0.5), 0);
  EXPECT_EQ(round_double(-0.49999999999), 0);
  EXPECT_EQ(round_double(-0.500000001), -1);
  EXPECT_EQ(round_double(2147483647.4), 2147483647);
  EXPECT_EQ(round_double(2147483647.6), INT32_MIN);
  const OT_Point in[2] = {{1.5f, -1.5f, 7.7f}, {2.4f, 3.6f, -8.5f}};
  OT_DCI_Point out[2] = {{0, 0, 99}, {0, 0, 98}};
  round_points_xy(in, 2, out);
  EXPECT_EQ(out[0].x, 2);
  EXPECT_EQ(out[0].y, -1);
  EXPECT_EQ(out[1].y, 4);
  EXPECT_EQ(out[0].z, 99);
  round_points(in, 2, out);
  EXPECT_EQ(out[0].z, 8);
  EXPECT_EQ(out[1].z, -8);
}

TEST(Slopes, ShiftsForOneTwoFourEightAndTruncationOtherwise) {
  for (int h : {1, 2, 4, 8})
    for (int d : {-300, -7, -1, 0, 1, 7, 300}) {
      EXPECT_EQ(slope(d, h), d * 65536 / h) << d << "/" << h;
      EXPECT_EQ(slope15(d, h), d * 32768 / h) << d << "/" << h;
    }
  EXPECT_EQ(slope(1, 3), 21845);
  EXPECT_EQ(slope(-1, 3), -21845);
  EXPECT_EQ(slope(-7, 33), -13901);
  EXPECT_EQ(slope(32767, 5), 429483622);
  EXPECT_EQ(slope15(1, 3), 10922);
  EXPECT_EQ(slope15(-5, 8), -20480);
  EXPECT_EQ(slope15(-5, 6), -27306);
}

constexpr std::uint32_t word(int r, int g, int b, int a) { return OT_RGB32::rgba(r, g, b, a).word(); }

TEST(Blend, WorkedValuesOfBothForms) {
  // Weight form: 0 + (255 * 128 >> 8) = 127; 255 + (-255 * 128 >> 8) = 127.
  EXPECT_EQ(blend_weight(word(0, 0, 0, 255), OT_RGB32::rgba(255, 255, 255, 128)), word(127, 127, 127, 255));
  EXPECT_EQ(blend_weight(word(255, 255, 255, 255), OT_RGB32::rgba(0, 0, 0, 128)), word(127, 127, 127, 255));
  EXPECT_EQ(blend_weight(word(0, 255, 17, 9), OT_RGB32::rgba(255, 0, 0, 128)), word(127, 127, 8, 255));
  EXPECT_EQ(blend_weight(word(10, 20, 30, 0), OT_RGB32::rgba(200, 100, 50, 254)), word(198, 99, 49, 255));
  // Alpha 255 is the colour, alpha 0 the old channels, whatever they are.
  for (int old = 0; old < 256; old += 15) {
    EXPECT_EQ(blend_weight(word(old, 255 - old, old ^ 0x5A, old), OT_RGB32::rgba(9, 200, 77, 255)),
              word(9, 200, 77, 255));
    EXPECT_EQ(blend_weight(word(old, 255 - old, old ^ 0x5A, 3), OT_RGB32::rgba(9, 200, 77, 0)),
              word(old, 255 - old, old ^ 0x5A, 255));
    EXPECT_EQ(blend_exact(word(old, 255 - old, old ^ 0x5A, 3), OT_RGB32::rgba(9, 200, 77, 0)),
              word(old, 255 - old, old ^ 0x5A, 255));
    EXPECT_EQ(blend_exact(word(old, 255 - old, old ^ 0x5A, 3), OT_RGB32::rgba(9, 200, 77, 255)),
              word(9, 200, 77, 255));
  }
  // Exact form: 32640 / 255 = 128, one above the weight form;
  // (17 * 155 + 250 * 100) / 255 = 108.3, (200 * 155 + 1 * 100) / 255 = 121.9.
  EXPECT_EQ(blend_exact(word(0, 0, 0, 255), OT_RGB32::rgba(255, 255, 255, 128)), word(128, 128, 128, 255));
  EXPECT_EQ(blend_exact(word(255, 255, 255, 255), OT_RGB32::rgba(0, 0, 0, 128)), word(127, 127, 127, 255));
  EXPECT_EQ(blend_exact(word(17, 200, 3, 9), OT_RGB32::rgba(250, 1, 100, 100)), word(108, 121, 41, 255));
}

// Merge control on a renderer whose background is white and whose
// alternate is a white with one less blue; mapped with 200 and 201.
TEST(Merge, Rgb32RuleWorkedValues) {
  Renderer_Harness h(kRgb32);
  const std::uint32_t white = word(255, 255, 255, 255), near_white = word(255, 255, 254, 255);
  h.renderer().merge_color = OT_RGB32::from_word(white);
  h.renderer().merge_alternate_color = OT_RGB32::from_word(near_white);
  auto merged = [&](std::uint32_t old, std::uint32_t color) {
    Merge_Rgb32(h.renderer()).apply(&old, color);
    return old;
  };
  const std::uint32_t red = word(255, 0, 0, 255), green = word(0, 255, 0, 255);
  EXPECT_EQ(merged(white, red), red);                 // ink on white paper
  EXPECT_EQ(merged(red, green), word(0, 0, 0, 255));  // red AND green
  EXPECT_EQ(merged(red, red), red);                   // a second pass changes nothing
  EXPECT_EQ(merged(white, white), near_white);        // the background drawn on itself
  EXPECT_EQ(merged(white, word(255, 255, 255, 7)), near_white);
  EXPECT_EQ(merged(word(255, 255, 255, 100), red), word(255, 0, 0, 255));  // not opaque: not background
  EXPECT_EQ(merged(word(255, 255, 255, 100), white), near_white);          // the AND is the background
  EXPECT_EQ(merged(word(10, 20, 30, 40), word(255, 255, 255, 0)), word(10, 20, 30, 255));
  for (const auto& [force, mode, on] :
       {std::tuple{0, 0, false}, std::tuple{0, 19, false}, std::tuple{0, 20, true}, std::tuple{0, 21, false},
        std::tuple{1, 0, true}, std::tuple{7, 3, true}}) {
    h.renderer().force_merge = byte(force);
    h.rendition().writable_raster()->write_mode = mode;
    EXPECT_EQ(merge_on(h.renderer(), h.rendition()), on) << force << " " << mode;
  }
}

TEST(Merge, MappedRuleTakesThePalettesMatchOfTheAnd) {
  Renderer_Harness h(kMapped);
  h.renderer().merge_index = 200;
  h.renderer().merge_alternate_index = 201;
  const OT_Palette& palette = h.renderer().current_renderer_options()->palette();
  auto merged = [&](byte old, byte index) {
    Merge_Mapped(h.renderer()).apply(&old, index);
    return old;
  };
  auto and_match = [&](byte a, byte b) {
    OT_RGB32 c = OT_RGB32::from_word(palette.color(a).word() & palette.color(b).word());
    c.a = 255;
    return byte(palette.closest_match(c, false));
  };
  EXPECT_EQ(merged(200, 37), 37);
  EXPECT_EQ(merged(200, 200), 201);
  EXPECT_EQ(merged(37, 37), 37);
  int differing = 0;
  for (int old = 0; old < 256; old += 7)
    for (int index = 1; index < 256; index += 11) {
      if (old == 200 || old == index) continue;
      ASSERT_EQ(merged(byte(old), byte(index)), and_match(byte(old), byte(index))) << old << " " << index;
      differing += and_match(byte(old), byte(index)) != index;
    }
  EXPECT_GT(differing, 100);
  // An AND whose match is the background stays the background.
  h.renderer().merge_index = and_match(37, 190);
  h.renderer().merge_alternate_index = 1;
  EXPECT_EQ(merged(37, 190), h.renderer().merge_index);
}

// ---- The mapped dither ---------------------------------------------------------

OT_Color_Cube cube(std::uint32_t base, std::uint32_t rs, std::uint32_t gs, std::uint32_t bs, int scale) {
  OT_Color_Cube c;
  c.base = base;
  c.red_step = rs;
  c.green_step = gs;
  c.blue_step = bs;
  c.red_scale = c.green_scale = c.blue_scale = scale;
  return c;
}

// By the rule: a channel's level and 16-bit fraction come from byte * scale
// * 256; the comparison form steps a channel up when d + F reaches 0xFFFF
// (blue by blue_step), the addition form when d + F + 128 reaches 0x10000
// (blue by 1).
int by_rule(const OT_Color_Cube& k, OT_RGB32 c, int d, bool added) {
  int index = int(k.base);
  const std::pair<int, int> channels[3] = {{c.r, int(k.red_step)}, {c.g, int(k.green_step)}, {c.b, 1}};
  for (int i = 0; i < 3; ++i) {
    const int v = channels[i].first * k.red_scale * 256, level = v >> 16, fraction = v & 0xFFFF;
    const bool up = added ? d + fraction + 128 >= 0x10000 : d + fraction >= 0xFFFF;
    index +=
        level * channels[i].second + (up ? (i == 2 && !added ? int(k.blue_step) : channels[i].second) : 0);
  }
  return index & 255;
}

TEST(Dither, BothFormsFollowTheRuleForEveryThreshold) {
  for (const OT_Color_Cube& k : {cube(16, 36, 6, 1, 5), cube(3, 20, 7, 3, 5)})
    for (OT_RGB32 c :
         {OT_RGB32::rgba(100, 150, 200), OT_RGB32::rgba(100, 100, 7), OT_RGB32::rgba(7, 100, 100),
          OT_RGB32::rgba(100, 7, 100), OT_RGB32::rgba(51, 0, 0), OT_RGB32::rgba(254, 1, 128),
          OT_RGB32::rgba(151, 151, 40), OT_RGB32::rgba(255, 255, 255)}) {
      const Dither_Thresholds t = dither_thresholds(k, c);
      const Dither_Levels v = dither_levels(k, c);
      for (int d = 0; d <= 0xFFFF; ++d) {
        const int compared = dither_pick(t, std::uint16_t(d)), added = dither_add(k, v, std::uint16_t(d));
        if (compared != by_rule(k, c, d, false) || added != by_rule(k, c, d, true))
          FAIL() << int(c.r) << "," << int(c.g) << "," << int(c.b) << " d " << d << ": " << compared << " "
                 << added;
      }
    }
  // Red 51 at scale 5 is level 0, fraction 0xFF00: the addition form steps
  // from d 0x80, the comparison form from 0xFF.
  const OT_Color_Cube k = cube(16, 36, 6, 1, 5);
  const Dither_Thresholds t = dither_thresholds(k, OT_RGB32::rgba(51, 0, 0));
  const Dither_Levels v = dither_levels(k, OT_RGB32::rgba(51, 0, 0));
  EXPECT_EQ(dither_pick(t, 0x7F), 16);
  EXPECT_EQ(dither_add(k, v, 0x7F), 16);
  EXPECT_EQ(dither_pick(t, 0xFE), 16);
  EXPECT_EQ(dither_add(k, v, 0x80), 16 + 36);
  EXPECT_EQ(dither_pick(t, 0xFF), 16 + 36);
}

TEST(Dither, ColourOnCubeLevelsIsFlatAndByte255StaysInTheCube) {
  const OT_Color_Cube k = cube(5, 40, 9, 2, 64);  // multiples of 4 sit on levels
  const Dither_Thresholds t = dither_thresholds(k, OT_RGB32::rgba(8, 100, 252));
  const int flat = 5 + 2 * 40 + 25 * 9 + 63;
  for (int d = 0; d < 0xFFFF; d += 3) ASSERT_EQ(dither_pick(t, std::uint16_t(d)), flat & 255) << d;
  EXPECT_EQ(dither_pick(t, 0xFFFF), (flat + 40 + 9 + 2) & 255);  // only the top value moves it
  for (int n = 2; n <= 6; ++n) {
    const OT_Color_Cube top_cube = cube(10, std::uint32_t(n * n), std::uint32_t(n), 1, n - 1);
    const int top = 10 + (n - 1) * (n * n + n + 1);
    const OT_RGB32 white = OT_RGB32::rgba(255, 255, 255);
    EXPECT_EQ(dither_pick(dither_thresholds(top_cube, white), 0xFFFF), top) << n;
    EXPECT_EQ(dither_pick(dither_thresholds(top_cube, white), 0), top - (n * n + n + 1)) << n;
    EXPECT_EQ(dither_add(top_cube, dither_levels(top_cube, white), 0xFFFF), top) << n;
  }
}

TEST(Dither, ThresholdByRowAndAddressSoUnalignedRowsShiftTheColumn) {
  alignas(8) static byte image[16 * 8];
  int differs_from_x = 0;
  for (int r = 0; r < 16; ++r)
    for (int x = 0; x < 13; ++x) {
      const byte* at = image + 13 * (r % 8) + x;  // rows 13 bytes apart
      ASSERT_EQ(dither_threshold(r, at), SHARED.dither[(r % 8) * 8 + (13 * (r % 8) + x) % 8])
          << r << " " << x;
      differs_from_x += dither_threshold(r, at) != SHARED.dither[(r % 8) * 8 + x % 8];
    }
  EXPECT_GT(differs_from_x, 0);
}

// ---- Depth test and mask cursor --------------------------------------------------

TEST(Depth_Test, EachValueOnBothSidesOfEquality) {
  const struct {
    int test;
    bool below, equal, above;
  } cases[] = {{1, true, false, false}, {2, true, true, false}, {5, false, false, true},
               {0, true, true, false},  {3, true, true, false}, {4, true, true, false},
               {6, true, true, false},  {-1, true, true, false}};
  for (const auto& c : cases)
    with_depth_test(c.test, [&]<class Test>() {
      for (std::uint16_t stored : {std::uint16_t(1), std::uint16_t(500), std::uint16_t(0xFFFF)}) {
        EXPECT_EQ(Test::passes(stored - 1, stored), c.below) << c.test << " " << stored;
        EXPECT_EQ(Test::passes(stored, stored), c.equal) << c.test << " " << stored;
        if (stored != 0xFFFF) {
          EXPECT_EQ(Test::passes(stored + 1, stored), c.above) << c.test;
        }
      }
    });
}

TEST(Mask_Cursor, MovesByBitsFromTheHighBitOfEachByte) {
  static byte row[16];
  // -1 from bit 0 is bit 7 of the byte before; bit 5 plus 10 is bit 7 of
  // the next byte.
  Mask_Cursor c{row + 8, 0};
  advance(c, -1);
  EXPECT_EQ(c.address, row + 7);
  EXPECT_EQ(c.bit, 7);
  c = {row + 8, 5};
  advance(c, 10);
  EXPECT_EQ(c.address, row + 9);
  EXPECT_EQ(c.bit, 7);
  for (int start = 0; start < 8; ++start)
    for (int n = -40; n <= 40; ++n) {
      c = {row + 8, start};
      advance(c, n);
      const int at = 64 + start + n;
      ASSERT_EQ(c.address, row + at / 8) << start << " " << n;
      ASSERT_EQ(c.bit, at % 8) << start << " " << n;
    }
  row[3] = 0x20;  // bit number 2
  for (int b = 0; b < 8; ++b) EXPECT_EQ(mask_bit(Mask_Cursor{row + 3, b}), b == 2) << b;
}

}  // namespace
}  // namespace tarn::testing
