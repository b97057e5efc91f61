#include "lines/gouraud_polylines.h"

#include <type_traits>

#include "lines/clip_loop.h"
#include "lines/gouraud_lines.h"
#include "pixel/entry_tests.h"
#include "pixel/mask.h"
#include "pixel/modes.h"

namespace tarn {
namespace {

// Runs body(wrap) with the mask's writer maker when a mask is in force.
template <class Body>
void with_line_masking(bool masked, const Software_Z_Buffer& r, Body&& body) {
  if (masked)
    body(Masking(r));
  else
    body(No_Masking{});
}

// The DCI family. The tests, in their order: depth off takes the form
// without depth; wide or patterned lines (and a list without colours) go to
// the host; the mask picks the writers. Line types, the two-pass test, merge
// and antialiasing are not looked at.
template <class Mode>
void dci_gouraud(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                 const OT_DCI_Point* points, const OT_RGB32* colors) {
  if constexpr (Mode::kDepth) {
    if (depth_off(rendition))
      return dci_gouraud<typename Mode::Without_Depth>(object, rendition, count, points, colors);
  }
  if (!colors || host_line(rendition))
    return OB_Standard_Draw_DCI_Gouraud_Polyline(object, rendition, count, points, colors);
  const Software_Z_Buffer& r = renderer_of(object);
  with_line_masking(mask_in_force(r, rendition), r, [&](const auto& wrap) {
    walk_gouraud_polyline<Mode>(object, rendition, count, points, colors, wrap);
  });
}

// The pieces of a clipped Gouraud list: inside runs and cut segments that
// lie inside as DCI Gouraud polylines, crossing segments walked clipped with
// their cut colours, the accumulators taken up at the first visible pixel.
template <class Mode, class Inside_Wrap, class Crossing_Wrap>
struct Gouraud_Segments {
  OT_Renderer_Data* object;
  const OT_Rendition& rendition;
  int count;
  const OT_DCI_Point* points;
  const OT_RGB32* colors;
  Inside_Wrap inside_wrap;
  Crossing_Wrap crossing_wrap;
  mutable OT_RGB32 cut_colors[2] = {};

  void inside(int first, int n) const {
    walk_gouraud_polyline<Mode>(object, rendition, n, points + first, colors + first, inside_wrap);
  }
  bool cut(int i, OT_DCI_Point out[2]) const {
    return clip_segment_and_colors_to_limits(points + i, out, colors + i, cut_colors);
  }
  void cut_inside(int, const OT_DCI_Point* cut) const {
    walk_gouraud_polyline<Mode>(object, rendition, 2, cut, cut_colors, inside_wrap);
  }
  void crossing(int, const OT_DCI_Point* cut, const Clipped_Segment& clip) const {
    // Behind the mask the RGB32 forms write opaque pixels.
    using Plot_Mode = std::conditional_t<std::is_same_v<Crossing_Wrap, Masking>, typename Mode::Opaque, Mode>;
    const Gouraud_Line_Plot<Plot_Mode, Crossing_Wrap> plot{&renderer_of(object), crossing_wrap, cut_colors[0],
                                                           cut_colors[1]};
    walk_segment(plot, clip, cut[0], cut[1]);
  }
  void last_dot() const { object->draw_dci_dot(rendition, &points[count - 1], &colors[count - 1]); }
};

template <class Mode, class Inside_Wrap, class Crossing_Wrap>
void clip_gouraud(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                  const OT_DCI_Point* points, const OT_RGB32* colors, const Inside_Wrap& inside_wrap,
                  const Crossing_Wrap& crossing_wrap) {
  clip_polyline(renderer_of(object), rendition, count, points,
                Gouraud_Segments<Mode, Inside_Wrap, Crossing_Wrap>{object, rendition, count, points, colors,
                                                                   inside_wrap, crossing_wrap});
}

// The 2DI family. The tests, in their order: no image or a short list
// returns; wide or patterned lines (and a list without colours) go to the
// host; the RGB32 forms look at the mask, before depth off takes the form
// without depth. The mapped forms have no mask test: their inside runs are
// masked as the DCI form masks them, their crossing segments never.
template <class Mode>
void clipped_gouraud(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                     const OT_DCI_Point* points, const OT_RGB32* colors) {
  const Software_Z_Buffer& r = renderer_of(object);
  if (nothing_to_draw(r, count)) return;
  if (!colors || host_line(rendition))
    return OB_Standard_Draw_2DI_Gouraud_Polyline(object, rendition, count, points, colors);
  const bool masked = mask_in_force(r, rendition);
  if constexpr (!Mode::kIndex) {
    if (masked) return clip_gouraud<Mode>(object, rendition, count, points, colors, Masking(r), Masking(r));
  }
  if constexpr (Mode::kDepth) {
    if (depth_off(rendition))
      return clipped_gouraud<typename Mode::Without_Depth>(object, rendition, count, points, colors);
  }
  with_line_masking(masked, r, [&](const auto& inside_wrap) {
    clip_gouraud<Mode>(object, rendition, count, points, colors, inside_wrap, No_Masking{});
  });
}

}  // namespace

void mapped_dci_gouraud_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                 const OT_DCI_Point* points, const OT_RGB32* colors) {
  dci_gouraud<Mapped>(object, rendition, count, points, colors);
}
void z_mapped_dci_gouraud_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                   const OT_DCI_Point* points, const OT_RGB32* colors) {
  dci_gouraud<Z_Mapped>(object, rendition, count, points, colors);
}
void rgb32_dci_gouraud_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                const OT_DCI_Point* points, const OT_RGB32* colors) {
  dci_gouraud<Rgb32>(object, rendition, count, points, colors);
}
void rgb32_alpha_dci_gouraud_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                      const OT_DCI_Point* points, const OT_RGB32* colors) {
  dci_gouraud<Rgb32_Alpha>(object, rendition, count, points, colors);
}
void z_rgb32_dci_gouraud_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                  const OT_DCI_Point* points, const OT_RGB32* colors) {
  dci_gouraud<Z_Rgb32>(object, rendition, count, points, colors);
}
void z_rgb32_alpha_dci_gouraud_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                        const OT_DCI_Point* points, const OT_RGB32* colors) {
  dci_gouraud<Z_Rgb32_Alpha>(object, rendition, count, points, colors);
}

void mapped_2di_gouraud_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                 const OT_DCI_Point* points, const OT_RGB32* colors) {
  clipped_gouraud<Mapped>(object, rendition, count, points, colors);
}
void z_mapped_2di_gouraud_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                   const OT_DCI_Point* points, const OT_RGB32* colors) {
  clipped_gouraud<Z_Mapped>(object, rendition, count, points, colors);
}
void rgb32_2di_gouraud_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                const OT_DCI_Point* points, const OT_RGB32* colors) {
  clipped_gouraud<Rgb32>(object, rendition, count, points, colors);
}
void rgb32_alpha_2di_gouraud_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                      const OT_DCI_Point* points, const OT_RGB32* colors) {
  clipped_gouraud<Rgb32_Alpha>(object, rendition, count, points, colors);
}
void z_rgb32_2di_gouraud_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                  const OT_DCI_Point* points, const OT_RGB32* colors) {
  clipped_gouraud<Z_Rgb32>(object, rendition, count, points, colors);
}
void z_rgb32_alpha_2di_gouraud_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                        const OT_DCI_Point* points, const OT_RGB32* colors) {
  clipped_gouraud<Z_Rgb32_Alpha>(object, rendition, count, points, colors);
}

}  // namespace tarn
