// What the triangle fillers write on the pixels they cover, as one table of
// rendition variants: face pattern and its phase, contrast and inversion,
// merge control, translucent colours and the alpha path.
#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

constexpr OT_RGB32 kWhite = OT_RGB32::rgba(255, 255, 255);
constexpr OT_RGB32 kYellow = OT_RGB32::rgba(255, 255, 0);
constexpr OT_RGB32 kCyan = OT_RGB32::rgba(0, 255, 255);
constexpr OT_RGB32 kMagenta = OT_RGB32::rgba(255, 0, 255);

// A user pattern 12 wide, 3 high, in rows of 3 bytes. The upper half of
// each second byte is the complement of the lower half of the first, so a
// row that did not wrap at bit 3 of its second byte would show it; the third
// byte is never to be read.
const byte kUserRows[3][3] = {{0x96, 0x95, 0xFF}, {0x2B, 0x46, 0x00}, {0xE1, 0xEC, 0x5A}};

// What lands on a pixel whose pattern bit is clear or set, a letter each:
// k nothing, m or c the main or contrast colour stored, b the main colour
// blended (exact form), r the main colour with its own alpha byte, a or A
// the AND of the main or contrast colour and the yellow under it (merge).
struct Fill_Case {
  const char* name;
  int pattern;  // -1: a mixed stipple of the host's table
  std::uint32_t flags;
  int merge;   // 0 off, 1 write mode 20, 2 force_merge
  byte alpha;  // of the main colour
  bool alpha_path;
  const char* ink;  // rgb32_alpha, rgb32, mapped: clear bit, set bit
};

const Fill_Case kFillCases[] = {
    {"solid", 64, 0, 0, 255, false, "mm mm mm"},
    {"solid_contrast_on", 64, 1, 0, 255, false, "mm mm mm"},
    {"solid_inverted", 64, 2, 0, 255, false, "kk kk kk"},
    {"solid_inverted_contrast", 64, 3, 0, 255, false, "cc cc cc"},
    {"empty", 0, 0, 0, 255, false, "kk kk kk"},
    {"empty_contrast", 0, 1, 0, 255, false, "cc cc cc"},
    {"empty_inverted", 0, 2, 0, 255, false, "mm mm mm"},
    {"user", 74, 0, 0, 255, false, "mk mk mk"},
    {"user_contrast", 74, 1, 0, 255, false, "mc mc mc"},
    {"user_inverted", 74, 2, 0, 255, false, "km km km"},
    {"user_inverted_contrast", 74, 3, 0, 255, false, "cm cm cm"},
    {"stipple_contrast", -1, 1, 0, 255, false, "mc mc mc"},
    {"solid_merge", 64, 0, 1, 255, false, "aa aa aa"},
    {"solid_forced_merge", 64, 0, 2, 255, false, "aa aa aa"},
    // Merge makes the colour opaque; the mapped pattern path ignores merge.
    {"translucent_merge", 64, 0, 1, 7, false, "aa aa aa"},
    {"user_merge", 74, 1, 1, 255, false, "aA aA mc"},
    {"translucent", 64, 0, 0, 128, false, "bb rr mm"},
    {"translucent_alpha_path", 64, 0, 0, 128, true, "bb bb mm"},
    {"translucent_user", 74, 1, 0, 128, false, "bc rc mc"},
    {"opaque_alpha_7", 64, 0, 0, 7, false, "bb rr mm"},
};

// A stipple whose bits change both along a row and from row to row.
int mixed_stipple() {
  for (int p = 1; p < 64; ++p) {
    const byte* s = OMBRA.stipples[p];
    bool row_mixed = false, rows_differ = false;
    for (int r = 0; r < 8; ++r) {
      row_mixed = row_mixed || (s[r] != 0 && s[r] != 0xFF && s[r] != 0x55 && s[r] != 0xAA);
      rows_differ = rows_differ || s[r] != s[0];
    }
    if (row_mixed && rows_differ) return p;
  }
  return -1;
}

struct Bits {
  const byte* bits;
  int width, height, stride;
};

// The bit under device pixel (x, y): anchored to the window plus the
// pattern origin, taken from the low end of each byte.
bool bit_at(const Bits& p, int x, int y, OT_Int_XY window, OT_Int_XY origin) {
  auto wrap = [](int v, int n) { return ((v % n) + n) % n; };
  const int pr = wrap(y - window.y - origin.y, p.height), pc = wrap(x - window.x - origin.x, p.width);
  return (p.bits[pr * p.stride + (pc >> 3)] >> (pc & 7)) & 1;
}

