// Seeded differential tests of the clip paths, through the action slots only:
// strips and polylines through the clipping forms (2DI, 2D) with a hard clip
// inside the window, against the all-inside forms (DCI) drawing the whole
// window in a second renderer. Inside the clip the pictures agree where the
// rules say so; where a crossing triangle differs on purpose the reference is
// rebuilt from the rule. Outside the clip nothing may be written.
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

// The window starts at device (kX, kY), so that every path must take the
// origin off; the hard clip lies inside it with a margin on every side.
constexpr int kW = 128, kH = 96, kX = 37, kY = 21;
constexpr OT_Int_Rectangle kClip{kX + 32, kX + 95, kY + 24, kY + 71};
constexpr OT_Int_Rectangle kWindow{kX, kX + kW - 1, kY, kY + kH - 1};
constexpr int kFar = 100000;  // beyond the walk limits and the line limits

bool inside(const OT_Int_Rectangle& r, int x, int y) {
  return x >= r.left && x <= r.right && y >= r.bottom && y <= r.top;
}
int outcode(const OT_Int_Rectangle& r, const OT_DCI_Point& p) {
  return (p.x < r.left ? 1 : 0) | (p.y > r.top ? 2 : 0) | (p.x > r.right ? 4 : 0) | (p.y < r.bottom ? 8 : 0);
}
int sign(int v) { return (v > 0) - (v < 0); }
int wrapped(int value, int n) { return ((value % n) + n) % n; }
// Pixel i of a whole-image list and its device position.
int x_of(int i) { return kX + i % kW; }
int y_of(int i) { return kY + i / kW; }
int index_of(int x, int y) { return (y - kY) * kW + x - kX; }

struct Images {
  std::vector<std::uint32_t> color;
  std::vector<std::uint16_t> depth;
};
Images grab(Renderer_Harness& h) {
  Images out{h.snapshot(), {}};
  for (int i = 0; h.mode().depth() && i < kW * kH; ++i) out.depth.push_back(h.depth(x_of(i), y_of(i)));
  return out;
}
void put(Renderer_Harness& h, const Images& images, bool color = true) {
  for (int i = 0; i < kW * kH; ++i) {
    if (color) h.poke(x_of(i), y_of(i), images.color[i]);
    if (h.mode().depth()) h.poke_depth(x_of(i), y_of(i), images.depth[i]);
  }
}
void fill_color(Renderer_Harness& h, std::uint32_t v) {
  for (int i = 0; i < kW * kH; ++i) h.poke(x_of(i), y_of(i), v);
}

// The same random page in both renderers: half background (so that merge has
// both cases), half anything, alpha bytes included; depths about `z`.
Images prefill(Renderer_Harness& a, Renderer_Harness& b, std::mt19937& random, int z, int spread) {
  std::uniform_int_distribution<std::uint32_t> word;
  std::uniform_int_distribution<int> near(-spread, spread);
  Images out;
  const std::uint32_t background =
      a.mode().mapped() ? a.renderer().merge_index : a.renderer().merge_color.word();
  for (int i = 0; i < kW * kH; ++i) {
    const std::uint32_t w = word(random);
    out.color.push_back(w % 2 ? background : a.mode().mapped() ? (w >> 8) & 0xFF : w);
    if (a.mode().depth()) out.depth.push_back(w % 11 == 0 ? 0xFFFF : std::clamp(z + near(random), 0, 0xFFFF));
  }
  put(a, out);
  put(b, out);
  return out;
}

std::unique_ptr<Renderer_Harness> make_harness(const Mode_Case& mode) {
  auto h = std::make_unique<Renderer_Harness>(mode, kW, kH, OT_Int_XY{kX, kY});
  h->use_mask(OT_Contour_Set());  // each face sets its own clip
  return h;
}

// A user pattern 12 wide and 3 high, rows of 2 bytes.
const byte kUserRows[3][2] = {{0x96, 0x05}, {0x2B, 0x0E}, {0xE1, 0x0C}};

struct Face {
  std::int32_t pattern = 64, write_mode = 0, origin_x = 0, origin_y = 0, bias = 0, depth_test = 2;
  std::uint32_t flags = 0;  // bit 0 contrast, bit 1 inverted
  byte force_merge = 0, depth_write = 1, index = 9, contrast_index = 200;
  bool mask = false;
  OT_RGB32 color{}, contrast_color{};

