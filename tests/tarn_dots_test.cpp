// Dots and one-pixel polymarkers in the six modes, as one table: colour,
// merge, mask, alpha and the depth rules of each form, with the pixel and
// depth each case leaves.
#include "pixel/merge.h"
#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

enum Primitive { Dot, Given, Marker };  // Given: a dot with a colour of its own

// The image before: this word (or index 0x77) everywhere, `stored` depth.
constexpr std::uint32_t kOldWord = 0x40002011;  // blue 17, green 32, red 0, alpha 64
constexpr byte kOldIndex = 0x77;

// Colours, blue green red alpha, and what they leave on the old word.
constexpr OT_RGB32 kA{0, 100, 255, 128};
constexpr OT_RGB32 kA0{0, 100, 255, 0};
constexpr OT_RGB32 kA255{0, 100, 255, 255};
constexpr OT_RGB32 kO{1, 2, 3, 77};
// Weight form: 17 + (-17 * 128 >> 8) = 8, 32 + (68 * 128 >> 8) = 66,
// 0 + (255 * 128 >> 8) = 127; alpha 0 keeps the channels.
constexpr std::uint32_t kBlend = OT_RGB32{8, 66, 127, 255}.word();
constexpr std::uint32_t kBlend0 = OT_RGB32{17, 32, 0, 255}.word();
// Merge: the AND of old and colour, opaque.
constexpr std::uint32_t kAnd = OT_RGB32{0, 32, 0, 255}.word();
// In the mapped modes: the old index, index 9, its merge with the old
// index, the dithered given colour.
constexpr std::uint32_t kOld = 0xDEAD0000, kIdx = 0xDEAD0001, kMergedIdx = 0xDEAD0002, kDithered = 0xDEAD0003;

struct Pixel_Case {
  const char* name;
  const Mode_Case& mode;
  Primitive primitive;
  OT_RGB32 color;
  int z = 0;
  std::uint16_t stored = 300;
  int merge = 0;  // 1 write mode 20, 2 force_merge
  int test = 2;
  byte write = 1, enabled = 1, masked = 0;
  std::uint32_t pixel = kOld;
  std::uint16_t depth = 300;
};

