// What the triangle fillers do to the pixels they cover: the tests at their
// entry, the face pattern and its phase, merge control, blending, the row
// guard of the alpha filler, and the colours of colorized lists.
#include <cstdint>
#include <iomanip>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "pixel/dither.h"
#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

const Mode_Case& kRgb32Alpha = kAllModes[0];
const Mode_Case& kRgb32 = kAllModes[1];
const Mode_Case& kMapped = kAllModes[2];
const Mode_Case& kZMapped = kAllModes[3];
const Mode_Case& kZRgb32Alpha = kAllModes[4];
const Mode_Case& kZRgb32 = kAllModes[5];

const Mode_Case kMappedModes[] = {kMapped, kZMapped};

constexpr int kZ = 100;
constexpr OT_RGB32 kContrast = OT_RGB32::rgba(0, 255, 0);
constexpr byte kContrastIndex = 4;

using Points = std::vector<OT_DCI_Point>;

// The strip of two triangles that covers [x0, x1) x [y0, y1).
Points rectangle(int x0, int y0, int x1, int y1, int z = kZ) {
  return {{x0, y0, z}, {x1, y0, z}, {x0, y1, z}, {x1, y1, z}};
}

std::vector<OT_Point> as_floats(const Points& points) {
  std::vector<OT_Point> out;
  for (const OT_DCI_Point& p : points) out.push_back({float(p.x), float(p.y), float(p.z)});
  return out;
}

void draw_colorized(Renderer_Harness& h, const Points& points, const std::vector<OT_RGB32>& colors, bool single) {
  h.renderer().draw_dci_colorized_polytriangle(h.rendition(), int(points.size()), points.data(), colors.data(),
                                               single);
}

// The four entries of a single-colour strip.
enum class Form { dci, dc, dci_colorized, dc_colorized };
const Form kForms[] = {Form::dci, Form::dc, Form::dci_colorized, Form::dc_colorized};
const char* form_name(Form f) {
  switch (f) {
    case Form::dci: return "dci";
    case Form::dc: return "dc";
    case Form::dci_colorized: return "dci colorized";
    case Form::dc_colorized: return "dc colorized";
  }
  return "";
}

// Draws with the rendition's colour, as one colour of a colorized list for
// the colorized forms.
void draw_in_form(Renderer_Harness& h, Form form, const Points& points) {
  const OT_RGB32 color = h.rendition()->colors->color;
  const std::vector<OT_Point> floats = as_floats(points);
  const int n = int(points.size());
  switch (form) {
    case Form::dci: h.draw_dci(points); break;
    case Form::dc: h.draw_dc(floats); break;
    case Form::dci_colorized:
      h.renderer().draw_dci_colorized_polytriangle(h.rendition(), n, points.data(), &color, true);
      break;
    case Form::dc_colorized:
      h.renderer().draw_dc_colorized_polytriangle(h.rendition(), n, floats.data(), &color, true);
      break;
  }
}

const OT_Palette& palette_of(Renderer_Harness& h) { return h.renderer().current_renderer_options()->palette(); }

byte index_of(Renderer_Harness& h, OT_RGB32 c) { return static_cast<byte>(palette_of(h).closest_match(c, false)); }

// The palette's match of the AND of two palette colours.
byte and_match(Renderer_Harness& h, byte a, byte b) {
  OT_RGB32 c = OT_RGB32::from_word(palette_of(h).color(a).word() & palette_of(h).color(b).word());
  c.a = 255;
  return index_of(h, c);
}

// The main colour and the index that goes with it.
void set_main(Renderer_Harness& h, OT_RGB32 c) {
  OT_Rendition_Colors* colors = h.rendition().writable_colors();
  colors->color = c;
  colors->color_index = index_of(h, c);
}

void set_contrast(Renderer_Harness& h, OT_RGB32 c = kContrast) {
  OT_Rendition_Colors* colors = h.rendition().writable_colors();
  colors->contrast_color = c;
  colors->contrast_index = kContrastIndex;
}

// What the main colour or the contrast colour writes in this mode.
std::uint32_t value_of(Renderer_Harness& h, OT_RGB32 c) { return h.mode().mapped() ? index_of(h, c) : c.word(); }
std::uint32_t contrast_value(const Renderer_Harness& h) {
  return h.mode().mapped() ? kContrastIndex : kContrast.word();
}

void set_window_color(Renderer_Harness& h, OT_RGB32 c) {
  OT_Rendition_Colors* colors = h.rendition().writable_colors();
  colors->window_color = c;
  colors->window_index = index_of(h, c);
  h.clear();
}

const byte* address_of(Renderer_Harness& h, int x, int y) {
  const OT_Shared_Image_Data& image = *h.renderer().color_image;
  return image.device_rows[y - h.renderer().origin_y] +
         (x - h.renderer().origin_x) * OT_Shared_Image_Data::pixel_bytes(image.format);
}

// What a colorized triangle of the opaque colour c writes at device (x, y):
// the word, or in the mapped modes the index that the dither picks for the
// pixel's own window row and address.
std::uint32_t colorized_value(Renderer_Harness& h, OT_RGB32 c, int x, int y) {
  if (!h.mode().mapped()) return c.word();
  return dither_pick(dither_thresholds(h.renderer().cube, c),
                     dither_threshold(y - h.renderer().origin_y, address_of(h, x, y)));
}

