// The pixel rules shared by all primitives: the two blends, merge control,
// the two forms of the mapped dither, the depth test, the face pattern's
// phase and the span writers built on them.
#include <cstdint>
#include <random>
#include <vector>

#include "pixel/blend.h"
#include "pixel/depth_test.h"
#include "pixel/dither.h"
#include "pixel/face_pattern.h"
#include "pixel/merge.h"
#include "pixel/pixel_writers.h"
#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

// ---- Alpha blending ----------------------------------------------------------

constexpr std::uint32_t word(int r, int g, int b, int a) { return OT_RGB32::rgba(r, g, b, a).word(); }

// Floor of n / 256 for either sign.
int floor_div_256(int n) { return n >= 0 ? n / 256 : -((-n + 255) / 256); }

// The weight of an alpha byte: floor(a * 256 / 255).
int weight_of(int a) { return a * 256 / 255; }

int weight_channel(int old, int color, int a) { return old + floor_div_256((color - old) * weight_of(a)); }
int exact_channel(int old, int color, int a) { return (old * (255 - a) + color * a) / 255; }

TEST(Blend_Weight, HalfAlphaRoundsTowardNegativeInfinity) {
  EXPECT_EQ(blend_weight(word(0, 0, 0, 255), OT_RGB32::rgba(255, 255, 255, 128)), word(127, 127, 127, 255));
  // -255 * 128 >> 8 is -128, not -127: the result is 127, not 128.
  EXPECT_EQ(blend_weight(word(255, 255, 255, 255), OT_RGB32::rgba(0, 0, 0, 128)), word(127, 127, 127, 255));
  // Channels are blended each on its own.
  EXPECT_EQ(blend_weight(word(0, 255, 0, 255), OT_RGB32::rgba(255, 0, 0, 128)), word(127, 127, 0, 255));
}

TEST(Blend_Weight, OpaqueColourReplacesEveryOldValue) {
  for (int old = 0; old < 256; ++old)
    for (int color = 0; color < 256; ++color) {
      const std::uint32_t result =
          blend_weight(word(old, 255 - old, old ^ 0x5A, old), OT_RGB32::rgba(color, color ^ 0x33, 255 - color, 255));
      ASSERT_EQ(result, word(color, color ^ 0x33, 255 - color, 255)) << old << " " << color;
    }
}

TEST(Blend_Weight, TransparentColourKeepsChannelsButSetsAlphaByte) {
  for (int old = 0; old < 256; ++old)
    ASSERT_EQ(blend_weight(word(old, 255 - old, old ^ 0x5A, old ^ 0x77), OT_RGB32::rgba(200, 10, 99, 0)),
              word(old, 255 - old, old ^ 0x5A, 255))
        << old;
}

TEST(Blend_Exact, WorkedValues) {
  // 32640 / 255 = 128, one above the weight form.
  EXPECT_EQ(blend_exact(word(0, 0, 0, 255), OT_RGB32::rgba(255, 255, 255, 128)), word(128, 128, 128, 255));
  EXPECT_EQ(blend_exact(word(255, 255, 255, 255), OT_RGB32::rgba(0, 0, 0, 128)), word(127, 127, 127, 255));
  EXPECT_EQ(blend_exact(word(17, 200, 3, 9), OT_RGB32::rgba(250, 1, 100, 0)), word(17, 200, 3, 255));
}

// Every old value, colour value and alpha, each channel with its own values
// so that a mix-up of channels shows; the pixel's alpha byte is never 255
// before and always after.
TEST(Blend_Exact, AgreesWithTheDivisionEverywhere) {
  for (int a = 0; a < 256; ++a)
    for (int old = 0; old < 256; ++old)
      for (int color = 0; color < 256; ++color) {
        const int ob = old, og = 255 - old, orr = old ^ 0x5A;
        const int cb = color, cg = color ^ 0xA5, cr = 255 - color;
        const std::uint32_t result =
            blend_exact(OT_RGB32{byte(ob), byte(og), byte(orr), byte(old % 255)}.word(),
                        OT_RGB32{byte(cb), byte(cg), byte(cr), byte(a)});
        const std::uint32_t expected = OT_RGB32{byte(exact_channel(ob, cb, a)), byte(exact_channel(og, cg, a)),
                                                byte(exact_channel(orr, cr, a)), 255}
                                           .word();
        if (result != expected) {
          ASSERT_EQ(result, expected) << "old " << old << " colour " << color << " alpha " << a;
        }
      }
}