  bool merge() const { return write_mode == 20 || force_merge != 0; }
  bool solid() const { return pattern == 64 && (flags & 2) == 0; }

  enum Kind { kMain, kContrast, kNone };
  // What the face puts at device (x, y): the pattern is anchored to the
  // window plus the pattern origin, bits from the low end of each byte.
  Kind kind_at(int x, int y) const {
    if (solid()) return kMain;
    const byte* bits = pattern == 74 ? &kUserRows[0][0] : OMBRA.stipples[pattern];
    const int width = pattern == 74 ? 12 : 8, height = pattern == 74 ? 3 : 8, stride = pattern == 74 ? 2 : 1;
    const int pr = wrapped(y - kY - origin_y, height), pc = wrapped(x - kX - origin_x, width);
    const bool hole = (((bits[pr * stride + (pc >> 3)] >> (pc & 7)) & 1) != 0) != ((flags & 2) != 0);
    return !hole ? kMain : (flags & 1) ? kContrast : kNone;
  }

  void apply(Renderer_Harness& h) const {
    OT_Rendition_Face* face = h.rendition().writable_face();
    face->pattern = pattern;
    face->depth_bias = bias;
    if (pattern == 74)
      face->user_pattern = OT_User_Pattern(new OT_User_Pattern_Data(12, 3, &kUserRows[0][0], 2));
    OT_Rendition_Raster* raster = h.rendition().writable_raster();
    raster->stipple_flags = flags;
    raster->write_mode = write_mode;
    raster->pattern_origin_x = origin_x;
    raster->pattern_origin_y = origin_y;
    OT_Rendition_Colors* colors = h.rendition().writable_colors();
    colors->color = color;
    colors->color_index = index;
    colors->contrast_color = contrast_color;
    colors->contrast_index = contrast_index;
    h.renderer().force_merge = force_merge;
    h.renderer().depth_test = depth_test;
    h.renderer().depth_write = depth_write;
    // An L-shaped complex clip across the hard clip's lower left corner.
    static const OT_Point kL[] = {{kX + 10, kY + 10, 0}, {kX + 70, kY + 10, 0}, {kX + 70, kY + 40, 0},
                                  {kX + 40, kY + 40, 0}, {kX + 40, kY + 80, 0}, {kX + 10, kY + 80, 0}};
    h.rendition().writable_device()->complex_clip = mask ? OT_Contour_Set(6, kL, true) : OT_Contour_Set();
  }
  void set_merge(Renderer_Harness& h, bool on) const {
    h.rendition().writable_raster()->write_mode = on ? write_mode : 0;
    h.renderer().force_merge = on ? force_merge : 0;
  }
};

OT_RGB32 random_color(std::mt19937& random, byte alpha) {
  std::uniform_int_distribution<int> channel(0, 255);
  return OT_RGB32::rgba(channel(random), channel(random), channel(random), alpha);
}

// The addition form of the dither for a constant colour: V = (channel times
// scale) << 8, plus 128; index = the sum of the levels of V + d, blue counting 1.
byte addition_dither(Renderer_Harness& h, OT_RGB32 c, int x, int y) {
  const OT_Color_Cube& cube = h.renderer().cube;
  const int d = SHARED.dither[((y - kY) & 7) * 8 + (reinterpret_cast<std::uintptr_t>(h.address(x, y)) & 7)];
  auto level = [d](byte channel, int scale) {
    return ((static_cast<int>(channel) * scale << 8) + 128 + d) >> 16;
  };
  return static_cast<byte>(level(c.r, cube.red_scale) * cube.red_step +
                           level(c.g, cube.green_scale) * cube.green_step + level(c.b, cube.blue_scale) +
                           cube.base);
}

// The mapped merge: background takes the index (or the alternate for the
// background index), equal stays, otherwise the palette's nearest to the AND.
byte merged_index(Renderer_Harness& h, byte old, byte index) {
  const Software_Z_Buffer& r = h.renderer();
  if (old == r.merge_index) return index == r.merge_index ? r.merge_alternate_index : index;
  if (old == index) return old;
  const OT_Palette& palette = r.current_renderer_options()->palette();
  OT_RGB32 c = OT_RGB32::from_word(palette.color(old).word() & palette.color(index).word());
  c.a = 255;
  return static_cast<byte>(palette.closest_match(c, false));
}

