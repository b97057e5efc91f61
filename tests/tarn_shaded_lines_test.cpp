// Colorized and Gouraud polylines: channel steps along the major axis worked
// by hand, the nearly flat shortcut, the last pixel of each form, mapped
// colorized lines against colorized triangles of the same colour, and a
// seeded comparison of clipped Gouraud segments with whole ones.
#include <random>

#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

using Colors = std::vector<OT_RGB32>;

void gouraud_line(Renderer_Harness& h, const Points& p, const Colors& c) {
  h.renderer().draw_dci_gouraud_polyline(h.rendition(), int(p.size()), p.data(), c.data());
}
void gouraud_line_2di(Renderer_Harness& h, const Points& p, const Colors& c) {
  h.renderer().draw_2di_gouraud_polyline(h.rendition(), int(p.size()), p.data(), c.data());
}
OT_RGB32 red(int r, int a = 255) { return OT_RGB32::rgba(r, 50, 60, a); }

class Rgb32_Lines : public ::testing::TestWithParam<Mode_Case> {};
INSTANTIATE_TEST_SUITE_P(Rgb32, Rgb32_Lines, ::testing::Values(kRgb32, kRgb32Alpha, kZRgb32, kZRgb32Alpha),
                         mode_name);

// A shallow segment of 7 steps from red 0 to 70 steps red by 10 a column; a
// steep one of 4 rows from 0 to 20 by 5 a row. The last point takes the last
// colour whole.
TEST_P(Rgb32_Lines, ChannelsStepAlongTheMajorAxis) {
  Renderer_Harness h(GetParam());
  gouraud_line(h, {{2, 2, 40}, {9, 5, 40}}, {red(0), red(70)});
  const Pixels drawn = h.drawn();
  ASSERT_EQ(drawn.size(), 8u);
  for (const auto& [x, y] : drawn) EXPECT_EQ(h.pixel(x, y), red(10 * (x - 2)).word()) << x << "," << y;
  h.clear();
  gouraud_line(h, {{20, 10, 40}, {22, 14, 40}}, {red(0), red(20)});
  for (int y = 10; y <= 14; ++y) {
    int found = 0;
    for (int x = 19; x <= 23; ++x)
      if (h.pixel(x, y) != h.clear_value()) {
        EXPECT_EQ(h.pixel(x, y), red(5 * (y - 10)).word()) << x << "," << y;
        ++found;
      }
    EXPECT_EQ(found, 1) << "row " << y;
  }
}

// Within 3 in every channel a segment is a one-colour polyline in its first
// colour (in the opaque mode with that colour's own alpha byte); 4 apart it
// is interpolated. The RGB32 depth forms know no shortcut.
TEST(Gouraud_Lines, NearlyFlatSegmentsTakeTheirFirstColour) {
  for (const Mode_Case& mode : {kRgb32, kMapped, kZMapped}) {
    Renderer_Harness shaded(mode), flat(mode);
    const Points line{{2, 2, 40}, {40, 9, 40}};
    const OT_RGB32 first = OT_RGB32::rgba(100, 100, 100, 77);
    const OT_RGB32 second = OT_RGB32::rgba(103, 97, 103, 200);
    gouraud_line(shaded, line, {first, second});
    flat.renderer().draw_dci_colorized_polyline(flat.rendition(), 2, line.data(), &first, true);
    // The RGB32 forms still write the last point, in the last colour.
    if (!mode.mapped()) flat.poke(40, 9, second.word() | 0xFF000000u);
    EXPECT_EQ(shaded.snapshot(), flat.snapshot()) << mode.name;
    shaded.clear();
    gouraud_line(shaded, line, {first, OT_RGB32::rgba(104, 100, 100, 200)});
    if (!mode.mapped()) {
      EXPECT_NE(shaded.snapshot(), flat.snapshot()) << mode.name;
    }
  }
  Renderer_Harness depth(kZRgb32);
  gouraud_line(depth, {{2, 2, 40}, {40, 9, 40}}, {red(100, 77), red(101, 77)});
  EXPECT_EQ(depth.pixel(2, 2), red(100).word());  // stored with alpha 255: interpolated
}

// Mapped, red 0 to 255 over 7 steps: red * scale 5 in 16.16, stepped by
// 1275 << 16 / 7 (truncated) and read as level V = accumulator >> 8. The last
// pixel comes from the accumulators one step past the walk, so it follows
// the truncated steps rather than the last colour.
TEST(Gouraud_Lines, MappedLevelsFollowTheWalk) {
  Renderer_Harness h(kMapped);
  gouraud_line(h, {{4, 4, 0}, {11, 4, 0}}, {OT_RGB32::rgba(0, 0, 0), OT_RGB32::rgba(255, 0, 0)});
  const OT_Color_Cube& cube = h.renderer().cube;
  ASSERT_EQ(cube.red_scale, 5);
  for (int i = 0; i <= 7; ++i) {
    const std::int32_t v = ((i * ((1275 << 16) / 7)) + 0x8000) >> 8;
    const std::uint16_t d =
        SHARED.dither[4 * 8 + (reinterpret_cast<std::uintptr_t>(h.address(4 + i, 4)) & 7)];
    EXPECT_EQ(h.pixel(4 + i, 4), (cube.base + ((v + d) >> 16) * cube.red_step) & 255u) << i;
  }
}

