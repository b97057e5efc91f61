// Colour cubes, palettes and the nearest-colour search.
#include <gtest/gtest.h>

#include "host/ombra.h"

namespace {

TEST(OmbraCube, StepsScalesAndEntries) {
  const OT_Color_Cube cube(OT_Int_RGB{2, 3, 4}, 1.0f, 40);
  EXPECT_EQ(cube.base, 40u);
  EXPECT_EQ(cube.red_step, 12u);
  EXPECT_EQ(cube.green_step, 4u);
  EXPECT_EQ(cube.blue_step, 1u);
  EXPECT_EQ(cube.red_scale, 1);
  EXPECT_EQ(cube.green_scale, 2);
  EXPECT_EQ(cube.blue_scale, 3);
  EXPECT_EQ(cube.entries, 24);
}

TEST(OmbraCube, LevelValuesLinearAndWithGamma) {
  const OT_Color_Cube linear(OT_Int_RGB{6, 6, 6}, 1.0f, 0);
  const int expected[6] = {0, 51, 102, 153, 204, 255};
  for (int level = 0; level < 6; ++level) EXPECT_EQ(linear.level_value(level, 6), expected[level]);
  const OT_Color_Cube gamma(OT_Int_RGB{3, 3, 3}, 2.0f, 0);
  EXPECT_EQ(gamma.level_value(1, 3), 180);  // 255 * sqrt(0.5) = 180.3
  EXPECT_EQ(gamma.level_value(2, 3), 255);
  EXPECT_EQ(gamma.level_value(0, 3), 0);
}

// Where the renderer's two dither forms put a channel byte, by level.
int comparison_level(int byte_value, int scale, int d) {
  const int v = (byte_value * scale) << 8;
  return (v >> 16) + ((d + (v & 0xFFFF)) >= 0xFFFF ? 1 : 0);
}

int addition_level(int byte_value, int scale, int d) {
  const int v = ((byte_value * scale) << 8) + 128;
  return (v + d) >> 16;
}

TEST(OmbraCube, EveryByteAndThresholdStaysInsideTheCube) {
  const OT_Int_RGB sizes[] = {{2, 2, 2}, {6, 6, 6}, {8, 8, 4}, {3, 5, 7}, {16, 16, 2}, {2, 16, 2}};
  for (const OT_Int_RGB& n : sizes) {
    const OT_Color_Cube cube(n, 1.0f, 16);
    const int levels[3] = {n.r, n.g, n.b};
    const int scales[3] = {cube.red_scale, cube.green_scale, cube.blue_scale};
    for (int channel = 0; channel < 3; ++channel)
      for (int b = 0; b < 256; ++b)
        for (std::uint16_t d : SHARED.dither) {
          const int c = comparison_level(b, scales[channel], d);
          const int a = addition_level(b, scales[channel], d);
          ASSERT_GE(c, 0);
          ASSERT_LT(c, levels[channel]) << "comparison form, byte " << b << ", d " << d;
          ASSERT_GE(a, 0);
          ASSERT_LT(a, levels[channel]) << "addition form, byte " << b << ", d " << d;
        }
    // The whole index, for grey and for the two opposite corners.
    for (int b = 0; b < 256; ++b)
      for (std::uint16_t d : SHARED.dither) {
        const int index = int(cube.base) + comparison_level(b, cube.red_scale, d) * int(cube.red_step) +
                          comparison_level(255 - b, cube.green_scale, d) * int(cube.green_step) +
                          comparison_level(b, cube.blue_scale, d);
        ASSERT_GE(index, int(cube.base));
        ASSERT_LE(index, int(cube.base) + cube.entries - 1);
      }
  }
}

TEST(OmbraCube, TopByteReachesTheTopLevel) {
  const OT_Color_Cube cube(OT_Int_RGB{6, 6, 6}, 1.0f, 0);
  // Only the smallest threshold keeps 255 one level down; all others reach
  // the top level.
  int top = 0;
  for (std::uint16_t d : SHARED.dither) top += comparison_level(255, cube.red_scale, d) == 5;
  EXPECT_EQ(top, 63);
}

TEST(OmbraCube, ChannelWithoutFractionNeverStepsUp) {
  for (std::uint16_t d : SHARED.dither) {
    EXPECT_EQ(comparison_level(0, 5, d), 0);
    EXPECT_EQ(addition_level(0, 5, d), 0);
  }
}

TEST(OmbraPalette, DefaultPaletteLayout) {
  const OT_Palette palette = OB_Default_Palette();
  ASSERT_TRUE(palette);
  EXPECT_EQ(palette.color(0), OT_RGB32::rgba(0, 0, 0));
  EXPECT_EQ(palette.color(7), OT_RGB32::rgba(192, 192, 192));
  EXPECT_EQ(palette.color(15), OT_RGB32::rgba(255, 255, 255));
  ASSERT_NE(palette->color_cube, nullptr);
  const OT_Color_Cube& cube = *palette->color_cube;
  EXPECT_EQ(cube.base, 16u);
  EXPECT_EQ(cube.entries, 216);
  for (int r = 0; r < 6; ++r)
    for (int g = 0; g < 6; ++g)
      for (int b = 0; b < 6; ++b)
        ASSERT_EQ(palette.color(16 + r * 36 + g * 6 + b),
                  OT_RGB32::rgba(cube.level_value(r, 6), cube.level_value(g, 6), cube.level_value(b, 6)));
  int previous = -1;
  for (int i = 232; i < 256; ++i) {
    const OT_RGB32 c = palette.color(i);
    EXPECT_EQ(c.r, c.g);
    EXPECT_EQ(c.g, c.b);
    EXPECT_GT(int(c.r), previous);
    previous = c.r;
  }
}

TEST(OmbraPalette, DefaultPaletteIsSharedUntilWritten) {
  OT_Palette a = OB_Default_Palette();
  OT_Palette b = OB_Default_Palette();
  EXPECT_EQ(a.get(), b.get());
  OT_Palette_Data* mine = make_unique(b);
  EXPECT_NE(mine, a.get());
  ASSERT_NE(mine->color_cube, nullptr);
  EXPECT_NE(mine->color_cube, a->color_cube);
  EXPECT_EQ(mine->color_cube->base, 16u);
  EXPECT_EQ(mine->color_cube->red_step, 36u);
}

TEST(OmbraPalette, ExactColoursFindTheirFirstIndex) {
  const OT_Palette palette = OB_Default_Palette();
  for (int i = 0; i < 256; ++i) {
    int first = i;
    for (int j = 0; j < i; ++j)
      if (palette.color(j).word() == palette.color(i).word()) {
        first = j;
        break;
      }
    ASSERT_EQ(palette.closest_match(palette.color(i), false), first) << i;
  }
  EXPECT_EQ(palette.closest_match(OT_RGB32::rgba(255, 255, 255), false), 15);  // not 231
  EXPECT_EQ(palette.closest_match(OT_RGB32::rgba(255, 0, 0), false), 9);
}

TEST(OmbraPalette, TiesGoToTheLowestIndexAndAlphaIsIgnored) {
  OT_Palette palette(new OT_Palette_Data);
  for (auto& entry : palette->entries) entry.color = OT_RGB32::rgba(255, 255, 255);
  palette->entries[5].color = OT_RGB32::rgba(20, 0, 0);
  palette->entries[3].color = OT_RGB32::rgba(10, 0, 0);
  EXPECT_EQ(palette.closest_match(OT_RGB32::rgba(15, 0, 0), false), 3);
  EXPECT_EQ(palette.closest_match(OT_RGB32::rgba(16, 0, 0), false), 5);
  EXPECT_EQ(palette.closest_match(OT_RGB32::rgba(14, 0, 0), false), 3);
  EXPECT_EQ(palette.closest_match(OT_RGB32::rgba(20, 0, 0, 0), false), 5);
  EXPECT_EQ(palette.closest_match(OT_RGB32::rgba(20, 0, 0, 0), true), 5);
}

TEST(OmbraPalette, CubePaletteHoldsTheCubeAndAGreyRampAroundIt) {
  const OT_Palette palette = OB_Cube_Palette(OT_Int_RGB{2, 2, 2}, 10);
  ASSERT_TRUE(palette);
  ASSERT_NE(palette->color_cube, nullptr);
  EXPECT_EQ(palette->color_cube->base, 10u);
  for (int r = 0; r < 2; ++r)
    for (int g = 0; g < 2; ++g)
      for (int b = 0; b < 2; ++b)
        EXPECT_EQ(palette.color(10 + r * 4 + g * 2 + b), OT_RGB32::rgba(255 * r, 255 * g, 255 * b));
  EXPECT_EQ(palette.color(0), OT_RGB32::rgba(0, 0, 0));
  EXPECT_EQ(palette.color(255), OT_RGB32::rgba(255, 255, 255));
  int previous = -1;
  for (int i = 0; i < 256; ++i) {
    if (i >= 10 && i < 18) continue;
    const OT_RGB32 c = palette.color(i);
    EXPECT_TRUE(c.r == c.g && c.g == c.b) << i;
    EXPECT_GE(int(c.r), previous) << i;
    previous = c.r;
  }
}

}  // namespace
