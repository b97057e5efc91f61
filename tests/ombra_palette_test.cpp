// Colour cubes, palettes and the nearest-colour search.
#include <gtest/gtest.h>

#include "host/ombra.h"

namespace {

TEST(OmbraCube, StepsScalesAndLevels) {
  const OT_Color_Cube cube(OT_Int_RGB{2, 3, 4}, 1.0f, 40);
  EXPECT_EQ(cube.base, 40u);
  EXPECT_EQ(cube.entries, 24);
  EXPECT_EQ((std::vector<unsigned>{cube.red_step, cube.green_step, cube.blue_step}),
            (std::vector<unsigned>{12, 4, 1}));
  EXPECT_EQ((std::vector<int>{cube.red_scale, cube.green_scale, cube.blue_scale}),
            (std::vector<int>{1, 2, 3}));
  // A level n - 1 a channel: byte 255 at the greatest threshold reaches the
  // top level and no further, in both dither forms.
  EXPECT_EQ(OT_Color_Cube(OT_Int_RGB{16, 2, 16}, 1.0f, 0).blue_scale, 15);
  const OT_Color_Cube linear(OT_Int_RGB{6, 6, 6}, 1.0f, 0), gamma(OT_Int_RGB{3, 3, 3}, 2.0f, 0);
  std::vector<int> levels;
  for (int level = 0; level < 6; ++level) levels.push_back(linear.level_value(level, 6));
  EXPECT_EQ(levels, (std::vector<int>{0, 51, 102, 153, 204, 255}));
  EXPECT_EQ(gamma.level_value(1, 3), 180);  // 255 * sqrt(0.5) = 180.3
}

TEST(OmbraPalette, DefaultPaletteIsClassicColoursCubeAndGreys) {
  const OT_Palette palette = OB_Default_Palette();
  ASSERT_NE(palette->color_cube, nullptr);
  EXPECT_EQ(palette->color_cube->base, 16u);
  const std::pair<int, OT_RGB32> entries[] = {
      {0, OT_RGB32::rgba(0, 0, 0)},       {7, OT_RGB32::rgba(192, 192, 192)},
      {9, OT_RGB32::rgba(255, 0, 0)},     {15, OT_RGB32::rgba(255, 255, 255)},
      {16, OT_RGB32::rgba(0, 0, 0)},      {67, OT_RGB32::rgba(51, 102, 153)},
      {200, OT_RGB32::rgba(255, 0, 204)}, {231, OT_RGB32::rgba(255, 255, 255)},
      {232, OT_RGB32::rgba(8, 8, 8)},     {255, OT_RGB32::rgba(238, 238, 238)}};
  for (const auto& [index, color] : entries) EXPECT_EQ(palette.color(index), color) << index;
  // One shared record until a writer makes its own, cube and all.
  OT_Palette other = OB_Default_Palette();
  EXPECT_EQ(other.get(), palette.get());
  OT_Palette_Data* mine = make_unique(other);
  EXPECT_NE(mine, palette.get());
  ASSERT_NE(mine->color_cube, nullptr);
  EXPECT_NE(mine->color_cube, palette->color_cube);
  EXPECT_EQ(mine->color_cube->red_step, 36u);
  EXPECT_EQ(mine->entries[200].color, palette.color(200));
}

TEST(OmbraPalette, ClosestMatchTakesTheLowestIndexOfEqualDistancesAndIgnoresAlpha) {
  const OT_Palette palette = OB_Default_Palette();
  for (int i = 0; i < 256; ++i) {
    int first = 0;
    while (!(palette.color(first) == palette.color(i))) ++first;
    ASSERT_EQ(palette.closest_match(palette.color(i), false), first) << i;
  }
  EXPECT_EQ(palette.closest_match(OT_RGB32::rgba(255, 255, 255), false), 15);  // not 231
  OT_Palette two(new OT_Palette_Data);
  for (auto& entry : two->entries) entry.color = OT_RGB32::rgba(255, 255, 255);
  two->entries[5].color = OT_RGB32::rgba(20, 0, 0);
  two->entries[3].color = OT_RGB32::rgba(10, 0, 0);
  const std::pair<OT_RGB32, int> cases[] = {
      {OT_RGB32::rgba(14, 0, 0), 3},     {OT_RGB32::rgba(15, 0, 0), 3}, {OT_RGB32::rgba(16, 0, 0), 5},
      {OT_RGB32::rgba(20, 0, 0, 0), 5},  {OT_RGB32::rgba(15, 1, 0), 3}, {OT_RGB32::rgba(255, 255, 255, 0), 0},
      {OT_RGB32::rgba(200, 200, 200), 0}};
  for (const auto& [color, index] : cases) EXPECT_EQ(two.closest_match(color, true), index) << int(color.r);
}

TEST(OmbraPalette, CubePaletteHoldsTheCubeAndAGreyRampAroundIt) {
  const OT_Palette palette = OB_Cube_Palette(OT_Int_RGB{2, 2, 2}, 10);
  ASSERT_NE(palette->color_cube, nullptr);
  EXPECT_EQ(palette->color_cube->base, 10u);
  // The cube at 10..17; 248 entries around it: greys 0..255 in index order, rounded.
  const std::pair<int, OT_RGB32> entries[] = {
      {10, OT_RGB32::rgba(0, 0, 0)},       {15, OT_RGB32::rgba(255, 0, 255)},
      {17, OT_RGB32::rgba(255, 255, 255)}, {0, OT_RGB32::rgba(0, 0, 0)},
      {9, OT_RGB32::rgba(9, 9, 9)},        {18, OT_RGB32::rgba(10, 10, 10)},
      {255, OT_RGB32::rgba(255, 255, 255)}};
  for (const auto& [index, color] : entries) EXPECT_EQ(palette.color(index), color) << index;
}

}  // namespace
