// The Gouraud polylines of every mode: one colour a point, interpolated
// along each segment; at trusted points (DCI) and anywhere (2DI).
#pragma once

#include "frame/software_z_buffer.h"

namespace tarn {

void mapped_dci_gouraud_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                 const OT_DCI_Point* points, const OT_RGB32* colors);
void z_mapped_dci_gouraud_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                   const OT_DCI_Point* points, const OT_RGB32* colors);
void rgb32_dci_gouraud_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                const OT_DCI_Point* points, const OT_RGB32* colors);
void rgb32_alpha_dci_gouraud_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                      const OT_DCI_Point* points, const OT_RGB32* colors);
void z_rgb32_dci_gouraud_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                  const OT_DCI_Point* points, const OT_RGB32* colors);
void z_rgb32_alpha_dci_gouraud_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                        const OT_DCI_Point* points, const OT_RGB32* colors);

void mapped_2di_gouraud_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                 const OT_DCI_Point* points, const OT_RGB32* colors);
void z_mapped_2di_gouraud_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                   const OT_DCI_Point* points, const OT_RGB32* colors);
void rgb32_2di_gouraud_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                const OT_DCI_Point* points, const OT_RGB32* colors);
void rgb32_alpha_2di_gouraud_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                      const OT_DCI_Point* points, const OT_RGB32* colors);
void z_rgb32_2di_gouraud_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                  const OT_DCI_Point* points, const OT_RGB32* colors);
void z_rgb32_alpha_2di_gouraud_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                        const OT_DCI_Point* points, const OT_RGB32* colors);

}  // namespace tarn