struct Strip {
  std::vector<OT_DCI_Point> points;
  std::vector<OT_RGB32> colors;              // empty: flat
  bool single = true, holds_window = false;  // the first triangle holds the whole window
  const OT_RGB32* color_of(int t) const { return colors.empty() ? nullptr : &colors[single ? 0 : t]; }
};

bool in_window(const OT_DCI_Point& p) { return inside(kWindow, p.x, p.y); }

// A strip of one or two triangles in one colour, a call each: under merge
// the alpha filler forces only the first colour of a call to opaque.
void draw_dci(Renderer_Harness& h, const OT_DCI_Point* points, int n, const OT_RGB32* color, bool single) {
  for (int k = 0; k + 2 < n; ++k)
    if (color)
      h.renderer().draw_dci_colorized_polytriangle(h.rendition(), 3, points + k, color, single);
    else
      h.renderer().draw_dci_polytriangle(h.rendition(), 3, points + k);
}

class Differential : public ::testing::TestWithParam<Mode_Case> {};

// Draws one triangle of the strip into the reference as the clip path must
// draw it, and marks in `loose` the pixels whose depth the rules leave open.
void reference_triangle(Renderer_Harness& ref, Renderer_Harness& scratch, const Face& face,
                        const Strip& strip, int t, std::vector<bool>& loose) {
  const Mode_Case& mode = ref.mode();
  const OT_DCI_Point* tri = &strip.points[t];
  const OT_RGB32* color = strip.color_of(t);
  // A triangle that holds the whole window (and the walk limits): the exact
  // clipper gives the limits' corners, and inside the window it is the
  // window's rectangle, with the depth of its plane.
  const bool whole = t == 0 && strip.holds_window;
  const int z = tri[0].z, n = whole ? 4 : 3;
  const OT_DCI_Point window[4] = {{kX, kY, z}, {kX + kW, kY, z}, {kX, kY + kH, z}, {kX + kW, kY + kH, z}};
  if (whole) tri = window;
  if (!whole && (!in_window(tri[0]) || !in_window(tri[1]) || !in_window(tri[2]))) {
    // A point beyond the walk limits: no DCI call can take it, so the
    // reference is the same triangle clipped to the whole window. That checks
    // that the clipping walk does not depend on the rectangle it clamps to.
    ref.set_hard_clip(kWindow);
    if (color)
      ref.renderer().draw_2di_colorized_polytriangle(ref.rendition(), 3, tri, color, strip.single);
    else
      ref.renderer().draw_2di_polytriangle(ref.rendition(), 3, tri);
    return;
  }
  if (!whole && (outcode(kClip, tri[0]) | outcode(kClip, tri[1]) | outcode(kClip, tri[2])) == 0)
    return draw_dci(ref, tri, 3, color, strip.single);

  // A crossing triangle.
  const bool merge = face.merge() && !mode.depth();
  if (mode.mapped() && (color || (merge && !face.solid()))) {
    // Mapped crossing spans dither a colour in the addition form, and merge
    // both colours of a pattern. Which pixels the triangle writes (and
    // which pass the depth test) comes from two unmerged drawings over
    // different sentinels; what it writes there comes from the rules.
    const Images before = grab(ref);
    face.set_merge(ref, false);
    fill_color(ref, 0x5A);
    draw_dci(ref, tri, n, color, false);
    const Images first = grab(ref);
    put(ref, before, false);
    fill_color(ref, 0xA5);
    draw_dci(ref, tri, n, color, false);
    const Images second = grab(ref);
    face.set_merge(ref, true);
    for (int i = 0, x = kX, y = kY; i < kW * kH; ++i, x = x_of(i), y = y_of(i)) {
      if (first.color[i] != second.color[i]) {
        ref.poke(x, y, before.color[i]);
        continue;
      }
      const bool main = face.kind_at(x, y) == Face::kMain;
      const byte index =
          main ? (color ? addition_dither(ref, *color, x, y) : face.index) : face.contrast_index;
      ref.poke(x, y, merge ? merged_index(ref, static_cast<byte>(before.color[i]), index) : index);
    }
  } else {
    // RGB32 opaque colorized crossing spans store plain, merge or not. The
    // alpha filler is called with a list so that alpha 0 blends (the
    // crossing span does) rather than returning.
    const bool plain = color && merge && !mode.alpha && !mode.mapped();
    if (plain) face.set_merge(ref, false);
    const byte alpha = color ? color->a : face.color.a;
    Images before;
    if (mode.depth() && mode.alpha && alpha == 0) before = grab(ref);
    draw_dci(ref, tri, n, mode.alpha && !mode.depth() && !color ? &face.color : color, false);
    if (plain) face.set_merge(ref, true);
    // With depth and alpha 0 the crossing span writes depth and leaves the
    // colour alone; the inside filler blends, which sets the alpha byte.
    for (int i = 0; !before.color.empty() && i < kW * kH; ++i)
      if (face.kind_at(x_of(i), y_of(i)) == Face::kMain) ref.poke(x_of(i), y_of(i), before.color[i]);
  }
  if (mode.depth() && face.solid() && !whole && !(tri[0].z == tri[1].z && tri[1].z == tri[2].z)) {
    // Depth from the unclamped span ends: on a span of two pixels the
    // crossing span steps from the left end's integer depth by half the
    // difference, while the inside filler takes the middle of the two
    // accumulators with their fractions. Either may round the other way, so
    // the right pixel of such spans is left out of the comparison.
    scratch.clear();
    draw_dci(scratch, tri, 3, nullptr, true);
    for (int y = kY; y < kY + kH; ++y) {
      int count = 0, last = 0;
      for (int x = kX; x < kX + kW; ++x)
        if (scratch.pixel(x, y) != 0) ++count, last = x;
      if (count == 2) loose[index_of(last, y)] = true;
    }
  }
}

