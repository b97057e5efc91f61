// The Gouraud triangle strips of every mode and form: one colour a point,
// interpolated over each triangle.
#pragma once

#include "host/ombra.h"

namespace tarn {

void mapped_2d_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                    const OT_Point* points, const OT_RGB32* colors);
void mapped_dc_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                    const OT_Point* points, const OT_RGB32* colors);
void mapped_2di_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                     const OT_DCI_Point* points, const OT_RGB32* colors);
void mapped_dci_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                     const OT_DCI_Point* points, const OT_RGB32* colors);

void rgb32_2d_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                   const OT_Point* points, const OT_RGB32* colors);
void rgb32_dc_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                   const OT_Point* points, const OT_RGB32* colors);
void rgb32_2di_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                    const OT_DCI_Point* points, const OT_RGB32* colors);
void rgb32_dci_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                    const OT_DCI_Point* points, const OT_RGB32* colors);

void rgb32_alpha_2d_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                         const OT_Point* points, const OT_RGB32* colors);
void rgb32_alpha_dc_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                         const OT_Point* points, const OT_RGB32* colors);
void rgb32_alpha_2di_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                          const OT_DCI_Point* points, const OT_RGB32* colors);
void rgb32_alpha_dci_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                          const OT_DCI_Point* points, const OT_RGB32* colors);

void z_mapped_2d_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                      const OT_Point* points, const OT_RGB32* colors);
void z_mapped_dc_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                      const OT_Point* points, const OT_RGB32* colors);
void z_mapped_2di_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                       const OT_DCI_Point* points, const OT_RGB32* colors);
void z_mapped_dci_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                       const OT_DCI_Point* points, const OT_RGB32* colors);

void z_rgb32_2d_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                     const OT_Point* points, const OT_RGB32* colors);
void z_rgb32_dc_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                     const OT_Point* points, const OT_RGB32* colors);
void z_rgb32_2di_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                      const OT_DCI_Point* points, const OT_RGB32* colors);
void z_rgb32_dci_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                      const OT_DCI_Point* points, const OT_RGB32* colors);

void z_rgb32_alpha_2d_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                           const OT_Point* points, const OT_RGB32* colors);
void z_rgb32_alpha_dc_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                           const OT_Point* points, const OT_RGB32* colors);
void z_rgb32_alpha_2di_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition,
                                            int count, const OT_DCI_Point* points, const OT_RGB32* colors);
void z_rgb32_alpha_dci_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition,
                                            int count, const OT_DCI_Point* points, const OT_RGB32* colors);

}  // namespace tarn
