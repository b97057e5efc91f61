// Dots and one-pixel polymarkers in the six modes: the pixel rules in their
// plainest form, the depth rules of dots, the clip of markers, and what goes
// to the host.
#include <vector>

#include "pixel/blend.h"
#include "pixel/dither.h"
#include "pixel/merge.h"
#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

using Pixels = std::set<std::pair<int, int>>;

constexpr const Mode_Case& kRgb32Alpha = kAllModes[0];
constexpr const Mode_Case& kRgb32 = kAllModes[1];
constexpr const Mode_Case& kMapped = kAllModes[2];
constexpr const Mode_Case& kZMapped = kAllModes[3];
constexpr const Mode_Case& kZRgb32Alpha = kAllModes[4];
constexpr const Mode_Case& kZRgb32 = kAllModes[5];

void dot(Renderer_Harness& h, int x, int y, int z, const OT_RGB32* color = nullptr) {
  const OT_DCI_Point p{x, y, z};
  h.renderer().draw_dci_dot(h.rendition(), &p, color);
}

void markers(Renderer_Harness& h, std::vector<OT_DCI_Point> points) {
  h.renderer().draw_2di_polymarker(h.rendition(), static_cast<int>(points.size()), points.data());
}

byte* color_address(Renderer_Harness& h, int x, int y) {
  Software_Z_Buffer& r = h.renderer();
  const int size = h.mode().mapped() ? 1 : 4;
  return r.color_image->device_rows[y - r.origin_y] + (x - r.origin_x) * size;
}

// Puts a value straight into the colour image.
void poke(Renderer_Harness& h, int x, int y, std::uint32_t value) {
  byte* at = color_address(h, x, y);
  if (h.mode().mapped())
    *at = static_cast<byte>(value);
  else
    std::memcpy(at, &value, 4);
}

void poke_depth(Renderer_Harness& h, int x, int y, std::uint16_t value) {
  Software_Z_Buffer& r = h.renderer();
  std::memcpy(r.depth_image->device_rows[y - r.origin_y] + (x - r.origin_x) * 2, &value, 2);
}

// The index a colour dithers to at one pixel: threshold by window row and
// the pixel's address.
byte dithered_at(Renderer_Harness& h, OT_RGB32 color, int x, int y) {
  return dither_pick(dither_thresholds(h.renderer().cube, color),
                     dither_threshold(y - h.renderer().origin_y, color_address(h, x, y)));
}

void use_region(Renderer_Harness& h, OT_Int_Rectangle box) {
  OT_Option* option = h.renderer().requested_options.find(L"Use Mask");
  ASSERT_NE(option, nullptr);
  option->set(OT_Option_Value::of_bool(true));
  h.renderer().update_current_options();
  h.renderer().establish();
  h.clear();
  const float l = float(box.left), r = float(box.right + 1), b = float(box.bottom), t = float(box.top + 1);
  const OT_Point corners[4] = {{l, b, 0}, {r, b, 0}, {r, t, 0}, {l, t, 0}};
  h.rendition().writable_device()->complex_clip = OT_Contour_Set(4, corners, true);
}

// An old pixel index for which the mapped merge rule gives something other
// than both a plain store of `index` and the old value.
byte index_that_merges(Renderer_Harness& h, byte index) {
  const Merge_Mapped merge(h.renderer());
  for (int old = 1; old < 256; ++old) {
    if (old == merge.background || old == index) continue;
    byte pixel = static_cast<byte>(old);
    merge.apply(&pixel, index);
    if (pixel != index && pixel != old) return static_cast<byte>(old);
  }
  ADD_FAILURE() << "no index merges visibly";
  return 0;
}

// ---- All modes -----------------------------------------------------------------

class Dots : public ::testing::TestWithParam<Mode_Case> {};