// Every pixel of the image against expected(x, y), in device coordinates.
template <class Expected>
void expect_image(Renderer_Harness& h, Expected expected, const char* what = "") {
  int failures = 0;
  const int x0 = h.renderer().origin_x, y0 = h.renderer().origin_y;
  for (int y = y0; y < y0 + h.renderer().height; ++y)
    for (int x = x0; x < x0 + h.renderer().width; ++x) {
      const std::uint32_t want = expected(x, y), got = h.pixel(x, y);
      if (got != want && ++failures <= 4)
        ADD_FAILURE() << what << " at (" << x << "," << y << "): 0x" << std::hex << got << ", expected 0x" << want
                      << std::dec;
    }
  EXPECT_EQ(failures, 0) << what;
}

// Clears the frame with the face solid (a clear draws under the face
// pattern), then gives the face back its pattern and flags.
void clear_unpatterned(Renderer_Harness& h) {
  const std::int32_t pattern = h.rendition()->face->pattern;
  const std::uint32_t flags = h.rendition()->raster->stipple_flags;
  h.rendition().writable_face()->pattern = 64;
  h.rendition().writable_raster()->stipple_flags = 0;
  h.clear();
  h.rendition().writable_face()->pattern = pattern;
  h.rendition().writable_raster()->stipple_flags = flags;
}

bool inside(int x, int y, int x0, int y0, int x1, int y1) { return x >= x0 && x < x1 && y >= y0 && y < y1; }

// ---- Face pattern ------------------------------------------------------------

struct Pattern_Bits {
  const byte* bits;
  int width, height, stride;
};

int wrapped(int value, int n) { return ((value % n) + n) % n; }

// Whether device pixel (x, y) falls on a set bit: the pattern anchored to the
// window plus the pattern origin.
bool hole_at(Renderer_Harness& h, const Pattern_Bits& p, int x, int y, bool inverted) {
  const OT_Rendition_Raster& raster = *h.rendition()->raster;
  const int pr = wrapped(y - h.renderer().origin_y - raster.pattern_origin_y, p.height);
  const int pc = wrapped(x - h.renderer().origin_x - raster.pattern_origin_x, p.width);
  return (((p.bits[pr * p.stride + (pc >> 3)] >> (pc & 7)) & 1) != 0) != inverted;
}

// A stipple of the host's table whose bits change both along a row and from
// row to row, so that a wrong phase in either direction shows.
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

class Fill_Pattern : public ::testing::TestWithParam<Mode_Case> {};

// A user pattern 12 wide, 3 high, in rows of 3 bytes. The upper half of each
// second byte is the complement of the lower half of the first, so a row
// that did not wrap at bit 3 of its second byte would show it; the third
// byte is never to be read.
const byte kUserRows[3][3] = {{0x96, 0x95, 0xFF}, {0x2B, 0x46, 0x00}, {0xE1, 0xEC, 0x5A}};

void set_user_pattern(Renderer_Harness& h, int width, int height, const byte* rows, int row_bytes) {
  OT_Rendition_Face* face = h.rendition().writable_face();
  face->pattern = 74;
  face->user_pattern = OT_User_Pattern(new OT_User_Pattern_Data(width, height, rows, row_bytes));
}

Pattern_Bits user_bits(Renderer_Harness& h) {
  const OT_User_Pattern_Data& u = *h.rendition()->face->user_pattern;
  return {u.bits, u.width, u.height, u.row_bytes};
}

// The rectangle patterned: clear bits main, set bits contrast or untouched.
void expect_patterned(Renderer_Harness& h, const Pattern_Bits& bits, std::uint32_t flags, int x0, int y0, int x1,
                      int y1, const char* what) {
  const bool contrast = flags & 1, inverted = flags & 2;
  expect_image(
      h,
      [&](int x, int y) -> std::uint32_t {
        if (!inside(x, y, x0, y0, x1, y1)) return h.clear_value();
        if (!hole_at(h, bits, x, y, inverted)) return h.drawn_value();
        return contrast ? contrast_value(h) : h.clear_value();
      },
      what);
}

TEST_P(Fill_Pattern, UserPatternTwelveWideWrapsInsideItsSecondByte) {
  Renderer_Harness h(GetParam(), 64, 48, {2, 3});
  set_contrast(h);
  set_user_pattern(h, 12, 3, &kUserRows[0][0], 3);
  OT_Rendition_Raster* raster = h.rendition().writable_raster();
  raster->pattern_origin_x = 5;
  raster->pattern_origin_y = -2;
  for (std::uint32_t flags : {0u, 1u, 2u, 3u}) {
    clear_unpatterned(h);
    h.rendition().writable_raster()->stipple_flags = flags;
    // 37 wide: three periods and a part, the left end before the pattern's
    // origin; the second triangle's rows start on the diagonal.
    h.draw_dci(rectangle(4, 5, 41, 33));
    expect_patterned(h, user_bits(h), flags, 4, 5, 41, 33, ("flags " + std::to_string(flags)).c_str());
  }
}

