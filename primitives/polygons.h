// Polygons: the same in every mode. A triangle goes as it stands, a convex
// polygon as one strip, anything else through the host's triangulator, to
// the mode's polytriangle actions.
#pragma once

#include "frame/software_z_buffer.h"

namespace tarn {

void common_2d_polygon(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                       const OT_Point* points, const OT_RGB32* color);
void common_dc_polygon(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                       const OT_Point* points, const OT_RGB32* color);
void common_2di_polygon(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                        const OT_DCI_Point* points, const OT_RGB32* color);
void common_dci_polygon(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                        const OT_DCI_Point* points, const OT_RGB32* color);

}  // namespace tarn
