#include "lines/clipped_polylines.h"

#include "lines/line_forms.h"
#include "lines/segment_clipper.h"
#include "pixel/entry_tests.h"
#include "pixel/outcode_buffer.h"

namespace tarn {
namespace {

// The steps common to all modes, from the outcodes on. Inside runs are
// walked whole with the inside form, crossing segments cut to the line limits
// and walked clipped with the crossing form.
template <class Paint, class Inside_Form, class Crossing_Form>
void clip_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                   const OT_DCI_Point* points, bool keep_depth, const Paint& paint,
                   const Inside_Form& inside_form, const Crossing_Form& crossing_form) {
  const Software_Z_Buffer& r = renderer_of(object);
  auto inside = [&](int n, const OT_DCI_Point* run) { walk_polyline(r, inside_form, n, run, paint); };
  const OT_Int_Rectangle& clip = rendition->device->hard_clip;
  Outcode_Buffer buffer(count);
  short* codes = buffer.data();
  const int result = OB_Clip(clip, count, points, codes);
  if (result == count) return inside(count, points);
  if (result == 0) return;
  codes[count] = OT_Outcode_End;
  codes[count + 1] = 0;
  // A segment leaves out its end: a last point that alone is inside is
  // written here, by the mode's dot.
  if (codes[count - 1] == 0 && codes[count - 2] != 0)
    object->draw_dci_dot(rendition, &points[count - 1], nullptr);
  int i = 0;
  for (;;) {
    while (codes[i] & codes[i + 1]) ++i;
    if (codes[i + 1] == OT_Outcode_End) return;
    if (codes[i] | codes[i + 1]) {
      OT_DCI_Point cut[2];
      if (clip_segment_to_limits(points[i], points[i + 1], cut, keep_depth)) {
        const short start_code = local_outcode(clip, cut[0]), end_code = local_outcode(clip, cut[1]);
        if ((start_code | end_code) == 0)
          inside(2, cut);
        else if ((start_code & end_code) == 0)
          walk_segment(crossing_form.plot(paint(0)),
                       Clipped_Segment(clip, r.origin_x, r.origin_y, start_code, end_code), cut[0], cut[1]);
      }
      ++i;
      continue;
    }
    // An inside run; its last point is written again by the crossing
    // segment that follows it, which shows under alpha.
    int j = i + 1;
    while (codes[j + 1] == 0) ++j;
    inside(j - i + 1, points + i);
    i = j;
  }
}

// The forms of a call in Mode. The mapped depth mode's crossing segments
// ignore the mask, while its inside runs honour it.
template <class Mode>
void clip_in_mode(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                  const OT_DCI_Point* points) {
  const Software_Z_Buffer& r = renderer_of(object);
  const bool masked = mask_in_force(r, rendition);
  const OT_RGB32 color = rendition->colors->color;
  auto clip_with = [&](const auto& inside_form, const auto& crossing_form) {
    if constexpr (Mode::kIndex)
      clip_polyline(object, rendition, count, points, Mode::kDepth,
                    Index_Paint{static_cast<byte>(rendition->colors->color_index)}, inside_form,
                    crossing_form);
    else
      clip_polyline(object, rendition, count, points, Mode::kDepth, Color_Paint{&color, true}, inside_form,
                    crossing_form);
  };
  if constexpr (Mode::kIndex && Mode::kDepth) {
    with_line_form<Mode>(r, rendition, false, [&](const auto& crossing_form) {
      if (masked)
        with_line_form<Mode>(r, rendition, true,
                             [&](const auto& inside_form) { clip_with(inside_form, crossing_form); });
      else
        clip_with(crossing_form, crossing_form);
    });
  } else {
    with_line_form<Mode>(r, rendition, masked, [&](const auto& form) { clip_with(form, form); });
  }
}

// The 2DI line family. The entry tests, in their order: no image or a short
// list returns; wide or patterned lines go to the host; depth off takes the
// mode without depth. A single opaque colour in the blending mode without
// depth is drawn by the opaque mode, as its DCI action would draw the inside
// runs: the weight blend of alpha 255 stores the colour itself.
template <class Mode>
void clipped_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                      const OT_DCI_Point* points) {
  if (nothing_to_draw(renderer_of(object), count)) return;
  if (host_line(rendition)) return OB_Standard_Draw_2DI_Polyline(object, rendition, count, points);
  if constexpr (Mode::kDepth) {
    if (depth_off(rendition))
      return clip_in_mode<typename Mode::Without_Depth>(object, rendition, count, points);
  }
  if constexpr (Mode::kAlpha && !Mode::kDepth) {
    if (rendition->colors->color.a > 254)
      return clip_in_mode<typename Mode::Opaque>(object, rendition, count, points);
  }
  clip_in_mode<Mode>(object, rendition, count, points);
}

}  // namespace

void mapped_2di_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                         const OT_DCI_Point* points) {
  clipped_polyline<Mapped>(object, rendition, count, points);
}
void z_mapped_2di_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                           const OT_DCI_Point* points) {
  clipped_polyline<Z_Mapped>(object, rendition, count, points);
}
void rgb32_2di_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                        const OT_DCI_Point* points) {
  clipped_polyline<Rgb32>(object, rendition, count, points);
}
void rgb32_alpha_2di_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                              const OT_DCI_Point* points) {
  clipped_polyline<Rgb32_Alpha>(object, rendition, count, points);
}
void z_rgb32_2di_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                          const OT_DCI_Point* points) {
  clipped_polyline<Z_Rgb32>(object, rendition, count, points);
}
void z_rgb32_alpha_2di_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                const OT_DCI_Point* points) {
  clipped_polyline<Z_Rgb32_Alpha>(object, rendition, count, points);
}

}  // namespace tarn
