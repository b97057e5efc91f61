// The textured triangle actions of the depth modes, and the fillers behind
// them.
#pragma once

#include "frame/software_z_buffer.h"

namespace tarn {

#define TARN_TEXTURED_ACTION(prefix, form, Point)                                                           \
  void prefix##_##form##_textured_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition,     \
                                               int count, const Point* points, const OT_RGB32* colors,      \
                                               const OT_Parameter* params, int param_width, const float* w, \
                                               const OT_Vector* normals);
#define TARN_TEXTURED_ACTIONS(prefix)             \
  TARN_TEXTURED_ACTION(prefix, 2d, OT_Point)      \
  TARN_TEXTURED_ACTION(prefix, dc, OT_Point)      \
  TARN_TEXTURED_ACTION(prefix, 2di, OT_DCI_Point) \
  TARN_TEXTURED_ACTION(prefix, dci, OT_DCI_Point)

TARN_TEXTURED_ACTIONS(z_mapped)
TARN_TEXTURED_ACTIONS(z_mapped_alpha)
TARN_TEXTURED_ACTIONS(z_rgb32)
TARN_TEXTURED_ACTIONS(z_rgb32_alpha)
#undef TARN_TEXTURED_ACTIONS
#undef TARN_TEXTURED_ACTION

// The fillers: a strip of points inside the drawing area, its texture taken
// from the rendition's material. Those without "modulated" in their name
// read no colours.
#define TARN_TEXTURED_FILLER(name)                                                                          \
  void name(OT_Renderer_Data* object, const OT_Rendition& rendition, int count, const OT_DCI_Point* points, \
            const OT_RGB32* colors, const OT_Parameter* params, int param_width);
TARN_TEXTURED_FILLER(fill_textured_mapped_modulated)
TARN_TEXTURED_FILLER(fill_textured_mapped)
TARN_TEXTURED_FILLER(fill_textured_mapped_keyed_modulated)
TARN_TEXTURED_FILLER(fill_textured_mapped_keyed)
TARN_TEXTURED_FILLER(fill_textured_rgb32_modulated)
TARN_TEXTURED_FILLER(fill_textured_rgb32)
TARN_TEXTURED_FILLER(fill_textured_rgb32_alpha_modulated)
TARN_TEXTURED_FILLER(fill_textured_rgb32_alpha)
#undef TARN_TEXTURED_FILLER

// The lit filler of the mapped opaque mode: the material's diffuse light
// multiplies each texel and its specular light adds to it, per vertex.
void fill_textured_mapped_lit(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                              const OT_DCI_Point* points, const OT_RGB32* colors, const OT_Parameter* params,
                              int param_width, const OT_Vector* normals);

}  // namespace tarn
