// Gouraud triangles: the span arithmetic on hand-worked triangles, the nearly
// flat shortcut on both paths, the alpha and depth rules of the fillers, the
// pattern path, colours through the exact clipper, and a seeded comparison of
// crossing triangles with the same triangles drawn whole.
#include <cmath>
#include <random>

#include "tests/tarn_test_support.h"
#include "triangles/triangle_clipper.h"

namespace tarn::testing {
namespace {

using Colors = std::vector<OT_RGB32>;

void gouraud(Renderer_Harness& h, const Points& p, const Colors& c) {
  h.renderer().draw_dci_gouraud_polytriangle(h.rendition(), int(p.size()), p.data(), c.data());
}
void gouraud_2di(Renderer_Harness& h, const Points& p, const Colors& c) {
  h.renderer().draw_2di_gouraud_polytriangle(h.rendition(), int(p.size()), p.data(), c.data());
}
OT_RGB32 red(int r, int a = 255) { return OT_RGB32::rgba(r, 50, 60, a); }

class Rgb32_Modes : public ::testing::TestWithParam<Mode_Case> {};
INSTANTIATE_TEST_SUITE_P(Rgb32, Rgb32_Modes, ::testing::Values(kRgb32, kRgb32Alpha, kZRgb32, kZRgb32Alpha),
                         mode_name);
class Depth_Modes : public ::testing::TestWithParam<Mode_Case> {};
INSTANTIATE_TEST_SUITE_P(Depth, Depth_Modes, ::testing::Values(kZMapped, kZRgb32, kZRgb32Alpha), mode_name);
class All_Modes : public ::testing::TestWithParam<Mode_Case> {};
INSTANTIATE_TEST_SUITE_P(AllModes, All_Modes, ::testing::ValuesIn(kAllModes), mode_name);

// Worked by hand. Red and z run alike: 0 at (0,0), 20 at (2,0), 2 at (0,4)
// give spans of widths 2, 2, 1, 1; the second pixel of a two-pixel span is
// the mean of the ends (8 on row 1, where the rounded slope would give 9).
// Then 0, 81, 160 over an 8 x 8 triangle: row 0 is one span of width 8 with
// the step 81/8 from 0.5.
TEST_P(Rgb32_Modes, SpansOfWidthOneTwoAndMore) {
  Renderer_Harness h(GetParam(), 24, 16);
  gouraud(h, {{0, 0, 0}, {2, 0, 20}, {0, 4, 2}}, {red(0), red(20), red(2)});
  gouraud(h, {{10, 0, 0}, {18, 0, 81}, {10, 8, 160}}, {red(0), red(81), red(160)});
  struct Expect {
    int x, y, value;
  };
  const Expect expected[] = {{0, 0, 0},   {1, 0, 10},  {0, 1, 1},   {1, 1, 8},   {0, 2, 1},
                             {0, 3, 2},   {10, 0, 0},  {11, 0, 10}, {12, 0, 20}, {13, 0, 30},
                             {14, 0, 41}, {15, 0, 51}, {16, 0, 61}, {17, 0, 71}};
  for (const Expect& e : expected) {
    EXPECT_EQ(h.pixel(e.x, e.y), red(e.value).word()) << e.x << "," << e.y;
    if (GetParam().depth()) {
      EXPECT_EQ(h.depth(e.x, e.y), e.value) << e.x << "," << e.y;
    }
  }
  for (const auto& [x, y] : {std::pair{1, 2}, {1, 3}, {2, 0}, {0, 4}, {18, 0}, {10, 8}})
    EXPECT_EQ(h.pixel(x, y), h.clear_value()) << x << "," << y;

  // A long span: 0 to 251 over 100 pixels steps by 251 * 65536 / 100
  // truncated to 164495, from 0x8000. Pixel 50 sits 18/65536 below 126, and
  // the last still reaches 248, where 0.5 + 99 * 2.51 lies: no drift.
  Renderer_Harness wide(GetParam(), 128, 8);
  gouraud(wide, {{0, 0, 0}, {100, 0, 251}, {0, 2, 0}}, {red(0), red(251), red(0)});
  EXPECT_EQ(wide.pixel(0, 0), red(0).word());
  EXPECT_EQ(wide.pixel(50, 0), red(125).word());
  EXPECT_EQ(wide.pixel(99, 0), red(248).word());
  EXPECT_EQ(wide.pixel(100, 0), wide.clear_value());
}

// Mapped, worked by hand in the dither's fixed point (red level = V >> 16,
// V = red * cube scale << 8, plus the pixel's threshold): red 0 at (0,0), 255
// at (2,0) and (0,4) give two-pixel spans on rows 0 and 1 (the right pixel
// the mean of the ends) and one-pixel spans on rows 2 and 3. Then 0, 255, 0
// over a 7-pixel row, stepping by 1275 * 65536 / 7 >> 8 = 46628 from 128.
// Green and blue stay 0.
TEST(Gouraud_Mapped, LevelsOfWidthOneTwoAndMore) {
  for (const Mode_Case& mode : {kMapped, kZMapped}) {
    Renderer_Harness h(mode, 24, 16);
    const OT_Color_Cube& cube = h.renderer().cube;
    ASSERT_EQ(cube.red_scale, 5);
    const OT_RGB32 black = OT_RGB32::rgba(0, 0, 0), full = OT_RGB32::rgba(255, 0, 0);
    gouraud(h, {{0, 0, 0}, {2, 0, 0}, {0, 4, 0}}, {black, full, full});
    gouraud(h, {{10, 0, 0}, {17, 0, 0}, {10, 7, 0}}, {black, full, black});
    struct Expect {
      int x, y, v;
    };
    std::vector<Expect> expected = {{0, 0, 128},    {1, 0, 163328}, {0, 1, 81728},
                                    {1, 1, 204128}, {0, 2, 163328}, {0, 3, 244928}};
    for (int i = 0; i < 7; ++i) expected.push_back({10 + i, 0, 128 + 46628 * i});
    for (const Expect& e : expected) {
      const std::uint16_t d =
          SHARED.dither[(e.y & 7) * 8 + (reinterpret_cast<std::uintptr_t>(h.address(e.x, e.y)) & 7)];
      const std::uint32_t level = static_cast<std::uint32_t>(e.v + d) >> 16;
      EXPECT_EQ(h.pixel(e.x, e.y), (cube.base + level * cube.red_step) & 255u)
          << mode.name << " " << e.x << "," << e.y;
    }
  }
}

// Colours within 3 of the first draw exactly what the colorized strip of the
// first colour draws; 4 apart they are interpolated.
TEST_P(All_Modes, NearlyFlatTrianglesAreColorized) {
  const Points points{{2, 3, 40}, {60, 9, 900}, {20, 44, 5000}, {58, 40, 70}};
  const int a = GetParam().alpha ? 200 : 255;
  const Colors colors{OT_RGB32::rgba(100, 100, 100, a), OT_RGB32::rgba(103, 97, 100, 10),
                      OT_RGB32::rgba(100, 100, 103, 90), OT_RGB32::rgba(101, 99, 101, 0)};
  Renderer_Harness shaded(GetParam()), flat(GetParam());
  gouraud(shaded, points, colors);
  flat.colorized({points[0], points[1], points[2]}, {colors[0]}, true);
  flat.colorized({points[1], points[2], points[3]}, {colors[1]}, true);
  EXPECT_EQ(shaded.snapshot(), flat.snapshot());
  for (int y = 0; GetParam().depth() && y < 48; ++y)
    for (int x = 0; x < 64; ++x) ASSERT_EQ(shaded.depth(x, y), flat.depth(x, y)) << x << "," << y;

  if (GetParam().mapped()) return;  // the dither forms need not tell 4 apart
  Colors four = colors;
  four[2].r = 104;
  shaded.clear();
  gouraud(shaded, points, four);
  EXPECT_NE(shaded.snapshot(), flat.snapshot());
}

// A crossing triangle compares its colours in a chain: c0 ~ c1 and c1 ~ c2
// make it flat, although c0 and c2 are 6 apart.
TEST_P(Rgb32_Modes, CrossingTriangleComparesInAChain) {
  Renderer_Harness h(GetParam());
  h.set_hard_clip({0, 40, 0, 47});
  const Colors chain{red(100), red(103), red(106)};
  gouraud_2di(h, {{2, 2, 10}, {60, 8, 10}, {10, 40, 10}}, chain);
  const Pixels drawn = h.drawn();
  ASSERT_GT(drawn.size(), 500u);
  for (const auto& [x, y] : drawn) ASSERT_EQ(h.pixel(x, y), red(100).word()) << x << "," << y;

  h.clear();
  gouraud(h, {{2, 2, 10}, {60, 8, 10}, {10, 40, 10}}, chain);
  EXPECT_NE(h.pixel(35, 10), red(100).word());
}

// Alpha 0 leaves the pixel, alpha byte and all (with depth, its depth is
// written all the same); alpha 255 stores the colour.
TEST(Gouraud_Alpha, ZeroLeavesAndFullStores) {
  for (const Mode_Case& mode : {kRgb32Alpha, kZRgb32Alpha}) {
    Renderer_Harness h(mode);
    h.poke(4, 4, 0x12345678u);
    h.poke(20, 4, 0x12345678u);
    gouraud(h, {{4, 4, 30}, {14, 4, 30}, {4, 14, 30}}, {red(0, 0), red(200, 255), red(0, 0)});
    gouraud(h, {{20, 4, 30}, {30, 4, 30}, {20, 14, 30}}, {red(0, 255), red(200, 0), red(0, 255)});
    EXPECT_EQ(h.pixel(4, 4), 0x12345678u) << mode.name;
    EXPECT_EQ(h.pixel(20, 4), red(0).word()) << mode.name;
    EXPECT_EQ(h.pixel(20, 10), red(0).word()) << mode.name;
    const std::uint32_t blended = h.pixel(22, 4);
    EXPECT_EQ(blended >> 24, 255u) << mode.name;
    EXPECT_NE(blended, red(0).word()) << mode.name;
    if (mode.depth()) {
      EXPECT_EQ(h.depth(4, 4), 30) << mode.name;
    }
  }
}

// The depth fillers test at or below and always write, whatever "ZBuffer
// Test" and "ZBuffer Write" say.
TEST_P(Depth_Modes, DepthIgnoresTheDepthOptions) {
  Renderer_Harness h(GetParam());
  h.set_depth_test(5);
  h.set_depth_write(0);
  const Colors colors{red(0), red(200), red(90)};
  gouraud(h, {{4, 4, 100}, {30, 4, 100}, {4, 30, 100}}, colors);
  ASSERT_NE(h.pixel(6, 6), h.clear_value());
  EXPECT_EQ(h.depth(6, 6), 100);
  h.poke(6, 6, h.clear_value());
  gouraud(h, {{4, 4, 101}, {30, 4, 101}, {4, 30, 101}}, colors);
  EXPECT_EQ(h.pixel(6, 6), h.clear_value());
  gouraud(h, {{4, 4, 100}, {30, 4, 100}, {4, 30, 100}}, colors);
  EXPECT_NE(h.pixel(6, 6), h.clear_value());
}

// Pattern 0 with contrast on: every pixel is a hole, so only the contrast
// colour appears, plain, on the inside and the crossing path alike.
TEST_P(All_Modes, EmptyPatternWithContrastShowsOnlyContrast) {
  Renderer_Harness h(GetParam());
  h.rendition().writable_face()->pattern = 0;
  h.rendition().writable_raster()->stipple_flags = 1;
  h.rendition().writable_colors()->contrast_color = OT_RGB32::rgba(1, 2, 3, 7);
  h.rendition().writable_colors()->contrast_index = 77;
  h.set_hard_clip({0, 50, 0, 47});
  const Colors colors{red(0, 90), red(200, 255), red(90, 0)};
  gouraud(h, {{4, 4, 100}, {40, 4, 100}, {4, 40, 100}}, colors);
  gouraud_2di(h, {{30, 20, 100}, {90, 24, 100}, {34, 44, 100}}, colors);
  const std::uint32_t contrast = GetParam().mapped() ? 77u : OT_RGB32::rgba(1, 2, 3, 7).word();
  const Pixels drawn = h.drawn();
  ASSERT_GT(drawn.size(), 600u);
  for (const auto& [x, y] : drawn) ASSERT_EQ(h.pixel(x, y), contrast) << x << "," << y;
  EXPECT_EQ(h.pixel(51, 22), h.clear_value());
}

// Clipped against the walk limits, new points take the colour of the
// triangle's plane at their place (to within the truncation of a channel).
TEST(Gouraud_Clipper, PointsTakeTheColourOfThePlane) {
  // One triangle covers the limits (corners only), one cuts them (edge
  // points and corners).
  const OT_DCI_Point triangles[2][3] = {{{-100000, -90000, 0}, {120000, -100000, 0}, {10000, 110000, 0}},
                                        {{-100000, 100, 0}, {20000, 200, 0}, {100, 20000, 0}}};
  const OT_RGB32 colors[3] = {OT_RGB32::rgba(0, 255, 10, 255), OT_RGB32::rgba(255, 0, 30, 128),
                              OT_RGB32::rgba(40, 90, 250, 0)};
  const OT_Int_Rectangle limits{-4000, 28760, -4000, 28760};
  for (const auto& triangle : triangles) {
    OT_DCI_Point out[kMaxClipVertices];
    OT_RGB32 out_colors[kMaxClipVertices];
    const int n = clip_triangle_to_rectangle(triangle, colors, limits, out, out_colors);
    ASSERT_GE(n, 4);
    // Barycentric weights in doubles, independent of the clipper's gradients.
    auto plane = [&](double x, double y, int channel) {
      const double x0 = triangle[0].x, y0 = triangle[0].y;
      const double dx1 = triangle[1].x - x0, dy1 = triangle[1].y - y0;
      const double dx2 = triangle[2].x - x0, dy2 = triangle[2].y - y0;
      const double d = dx1 * dy2 - dx2 * dy1;
      const double u = ((x - x0) * dy2 - (y - y0) * dx2) / d, v = ((y - y0) * dx1 - (x - x0) * dy1) / d;
      auto c = [&](int i) {
        const OT_RGB32& k = colors[i];
        return double(channel == 0 ? k.r : channel == 1 ? k.g : channel == 2 ? k.b : k.a);
      };
      return c(0) + u * (c(1) - c(0)) + v * (c(2) - c(0));
    };
    for (int i = 0; i < n; ++i) {
      const OT_RGB32& c = out_colors[i];
      const int got[4] = {c.r, c.g, c.b, c.a};
      for (int k = 0; k < 4; ++k)
        EXPECT_NEAR(got[k], plane(out[i].x, out[i].y, k), 1.0) << "point " << i << " channel " << k;
    }
  }
}

// Seeded: a triangle across the hard clip against the same triangle drawn
// whole. The same pixels are drawn and nothing outside the clip; RGB32
// channels and depth agree to 1 (a two-pixel span takes the mean inside and
// the slope across the clip).
TEST_P(All_Modes, CrossingMatchesWholeTriangle) {
  std::mt19937 random(20261123);
  std::uniform_int_distribution<int> x(-10, 73), y(-10, 57), z(0, 3000), channel(0, 255);
  const OT_Int_Rectangle clip{9, 50, 7, 38};
  for (int round = 0; round < 40; ++round) {
    Points p;
    Colors c;
    for (int i = 0; i < 3; ++i) {
      p.push_back({std::clamp(x(random), 0, 63), std::clamp(y(random), 0, 47), z(random)});
      c.push_back(OT_RGB32::rgba(channel(random), channel(random), channel(random), 255));
    }
    c[1].r = static_cast<byte>(c[0].r + 128);  // never nearly flat
    Renderer_Harness whole(GetParam()), cut(GetParam());
    gouraud(whole, p, c);
    cut.set_hard_clip(clip);
    gouraud_2di(cut, p, c);
    for (int py = 0; py < 48; ++py) {
      for (int px = 0; px < 64; ++px) {
        const bool in = px >= clip.left && px <= clip.right && py >= clip.bottom && py <= clip.top;
        const std::uint32_t a = whole.pixel(px, py), b = cut.pixel(px, py);
        if (!in) {
          ASSERT_EQ(b, cut.clear_value()) << "round " << round << " at " << px << "," << py;
          continue;
        }
        ASSERT_EQ(a == whole.clear_value(), b == cut.clear_value()) << round << " at " << px << "," << py;
        if (!GetParam().mapped()) {
          for (int shift = 0; shift < 24; shift += 8)
            ASSERT_LE(std::abs(int(a >> shift & 255) - int(b >> shift & 255)), 1)
                << round << " at " << px << "," << py;
        }
        if (GetParam().depth()) {
          ASSERT_LE(std::abs(whole.depth(px, py) - cut.depth(px, py)), 1)
              << round << " at " << px << "," << py;
        }
      }
    }
  }
}

}  // namespace
}  // namespace tarn::testing
