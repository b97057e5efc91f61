#include "lines/clipped_polylines.h"

#include <algorithm>
#include <cstdlib>

#include "lines/line_walker.h"
#include "lines/line_writers.h"
#include "lines/segment_clipper.h"
#include "lines/thin_polylines.h"
#include "pixel/entry_tests.h"
#include "pixel/mask.h"
#include "triangles/clip_path.h"

namespace tarn {
namespace {

// The clipped walker of one crossing segment. Positions are in device space;
// the origin comes off only where a pixel is addressed.
template <class Writer>
void draw_clipped_segment(const Software_Z_Buffer& r, const OT_Int_Rectangle& clip, const OT_DCI_Point& a,
                          const OT_DCI_Point& b, short start_code, short end_code, const Writer& writer) {
  const std::int32_t dx = b.x - a.x, dy = b.y - a.y;
  const std::int32_t sx = dx < 0 ? -1 : 1, sy = dy < 0 ? -1 : 1;
  // Depth of the k-th pixel from the start along the major axis.
  const bool x_major = std::abs(dx) > std::abs(dy);
  const Line_Depth depth =
      Writer::kDepth ? Line_Depth(a.z, b.z, x_major ? std::abs(dx) : std::abs(dy)) : Line_Depth();
  auto depth_at = [&depth](std::int32_t k) -> std::uint16_t {
    if constexpr (!Writer::kDepth) return 0;
    return static_cast<std::uint16_t>(
        static_cast<std::int32_t>(depth.pos + depth.step * static_cast<std::uint32_t>(k)) >> 15);
  };
  auto put = [&](std::int32_t x, std::int32_t y, std::int32_t k) {
    writer.pixel(x - r.origin_x, y - r.origin_y, depth_at(k));
  };

  if (dx == 0) {
    // Vertical: the column is inside; rows clamped, written upward.
    std::int32_t low = dy > 0 ? a.y : b.y + 1, high = dy > 0 ? b.y - 1 : a.y;
    low = std::max(low, clip.bottom);
    high = std::min(high, clip.top);
    for (std::int32_t y = low; y <= high; ++y) put(a.x, y, std::abs(y - a.y));
    return;
  }
  if (dy == 0) {
    std::int32_t low = dx > 0 ? a.x : b.x + 1, high = dx > 0 ? b.x - 1 : a.x;
    low = std::max(low, clip.left);
    high = std::min(high, clip.right);
    for (std::int32_t x = low; x <= high; ++x) put(x, a.y, std::abs(x - a.x));
    return;
  }

  Clip_Line line = make_clip_line(a, b);
  Clip_Rows rows;
  if (!clip_rows(line, b, start_code, end_code, clip, rows)) return;
  const std::int32_t n = std::abs(rows.last_row - rows.first_row);
  const std::int32_t skipped_rows = std::abs(rows.first_row - a.y);
  const int kind = (line.code - 5) % 3;  // 0 shallow, 1 diagonal, 2 steep

  if (kind == 1) {
    const std::int32_t count = n + (rows.include_end ? 1 : 0);
    for (std::int32_t i = 0; i < count; ++i)
      put(a.x + sx * (skipped_rows + i), rows.first_row + sy * i, skipped_rows + i);
    return;
  }
  if (kind == 2) {
    // No correction for both directions negative here, unlike the unclipped
    // walker: a clipped segment of that direction may sit one column over.
    std::uint32_t pos = (line.pos & 0xFFFF0000u) | 0x8000u;
    pos += static_cast<std::uint32_t>(skipped_rows) * static_cast<std::uint32_t>(line.step);
    const std::int32_t count = n + (rows.include_end ? 1 : 0);
    for (std::int32_t i = 0; i < count; ++i, pos += static_cast<std::uint32_t>(line.step))
      put(static_cast<std::int32_t>(pos) >> 16, rows.first_row + sy * i, skipped_rows + i);
    return;
  }

  // Shallow: the unclipped walker's state taken up at the first row.
  const std::int32_t step = line.step;
  const std::uint32_t base = static_cast<std::uint32_t>(a.x) << 16;
  std::uint32_t start;
  if (dx > 0 && dy > 0)
    start = (base | 0xFFFFu) + static_cast<std::uint32_t>(step >> 1);
  else if (dx < 0 && dy > 0)
    start = base + static_cast<std::uint32_t>((step + 1) >> 1);
  else if (dx > 0)
    start = base + 0x10000u + static_cast<std::uint32_t>(step >> 1);
  else
    start = base - 1u + static_cast<std::uint32_t>((step + 1) >> 1);
  auto hi = [](std::uint32_t p) { return static_cast<std::int32_t>(p) >> 16; };

  std::uint32_t pos = start;
  std::int32_t column = a.x;
  if (start_code != 0) {
    pos = start - static_cast<std::uint32_t>(step) +
          static_cast<std::uint32_t>(skipped_rows) * static_cast<std::uint32_t>(step);
    column = hi(pos);
    column = dx < 0 ? std::min(column, clip.right) : std::max(column, clip.left);
    pos += static_cast<std::uint32_t>(step);
  }
  std::int32_t k = std::abs(column - a.x);
  auto run = [&](std::int32_t from, std::int32_t to, std::int32_t y) {
    if (dx > 0) {
      for (std::int32_t x = from; x < to; ++x) put(x, y, k++);
    } else {
      for (std::int32_t x = from; x > to; --x) put(x, y, k++);
    }
  };
  std::int32_t y = rows.first_row;
  for (std::int32_t i = 0; i < n; ++i, y += sy) {
    const std::int32_t h = hi(pos);
    run(column, h, y);
    column = h;
    pos += static_cast<std::uint32_t>(step);
  }
  std::int32_t stop = b.x;
  if (end_code != 0) stop = dx < 0 ? std::max(clip.left - 1, hi(pos)) : std::min(clip.right + 1, hi(pos));
  run(column, stop, y);
}

using Polyline_Function = void (*)(OT_Renderer_Data*, const OT_Rendition&, int, const OT_DCI_Point*);

// The steps common to all modes, from the outcodes on.
template <class Writer>
void clip_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                   const OT_DCI_Point* points, Polyline_Function inside, bool keep_depth,
                   const Writer& writer) {
  const Software_Z_Buffer& r = renderer_of(object);
  const OT_Int_Rectangle& clip = rendition->device->hard_clip;
  Outcode_Buffer buffer(count);
  short* codes = buffer.data();
  const int result = OB_Clip(clip, count, points, codes);
  if (result == count) return inside(object, rendition, count, points);
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
          inside(object, rendition, 2, cut);
        else if ((start_code & end_code) == 0)
          draw_clipped_segment(r, clip, cut[0], cut[1], start_code, end_code, writer);
      }
      ++i;
      continue;
    }
    // An inside run; its last point is written again by the crossing
    // segment that follows it, which shows under alpha.
    int j = i + 1;
    while (codes[j + 1] == 0) ++j;
    inside(object, rendition, j - i + 1, points + i);
    i = j;
  }
}

}  // namespace

