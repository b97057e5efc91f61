// Each Gouraud action is its family's template for its mode and form.
#include "triangles/gouraud_triangles.h"

#include "triangles/strip_entry.h"

namespace tarn {

void mapped_2d_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                    const OT_Point* points, const OT_RGB32* colors) {
  gouraud_strip<Mapped, Form_2D>(object, rendition, count, points, colors);
}
void mapped_dc_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                    const OT_Point* points, const OT_RGB32* colors) {
  gouraud_strip<Mapped, Form_DC>(object, rendition, count, points, colors);
}
void mapped_2di_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                     const OT_DCI_Point* points, const OT_RGB32* colors) {
  gouraud_strip<Mapped, Form_2DI>(object, rendition, count, points, colors);
}
void mapped_dci_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                     const OT_DCI_Point* points, const OT_RGB32* colors) {
  gouraud_strip<Mapped, Form_DCI>(object, rendition, count, points, colors);
}

void rgb32_2d_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                   const OT_Point* points, const OT_RGB32* colors) {
  gouraud_strip<Rgb32, Form_2D>(object, rendition, count, points, colors);
}
void rgb32_dc_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                   const OT_Point* points, const OT_RGB32* colors) {
  gouraud_strip<Rgb32, Form_DC>(object, rendition, count, points, colors);
}
void rgb32_2di_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                    const OT_DCI_Point* points, const OT_RGB32* colors) {
  gouraud_strip<Rgb32, Form_2DI>(object, rendition, count, points, colors);
}
void rgb32_dci_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                    const OT_DCI_Point* points, const OT_RGB32* colors) {
  gouraud_strip<Rgb32, Form_DCI>(object, rendition, count, points, colors);
}

void rgb32_alpha_2d_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                         const OT_Point* points, const OT_RGB32* colors) {
  gouraud_strip<Rgb32_Alpha, Form_2D>(object, rendition, count, points, colors);
}
void rgb32_alpha_dc_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                         const OT_Point* points, const OT_RGB32* colors) {
  gouraud_strip<Rgb32_Alpha, Form_DC>(object, rendition, count, points, colors);
}
void rgb32_alpha_2di_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                          const OT_DCI_Point* points, const OT_RGB32* colors) {
  gouraud_strip<Rgb32_Alpha, Form_2DI>(object, rendition, count, points, colors);
}
void rgb32_alpha_dci_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                          const OT_DCI_Point* points, const OT_RGB32* colors) {
  gouraud_strip<Rgb32_Alpha, Form_DCI>(object, rendition, count, points, colors);
}

void z_mapped_2d_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                      const OT_Point* points, const OT_RGB32* colors) {
  gouraud_strip<Z_Mapped, Form_2D>(object, rendition, count, points, colors);
}
void z_mapped_dc_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                      const OT_Point* points, const OT_RGB32* colors) {
  gouraud_strip<Z_Mapped, Form_DC>(object, rendition, count, points, colors);
}
void z_mapped_2di_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                       const OT_DCI_Point* points, const OT_RGB32* colors) {
  gouraud_strip<Z_Mapped, Form_2DI>(object, rendition, count, points, colors);
}
void z_mapped_dci_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                       const OT_DCI_Point* points, const OT_RGB32* colors) {
  gouraud_strip<Z_Mapped, Form_DCI>(object, rendition, count, points, colors);
}

void z_rgb32_2d_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                     const OT_Point* points, const OT_RGB32* colors) {
  gouraud_strip<Z_Rgb32, Form_2D>(object, rendition, count, points, colors);
}
void z_rgb32_dc_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                     const OT_Point* points, const OT_RGB32* colors) {
  gouraud_strip<Z_Rgb32, Form_DC>(object, rendition, count, points, colors);
}
void z_rgb32_2di_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                      const OT_DCI_Point* points, const OT_RGB32* colors) {
  gouraud_strip<Z_Rgb32, Form_2DI>(object, rendition, count, points, colors);
}
void z_rgb32_dci_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                      const OT_DCI_Point* points, const OT_RGB32* colors) {
  gouraud_strip<Z_Rgb32, Form_DCI>(object, rendition, count, points, colors);
}

void z_rgb32_alpha_2d_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                           const OT_Point* points, const OT_RGB32* colors) {
  gouraud_strip<Z_Rgb32_Alpha, Form_2D>(object, rendition, count, points, colors);
}
void z_rgb32_alpha_dc_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                           const OT_Point* points, const OT_RGB32* colors) {
  gouraud_strip<Z_Rgb32_Alpha, Form_DC>(object, rendition, count, points, colors);
}
void z_rgb32_alpha_2di_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition,
                                            int count, const OT_DCI_Point* points, const OT_RGB32* colors) {
  gouraud_strip<Z_Rgb32_Alpha, Form_2DI>(object, rendition, count, points, colors);
}
void z_rgb32_alpha_dci_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition,
                                            int count, const OT_DCI_Point* points, const OT_RGB32* colors) {
  gouraud_strip<Z_Rgb32_Alpha, Form_DCI>(object, rendition, count, points, colors);
}

}  // namespace tarn
