#include "triangles/strip_outline.h"

#include "pixel/rounding.h"

namespace tarn {

// The outline draws with the RGB32 depth mode's clipping polyline, an action
// of the line family; it is named here by its action signature so that the
// triangle layer includes nothing of the line layer.
void z_rgb32_2di_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                          const OT_DCI_Point* points);

void draw_strip_outline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                        const OT_DCI_Point* points) {
  Software_Z_Buffer& r = renderer_of(object);
  OT_Rendition edges = rendition;
  edges.set_advanced_options(rendition->raster->advanced_options & 0x7DFu, false);
  r.edge_depth_bias = rendition->face->depth_bias;
  z_rgb32_2di_polyline(object, edges, count, points);
  // Every other point, as contiguous lists for the polyline.
  Point_Buffer alternate(count);
  auto every_other = [&](int first) {
    int n = 0;
    for (int i = first; i < count; i += 2) alternate.data()[n++] = points[i];
    z_rgb32_2di_polyline(object, edges, n, alternate.data());
  };
  every_other(0);
  if (count > 3) every_other(1);
  r.edge_depth_bias = 0;
}

}  // namespace tarn
