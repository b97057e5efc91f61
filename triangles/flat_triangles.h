// Flat and single-colour triangle strips of the modes without depth.
#pragma once

#include "host/ombra.h"

namespace tarn {

void mapped_dci_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                             const OT_DCI_Point* points);
void mapped_dc_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                            const OT_Point* points);

void rgb32_dci_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                            const OT_DCI_Point* points);
void rgb32_dc_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                           const OT_Point* points);
void rgb32_alpha_dci_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                  const OT_DCI_Point* points);
void rgb32_alpha_dc_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                 const OT_Point* points);

// The two RGB32 fillers: one colour a triangle from `colors`, or colors[0]
// for all when `single_color`.
void rgb32_dci_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                      const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color);
void rgb32_dc_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                     const OT_Point* points, const OT_RGB32* colors, bool single_color);
void rgb32_alpha_dci_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                            const OT_DCI_Point* points, const OT_RGB32* colors,
                                            bool single_color);
void rgb32_alpha_dc_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                           const OT_Point* points, const OT_RGB32* colors, bool single_color);

}  // namespace tarn