const Pixel_Case kPixelCases[] = {
    {"rgb32_dot", kRgb32, Dot, kO, 0, 300, 0, 2, 1, 1, 0, kO.word()},
    {"rgb32_given", kRgb32, Given, kA0, 0, 300, 0, 2, 1, 1, 0, kA0.word()},
    {"rgb32_dot_merge", kRgb32, Dot, kA, 0, 300, 1, 2, 1, 1, 0, kAnd},
    {"rgb32_given_forced_merge", kRgb32, Given, kA, 0, 300, 2, 2, 1, 1, 0, kAnd},
    {"rgb32_dot_masked", kRgb32, Dot, kA, 0, 300, 0, 2, 1, 1, 1, kOld},
    {"rgb32_marker", kRgb32, Marker, kA, 0, 300, 0, 2, 1, 1, 0, kA.word()},
    {"rgb32_marker_merge", kRgb32, Marker, kA, 0, 300, 1, 2, 1, 1, 0, kAnd},
    {"rgb32_marker_masked", kRgb32, Marker, kA, 0, 300, 0, 2, 1, 1, 1, kOld},
    {"rgb32_alpha_dot", kRgb32Alpha, Dot, kA, 0, 300, 0, 2, 1, 1, 0, kBlend},
    {"rgb32_alpha_given_0", kRgb32Alpha, Given, kA0, 0, 300, 0, 2, 1, 1, 0, kBlend0},
    {"rgb32_alpha_dot_255", kRgb32Alpha, Dot, kA255, 0, 300, 0, 2, 1, 1, 0, kA255.word()},
    {"rgb32_alpha_given_merge", kRgb32Alpha, Given, kA, 0, 300, 2, 2, 1, 1, 0, kAnd},
    {"rgb32_alpha_dot_masked", kRgb32Alpha, Dot, kA, 0, 300, 0, 2, 1, 1, 1, kOld},
    {"rgb32_alpha_marker", kRgb32Alpha, Marker, kA, 0, 300, 0, 2, 1, 1, 0, kBlend},
    {"rgb32_alpha_marker_0", kRgb32Alpha, Marker, kA0, 0, 300, 0, 2, 1, 1, 0, kBlend0},
    {"rgb32_alpha_marker_merge", kRgb32Alpha, Marker, kA, 0, 300, 1, 2, 1, 1, 0, kAnd},
    {"rgb32_alpha_marker_masked", kRgb32Alpha, Marker, kA, 0, 300, 0, 2, 1, 1, 1, kOld},
    {"mapped_dot", kMapped, Dot, kA, 0, 300, 0, 2, 1, 1, 0, kIdx},
    {"mapped_dot_merge", kMapped, Dot, kA, 0, 300, 1, 2, 1, 1, 0, kMergedIdx},
    {"mapped_given_never_merges", kMapped, Given, kA, 0, 300, 2, 2, 1, 1, 0, kDithered},
    {"mapped_dot_masked", kMapped, Dot, kA, 0, 300, 0, 2, 1, 1, 1, kOld},
    {"mapped_given_masked", kMapped, Given, kA, 0, 300, 0, 2, 1, 1, 1, kOld},
    {"mapped_marker", kMapped, Marker, kA, 0, 300, 0, 2, 1, 1, 0, kIdx},
    {"mapped_marker_merge", kMapped, Marker, kA, 0, 300, 2, 2, 1, 1, 0, kMergedIdx},
    {"mapped_marker_masked", kMapped, Marker, kA, 0, 300, 0, 2, 1, 1, 1, kOld},
    {"z_mapped_equal", kZMapped, Dot, kA, 300, 300, 0, 2, 1, 1, 0, kIdx, 300},
    {"z_mapped_farther", kZMapped, Dot, kA, 301, 300, 0, 2, 1, 1, 0, kOld, 300},
    {"z_mapped_70000", kZMapped, Dot, kA, 70000, 0xFFFF, 0, 2, 1, 1, 0, kOld, 0xFFFF},
    {"z_mapped_minus_1", kZMapped, Dot, kA, -1, 0, 0, 2, 1, 1, 0, kIdx, 0xFFFF},
    {"z_mapped_ignores_test", kZMapped, Dot, kA, 299, 300, 0, 5, 1, 1, 0, kIdx, 299},
    {"z_mapped_ignores_write_merge_mask", kZMapped, Dot, kA, 299, 300, 2, 2, 0, 1, 1, kIdx, 299},
    {"z_mapped_given", kZMapped, Given, kA, 299, 300, 1, 2, 1, 1, 0, kDithered, 299},
    {"z_mapped_disabled", kZMapped, Dot, kA, 70000, 300, 1, 2, 1, 0, 0, kMergedIdx, 300},
    {"z_rgb32_equal", kZRgb32, Dot, kA, 300, 300, 0, 2, 1, 1, 0, kA.word(), 300},
    {"z_rgb32_farther", kZRgb32, Given, kA, 301, 300, 0, 2, 1, 1, 0, kOld, 300},
    {"z_rgb32_test1_equal", kZRgb32, Dot, kA, 300, 300, 0, 1, 1, 1, 0, kOld, 300},
    {"z_rgb32_test1_nearer", kZRgb32, Dot, kA, 299, 300, 0, 1, 1, 1, 0, kA.word(), 299},
    {"z_rgb32_test5_equal", kZRgb32, Dot, kA, 300, 300, 0, 5, 1, 1, 0, kOld, 300},
    {"z_rgb32_test5_70000", kZRgb32, Dot, kA, 70000, 0xFFFF, 0, 5, 1, 1, 0, kA.word(), 70000 & 0xFFFF},
    {"z_rgb32_test3_farther", kZRgb32, Dot, kA, 301, 300, 0, 3, 1, 1, 0, kOld, 300},
    {"z_rgb32_70000", kZRgb32, Dot, kA, 70000, 0xFFFF, 0, 2, 1, 1, 0, kOld, 0xFFFF},
    {"z_rgb32_minus_1", kZRgb32, Dot, kA, -1, 0, 0, 2, 1, 1, 0, kA.word(), 0xFFFF},
    {"z_rgb32_write_off", kZRgb32, Dot, kA, 299, 300, 0, 2, 0, 1, 0, kA.word(), 300},
    {"z_rgb32_no_merge_no_mask", kZRgb32, Given, kA, 299, 300, 2, 2, 1, 1, 1, kA.word(), 299},
    {"z_rgb32_disabled", kZRgb32, Dot, kA, 70000, 300, 1, 2, 1, 0, 0, kAnd, 300},
    {"z_rgb32_marker_test5", kZRgb32, Marker, kA, 301, 300, 0, 5, 1, 1, 0, kA.word(), 301},
    {"z_rgb32_marker_farther", kZRgb32, Marker, kA, 301, 300, 0, 2, 1, 1, 0, kOld, 300},
    {"z_rgb32_marker_write_off", kZRgb32, Marker, kA, 299, 300, 0, 2, 0, 1, 1, kA.word(), 300},
    {"z_rgb32_marker_disabled", kZRgb32, Marker, kA, 70000, 300, 1, 2, 1, 0, 0, kAnd, 300},
    {"z_rgb32_alpha_dot", kZRgb32Alpha, Dot, kA, 299, 300, 0, 2, 1, 1, 0, kBlend, 299},
    {"z_rgb32_alpha_given_0", kZRgb32Alpha, Given, kA0, 299, 300, 0, 2, 1, 1, 0, kBlend0, 299},
    {"z_rgb32_alpha_test5", kZRgb32Alpha, Dot, kA, 301, 300, 0, 5, 1, 1, 0, kBlend, 301},
    {"z_rgb32_alpha_write_off", kZRgb32Alpha, Dot, kA, 299, 300, 0, 2, 0, 1, 0, kBlend, 300},
    {"z_rgb32_alpha_no_merge_no_mask", kZRgb32Alpha, Dot, kA, 299, 300, 1, 2, 1, 1, 1, kBlend, 299},
    {"z_rgb32_alpha_disabled", kZRgb32Alpha, Dot, kA, 70000, 300, 0, 2, 1, 0, 1, kOld, 300},
    {"z_rgb32_alpha_marker", kZRgb32Alpha, Marker, kA, 299, 300, 0, 2, 1, 1, 0, kBlend, 299},
    {"z_rgb32_alpha_marker_test1", kZRgb32Alpha, Marker, kA, 300, 300, 0, 1, 1, 1, 0, kOld, 300},
    {"z_rgb32_alpha_marker_255", kZRgb32Alpha, Marker, kA255, 301, 300, 0, 5, 0, 1, 0, kA255.word(), 300},
    {"z_rgb32_alpha_marker_disabled", kZRgb32Alpha, Marker, kA, 70000, 300, 1, 2, 1, 0, 0, kAnd, 300},
};