TEST_P(Dots, OnePixelAndNoClipTest) {
  Renderer_Harness h(GetParam());
  h.set_hard_clip({10, 20, 10, 20});
  dot(h, 40, 30, 100);
  dot(h, 0, 0, 100);
  dot(h, 63, 47, 100);
  EXPECT_EQ(h.drawn(), (Pixels{{40, 30}, {0, 0}, {63, 47}}));
  EXPECT_EQ(h.pixel(40, 30), h.drawn_value());
  if (GetParam().depth()) {
    EXPECT_EQ(h.depth(40, 30), 100);
    EXPECT_EQ(h.depth(41, 30), 0xFFFF);
  }
}

TEST_P(Dots, WindowOriginIsTakenOff) {
  Renderer_Harness h(GetParam(), 32, 24, {100, 200});
  dot(h, 105, 207, 3);
  EXPECT_EQ(h.drawn(), (Pixels{{105, 207}}));
}

INSTANTIATE_TEST_SUITE_P(Dot, Dots, ::testing::ValuesIn(kAllModes), mode_name);

// ---- Mapped dots ------------------------------------------------------------------

class Dot_Mapped : public ::testing::TestWithParam<Mode_Case> {};

TEST_P(Dot_Mapped, GivenColourIsDitheredByRowAndAddress) {
  Renderer_Harness h(GetParam(), 40, 30, {3, 5});
  const OT_RGB32 color = OT_RGB32::rgba(100, 150, 30);
  std::set<byte> seen;
  for (int y = 0; y < 9; ++y)
    for (int x = 0; x < 9; ++x) {
      const int dx = 3 + 2 * x + 1, dy = 5 + 2 * y + 1;
      dot(h, dx, dy, 10, &color);
      const byte expected = dithered_at(h, color, dx, dy);
      ASSERT_EQ(h.pixel(dx, dy), expected) << dx << "," << dy;
      seen.insert(expected);
    }
  EXPECT_GE(seen.size(), 2u);  // the colour lies between cube levels
}

TEST_P(Dot_Mapped, GivenColourNeverMerges) {
  Renderer_Harness h(GetParam());
  const OT_RGB32 color = OT_RGB32::rgba(0, 255, 0);
  const byte target = dithered_at(h, color, 7, 7);
  const byte old = index_that_merges(h, target);
  for (int way = 0; way < 2; ++way) {
    h.rendition().writable_raster()->write_mode = way == 0 ? 20 : 0;
    h.renderer().force_merge = way == 1;
    poke(h, 7, 7, old);
    dot(h, 7, 7, 10, &color);
    EXPECT_EQ(h.pixel(7, 7), target) << way;
  }
}

TEST_P(Dot_Mapped, RenditionColourMergesWithoutDepth) {
  Renderer_Harness h(GetParam());
  if (GetParam().depth()) h.rendition().writable_device()->depth_enabled = 0;
  const byte old = index_that_merges(h, Renderer_Harness::kIndex);
  byte expected = old;
  Merge_Mapped(h.renderer()).apply(&expected, Renderer_Harness::kIndex);
  h.rendition().writable_raster()->write_mode = 20;
  poke(h, 7, 7, old);
  dot(h, 7, 7, 10);
  EXPECT_EQ(h.pixel(7, 7), expected);
  h.rendition().writable_raster()->write_mode = 0;
  poke(h, 7, 7, old);
  dot(h, 7, 7, 10);
  EXPECT_EQ(h.pixel(7, 7), Renderer_Harness::kIndex);
}

INSTANTIATE_TEST_SUITE_P(Dot, Dot_Mapped, ::testing::Values(kMapped, kZMapped), mode_name);

