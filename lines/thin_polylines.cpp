#include "lines/thin_polylines.h"

#include <type_traits>

#include "lines/line_walker.h"
#include "lines/line_writers.h"
#include "pixel/blend.h"
#include "pixel/depth_test.h"
#include "pixel/entry_tests.h"
#include "pixel/mask.h"
#include "pixel/merge.h"

namespace tarn {
namespace {

// ---- The polyline ----------------------------------------------------------------

struct Window_Point {
  std::int32_t x, y, z;
};

Window_Point window_point(const Software_Z_Buffer& r, const OT_DCI_Point& p) {
  return {p.x - r.origin_x, p.y - r.origin_y, p.z};
}

// Segments in order, writer_of(i) for segment i; the last point is left to
// the caller.
template <class Writer_Of>
void walk_segments(const Software_Z_Buffer& r, int count, const OT_DCI_Point* points, Writer_Of&& writer_of) {
  for (int i = 0; i + 1 < count; ++i) {
    const Window_Point a = window_point(r, points[i]), b = window_point(r, points[i + 1]);
    walk_segment(writer_of(i), a.x, a.y, a.z, b.x, b.y, b.z);
  }
}

// The last point of a depth polyline: its z as a signed number against the
// stored word, greater skips; otherwise colour and the low 16 bits of z,
// whatever the depth options say.
template <class Write_Color>
void depth_final_pixel(const Software_Z_Buffer& r, const OT_DCI_Point& last, Write_Color&& write_color) {
  const Window_Point p = window_point(r, last);
  std::uint16_t* z = pixel_address<std::uint16_t>(r.depth_image->device_rows, p.x, p.y);
  if (p.z > static_cast<std::int32_t>(*z)) return;
  write_color(p);
  *z = static_cast<std::uint16_t>(p.z);
}

OT_RGB32 segment_color(const OT_RGB32* colors, bool single_color, int i) {
  return colors[single_color ? 0 : i];
}

template <class Wrap>
void mapped_walk(const Software_Z_Buffer& r, const OT_Rendition& rendition, int count,
                 const OT_DCI_Point* points, const Wrap& wrap) {
  const Merge_Mapped rule(r);
  const auto writer =
      wrap(Mapped_Writer{r.color_image->device_rows, static_cast<byte>(rendition->colors->color_index),
                         merge_on(r, rendition) ? &rule : nullptr});
  walk_segments(
      r, count, points, [&](int) -> const auto& { return writer; });
  const Window_Point last = window_point(r, points[count - 1]);
  writer.pixel(last.x, last.y, 0);
}

template <class Make>
void rgb32_walk(const Software_Z_Buffer& r, int count, const OT_DCI_Point* points, const OT_RGB32* colors,
                bool single_color, Make&& make) {
  walk_segments(r, count, points, [&](int i) { return make(segment_color(colors, single_color, i)); });
  const Window_Point last = window_point(r, points[count - 1]);
  make(segment_color(colors, single_color, count - 2)).pixel(last.x, last.y, 0);
}

// Behind a mask the test is at or below and depth is always written.
template <bool kBlend, class Wrap>
void rgb32_depth_walk(const Software_Z_Buffer& r, int count, const OT_DCI_Point* points,
                      const OT_RGB32* colors, bool single_color, const Wrap& wrap) {
  byte* const* rows = r.color_image->device_rows;
  byte* const* depth_rows = r.depth_image->device_rows;
  const bool masked = !std::is_same_v<Wrap, No_Line_Masking>;
  with_depth_test(masked ? 2 : r.depth_test, [&]<class Test>() {
    auto walk = [&]<bool kWrite>() {
      walk_segments(r, count, points, [&](int i) {
        return wrap(Rgb32_Depth_Writer<Test, kWrite, kBlend>{rows, depth_rows,
                                                             segment_color(colors, single_color, i)});
      });
    };
    if (masked || r.depth_write)
      walk.template operator()<true>();
    else
      walk.template operator()<false>();
  });
  const OT_RGB32 color = segment_color(colors, single_color, count - 2);
  const Window_Point last = window_point(r, points[count - 1]);
  if (wrap.hidden(last.x, last.y)) return;
  depth_final_pixel(r, points[count - 1], [&](const Window_Point& p) {
    std::uint32_t* pixel = pixel_address<std::uint32_t>(rows, p.x, p.y);
    *pixel = kBlend ? blend_weight(*pixel, color) : color.word();
  });
}

}  // namespace

// ---- RGB32 walkers ------------------------------------------------------------

void rgb32_dci_colorized_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                  const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color) {
  if (host_line(rendition))
    return OB_Standard_Draw_DCI_Colorized_Polyline(object, rendition, count, points, colors, single_color);
  const Software_Z_Buffer& r = renderer_of(object);
  with_rgb32_writers<false>(
      r, rendition, [&](const auto& make) { rgb32_walk(r, count, points, colors, single_color, make); });
}

