// Dots (one pixel at a trusted integer point, optional colour of its own) and
// one-pixel polymarkers (clipped to the hard clip, the rendition's colour).
#pragma once

#include "host/ombra.h"

namespace tarn {

void mapped_dci_dot(OT_Renderer_Data* object, const OT_Rendition& rendition, const OT_DCI_Point* point,
                    const OT_RGB32* color);
void z_mapped_dci_dot(OT_Renderer_Data* object, const OT_Rendition& rendition, const OT_DCI_Point* point,
                      const OT_RGB32* color);
void rgb32_dci_dot(OT_Renderer_Data* object, const OT_Rendition& rendition, const OT_DCI_Point* point,
                   const OT_RGB32* color);
void rgb32_alpha_dci_dot(OT_Renderer_Data* object, const OT_Rendition& rendition, const OT_DCI_Point* point,
                         const OT_RGB32* color);
void z_rgb32_dci_dot(OT_Renderer_Data* object, const OT_Rendition& rendition, const OT_DCI_Point* point,
                     const OT_RGB32* color);
void z_rgb32_alpha_dci_dot(OT_Renderer_Data* object, const OT_Rendition& rendition, const OT_DCI_Point* point,
                           const OT_RGB32* color);

void mapped_2di_polymarker(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                           const OT_DCI_Point* points);
void rgb32_2di_polymarker(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                          const OT_DCI_Point* points);
void rgb32_alpha_2di_polymarker(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                const OT_DCI_Point* points);
void z_rgb32_2di_polymarker(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                            const OT_DCI_Point* points);
void z_rgb32_alpha_2di_polymarker(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                  const OT_DCI_Point* points);

}  // namespace tarn
