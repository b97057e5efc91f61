#include "primitives/dots.h"

#include "pixel/blend.h"
#include "pixel/dither.h"
#include "pixel/mask.h"
#include "pixel/merge.h"

namespace tarn {
namespace {

struct Pixel_At {
  byte* color;
  std::int32_t row;
};

Pixel_At color_pixel(const Software_Z_Buffer& r, const OT_DCI_Point& p, int size) {
  const std::int32_t row = p.y - r.origin_y;
  return {r.color_image->device_rows[row] + (p.x - r.origin_x) * size, row};
}

std::uint16_t* depth_pixel_at(const Software_Z_Buffer& r, const OT_DCI_Point& p) {
  return reinterpret_cast<std::uint16_t*>(r.depth_image->device_rows[p.y - r.origin_y]) + (p.x - r.origin_x);
}

// A dot compares its z as a full signed 32-bit number with the stored word.
bool dot_depth_passes(std::int32_t z, std::uint16_t stored, std::int32_t test) {
  if (test == 1) return z < stored;
  if (test == 5) return z > stored;
  return z <= stored;
}

// The mask hides a pixel of the forms without depth.
bool masked_away(const Software_Z_Buffer& r, const OT_Rendition& rendition, const OT_DCI_Point& p) {
  return mask_in_force(r, rendition) && masked_bit(*r.mask_cache->head, p.x - r.origin_x, p.y - r.origin_y);
}

byte dithered(const Software_Z_Buffer& r, OT_RGB32 color, const Pixel_At& at) {
  return dither_pick(dither_thresholds(r.cube, color), dither_threshold(at.row, at.color));
}

bool inside_clip(const OT_Int_Rectangle& clip, const OT_DCI_Point& p) {
  return p.x >= clip.left && p.x <= clip.right && p.y >= clip.bottom && p.y <= clip.top;
}

// The RGB32 pixel of a dot or marker without depth.
template <bool kAlpha>
void rgb32_pixel(const Software_Z_Buffer& r, bool merge, const OT_DCI_Point& p, OT_RGB32 color) {
  auto* pixel = reinterpret_cast<std::uint32_t*>(color_pixel(r, p, 4).color);
  if (merge)
    merge_rgb32(r, pixel, color.word());
  else if constexpr (kAlpha)
    *pixel = blend_weight(*pixel, color);
  else
    *pixel = color.word();
}

// Depth test and write by the options, then the colour.
template <bool kAlpha>
void z_rgb32_pixel(const Software_Z_Buffer& r, const OT_DCI_Point& p, OT_RGB32 color) {
  std::uint16_t* z = depth_pixel_at(r, p);
  if (!dot_depth_passes(p.z, *z, r.depth_test)) return;
  if (r.depth_write) *z = static_cast<std::uint16_t>(p.z);
  auto* pixel = reinterpret_cast<std::uint32_t*>(color_pixel(r, p, 4).color);
  *pixel = kAlpha ? blend_weight(*pixel, color) : color.word();
}

bool host_marker(const OT_Rendition& rendition) { return rendition->marker->symbol != 0; }

// Markers are clipped point by point to the hard clip; colour, merge and the
// clip are taken once before the loop, the mask is asked per point.
template <bool kAlpha>
void rgb32_markers(const Software_Z_Buffer& r, const OT_Rendition& rendition, int count,
                   const OT_DCI_Point* points) {
  const OT_Int_Rectangle clip = rendition->device->hard_clip;
  const OT_RGB32 color = rendition->colors->color;
  const bool merge = merge_on(r, rendition);
  for (int i = 0; i < count; ++i)
    if (inside_clip(clip, points[i]) && !masked_away(r, rendition, points[i]))
      rgb32_pixel<kAlpha>(r, merge, points[i], color);
}

// The depth forms know neither the mask nor merge.
template <bool kAlpha>
void z_rgb32_markers(const Software_Z_Buffer& r, const OT_Rendition& rendition, int count,
                     const OT_DCI_Point* points) {
  const OT_Int_Rectangle clip = rendition->device->hard_clip;
  const OT_RGB32 color = rendition->colors->color;
  for (int i = 0; i < count; ++i)
    if (inside_clip(clip, points[i])) z_rgb32_pixel<kAlpha>(r, points[i], color);
}

}  // namespace

// A given colour is dithered and never merges; merge sees only color_index.
void mapped_dci_dot(OT_Renderer_Data* object, const OT_Rendition& rendition, const OT_DCI_Point* point,
                    const OT_RGB32* color) {
  const Software_Z_Buffer& r = renderer_of(object);
  const Pixel_At at = color_pixel(r, *point, 1);
  if (color) {
    const byte index = dithered(r, *color, at);
    if (masked_away(r, rendition, *point)) return;
    *at.color = index;
    return;
  }
  if (masked_away(r, rendition, *point)) return;
  const byte index = static_cast<byte>(rendition->colors->color_index);
  if (merge_on(r, rendition))
    merge_mapped(r, at.color, index);
  else
    *at.color = index;
}

// Knows neither the mask nor merge nor the depth options.
void z_mapped_dci_dot(OT_Renderer_Data* object, const OT_Rendition& rendition, const OT_DCI_Point* point,
                      const OT_RGB32* color) {
  if (rendition->device->depth_enabled == 0) return mapped_dci_dot(object, rendition, point, color);
  const Software_Z_Buffer& r = renderer_of(object);
  std::uint16_t* z = depth_pixel_at(r, *point);
  if (point->z > static_cast<std::int32_t>(*z)) return;
  *z = static_cast<std::uint16_t>(point->z);
  const Pixel_At at = color_pixel(r, *point, 1);
  *at.color = color ? dithered(r, *color, at) : static_cast<byte>(rendition->colors->color_index);
}

void rgb32_dci_dot(OT_Renderer_Data* object, const OT_Rendition& rendition, const OT_DCI_Point* point,
                   const OT_RGB32* color) {
  const Software_Z_Buffer& r = renderer_of(object);
  if (masked_away(r, rendition, *point)) return;
  rgb32_pixel<false>(r, merge_on(r, rendition), *point, color ? *color : rendition->colors->color);
}

// Every alpha goes through the weight form, 0 and 255 included.
void rgb32_alpha_dci_dot(OT_Renderer_Data* object, const OT_Rendition& rendition, const OT_DCI_Point* point,
                         const OT_RGB32* color) {
  const Software_Z_Buffer& r = renderer_of(object);
  if (masked_away(r, rendition, *point)) return;
  rgb32_pixel<true>(r, merge_on(r, rendition), *point, color ? *color : rendition->colors->color);
}

void z_rgb32_dci_dot(OT_Renderer_Data* object, const OT_Rendition& rendition, const OT_DCI_Point* point,
                     const OT_RGB32* color) {
  if (rendition->device->depth_enabled == 0) return rgb32_dci_dot(object, rendition, point, color);
  z_rgb32_pixel<false>(renderer_of(object), *point, color ? *color : rendition->colors->color);
}

void z_rgb32_alpha_dci_dot(OT_Renderer_Data* object, const OT_Rendition& rendition, const OT_DCI_Point* point,
                           const OT_RGB32* color) {
  if (rendition->device->depth_enabled == 0) return rgb32_alpha_dci_dot(object, rendition, point, color);
  z_rgb32_pixel<true>(renderer_of(object), *point, color ? *color : rendition->colors->color);
}

// ---- Markers: clipped point by point to the hard clip -------------------------

void mapped_2di_polymarker(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                           const OT_DCI_Point* points) {
  if (host_marker(rendition)) return OB_Standard_Draw_2DI_Polymarker(object, rendition, count, points);
  const Software_Z_Buffer& r = renderer_of(object);
  const OT_Int_Rectangle clip = rendition->device->hard_clip;
  const byte index = static_cast<byte>(rendition->colors->color_index);
  const bool merge = merge_on(r, rendition);
  for (int i = 0; i < count; ++i) {
    if (!inside_clip(clip, points[i]) || masked_away(r, rendition, points[i])) continue;
    byte* pixel = color_pixel(r, points[i], 1).color;
    if (merge)
      merge_mapped(r, pixel, index);
    else
      *pixel = index;
  }
}

void rgb32_2di_polymarker(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                          const OT_DCI_Point* points) {
  if (host_marker(rendition)) return OB_Standard_Draw_2DI_Polymarker(object, rendition, count, points);
  rgb32_markers<false>(renderer_of(object), rendition, count, points);
}

void rgb32_alpha_2di_polymarker(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                const OT_DCI_Point* points) {
  if (rendition->colors->color.a > 254) return rgb32_2di_polymarker(object, rendition, count, points);
  if (host_marker(rendition)) return OB_Standard_Draw_2DI_Polymarker(object, rendition, count, points);
  rgb32_markers<true>(renderer_of(object), rendition, count, points);
}

void z_rgb32_2di_polymarker(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                            const OT_DCI_Point* points) {
  if (rendition->device->depth_enabled == 0) return rgb32_2di_polymarker(object, rendition, count, points);
  if (host_marker(rendition)) return OB_Standard_Draw_2DI_Polymarker(object, rendition, count, points);
  z_rgb32_markers<false>(renderer_of(object), rendition, count, points);
}

// The test for an opaque colour comes before the one of depth_enabled.
void z_rgb32_alpha_2di_polymarker(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                  const OT_DCI_Point* points) {
  if (rendition->colors->color.a == 255) return z_rgb32_2di_polymarker(object, rendition, count, points);
  if (rendition->device->depth_enabled == 0)
    return rgb32_alpha_2di_polymarker(object, rendition, count, points);
  if (host_marker(rendition)) return OB_Standard_Draw_2DI_Polymarker(object, rendition, count, points);
  z_rgb32_markers<true>(renderer_of(object), rendition, count, points);
}

}  // namespace tarn
