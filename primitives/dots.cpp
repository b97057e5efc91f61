#include "primitives/dots.h"

#include "pixel/dither.h"
#include "pixel/entry_tests.h"
#include "pixel/mask.h"
#include "pixel/point_writers.h"

namespace tarn {
namespace {

// The stores of a dot or marker in Mode: chosen by merge in the modes without
// depth; the depth forms know neither merge nor the mask.
template <class Mode, class Body>
void with_point_stores(const Software_Z_Buffer& r, const OT_Rendition& rendition, Body&& body) {
  if constexpr (Mode::kDepth)
    body(Depth_Color_Stores<Mode>{});
  else
    with_color_stores<Mode>(r, rendition, body);
}

// Runs body(plot) with the plot of store in Mode. A dot or marker compares
// its z as a full signed number with the stored word: the mapped depth form
// at or below, always writing depth; the RGB32 depth forms by "ZBuffer Test"
// and "ZBuffer Write".
template <class Mode, Pixel_Store Store, class Body>
void with_point_plot(const Software_Z_Buffer& r, bool masked, const Store& store, Body&& body) {
  if constexpr (!Mode::kDepth) {
    if (masked)
      body(color_plot(r, Masking(r)(store)));
    else
      body(color_plot(r, store));
  } else if constexpr (Mode::kIndex) {
    body(depth_plot<Depth_At_Or_Below, true>(r, store));
  } else {
    with_depth_options(
        r, [&]<class Test, bool kWriteDepth>() { body(depth_plot<Test, kWriteDepth>(r, store)); });
  }
}

// The rendition's colour of a dot or marker: its index in the mapped modes.
template <class Mode>
auto rendition_color(const OT_Rendition& rendition) {
  if constexpr (Mode::kIndex)
    return static_cast<byte>(rendition->colors->color_index);
  else
    return rendition->colors->color;
}

void plot_point(const Software_Z_Buffer& r, const auto& plot, const OT_DCI_Point& p) {
  plot(p.x - r.origin_x, p.y - r.origin_y, p.z);
}

bool inside_clip(const OT_Int_Rectangle& clip, const OT_DCI_Point& p) {
  return p.x >= clip.left && p.x <= clip.right && p.y >= clip.bottom && p.y <= clip.top;
}

}  // namespace

// A dot is drawn without a clip test: the point is inside by contract. Depth
// off hands the call to the mode without depth; the forms without depth
// honour the mask. In the mapped modes a given colour is dithered and never
// merges: merge sees only color_index.
template <class Mode>
void dci_dot(OT_Renderer_Data* object, const OT_Rendition& rendition, const OT_DCI_Point* point,
             const OT_RGB32* color) {
  if constexpr (Mode::kDepth) {
    if (depth_off(rendition)) return dci_dot<typename Mode::Without_Depth>(object, rendition, point, color);
  }
  const Software_Z_Buffer& r = renderer_of(object);
  const bool masked = !Mode::kDepth && mask_in_force(r, rendition);
  auto draw = [&](const auto& store) {
    with_point_plot<Mode>(r, masked, store, [&](const auto& plot) { plot_point(r, plot, *point); });
  };
  if constexpr (Mode::kIndex) {
    if (color) return draw(Dither_Compare_Store(dither_thresholds(r.cube, *color)));
    with_point_stores<Mode>(r, rendition,
                            [&](const auto& stores) { draw(stores(rendition_color<Mode>(rendition))); });
  } else {
    const OT_RGB32 c = color ? *color : rendition->colors->color;
    with_point_stores<Mode>(r, rendition, [&](const auto& stores) { draw(stores(c)); });
  }
}

// One-pixel markers in the rendition's colour, clipped point by point to the
// hard clip. The entry tests, in their order: an opaque colour in the
// blending modes takes the opaque mode (before the test of depth_enabled);
// depth off takes the mode without depth; a marker symbol goes to the host.
// Colour, merge and the clip are taken once; the mask is first asked at the
// first point drawn, and the forms with depth don't ask it.
template <class Mode, bool kAlphaTested>
void polymarker(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                const OT_DCI_Point* points) {
  if constexpr (Mode::kAlpha && !kAlphaTested) {
    if (rendition->colors->color.a > 254)
      return polymarker<typename Mode::Opaque, true>(object, rendition, count, points);
  }
  if constexpr (Mode::kDepth) {
    if (depth_off(rendition))
      return polymarker<typename Mode::Without_Depth, true>(object, rendition, count, points);
  }
  if (rendition->marker->symbol != 0)
    return OB_Standard_Draw_2DI_Polymarker(object, rendition, count, points);
  const OT_Int_Rectangle clip = rendition->device->hard_clip;
  int first = 0;
  while (first < count && !inside_clip(clip, points[first])) ++first;
  if (first >= count) return;
  const Software_Z_Buffer& r = renderer_of(object);
  const bool masked = !Mode::kDepth && mask_in_force(r, rendition);
  with_point_stores<Mode>(r, rendition, [&](const auto& stores) {
    with_point_plot<Mode>(r, masked, stores(rendition_color<Mode>(rendition)), [&](const auto& plot) {
      for (int i = first; i < count; ++i)
        if (inside_clip(clip, points[i])) plot_point(r, plot, points[i]);
    });
  });
}

template void dci_dot<Mapped>(OT_Renderer_Data*, const OT_Rendition&, const OT_DCI_Point*, const OT_RGB32*);
template void dci_dot<Z_Mapped>(OT_Renderer_Data*, const OT_Rendition&, const OT_DCI_Point*, const OT_RGB32*);
template void dci_dot<Rgb32>(OT_Renderer_Data*, const OT_Rendition&, const OT_DCI_Point*, const OT_RGB32*);
template void dci_dot<Rgb32_Alpha>(OT_Renderer_Data*, const OT_Rendition&, const OT_DCI_Point*,
                                   const OT_RGB32*);
template void dci_dot<Z_Rgb32>(OT_Renderer_Data*, const OT_Rendition&, const OT_DCI_Point*, const OT_RGB32*);
template void dci_dot<Z_Rgb32_Alpha>(OT_Renderer_Data*, const OT_Rendition&, const OT_DCI_Point*,
                                     const OT_RGB32*);

template void polymarker<Mapped>(OT_Renderer_Data*, const OT_Rendition&, int, const OT_DCI_Point*);
template void polymarker<Rgb32>(OT_Renderer_Data*, const OT_Rendition&, int, const OT_DCI_Point*);
template void polymarker<Rgb32_Alpha>(OT_Renderer_Data*, const OT_Rendition&, int, const OT_DCI_Point*);
template void polymarker<Z_Rgb32>(OT_Renderer_Data*, const OT_Rendition&, int, const OT_DCI_Point*);
template void polymarker<Z_Rgb32_Alpha>(OT_Renderer_Data*, const OT_Rendition&, int, const OT_DCI_Point*);

}  // namespace tarn