// A point of a strip: inside the clip, on or next to one of its edges, in the
// margin on any side, and now and then far beyond the walk limits.
OT_DCI_Point strip_point(std::mt19937& random, bool far_ok, int z) {
  auto pick = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); };
  const int edges_x[] = {kClip.left - 1, kClip.left, kClip.right, kClip.right + 1};
  const int edges_y[] = {kClip.bottom - 1, kClip.bottom, kClip.top, kClip.top + 1};
  const int kind = pick(0, 9);
  if (kind < 3) return {pick(kClip.left, kClip.right), pick(kClip.bottom, kClip.top), z};
  if (kind == 3) return {edges_x[pick(0, 3)], pick(kY, kY + kH - 1), z};
  if (kind == 4) return {pick(kX, kX + kW - 1), edges_y[pick(0, 3)], z};
  if (kind < 7 && far_ok) {
    const int far[] = {-kFar, 0, kFar};
    const int fx = far[pick(0, 2)], fy = far[fx == 0 ? pick(0, 1) * 2 : pick(0, 2)];
    return {fx ? fx : pick(kX, kX + kW - 1), fy ? fy : pick(kY, kY + kH - 1), z};
  }
  return {pick(kX, kX + kW - 1), pick(kY, kY + kH - 1), z};
}

Face random_face(const Mode_Case& mode, std::mt19937& random, bool lines) {
  auto pick = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); };
  const int stipples[] = {64, 64, 64, 17, 43, 67, 74, 0};
  const byte alphas[] = {0, 128, 255};
  Face f{lines ? 64 : stipples[pick(0, 7)],
         pick(0, 3) == 0 ? 20 : 0,
         pick(-5, 5),
         pick(-5, 5),
         lines ? 0 : pick(-300, 300),
         pick(0, 5),
         lines ? 0u : pick(0, 3),
         pick(0, 5) == 0,
         pick(0, 3) != 0,
         static_cast<byte>(pick(1, 254)),
         static_cast<byte>(pick(1, 254)),
         !lines && pick(0, 3) == 0};
  // Behind a mask the crossing rows blend single pixels in the weight form and
  // keep the alpha byte: translucent colours are left to the mask's own tests.
  f.color = random_color(random, mode.alpha && !f.mask ? alphas[pick(0, 2)] : 255);
  f.contrast_color = random_color(random, 255);
  return f;
}