TEST_P(Fill_Pattern, StippleIsAnchoredToTheWindowAndThePatternOrigin) {
  const int p = mixed_stipple();
  ASSERT_GE(p, 0) << "no stipple with mixed rows";
  const Pattern_Bits bits{OMBRA.stipples[p], 8, 8, 1};
  for (OT_Int_XY origin : {OT_Int_XY{0, 0}, OT_Int_XY{3, 6}, OT_Int_XY{-5, 1}}) {
    Renderer_Harness h(GetParam(), 64, 48, origin);
    set_contrast(h);
    h.rendition().writable_face()->pattern = p;
    OT_Rendition_Raster* raster = h.rendition().writable_raster();
    raster->pattern_origin_x = 3;
    raster->pattern_origin_y = 11;
    for (std::uint32_t flags : {0u, 1u, 2u, 3u}) {
      clear_unpatterned(h);
      h.rendition().writable_raster()->stipple_flags = flags;
      const int x0 = origin.x + 1, y0 = origin.y + 2;
      h.draw_dci(rectangle(x0, y0, x0 + 29, y0 + 23));
      expect_patterned(h, bits, flags, x0, y0, x0 + 29, y0 + 23, ("flags " + std::to_string(flags)).c_str());
    }
  }
}

// Two triangles drawn in separate calls, in either order, continue one
// pattern: the phase belongs to the image.
TEST_P(Fill_Pattern, SeparateTrianglesContinueOnePattern) {
  Renderer_Harness h(GetParam());
  set_contrast(h);
  set_user_pattern(h, 12, 3, &kUserRows[0][0], 3);
  h.rendition().writable_raster()->stipple_flags = 1;
  const Points strip = rectangle(7, 4, 44, 30);
  h.draw_dci({strip[1], strip[2], strip[3]});
  h.draw_dci({strip[0], strip[1], strip[2]});
  expect_patterned(h, user_bits(h), 1, 7, 4, 44, 30, "two calls");
}

TEST_P(Fill_Pattern, ShortCutsOfEmptyAndSolid) {
  enum Shows { nothing, main_colour, contrast_colour };
  const struct {
    int pattern;
    std::uint32_t flags;
    Shows shows;
  } cases[] = {
      {64, 0, main_colour},     {64, 1, main_colour},      // solid, contrast irrelevant
      {64, 2, nothing},         {64, 3, contrast_colour},  // inverted solid: all holes
      {0, 0, nothing},          {0, 1, contrast_colour},   // empty: all holes
      {0, 2, main_colour},      {0, 3, main_colour},       // inverted empty: no holes
  };
  Renderer_Harness h(GetParam());
  set_contrast(h);
  for (const auto& c : cases) {
    clear_unpatterned(h);
    h.rendition().writable_face()->pattern = c.pattern;
    h.rendition().writable_raster()->stipple_flags = c.flags;
    h.draw_dci(rectangle(3, 2, 30, 25));
    const std::uint32_t inside_value =
        c.shows == nothing ? h.clear_value() : c.shows == main_colour ? h.drawn_value() : contrast_value(h);
    expect_image(h, [&](int x, int y) { return inside(x, y, 3, 2, 30, 25) ? inside_value : h.clear_value(); },
                 ("pattern " + std::to_string(c.pattern) + " flags " + std::to_string(c.flags)).c_str());
  }
}

TEST_P(Fill_Pattern, ColorizedPatternDithersOnlyItsMainPixels) {
  const int p = mixed_stipple();
  ASSERT_GE(p, 0);
  const Pattern_Bits bits{OMBRA.stipples[p], 8, 8, 1};
  Renderer_Harness h(GetParam(), 64, 48, {1, 2});
  set_contrast(h);
  h.rendition().writable_face()->pattern = p;
  h.rendition().writable_raster()->stipple_flags = 1;
  const OT_RGB32 c = OT_RGB32::rgba(100, 150, 200);
  draw_colorized(h, rectangle(2, 3, 40, 37), {c}, true);
  expect_image(h, [&](int x, int y) -> std::uint32_t {
    if (!inside(x, y, 2, 3, 40, 37)) return h.clear_value();
    return hole_at(h, bits, x, y, false) ? contrast_value(h) : colorized_value(h, c, x, y);
  });
}

// Counts the calls that reach any slot.
int g_slot_calls = 0;
template <class... Args>
void count_call(OT_Renderer_Data*, const OT_Rendition&, Args...) {
  ++g_slot_calls;
}
template <class... Args>
void count_calls_of(OT_Action<Args...>& slot) {
  slot.function = &count_call<Args...>;
}
#define TARN_COUNT_CALLS_OF(name, ...) count_calls_of(r.name);
void count_calls_of_every_slot(Software_Z_Buffer& r) { OT_ACTION_SLOTS(TARN_COUNT_CALLS_OF) }
#undef TARN_COUNT_CALLS_OF