class Pixel_Rules : public ::testing::TestWithParam<Pixel_Case> {};

// The dot at (10, 10) and (5, 5), outside the hard clip: dots have no clip
// test. The markers at (10, 10) and the clip's far corner (20, 20), beside
// four that lie one beyond the clip. Every other pixel keeps the old value.
TEST_P(Pixel_Rules, PixelAndDepthAfterTheCall) {
  const Pixel_Case& c = GetParam();
  Renderer_Harness h(c.mode);
  if (c.masked) h.use_mask(box(0, 0, 4, 4));  // masks all but the corner pixels
  h.set_hard_clip({10, 20, 10, 20});
  h.set_color(c.primitive == Given ? Renderer_Harness::kColor : c.color, Renderer_Harness::kIndex);
  h.rendition().writable_raster()->write_mode = c.merge == 1 ? 20 : 0;
  h.renderer().force_merge = c.merge == 2;
  h.rendition().writable_device()->depth_enabled = c.enabled;
  h.set_depth_test(c.test);
  h.set_depth_write(c.write);
  for (int y = 0; y < 48; ++y)
    for (int x = 0; x < 64; ++x) {
      h.poke(x, y, c.mode.mapped() ? kOldIndex : kOldWord);
      if (c.mode.depth()) h.poke_depth(x, y, c.stored);
    }
  Pixels targets;
  if (c.primitive == Marker) {
    h.markers({{9, 10, c.z}, {10, 9, c.z}, {10, 10, c.z}, {21, 20, c.z}, {20, 21, c.z}, {20, 20, c.z}});
    targets = {{10, 10}, {20, 20}};
  } else {
    for (const auto& [x, y] : {std::pair{10, 10}, std::pair{5, 5}}) {
      h.dot(x, y, c.z, c.primitive == Given ? &c.color : nullptr);
      targets.insert({x, y});
    }
  }
  for (int y = 0; y < 48; ++y)
    for (int x = 0; x < 64; ++x) {
      const bool target = targets.count({x, y});
      std::uint32_t want = target ? c.pixel : kOld;
      if (want == kOld) want = c.mode.mapped() ? kOldIndex : kOldWord;
      if (want == kIdx) want = Renderer_Harness::kIndex;
      if (want == kMergedIdx) {
        byte merged = kOldIndex;
        merge_mapped(h.renderer(), &merged, Renderer_Harness::kIndex);
        ASSERT_NE(merged, Renderer_Harness::kIndex);
        want = merged;
      }
      if (want == kDithered) want = h.flat_value(c.color, x, y);
      ASSERT_EQ(h.pixel(x, y), want) << x << "," << y;
      if (c.mode.depth()) {
        ASSERT_EQ(h.depth(x, y), target ? c.depth : c.stored) << x << "," << y;
      }
    }
}