void expect_clip_result(Renderer_Harness& test, Renderer_Harness& ref, const Images& before,
                        const std::vector<bool>& loose, const std::string& what) {
  for (int i = 0, x = kX, y = kY; i < kW * kH; ++i, x = x_of(i), y = y_of(i)) {
    const bool in = inside(kClip, x, y);
    if (in && loose[i]) continue;
    ASSERT_EQ(test.pixel(x, y), in ? ref.pixel(x, y) : before.color[i])
        << what << " colour at " << x << "," << y;
    if (test.mode().depth()) {
      ASSERT_EQ(test.depth(x, y), in ? ref.depth(x, y) : before.depth[i])
          << what << " depth at " << x << "," << y;
    }
  }
}

TEST_P(Differential, StripsThroughTheClipPathAgreeWithTheInsideFillers) {
  const Mode_Case mode = GetParam();
  auto test = make_harness(mode), ref = make_harness(mode);
  Renderer_Harness scratch(kAllModes[2], kW, kH, {kX, kY});
  std::mt19937 random(20261123);
  auto pick = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); };
  int crossing_sides = 0, far_strips = 0, loose_pixels = 0;
  for (int n = 0; n < 160; ++n) {
    Face face = random_face(mode, random, false);
    Strip strip;
    const bool flat_depth = pick(0, 2) == 0, far = n % 4 == 3;
    const int z = pick(4000, 60000);
    const int count = pick(3, 8);
    strip.holds_window = n % 8 == 7;
    if (strip.holds_window) strip.points = {{-kFar, -kFar, z}, {kFar, -kFar, z}, {0, kFar, z}};
    while (static_cast<int>(strip.points.size()) < count) {
      OT_DCI_Point p = strip_point(random, far, flat_depth ? z : pick(2000, 62000));
      const std::size_t k = strip.points.size();
      // No triangle of zero height: a mapped list whose first triangle has
      // none draws in index 0, and the per-triangle reference would not.
      if (k >= 2 && strip.points[k - 1].y == p.y && strip.points[k - 2].y == p.y) continue;
      strip.points.push_back(p);
      crossing_sides |= outcode(kClip, p);
      far_strips += !in_window(p);
    }
    if (pick(0, 1)) {
      strip.single = pick(0, 2) == 0;
      for (int i = 0; i < count - 2; ++i) {
        // Merge forces the alpha of the first colour of each call only, and
        // the runs start calls anywhere: under merge a list is opaque.
        strip.colors.push_back(strip.single ? face.color
                                            : random_color(random, face.merge() ? 255 : face.color.a));
      }
    }
    face.apply(*test);
    face.apply(*ref);
    test->set_hard_clip(kClip);
    const Images before = prefill(*test, *ref, random, z, 30000);
    std::vector<bool> loose(kW * kH, false);
    for (int t = 0; t + 2 < count; ++t) reference_triangle(*ref, scratch, face, strip, t, loose);
    loose_pixels += static_cast<int>(std::count(loose.begin(), loose.end(), true));

    // The integer form, then the float form with fractions that round to the same points.
    for (const bool floats : {false, true}) {
      std::vector<OT_Point> f;
      for (const OT_DCI_Point& p : strip.points) {
        const float d = pick(0, 2) * 0.25f - 0.25f;
        f.push_back({static_cast<float>(p.x) + d, static_cast<float>(p.y) - d, static_cast<float>(p.z) + d});
      }
      put(*test, before);
      OT_Renderer_Data& r = test->renderer();
      const OT_RGB32* colors = strip.colors.empty() ? nullptr : strip.colors.data();
      if (colors && floats)
        r.draw_2d_colorized_polytriangle(test->rendition(), count, f.data(), colors, strip.single);
      else if (colors)
        r.draw_2di_colorized_polytriangle(test->rendition(), count, strip.points.data(), colors,
                                          strip.single);
      else if (floats)
        test->draw_2d(f);
      else
        test->draw_2di(strip.points);
      expect_clip_result(*test, *ref, before, loose,
                         "strip " + std::to_string(n) + (floats ? " 2d" : " 2di"));
      if (HasFatalFailure()) return;
    }
  }
  EXPECT_EQ(crossing_sides, 15) << "the strips cross every side of the clip";
  EXPECT_GT(far_strips, 20);
  if (mode.depth()) {
    EXPECT_LT(loose_pixels, 160 * 40);
  }
}

