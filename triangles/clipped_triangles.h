// The 2D and 2DI triangle strips of every mode: points anywhere, clipped to
// the hard clip on the way to the fillers.
#pragma once

#include "host/ombra.h"

namespace tarn {

void mapped_2di_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
    const OT_DCI_Point* points);
void mapped_2di_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition,
    int count, const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color);
void mapped_2d_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
    const OT_Point* points);
void mapped_2d_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition,
    int count, const OT_Point* points, const OT_RGB32* colors, bool single_color);

void rgb32_2di_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
    const OT_DCI_Point* points);
void rgb32_2di_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition,
    int count, const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color);
void rgb32_2d_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
    const OT_Point* points);
void rgb32_2d_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition,
    int count, const OT_Point* points, const OT_RGB32* colors, bool single_color);

void rgb32_alpha_2di_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
    const OT_DCI_Point* points);
void rgb32_alpha_2di_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition,
    int count, const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color);
void rgb32_alpha_2d_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
    const OT_Point* points);
void rgb32_alpha_2d_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition,
    int count, const OT_Point* points, const OT_RGB32* colors, bool single_color);

void z_mapped_2di_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
    const OT_DCI_Point* points);
void z_mapped_2di_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition,
    int count, const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color);
void z_mapped_2d_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
    const OT_Point* points);
void z_mapped_2d_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition,
    int count, const OT_Point* points, const OT_RGB32* colors, bool single_color);

void z_rgb32_2di_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
    const OT_DCI_Point* points);
void z_rgb32_2di_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition,
    int count, const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color);
void z_rgb32_2d_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
    const OT_Point* points);
void z_rgb32_2d_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition,
    int count, const OT_Point* points, const OT_RGB32* colors, bool single_color);

void z_rgb32_alpha_2di_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
    const OT_DCI_Point* points);
void z_rgb32_alpha_2di_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition,
    int count, const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color);
void z_rgb32_alpha_2d_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
    const OT_Point* points);
void z_rgb32_alpha_2d_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition,
    int count, const OT_Point* points, const OT_RGB32* colors, bool single_color);

}  // namespace tarn