TEST(Blend_Weight, AgreesWithTheWeightTableEverywhere) {
  for (int a = 0; a < 256; ++a)
    for (int old = 0; old < 256; ++old)
      for (int color = 0; color < 256; ++color) {
        const int ob = old, og = 255 - old, orr = old ^ 0x5A;
        const int cb = color, cg = color ^ 0xA5, cr = 255 - color;
        const std::uint32_t result =
            blend_weight(OT_RGB32{byte(ob), byte(og), byte(orr), byte(old % 255)}.word(),
                         OT_RGB32{byte(cb), byte(cg), byte(cr), byte(a)});
        const std::uint32_t expected = OT_RGB32{byte(weight_channel(ob, cb, a)), byte(weight_channel(og, cg, a)),
                                                byte(weight_channel(orr, cr, a)), 255}
                                           .word();
        if (result != expected) {
          ASSERT_EQ(result, expected) << "old " << old << " colour " << color << " alpha " << a;
        }
      }
}

// ---- Merge control -------------------------------------------------------------

constexpr Mode_Case kRgb32Mode{"rgb32", 0, OT_Color_System_Direct, false};
constexpr Mode_Case kMappedMode{"mapped", 0, OT_Color_System_Mapped, false};

constexpr std::uint32_t kWhite = word(255, 255, 255, 255);
constexpr std::uint32_t kNearWhite = word(255, 255, 254, 255);
constexpr std::uint32_t kRed = word(255, 0, 0, 255);
constexpr std::uint32_t kGreen = word(0, 255, 0, 255);
constexpr std::uint32_t kBlack = word(0, 0, 0, 255);

// A renderer whose merge background is white and whose alternate is a white
// with one less blue.
class Merge_Rgb32_Rule : public ::testing::Test {
 protected:
  Merge_Rgb32_Rule() : h_(kRgb32Mode) {
    h_.renderer().merge_color = OT_RGB32::from_word(kWhite);
    h_.renderer().merge_alternate_color = OT_RGB32::from_word(kNearWhite);
  }
  std::uint32_t merged(std::uint32_t old, std::uint32_t color) {
    merge_rgb32(h_.renderer(), &old, color);
    return old;
  }
  Renderer_Harness h_;
};

TEST_F(Merge_Rgb32_Rule, InkOnWhitePaper) {
  EXPECT_EQ(merged(kWhite, kRed), kRed);
  EXPECT_EQ(merged(kRed, kGreen), kBlack);  // red AND green
  EXPECT_EQ(merged(kRed, kRed), kRed);
  EXPECT_EQ(merged(word(255, 255, 0, 255), word(0, 255, 255, 255)), kGreen);
}

TEST_F(Merge_Rgb32_Rule, BackgroundColourOnBackgroundGivesTheAlternate) {
  EXPECT_EQ(merged(kWhite, kWhite), kNearWhite);
}

TEST_F(Merge_Rgb32_Rule, AndEqualToTheBackgroundAfterAlphaGivesTheAlternate) {
  // White with alpha 128 is not the background; its AND with opaque white is
  // white with alpha 128, which becomes the background once alpha is 255.
  EXPECT_EQ(merged(word(255, 255, 255, 128), kWhite), kNearWhite);
}

TEST_F(Merge_Rgb32_Rule, ResultsAreOpaque) {
  // On the background the colour goes in with alpha 255.
  EXPECT_EQ(merged(kWhite, word(10, 20, 30, 7)), word(10, 20, 30, 255));
  EXPECT_EQ(merged(word(255, 0, 255, 3), word(255, 255, 0, 200)), kRed);
}

