#include "triangles/depth_triangles.h"

#include "frame/software_z_buffer.h"
#include "pixel/entry_tests.h"
#include "pixel/mask.h"
#include "triangles/colorized_triangles.h"
#include "triangles/depth_fill.h"
#include "triangles/flat_triangles.h"
#include "triangles/strip_outline.h"

namespace tarn {
namespace {



}  // namespace

void z_mapped_dci_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                               const OT_DCI_Point* points) {
  if (host_pattern(rendition)) return OB_Standard_Draw_DCI_Polytriangle(object, rendition, count, points);
  if (depth_off(rendition)) return mapped_dci_polytriangle(object, rendition, count, points);
  const Software_Z_Buffer& r = renderer_of(object);
  const Stipple_Flags flags = stipple_flags(rendition);
  const Face_Fill fill = face_fill(rendition->face->pattern, flags);
  if (fill == Face_Fill::nothing) return;
  const Index_Store store{static_cast<byte>(rendition->colors->color_index)};
  with_masking(r, rendition, [&](const auto& wrap) {
    fill_depth_strip<Depth_At_Or_Below, true>(r, rendition, count, points, fill, flags,
                                              [&](int) { return wrap(store); },
                                              wrap(Index_Store{rendition->colors->contrast_index}));
  });
}

void z_mapped_dc_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                              const OT_Point* points) {
  if (host_pattern(rendition)) return OB_Standard_Draw_DC_Polytriangle(object, rendition, count, points);
  if (depth_off(rendition)) return mapped_dc_polytriangle(object, rendition, count, points);
  run_rounded<true>(z_mapped_dci_polytriangle, object, rendition, count, points);
}

void z_rgb32_dci_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                        const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color) {
  if (alpha_path(rendition))
    return z_rgb32_alpha_dci_colorized_polytriangle(object, rendition, count, points, colors, single_color);
  if (outline_asked(rendition)) return draw_strip_outline(object, rendition, count, points);
  if (host_pattern(rendition))
    return OB_Standard_Draw_DCI_Colorized_Polytriangle(object, rendition, count, points, colors, single_color);
  if (depth_off(rendition))
    return rgb32_dci_colorized_polytriangle(object, rendition, count, points, colors, single_color);
  const Software_Z_Buffer& r = renderer_of(object);
  const Stipple_Flags flags = stipple_flags(rendition);
  const Face_Fill fill = face_fill(rendition->face->pattern, flags);
  if (fill == Face_Fill::nothing) return;
  auto store_of = [colors, single_color](int i) { return Word_Store{colors[single_color ? 0 : i].word()}; };
  const Word_Store contrast{rendition->colors->contrast_color.word()};
  if (mask_in_force(r, rendition)) {
    // Behind the mask the test is at or below and depth is always written,
    // whatever the options say.
    const Masking wrap(r);
    fill_depth_strip<Depth_At_Or_Below, true>(r, rendition, count, points, fill, flags,
                                              [&](int i) { return wrap(store_of(i)); }, wrap(contrast));
    return;
  }
  with_depth_test(r.depth_test, [&]<class Test>() {
    fill_depth_strip_writing<Test>(r, rendition, count, points, fill, flags, store_of, contrast);
  });
}

// Always blends, opaque colours too; the mask has no effect here.
void z_rgb32_alpha_dci_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                              const OT_DCI_Point* points, const OT_RGB32* colors,
                                              bool single_color) {
  if (outline_asked(rendition)) return draw_strip_outline(object, rendition, count, points);
  if (host_pattern(rendition))
    return OB_Standard_Draw_DCI_Colorized_Polytriangle(object, rendition, count, points, colors, single_color);
  if (depth_off(rendition))
    return rgb32_alpha_dci_colorized_polytriangle(object, rendition, count, points, colors, single_color);
  const Software_Z_Buffer& r = renderer_of(object);
  const Stipple_Flags flags = stipple_flags(rendition);
  const Face_Fill fill = face_fill(rendition->face->pattern, flags);
  if (fill == Face_Fill::nothing) return;
  auto store_of = [colors, single_color](int i) { return Blend_Exact_Store(colors[single_color ? 0 : i]); };
  const Word_Store contrast{rendition->colors->contrast_color.word()};
  fill_depth_strip_writing<Depth_At_Or_Below>(r, rendition, count, points, fill, flags, store_of, contrast);
}

void z_rgb32_dc_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                       const OT_Point* points, const OT_RGB32* colors, bool single_color) {
  if (alpha_path(rendition))
    return z_rgb32_alpha_dc_colorized_polytriangle(object, rendition, count, points, colors, single_color);
  if (host_pattern(rendition))
    return OB_Standard_Draw_DC_Colorized_Polytriangle(object, rendition, count, points, colors, single_color);
  if (depth_off(rendition))
    return rgb32_dc_colorized_polytriangle(object, rendition, count, points, colors, single_color);
  run_rounded<true>(z_rgb32_dci_colorized_polytriangle, object, rendition, count, points, colors, single_color);
}

void z_rgb32_alpha_dc_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                             const OT_Point* points, const OT_RGB32* colors, bool single_color) {
  if (host_pattern(rendition))
    return OB_Standard_Draw_DC_Colorized_Polytriangle(object, rendition, count, points, colors, single_color);
  if (depth_off(rendition))
    return rgb32_alpha_dc_colorized_polytriangle(object, rendition, count, points, colors, single_color);
  run_rounded<true>(z_rgb32_alpha_dci_colorized_polytriangle, object, rendition, count, points, colors, single_color);
}

void z_rgb32_dci_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                              const OT_DCI_Point* points) {
  const OT_RGB32* color = &rendition->colors->color;
  if (alpha_path(rendition))
    return z_rgb32_alpha_dci_colorized_polytriangle(object, rendition, count, points, color, true);
  z_rgb32_dci_colorized_polytriangle(object, rendition, count, points, color, true);
}

void z_rgb32_alpha_dci_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                    const OT_DCI_Point* points) {
  z_rgb32_alpha_dci_colorized_polytriangle(object, rendition, count, points, &rendition->colors->color, true);
}

void z_rgb32_dc_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                             const OT_Point* points) {
  if (host_pattern(rendition)) return OB_Standard_Draw_DC_Polytriangle(object, rendition, count, points);
  if (depth_off(rendition)) return rgb32_dc_polytriangle(object, rendition, count, points);
  run_rounded<true>(z_rgb32_dci_polytriangle, object, rendition, count, points);
}

void z_rgb32_alpha_dc_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                   const OT_Point* points) {
  if (host_pattern(rendition)) return OB_Standard_Draw_DC_Polytriangle(object, rendition, count, points);
  if (depth_off(rendition)) return rgb32_alpha_dc_polytriangle(object, rendition, count, points);
  run_rounded<true>(z_rgb32_alpha_dci_polytriangle, object, rendition, count, points);
}

}  // namespace tarn