// Above 74 the host's routine takes the strip and breaks it down through the
// slots; the renderer's own filler writes nothing. 74 is the renderer's.
TEST_P(Fill_Pattern, AboveSeventyFourTheHostDraws) {
  Renderer_Harness h(GetParam());
  const Points points = {{4, 4, kZ}, {40, 4, kZ}, {4, 40, kZ}, {40, 40, kZ}};
  const std::vector<OT_Point> floats = as_floats(points);
  const OT_RGB32 color = Renderer_Harness::kColor;
  const auto dci = h.renderer().draw_dci_polytriangle;
  const auto dc = h.renderer().draw_dc_polytriangle;
  const auto dci_colorized = h.renderer().draw_dci_colorized_polytriangle;
  const auto dc_colorized = h.renderer().draw_dc_colorized_polytriangle;
  count_calls_of_every_slot(h.renderer());
  const std::vector<std::uint32_t> before = h.snapshot();
  for (int pattern : {75, 76, 1000}) {
    h.rendition().writable_face()->pattern = pattern;
    g_slot_calls = 0;
    dci(h.rendition(), 4, points.data());
    EXPECT_GT(g_slot_calls, 0) << "dci, pattern " << pattern;
    g_slot_calls = 0;
    dc(h.rendition(), 4, floats.data());
    EXPECT_GT(g_slot_calls, 0) << "dc, pattern " << pattern;
    g_slot_calls = 0;
    dci_colorized(h.rendition(), 4, points.data(), &color, true);
    EXPECT_GT(g_slot_calls, 0) << "dci colorized, pattern " << pattern;
    g_slot_calls = 0;
    dc_colorized(h.rendition(), 4, floats.data(), &color, true);
    EXPECT_GT(g_slot_calls, 0) << "dc colorized, pattern " << pattern;
    EXPECT_EQ(h.snapshot(), before) << pattern;
  }
  const byte no_holes[1] = {0};
  set_user_pattern(h, 8, 1, no_holes, 1);
  g_slot_calls = 0;
  dci(h.rendition(), 4, points.data());
  EXPECT_EQ(g_slot_calls, 0);
  EXPECT_EQ(h.pixel(10, 10), h.drawn_value());
}

INSTANTIATE_TEST_SUITE_P(Fill, Fill_Pattern, ::testing::ValuesIn(kAllModes), mode_name);

// ---- Merge control -------------------------------------------------------------

constexpr OT_RGB32 kWhite = OT_RGB32::rgba(255, 255, 255);
constexpr OT_RGB32 kNearWhite = OT_RGB32::rgba(255, 255, 254);
constexpr OT_RGB32 kBlack = OT_RGB32::rgba(0, 0, 0);
constexpr OT_RGB32 kNearBlack = OT_RGB32::rgba(0, 0, 1);
constexpr OT_RGB32 kRed = OT_RGB32::rgba(255, 0, 0);
constexpr OT_RGB32 kGreen = OT_RGB32::rgba(0, 255, 0);
constexpr OT_RGB32 kYellow = OT_RGB32::rgba(255, 255, 0);
constexpr OT_RGB32 kCyan = OT_RGB32::rgba(0, 255, 255);
constexpr OT_RGB32 kMagenta = OT_RGB32::rgba(255, 0, 255);

// The page: cleared to `paper`, which is the merge background; the
// alternate is `near`.
void paper(Renderer_Harness& h, OT_RGB32 background, OT_RGB32 near) {
  Software_Z_Buffer& r = h.renderer();
  r.merge_color = background;
  r.merge_alternate_color = near;
  r.merge_index = index_of(h, background);
  r.merge_alternate_index = static_cast<byte>(r.merge_index == 100 ? 101 : 100);
  set_window_color(h, background);
}

void merge_by(Renderer_Harness& h, bool forced) {
  if (forced)
    h.renderer().force_merge = 1;
  else
    h.rendition().writable_raster()->write_mode = 20;
}

const Points kLeft = {{0, 0, kZ}, {30, 0, kZ}, {0, 30, kZ}};
const Points kRight = {{34, 0, kZ}, {63, 0, kZ}, {34, 30, kZ}};

class Fill_Merge : public ::testing::TestWithParam<Mode_Case> {};

// Without depth a solid triangle merges; the depth fillers have no merge.
TEST_P(Fill_Merge, SolidTrianglesMergeOnlyWithoutDepth) {
  for (bool forced : {false, true}) {
    Renderer_Harness h(GetParam());
    paper(h, kWhite, kNearWhite);
    merge_by(h, forced);
    const bool merges = !h.mode().depth();
    set_main(h, kRed);
    h.draw_dci(kLeft);
    EXPECT_EQ(h.pixel(5, 5), value_of(h, kRed)) << forced;
    set_main(h, kGreen);
    h.draw_dci(kLeft);
    const std::uint32_t anded = h.mode().mapped() ? and_match(h, index_of(h, kRed), index_of(h, kGreen))
                                                  : kBlack.word();
    EXPECT_EQ(h.pixel(5, 5), merges ? anded : value_of(h, kGreen)) << forced;
    // Once more changes nothing.
    h.draw_dci(kLeft);
    EXPECT_EQ(h.pixel(5, 5), merges ? anded : value_of(h, kGreen)) << forced;
    // The background colour drawn on the background turns into the alternate.
    set_main(h, kWhite);
    h.draw_dci(kRight);
    const std::uint32_t alternate =
        h.mode().mapped() ? std::uint32_t(h.renderer().merge_alternate_index) : kNearWhite.word();
    EXPECT_EQ(h.pixel(40, 5), merges ? alternate : value_of(h, kWhite)) << forced;
  }
}

// The mapped colorized fillers have no merge; the RGB32 ones without depth
// merge through the alpha filler.
TEST_P(Fill_Merge, ColorizedMergesOnlyInRgb32WithoutDepth) {
  Renderer_Harness h(GetParam());
  paper(h, kWhite, kNearWhite);
  set_main(h, kRed);
  h.draw_dci(rectangle(0, 0, 40, 40));
  merge_by(h, false);
  const OT_RGB32 green = kGreen;
  draw_colorized(h, rectangle(0, 0, 40, 40), {green}, true);
  const bool merges = !h.mode().depth() && !h.mode().mapped();
  expect_image(h, [&](int x, int y) -> std::uint32_t {
    if (!inside(x, y, 0, 0, 40, 40)) return value_of(h, kWhite);
    return merges ? kBlack.word() : colorized_value(h, green, x, y);
  });
}

