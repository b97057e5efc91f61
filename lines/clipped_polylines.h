// The 2DI thin polylines of every mode: points anywhere, clipped to the hard
// clip on the way to the walker; one template by mode.
#pragma once

#include "frame/software_z_buffer.h"

namespace tarn {

// Functions rather than aliases: the strip outline names z_rgb32_2di_polyline
// by its signature without including this layer.
void mapped_2di_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                         const OT_DCI_Point* points);
void z_mapped_2di_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                           const OT_DCI_Point* points);
void rgb32_2di_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                        const OT_DCI_Point* points);
void rgb32_alpha_2di_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                              const OT_DCI_Point* points);
void z_rgb32_2di_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                          const OT_DCI_Point* points);
void z_rgb32_alpha_2di_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                const OT_DCI_Point* points);

}  // namespace tarn
