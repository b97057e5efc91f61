// Flat and single-colour triangle strips of the depth-buffered modes.
#pragma once

#include "host/ombra.h"

namespace tarn {

void z_mapped_dci_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                               const OT_DCI_Point* points);
void z_mapped_dc_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                              const OT_Point* points);
void z_rgb32_dci_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                              const OT_DCI_Point* points);
void z_rgb32_dc_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                             const OT_Point* points);
void z_rgb32_alpha_dci_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                    const OT_DCI_Point* points);
void z_rgb32_alpha_dc_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                   const OT_Point* points);

void z_rgb32_dci_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                        const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color);
void z_rgb32_dc_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                       const OT_Point* points, const OT_RGB32* colors, bool single_color);
void z_rgb32_alpha_dci_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                              const OT_DCI_Point* points, const OT_RGB32* colors,
                                              bool single_color);
void z_rgb32_alpha_dc_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                             const OT_Point* points, const OT_RGB32* colors, bool single_color);

}  // namespace tarn