// A flat colour dithers the same on a mapped colorized line as on a mapped
// colorized triangle: the comparison form, by row and address.
TEST(Colorized_Lines, MappedDitherMatchesTriangles) {
  for (const Mode_Case& mode : {kMapped, kZMapped}) {
    Renderer_Harness line(mode), fill(mode);
    const OT_RGB32 colors[2] = {OT_RGB32::rgba(120, 200, 33), OT_RGB32::rgba(10, 90, 250)};
    const Points points{{3, 3, 10}, {50, 20, 10}, {45, 44, 10}};
    line.renderer().draw_dci_colorized_polyline(line.rendition(), 3, points.data(), colors, false);
    fill.colorized(rectangle(0, 0, 64, 48, 10), {colors[0]}, true);
    Renderer_Harness fill2(mode);
    fill2.colorized(rectangle(0, 0, 64, 48, 10), {colors[1]}, true);
    const Pixels drawn = line.drawn();
    ASSERT_GT(drawn.size(), 60u);
    for (const auto& [x, y] : drawn) {
      // The first segment runs to row 20 but leaves the joint (50, 20) to
      // the second, steep one, whose colour the last pixel takes too.
      const bool second = y > 20 || (x == 50 && y == 20);
      EXPECT_EQ(line.pixel(x, y), (second ? fill2 : fill).pixel(x, y)) << mode.name << " " << x << "," << y;
    }
  }
}

// Seeded: segments across the hard clip (2DI) against the same segments
// drawn whole (DCI), with opaque colours. Inside the clip the same pixels
// take the same colours and depths; a last point that alone is inside is the
// mode's dot in the last colour, which writes what the whole segment's last
// pixel does. Steep segments running down and left are left out: the whole
// walk corrects their start. Outside the clip nothing changes.
template <class Draw_Whole, class Draw_Cut>
void compare_clipped_with_whole(const Mode_Case& mode, Draw_Whole&& draw_whole, Draw_Cut&& draw_cut) {
  std::mt19937 random(1123);
  std::uniform_int_distribution<int> coordinate(-20, 80), channel(0, 255), kind(0, 3), z(0, 5000);
  const OT_Int_Rectangle clip{10, 50, 8, 38};
  int compared = 0;
  for (int round = 0; round < 200; ++round) {
    OT_DCI_Point a{coordinate(random), coordinate(random), z(random)}, b{coordinate(random), 0, z(random)};
    switch (kind(random)) {
      case 0:
        b.y = a.y;
        break;  // horizontal
      case 1:
        b.y = a.y + (b.x - a.x);
        break;  // diagonal
      case 2:
        b.y = a.y + (b.x - a.x) / 3;
        break;  // shallow
      default:
        b.y = coordinate(random);
        break;
    }
    if (b.y < a.y) std::swap(a, b);
    a.x = std::clamp(a.x, 0, 63), b.x = std::clamp(b.x, 0, 63);
    a.y = std::clamp(a.y, 0, 47), b.y = std::clamp(b.y, 0, 47);
    const Colors c{OT_RGB32::rgba(channel(random), channel(random), 0),
                   OT_RGB32::rgba(channel(random), 9, 200)};
    Renderer_Harness whole(mode), cut(mode);
    draw_whole(whole, Points{a, b}, c);
    cut.set_hard_clip(clip);
    draw_cut(cut, Points{a, b}, c);
    for (int y = 0; y < 48; ++y) {
      for (int x = 0; x < 64; ++x) {
        const bool in = x >= clip.left && x <= clip.right && y >= clip.bottom && y <= clip.top;
        if (!in) {
          ASSERT_EQ(cut.pixel(x, y), cut.clear_value()) << round << " at " << x << "," << y;
          continue;
        }
        ASSERT_EQ(cut.pixel(x, y), whole.pixel(x, y)) << round << " at " << x << "," << y;
        if (mode.depth()) {
          ASSERT_EQ(cut.depth(x, y), whole.depth(x, y)) << round << " at " << x << "," << y;
        }
        compared += whole.pixel(x, y) != whole.clear_value();
      }
    }
  }
  EXPECT_GT(compared, 1500);
}

TEST_P(Rgb32_Lines, ClippedGouraudSegmentsMatchWholeOnes) {
  compare_clipped_with_whole(GetParam(), gouraud_line, gouraud_line_2di);
}

class All_Lines : public ::testing::TestWithParam<Mode_Case> {};
INSTANTIATE_TEST_SUITE_P(AllModes, All_Lines, ::testing::ValuesIn(kAllModes), mode_name);

// A list of colours one a segment: the only segment's for its last pixel too.
TEST_P(All_Lines, ClippedColorizedSegmentsMatchWholeOnes) {
  auto colorized = [](auto slot) {
    return [slot](Renderer_Harness& h, const Points& p, const Colors& c) {
      (h.renderer().*slot)(h.rendition(), int(p.size()), p.data(), c.data(), false);
    };
  };
  compare_clipped_with_whole(GetParam(), colorized(&OT_Renderer_Data::draw_dci_colorized_polyline),
                             colorized(&OT_Renderer_Data::draw_2di_colorized_polyline));
}

}  // namespace
}  // namespace tarn::testing
