#include "triangles/colorized_triangles.h"

#include "pixel/entry_tests.h"
#include "pixel/mask.h"
#include "triangles/depth_fill.h"
#include "triangles/span_fillers.h"

namespace tarn {
namespace {

// The dither of each triangle's colour, in the comparison form. The sort is
// done per triangle of nonzero height while the colour pointer is not null;
// after each triangle, skipped or not, a one-colour list sets the pointer to
// null (its sort is done) and a list of colours moves it on. So a one-colour
// list whose first triangle has zero height keeps the all-zero state, and
// draws in index 0: that is how this filler behaves.
class Dither_Per_Triangle {
 public:
  Dither_Per_Triangle(const OT_Color_Cube& cube, const OT_DCI_Point* points, const OT_RGB32* colors, bool single)
      : cube_(&cube), points_(points), color_(colors), single_(single) {}

  Dither_Compare_Store operator()(int i) {
    const std::int32_t y0 = points_[i].y, y1 = points_[i + 1].y, y2 = points_[i + 2].y;
    const std::int32_t height = wrap_sub(std::max({y0, y1, y2}), std::min({y0, y1, y2}));
    if (height >= 1 && color_) state_ = dither_thresholds(*cube_, *color_);
    color_ = single_ ? nullptr : color_ + 1;
    return Dither_Compare_Store(state_);
  }

 private:
  const OT_Color_Cube* cube_;
  const OT_DCI_Point* points_;
  const OT_RGB32* color_;
  bool single_;
  Dither_Thresholds state_{0, 0, 0, 0, 0, 0, 0};
};


}  // namespace

// No merge here: an all-inside run has no use for one.
void mapped_dci_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                       const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color) {
  if (host_pattern(rendition))
    return OB_Standard_Draw_DCI_Colorized_Polytriangle(object, rendition, count, points, colors, single_color);
  const Software_Z_Buffer& r = renderer_of(object);
  const Stipple_Flags flags = stipple_flags(rendition);
  const Face_Fill fill = face_fill(rendition->face->pattern, flags);
  if (fill == Face_Fill::nothing) return;
  with_masking(r, rendition, [&](const auto& wrap) {
    Dither_Per_Triangle dither(r.cube, points, colors, single_color);
    fill_strip(r, rendition, count, points, fill, flags, [&](int i) { return wrap(dither(i)); },
               wrap(Index_Store{rendition->colors->contrast_index}));
  });
}

void mapped_dc_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                      const OT_Point* points, const OT_RGB32* colors, bool single_color) {
  if (host_pattern(rendition))
    return OB_Standard_Draw_DC_Colorized_Polytriangle(object, rendition, count, points, colors, single_color);
  run_rounded<false>(mapped_dci_colorized_polytriangle, object, rendition, count, points, colors, single_color);
}

// The test first, then depth, then the dithered index.
void z_mapped_dci_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                         const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color) {
  if (host_pattern(rendition))
    return OB_Standard_Draw_DCI_Colorized_Polytriangle(object, rendition, count, points, colors, single_color);
  if (rendition->device->depth_enabled == 0)
    return mapped_dci_colorized_polytriangle(object, rendition, count, points, colors, single_color);
  const Software_Z_Buffer& r = renderer_of(object);
  const Stipple_Flags flags = stipple_flags(rendition);
  const Face_Fill fill = face_fill(rendition->face->pattern, flags);
  if (fill == Face_Fill::nothing) return;
  with_masking(r, rendition, [&](const auto& wrap) {
    Dither_Per_Triangle dither(r.cube, points, colors, single_color);
    fill_depth_strip<Depth_At_Or_Below, true>(r, rendition, count, points, fill, flags,
                                              [&](int i) { return wrap(dither(i)); },
                                              wrap(Index_Store{rendition->colors->contrast_index}));
  });
}

void z_mapped_dc_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                        const OT_Point* points, const OT_RGB32* colors, bool single_color) {
  if (host_pattern(rendition))
    return OB_Standard_Draw_DC_Colorized_Polytriangle(object, rendition, count, points, colors, single_color);
  if (rendition->device->depth_enabled == 0)
    return mapped_dc_colorized_polytriangle(object, rendition, count, points, colors, single_color);
  run_rounded<true>(z_mapped_dci_colorized_polytriangle, object, rendition, count, points, colors, single_color);
}

}  // namespace tarn