TEST_F(Merge_Rgb32_Rule, PixelWithoutOpaqueAlphaIsNotBackground) {
  // Cleared with a window colour of alpha 100: grey 200 is not the background
  // grey, so red ANDs with it instead of replacing it.
  h_.renderer().merge_color = OT_RGB32::rgba(200, 200, 200, 255);
  EXPECT_EQ(merged(word(200, 200, 200, 100), kRed), word(200, 0, 0, 255));
  EXPECT_EQ(merged(word(200, 200, 200, 255), kRed), kRed);
  // A colour equal to such a pixel, alpha and all, leaves it alone.
  EXPECT_EQ(merged(word(200, 200, 200, 100), word(200, 200, 200, 100)), word(200, 200, 200, 100));
}

TEST_F(Merge_Rgb32_Rule, SecondPassOfTheSameColourChangesNothing) {
  std::uint32_t pixel = kWhite;
  for (std::uint32_t color : {kRed, word(255, 128, 64, 255), kWhite}) {
    merge_rgb32(h_.renderer(), &pixel, color);
    const std::uint32_t once = pixel;
    merge_rgb32(h_.renderer(), &pixel, color);
    EXPECT_EQ(pixel, once);
  }
}

class Merge_Mapped_Rule : public ::testing::Test {
 protected:
  Merge_Mapped_Rule() : h_(kMappedMode) {
    h_.renderer().merge_index = kBackground;
    h_.renderer().merge_alternate_index = kAlternate;
  }
  const OT_Palette& palette() { return h_.renderer().current_renderer_options()->palette(); }
  byte merged(byte old, byte index) {
    merge_mapped(h_.renderer(), &old, index);
    return old;
  }
  byte and_match(byte a, byte b) {
    OT_RGB32 c = OT_RGB32::from_word(palette().color(a).word() & palette().color(b).word());
    c.a = 255;
    return static_cast<byte>(palette().closest_match(c, false));
  }
  static constexpr byte kBackground = 200, kAlternate = 201;
  Renderer_Harness h_;
};

TEST_F(Merge_Mapped_Rule, BackgroundTakesTheIndexOrTheAlternate) {
  EXPECT_EQ(merged(kBackground, 37), 37);
  EXPECT_EQ(merged(kBackground, kBackground), kAlternate);
  EXPECT_EQ(merged(kBackground, kAlternate), kAlternate);
}

TEST_F(Merge_Mapped_Rule, SameIndexChangesNothing) {
  EXPECT_EQ(merged(37, 37), 37);
  EXPECT_EQ(merged(kAlternate, kAlternate), kAlternate);
}

TEST_F(Merge_Mapped_Rule, OtherPixelsTakeThePalettesMatchOfTheAnd) {
  ASSERT_TRUE(palette());
  for (int old = 0; old < 256; old += 7)
    for (int index = 1; index < 256; index += 11) {
      if (old == kBackground || old == index) continue;
      ASSERT_EQ(merged(byte(old), byte(index)), and_match(byte(old), byte(index))) << old << " " << index;
    }
}

TEST_F(Merge_Mapped_Rule, AndMatchingTheBackgroundStaysTheBackground) {
  ASSERT_TRUE(palette());
  // Make the background the index that some AND maps to; then that pixel
  // becomes the background index itself, not the alternate.
  int found_old = -1, found_index = -1;
  for (int old = 0; old < 256 && found_old < 0; ++old)
    for (int index = 0; index < 256; ++index) {
      if (old == index) continue;
      const byte match = and_match(byte(old), byte(index));
      if (match != old && match != index) {
        found_old = old;
        found_index = index;
        break;
      }
    }
  ASSERT_GE(found_old, 0);
  const byte match = and_match(byte(found_old), byte(found_index));
  h_.renderer().merge_index = match;
  h_.renderer().merge_alternate_index = static_cast<byte>(match + 1);
  EXPECT_EQ(merged(byte(found_old), byte(found_index)), match);
}