// A single opaque colour takes the opaque walker; merge ignores alpha.
void rgb32_alpha_dci_colorized_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                        const OT_DCI_Point* points, const OT_RGB32* colors,
                                        bool single_color) {
  if (single_color && colors[0].a > 254)
    return rgb32_dci_colorized_polyline(object, rendition, count, points, colors, single_color);
  if (host_line(rendition))
    return OB_Standard_Draw_DCI_Colorized_Polyline(object, rendition, count, points, colors, single_color);
  const Software_Z_Buffer& r = renderer_of(object);
  with_rgb32_writers<true>(
      r, rendition, [&](const auto& make) { rgb32_walk(r, count, points, colors, single_color, make); });
}

void z_rgb32_dci_colorized_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                    const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color) {
  if (rendition->device->depth_enabled == 0)
    return rgb32_dci_colorized_polyline(object, rendition, count, points, colors, single_color);
  if (host_line(rendition))
    return OB_Standard_Draw_DCI_Colorized_Polyline(object, rendition, count, points, colors, single_color);
  const Software_Z_Buffer& r = renderer_of(object);
  with_line_masking(r, rendition, [&](const auto& wrap) {
    rgb32_depth_walk<false>(r, count, points, colors, single_color, wrap);
  });
}

void z_rgb32_alpha_dci_colorized_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                          const OT_DCI_Point* points, const OT_RGB32* colors,
                                          bool single_color) {
  if (rendition->device->depth_enabled == 0)
    return rgb32_alpha_dci_colorized_polyline(object, rendition, count, points, colors, single_color);
  if (host_line(rendition))
    return OB_Standard_Draw_DCI_Colorized_Polyline(object, rendition, count, points, colors, single_color);
  const Software_Z_Buffer& r = renderer_of(object);
  // Behind a mask this mode draws as the opaque one: alpha is ignored.
  if (mask_in_force(r, rendition))
    return rgb32_depth_walk<false>(r, count, points, colors, single_color, Line_Masking(r));
  rgb32_depth_walk<true>(r, count, points, colors, single_color, No_Line_Masking{});
}

// ---- The slot functions ----------------------------------------------------------
// Line types and the two-pass halo test are not handled yet: they do not
// apply, and every line is drawn solid.

void mapped_dci_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                         const OT_DCI_Point* points) {
  if (host_line(rendition)) return OB_Standard_Draw_DCI_Polyline(object, rendition, count, points);
  const Software_Z_Buffer& r = renderer_of(object);
  with_line_masking(r, rendition, [&](const auto& wrap) { mapped_walk(r, rendition, count, points, wrap); });
}

void z_mapped_dci_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                           const OT_DCI_Point* points) {
  if (rendition->device->depth_enabled == 0) return mapped_dci_polyline(object, rendition, count, points);
  if (host_line(rendition)) return OB_Standard_Draw_DCI_Polyline(object, rendition, count, points);
  const Software_Z_Buffer& r = renderer_of(object);
  const byte index = static_cast<byte>(rendition->colors->color_index);
  with_line_masking(r, rendition, [&](const auto& wrap) {
    const auto writer =
        wrap(Mapped_Depth_Writer{r.color_image->device_rows, r.depth_image->device_rows, index});
    walk_segments(
        r, count, points, [&](int) -> const auto& { return writer; });
    const Window_Point last = window_point(r, points[count - 1]);
    if (wrap.hidden(last.x, last.y)) return;
    depth_final_pixel(r, points[count - 1], [&](const Window_Point& p) {
      *pixel_address<byte>(r.color_image->device_rows, p.x, p.y) = index;
    });
  });
}

void rgb32_dci_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                        const OT_DCI_Point* points) {
  const OT_RGB32 color = rendition->colors->color;
  rgb32_dci_colorized_polyline(object, rendition, count, points, &color, true);
}

void rgb32_alpha_dci_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                              const OT_DCI_Point* points) {
  const OT_RGB32 color = rendition->colors->color;
  rgb32_alpha_dci_colorized_polyline(object, rendition, count, points, &color, true);
}

void z_rgb32_dci_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                          const OT_DCI_Point* points) {
  const OT_RGB32 color = rendition->colors->color;
  z_rgb32_dci_colorized_polyline(object, rendition, count, points, &color, true);
}

void z_rgb32_alpha_dci_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                const OT_DCI_Point* points) {
  const OT_RGB32 color = rendition->colors->color;
  z_rgb32_alpha_dci_colorized_polyline(object, rendition, count, points, &color, true);
}

}  // namespace tarn
