// Materials, textures and the host's light model.
#include <algorithm>
#include <cmath>

#include "host/ot_material.h"
#include "host/ot_rendition.h"

void OT_Texture_Data::image(OT_Shared_Image* out) const { *out = texels; }

void OT_Material_Data::texture(OT_Texture* out) const { out->reset(); }

// A plain material is unlit: the surface shows the rendition's colour.
void OT_Material_Data::shade(float* out, const OT_Rendition& rendition, const OT_Vector*, const void*,
                             const void*, const void*, int, const void*) const {
  const OT_RGB32 c = rendition->colors->color;
  out[0] = float(c.r) / 255.0f;
  out[1] = float(c.g) / 255.0f;
  out[2] = float(c.b) / 255.0f;
}

namespace {

float dot(const OT_Vector& a, const OT_Vector& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

OT_Vector unit(OT_Vector v) {
  const float length = std::sqrt(dot(v, v));
  if (length > 0.0f) v = {v.x / length, v.y / length, v.z / length};
  return v;
}

}  // namespace

// Ambient and diffuse light scale the surface colour; each light adds a
// specular highlight by the half-way vector. Smaller depths are nearer, so
// the viewer looks along +z from the -z side.
void OT_Basic_Material::shade(float* out, const OT_Rendition& rendition, const OT_Vector* normal, const void*,
                              const void*, const void*, int, const void*) const {
  const OT_Rendition_Colors& colors = *rendition->colors;
  const float surface[3] = {colors.color.r / 255.0f, colors.color.g / 255.0f, colors.color.b / 255.0f};
  const OT_Lighting* lighting = colors.lighting;
  if (!lighting) {
    std::copy(surface, surface + 3, out);
    return;
  }
  float diffuse[3] = {lighting->ambient_red, lighting->ambient_green, lighting->ambient_blue};
  float highlight[3] = {0.0f, 0.0f, 0.0f};
  if (normal) {
    const OT_Vector n = unit(*normal);
    const OT_Vector eye{0.0f, 0.0f, -1.0f};
    for (const OT_Light& light : lighting->lights) {
      const OT_Vector l = unit(light.direction);
      const float facing = dot(n, l);
      if (facing <= 0.0f) continue;
      const float colour[3] = {light.red, light.green, light.blue};
      const float shine =
          std::pow(std::max(0.0f, dot(n, unit({l.x + eye.x, l.y + eye.y, l.z + eye.z}))), shininess);
      for (int c = 0; c < 3; ++c) {
        diffuse[c] += colour[c] * facing;
        highlight[c] += colour[c] * shine;
      }
    }
  }
  // Bright light may exceed 1; the renderer holds each channel to full.
  for (int c = 0; c < 3; ++c) out[c] = std::max(0.0f, surface[c] * diffuse[c] + specular[c] * highlight[c]);
}

void OT_Basic_Textured_Material::texture(OT_Texture* out) const { *out = texture_record; }