TEST(Dot_Mapped_Depth, KnowsNeitherMergeNorTheDepthOptions) {
  Renderer_Harness h(kZMapped);
  const byte old = index_that_merges(h, Renderer_Harness::kIndex);
  h.rendition().writable_raster()->write_mode = 20;
  h.renderer().force_merge = 1;
  h.renderer().depth_test = 5;
  h.renderer().depth_write = 0;
  poke(h, 7, 7, old);
  dot(h, 7, 7, 100);
  // At or below, whatever "ZBuffer Test" says; depth stored, whatever
  // "ZBuffer Write" says; a plain store.
  EXPECT_EQ(h.pixel(7, 7), Renderer_Harness::kIndex);
  EXPECT_EQ(h.depth(7, 7), 100);
  h.rendition().writable_colors()->color_index = 33;
  dot(h, 7, 7, 101);
  EXPECT_EQ(h.pixel(7, 7), Renderer_Harness::kIndex);
  EXPECT_EQ(h.depth(7, 7), 100);
  dot(h, 7, 7, 100);
  EXPECT_EQ(h.pixel(7, 7), 33u);
  h.renderer().depth_test = 1;
  h.rendition().writable_colors()->color_index = 34;
  dot(h, 7, 7, 100);
  EXPECT_EQ(h.pixel(7, 7), 34u);
}

TEST(Dot_Mapped_Depth, GivenColourIsDitheredToo) {
  Renderer_Harness h(kZMapped);
  const OT_RGB32 color = OT_RGB32::rgba(100, 150, 30);
  for (int x = 0; x < 8; ++x) {
    dot(h, 10 + x, 3, 10, &color);
    EXPECT_EQ(h.pixel(10 + x, 3), dithered_at(h, color, 10 + x, 3));
    EXPECT_EQ(h.depth(10 + x, 3), 10);
  }
}

// ---- Depth dots ----------------------------------------------------------------------

class Dot_Depth : public ::testing::TestWithParam<Mode_Case> {
 protected:
  // A second colour, told apart from the harness's.
  void recolor(Renderer_Harness& h) {
    h.rendition().writable_colors()->color = OT_RGB32::rgba(9, 8, 7);
    h.rendition().writable_colors()->color_index = 33;
  }
  std::uint32_t recolored(const Renderer_Harness& h) const {
    return h.mode().mapped() ? 33u : OT_RGB32::rgba(9, 8, 7).word();
  }
};

TEST_P(Dot_Depth, Z70000FailsAgainstEveryStoredDepth) {
  Renderer_Harness h(GetParam());
  for (std::uint16_t stored : {std::uint16_t(0), std::uint16_t(4464), std::uint16_t(0xFFFF)}) {
    poke_depth(h, 5, 5, stored);
    dot(h, 5, 5, 70000);
    EXPECT_EQ(h.pixel(5, 5), h.clear_value()) << stored;
    EXPECT_EQ(h.depth(5, 5), stored);
  }
}

TEST_P(Dot_Depth, ZMinusOnePassesEverywhereAndStoresFFFF) {
  Renderer_Harness h(GetParam());
  dot(h, 5, 5, 0);
  ASSERT_EQ(h.depth(5, 5), 0);
  ASSERT_EQ(h.pixel(5, 5), h.drawn_value());
  recolor(h);
  dot(h, 5, 5, -1);
  EXPECT_EQ(h.pixel(5, 5), recolored(h));
  EXPECT_EQ(h.depth(5, 5), 0xFFFF);
}

TEST_P(Dot_Depth, EqualDepthPassesByDefaultAndGreaterFails) {
  Renderer_Harness h(GetParam());
  dot(h, 5, 5, 300);
  recolor(h);
  dot(h, 5, 5, 301);
  EXPECT_EQ(h.pixel(5, 5), h.drawn_value());
  EXPECT_EQ(h.depth(5, 5), 300);
  dot(h, 5, 5, 300);
  EXPECT_EQ(h.pixel(5, 5), recolored(h));
}

TEST_P(Dot_Depth, DepthDisabledTakesTheDotWithoutDepth) {
  Renderer_Harness h(GetParam());
  h.rendition().writable_device()->depth_enabled = 0;
  dot(h, 5, 5, 70000);
  EXPECT_EQ(h.pixel(5, 5), h.drawn_value());
  EXPECT_EQ(h.depth(5, 5), 0xFFFF);
}

INSTANTIATE_TEST_SUITE_P(Dot, Dot_Depth, ::testing::Values(kZMapped, kZRgb32Alpha, kZRgb32), mode_name);

class Dot_Depth_Rgb32 : public Dot_Depth {};

