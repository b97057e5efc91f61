#include "lines/clipped_polylines.h"

#include <type_traits>

#include "lines/antialiased_lines.h"
#include "lines/clip_loop.h"
#include "lines/line_forms.h"
#include "lines/segment_clipper.h"
#include "lines/styled_lines.h"
#include "pixel/entry_tests.h"

namespace tarn {
namespace {

// Flat and colorized lines: a colour a segment through the forms of the
// call, the inside runs and cut segments walked whole with the inside form,
// crossing segments with the crossing form. Colorized lines cut with the
// colour sibling, which keeps z in every mode. The pieces that go to the DCI
// walker are antialiased where it would antialias them; crossing segments
// never are.
template <class Paint, class Inside_Form, class Crossing_Form>
struct Painted_Segments {
  OT_Renderer_Data* object;
  const OT_Rendition& rendition;
  int count;
  const OT_DCI_Point* points;
  bool keep_depth;
  Paint paint;
  const Inside_Form& inside_form;
  const Crossing_Form& crossing_form;
  std::optional<Antialiased_Kind> antialiased;

  static constexpr bool kColorized = std::is_same_v<Paint, Color_Paint>;
  const Software_Z_Buffer& r() const { return renderer_of(object); }

  void inside(int first, int n) const {
    if constexpr (kColorized) {
      if (antialiased)
        return draw_antialiased_polyline(*antialiased, r(), rendition, n, points + first,
                                         paint.from(first).colors, paint.single, true);
    }
    if constexpr (kColorized)
      walk_polyline(r(), inside_form, n, points + first, paint.from(first));
    else
      walk_polyline(r(), inside_form, n, points + first, paint);
  }
  bool cut(int i, OT_DCI_Point out[2]) const {
    if constexpr (kColorized)
      return clip_segment_and_colors_to_limits(points + i, out, nullptr, nullptr);
    else
      return clip_segment_to_limits(points[i], points[i + 1], out, keep_depth);
  }
  void cut_inside(int i, const OT_DCI_Point* cut) const {
    if constexpr (kColorized) {
      const OT_RGB32 color = paint(i);
      if (antialiased)
        return draw_antialiased_polyline(*antialiased, r(), rendition, 2, cut, &color, true, true);
      walk_polyline(r(), inside_form, 2, cut, Color_Paint{&color, true});
    } else {
      walk_polyline(r(), inside_form, 2, cut, paint);
    }
  }
  void crossing(int i, const OT_DCI_Point* cut, const Clipped_Segment& clip) const {
    walk_segment(crossing_form.plot(paint(i)), clip, cut[0], cut[1]);
  }
  void last_dot() const {
    if constexpr (kColorized) {
      const OT_RGB32 color = paint(count - 2);
      object->draw_dci_dot(rendition, &points[count - 1], &color);
    } else {
      object->draw_dci_dot(rendition, &points[count - 1], nullptr);
    }
  }
};

template <class Paint, class Inside_Form, class Crossing_Form>
void clip_painted(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                  const OT_DCI_Point* points, bool keep_depth, const Paint& paint,
                  const Inside_Form& inside_form, const Crossing_Form& crossing_form,
                  std::optional<Antialiased_Kind> antialiased) {
  clip_polyline(
      renderer_of(object), rendition, count, points,
      Painted_Segments<Paint, Inside_Form, Crossing_Form>{object, rendition, count, points, keep_depth, paint,
                                                          inside_form, crossing_form, antialiased});
}

// The forms of a call in Mode. The mapped depth mode's crossing segments
// ignore the mask, while its inside runs honour it.
template <class Mode>
void clip_in_mode(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                  const OT_DCI_Point* points) {
  const Software_Z_Buffer& r = renderer_of(object);
  const bool masked = mask_in_force(r, rendition);
  // Behind the mask the depth-alpha mode draws as the depth mode, with the
  // colour made opaque.
  OT_RGB32 color = rendition->colors->color;
  if (Mode::kDepth && Mode::kAlpha && masked) color.a = 255;
  auto clip_with = [&](const auto& inside_form, const auto& crossing_form) {
    if constexpr (Mode::kIndex)
      clip_painted(object, rendition, count, points, Mode::kDepth,
                   Index_Paint{static_cast<byte>(rendition->colors->color_index)}, inside_form, crossing_form,
                   std::nullopt);
    else
      clip_painted(object, rendition, count, points, Mode::kDepth, Color_Paint{&color, true}, inside_form,
                   crossing_form, antialiased_runs<Mode>(r, rendition, masked));
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
// list returns; line types are taken apart and the halo drawn in the modes
// that do so; wide or patterned lines go to the host; depth off takes the
// action without depth, its line type test included; antialiased lines take
// their own clipping driver (the opaque mode only without a mask, whose
// masked list antialiases the inside runs alone). A single opaque colour in
// the blending mode without depth is drawn by the opaque mode, as its DCI
// action would draw the inside runs: the weight blend of alpha 255 stores
// the colour itself.
template <class Mode>
void clipped_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                      const OT_DCI_Point* points) {
  if (nothing_to_draw(renderer_of(object), count)) return;
  if (drawn_as_line_type<Mode, clipped_polyline<Mode>, true>(object, rendition, count, points)) return;
  if (drawn_as_halo<Mode, clipped_polyline<Mode>>(object, rendition, count, points)) return;
  if (host_line(rendition)) return OB_Standard_Draw_2DI_Polyline(object, rendition, count, points);
  if constexpr (Mode::kDepth) {
    if (depth_off(rendition))
      return clipped_polyline<typename Mode::Without_Depth>(object, rendition, count, points);
  }
  if constexpr (!Mode::kIndex && !Mode::kDepth) {
    if (antialiased_lines(renderer_of(object), rendition) &&
        (Mode::kAlpha || !mask_in_force(renderer_of(object), rendition)))
      return draw_antialiased_2di_polyline(object, rendition, count, points);
  }
  if constexpr (Mode::kAlpha && !Mode::kDepth) {
    if (rendition->colors->color.a > 254)
      return clip_in_mode<typename Mode::Opaque>(object, rendition, count, points);
  }
  clip_in_mode<Mode>(object, rendition, count, points);
}

// The forms of a colorized call: dithered in the mapped modes.
template <class Mode, class Body>
void with_colorized_form(const Software_Z_Buffer& r, const OT_Rendition& rendition, bool masked,
                         Body&& body) {
  if constexpr (Mode::kIndex)
    with_dither_line_form<Mode>(r, masked, body);
  else
    with_line_form<Mode>(r, rendition, masked, body);
}

// The 2DI colorized family. The tests, in their order: the blending forms
// hand a single opaque colour to the opaque form first; no image or a short
// list returns; wide or patterned lines go to the host; depth off takes the
// form without depth. Only the RGB32 forms without depth look at the mask
// themselves; the inside runs of the depth forms are masked as their DCI
// form masks them, and their crossing segments never.
template <class Mode>
void clipped_colorized(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                       const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color) {
  // A list without colours is the host's, which draws it in the rendition's.
  if (!colors)
    return OB_Standard_Draw_2DI_Colorized_Polyline(object, rendition, count, points, colors, single_color);
  if constexpr (Mode::kAlpha) {
    if (single_color && colors[0].a > 254)
      return clipped_colorized<typename Mode::Opaque>(object, rendition, count, points, colors, single_color);
  }
  const Software_Z_Buffer& r = renderer_of(object);
  if (nothing_to_draw(r, count)) return;
  if (host_line(rendition))
    return OB_Standard_Draw_2DI_Colorized_Polyline(object, rendition, count, points, colors, single_color);
  if constexpr (Mode::kDepth) {
    if (depth_off(rendition))
      return clipped_colorized<typename Mode::Without_Depth>(object, rendition, count, points, colors,
                                                             single_color);
  }
  const Color_Paint paint{colors, single_color};
  const bool masked = mask_in_force(r, rendition);
  auto clip_with = [&](const auto& inside_form, const auto& crossing_form) {
    clip_painted(object, rendition, count, points, true, paint, inside_form, crossing_form,
                 antialiased_runs<Mode>(r, rendition, masked));
  };
  if constexpr (Mode::kDepth) {
    if (masked) {
      with_colorized_form<Mode>(r, rendition, true, [&](const auto& inside_form) {
        with_colorized_form<Mode>(r, rendition, false,
                                  [&](const auto& crossing_form) { clip_with(inside_form, crossing_form); });
      });
      return;
    }
  }
  with_colorized_form<Mode>(r, rendition, masked && !Mode::kIndex && !Mode::kDepth,
                            [&](const auto& form) { clip_with(form, form); });
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

void mapped_2di_colorized_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                   const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color) {
  clipped_colorized<Mapped>(object, rendition, count, points, colors, single_color);
}
void z_mapped_2di_colorized_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                     const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color) {
  clipped_colorized<Z_Mapped>(object, rendition, count, points, colors, single_color);
}
void rgb32_2di_colorized_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                  const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color) {
  clipped_colorized<Rgb32>(object, rendition, count, points, colors, single_color);
}
void rgb32_alpha_2di_colorized_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                        const OT_DCI_Point* points, const OT_RGB32* colors,
                                        bool single_color) {
  clipped_colorized<Rgb32_Alpha>(object, rendition, count, points, colors, single_color);
}
void z_rgb32_2di_colorized_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                    const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color) {
  clipped_colorized<Z_Rgb32>(object, rendition, count, points, colors, single_color);
}
void z_rgb32_alpha_2di_colorized_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                          const OT_DCI_Point* points, const OT_RGB32* colors,
                                          bool single_color) {
  clipped_colorized<Z_Rgb32_Alpha>(object, rendition, count, points, colors, single_color);
}

}  // namespace tarn
