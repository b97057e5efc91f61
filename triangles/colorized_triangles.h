// The colorized triangle strips of every mode and form: one colour a
// triangle from `colors`, or colors[0] for all when `single_color`. In the
// RGB32 modes they are the fillers behind the flat strips too.
#pragma once

#include "host/ombra.h"

namespace tarn {

void mapped_2d_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                      const OT_Point* points, const OT_RGB32* colors, bool single_color);
void mapped_dc_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                      const OT_Point* points, const OT_RGB32* colors, bool single_color);
void mapped_2di_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                       const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color);
void mapped_dci_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                       const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color);

void rgb32_2d_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                     const OT_Point* points, const OT_RGB32* colors, bool single_color);
void rgb32_dc_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                     const OT_Point* points, const OT_RGB32* colors, bool single_color);
void rgb32_2di_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                      const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color);
void rgb32_dci_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                      const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color);

void rgb32_alpha_2d_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                           const OT_Point* points, const OT_RGB32* colors, bool single_color);
void rgb32_alpha_dc_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                           const OT_Point* points, const OT_RGB32* colors, bool single_color);
void rgb32_alpha_2di_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition,
                                            int count, const OT_DCI_Point* points, const OT_RGB32* colors,
                                            bool single_color);
void rgb32_alpha_dci_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition,
                                            int count, const OT_DCI_Point* points, const OT_RGB32* colors,
                                            bool single_color);

void z_mapped_2d_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                        const OT_Point* points, const OT_RGB32* colors, bool single_color);
void z_mapped_dc_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                        const OT_Point* points, const OT_RGB32* colors, bool single_color);
void z_mapped_2di_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                         const OT_DCI_Point* points, const OT_RGB32* colors,
                                         bool single_color);
void z_mapped_dci_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                         const OT_DCI_Point* points, const OT_RGB32* colors,
                                         bool single_color);

void z_rgb32_2d_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                       const OT_Point* points, const OT_RGB32* colors, bool single_color);
void z_rgb32_dc_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                       const OT_Point* points, const OT_RGB32* colors, bool single_color);
void z_rgb32_2di_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                        const OT_DCI_Point* points, const OT_RGB32* colors,
                                        bool single_color);
void z_rgb32_dci_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                        const OT_DCI_Point* points, const OT_RGB32* colors,
                                        bool single_color);

void z_rgb32_alpha_2d_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition,
                                             int count, const OT_Point* points, const OT_RGB32* colors,
                                             bool single_color);
void z_rgb32_alpha_dc_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition,
                                             int count, const OT_Point* points, const OT_RGB32* colors,
                                             bool single_color);
void z_rgb32_alpha_2di_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition,
                                              int count, const OT_DCI_Point* points, const OT_RGB32* colors,
                                              bool single_color);
void z_rgb32_alpha_dci_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition,
                                              int count, const OT_DCI_Point* points, const OT_RGB32* colors,
                                              bool single_color);
}  // namespace tarn