TEST(Merge_On, ForcedOrWriteModeTwentyOnly) {
  Renderer_Harness h(kRgb32Mode);
  const struct {
    byte force;
    int write_mode;
    bool on;
  } cases[] = {{0, 0, false}, {0, 19, false}, {0, 20, true}, {0, 21, false}, {1, 0, true}, {1, 20, true}, {7, 3, true}};
  for (const auto& c : cases) {
    h.renderer().force_merge = c.force;
    h.rendition().writable_raster()->write_mode = c.write_mode;
    EXPECT_EQ(merge_on(h.renderer(), h.rendition()), c.on) << int(c.force) << " " << c.write_mode;
  }
}

// ---- Mapped colour and dither --------------------------------------------------

OT_Color_Cube make_cube(std::uint32_t base, std::uint32_t rs, std::uint32_t gs, std::uint32_t bs, int scale) {
  OT_Color_Cube cube;
  cube.base = base;
  cube.red_step = rs;
  cube.green_step = gs;
  cube.blue_step = bs;
  cube.red_scale = cube.green_scale = cube.blue_scale = scale;
  return cube;
}

// The 6x6x6 cube from index 16, and cubes whose blue step is not 1.
const OT_Color_Cube kCube6 = make_cube(16, 36, 6, 1, 5);
const OT_Color_Cube kOddCube = make_cube(3, 20, 7, 3, 5);

struct Channel {
  int level;
  int fraction;
};
Channel channel_of(int byte_value, int scale) {
  const std::int32_t v = byte_value * scale * 256;
  return {(v >> 16) & 255, v & 0xFFFF};
}

// Each channel moves up one level when d + F is at least 0xFFFF; blue's level
// counts 1 and its step up counts blue_step.
byte compared_index(const OT_Color_Cube& cube, OT_RGB32 c, int d) {
  const Channel r = channel_of(c.r, cube.red_scale), g = channel_of(c.g, cube.green_scale),
                b = channel_of(c.b, cube.blue_scale);
  const int ur = d + r.fraction >= 0xFFFF, ug = d + g.fraction >= 0xFFFF, ub = d + b.fraction >= 0xFFFF;
  return static_cast<byte>(cube.base + (r.level + ur) * cube.red_step + (g.level + ug) * cube.green_step + b.level +
                           ub * cube.blue_step);
}

// The addition form: a channel moves up when d + F + 128 reaches 0x10000, and
// blue counts 1.
byte added_index(const OT_Color_Cube& cube, OT_RGB32 c, int d) {
  const Channel r = channel_of(c.r, cube.red_scale), g = channel_of(c.g, cube.green_scale),
                b = channel_of(c.b, cube.blue_scale);
  const int ur = d + r.fraction + 128 >= 0x10000, ug = d + g.fraction + 128 >= 0x10000,
            ub = d + b.fraction + 128 >= 0x10000;
  return static_cast<byte>(cube.base + (r.level + ur) * cube.red_step + (g.level + ug) * cube.green_step + b.level +
                           ub);
}

std::vector<OT_RGB32> dither_colours() {
  std::vector<OT_RGB32> out = {
      OT_RGB32::rgba(0, 0, 0),       OT_RGB32::rgba(255, 255, 255), OT_RGB32::rgba(100, 150, 200),
      OT_RGB32::rgba(100, 100, 100), OT_RGB32::rgba(100, 100, 7),   OT_RGB32::rgba(7, 100, 100),
      OT_RGB32::rgba(100, 7, 100),   OT_RGB32::rgba(51, 0, 0),      OT_RGB32::rgba(0, 51, 204),
      OT_RGB32::rgba(1, 2, 3),       OT_RGB32::rgba(3, 2, 1),       OT_RGB32::rgba(254, 1, 128),
  };
  std::mt19937 random(4242);
  std::uniform_int_distribution<int> channel(0, 255);
  for (int i = 0; i < 28; ++i) out.push_back(OT_RGB32::rgba(channel(random), channel(random), channel(random)));
  return out;
}

