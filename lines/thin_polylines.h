// Thin one-colour polylines at trusted integer points, in every mode.
#pragma once

#include "frame/software_z_buffer.h"

namespace tarn {

void mapped_dci_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                         const OT_DCI_Point* points);
void z_mapped_dci_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                           const OT_DCI_Point* points);
void rgb32_dci_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                        const OT_DCI_Point* points);
void rgb32_alpha_dci_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                              const OT_DCI_Point* points);
void z_rgb32_dci_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                          const OT_DCI_Point* points);
void z_rgb32_alpha_dci_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                const OT_DCI_Point* points);

// The RGB32 walkers: one colour a segment, or colors[0] for all.
void rgb32_dci_colorized_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                  const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color);
void rgb32_alpha_dci_colorized_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                        const OT_DCI_Point* points, const OT_RGB32* colors,
                                        bool single_color);
void z_rgb32_dci_colorized_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                    const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color);
void z_rgb32_alpha_dci_colorized_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                          const OT_DCI_Point* points, const OT_RGB32* colors,
                                          bool single_color);

}  // namespace tarn