// One segment of the reference without its end pixel: a two-point DCI
// polyline writes its end as the final pixel, which the segment itself never
// touches, so that pixel is put back. A segment with an end beyond the window
// is an axis or diagonal line (the generator makes them so), whose pixels are
// those of any part of it: it is cut to its pixels inside the window.
void reference_segment(Renderer_Harness& ref, OT_DCI_Point a, OT_DCI_Point b) {
  if (!in_window(a) || !in_window(b)) {
    const int ux = sign(b.x - a.x), uy = sign(b.y - a.y),
              n = std::max(std::abs(b.x - a.x), std::abs(b.y - a.y));
    int low = 0, high = n - 1;
    auto limit = [&](int start, int u, int size) {
      if (u == 0) {
        if (start < 0 || start >= size) high = -1;
        return;
      }
      low = std::max(low, u > 0 ? -start : start - (size - 1));
      high = std::min(high, u > 0 ? size - 1 - start : start);
    };
    limit(a.x - kX, ux, kW);
    limit(a.y - kY, uy, kH);
    if (low > high) return;
    const OT_DCI_Point first{a.x + low * ux, a.y + low * uy, a.z};
    // The pixel at `high` lies on the window's border unless b is inside.
    if (!(high == n - 1 && in_window(b))) b = {a.x + high * ux, a.y + high * uy, a.z};
    a = first;
    if (a.x == b.x && a.y == b.y) return;
  }
  const std::uint32_t color = ref.pixel(b.x, b.y);
  const std::uint16_t depth = ref.mode().depth() ? ref.depth(b.x, b.y) : 0;
  OT_DCI_Point two[2] = {a, b};
  ref.renderer().draw_dci_polyline(ref.rendition(), 2, two);
  ref.poke(b.x, b.y, color);
  if (ref.mode().depth()) ref.poke_depth(b.x, b.y, depth);
}

// The final pixel of a polyline. Without depth it is the mode's writer (a
// zero-length polyline is nothing but its final pixel). With depth: z as a
// signed number against the stored word, greater skips; otherwise the colour
// (blended in the weight form in the alpha mode) and the low 16 bits of z,
// whatever "ZBuffer Test" and "ZBuffer Write" say.
void reference_final_pixel(Renderer_Harness& ref, const Face& face, const OT_DCI_Point& p) {
  if (!ref.mode().depth()) {
    OT_DCI_Point two[2] = {p, p};
    ref.renderer().draw_dci_polyline(ref.rendition(), 2, two);
    return;
  }
  if (p.z > static_cast<int>(ref.depth(p.x, p.y))) return;
  std::uint32_t v = face.index;
  if (!ref.mode().mapped()) {
    const OT_RGB32 old = OT_RGB32::from_word(ref.pixel(p.x, p.y)), c = face.color;
    const int w = c.a == 255 ? 256 : c.a;
    auto mix = [w](int o, int n) { return static_cast<byte>(o + (((n - o) * w) >> 8)); };
    v = ref.mode().alpha ? OT_RGB32::rgba(mix(old.r, c.r), mix(old.g, c.g), mix(old.b, c.b), 255).word()
                         : c.word();
  }
  ref.poke(p.x, p.y, v);
  ref.poke_depth(p.x, p.y, static_cast<std::uint16_t>(p.z));
}

// The clip path of a polyline as the rules tell it: a last point that alone
// is inside goes first, to the mode's dot; segments in order; the end of each
// inside run gets the final pixel, and a crossing segment after it writes
// that point again.
void reference_polyline(Renderer_Harness& ref, const Face& face, const std::vector<OT_DCI_Point>& p) {
  const int n = static_cast<int>(p.size());
  std::vector<int> code;
  for (const OT_DCI_Point& q : p) code.push_back(outcode(kClip, q));
  if (code[n - 1] == 0 && code[n - 2] != 0) ref.renderer().draw_dci_dot(ref.rendition(), &p[n - 1], nullptr);
  for (int i = 0; i + 1 < n; ++i) {
    reference_segment(ref, p[i], p[i + 1]);
    if (code[i] == 0 && code[i + 1] == 0 && (i + 2 == n || code[i + 2] != 0))
      reference_final_pixel(ref, face, p[i + 1]);
  }
}