TEST(Dither_Compare, EachChannelStepsUpExactlyWhenThresholdPlusFractionReachesTheTop) {
  for (const OT_Color_Cube& cube : {kCube6, kOddCube})
    for (OT_RGB32 c : dither_colours()) {
      const Dither_Thresholds t = dither_thresholds(cube, c);
      for (int d = 0; d <= 0xFFFF; ++d) {
        const byte got = dither_pick(t, static_cast<std::uint16_t>(d)), want = compared_index(cube, c, d);
        if (got != want) {
          ASSERT_EQ(got, want) << "colour " << int(c.r) << "," << int(c.g) << "," << int(c.b) << " d " << d
                               << " blue step " << cube.blue_step;
        }
      }
    }
}

TEST(Dither_Compare, EveryTableThresholdOnManyColours) {
  std::mt19937 random(77);
  std::uniform_int_distribution<int> channel(0, 255);
  for (int i = 0; i < 5000; ++i) {
    const OT_RGB32 c = OT_RGB32::rgba(channel(random), channel(random), channel(random));
    const Dither_Thresholds t = dither_thresholds(kCube6, c);
    for (std::uint16_t d : SHARED.dither) ASSERT_EQ(dither_pick(t, d), compared_index(kCube6, c, d)) << i << " " << d;
  }
}

TEST(Dither_Compare, ColourOnCubeLevelsIsFlat) {
  // Scale 64: every multiple of 4 sits exactly on a level, with fraction 0.
  const OT_Color_Cube cube = make_cube(5, 40, 9, 2, 64);
  for (OT_RGB32 c : {OT_RGB32::rgba(8, 100, 252), OT_RGB32::rgba(0, 0, 0), OT_RGB32::rgba(252, 4, 60)}) {
    const Dither_Thresholds t = dither_thresholds(cube, c);
    const byte flat = static_cast<byte>(5 + (c.r / 4) * 40 + (c.g / 4) * 9 + c.b / 4);
    for (int d = 0; d < 0xFFFF; ++d) ASSERT_EQ(dither_pick(t, static_cast<std::uint16_t>(d)), flat) << d;
    // Only the very top threshold moves all three channels up.
    EXPECT_EQ(dither_pick(t, 0xFFFF), static_cast<byte>(flat + 40 + 9 + 2));
    for (std::uint16_t d : SHARED.dither) {
      if (d != 0xFFFF) {
        ASSERT_EQ(dither_pick(t, d), flat);
      }
    }
  }
}

TEST(Dither_Compare, OrderOfEqualFractionsDoesNotMatter) {
  // Two or three channels with one fraction, in every arrangement: each
  // arrangement gives the index of its own levels.
  for (int a : {7, 100, 151})
    for (int b : {0, 40, 200}) {
      const OT_RGB32 colours[] = {OT_RGB32::rgba(a, a, b), OT_RGB32::rgba(a, b, a), OT_RGB32::rgba(b, a, a),
                                  OT_RGB32::rgba(a, a, a)};
      for (OT_RGB32 c : colours) {
        const Dither_Thresholds t = dither_thresholds(kOddCube, c);
        EXPECT_LE(t.t1, t.t2);
        EXPECT_LE(t.t2, t.t3);
        for (int d = 0; d <= 0xFFFF; d += 17)
          ASSERT_EQ(dither_pick(t, static_cast<std::uint16_t>(d)), compared_index(kOddCube, c, d)) << a << " " << b;
      }
    }
}