void mapped_2di_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                         const OT_DCI_Point* points) {
  const Software_Z_Buffer& r = renderer_of(object);
  if (nothing_to_draw(r, count)) return;
  if (host_line(rendition)) return OB_Standard_Draw_2DI_Polyline(object, rendition, count, points);
  const Merge_Mapped rule(r);
  const Mapped_Writer writer{r.color_image->device_rows, static_cast<byte>(rendition->colors->color_index),
                             merge_on(r, rendition) ? &rule : nullptr};
  with_line_masking(r, rendition, [&](const auto& wrap) {
    clip_polyline(object, rendition, count, points, mapped_dci_polyline, false, wrap(writer));
  });
}

void rgb32_2di_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                        const OT_DCI_Point* points) {
  const Software_Z_Buffer& r = renderer_of(object);
  if (nothing_to_draw(r, count)) return;
  if (host_line(rendition)) return OB_Standard_Draw_2DI_Polyline(object, rendition, count, points);
  with_rgb32_writers<false>(r, rendition, [&](const auto& make) {
    clip_polyline(object, rendition, count, points, rgb32_dci_polyline, false,
                  make(rendition->colors->color));
  });
}

void rgb32_alpha_2di_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                              const OT_DCI_Point* points) {
  const Software_Z_Buffer& r = renderer_of(object);
  if (nothing_to_draw(r, count)) return;
  if (host_line(rendition)) return OB_Standard_Draw_2DI_Polyline(object, rendition, count, points);
  with_rgb32_writers<true>(r, rendition, [&](const auto& make) {
    clip_polyline(object, rendition, count, points, rgb32_alpha_dci_polyline, false,
                  make(rendition->colors->color));
  });
}

