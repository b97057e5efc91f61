// Materials, textures and lights: what a rendition's colours section points
// to when a surface is more than one colour.
#pragma once

#include <vector>

#include "host/ot_base.h"
#include "host/ot_image.h"

class OT_Rendition;

// A texture: one image of OT_RGB32 texels (0xAARRGGBB words), how it repeats
// and whether the point colours modulate it.
class OMBRA_API OT_Texture_Data : public OT_Clonable<OT_Texture_Data> {
 public:
  OT_Texture_Data() = default;
  explicit OT_Texture_Data(const OT_Shared_Image& texels) : texels(texels) {}

  // Stores a counted handle of the image into *out (null when there is none).
  virtual void image(OT_Shared_Image* out) const;

  OT_Shared_Image texels;
  std::int32_t wrap_u = 2;  // 2 repeats, 0 draws nothing outside the image
  std::int32_t wrap_v = 2;
  byte host_only = 0;
  byte modulate = 0;
};

class OMBRA_API OT_Texture : public OT_Handle<OT_Texture_Data> {
 public:
  OT_Texture() = default;
  explicit OT_Texture(OT_Texture_Data* data) : OT_Handle(data) {}
};

// A directional light in device space: `direction` points from the surface
// towards the light.
struct OT_Light {
  OT_Vector direction;
  float red, green, blue;
};

// The lights of a scene; a rendition points to it while it is lit. The
// owner keeps it alive as long as a rendition points to it.
struct OMBRA_API OT_Lighting {
  float ambient_red = 0.0f, ambient_green = 0.0f, ambient_blue = 0.0f;
  std::vector<OT_Light> lights;
};

// Material of a rendition. type_code() points to a 32-bit code; code 7 is the
// halo material, whose record continues with the halo fields.
class OMBRA_API OT_Material_Data : public OT_Clonable<OT_Material_Data> {
 public:
  virtual const std::int32_t* type_code() const { return &code; }
  // Stores a counted handle of the material's texture into *out; null for a
  // material without one.
  virtual void texture(OT_Texture* out) const;
  // The light that reaches a surface of this material with the given normal,
  // as red, green, blue into out[0..2], for the rendition's colour and
  // lighting. The five trailing arguments are the host's own; renderers
  // pass null, null, null, 1, null.
  virtual void shade(float* out, const OT_Rendition& rendition, const OT_Vector* normal, const void*,
                     const void*, const void*, int, const void*) const;

  std::int32_t code = 0;
  std::int32_t halo_weight = 0;
  OT_RGB32 halo_color{0, 0, 0, 255};
  OT_RGB32 halo_inner_color{0, 0, 0, 255};
};

class OMBRA_API OT_Material : public OT_Handle<OT_Material_Data> {
 public:
  OT_Material() = default;
  explicit OT_Material(OT_Material_Data* data) : OT_Handle(data) {}
};

// A lit material: ambient and diffuse light scale the rendition's colour,
// specular light adds `specular` raised by `shininess`.
class OMBRA_API OT_Basic_Material : public OT_Clonable<OT_Basic_Material, OT_Material_Data> {
 public:
  OT_Basic_Material() = default;
  void shade(float* out, const OT_Rendition& rendition, const OT_Vector* normal, const void*, const void*,
             const void*, int, const void*) const override;

  float specular[3] = {1.0f, 1.0f, 1.0f};
  float shininess = 16.0f;
};

// A lit material with a texture.
class OMBRA_API OT_Basic_Textured_Material
    : public OT_Clonable<OT_Basic_Textured_Material, OT_Basic_Material> {
 public:
  OT_Basic_Textured_Material() = default;
  explicit OT_Basic_Textured_Material(const OT_Texture& texture) : texture_record(texture) {}
  void texture(OT_Texture* out) const override;

  OT_Texture texture_record;
};
