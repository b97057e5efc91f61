#include "primitives/polygons.h"

#include <memory>

#include "pixel/face_pattern.h"

namespace tarn {
namespace {

constexpr int kStripLimit = 64;

using Plain_Slot = OT_Action<int, const OT_Point*> OT_Renderer_Data::*;
using Colorized_Slot = OT_Action<int, const OT_Point*, const OT_RGB32*, bool> OT_Renderer_Data::*;

// The float slots a polygon's triangles go to: 2D or DC.
struct Float_Slots {
  Plain_Slot plain;
  Colorized_Slot colorized;
};
constexpr Float_Slots k2DSlots{&OT_Renderer_Data::draw_2d_polytriangle,
                               &OT_Renderer_Data::draw_2d_colorized_polytriangle};
constexpr Float_Slots kDCSlots{&OT_Renderer_Data::draw_dc_polytriangle,
                               &OT_Renderer_Data::draw_dc_colorized_polytriangle};

void draw_with(OT_Renderer_Data* object, const OT_Rendition& rendition, const Float_Slots& slots, int count,
               const OT_Point* points, const OT_RGB32* color) {
  if (color)
    (object->*slots.colorized)(rendition, count, points, color, true);
  else
    (object->*slots.plain)(rendition, count, points);
}

struct Triangulation_Context {
  OT_Renderer_Data* renderer;
  const OT_Rendition* rendition;
  const OT_RGB32* color;
  const Float_Slots* slots;
};

void draw_triangle(const OT_Point* a, const OT_Point* b, const OT_Point* c, void* context) {
  const auto& ctx = *static_cast<const Triangulation_Context*>(context);
  const OT_Point triangle[3] = {*a, *b, *c};
  draw_with(ctx.renderer, *ctx.rendition, *ctx.slots, 3, triangle, ctx.color);
}

void triangulate(OT_Renderer_Data* object, const OT_Rendition& rendition, const Float_Slots& slots, int count,
                 const OT_Point* points, const OT_RGB32* color) {
  OT_Contour_Set contours(count, points, false);
  if (!contours) return;
  make_unique(contours)->force_projection(OT_Vector{0.0f, 0.0f, 1.0f});
  Triangulation_Context context{object, &rendition, color, &slots};
  contours->triangulate(draw_triangle, &context);
}

// The float forms: a copy of the rendition carries the outline's depth bias
// while strip edges are drawn.
void float_polygon(OT_Renderer_Data* object, const OT_Rendition& rendition, int count, const OT_Point* points,
                   const OT_RGB32* color, const Float_Slots& slots) {
  const Software_Z_Buffer& r = renderer_of(object);
  OT_Rendition drawn = rendition;
  if (r.edge_depth_bias != 0 && r.edge_depth_bias != rendition->face->depth_bias)
    drawn.writable_face()->depth_bias = r.edge_depth_bias;
  if (count < 3) return;
  if (count == 3) return draw_with(object, drawn, slots, 3, points, color);
  if (count <= kStripLimit && OB_Rank_Polygon(count, points) == OT_Polygon_Rank_Convex) {
    // A fan walked from both ends: p0, p1, p(n-1), p2, p(n-2), ...
    OT_Point strip[kStripLimit];
    int front = 1, back = count - 1;
    strip[0] = points[0];
    for (int i = 1; i < count; ++i) strip[i] = (i % 2) ? points[front++] : points[back--];
    return draw_with(object, drawn, slots, count, strip, color);
  }
  triangulate(object, drawn, slots, count, points, color);
}

// The integer forms: a triangle directly, anything more as floats through
// the triangulator and the float slots; no strip shortcut, no edge bias.
template <class Colorized, class Plain>
void integer_polygon(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                     const OT_DCI_Point* points, const OT_RGB32* color, Colorized colorized, Plain plain,
                     const Float_Slots& slots) {
  if (count < 3) return;
  if (count == 3) {
    if (color)
      (object->*colorized)(rendition, 3, points, color, false);
    else
      (object->*plain)(rendition, 3, points);
    return;
  }
  OT_Point local[kStripLimit];
  std::unique_ptr<OT_Point[]> heap;
  OT_Point* converted = local;
  if (count > kStripLimit) {
    heap.reset(new OT_Point[static_cast<std::size_t>(count)]);
    converted = heap.get();
  }
  for (int i = 0; i < count; ++i)
    converted[i] = {static_cast<float>(points[i].x), static_cast<float>(points[i].y),
                    static_cast<float>(points[i].z)};
  triangulate(object, rendition, slots, count, converted, color);
}

}  // namespace

void common_2d_polygon(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                       const OT_Point* points, const OT_RGB32* color) {
  if (host_pattern(rendition)) return OB_Standard_Draw_2D_Polygon(object, rendition, count, points, color);
  float_polygon(object, rendition, count, points, color, k2DSlots);
}

void common_dc_polygon(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                       const OT_Point* points, const OT_RGB32* color) {
  if (host_pattern(rendition)) return OB_Standard_Draw_DC_Polygon(object, rendition, count, points, color);
  float_polygon(object, rendition, count, points, color, kDCSlots);
}

void common_2di_polygon(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                        const OT_DCI_Point* points, const OT_RGB32* color) {
  if (host_pattern(rendition)) return OB_Standard_Draw_2DI_Polygon(object, rendition, count, points, color);
  integer_polygon(object, rendition, count, points, color, &OT_Renderer_Data::draw_2di_colorized_polytriangle,
                  &OT_Renderer_Data::draw_2di_polytriangle, k2DSlots);
}

void common_dci_polygon(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                        const OT_DCI_Point* points, const OT_RGB32* color) {
  if (host_pattern(rendition)) return OB_Standard_Draw_DCI_Polygon(object, rendition, count, points, color);
  integer_polygon(object, rendition, count, points, color, &OT_Renderer_Data::draw_dci_colorized_polytriangle,
                  &OT_Renderer_Data::draw_dci_polytriangle, kDCSlots);
}

}  // namespace tarn