TEST_P(Dot_Depth_Rgb32, ZBufferTestChoosesTheComparison) {
  Renderer_Harness h(GetParam());
  // 1: below only.
  h.renderer().depth_test = 1;
  poke_depth(h, 5, 5, 300);
  dot(h, 5, 5, 300);
  EXPECT_EQ(h.pixel(5, 5), h.clear_value());
  dot(h, 5, 5, 299);
  EXPECT_EQ(h.pixel(5, 5), h.drawn_value());
  EXPECT_EQ(h.depth(5, 5), 299);
  // 5: above only; 70000 is above everything as a 32-bit number and stores
  // its low 16 bits.
  h.renderer().depth_test = 5;
  poke_depth(h, 6, 5, 300);
  dot(h, 6, 5, 300);
  EXPECT_EQ(h.pixel(6, 5), h.clear_value());
  dot(h, 6, 5, 301);
  EXPECT_EQ(h.pixel(6, 5), h.drawn_value());
  EXPECT_EQ(h.depth(6, 5), 301);
  poke_depth(h, 7, 5, 0xFFFF);
  dot(h, 7, 5, 70000);
  EXPECT_EQ(h.pixel(7, 5), h.drawn_value());
  EXPECT_EQ(h.depth(7, 5), 70000 & 0xFFFF);
  // Any other value: at or below.
  h.renderer().depth_test = 3;
  poke_depth(h, 8, 5, 300);
  dot(h, 8, 5, 301);
  EXPECT_EQ(h.pixel(8, 5), h.clear_value());
  dot(h, 8, 5, 300);
  EXPECT_EQ(h.pixel(8, 5), h.drawn_value());
}

TEST_P(Dot_Depth_Rgb32, ZBufferWriteFalseChangesColourButNotDepth) {
  Renderer_Harness h(GetParam());
  h.renderer().depth_write = 0;
  dot(h, 5, 5, 100);
  EXPECT_EQ(h.pixel(5, 5), h.drawn_value());
  EXPECT_EQ(h.depth(5, 5), 0xFFFF);
}

TEST_P(Dot_Depth_Rgb32, NeitherMergeNorMask) {
  Renderer_Harness h(GetParam());
  use_region(h, {0, 3, 0, 3});
  h.rendition().writable_raster()->write_mode = 20;
  h.renderer().force_merge = 1;
  const OT_RGB32 old = OT_RGB32::rgba(0x55, 0xF0, 0x0F);
  const OT_RGB32 color = OT_RGB32::rgba(0xAA, 0x0F, 0xFF);
  poke(h, 10, 10, old.word());
  dot(h, 10, 10, 5, &color);
  EXPECT_EQ(h.pixel(10, 10), color.word());
  EXPECT_EQ(h.depth(10, 10), 5);
  EXPECT_EQ(h.renderer().mask_cache->mask_count, 0);
}

INSTANTIATE_TEST_SUITE_P(Dot, Dot_Depth_Rgb32, ::testing::Values(kZRgb32Alpha, kZRgb32), mode_name);

// ---- RGB32 colours --------------------------------------------------------------------

TEST(Dot_Rgb32, PlainStoreKeepsAllFourBytes) {
  for (const Mode_Case* mode : {&kRgb32, &kZRgb32}) {
    Renderer_Harness h(*mode);
    const OT_RGB32 color{1, 2, 3, 77};
    dot(h, 4, 4, 0, &color);
    EXPECT_EQ(h.pixel(4, 4), color.word()) << mode->name;
    h.rendition().writable_colors()->color = OT_RGB32{5, 6, 7, 0};
    dot(h, 5, 4, 0);
    EXPECT_EQ(h.pixel(5, 4), (OT_RGB32{5, 6, 7, 0}.word())) << mode->name;
  }
}

