// The 2DI thin polylines of every mode, flat and colorized: points anywhere,
// clipped to the hard clip on the way to the walker; one template by mode.
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

// One colour a segment, or colors[0] for all.
void mapped_2di_colorized_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                   const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color);
void z_mapped_2di_colorized_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                     const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color);
void rgb32_2di_colorized_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                  const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color);
void rgb32_alpha_2di_colorized_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                        const OT_DCI_Point* points, const OT_RGB32* colors,
                                        bool single_color);
void z_rgb32_2di_colorized_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                    const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color);
void z_rgb32_alpha_2di_colorized_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                          const OT_DCI_Point* points, const OT_RGB32* colors,
                                          bool single_color);

}  // namespace tarn
