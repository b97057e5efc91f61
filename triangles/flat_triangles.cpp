// Each flat action is its family's template for its mode and form.
#include "triangles/flat_triangles.h"

#include "triangles/strip_entry.h"

namespace tarn {

void mapped_2d_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                            const OT_Point* points) {
  flat_strip<Mapped, Form_2D>(object, rendition, count, points);
}
void mapped_dc_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                            const OT_Point* points) {
  flat_strip<Mapped, Form_DC>(object, rendition, count, points);
}
void mapped_2di_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                             const OT_DCI_Point* points) {
  flat_strip<Mapped, Form_2DI>(object, rendition, count, points);
}
void mapped_dci_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                             const OT_DCI_Point* points) {
  flat_strip<Mapped, Form_DCI>(object, rendition, count, points);
}

void rgb32_2d_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                           const OT_Point* points) {
  flat_strip<Rgb32, Form_2D>(object, rendition, count, points);
}
void rgb32_dc_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                           const OT_Point* points) {
  flat_strip<Rgb32, Form_DC>(object, rendition, count, points);
}
void rgb32_2di_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                            const OT_DCI_Point* points) {
  flat_strip<Rgb32, Form_2DI>(object, rendition, count, points);
}
void rgb32_dci_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                            const OT_DCI_Point* points) {
  flat_strip<Rgb32, Form_DCI>(object, rendition, count, points);
}

void rgb32_alpha_2d_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                 const OT_Point* points) {
  flat_strip<Rgb32_Alpha, Form_2D>(object, rendition, count, points);
}
void rgb32_alpha_dc_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                 const OT_Point* points) {
  flat_strip<Rgb32_Alpha, Form_DC>(object, rendition, count, points);
}
void rgb32_alpha_2di_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                  const OT_DCI_Point* points) {
  flat_strip<Rgb32_Alpha, Form_2DI>(object, rendition, count, points);
}
void rgb32_alpha_dci_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                  const OT_DCI_Point* points) {
  flat_strip<Rgb32_Alpha, Form_DCI>(object, rendition, count, points);
}

void z_mapped_2d_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                              const OT_Point* points) {
  flat_strip<Z_Mapped, Form_2D>(object, rendition, count, points);
}
void z_mapped_dc_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                              const OT_Point* points) {
  flat_strip<Z_Mapped, Form_DC>(object, rendition, count, points);
}
void z_mapped_2di_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                               const OT_DCI_Point* points) {
  flat_strip<Z_Mapped, Form_2DI>(object, rendition, count, points);
}
void z_mapped_dci_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                               const OT_DCI_Point* points) {
  flat_strip<Z_Mapped, Form_DCI>(object, rendition, count, points);
}

void z_rgb32_2d_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                             const OT_Point* points) {
  flat_strip<Z_Rgb32, Form_2D>(object, rendition, count, points);
}
void z_rgb32_dc_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                             const OT_Point* points) {
  flat_strip<Z_Rgb32, Form_DC>(object, rendition, count, points);
}
void z_rgb32_2di_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                              const OT_DCI_Point* points) {
  flat_strip<Z_Rgb32, Form_2DI>(object, rendition, count, points);
}
void z_rgb32_dci_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                              const OT_DCI_Point* points) {
  flat_strip<Z_Rgb32, Form_DCI>(object, rendition, count, points);
}

void z_rgb32_alpha_2d_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                   const OT_Point* points) {
  flat_strip<Z_Rgb32_Alpha, Form_2D>(object, rendition, count, points);
}
void z_rgb32_alpha_dc_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                   const OT_Point* points) {
  flat_strip<Z_Rgb32_Alpha, Form_DC>(object, rendition, count, points);
}
void z_rgb32_alpha_2di_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                    const OT_DCI_Point* points) {
  flat_strip<Z_Rgb32_Alpha, Form_2DI>(object, rendition, count, points);
}
void z_rgb32_alpha_dci_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                    const OT_DCI_Point* points) {
  flat_strip<Z_Rgb32_Alpha, Form_DCI>(object, rendition, count, points);
}
}  // namespace tarn