// Mostly horizontal, vertical and 45 degree segments, ends often on the
// clip's edges or next to them. A far polyline leaves the window along one
// of the eight directions to beyond the line limits and comes back on the
// same line, so that the cut to the limits is exact.
std::vector<OT_DCI_Point> random_polyline(std::mt19937& random, bool far, int z, bool vary) {
  auto pick = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); };
  auto depth = [&] { return vary ? z + pick(-1500, 1500) : z; };
  std::vector<OT_DCI_Point> out{strip_point(random, false, depth())};
  const std::size_t count = pick(2, 7);
  while (out.size() < count) {
    const OT_DCI_Point a = out.back();
    if (far && pick(0, 2) == 0) {
      static const int kDirections[8][2] = {{1, 0}, {-1, 0}, {0, 1},  {0, -1},
                                            {1, 1}, {1, -1}, {-1, 1}, {-1, -1}};
      const int* d = kDirections[pick(0, 7)];
      out.push_back({a.x + kFar * d[0], a.y + kFar * d[1], a.z});
      if (pick(0, 1)) out.push_back({a.x - kFar * d[0], a.y - kFar * d[1], a.z});
      OT_DCI_Point q;
      do {
        const int j = pick(-60, 60);
        q = {a.x + j * d[0], a.y + j * d[1], a.z};
      } while (!in_window(q));
      out.push_back(q);
      continue;
    }
    OT_DCI_Point b = strip_point(random, false, depth());
    const int kind = pick(0, 3);
    if (kind == 0) b.y = a.y;
    if (kind == 1) b.x = a.x;
    if (kind == 2) b.y = a.y + (pick(0, 1) ? b.x - a.x : a.x - b.x);
    if (!in_window(b)) continue;
    // A clipped segment with dx and dy both negative and steep may sit one
    // column over from its unclipped drawing: the rules except it.
    const int dx = b.x - a.x, dy = b.y - a.y;
    if (dx < 0 && dy < 0 && -dy > -dx && (outcode(kClip, a) | outcode(kClip, b)) != 0) continue;
    out.push_back(b);
  }
  return out;
}

TEST_P(Differential, PolylinesThroughTheClipPathAgreeWithTheUnclippedWalker) {
  const Mode_Case mode = GetParam();
  auto test = make_harness(mode), ref = make_harness(mode);
  std::mt19937 random(5211);
  auto pick = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); };
  const std::vector<bool> none(kW * kH, false);
  int crossing_sides = 0, equal_final = 0;
  for (int n = 0; n < 300; ++n) {
    const Face face = random_face(mode, random, true);
    const bool far = n % 3 == 2;
    const int z = pick(2000, 60000);
    const std::vector<OT_DCI_Point> points = random_polyline(random, far, z, !far && pick(0, 1) == 0);
    for (const OT_DCI_Point& p : points) crossing_sides |= in_window(p) ? outcode(kClip, p) : 0;
    face.apply(*test);
    face.apply(*ref);
    test->set_hard_clip(kClip);
    // Depths next to z: the final pixel meets equal depths a third of the time.
    const Images before = prefill(*test, *ref, random, z, 1);
    const OT_DCI_Point& last = points.back();
    equal_final += mode.depth() && in_window(last) && before.depth[index_of(last.x, last.y)] == last.z;
    reference_polyline(*ref, face, points);
    test->renderer().draw_2di_polyline(test->rendition(), static_cast<int>(points.size()), points.data());
    expect_clip_result(*test, *ref, before, none, "polyline " + std::to_string(n));
    if (HasFatalFailure()) return;
  }
  EXPECT_EQ(crossing_sides, 15) << "the polylines cross every side of the clip";
  if (mode.depth()) {
    EXPECT_GT(equal_final, 20);
  }
}

INSTANTIATE_TEST_SUITE_P(AllModes, Differential, ::testing::ValuesIn(kAllModes), mode_name);

}  // namespace
}  // namespace tarn::testing