INSTANTIATE_TEST_SUITE_P(Fill, Fill_Merge, ::testing::ValuesIn(kAllModes), mode_name);

const Mode_Case kModesWithoutDepth[] = {kRgb32Alpha, kRgb32, kMapped};
const Mode_Case kRgb32ModesWithoutDepth[] = {kRgb32Alpha, kRgb32};

class Fill_Merge_Without_Depth : public ::testing::TestWithParam<Mode_Case> {};
class Fill_Merge_Rgb32 : public ::testing::TestWithParam<Mode_Case> {};

// Red AND green is black, the background here: RGB32 replaces it with the
// alternate, the mapped rule stores the background index as it is.
TEST_P(Fill_Merge_Without_Depth, AndThatIsTheBackground) {
  Renderer_Harness h(GetParam());
  paper(h, kBlack, kNearBlack);
  merge_by(h, false);
  set_main(h, kRed);
  h.draw_dci(kLeft);
  set_main(h, kGreen);
  h.draw_dci(kLeft);
  if (h.mode().mapped()) {
    ASSERT_EQ(and_match(h, index_of(h, kRed), index_of(h, kGreen)), h.renderer().merge_index);
    EXPECT_EQ(h.pixel(5, 5), h.renderer().merge_index);
  } else {
    EXPECT_EQ(h.pixel(5, 5), kNearBlack.word());
  }
}

// A pixel cleared with a window colour whose alpha is not 255 is not the
// background, though its channels are.
TEST_P(Fill_Merge_Rgb32, TranslucentWindowColourIsNotBackground) {
  for (byte window_alpha : {byte(100), byte(255)}) {
    Renderer_Harness h(GetParam());
    paper(h, OT_RGB32::rgba(200, 200, 200), kNearWhite);
    set_window_color(h, OT_RGB32::rgba(200, 200, 200, window_alpha));
    merge_by(h, true);
    set_main(h, kRed);
    h.draw_dci(kLeft);
    EXPECT_EQ(h.pixel(5, 5), window_alpha == 255 ? kRed.word() : OT_RGB32::rgba(200, 0, 0).word());
  }
}

// Under merge the pattern path of the mapped filler stores plainly; the
// RGB32 fillers merge main and contrast pixels alike.
TEST_P(Fill_Merge_Without_Depth, PatternedTriangleMergesOnlyInRgb32) {
  const int p = mixed_stipple();
  ASSERT_GE(p, 0);
  const Pattern_Bits bits{OMBRA.stipples[p], 8, 8, 1};
  Renderer_Harness h(GetParam());
  paper(h, kWhite, kNearWhite);
  set_main(h, kYellow);
  h.draw_dci(rectangle(0, 0, 40, 40));
  merge_by(h, false);
  set_main(h, kCyan);
  OT_Rendition_Colors* colors = h.rendition().writable_colors();
  colors->contrast_color = kMagenta;
  colors->contrast_index = index_of(h, kMagenta);
  h.rendition().writable_face()->pattern = p;
  h.rendition().writable_raster()->stipple_flags = 1;
  h.draw_dci(rectangle(0, 0, 40, 40));
  // Yellow AND cyan is green, yellow AND magenta red.
  const std::uint32_t main = h.mode().mapped() ? index_of(h, kCyan) : kGreen.word();
  const std::uint32_t contrast = h.mode().mapped() ? index_of(h, kMagenta) : kRed.word();
  expect_image(h, [&](int x, int y) -> std::uint32_t {
    if (!inside(x, y, 0, 0, 40, 40)) return value_of(h, kWhite);
    return hole_at(h, bits, x, y, false) ? contrast : main;
  });
}

INSTANTIATE_TEST_SUITE_P(Fill, Fill_Merge_Without_Depth, ::testing::ValuesIn(kModesWithoutDepth), mode_name);
INSTANTIATE_TEST_SUITE_P(Fill, Fill_Merge_Rgb32, ::testing::ValuesIn(kRgb32ModesWithoutDepth), mode_name);

// The opaque RGB32 mode hands merging to the alpha filler in all four forms,
// with the colour taken as opaque.
TEST(Fill_Opaque_Merge, EveryFormMergesWhenForcedOrInWriteModeTwenty) {
  for (bool forced : {false, true})
    for (Form form : kForms) {
      Renderer_Harness h(kRgb32);
      paper(h, kWhite, kNearWhite);
      merge_by(h, forced);
      set_main(h, kYellow);
      draw_in_form(h, form, kLeft);
      set_main(h, OT_RGB32::rgba(0, 255, 255, 7));  // cyan, nearly transparent
      draw_in_form(h, form, kLeft);
      EXPECT_EQ(h.pixel(5, 5), kGreen.word()) << form_name(form) << " forced " << forced;
    }
}

// ---- Alpha ---------------------------------------------------------------------