TEST(Dot_Rgb32, MergeRuleUnderMergeControl) {
  for (const Mode_Case* mode : {&kRgb32, &kRgb32Alpha}) {
    Renderer_Harness h(*mode);
    const OT_RGB32 old = OT_RGB32::rgba(0x55, 0xF0, 0x0F);
    const OT_RGB32 color{0xFF, 0x0F, 0xAA, 128};
    std::uint32_t expected = old.word();
    Merge_Rgb32(h.renderer()).apply(&expected, color.word());
    ASSERT_NE(expected, color.word());
    ASSERT_NE(expected, blend_weight(old.word(), color));
    h.rendition().writable_raster()->write_mode = 20;
    poke(h, 3, 3, old.word());
    dot(h, 3, 3, 0, &color);
    EXPECT_EQ(h.pixel(3, 3), expected) << mode->name;
    h.rendition().writable_raster()->write_mode = 0;
    h.renderer().force_merge = 1;
    poke(h, 3, 3, old.word());
    dot(h, 3, 3, 0, &color);
    EXPECT_EQ(h.pixel(3, 3), expected) << mode->name;
  }
}

class Dot_Alpha : public ::testing::TestWithParam<Mode_Case> {};

TEST_P(Dot_Alpha, AlphaZeroSetsOnlyTheAlphaByte) {
  Renderer_Harness h(GetParam());
  poke(h, 5, 5, 0x40302010u);
  const OT_RGB32 color{200, 100, 50, 0};
  dot(h, 5, 5, 10, &color);
  EXPECT_EQ(h.pixel(5, 5), 0xFF302010u);
  if (GetParam().depth()) {
    EXPECT_EQ(h.depth(5, 5), 10);
  }
}

TEST_P(Dot_Alpha, BlendIsTheWeightForm) {
  Renderer_Harness h(GetParam());
  // 100 + (-100 * 128 >> 8) = 50; 0 + (255 * 128 >> 8) = 127;
  // 255 + (-255 * 128 >> 8) = 127, the shift rounding toward minus infinity.
  // The exact form would give 49, 128, 127.
  poke(h, 5, 5, OT_RGB32{100, 0, 255, 7}.word());
  const OT_RGB32 color{0, 255, 0, 128};
  dot(h, 5, 5, 10, &color);
  EXPECT_EQ(h.pixel(5, 5), (OT_RGB32{50, 127, 127, 255}.word()));
  // Alpha 255 weighs 256: the colour itself.
  poke(h, 6, 5, OT_RGB32{100, 0, 255, 7}.word());
  const OT_RGB32 opaque{3, 4, 5, 255};
  dot(h, 6, 5, 10, &opaque);
  EXPECT_EQ(h.pixel(6, 5), opaque.word());
  // The rendition's colour blends as well.
  h.rendition().writable_colors()->color = color;
  poke(h, 7, 5, OT_RGB32{100, 0, 255, 7}.word());
  dot(h, 7, 5, 10);
  EXPECT_EQ(h.pixel(7, 5), (OT_RGB32{50, 127, 127, 255}.word()));
}

INSTANTIATE_TEST_SUITE_P(Dot, Dot_Alpha, ::testing::Values(kRgb32Alpha, kZRgb32Alpha), mode_name);

// ---- The mask --------------------------------------------------------------------------

class Dot_Mask : public ::testing::TestWithParam<Mode_Case> {};

TEST_P(Dot_Mask, SetBitHidesADotOfTheFormsWithoutDepth) {
  for (int enabled = 1; enabled >= 0; --enabled) {
    Renderer_Harness h(GetParam());
    use_region(h, {10, 20, 10, 20});
    h.rendition().writable_device()->depth_enabled = static_cast<byte>(enabled);
    const bool masked = !GetParam().depth() || enabled == 0;
    const OT_RGB32 color = OT_RGB32::rgba(100, 150, 30);
    dot(h, 10, 10, 5);
    dot(h, 20, 20, 5, &color);
    dot(h, 9, 10, 5);
    dot(h, 21, 20, 5, &color);
    dot(h, 15, 21, 5);
    Pixels expected{{10, 10}, {20, 20}};
    if (!masked) expected.insert({{9, 10}, {21, 20}, {15, 21}});
    EXPECT_EQ(h.drawn(), expected) << "depth_enabled " << enabled;
  }
}

