// How a textured call reaches its texels: the texture record and image held
// for the call, the masks of a power-of-two image, and the texel coordinates
// of the points.
#pragma once

#include <cstdint>

#include "host/ombra.h"
#include "pixel/rounding.h"

namespace tarn {

// The material's texture and its image, held for one call. Either may be
// null: a material without a texture, a texture without an image.
struct Texture_Hold {
  OT_Texture texture;
  OT_Shared_Image image;

  explicit Texture_Hold(const OT_Rendition& rendition) {
    const OT_Material& material = rendition->colors->material;
    if (!material) return;
    material->texture(&texture);
    if (texture) texture->image(&image);
  }
  bool drawable() const { return image && image->width > 0 && image->height > 0 && image->top_rows; }
};

// The texel addressing of one image. The masks take the sizes to be powers
// of two; another size is indexed by the masks all the same.
struct Texture_Lookup {
  OT_Shared_Image image;
  std::int32_t width, height;
  std::uint32_t u_mask, v_mask;
  std::uint32_t u_outside, v_outside;  // 0 under repeat

  Texture_Lookup(const OT_Texture_Data& texture, const OT_Shared_Image& texels)
      : image(texels),
        width(texels->width),
        height(texels->height),
        u_mask(static_cast<std::uint32_t>(width) - 1u),
        v_mask(static_cast<std::uint32_t>(height) - 1u),
        u_outside(texture.wrap_u == 2 ? 0u : ~u_mask),
        v_outside(texture.wrap_v == 2 ? 0u : ~v_mask) {}

  // The texel at tu, tv (upper halves of the u and v accumulators), or
  // nothing when either lies outside an image that does not repeat. v runs
  // up from the last row in memory.
  bool outside(std::uint32_t tu, std::uint32_t tv) const { return (tu & u_outside) | (tv & v_outside); }
  std::uint32_t texel(std::uint32_t tu, std::uint32_t tv) const {
    return reinterpret_cast<const std::uint32_t*>(image->top_rows[v_mask - (tv & v_mask)])[tu & u_mask];
  }
};

// A parameter as a texel coordinate: scaled by the image's size in 32-bit
// float and truncated. 1.0 addresses the column past the last.
inline std::int32_t texel_coordinate(std::int32_t size, float parameter) {
  return truncate_to_int32(static_cast<float>(size) * parameter);
}

}  // namespace tarn
