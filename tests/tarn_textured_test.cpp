// Textured triangles: which texel each pixel takes, wrap and outside, the
// writers' arithmetic, the lit filler, the clipped path against the filler,
// and the handles a call takes.
#include <gtest/gtest.h>

#include <functional>
#include <random>

#include "tarn_test_support.h"
#include "textures/textured_triangles.h"

namespace tarn::testing {
namespace {

const Mode_Case kZMappedAlpha{"z_mapped_alpha", 16, OT_Color_System_Mapped, true};
const Mode_Case kTexturedModes[] = {kZMapped, kZMappedAlpha, kZRgb32, kZRgb32Alpha};

using Texel_Of = std::function<std::uint32_t(int column, int row)>;  // row: index into top_rows

// A texel that names its place: red = column, green = row of memory.
std::uint32_t place(int column, int row) {
  return 0xFF000000u | std::uint32_t(column) << 16 | std::uint32_t(row) << 8;
}

struct UV {
  float u, v;
};

class Textured : public Renderer_Harness {
 public:
  Textured(const Mode_Case& mode, int tw = 4, int th = 4, const Texel_Of& texel = place, int width = 64,
           int height = 48)
      : Renderer_Harness(mode, width, height) {
    OT_Shared_Image image(tw, th, OT_Image_Format_RGB32, 0, nullptr, false);
    for (int row = 0; row < th; ++row)
      for (int col = 0; col < tw; ++col)
        reinterpret_cast<std::uint32_t*>(image->top_rows[row])[col] = texel(col, row);
    texture = OT_Texture(new OT_Texture_Data(image));
    rendition().set_material(OT_Material(new OT_Basic_Textured_Material(texture)));
  }

  // Draws through the slot of `form` (0 DCI, 1 2DI, 2 DC, 3 2D).
  void draw(const Points& p, const std::vector<UV>& uv, const std::vector<OT_RGB32>& colors = {},
            int form = 0, const std::vector<OT_Vector>& normals = {}) {
    std::vector<OT_Parameter> params;
    for (const UV& t : uv) params.push_back({t.u, t.v, 0.0f});
    const OT_RGB32* c = colors.empty() ? nullptr : colors.data();
    const OT_Vector* n = normals.empty() ? nullptr : normals.data();
    const int count = int(p.size());
    Software_Z_Buffer& r = renderer();
    const std::vector<OT_Point> f = as_floats(p);
    switch (form) {
      case 0:
        return r.draw_dci_textured_polytriangle(rendition(), count, p.data(), c, params.data(), 1, nullptr,
                                                n);
      case 1:
        return r.draw_2di_textured_polytriangle(rendition(), count, p.data(), c, params.data(), 1, nullptr,
                                                n);
      case 2:
        return r.draw_dc_textured_polytriangle(rendition(), count, f.data(), c, params.data(), 1, nullptr, n);
      default:
        return r.draw_2d_textured_polytriangle(rendition(), count, f.data(), c, params.data(), 1, nullptr, n);
    }
  }
  OT_Texture_Data& record() { return *texture; }