INSTANTIATE_TEST_SUITE_P(Pixel, Pixel_Rules, ::testing::ValuesIn(kPixelCases),
                         [](const auto& info) { return std::string(info.param.name); });

// Symbol 1 goes to the host's routine in every mode, which draws a dot for
// each point inside; the mapped depth mode has no marker of its own at all.
TEST(Markers, OtherSymbolsAndTheMappedDepthModeGoToTheHost) {
  for (const Mode_Case& mode : kAllModes)
    for (int symbol : {0, 1}) {
      Renderer_Harness h(mode);
      h.rendition().writable_marker()->symbol = symbol;
      h.set_hard_clip({10, 40, 5, 30});
      static std::vector<std::pair<int, int>> dots;
      dots.clear();
      h.renderer().draw_dci_dot.function = [](OT_Renderer_Data*, const OT_Rendition&, const OT_DCI_Point* p,
                                              const OT_RGB32*) {
        dots.push_back({p->x, p->y});
      };
      h.markers({{12, 6, 1}, {50, 6, 1}, {39, 29, 1}});
      const bool host = symbol == 1 || (mode.mapped() && mode.depth());
      using Positions = std::vector<std::pair<int, int>>;
      const Positions expected = host ? Positions{{12, 6}, {39, 29}} : Positions{};
      EXPECT_EQ(dots, expected) << mode.name << " symbol " << symbol;
      const Pixels drawn = host ? Pixels{} : Pixels{{12, 6}, {39, 29}};
      EXPECT_EQ(h.drawn(), drawn) << mode.name << " symbol " << symbol;
    }
}

TEST(Dots, WindowOriginIsTakenOffAndTheDitherRowIsWindowRelative) {
  for (const Mode_Case& mode : kAllModes) {
    Renderer_Harness h(mode, 32, 24, {100, 203});
    const OT_RGB32 color = OT_RGB32::rgba(100, 150, 30);
    std::set<std::uint32_t> seen;
    for (int y = 203; y < 211; ++y)
      for (int x = 100; x < 108; ++x) {
        h.dot(x, y, 3, &color);
        const std::uint32_t want = h.flat_value(color, x, y);
        ASSERT_EQ(h.pixel(x, y), want) << mode.name << " " << x << "," << y;
        seen.insert(want);
      }
    EXPECT_EQ(h.drawn().size(), 64u);
    EXPECT_GE(seen.size(), mode.mapped() ? 2u : 1u);  // the colour lies between cube levels
  }
}

}  // namespace
}  // namespace tarn::testing
