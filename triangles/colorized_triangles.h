// Colorized strips of the mapped modes: colours given with the call, dithered
// into the cube.
#pragma once

#include "host/ombra.h"

namespace tarn {

void mapped_dci_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                       const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color);
void mapped_dc_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                      const OT_Point* points, const OT_RGB32* colors, bool single_color);
void z_mapped_dci_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                         const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color);
void z_mapped_dc_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                        const OT_Point* points, const OT_RGB32* colors, bool single_color);

}  // namespace tarn