TEST_P(Dot_Mask, SetBitHidesAMarkerOfTheFormsWithoutDepth) {
  for (int enabled = 1; enabled >= 0; --enabled) {
    Renderer_Harness h(GetParam());
    use_region(h, {10, 20, 10, 20});
    h.rendition().writable_device()->depth_enabled = static_cast<byte>(enabled);
    const bool masked = !GetParam().depth() || enabled == 0;
    markers(h, {{10, 10, 5}, {9, 10, 5}, {20, 20, 5}, {20, 21, 5}, {15, 15, 5}});
    Pixels expected{{10, 10}, {20, 20}, {15, 15}};
    if (!masked) expected.insert({{9, 10}, {20, 21}});
    EXPECT_EQ(h.drawn(), expected) << "depth_enabled " << enabled;
  }
}

INSTANTIATE_TEST_SUITE_P(Dot, Dot_Mask, ::testing::ValuesIn(kAllModes), mode_name);

// ---- Markers ---------------------------------------------------------------------------

struct Recorded_Dot {
  OT_DCI_Point point;
  const OT_RGB32* color;
};
std::vector<Recorded_Dot> recorded_dots;

void record_dot(OT_Renderer_Data*, const OT_Rendition&, const OT_DCI_Point* p, const OT_RGB32* color) {
  recorded_dots.push_back({*p, color});
}

std::vector<std::pair<int, int>> recorded_positions() {
  std::vector<std::pair<int, int>> out;
  for (const Recorded_Dot& d : recorded_dots) out.push_back({d.point.x, d.point.y});
  return out;
}

class Markers : public ::testing::TestWithParam<Mode_Case> {};

TEST_P(Markers, CornerOfTheHardClipIsDrawnAndOneBeyondIsNot) {
  Renderer_Harness h(GetParam());
  h.set_hard_clip({10, 40, 5, 30});
  markers(h, {{10, 5, 1}, {40, 30, 1}, {10, 30, 1}, {40, 5, 1}, {9, 5, 1}, {41, 30, 1}, {10, 4, 1}, {40, 31, 1},
              {9, 31, 1}, {25, 17, 1}});
  EXPECT_EQ(h.drawn(), (Pixels{{10, 5}, {40, 30}, {10, 30}, {40, 5}, {25, 17}}));
  EXPECT_EQ(h.pixel(10, 5), h.drawn_value());
}

TEST_P(Markers, SymbolOneGoesToTheHost) {
  for (const OT_RGB32 color : {OT_RGB32{0, 0, 255, 255}, OT_RGB32{0, 0, 255, 100}})
    for (int enabled = 1; enabled >= 0; --enabled) {
      Renderer_Harness h(GetParam());
      h.rendition().writable_colors()->color = color;
      h.rendition().writable_device()->depth_enabled = static_cast<byte>(enabled);
      h.rendition().writable_marker()->symbol = 1;
      h.set_hard_clip({10, 40, 5, 30});
      // The host's routine draws a dot for each point inside.
      recorded_dots.clear();
      h.renderer().draw_dci_dot.function = record_dot;
      markers(h, {{12, 6, 1}, {50, 6, 1}, {39, 29, 1}});
      EXPECT_EQ(recorded_positions(), (std::vector<std::pair<int, int>>{{12, 6}, {39, 29}}))
          << int(color.a) << " " << enabled;
      EXPECT_TRUE(h.drawn().empty());
    }
}

TEST_P(Markers, SymbolZeroIsDrawnHereButInTheMappedDepthMode) {
  Renderer_Harness h(GetParam());
  recorded_dots.clear();
  h.renderer().draw_dci_dot.function = record_dot;
  markers(h, {{12, 6, 1}, {39, 29, 1}});
  if (GetParam().mapped() && GetParam().depth()) {
    EXPECT_EQ(h.renderer().draw_2di_polymarker.function, &OB_Standard_Draw_2DI_Polymarker);
    EXPECT_EQ(recorded_positions(), (std::vector<std::pair<int, int>>{{12, 6}, {39, 29}}));
  } else {
    EXPECT_NE(h.renderer().draw_2di_polymarker.function, &OB_Standard_Draw_2DI_Polymarker);
    EXPECT_TRUE(recorded_dots.empty());
    EXPECT_EQ(h.drawn(), (Pixels{{12, 6}, {39, 29}}));
  }
}