struct Alpha_Case {
  const char* name;
  Mode_Case mode;
  bool alpha_bit;  // advanced_options bit value 8
};
const Alpha_Case kBlendingCases[] = {
    {"rgb32_alpha", kRgb32Alpha, false},
    {"rgb32_with_alpha_bit", kRgb32, true},
    {"z_rgb32_alpha", kZRgb32Alpha, false},
    {"z_rgb32_with_alpha_bit", kZRgb32, true},
};
const Alpha_Case kAlphaFillerCases[] = {kBlendingCases[0], kBlendingCases[1]};
std::string alpha_case_name(const ::testing::TestParamInfo<Alpha_Case>& info) { return info.param.name; }

Renderer_Harness make_alpha_harness(const Alpha_Case& c, int width = 64, int height = 48, OT_Int_XY origin = {0, 0}) {
  Renderer_Harness h(c.mode, width, height, origin);
  if (c.alpha_bit) h.rendition().writable_raster()->advanced_options = OT_Advanced_Alpha_Path;
  return h;
}

int exact_channel(int old, int color, int a) { return (old * (255 - a) + color * a) / 255; }
std::uint32_t exact_blend(OT_RGB32 old, OT_RGB32 c) {
  return OT_RGB32::rgba(exact_channel(old.r, c.r, c.a), exact_channel(old.g, c.g, c.a),
                        exact_channel(old.b, c.b, c.a), 255)
      .word();
}

constexpr OT_RGB32 kWindow = OT_RGB32::rgba(40, 80, 120, 255);
constexpr OT_RGB32 kTranslucent = OT_RGB32::rgba(200, 100, 50, 128);

class Fill_Blending : public ::testing::TestWithParam<Alpha_Case> {};

TEST_P(Fill_Blending, TranslucentSolidBlendsExactly) {
  for (Form form : kForms) {
    Renderer_Harness h = make_alpha_harness(GetParam());
    set_window_color(h, kWindow);
    set_main(h, kTranslucent);
    draw_in_form(h, form, rectangle(3, 4, 33, 27));
    expect_image(
        h,
        [&](int x, int y) { return inside(x, y, 3, 4, 33, 27) ? exact_blend(kWindow, kTranslucent) : kWindow.word(); },
        form_name(form));
  }
}

// Main pixels blend; contrast pixels are stored as they are, alpha byte and
// all, without blending.
TEST_P(Fill_Blending, TranslucentPatternBlendsMainAndReplacesContrast) {
  const int p = mixed_stipple();
  ASSERT_GE(p, 0);
  const Pattern_Bits bits{OMBRA.stipples[p], 8, 8, 1};
  Renderer_Harness h = make_alpha_harness(GetParam());
  set_window_color(h, kWindow);
  set_main(h, kTranslucent);
  const OT_RGB32 contrast = OT_RGB32::rgba(0, 255, 0, GetParam().mode.depth() ? 255 : 100);
  set_contrast(h, contrast);
  h.rendition().writable_face()->pattern = p;
  h.rendition().writable_raster()->stipple_flags = 1;
  h.draw_dci(rectangle(3, 4, 33, 27));
  expect_image(h, [&](int x, int y) -> std::uint32_t {
    if (!inside(x, y, 3, 4, 33, 27)) return kWindow.word();
    return hole_at(h, bits, x, y, false) ? contrast.word() : exact_blend(kWindow, kTranslucent);
  });
}

INSTANTIATE_TEST_SUITE_P(Fill, Fill_Blending, ::testing::ValuesIn(kBlendingCases), alpha_case_name);

class Fill_Alpha_Filler : public ::testing::TestWithParam<Alpha_Case> {};

// One colour of alpha 0 ends the call at once; a list is walked, and its
// alpha-0 triangles still make their pixels' alpha byte 255.
TEST_P(Fill_Alpha_Filler, AlphaZeroDrawsNothingAloneButSetsAlphaByteInAList) {
  Renderer_Harness h = make_alpha_harness(GetParam());
  const OT_RGB32 window = OT_RGB32::rgba(10, 20, 30, 0);
  set_window_color(h, window);
  const OT_RGB32 clear_colour = OT_RGB32::rgba(200, 100, 50, 0);
  const std::vector<std::uint32_t> before = h.snapshot();
  set_main(h, clear_colour);
  for (Form form : kForms) {
    draw_in_form(h, form, rectangle(3, 4, 33, 27));
    EXPECT_EQ(h.snapshot(), before) << form_name(form);
  }
  draw_colorized(h, rectangle(3, 4, 33, 27), {clear_colour, clear_colour}, false);
  expect_image(h, [&](int x, int y) {
    return inside(x, y, 3, 4, 33, 27) ? OT_RGB32::rgba(10, 20, 30, 255).word() : window.word();
  });
}

// Strip of 5 points: triangles 0 and 1 make the square [0,20)^2, triangle 2
// lies below it.
const Points kThreeTriangles = {{0, 0, kZ}, {20, 0, kZ}, {0, 20, kZ}, {20, 20, kZ}, {0, 40, kZ}};