// With scale n - 1, byte 255 sits just below the top level, and neither form
// steps beyond it, for any threshold.
TEST(Dither_Forms, ByteTwoFiftyFiveNeverLeavesTheCube) {
  for (int n = 2; n <= 6; ++n) {  // cubes whose top index fits in 8 bits from base 10
    const OT_Color_Cube cube = make_cube(10, std::uint32_t(n * n), std::uint32_t(n), 1, n - 1);
    const int top = 10 + (n - 1) * (n * n + n + 1);
    const OT_RGB32 white = OT_RGB32::rgba(255, 255, 255);
    const Dither_Thresholds t = dither_thresholds(cube, white);
    const Dither_Levels v = dither_levels(cube, white);
    bool reached_top = false;
    for (int d = 0; d <= 0xFFFF; ++d) {
      const int compared = dither_pick(t, static_cast<std::uint16_t>(d));
      const int added = dither_add(cube, v, static_cast<std::uint16_t>(d));
      ASSERT_LE(compared, top) << n << " " << d;
      ASSERT_LE(added, top) << n << " " << d;
      reached_top = reached_top || compared == top;
    }
    EXPECT_TRUE(reached_top) << n;
    EXPECT_EQ(dither_pick(t, 0), 10 + (n - 2) * (n * n + n + 1));
  }
}

TEST(Dither_Add, EachChannelStepsUpWhenThresholdFractionAndHalfReachTheNextLevel) {
  for (const OT_Color_Cube& cube : {kCube6, kOddCube})
    for (OT_RGB32 c : dither_colours()) {
      const Dither_Levels v = dither_levels(cube, c);
      for (int d = 0; d <= 0xFFFF; ++d) {
        const byte got = dither_add(cube, v, static_cast<std::uint16_t>(d)), want = added_index(cube, c, d);
        if (got != want) {
          ASSERT_EQ(got, want) << "colour " << int(c.r) << "," << int(c.g) << "," << int(c.b) << " d " << d
                               << " blue step " << cube.blue_step;
        }
      }
    }
}

// Red 51 at scale 5 is level 0 with fraction 0xFF00. The addition form steps
// up from d + F = 0xFF80, the comparison form from 0xFFFF.
TEST(Dither_Forms, DifferOnlyInTheBandBetweenTheirSteps) {
  const OT_RGB32 c = OT_RGB32::rgba(51, 0, 0);
  const Dither_Thresholds t = dither_thresholds(kCube6, c);
  const Dither_Levels v = dither_levels(kCube6, c);
  auto compared = [&](int d) { return dither_pick(t, static_cast<std::uint16_t>(d)); };
  auto added = [&](int d) { return dither_add(kCube6, v, static_cast<std::uint16_t>(d)); };
  // Just below the band: neither steps.
  EXPECT_EQ(compared(0x7F), 16);
  EXPECT_EQ(added(0x7F), 16);
  // The band's two ends: only the addition form steps.
  EXPECT_EQ(compared(0x80), 16);
  EXPECT_EQ(added(0x80), 16 + 36);
  EXPECT_EQ(compared(0xFE), 16);
  EXPECT_EQ(added(0xFE), 16 + 36);
  // Just above: both step.
  EXPECT_EQ(compared(0xFF), 16 + 36);
  EXPECT_EQ(added(0xFF), 16 + 36);
  // Green and blue, at fraction 0, have their own band at the top of the
  // table's range.
  for (int d = 0; d <= 0xFFFF; ++d) {
    bool in_band = false;
    for (int fraction : {0xFF00, 0, 0}) in_band = in_band || (d + fraction >= 0xFF80 && d + fraction < 0xFFFF);
    ASSERT_EQ(compared(d) != added(d), in_band) << d;
  }
}

TEST(Dither_Threshold, RowFromTheRowNumberColumnFromTheAddress) {
  alignas(8) static byte row[80];
  for (int r = 0; r < 24; ++r)
    for (int i = 0; i < 80; ++i) {
      ASSERT_EQ(dither_threshold(r, row + i), SHARED.dither[(r % 8) * 8 + i % 8]) << r << " " << i;
      ASSERT_EQ(dither_threshold(r, row + i), dither_threshold(r + 8, row + i));
    }
}

TEST(Dither_Threshold, RowStartOffEightGivesAColumnOffsetAgainstX) {
  alignas(8) static byte image[16 * 8];
  // Rows 13 bytes apart: row r starts at offset 13 r, so its column phase
  // against x is 13 r mod 8.
  int differs_from_x = 0;
  for (int r = 0; r < 8; ++r) {
    const byte* start = image + 13 * r;
    for (int x = 0; x < 13; ++x) {
      const std::uint16_t d = dither_threshold(r, start + x);
      ASSERT_EQ(d, SHARED.dither[r * 8 + (13 * r + x) % 8]) << r << " " << x;
      differs_from_x += d != SHARED.dither[r * 8 + x % 8];
    }
  }
  EXPECT_GT(differs_from_x, 0);  // the table's rows are not constant
}

