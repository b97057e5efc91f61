// Gouraud triangles and polylines, and colorized polylines: channel and depth
// steps worked by hand, mapped levels in the dither's fixed point, the nearly
// flat shortcut, the fillers' alpha, depth and pattern rules, colours through
// the exact clipper, and seeded comparisons of clipped primitives with whole
// ones.
#include <map>
#include <random>

#include "tests/tarn_test_support.h"
#include "triangles/triangle_clipper.h"

namespace tarn::testing {
namespace {

using Colors = std::vector<OT_RGB32>;
using Draw = void (*)(Renderer_Harness&, const Points&, const Colors&);

void gouraud(Renderer_Harness& h, const Points& p, const Colors& c) {
  h.renderer().draw_dci_gouraud_polytriangle(h.rendition(), int(p.size()), p.data(), c.data());
}
void gouraud_2di(Renderer_Harness& h, const Points& p, const Colors& c) {
  h.renderer().draw_2di_gouraud_polytriangle(h.rendition(), int(p.size()), p.data(), c.data());
}
void gouraud_line(Renderer_Harness& h, const Points& p, const Colors& c) {
  h.renderer().draw_dci_gouraud_polyline(h.rendition(), int(p.size()), p.data(), c.data());
}
void gouraud_line_2di(Renderer_Harness& h, const Points& p, const Colors& c) {
  h.renderer().draw_2di_gouraud_polyline(h.rendition(), int(p.size()), p.data(), c.data());
}
// A list of colours one a segment.
void colorized_line(Renderer_Harness& h, const Points& p, const Colors& c) {
  h.renderer().draw_dci_colorized_polyline(h.rendition(), int(p.size()), p.data(), c.data(), false);
}
void colorized_line_2di(Renderer_Harness& h, const Points& p, const Colors& c) {
  h.renderer().draw_2di_colorized_polyline(h.rendition(), int(p.size()), p.data(), c.data(), false);
}
OT_RGB32 red(int r, int a = 255) { return OT_RGB32::rgba(r, 50, 60, a); }

class Rgb32_Modes : public ::testing::TestWithParam<Mode_Case> {};
INSTANTIATE_TEST_SUITE_P(Rgb32, Rgb32_Modes, ::testing::Values(kRgb32, kRgb32Alpha, kZRgb32, kZRgb32Alpha),
                         mode_name);
class All_Modes : public ::testing::TestWithParam<Mode_Case> {};
INSTANTIATE_TEST_SUITE_P(AllModes, All_Modes, ::testing::ValuesIn(kAllModes), mode_name);

// Worked by hand. Red and z run alike: 0 at (0,0), 20 at (2,0), 2 at (0,4)
// give spans of widths 2, 2, 1, 1; the second pixel of a two-pixel span is
// the mean of the ends (8 on row 1, where the rounded slope would give 9).
// Then 0, 81, 160 over an 8 x 8 triangle: row 0 is one span of width 8 with
// the step 81/8 from 0.5. A long span: 0 to 251 over 100 pixels steps by
// 251 * 65536 / 100 truncated to 164495, from 0x8000; pixel 50 sits 18/65536
// below 126, and the last still reaches 248, where 0.5 + 99 * 2.51 lies.
TEST_P(Rgb32_Modes, SpansOfWidthOneTwoAndMore) {
  Renderer_Harness h(GetParam(), 128, 24);
  gouraud(h, {{0, 0, 0}, {2, 0, 20}, {0, 4, 2}}, {red(0), red(20), red(2)});
  gouraud(h, {{10, 0, 0}, {18, 0, 81}, {10, 8, 160}}, {red(0), red(81), red(160)});
  gouraud(h, {{0, 16, 0}, {100, 16, 251}, {0, 18, 0}}, {red(0), red(251), red(0)});
  const struct {
    int x, y, value;  // -1: not drawn
  } expected[] = {{0, 0, 0},   {1, 0, 10},  {0, 1, 1},   {1, 1, 8},     {0, 2, 1},     {0, 3, 2},
                  {10, 0, 0},  {11, 0, 10}, {12, 0, 20}, {13, 0, 30},   {14, 0, 41},   {15, 0, 51},
                  {16, 0, 61}, {17, 0, 71}, {0, 16, 0},  {50, 16, 125}, {99, 16, 248}, {1, 2, -1},
                  {1, 3, -1},  {2, 0, -1},  {0, 4, -1},  {18, 0, -1},   {10, 8, -1},   {100, 16, -1}};
  for (const auto& e : expected) {
    EXPECT_EQ(h.pixel(e.x, e.y), e.value < 0 ? h.clear_value() : red(e.value).word()) << e.x << "," << e.y;
    if (GetParam().depth() && e.value >= 0 && e.y < 16) {
      EXPECT_EQ(h.depth(e.x, e.y), e.value) << e.x << "," << e.y;
    }
  }
}

// A shallow segment of 7 steps from red 0 to 70 steps red by 10 a column; a
// steep one of 4 rows from 0 to 20 by 5 a row. The last point takes the last
// colour whole.
TEST_P(Rgb32_Modes, LineChannelsStepAlongTheMajorAxis) {
  Renderer_Harness h(GetParam());
  gouraud_line(h, {{2, 2, 40}, {9, 5, 40}}, {red(0), red(70)});
  gouraud_line(h, {{20, 10, 40}, {22, 14, 40}}, {red(0), red(20)});
  std::map<int, int> per_major;  // shallow by column, steep by row
  for (const auto& [x, y] : h.drawn()) {
    const bool steep = x >= 19;
    EXPECT_EQ(h.pixel(x, y), red(steep ? 5 * (y - 10) : 10 * (x - 2)).word()) << x << "," << y;
    EXPECT_EQ(++per_major[steep ? 100 + y : x], 1) << x << "," << y;
  }
  EXPECT_EQ(per_major.size(), 13u);
}

// Mapped, in the dither's fixed point: red level = (V + the pixel's
// threshold) >> 16 with V = red * cube scale (5) << 8, green and blue 0.
// Red 0 at (0,0), 255 at (2,0) and (0,4) give two-pixel spans on rows 0 and
// 1 (the right pixel the mean of the ends) and one-pixel spans on rows 2 and
// 3. Then 0, 255, 0 over a 7-pixel row, stepping by 1275 * 65536 / 7 >> 8 =
// 46628 from 128. A line of 7 steps from 0 to 255 steps by 1275 << 16 / 7
// (truncated) and reads V = accumulator >> 8, rounded; its last pixel comes
// from the accumulators one step past the walk, so it follows the truncated
// steps rather than the last colour.
TEST(Gouraud_Mapped, LevelsFollowTheFixedPointWalk) {
  for (const Mode_Case& mode : {kMapped, kZMapped}) {
    Renderer_Harness h(mode, 24, 16);
    const OT_Color_Cube& cube = h.renderer().cube;
    ASSERT_EQ(cube.red_scale, 5);
    const OT_RGB32 black = OT_RGB32::rgba(0, 0, 0), full = OT_RGB32::rgba(255, 0, 0);
    gouraud(h, {{0, 0, 0}, {2, 0, 0}, {0, 4, 0}}, {black, full, full});
    gouraud(h, {{10, 0, 0}, {17, 0, 0}, {10, 7, 0}}, {black, full, black});
    gouraud_line(h, {{4, 12, 0}, {11, 12, 0}}, {black, full});
    struct Expect {
      int x, y, v;
    };
    std::vector<Expect> expected = {{0, 0, 128},    {1, 0, 163328}, {0, 1, 81728},
                                    {1, 1, 204128}, {0, 2, 163328}, {0, 3, 244928}};
    for (int i = 0; i < 7; ++i) expected.push_back({10 + i, 0, 128 + 46628 * i});
    for (int i = 0; i <= 7; ++i) expected.push_back({4 + i, 12, ((i * ((1275 << 16) / 7)) + 0x8000) >> 8});
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
// first colour draws; 4 apart they are interpolated (the dither forms need
// not tell 4 apart). A nearly flat segment is a one-colour polyline in its
// first colour (in the opaque mode with that colour's own alpha byte), the
// RGB32 forms still writing the last point in the last colour; the RGB32
// depth forms know no such shortcut for lines.
TEST_P(All_Modes, NearlyFlatPrimitivesAreColorized) {
  const Mode_Case& mode = GetParam();
  const Points points{{2, 3, 40}, {60, 9, 900}, {20, 44, 5000}, {58, 40, 70}};
  const int a = mode.alpha ? 200 : 255;
  const Colors colors{OT_RGB32::rgba(100, 100, 100, a), OT_RGB32::rgba(103, 97, 100, 10),
                      OT_RGB32::rgba(100, 100, 103, 90), OT_RGB32::rgba(101, 99, 101, 0)};
  Renderer_Harness shaded(mode), flat(mode);
  gouraud(shaded, points, colors);
  flat.colorized({points[0], points[1], points[2]}, {colors[0]}, true);
  flat.colorized({points[1], points[2], points[3]}, {colors[1]}, true);
  EXPECT_EQ(shaded.snapshot(), flat.snapshot());
  Colors four = colors;
  four[2].r = 104;
  shaded.clear();
  gouraud(shaded, points, four);
  if (!mode.mapped()) {
    EXPECT_NE(shaded.snapshot(), flat.snapshot());
  }
  if (mode.alpha) return;
  const Points line{{2, 2, 40}, {40, 9, 40}};
  const OT_RGB32 first = OT_RGB32::rgba(100, 100, 100, 77), second = OT_RGB32::rgba(103, 97, 103, 200);
  shaded.clear();
  flat.clear();
  gouraud_line(shaded, line, {first, second});
  flat.renderer().draw_dci_colorized_polyline(flat.rendition(), 2, line.data(), &first, true);
  if (!mode.mapped()) flat.poke(40, 9, second.word() | 0xFF000000u);
  if (mode.depth() && !mode.mapped()) {
    EXPECT_EQ(shaded.pixel(2, 2), OT_RGB32::rgba(100, 100, 100).word());  // stored with alpha 255
    return;
  }
  EXPECT_EQ(shaded.snapshot(), flat.snapshot());
  shaded.clear();
  gouraud_line(shaded, line, {first, OT_RGB32::rgba(104, 100, 100, 200)});
  if (!mode.mapped()) {
    EXPECT_NE(shaded.snapshot(), flat.snapshot());
  }
}

// A flat colour dithers the same on a mapped colorized line as on a mapped
// colorized triangle: the comparison form, by row and address.
TEST(Colorized_Lines, MappedDitherMatchesTriangles) {
  for (const Mode_Case& mode : {kMapped, kZMapped}) {
    Renderer_Harness h(mode);
    const Colors colors{OT_RGB32::rgba(120, 200, 33), OT_RGB32::rgba(10, 90, 250)};
    colorized_line(h, {{3, 3, 10}, {50, 20, 10}, {45, 44, 10}}, colors);
    const Pixels drawn = h.drawn();
    ASSERT_GT(drawn.size(), 60u);
    for (const auto& [x, y] : drawn) {
      // The first segment runs to row 20 but leaves the joint (50, 20) to
      // the second, steep one, whose colour the last pixel takes too.
      const bool second = y > 20 || (x == 50 && y == 20);
      EXPECT_EQ(h.pixel(x, y), h.flat_value(colors[second], x, y)) << mode.name << " " << x << "," << y;
    }
  }
}

// The rules of the Gouraud fillers, in every mode that has them. A crossing
// triangle compares its colours in a chain: c0 ~ c1 and c1 ~ c2 make it
// flat, although c0 and c2 are 6 apart. Alpha 0 leaves the pixel, alpha byte
// and all (with depth, its depth is written all the same); alpha 255 stores
// the colour. The depth fillers test at or below and always write, whatever
// "ZBuffer Test" and "ZBuffer Write" say. Pattern 0 with contrast on: every
// pixel is a hole, so only the contrast colour appears, plain, on the inside
// and the crossing path alike.
TEST_P(All_Modes, FillerRules) {
  const Mode_Case& mode = GetParam();
  const Points tall{{2, 2, 10}, {60, 8, 10}, {10, 40, 10}};
  if (!mode.mapped()) {
    Renderer_Harness h(mode);
    h.set_hard_clip({0, 40, 0, 47});
    const Colors chain{red(100), red(103), red(106)};
    gouraud_2di(h, tall, chain);
    const Pixels drawn = h.drawn();
    ASSERT_GT(drawn.size(), 500u);
    for (const auto& [x, y] : drawn) ASSERT_EQ(h.pixel(x, y), red(100).word()) << x << "," << y;
    h.clear();
    gouraud(h, tall, chain);
    EXPECT_NE(h.pixel(35, 10), red(100).word());
  }
  if (mode.alpha) {
    Renderer_Harness h(mode);
    h.poke(4, 4, 0x12345678u);
    h.poke(20, 4, 0x12345678u);
    gouraud(h, {{4, 4, 30}, {14, 4, 30}, {4, 14, 30}}, {red(0, 0), red(200, 255), red(0, 0)});
    gouraud(h, {{20, 4, 30}, {30, 4, 30}, {20, 14, 30}}, {red(0, 255), red(200, 0), red(0, 255)});
    EXPECT_EQ((std::vector{h.pixel(4, 4), h.pixel(20, 4), h.pixel(20, 10), h.pixel(22, 4) >> 24}),
              (std::vector{0x12345678u, red(0).word(), red(0).word(), 255u}));
    EXPECT_NE(h.pixel(22, 4), red(0).word());
    if (mode.depth()) {
      EXPECT_EQ(h.depth(4, 4), 30);
    }
  }
  if (mode.depth()) {
    Renderer_Harness h(mode);
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
  Renderer_Harness h(mode);
  h.rendition().writable_face()->pattern = 0;
  h.rendition().writable_raster()->stipple_flags = 1;
  h.rendition().writable_colors()->contrast_color = OT_RGB32::rgba(1, 2, 3, 7);
  h.rendition().writable_colors()->contrast_index = 77;
  h.set_hard_clip({0, 50, 0, 47});
  const Colors colors{red(0, 90), red(200, 255), red(90, 0)};
  gouraud(h, {{4, 4, 100}, {40, 4, 100}, {4, 40, 100}}, colors);
  gouraud_2di(h, {{30, 20, 100}, {90, 24, 100}, {34, 44, 100}}, colors);
  const std::uint32_t contrast = mode.mapped() ? 77u : OT_RGB32::rgba(1, 2, 3, 7).word();
  const Pixels drawn = h.drawn();
  ASSERT_GT(drawn.size(), 600u);
  for (const auto& [x, y] : drawn) ASSERT_EQ(h.pixel(x, y), contrast) << x << "," << y;
}

// Clipped against the walk limits, new points take the colour of the
// triangle's plane at their place (to within the truncation of a channel).
// One triangle covers the limits (corners only), one cuts them (edge points
// and corners).
TEST(Gouraud_Clipper, PointsTakeTheColourOfThePlane) {
  const OT_DCI_Point triangles[2][3] = {{{-100000, -90000, 0}, {120000, -100000, 0}, {10000, 110000, 0}},
                                        {{-100000, 100, 0}, {20000, 200, 0}, {100, 20000, 0}}};
  const OT_RGB32 colors[3] = {OT_RGB32::rgba(0, 255, 10, 255), OT_RGB32::rgba(255, 0, 30, 128),
                              OT_RGB32::rgba(40, 90, 250, 0)};
  for (const auto& t : triangles) {
    OT_DCI_Point out[kMaxClipVertices];
    OT_RGB32 out_colors[kMaxClipVertices];
    const int n = clip_triangle_to_rectangle(t, colors, {-4000, 28760, -4000, 28760}, out, out_colors);
    ASSERT_GE(n, 4);
    // Barycentric weights in doubles, independent of the clipper's gradients.
    const double dx1 = t[1].x - t[0].x, dy1 = t[1].y - t[0].y, dx2 = t[2].x - t[0].x, dy2 = t[2].y - t[0].y;
    const double d = dx1 * dy2 - dx2 * dy1;
    for (int i = 0; i < n; ++i) {
      const double x = out[i].x - t[0].x, y = out[i].y - t[0].y;
      const double u = (x * dy2 - y * dx2) / d, v = (y * dx1 - x * dy1) / d;
      for (byte OT_RGB32::*k : {&OT_RGB32::r, &OT_RGB32::g, &OT_RGB32::b, &OT_RGB32::a})
        EXPECT_NEAR(out_colors[i].*k,
                    colors[0].*k + u * (colors[1].*k - colors[0].*k) + v * (colors[2].*k - colors[0].*k), 1.0)
            << i;
    }
  }
}

// Seeded: a triangle across the hard clip against the same triangle drawn
// whole. The same pixels are drawn; RGB32 channels and depth agree to 1 (a
// two-pixel span takes the mean inside and the slope across the clip).
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
    ASSERT_TRUE(matches_inside_clip(cut, whole, clip, 1)) << "round " << round;
  }
}

// Seeded: segments across the hard clip (2DI) against the same segments
// drawn whole (DCI), with opaque colours. Inside the clip the same pixels
// take the same colours and depths; a last point that alone is inside is the
// mode's dot in the last colour, which writes what the whole segment's last
// pixel does. Steep segments running down and left are left out (the segments
// all run upwards): the whole walk corrects their start.
void expect_clipped_lines_match_whole(const Mode_Case& mode, Draw draw_whole, Draw draw_cut) {
  std::mt19937 random(1123);
  std::uniform_int_distribution<int> coordinate(-20, 80), channel(0, 255), kind(0, 3), z(0, 5000);
  const OT_Int_Rectangle clip{10, 50, 8, 38};
  int compared = 0;
  for (int round = 0; round < 200; ++round) {
    OT_DCI_Point a{coordinate(random), coordinate(random), z(random)}, b{coordinate(random), 0, z(random)};
    const int k = kind(random);  // horizontal, diagonal, shallow, any
    b.y = k == 0 ? a.y : k == 1 ? a.y + (b.x - a.x) : k == 2 ? a.y + (b.x - a.x) / 3 : coordinate(random);
    if (b.y < a.y) std::swap(a, b);
    a.x = std::clamp(a.x, 0, 63), b.x = std::clamp(b.x, 0, 63);
    a.y = std::clamp(a.y, 0, 47), b.y = std::clamp(b.y, 0, 47);
    const Colors c{OT_RGB32::rgba(channel(random), channel(random), 0),
                   OT_RGB32::rgba(channel(random), 9, 200)};
    Renderer_Harness whole(mode), cut(mode);
    draw_whole(whole, Points{a, b}, c);
    cut.set_hard_clip(clip);
    draw_cut(cut, Points{a, b}, c);
    ASSERT_TRUE(matches_inside_clip(cut, whole, clip, 0, &compared)) << "round " << round;
  }
  EXPECT_GT(compared, 1500);
}

TEST_P(Rgb32_Modes, ClippedGouraudSegmentsMatchWholeOnes) {
  expect_clipped_lines_match_whole(GetParam(), gouraud_line, gouraud_line_2di);
}

TEST_P(All_Modes, ClippedColorizedSegmentsMatchWholeOnes) {
  expect_clipped_lines_match_whole(GetParam(), colorized_line, colorized_line_2di);
}

}  // namespace
}  // namespace tarn::testing
