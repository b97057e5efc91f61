// Standard routines of polygons: the triangulator cuts the polygon into
// triangles, which go one by one to a polytriangle slot. 2D, 2DI and tiled
// polygons go to the 2DI slots, which clip; DC and DCI polygons to the DCI
// slots. Never to a polygon slot: a renderer hands its polygons here.
//
// `color` is one colour for the whole polygon: with it each triangle goes to
// the colorized polytriangle slot with single set; without it, to the plain
// one, in the rendition's colour.
#include <vector>

#include "ombra/standard_support.h"

namespace {

using namespace ombra;
using R = OT_Renderer_Data;

struct Polygon_Context {
  R* renderer;
  const OT_Rendition* rendition;
  const OT_RGB32* color;
  bool device;                // DCI slots, else 2DI
  const OT_Point* first;      // the triangulated points, to find a corner's index
  const OT_DCI_Point* exact;  // the same points as integers
};

void draw_triangle(const OT_Point* a, const OT_Point* b, const OT_Point* c, void* context) {
  const Polygon_Context& pc = *static_cast<const Polygon_Context*>(context);
  // The corners are taken from the integer list by their index, so that
  // integer coordinates don't go through floats and back.
  const OT_DCI_Point triangle[3] = {pc.exact[a - pc.first], pc.exact[b - pc.first], pc.exact[c - pc.first]};
  R* r = pc.renderer;
  const OT_Rendition& rd = *pc.rendition;
  if (pc.device) {
    if (pc.color)
      r->draw_dci_colorized_polytriangle(rd, 3, triangle, pc.color, true);
    else
      r->draw_dci_polytriangle(rd, 3, triangle);
  } else {
    if (pc.color)
      r->draw_2di_colorized_polytriangle(rd, 3, triangle, pc.color, true);
    else
      r->draw_2di_polytriangle(rd, 3, triangle);
  }
}

template <class Point>
void draw_polygon(R* r, const OT_Rendition& rd, int count, const Point* points, const OT_RGB32* color,
                  bool device) {
  if (count < 3 || !points) return;
  std::vector<OT_DCI_Point> exact(static_cast<std::size_t>(count));
  std::vector<OT_Point> flat(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    exact[std::size_t(i)] = round_point(points[i]);
    flat[std::size_t(i)] = {float(points[i].x), float(points[i].y), float(points[i].z)};
  }
  OT_Contour_Set contour(count, flat.data(), false);
  if (!contour) return;
  make_unique(contour)->force_projection(OT_Vector{0.0f, 0.0f, 1.0f});
  Polygon_Context context{r, &rd, color, device, contour->points.data(), exact.data()};
  contour->triangulate(draw_triangle, &context);
}

}  // namespace

void OB_Standard_Draw_2D_Polygon(R* r, const OT_Rendition& rd, int count, const OT_Point* points,
                                 const OT_RGB32* color) {
  draw_polygon(r, rd, count, points, color, false);
}
void OB_Standard_Draw_DC_Polygon(R* r, const OT_Rendition& rd, int count, const OT_Point* points,
                                 const OT_RGB32* color) {
  draw_polygon(r, rd, count, points, color, true);
}
void OB_Standard_Draw_2DI_Polygon(R* r, const OT_Rendition& rd, int count, const OT_DCI_Point* points,
                                  const OT_RGB32* color) {
  draw_polygon(r, rd, count, points, color, false);
}
void OB_Standard_Draw_DCI_Polygon(R* r, const OT_Rendition& rd, int count, const OT_DCI_Point* points,
                                  const OT_RGB32* color) {
  draw_polygon(r, rd, count, points, color, true);
}
void OB_Standard_Draw_Tiled_Polygon(R* r, const OT_Rendition& rd, int count, const OT_Point_D* points,
                                    const OT_RGB32* color) {
  draw_polygon(r, rd, count, points, color, false);
}
