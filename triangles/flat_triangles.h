// The flat triangle strips of every mode and form: the rendition's colour.
// The mapped modes fill them themselves; the RGB32 modes hand them to the
// colorized family with one colour (triangles/strip_entry.h).
#pragma once

#include "host/ombra.h"

namespace tarn {

void mapped_2d_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                            const OT_Point* points);
void mapped_dc_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                            const OT_Point* points);
void mapped_2di_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                             const OT_DCI_Point* points);
void mapped_dci_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                             const OT_DCI_Point* points);

void rgb32_2d_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                           const OT_Point* points);
void rgb32_dc_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                           const OT_Point* points);
void rgb32_2di_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                            const OT_DCI_Point* points);
void rgb32_dci_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                            const OT_DCI_Point* points);

void rgb32_alpha_2d_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                 const OT_Point* points);
void rgb32_alpha_dc_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                 const OT_Point* points);
void rgb32_alpha_2di_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                  const OT_DCI_Point* points);
void rgb32_alpha_dci_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                  const OT_DCI_Point* points);

void z_mapped_2d_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                              const OT_Point* points);
void z_mapped_dc_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                              const OT_Point* points);
void z_mapped_2di_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                               const OT_DCI_Point* points);
void z_mapped_dci_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                               const OT_DCI_Point* points);

void z_rgb32_2d_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                             const OT_Point* points);
void z_rgb32_dc_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                             const OT_Point* points);
void z_rgb32_2di_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                              const OT_DCI_Point* points);
void z_rgb32_dci_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                              const OT_DCI_Point* points);

void z_rgb32_alpha_2d_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                   const OT_Point* points);
void z_rgb32_alpha_dc_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                   const OT_Point* points);
void z_rgb32_alpha_2di_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                    const OT_DCI_Point* points);
void z_rgb32_alpha_dci_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                    const OT_DCI_Point* points);
}  // namespace tarn