class Fill_Rules : public ::testing::TestWithParam<Fill_Case> {};

TEST_P(Fill_Rules, EveryPixelOfTheRectangleInEachModeWithAndWithoutDepth) {
  const Fill_Case& c = GetParam();
  const OT_Int_XY window{2, 3}, origin{5, -2};
  const std::pair<const Mode_Case*, int> modes[] = {{&kRgb32Alpha, 0},  {&kRgb32, 1},  {&kMapped, 2},
                                                    {&kZRgb32Alpha, 0}, {&kZRgb32, 1}, {&kZMapped, 2}};
  for (const auto& [mode, column] : modes) {
    // The depth fillers know no merge.
    if (mode->depth() && c.merge) continue;
    SCOPED_TRACE(mode->name);
    Renderer_Harness h(*mode, 64, 48, window);
    const OT_Palette& palette = h.renderer().current_renderer_options()->palette();
    auto index = [&](OT_RGB32 color) { return byte(palette.closest_match(color, false)); };
    OT_Rendition_Colors* colors = h.rendition().writable_colors();
    colors->window_color = kWhite;
    colors->window_index = h.renderer().merge_index;
    ASSERT_EQ(h.renderer().merge_color.word(), kWhite.word());
    h.clear();
    // Yellow under the middle of the drawing, for merge to AND with.
    h.set_color(kYellow, index(kYellow));
    h.draw_dci(rectangle(8, 6, 60, 50));
    OT_RGB32 main = kCyan;
    main.a = c.alpha;
    h.set_color(main, index(kCyan));
    colors = h.rendition().writable_colors();
    colors->contrast_color = kMagenta;
    colors->contrast_index = index(kMagenta);
    Bits bits{nullptr, 8, 8, 1};
    h.rendition().writable_face()->pattern = c.pattern < 0 ? mixed_stipple() : c.pattern;
    if (c.pattern == 74) {
      h.rendition().writable_face()->user_pattern =
          OT_User_Pattern(new OT_User_Pattern_Data(12, 3, &kUserRows[0][0], 3));
      bits = {&kUserRows[0][0], 12, 3, 3};
    } else {
      bits.bits = OMBRA.stipples[h.rendition()->face->pattern];
    }
    OT_Rendition_Raster* raster = h.rendition().writable_raster();
    raster->stipple_flags = c.flags;
    raster->pattern_origin_x = origin.x;
    raster->pattern_origin_y = origin.y;
    raster->write_mode = c.merge == 1 ? 20 : 0;
    raster->advanced_options = c.alpha_path ? OT_Advanced_Options{OT_Advanced_Alpha_Path} : 0u;
    h.renderer().force_merge = c.merge == 2;
    // 37 wide: three periods of the user pattern and a part, as a strip of
    // two triangles whose second one starts its rows on the diagonal.
    h.draw_dci(rectangle(4, 5, 41, 33));

    auto and_of = [&](OT_RGB32 a, OT_RGB32 b) -> std::uint32_t {
      if (!mode->mapped()) return OT_RGB32::from_word(a.word() & b.word()).word();
      OT_RGB32 m = OT_RGB32::from_word(palette.color(index(a)).word() & palette.color(index(b)).word());
      m.a = 255;
      return index(m);
    };
    int wrong = 0;
    for (int y = window.y; y < window.y + 48; ++y)
      for (int x = window.x; x < window.x + 64; ++x) {
        const bool under = x >= 8 && x < 60 && y >= 6 && y < 50;
        const std::uint32_t old = mode->mapped() ? (under ? index(kYellow) : h.renderer().merge_index)
                                                 : (under ? kYellow : kWhite).word();
        std::uint32_t want = old;
        if (x >= 4 && x < 41 && y >= 5 && y < 33) {
          const auto stored = [&](OT_RGB32 color) { return mode->mapped() ? index(color) : color.word(); };
          const OT_RGB32 o = under ? kYellow : kWhite;
          switch (c.ink[column * 3 + bit_at(bits, x, y, window, origin)]) {
            case 'm':
              want = stored(kCyan);
              break;
            case 'c':
              want = stored(kMagenta);
              break;
            case 'r':
              want = main.word();
              break;
            // (old * (255 - a) + colour * a) / 255 per channel.
            case 'b':
              want = OT_RGB32::rgba(o.r * (255 - c.alpha) / 255, 255,
                                    (o.b * (255 - c.alpha) + 255 * c.alpha) / 255)
                         .word();
              break;
            case 'a':
              want = under ? and_of(kYellow, kCyan) : stored(kCyan);
              break;
            case 'A':
              want = under ? and_of(kYellow, kMagenta) : stored(kMagenta);
              break;
          }
        }
        if (h.pixel(x, y) != want && ++wrong <= 3)
          ADD_FAILURE() << "at " << x << "," << y << ": " << std::hex << h.pixel(x, y) << " not " << want;
      }
  }
}