  OT_Texture texture;
};

// The rectangle [0, 8) x [0, 4) with u from u0 at the left to u1 at the
// right, v fixed.
const Points kQuad = rectangle(0, 0, 8, 4, 100);
std::vector<UV> across(float u0, float u1, float v = 0.5f) { return {{u0, v}, {u1, v}, {u0, v}, {u1, v}}; }

// Texel columns of the top row's pixels, from the red byte of `place`.
std::vector<int> columns(const Textured& t, int y = 0, int n = 8) {
  std::vector<int> out;
  for (int x = 0; x < n; ++x)
    out.push_back(t.pixel(x, y) == t.clear_value() ? -1 : int((t.pixel(x, y) >> 16) & 0xFF));
  return out;
}

// u from 0 to 1 over 8 pixels of a 4-texel image: each span starts half a
// texel in and steps half a texel, so the run of each texel begins on an odd
// pixel and the last pixel reaches the column past the image, which repeats.
TEST(TexturedColumns, WorkedStripRepeatsAndWrap0LeavesTheRightHalf) {
  Textured t(kZRgb32);
  t.draw(kQuad, across(0.0f, 1.0f));
  EXPECT_EQ(columns(t), (std::vector<int>{0, 1, 1, 2, 2, 3, 3, 0}));

  // u to 2.0: one texel a pixel, repeating.
  t.clear();
  t.draw(kQuad, across(0.0f, 2.0f));
  EXPECT_EQ(columns(t), (std::vector<int>{0, 1, 2, 3, 0, 1, 2, 3}));

  // wrap_u 0: columns 4..7 lie outside; those pixels keep colour and depth.
  t.clear();
  t.record().wrap_u = 0;
  t.draw(kQuad, across(0.0f, 2.0f));
  EXPECT_EQ(columns(t), (std::vector<int>{0, 1, 2, 3, -1, -1, -1, -1}));
  EXPECT_EQ(t.depth(3, 0), 100);
  EXPECT_EQ(t.depth(4, 0), 0xFFFF);

  // A negative u is outside under wrap 0, and repeats under wrap 2.
  t.clear();
  t.draw(kQuad, across(-1.0f, 0.0f));
  EXPECT_EQ(columns(t), (std::vector<int>(8, -1)));
  t.record().wrap_u = 2;
  t.draw(kQuad, across(-1.0f, 0.0f));
  EXPECT_EQ(columns(t), (std::vector<int>{0, 1, 1, 2, 2, 3, 3, 0}));
}

// v 0 reads the last row in memory, v just below 1 the first.
TEST(TexturedColumns, VRunsUpFromTheLastRow) {
  Textured t(kZRgb32);
  t.draw(kQuad, across(0.0f, 1.0f, 0.0f));
  EXPECT_EQ((t.pixel(2, 1) >> 8) & 0xFF, 3u);
  t.draw(rectangle(0, 0, 8, 4, 50), across(0.0f, 1.0f, 0.99f));
  EXPECT_EQ((t.pixel(2, 1) >> 8) & 0xFF, 0u);
}

// A 6-wide image under repeat is indexed by the mask 5: columns 2 and 3 are
// never read.
TEST(TexturedColumns, NonPowerOfTwoWidthIsMasked) {
  Textured t(kZRgb32, 6, 4);
  t.draw(rectangle(0, 0, 12, 4), {{0.0f, 0.5f}, {2.0f, 0.5f}, {0.0f, 0.5f}, {2.0f, 0.5f}});
  const std::vector<int> got = columns(t, 1, 12);
  EXPECT_EQ(got, (std::vector<int>{0, 1, 0, 1, 4, 5, 4, 5, 0, 1, 0, 1}));
}

// The writers' arithmetic on one texel, hand-worked: white modulation takes
// one step off in 8.8 and none on the wide scale of the RGB32 alpha filler;
// the clipped path of that filler is 8.8 and so blends at alpha 254.
struct Writer_Case {
  const char* name;
  const Mode_Case* mode;
  bool modulate;
  std::uint32_t texel;
  OT_RGB32 color;
  int form;  // 0 DCI, 1 2DI across the clip
  std::uint32_t expected;
  std::uint16_t expected_depth;
};

const Writer_Case kWriterCases[] = {
    {"opaque_modulated_white", &kZRgb32, true, 0xFF804020, OT_RGB32::rgba(255, 255, 255, 255), 0, 0xFF7F3F1F,
     100},
    {"opaque_modulated_half", &kZRgb32, true, 0x40FF8001, OT_RGB32::rgba(128, 64, 255, 255), 0, 0xFF7F2000,
     100},
    {"opaque_texel_keeps_alpha", &kZRgb32, false, 0x40804020, {}, 0, 0x40804020, 100},
    {"alpha_modulated_white_exact", &kZRgb32Alpha, true, 0xFF804020, OT_RGB32::rgba(255, 255, 255, 255), 0,
     0xFF804020, 100},
    // Clipped: 8.8 gives 127, 63, 31 at alpha 254 over black: * 254 / 255.
    {"alpha_modulated_white_clipped", &kZRgb32Alpha, true, 0xFF804020, OT_RGB32::rgba(255, 255, 255, 255), 1,
     0xFF7E3E1E, 100},
    {"alpha_texel_zero_leaves_depth", &kZRgb32Alpha, false, 0x00FFFFFF, {}, 0, 0xFF000000, 0xFFFF},
    {"alpha_texel_zero_clipped_writes_depth", &kZRgb32Alpha, false, 0x00FFFFFF, {}, 1, 0xFF000000, 100},
    // 0x80 over black: 255 * 128 / 255 = 128 on red.
    {"alpha_texel_blends_to_255", &kZRgb32Alpha, false, 0x80FF0000, {}, 0, 0xFF800000, 100},
    {"keyed_texel_zero", &kZMappedAlpha, false, 0x00FFFFFF, {}, 0, 0, 0xFFFF},
};

class Textured_Writer : public ::testing::TestWithParam<Writer_Case> {};

TEST_P(Textured_Writer, OnePixel) {
  const Writer_Case& c = GetParam();
  Textured t(*c.mode, 4, 4, [&](int, int) { return c.texel; });
  t.record().modulate = c.modulate;
  if (c.form == 1) t.set_hard_clip({0, 5, 0, 47});  // the quad crosses x = 5
  t.draw(kQuad, across(0.0f, 1.0f), std::vector<OT_RGB32>(4, c.color), c.form);
  EXPECT_EQ(t.pixel(3, 2), c.expected);
  EXPECT_EQ(t.depth(3, 2), c.expected_depth);
}

INSTANTIATE_TEST_SUITE_P(Writers, Textured_Writer, ::testing::ValuesIn(kWriterCases),
                         [](const auto& info) { return std::string(info.param.name); });

// Spans of one and two pixels in the RGB32 fillers: the second of two takes
// the mean of both ends, and an opaque one of the alpha modulated filler
// stores the left end's depth.
TEST(TexturedNarrow, TwoPixelSpanOfTheAlphaModulatedFillerStoresTheLeftDepth) {
  Textured t(kZRgb32Alpha, 4, 4, [](int, int) { return 0xFFFFFFFFu; });
  t.record().modulate = true;
  // A triangle whose top row is two pixels wide, depth rising to the right.
  const Points tri{{10, 10, 1000}, {12, 10, 3000}, {10, 12, 1000}};
  t.draw(tri, {{0, 0}, {0, 0}, {0, 0}}, std::vector<OT_RGB32>(3, OT_RGB32::rgba(255, 255, 255, 255)));
  EXPECT_EQ(t.pixel(11, 10), 0xFFFFFFFFu);
  EXPECT_EQ(t.depth(10, 10), 1000);
  EXPECT_EQ(t.depth(11, 10), 1000);  // not the mean 2000
  // The same through the opaque filler stores the mean.
  Textured o(kZRgb32, 4, 4, [](int, int) { return 0xFFFFFFFFu; });
  o.record().modulate = true;
  o.draw(tri, {{0, 0}, {0, 0}, {0, 0}}, std::vector<OT_RGB32>(3, OT_RGB32::rgba(255, 255, 255, 255)));
  EXPECT_EQ(o.depth(11, 10), 2000);
  EXPECT_EQ(o.pixel(11, 10), 0xFFFEFEFEu);
}

// The clipped path lands on the filler's texels and depths. The mapped
// fillers have no narrow spans, so their pictures match exactly; the RGB32
// ones take a mean in their two-pixel spans, which the clipped path doesn't
// have, so there a few pixels of each scene may differ. Texels of alpha 0
// write depth on the clipped path only, so the RGB32 alpha texture has none.
struct Clip_Case {
  const Mode_Case* mode;
  bool modulate;
};
const Clip_Case kClipCases[] = {{&kZMapped, false},     {&kZMapped, true}, {&kZMappedAlpha, false},
                                {&kZMappedAlpha, true}, {&kZRgb32, false}, {&kZRgb32, true},
                                {&kZRgb32Alpha, false}};

class Textured_Clip : public ::testing::TestWithParam<Clip_Case> {};

TEST_P(Textured_Clip, ClippedStripsMatchTheFillerInsideTheClip) {
  const Clip_Case& c = GetParam();
  const bool exact = c.mode->mapped();
  const Texel_Of texel = [&](int col, int row) -> std::uint32_t {
    const std::uint32_t alpha = (row * 7 + col) % 5 != 0 ? 0xFFu : c.mode->alpha && !exact ? 0x80u : 0u;
    return alpha << 24 | (((col * 37 + row * 91) * 0x010307u) & 0xFFFFFF);
  };
  std::mt19937 random(12345);
  std::uniform_int_distribution<int> coord(0, 63), depth(0, 4000), byte_value(0, 255);
  std::uniform_real_distribution<float> param(0.0f, 3.0f);
  const OT_Int_Rectangle clip{9, 50, 7, 40};
  int differing = 0, drawn = 0;
  for (int scene = 0; scene < 30; ++scene) {
    Points points;
    std::vector<UV> uv;
    std::vector<OT_RGB32> colors;
    for (int i = 0; i < 6; ++i) {
      points.push_back({coord(random), coord(random) * 3 / 4, depth(random)});
      uv.push_back({param(random), param(random)});
      colors.push_back(OT_RGB32::rgba(byte_value(random), byte_value(random), byte_value(random), 255));
    }
    Textured whole(*c.mode, 8, 8, texel), clipped(*c.mode, 8, 8, texel);
    whole.record().modulate = clipped.record().modulate = c.modulate;
    whole.draw(points, uv, colors, 0);
    clipped.set_hard_clip(clip);
    clipped.draw(points, uv, colors, 1);
    for (int y = 0; y < 48; ++y)
      for (int x = 0; x < 64; ++x) {
        const bool inside = x >= clip.left && x <= clip.right && y >= clip.bottom && y <= clip.top;
        if (!inside) {
          ASSERT_EQ(clipped.pixel(x, y), clipped.clear_value()) << scene << " at " << x << "," << y;
          continue;
        }
        drawn += whole.pixel(x, y) != whole.clear_value();
        if (!exact) {
          differing += clipped.pixel(x, y) != whole.pixel(x, y);
          continue;
        }
        ASSERT_EQ(clipped.pixel(x, y), whole.pixel(x, y)) << scene << " at " << x << "," << y;
        ASSERT_EQ(clipped.depth(x, y), whole.depth(x, y)) << scene << " at " << x << "," << y;
      }
  }
  EXPECT_GT(drawn, 10000);
  EXPECT_LT(differing, drawn / 50) << differing << " of " << drawn;
}

INSTANTIATE_TEST_SUITE_P(Modes, Textured_Clip, ::testing::ValuesIn(kClipCases), [](const auto& info) {
  return std::string(info.param.mode->name) + (info.param.modulate ? "_modulated" : "");
});

// A patterned triangle draws its pattern inside; across the clip it is solid.
TEST(TexturedPattern, CrossingTrianglesIgnoreThePattern) {
  Textured t(kZRgb32);
  set_face_pattern(t.rendition(), 0);  // nothing, without contrast
  t.draw(kQuad, across(0.0f, 1.0f), {}, 1);
  EXPECT_TRUE(t.drawn().empty());
  t.set_hard_clip({0, 5, 0, 47});
  t.draw(kQuad, across(0.0f, 1.0f), {}, 1);
  EXPECT_EQ(t.drawn(), rows_of({{0, {0, 5}}, {1, {0, 5}}, {2, {0, 5}}, {3, {0, 5}}}));
}

// The lit filler of the mapped opaque mode: no light leaves black, and a
// light beyond full is held to the cube's top level in each channel.
TEST(TexturedLit, DiffuseLightScalesAndIsHeldToTheCube) {
  Textured t(kZMapped, 4, 4, [](int, int) { return 0xFFFFFFFFu; });
  OT_Lighting lighting;
  t.rendition().writable_colors()->lighting = &lighting;
  const std::vector<OT_Vector> normals(4, OT_Vector{0.0f, 0.0f, -1.0f});
  const OT_Color_Cube& cube = t.renderer().cube;
  t.draw(kQuad, across(0.0f, 1.0f), {}, 0, normals);
  EXPECT_EQ(t.pixel(3, 2), cube.base);
  lighting.ambient_red = lighting.ambient_green = lighting.ambient_blue = 4.0f;
  t.draw(rectangle(0, 0, 8, 4, 50), across(0.0f, 1.0f), {}, 0, normals);
  const std::uint32_t white =
      (cube.red_scale * cube.red_step + cube.green_scale * cube.green_step + cube.blue_scale + cube.base) &
      0xFF;
  EXPECT_EQ(t.pixel(3, 2), white);
  // Shading 3 keeps the lit call with the host. The host's light adds a
  // specular highlight that the filler leaves out, so under a light straight
  // at the surface the two differ, and with shading 3 the picture is the
  // host routine's own.
  lighting.ambient_red = lighting.ambient_green = lighting.ambient_blue = 0.0f;
  lighting.lights = {{{0.0f, 0.0f, -1.0f}, 0.25f, 0.25f, 0.25f}};
  Textured host(kZMapped, 4, 4, [](int, int) { return 0xFFFFFFFFu; });
  host.rendition().writable_colors()->lighting = &lighting;
  const Points quad = rectangle(0, 0, 8, 4, 20);
  std::vector<OT_Parameter> params;
  for (const UV& uv : across(0.0f, 1.0f)) params.push_back({uv.u, uv.v, 0.0f});
  OB_Standard_Draw_DCI_Textured_Polytriangle(&host.renderer(), host.rendition(), 4, quad.data(), nullptr,
                                             params.data(), 1, nullptr, normals.data());
  t.draw(quad, across(0.0f, 1.0f), {}, 0, normals);
  EXPECT_NE(t.pixel(3, 2), host.pixel(3, 2));
  t.rendition().writable_raster()->shading = 3;
  t.draw(rectangle(0, 0, 8, 4, 10), across(0.0f, 1.0f), {}, 0, normals);
  EXPECT_EQ(t.pixel(3, 2), host.pixel(3, 2));
}

// A light of a quarter along the normal, no ambient: the host gives diffuse
// 0.25 on white and specular 0.25 on black. On scale 5, D = 1275 * 0.25
// truncated = 318 (8.8: 81536) and S = 318.75, 318 on the span. A white
// texel: (255 * 81536 + 318) >> 8 = 81218; a texel of 128: (128 * 81536 +
// 318) >> 8 = 40769. Each channel is that plus the dither, shifted right 16.
TEST(TexturedLit, DiffuseAndSpecularTermsOfAQuarterLight) {
  Textured t(kZMapped, 4, 4, [](int col, int) { return col < 2 ? 0xFFFFFFFFu : 0xFF808080u; });
  const OT_Color_Cube& cube = t.renderer().cube;
  ASSERT_EQ(cube.red_scale, 5);
  ASSERT_EQ(cube.green_scale, 5);
  ASSERT_EQ(cube.blue_scale, 5);
  OT_Lighting lighting;
  lighting.lights.push_back({{0.0f, 0.0f, -1.0f}, 0.25f, 0.25f, 0.25f});
  t.rendition().writable_colors()->lighting = &lighting;
  t.draw(kQuad, across(0.0f, 1.0f), {}, 0, std::vector<OT_Vector>(4, OT_Vector{0.0f, 0.0f, -1.0f}));
  for (int y = 0; y < 4; ++y)
    for (int x = 1; x <= 6; ++x) {
      const std::uint16_t d =
          SHARED.dither[(y & 7) * 8 + (reinterpret_cast<std::uintptr_t>(t.address(x, y)) & 7)];
      const std::uint32_t q = ((x <= 2 ? 81218u : 40769u) + d) >> 16;
      EXPECT_EQ(t.pixel(x, y), (cube.base + q * (cube.red_step + cube.green_step + 1)) & 255u)
          << x << "," << y;
    }
}

// Every path gives back the handles it took.
TEST(TexturedHandles, EveryPathReleasesWhatItTook) {
  Textured t(kZMapped);
  OT_Lighting lighting;
  const std::vector<OT_Vector> normals(4, OT_Vector{0.0f, 0.0f, -1.0f});
  const std::int64_t objects = OB_Live_Objects();
  const std::uint32_t texture_count = t.texture->count;
  const std::uint32_t image_count = t.texture->texels->count;
  t.draw(kQuad, across(0, 1));  // filler
  t.draw(kQuad, across(0, 1), {}, 1);
  t.set_hard_clip({0, 5, 0, 47});
  t.draw(kQuad, across(0, 1), {}, 3);  // clipped path, float form
  t.rendition().writable_colors()->lighting = &lighting;
  t.draw(kQuad, across(0, 1), {}, 2, normals);  // lit, float form
  t.record().wrap_u = 1;
  t.draw(kQuad, across(0, 1));  // host
  {
    // An image without rows has no texel to read: the host's.
    const OT_Shared_Image texels = t.record().texels;
    t.record().texels = OT_Shared_Image(4, 0, OT_Image_Format_RGB32, 0, nullptr, false);
    t.record().wrap_u = 2;
    t.rendition().writable_colors()->lighting = nullptr;
    t.draw(kQuad, across(0, 1));
    t.record().texels = texels;
  }
  EXPECT_EQ(t.texture->count, texture_count);
  EXPECT_EQ(t.texture->texels->count, image_count);
  EXPECT_EQ(OB_Live_Objects(), objects);
}

}  // namespace
}  // namespace tarn::testing