// Under merge the colour in hand is opaque: the one colour of a list for all,
// or the first of a list of several; the later colours blend.
TEST_P(Fill_Alpha_Filler, MergeMakesOnlyTheFirstColourOpaque) {
  const OT_RGB32 c0 = OT_RGB32::rgba(10, 20, 30, 128), c1 = OT_RGB32::rgba(200, 100, 50, 128),
                 c2 = OT_RGB32::rgba(90, 160, 220, 128);
  {
    Renderer_Harness h = make_alpha_harness(GetParam());
    paper(h, kWhite, kNearWhite);
    merge_by(h, false);
    draw_colorized(h, kThreeTriangles, {c0, c1, c2}, false);
    EXPECT_EQ(h.pixel(2, 2), OT_RGB32::rgba(10, 20, 30).word());  // merged on the background
    EXPECT_EQ(h.pixel(17, 17), exact_blend(kWhite, c1));
    EXPECT_EQ(h.pixel(2, 25), exact_blend(kWhite, c2));
  }
  {
    Renderer_Harness h = make_alpha_harness(GetParam());
    paper(h, kWhite, kNearWhite);
    merge_by(h, true);
    draw_colorized(h, kThreeTriangles, {c1}, true);
    for (auto [x, y] : {std::pair{2, 2}, std::pair{17, 17}, std::pair{2, 25}})
      EXPECT_EQ(h.pixel(x, y), OT_RGB32::rgba(200, 100, 50).word()) << x << "," << y;
  }
}

// The solid path walks rows outside the image without writing them: what it
// writes inside equals what a taller window gets on the same rows.
TEST_P(Fill_Alpha_Filler, SolidPathWritesOnlyTheRowsInsideTheImage) {
  const Points below = {{10, -6, kZ}, {50, -6, kZ}, {10, 20, kZ}};
  const Points above = {{12, 30, kZ}, {52, 30, kZ}, {30, 60, kZ}};
  const Points across = {{2, -9, kZ}, {60, 20, kZ}, {20, 57, kZ}};
  enum Colour { opaque, translucent, merged };
  for (Colour colour : {opaque, translucent, merged})
    for (const Points* points : {&below, &above, &across}) {
      Renderer_Harness h = make_alpha_harness(GetParam());
      Renderer_Harness tall = make_alpha_harness(GetParam(), 64, 80, {0, -10});
      for (Renderer_Harness* each : {&h, &tall}) {
        paper(*each, kWindow, kNearWhite);
        set_main(*each, colour == translucent ? kTranslucent : kRed);
        if (colour == merged) merge_by(*each, false);
        each->draw_dci(*points);
      }
      int drawn = 0;
      for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 64; ++x) {
          ASSERT_EQ(h.pixel(x, y), tall.pixel(x, y)) << "colour " << colour << " at " << x << "," << y;
          drawn += h.pixel(x, y) != kWindow.word();
        }
      EXPECT_GT(drawn, 0);
    }
}

INSTANTIATE_TEST_SUITE_P(Fill, Fill_Alpha_Filler, ::testing::ValuesIn(kAlphaFillerCases), alpha_case_name);

// A flat strip of alpha 0 under merge: the opaque mode's flat action makes
// the colour opaque before the alpha filler sees it, and so merges; the alpha
// mode's, and the opaque mode's with the alpha bit, pass it as it stands, and
// the alpha filler returns on it before merge is looked at.
TEST(Fill_Flat_Merge, AlphaZeroMergesOnlyWhenTheOpaqueActionMadeItOpaque) {
  const struct {
    const Mode_Case& mode;
    bool alpha_bit;
    bool draws;
  } cases[] = {{kRgb32, false, true}, {kRgb32, true, false}, {kRgb32Alpha, false, false}};
  for (const auto& c : cases) {
    Renderer_Harness h(c.mode);
    if (c.alpha_bit) h.rendition().writable_raster()->advanced_options = OT_Advanced_Alpha_Path;
    paper(h, kWhite, kNearWhite);
    merge_by(h, false);
    set_main(h, OT_RGB32::rgba(255, 255, 0, 0));
    h.draw_dci(kLeft);
    EXPECT_EQ(h.pixel(5, 5), c.draws ? kYellow.word() : kWhite.word()) << c.mode.name << " " << c.alpha_bit;
  }
}

// The depth alpha filler has no early exit: alpha 0 still makes the alpha
// byte 255 and writes depth.
TEST(Fill_Depth_Alpha, AlphaZeroStillSetsAlphaByteAndDepth) {
  Renderer_Harness h(kZRgb32Alpha);
  set_window_color(h, OT_RGB32::rgba(10, 20, 30, 0));
  set_main(h, OT_RGB32::rgba(200, 100, 50, 0));
  h.draw_dci(rectangle(3, 4, 33, 27));
  EXPECT_EQ(h.pixel(5, 5), OT_RGB32::rgba(10, 20, 30, 255).word());
  EXPECT_EQ(h.depth(5, 5), kZ);
  EXPECT_EQ(h.pixel(40, 40), OT_RGB32::rgba(10, 20, 30, 0).word());
}

// The opaque fillers store the word as it comes, alpha byte included.
TEST(Fill_Opaque, StoresTheAlphaByteItIsGiven) {
  for (const Mode_Case& mode : {kRgb32, kZRgb32})
    for (Form form : kForms) {
      Renderer_Harness h(mode);
      set_main(h, OT_RGB32::rgba(10, 20, 30, 7));
      draw_in_form(h, form, rectangle(3, 4, 33, 27));
      EXPECT_EQ(h.pixel(5, 5), OT_RGB32::rgba(10, 20, 30, 7).word()) << mode.name << " " << form_name(form);
      EXPECT_EQ(h.pixel(3, 26), OT_RGB32::rgba(10, 20, 30, 7).word()) << mode.name << " " << form_name(form);
    }
}

// ---- Colorized lists -------------------------------------------------------------