// No mask test: the inside runs are masked by the DCI action itself.
void z_mapped_2di_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                           const OT_DCI_Point* points) {
  const Software_Z_Buffer& r = renderer_of(object);
  if (nothing_to_draw(r, count)) return;
  if (host_line(rendition)) return OB_Standard_Draw_2DI_Polyline(object, rendition, count, points);
  if (rendition->device->depth_enabled == 0) return mapped_2di_polyline(object, rendition, count, points);
  const Mapped_Depth_Writer writer{r.color_image->device_rows, r.depth_image->device_rows,
                                   static_cast<byte>(rendition->colors->color_index)};
  clip_polyline(object, rendition, count, points, z_mapped_dci_polyline, true, writer);
}

namespace {

// Behind a mask: at or below, depth always written, and the colour stored
// whole, alpha not honoured.
template <bool kBlend>
void z_rgb32_clip_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                           const OT_DCI_Point* points, Polyline_Function inside) {
  const Software_Z_Buffer& r = renderer_of(object);
  const OT_RGB32 color = rendition->colors->color;
  byte* const* rows = r.color_image->device_rows;
  byte* const* depth_rows = r.depth_image->device_rows;
  if (mask_in_force(r, rendition)) {
    clip_polyline(
        object, rendition, count, points, inside, true,
        Line_Masking(r)(Rgb32_Depth_Writer<Depth_At_Or_Below, true, false>{rows, depth_rows, color}));
    return;
  }
  with_depth_test(r.depth_test, [&]<class Test>() {
    if (r.depth_write)
      clip_polyline(object, rendition, count, points, inside, true,
                    Rgb32_Depth_Writer<Test, true, kBlend>{rows, depth_rows, color});
    else
      clip_polyline(object, rendition, count, points, inside, true,
                    Rgb32_Depth_Writer<Test, false, kBlend>{rows, depth_rows, color});
  });
}

}  // namespace

void z_rgb32_2di_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                          const OT_DCI_Point* points) {
  const Software_Z_Buffer& r = renderer_of(object);
  if (nothing_to_draw(r, count)) return;
  if (host_line(rendition)) return OB_Standard_Draw_2DI_Polyline(object, rendition, count, points);
  if (rendition->device->depth_enabled == 0) return rgb32_2di_polyline(object, rendition, count, points);
  z_rgb32_clip_polyline<false>(object, rendition, count, points, z_rgb32_dci_polyline);
}

void z_rgb32_alpha_2di_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                const OT_DCI_Point* points) {
  const Software_Z_Buffer& r = renderer_of(object);
  if (nothing_to_draw(r, count)) return;
  if (host_line(rendition)) return OB_Standard_Draw_2DI_Polyline(object, rendition, count, points);
  if (rendition->device->depth_enabled == 0)
    return rgb32_alpha_2di_polyline(object, rendition, count, points);
  z_rgb32_clip_polyline<true>(object, rendition, count, points, z_rgb32_alpha_dci_polyline);
}

}  // namespace tarn
