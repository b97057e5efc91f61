// The lit filler: per triangle the material's light at the three points,
// diffuse on a white surface and specular on a black one, multiplies and
// adds to the texel. The light is asked of the host through two renditions
// derived from the caller's, made at the first triangle walked.
#include <algorithm>

#include "textures/textured_fill.h"
#include "textures/textured_triangles.h"
#include "triangles/strip_modes.h"

namespace tarn {
namespace {

// A point with its diffuse values (whole numbers, on the cube's scale) and
// specular values (floats).
struct Lit_Vertex : Textured_Vertex {
  std::int32_t diffuse[3];
  float specular[3];
};

// p = (T * D + S) >> 8 plus the dither, read as a signed level and held to
// the cube's scale.
struct Lit_Writer {
  using Pixel = byte;
  using Vertex = Lit_Vertex;
  using Channels = Channels_8_8;
  using Clipped = Lit_Writer;
  static constexpr bool kNarrow = false;
  static constexpr bool kDepthFirst = false;
  static constexpr int kChannels = 3;
  static constexpr int kFloatChannels = 3;

  const OT_Color_Cube* cube;
  std::int32_t scale[3];
  byte contrast_index;

  static std::int32_t channel_value(const Vertex& v, int k) { return v.diffuse[k]; }
  static float float_value(const Vertex& v, int k) { return v.specular[k]; }

  template <int>
  Wrote write(byte* p, std::uint32_t t, const std::int32_t* c, std::int32_t row) const {
    const std::int32_t d = dither_threshold(row, p);
    std::int32_t q[3];
    for (int k = 0; k < 3; ++k) {
      const std::int32_t level =
          static_cast<std::int32_t>(texel_channel(t, k) * static_cast<std::uint32_t>(c[k]) +
                                    static_cast<std::uint32_t>(c[3 + k])) >>
          8;
      q[k] = std::clamp<std::int32_t>(static_cast<std::int16_t>((level + d) >> 16), 0, scale[k]);
    }
    *p = static_cast<byte>(q[0] * static_cast<std::int32_t>(cube->red_step) +
                           q[1] * static_cast<std::int32_t>(cube->green_step) + q[2] + cube->base);
    return Wrote::opaque;
  }
  void contrast(byte* p) const { *p = contrast_index; }
};

// The two renditions that the material is asked through, made once a call.
class Light_Renditions {
 public:
  explicit Light_Renditions(const OT_Rendition& rendition) : rendition_(rendition) {}

  // The diffuse light at the three normals, then the specular light.
  void shade(const OT_Vector* const normal[3], float diffuse[3][3], float specular[3][3]) {
    if (!diffuse_) make();
    for (int j = 0; j < 3; ++j)
      diffuse_->colors->material->shade(diffuse[j], diffuse_, normal[j], nullptr, nullptr, nullptr, 1,
                                        nullptr);
    for (int j = 0; j < 3; ++j)
      specular_->colors->material->shade(specular[j], specular_, normal[j], nullptr, nullptr, nullptr, 1,
                                         nullptr);
  }

 private:
  // A fresh material, in the specular rendition as constructed and in the
  // diffuse one with its specular colour zeroed.
  void make() {
    OT_Material material(new OT_Basic_Material);
    diffuse_ = rendition_;
    specular_ = rendition_;
    diffuse_.set_color(OT_RGB32::rgba(255, 255, 255, 255), false);
    specular_.set_color(OT_RGB32::rgba(0, 0, 0, 255), false);
    specular_.set_material(material);
    auto* basic = static_cast<OT_Basic_Material*>(material.get());
    if (basic && (basic->specular[0] != 0.0f || basic->specular[1] != 0.0f || basic->specular[2] != 0.0f)) {
      basic = static_cast<OT_Basic_Material*>(make_unique(material));
      basic->specular[0] = basic->specular[1] = basic->specular[2] = 0.0f;
    }
    diffuse_.set_material(material);
  }

  const OT_Rendition& rendition_;
  OT_Rendition diffuse_;
  OT_Rendition specular_;
};

}  // namespace

void fill_textured_mapped_lit(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                              const OT_DCI_Point* points, const OT_RGB32* colors, const OT_Parameter* params,
                              int param_width, const OT_Vector* normals) {
  if (count < 3) return;
  const Texture_Hold hold(rendition);
  if (!hold.drawable()) return;
  const Software_Z_Buffer& r = renderer_of(object);
  const Texture_Lookup lookup(*hold.texture, hold.image);
  const Textured_Call call{r, rendition, count, points, nullptr, params, param_width, lookup};
  // Colours are read only when the texture modulates.
  const OT_RGB32* modulating = hold.texture->modulate ? colors : nullptr;
  const Lit_Writer writer{&r.cube,
                          {r.cube.red_scale, r.cube.green_scale, r.cube.blue_scale},
                          static_cast<byte>(rendition->colors->contrast_index)};
  Light_Renditions lights(rendition);

  with_textured_filler(r, rendition, writer, lookup, [&](const auto& filler) {
    auto vertex = [&](int i) {
      Lit_Vertex v{textured_vertex(lookup, points + i, nullptr, call.param(i)), {}, {}};
      v.color = modulating ? modulating[i] : OT_RGB32{};
      return v;
    };
    Lit_Vertex t = vertex(0), m = vertex(1);
    const float white[3] = {float(r.cube.red_scale) * 255.0f, float(r.cube.green_scale) * 255.0f,
                            float(r.cube.blue_scale) * 255.0f};
    for (int i = 2; i < count; ++i) {
      Lit_Vertex vs[3] = {t, m, vertex(i)};
      const int index[3] = {i - 2, i - 1, i};
      t = m;
      m = vs[2];
      // The walk's own order, T, M, B, by its stable sort: the light is
      // asked only of a triangle that is walked, in that order.
      int o[3] = {0, 1, 2};
      if (vs[o[0]].point->y > vs[o[1]].point->y) std::swap(o[0], o[1]);
      if (vs[o[1]].point->y > vs[o[2]].point->y) std::swap(o[1], o[2]);
      if (vs[o[0]].point->y > vs[o[1]].point->y) std::swap(o[0], o[1]);
      if (wrap_sub(vs[o[2]].point->y, vs[o[0]].point->y) < 1) continue;
      // Diffuse D, whole, and specular S, float, at T, M and B.
      const OT_Vector* const normal[3] = {normals + index[o[0]], normals + index[o[1]],
                                          normals + index[o[2]]};
      float diffuse[3][3], specular[3][3];
      lights.shade(normal, diffuse, specular);
      for (int j = 0; j < 3; ++j) {
        Lit_Vertex& v = vs[o[j]];
        for (int k = 0; k < 3; ++k) {
          const float base =
              modulating ? static_cast<float>(color_channel(v.color, k) * writer.scale[k]) : white[k];
          v.diffuse[k] = truncate_to_int32(base * diffuse[j][k]);
          v.specular[k] = white[k] * specular[j][k];
        }
      }
      walk_triangle(filler, vs[0], vs[1], vs[2], r.origin_x, r.origin_y);
    }
  });
}

}  // namespace tarn