TEST_P(Markers, NoPointsNothingAtAll) {
  Renderer_Harness h(GetParam());
  recorded_dots.clear();
  h.renderer().draw_dci_dot.function = record_dot;
  const OT_DCI_Point p{5, 5, 0};
  h.renderer().draw_2di_polymarker(h.rendition(), 0, &p);
  h.renderer().draw_2di_polymarker(h.rendition(), -3, &p);
  EXPECT_TRUE(recorded_dots.empty());
  EXPECT_TRUE(h.drawn().empty());
}

INSTANTIATE_TEST_SUITE_P(Marker, Markers, ::testing::ValuesIn(kAllModes), mode_name);

TEST(Marker_Mapped, MergeRuleUnderMergeControl) {
  Renderer_Harness h(kMapped);
  const byte old = index_that_merges(h, Renderer_Harness::kIndex);
  const Merge_Mapped merge(h.renderer());
  byte expected = old;
  merge.apply(&expected, Renderer_Harness::kIndex);
  h.rendition().writable_raster()->write_mode = 20;
  poke(h, 7, 7, old);
  poke(h, 8, 7, merge.background);
  markers(h, {{7, 7, 0}, {8, 7, 0}});
  EXPECT_EQ(h.pixel(7, 7), expected);
  EXPECT_EQ(h.pixel(8, 7), Renderer_Harness::kIndex);  // on the background
  // Without merge control, a plain store.
  h.rendition().writable_raster()->write_mode = 0;
  poke(h, 7, 7, old);
  markers(h, {{7, 7, 0}});
  EXPECT_EQ(h.pixel(7, 7), Renderer_Harness::kIndex);
}

TEST(Marker_Rgb32, MergeRuleUnderMergeControl) {
  for (const Mode_Case* mode : {&kRgb32, &kRgb32Alpha}) {
    Renderer_Harness h(*mode);
    const OT_RGB32 old = OT_RGB32::rgba(0x55, 0xF0, 0x0F);
    const OT_RGB32 color{0xFF, 0x0F, 0xAA, 100};
    h.rendition().writable_colors()->color = color;
    std::uint32_t expected = old.word();
    Merge_Rgb32(h.renderer()).apply(&expected, color.word());
    ASSERT_NE(expected, blend_weight(old.word(), color));
    h.renderer().force_merge = 1;
    poke(h, 7, 7, old.word());
    markers(h, {{7, 7, 0}});
    EXPECT_EQ(h.pixel(7, 7), expected) << mode->name;
  }
}

TEST(Marker_Rgb32, OpaqueStoresTheWholeWord) {
  Renderer_Harness h(kRgb32);
  h.rendition().writable_colors()->color = OT_RGB32{1, 2, 3, 40};
  markers(h, {{7, 7, 0}});
  EXPECT_EQ(h.pixel(7, 7), (OT_RGB32{1, 2, 3, 40}.word()));
}

TEST(Marker_Alpha, TranslucentColourBlendsByWeight) {
  for (const Mode_Case* mode : {&kRgb32Alpha, &kZRgb32Alpha}) {
    Renderer_Harness h(*mode);
    h.rendition().writable_colors()->color = OT_RGB32{0, 255, 0, 128};
    poke(h, 5, 5, OT_RGB32{100, 0, 255, 7}.word());
    markers(h, {{5, 5, 20}});
    EXPECT_EQ(h.pixel(5, 5), (OT_RGB32{50, 127, 127, 255}.word())) << mode->name;
    if (mode->depth()) {
      EXPECT_EQ(h.depth(5, 5), 20);
    }
  }
}