// ---- The writers' spans ------------------------------------------------------

TEST(Pixel_Stores, DitheredSpansTakeEachPixelsOwnAddress) {
  alignas(8) static byte image[64];
  const OT_RGB32 c = OT_RGB32::rgba(100, 150, 200);
  const Dither_Thresholds t = dither_thresholds(kCube6, c);
  const Dither_Levels v = dither_levels(kCube6, c);
  for (int offset = 0; offset < 8; ++offset)
    for (int row : {0, 3, 13}) {
      Dither_Compare_Store{t}.span(image + offset, 40, row);
      for (int i = 0; i < 40; ++i)
        ASSERT_EQ(image[offset + i], compared_index(kCube6, c, dither_threshold(row, image + offset + i)));
      Dither_Add_Store{kCube6, v}.span(image + offset, 40, row);
      for (int i = 0; i < 40; ++i)
        ASSERT_EQ(image[offset + i], added_index(kCube6, c, dither_threshold(row, image + offset + i)));
    }
}

TEST(Pixel_Stores, BlendedSpanBlendsEveryPixelOfItsRun) {
  std::uint32_t run[12];
  for (int i = 0; i < 12; ++i) run[i] = word(i * 20, 255 - i * 20, 7, i);
  const OT_RGB32 c = OT_RGB32::rgba(250, 5, 128, 100);
  Blend_Exact_Store{c}.span(run + 1, 10, 0);
  EXPECT_EQ(run[0], word(0, 255, 7, 0));
  EXPECT_EQ(run[11], word(220, 35, 7, 11));
  for (int i = 1; i <= 10; ++i)
    EXPECT_EQ(run[i], word(exact_channel(i * 20, 250, 100), exact_channel(255 - i * 20, 5, 100),
                           exact_channel(7, 128, 100), 255));
}

// ---- Depth test ----------------------------------------------------------------

// "ZBuffer Test" 1 is nearer only, 5 farther only, every other value at or
// below; each on both sides of equality and against the cleared word.
TEST(Pixel_Depth_Test, EachValueOnBothSidesOfEquality) {
  struct {
    int test;
    bool below, equal, above;
  } const cases[] = {{1, true, false, false}, {2, true, true, false},  {5, false, false, true},
                     {0, true, true, false}, {3, true, true, false},  {4, true, true, false},
                     {6, true, true, false}, {-1, true, true, false}, {255, true, true, false}};
  for (const auto& c : cases)
    with_depth_test(c.test, [&]<class Test>() {
      for (std::uint16_t stored : {std::uint16_t(1), std::uint16_t(500), std::uint16_t(0xFFFF)}) {
        EXPECT_EQ(Test::passes(stored - 1, stored), c.below) << c.test << " " << stored;
        EXPECT_EQ(Test::passes(stored, stored), c.equal) << c.test << " " << stored;
        if (stored != 0xFFFF) {
          EXPECT_EQ(Test::passes(stored + 1, stored), c.above) << c.test << " " << stored;
        }
      }
    });
}

// ---- Face pattern ----------------------------------------------------------------

TEST(Pixel_Face_Fill, OnlyPatternsZeroAndSixtyFourHaveShortCuts) {
  const Stipple_Flags plain{false, false}, contrast{true, false}, inverted{false, true}, both{true, true};
  EXPECT_EQ(face_fill(64, plain), Face_Fill::solid);
  EXPECT_EQ(face_fill(64, contrast), Face_Fill::solid);
  EXPECT_EQ(face_fill(64, inverted), Face_Fill::nothing);
  EXPECT_EQ(face_fill(64, both), Face_Fill::pattern);
  EXPECT_EQ(face_fill(0, plain), Face_Fill::nothing);
  EXPECT_EQ(face_fill(0, contrast), Face_Fill::pattern);
  EXPECT_EQ(face_fill(0, inverted), Face_Fill::pattern);
  EXPECT_EQ(face_fill(0, both), Face_Fill::pattern);
  for (int pattern : {1, 5, 63, 65, 73, 74})
    for (Stipple_Flags f : {plain, contrast, inverted, both}) EXPECT_EQ(face_fill(pattern, f), Face_Fill::pattern);
}

