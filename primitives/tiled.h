// Tiled actions: double-precision primitives of a picture far larger than the
// window, the window being one tile of it. Each brings its primitive into the
// integer range (with the host's preclip routines where it crosses the tiled
// limits), makes it window-relative, and hands it to the 2DI action of the
// same kind with a window origin of (0, 0) and a window-relative hard clip.
#pragma once

#include "frame/software_z_buffer.h"

namespace tarn {

void tiled_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                        const OT_Point_D* points);
void tiled_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                  const OT_Point_D* points, const OT_RGB32* colors, bool single);
void tiled_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                const OT_Point_D* points, const OT_RGB32* colors);
void tiled_textured_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                 const OT_Point_D* points, const OT_RGB32* colors, const OT_Parameter* params,
                                 int param_width, const float* w_values, const OT_Vector* normals);
void tiled_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                    const OT_Point_D* points);
void tiled_colorized_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                              const OT_Point_D* points, const OT_RGB32* colors, bool single);
void tiled_gouraud_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                            const OT_Point_D* points, const OT_RGB32* colors);

}  // namespace tarn