TEST(Marker_Alpha, OpaqueColourOfTheAlphaModeIsStoredAndHonoursTheMask) {
  Renderer_Harness h(kRgb32Alpha);
  use_region(h, {0, 10, 0, 10});
  h.rendition().writable_colors()->color = OT_RGB32{1, 2, 3, 255};
  h.renderer().force_merge = 0;
  poke(h, 5, 5, OT_RGB32{100, 0, 255, 7}.word());
  markers(h, {{5, 5, 0}, {11, 5, 0}});
  EXPECT_EQ(h.pixel(5, 5), (OT_RGB32{1, 2, 3, 255}.word()));
  EXPECT_EQ(h.pixel(11, 5), h.clear_value());
}

TEST(Marker_Depth, DepthTestAndWriteFollowTheOptions) {
  for (const Mode_Case* mode : {&kZRgb32, &kZRgb32Alpha}) {
    Renderer_Harness h(*mode);
    h.renderer().depth_test = 5;
    markers(h, {{5, 5, 100}});
    EXPECT_EQ(h.pixel(5, 5), h.clear_value()) << mode->name;
    poke_depth(h, 5, 5, 50);
    markers(h, {{5, 5, 100}});
    EXPECT_EQ(h.pixel(5, 5), h.drawn_value()) << mode->name;
    EXPECT_EQ(h.depth(5, 5), 100) << mode->name;
    h.renderer().depth_test = 2;
    h.renderer().depth_write = 0;
    markers(h, {{6, 5, 100}});
    EXPECT_EQ(h.pixel(6, 5), h.drawn_value()) << mode->name;
    EXPECT_EQ(h.depth(6, 5), 0xFFFF) << mode->name;
  }
}

// With an opaque colour the depth alpha marker is the depth marker, and only
// then does depth_enabled count: with depth the depth test holds and the mask
// doesn't; without depth the mask and merge of the marker without depth hold.
TEST(Marker_Depth, OpaqueColourInTheDepthAlphaModeIsTheDepthMarker) {
  Renderer_Harness h(kZRgb32Alpha);
  use_region(h, {0, 10, 0, 10});
  h.rendition().writable_colors()->color = OT_RGB32{1, 2, 3, 255};
  poke_depth(h, 5, 5, 50);
  markers(h, {{5, 5, 100}, {20, 5, 100}});
  EXPECT_EQ(h.pixel(5, 5), h.clear_value());
  EXPECT_EQ(h.pixel(20, 5), (OT_RGB32{1, 2, 3, 255}.word()));
  EXPECT_EQ(h.depth(20, 5), 100);

  h.rendition().writable_device()->depth_enabled = 0;
  h.renderer().force_merge = 1;
  const OT_RGB32 old = OT_RGB32::rgba(0x55, 0xF0, 0x0F);
  std::uint32_t merged = old.word();
  Merge_Rgb32(h.renderer()).apply(&merged, OT_RGB32{1, 2, 3, 255}.word());
  poke(h, 6, 6, old.word());
  markers(h, {{6, 6, 100}, {21, 6, 100}});
  EXPECT_EQ(h.pixel(6, 6), merged);
  EXPECT_EQ(h.pixel(21, 6), h.clear_value());
  EXPECT_EQ(h.depth(6, 6), 0xFFFF);
}

TEST(Marker_Depth, DepthDisabledTakesTheMarkerWithoutDepth) {
  for (const Mode_Case* mode : {&kZRgb32, &kZRgb32Alpha}) {
    Renderer_Harness h(*mode);
    h.rendition().writable_device()->depth_enabled = 0;
    h.rendition().writable_colors()->color = OT_RGB32{0, 255, 0, 128};
    poke(h, 5, 5, OT_RGB32{100, 0, 255, 7}.word());
    markers(h, {{5, 5, 70000}});
    const std::uint32_t expected =
        mode->alpha ? OT_RGB32{50, 127, 127, 255}.word() : OT_RGB32{0, 255, 0, 128}.word();
    EXPECT_EQ(h.pixel(5, 5), expected) << mode->name;
    EXPECT_EQ(h.depth(5, 5), 0xFFFF) << mode->name;
  }
}

}  // namespace
}  // namespace tarn::testing