INSTANTIATE_TEST_SUITE_P(Fill, Fill_Rules, ::testing::ValuesIn(kFillCases),
                         [](const auto& info) { return std::string(info.param.name); });

// Worked values of the blend in the filled triangles: (0 * 127 + 255 *
// 128) / 255 = 128, where the weight form of lines and dots gives 127.
TEST(Fill_Blend, HalfAlphaOverBlackIsOneHundredTwentyEight) {
  Renderer_Harness h(kRgb32Alpha);
  h.set_color(OT_RGB32{255, 0, 0, 128}, 0);
  h.draw_dci(rectangle(0, 0, 10, 10));
  EXPECT_EQ(h.pixel(5, 5), (OT_RGB32{128, 0, 0, 255}.word()));
}

// Counts the calls that come back into any slot.
int g_slot_calls = 0;
template <class... Args>
void count_call(OT_Renderer_Data*, const OT_Rendition&, Args...) {
  ++g_slot_calls;
}
#define TARN_COUNT_CALLS_OF(name, ...) r.name.function = count_call_of(r.name);
template <class... Args>
auto count_call_of(OT_Action<Args...>&) {
  return &count_call<Args...>;
}

// Above 74 the host's routine takes the strip and breaks it down through
// the slots; the renderer's own filler writes nothing.
TEST(Fill_Host, PatternAboveSeventyFourGoesToTheHost) {
  for (const Mode_Case& mode : kAllModes) {
    Renderer_Harness h(mode);
    Software_Z_Buffer& r = h.renderer();
    const auto dci = r.draw_dci_polytriangle;
    const auto dc = r.draw_dc_polytriangle;
    const auto colorized = r.draw_dci_colorized_polytriangle;
    OT_ACTION_SLOTS(TARN_COUNT_CALLS_OF)
    const Points points = rectangle(4, 4, 40, 40);
    const std::vector<OT_Point> floats = as_floats(points);
    const OT_RGB32 color = Renderer_Harness::kColor;
    for (int pattern : {75, 1000}) {
      h.rendition().writable_face()->pattern = pattern;
      g_slot_calls = 0;
      dci(h.rendition(), 4, points.data());
      dc(h.rendition(), 4, floats.data());
      colorized(h.rendition(), 4, points.data(), &color, true);
      EXPECT_GE(g_slot_calls, 3) << mode.name;
    }
    EXPECT_TRUE(h.drawn().empty()) << mode.name;
  }
}
#undef TARN_COUNT_CALLS_OF

// The alpha filler's solid path walks rows outside the image without
// writing them: inside it writes what a taller window gets on those rows.
TEST(Fill_Row_Guard, AlphaFillerWritesOnlyTheRowsInsideTheImage) {
  for (const Points& points :
       {Points{{10, -6, 0}, {50, -6, 0}, {10, 20, 0}}, Points{{12, 30, 0}, {52, 30, 0}, {30, 60, 0}},
        Points{{2, -9, 0}, {60, 20, 0}, {20, 57, 0}}}) {
    Renderer_Harness h(kRgb32Alpha), tall(kRgb32Alpha, 64, 80, {0, -10});
    for (Renderer_Harness* each : {&h, &tall}) {
      each->set_color(OT_RGB32{50, 100, 200, 128}, 0);
      each->draw_dci(points);
    }
    int drawn = 0;
    for (int y = 0; y < 48; ++y)
      for (int x = 0; x < 64; ++x) {
        ASSERT_EQ(h.pixel(x, y), tall.pixel(x, y)) << x << "," << y;
        drawn += h.pixel(x, y) != h.clear_value();
      }
    EXPECT_GT(drawn, 0);
  }
}

}  // namespace
}  // namespace tarn::testing
