#include "lines/thin_polylines.h"

#include <type_traits>

#include "lines/antialiased_lines.h"
#include "lines/line_forms.h"
#include "lines/styled_lines.h"
#include "pixel/entry_tests.h"

namespace tarn {
namespace {

// The DCI line family: one flat colour (the rendition's index in the mapped
// modes) or a colour a segment, in Mode. The entry tests, in their order:
// depth off hands the call to the mode without depth; a single opaque colour
// in the blending mode without depth to the opaque mode (merge ignores
// alpha); a flat mapped line's line type is taken apart; wide or patterned
// lines to the host; then the mask picks the form.
template <class Mode, class Paint>
void dci_lines(OT_Renderer_Data* object, const OT_Rendition& rendition, int count, const OT_DCI_Point* points,
               const Paint& paint) {
  if constexpr (Mode::kDepth) {
    if (depth_off(rendition))
      return dci_lines<typename Mode::Without_Depth>(object, rendition, count, points, paint);
  }
  if constexpr (Mode::kAlpha && !Mode::kDepth) {
    if (paint.single && paint.colors[0].a > 254)
      return dci_lines<typename Mode::Opaque>(object, rendition, count, points, paint);
  }
  constexpr bool kFlat = std::is_same_v<Paint, Index_Paint>;
  if constexpr (kFlat)
    if (drawn_as_line_type<Mode, dci_polyline<Mode>>(object, rendition, count, points)) return;
  if (host_line(rendition)) {
    if constexpr (kFlat)
      return OB_Standard_Draw_DCI_Polyline(object, rendition, count, points);
    else
      return OB_Standard_Draw_DCI_Colorized_Polyline(object, rendition, count, points, paint.colors,
                                                     paint.single);
  }
  const Software_Z_Buffer& r = renderer_of(object);
  if constexpr (!Mode::kIndex && !Mode::kDepth) {
    if (antialiased_lines(r, rendition))
      return draw_antialiased_polyline(antialiased_kind<Mode>(mask_in_force(r, rendition)), r, rendition,
                                       count, points, paint.colors, paint.single, true);
  }
  auto walk = [&](const auto& form) { walk_polyline(r, form, count, points, paint); };
  if constexpr (Mode::kIndex && !kFlat)
    with_dither_line_form<Mode>(r, Mode::kDepth && mask_in_force(r, rendition), walk);
  else
    with_line_form<Mode>(r, rendition, mask_in_force(r, rendition), walk);
}

}  // namespace

// The flat polyline: a copy of the rendition's colour as a single colour in
// the RGB32 modes, which have no flat walker of their own, after their line
// type and halo tests.
template <class Mode>
void dci_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                  const OT_DCI_Point* points) {
  if constexpr (Mode::kIndex) {
    dci_lines<Mode>(object, rendition, count, points,
                    Index_Paint{static_cast<byte>(rendition->colors->color_index)});
  } else {
    if (drawn_as_line_type<Mode, dci_polyline<Mode>>(object, rendition, count, points)) return;
    if (drawn_as_halo<Mode, dci_polyline<Mode>>(object, rendition, count, points)) return;
    const OT_RGB32 color = rendition->colors->color;
    dci_lines<Mode>(object, rendition, count, points, Color_Paint{&color, true});
  }
}

template <class Mode>
void dci_colorized_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                            const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color) {
  // A list without colours is the host's, which draws it in the rendition's.
  if (!colors)
    return OB_Standard_Draw_DCI_Colorized_Polyline(object, rendition, count, points, colors, single_color);
  dci_lines<Mode>(object, rendition, count, points, Color_Paint{colors, single_color});
}

template void dci_polyline<Mapped>(OT_Renderer_Data*, const OT_Rendition&, int, const OT_DCI_Point*);
template void dci_polyline<Z_Mapped>(OT_Renderer_Data*, const OT_Rendition&, int, const OT_DCI_Point*);
template void dci_polyline<Rgb32>(OT_Renderer_Data*, const OT_Rendition&, int, const OT_DCI_Point*);
template void dci_polyline<Rgb32_Alpha>(OT_Renderer_Data*, const OT_Rendition&, int, const OT_DCI_Point*);
template void dci_polyline<Z_Rgb32>(OT_Renderer_Data*, const OT_Rendition&, int, const OT_DCI_Point*);
template void dci_polyline<Z_Rgb32_Alpha>(OT_Renderer_Data*, const OT_Rendition&, int, const OT_DCI_Point*);

using Colors = const OT_RGB32*;
template void dci_colorized_polyline<Mapped>(OT_Renderer_Data*, const OT_Rendition&, int, const OT_DCI_Point*,
                                             Colors, bool);
template void dci_colorized_polyline<Z_Mapped>(OT_Renderer_Data*, const OT_Rendition&, int,
                                               const OT_DCI_Point*, Colors, bool);
template void dci_colorized_polyline<Rgb32>(OT_Renderer_Data*, const OT_Rendition&, int, const OT_DCI_Point*,
                                            Colors, bool);
template void dci_colorized_polyline<Rgb32_Alpha>(OT_Renderer_Data*, const OT_Rendition&, int,
                                                  const OT_DCI_Point*, Colors, bool);
template void dci_colorized_polyline<Z_Rgb32>(OT_Renderer_Data*, const OT_Rendition&, int,
                                              const OT_DCI_Point*, Colors, bool);
template void dci_colorized_polyline<Z_Rgb32_Alpha>(OT_Renderer_Data*, const OT_Rendition&, int,
                                                    const OT_DCI_Point*, Colors, bool);

}  // namespace tarn
