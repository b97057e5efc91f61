#include "triangles/flat_triangles.h"

#include "frame/software_z_buffer.h"
#include "pixel/rounding.h"
#include "triangles/solid_fill.h"

namespace tarn {
namespace {

// Face patterns above this are the host's to draw.
constexpr std::int32_t kLastRendererPattern = 74;

bool host_pattern(const OT_Rendition& rendition) { return rendition->face->pattern > kLastRendererPattern; }

// The float forms: x and y rounded into the call's frame (or the heap beyond
// 64 points), then the integer form. z is never read without depth.
template <class... Rest>
void run_rounded_xy(void (*integer_form)(OT_Renderer_Data*, const OT_Rendition&, int, const OT_DCI_Point*, Rest...),
                    OT_Renderer_Data* object, const OT_Rendition& rendition, int count, const OT_Point* points,
                    Rest... rest) {
  Point_Buffer buffer(count);
  round_points_xy(points, count, buffer.data());
  integer_form(object, rendition, count, buffer.data(), rest...);
}

// One RGB32 filler: each triangle in its colour.
void fill_rgb32_strip(Software_Z_Buffer& r, int count, const OT_DCI_Point* points, const OT_RGB32* colors,
                      bool single_color) {
  Solid_Span_Filler<Word_Store> filler{r.color_image->device_rows, {colors[0].word()}};
  for (int i = 0; i + 2 < count; ++i) {
    if (!single_color) filler.store.value = colors[i].word();
    walk_triangle(filler, {&points[i]}, {&points[i + 1]}, {&points[i + 2]}, r.origin_x, r.origin_y);
  }
}

}  // namespace

void mapped_dci_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                             const OT_DCI_Point* points) {
  if (host_pattern(rendition)) return OB_Standard_Draw_DCI_Polytriangle(object, rendition, count, points);
  Software_Z_Buffer& r = renderer_of(object);
  Solid_Span_Filler<Index_Store> filler{r.color_image->device_rows, {static_cast<byte>(rendition->colors->color_index)}};
  walk_strip(filler, count, points, r.origin_x, r.origin_y);
}

void mapped_dc_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                            const OT_Point* points) {
  if (host_pattern(rendition)) return OB_Standard_Draw_DC_Polytriangle(object, rendition, count, points);
  run_rounded_xy(mapped_dci_polytriangle, object, rendition, count, points);
}

void rgb32_dci_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                      const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color) {
  if (host_pattern(rendition))
    return OB_Standard_Draw_DCI_Colorized_Polytriangle(object, rendition, count, points, colors, single_color);
  fill_rgb32_strip(renderer_of(object), count, points, colors, single_color);
}

void rgb32_alpha_dci_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                            const OT_DCI_Point* points, const OT_RGB32* colors,
                                            bool single_color) {
  if (host_pattern(rendition))
    return OB_Standard_Draw_DCI_Colorized_Polytriangle(object, rendition, count, points, colors, single_color);
  fill_rgb32_strip(renderer_of(object), count, points, colors, single_color);
}

void rgb32_dc_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                     const OT_Point* points, const OT_RGB32* colors, bool single_color) {
  if (host_pattern(rendition))
    return OB_Standard_Draw_DC_Colorized_Polytriangle(object, rendition, count, points, colors, single_color);
  run_rounded_xy(rgb32_dci_colorized_polytriangle, object, rendition, count, points, colors, single_color);
}

void rgb32_alpha_dc_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                           const OT_Point* points, const OT_RGB32* colors, bool single_color) {
  if (host_pattern(rendition))
    return OB_Standard_Draw_DC_Colorized_Polytriangle(object, rendition, count, points, colors, single_color);
  run_rounded_xy(rgb32_alpha_dci_colorized_polytriangle, object, rendition, count, points, colors, single_color);
}

// In the RGB32 modes a flat strip is the filler with one colour.
void rgb32_dci_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                            const OT_DCI_Point* points) {
  rgb32_dci_colorized_polytriangle(object, rendition, count, points, &rendition->colors->color, true);
}

void rgb32_alpha_dci_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                  const OT_DCI_Point* points) {
  rgb32_alpha_dci_colorized_polytriangle(object, rendition, count, points, &rendition->colors->color, true);
}

void rgb32_dc_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                           const OT_Point* points) {
  if (host_pattern(rendition)) return OB_Standard_Draw_DC_Polytriangle(object, rendition, count, points);
  run_rounded_xy(rgb32_dci_polytriangle, object, rendition, count, points);
}

void rgb32_alpha_dc_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                 const OT_Point* points) {
  if (host_pattern(rendition)) return OB_Standard_Draw_DC_Polytriangle(object, rendition, count, points);
  run_rounded_xy(rgb32_alpha_dci_polytriangle, object, rendition, count, points);
}

}  // namespace tarn