class Fill_Colorized : public ::testing::TestWithParam<Mode_Case> {};

// The pixels a flat strip covers, drawn on a fresh renderer of the same kind.
std::set<std::pair<int, int>> coverage(const Mode_Case& mode, const Points& points) {
  Renderer_Harness h(mode);
  h.draw_dci(points);
  return h.drawn();
}

// Triangle 1 of this strip has zero height; triangles 0 (rows 5..14) and 2
// (rows 15..24) use colours 0 and 2.
TEST_P(Fill_Colorized, ZeroHeightTriangleUsesUpItsColour) {
  const Points strip = {{15, 5, kZ}, {5, 15, kZ}, {25, 15, kZ}, {45, 15, kZ}, {35, 25, kZ}};
  const std::vector<OT_RGB32> colours = {OT_RGB32::rgba(200, 30, 40), OT_RGB32::rgba(20, 220, 60),
                                         OT_RGB32::rgba(30, 60, 210)};
  Renderer_Harness h(GetParam());
  draw_colorized(h, strip, colours, false);
  const std::set<std::pair<int, int>> covered = coverage(GetParam(), strip);
  ASSERT_FALSE(covered.empty());
  int would_differ = 0;
  expect_image(h, [&](int x, int y) -> std::uint32_t {
    if (!covered.count({x, y})) return h.clear_value();
    const OT_RGB32 c = colours[y < 15 ? 0 : 2];
    would_differ += colorized_value(h, colours[1], x, y) != colorized_value(h, c, x, y);
    return colorized_value(h, c, x, y);
  });
  EXPECT_GT(would_differ, 0);
}

// One colour for the list, first triangle of zero height: the mapped fillers
// never look the colour up and draw the rest in index 0; the RGB32 fillers
// read the colour for every triangle.
TEST_P(Fill_Colorized, OneColourAfterAZeroHeightFirstTriangle) {
  const Points strip = {{5, 15, kZ}, {25, 15, kZ}, {45, 15, kZ}, {35, 25, kZ}};
  const OT_RGB32 c = OT_RGB32::rgba(30, 60, 210);
  Renderer_Harness h(GetParam());
  h.draw_dci(rectangle(0, 0, 50, 30, 1000));  // index 9 or red, farther away
  draw_colorized(h, strip, {c}, true);
  const std::set<std::pair<int, int>> covered = coverage(GetParam(), strip);
  ASSERT_FALSE(covered.empty());
  expect_image(h, [&](int x, int y) -> std::uint32_t {
    if (covered.count({x, y})) return h.mode().mapped() ? 0u : c.word();
    return inside(x, y, 0, 0, 50, 30) ? h.drawn_value() : h.clear_value();
  });
}

INSTANTIATE_TEST_SUITE_P(Fill, Fill_Colorized, ::testing::ValuesIn(kAllModes), mode_name);

// Images whose index rows lie 3 bytes past a multiple of 8 apart.
void odd_pitch_images(void*, int width, int height, const OT_Image_Format* format, OT_Shared_Image* out) {
  const int pitch = *format == OT_Image_Format_Index8 ? width + 3 : 0;
  *out = OT_Shared_Image(width, height, *format, pitch, nullptr, false);
}

class Fill_Mapped_Dither : public ::testing::TestWithParam<Mode_Case> {};

// Every pixel takes the threshold of its window row and of its own address:
// in an image whose rows are not 8-aligned the column phase moves against x.
TEST_P(Fill_Mapped_Dither, EachPixelDithersAtItsOwnRowAndAddress) {
  const OT_RGB32 c = OT_RGB32::rgba(100, 150, 200);
  const Points strip = {{3, 5, kZ}, {66, 5, kZ}, {3, 52, kZ}, {50, 40, kZ}};
  for (bool odd : {false, true}) {
    Renderer_Harness h(GetParam(), 64, 48, {3, 5}, odd ? OT_Image_Factory{nullptr, odd_pitch_images} : OT_Image_Factory{});
    ASSERT_GT(h.renderer().cube.red_scale, 0) << "the palette has no cube";
    Renderer_Harness flat(GetParam(), 64, 48, {3, 5});
    flat.draw_dci(strip);
    const std::set<std::pair<int, int>> covered = flat.drawn();
    ASSERT_FALSE(covered.empty());
    draw_colorized(h, strip, {c}, true);
    const Dither_Thresholds t = dither_thresholds(h.renderer().cube, c);
    int by_device_row = 0, by_x = 0;
    std::set<std::uint32_t> indices;
    expect_image(
        h,
        [&](int x, int y) -> std::uint32_t {
          if (!covered.count({x, y})) return h.clear_value();
          const std::uint32_t want = colorized_value(h, c, x, y);
          indices.insert(want);
          // What the wrong row or column would give.
          by_device_row += want != dither_pick(t, dither_threshold(y, address_of(h, x, y)));
          by_x += want != dither_pick(t, SHARED.dither[((y - 5) & 7) * 8 + ((x - 3) & 7)]);
          return want;
        },
        odd ? "odd pitch" : "host pitch");
    EXPECT_GT(indices.size(), 1u);
    EXPECT_GT(by_device_row, 0);
    if (odd) {
      EXPECT_GT(by_x, 0);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Fill, Fill_Mapped_Dither, ::testing::ValuesIn(kMappedModes), mode_name);

}  // namespace
}  // namespace tarn::testing