int wrapped(int value, int n) { return ((value % n) + n) % n; }

// The bit of window pixel (x, row) by the pattern's rule.
bool hole_by_rule(const Pattern_Source& s, int x, int row) {
  const int pr = wrapped(row - s.origin_y, s.height), pc = wrapped(x - s.origin_x, s.width);
  return ((s.bits[pr * s.row_stride + (pc >> 3)] ^ s.invert) >> (pc & 7)) & 1;
}

TEST(Pixel_Pattern_Row, WidthTwelveWrapsAtBitThreeOfItsSecondByte) {
  // Second bytes hold in their upper half the complement of the first byte's
  // lower half, and a third byte is there that must never be read.
  const byte bits[3][3] = {{0x96, 0x95, 0xFF}, {0x2B, 0x46, 0x00}, {0xE1, 0xEC, 0x5A}};
  for (int width : {12, 8, 5, 17, 24})
    for (byte invert : {byte(0), byte(0xFF)})
      for (int origin_x : {0, 5, -7})
        for (int origin_y : {0, 2, -4}) {
          const Pattern_Source s{&bits[0][0], width, 3, 3, origin_x, origin_y, invert};
          for (int row = -5; row < 9; ++row)
            for (int xl = -13; xl < 30; ++xl) {
              Pattern_Row bits_of_row(s, row, xl);
              for (int x = xl; x < xl + 40; ++x, bits_of_row.next())
                ASSERT_EQ(bits_of_row.hole(), hole_by_rule(s, x, row))
                    << "width " << width << " origin " << origin_x << "," << origin_y << " row " << row << " from "
                    << xl << " at " << x;
            }
        }
}

TEST(Pixel_Pattern_Row, TwelveWideRowByHand) {
  // 0x96 = 1001 0110 and 0x95 = 1001 0101, bits from the low end: columns
  // 0..7 are 0 1 1 0 1 0 0 1, 8..11 are 1 0 1 0, then column 0 again.
  const byte bits[2] = {0x96, 0x95};
  const Pattern_Source s{bits, 12, 1, 2, 0, 0, 0};
  Pattern_Row row(s, 0, 0);
  const int expected[] = {0, 1, 1, 0, 1, 0, 0, 1, 1, 0, 1, 0, 0, 1, 1, 0, 1, 0, 0, 1, 1, 0, 1, 0, 0, 1};
  for (int x = 0; x < 26; ++x, row.next()) EXPECT_EQ(row.hole(), expected[x] != 0) << x;
}

}  // namespace
}  // namespace tarn::testing

namespace tarn {
namespace {

// The span writer of translucent fills forms the colour's products once; it
// must agree with the exact blend for every alpha and every old channel.
TEST(Blend_Store, SpanWriterAgreesWithTheExactBlend) {
  for (int a = 0; a < 256; ++a)
    for (int old = 0; old < 256; old += 3) {
      const OT_RGB32 color = OT_RGB32::rgba(200, 17, 255 - old, a);
      const std::uint32_t pixel = OT_RGB32::rgba(old, 255 - old, old / 2, 77).word();
      std::uint32_t span[3] = {pixel, pixel, pixel};
      const Blend_Exact_Store store(color);
      store.span(span, 3, 0);
      ASSERT_EQ(span[1], blend_exact(pixel, color)) << a << " " << old;
      std::uint32_t single = pixel;
      store.pixel(&single, 0);
      ASSERT_EQ(single, blend_exact(pixel, color));
    }
}

}  // namespace
}  // namespace tarn
