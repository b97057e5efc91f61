#include "frame/buffer_services.h"

#include <algorithm>
#include <cstring>

#include "frame/software_z_buffer.h"

namespace tarn {
namespace {

constexpr std::int32_t kSolidPattern = 64;

// The hard clip in image coordinates, right and top cut to the image; left
// and bottom raised to 0 in l0 and b0.
struct Clear_Area {
  std::int32_t l0, r, b0, t;
  bool empty;
};

Clear_Area clear_area(const Software_Z_Buffer& renderer, const OT_Int_Rectangle& clip,
                      const OT_Shared_Image_Data& image) {
  Clear_Area area;
  const std::int32_t l = clip.left - renderer.origin_x;
  area.r = std::min(clip.right - renderer.origin_x, image.width - 1);
  const std::int32_t b = clip.bottom - renderer.origin_y;
  area.t = std::min(clip.top - renderer.origin_y, image.height - 1);
  area.empty = area.r < 0 || area.t < 0;
  area.l0 = std::max(l, 0);
  area.b0 = std::max(b, 0);
  return area;
}

void copy_rows_down(byte* const* source_rows, std::int32_t column_bytes, std::int32_t y_from,
                    std::int32_t y_to, byte* destination, std::int32_t destination_step, std::int32_t bytes) {
  if (bytes <= 0) return;
  for (std::int32_t y = y_from; y >= y_to; --y) {
    std::memcpy(destination, source_rows[y] + column_bytes, static_cast<std::size_t>(bytes));
    destination += destination_step;
  }
}

// The read forms for one pixel size and format, with no clip at all.
void read_unclipped(const Software_Z_Buffer& renderer, const OT_Shared_Image_Data& buffer,
                    OT_Image_Format own, const OT_DCI_Point* first, const OT_DCI_Point* last,
                    OT_Image_Format* format, OT_Shared_Image& image) {
  if (*format != own && *format != OT_Image_Format_Native) {
    image.reset();
    return;
  }
  const std::int32_t w = last->x - first->x + 1;
  const std::int32_t h = first->y - last->y + 1;
  const std::int32_t size = OT_Shared_Image_Data::pixel_bytes(own);
  if (image && (image->width != w || image->height != h || image->format != own)) image.reset();
  if (!image) image = OT_Shared_Image(w, h, own, w * size, nullptr, false);
  if (!image) return;
  copy_rows_down(buffer.device_rows, (first->x - renderer.origin_x) * size, first->y - renderer.origin_y,
                 last->y - renderer.origin_y, image->top_rows[0], w * size, w * size);
}

void fill_bytes(byte* p, std::int64_t n, byte value) {
  if (n > 0) std::memset(p, value, static_cast<std::size_t>(n));
}

// The colour clear of one pixel kind: a face pattern other than solid goes to
// the host; whole rows are one run over the block, from the top row down.
template <class Pixel, class Fill>
void clear_color(OT_Renderer_Data* object, const OT_Rendition& rendition, Pixel value, Fill fill) {
  const OT_Int_Rectangle& clip = rendition->device->hard_clip;
  if (rendition->face->pattern != kSolidPattern)
    return OB_Span_DC_Rectangle(object, rendition, clip.left, clip.right, clip.bottom, clip.top);
  const Software_Z_Buffer& r = renderer_of(object);
  const OT_Shared_Image_Data& image = *r.color_image;
  const Clear_Area a = clear_area(r, clip, image);
  if (a.empty) return;
  if (a.l0 == 0 && a.r == image.width - 1) {
    const std::int64_t bytes = std::int64_t(a.t - a.b0 + 1) * image.row_bytes;
    fill(reinterpret_cast<Pixel*>(image.device_rows[a.t]), bytes / std::int64_t{sizeof(Pixel)}, value);
    return;
  }
  for (std::int32_t y = a.b0; y <= a.t; ++y)
    fill(reinterpret_cast<Pixel*>(image.device_rows[y]) + a.l0, a.r - a.l0 + 1, value);
}

}  // namespace

void fill_words(std::uint32_t* p, std::int64_t n, std::uint32_t value) {
  if (n < 1) return;
  if (reinterpret_cast<std::uintptr_t>(p) & 7) {
    *p++ = value;
    --n;
  }
  // The pairs as one run the compiler turns into wide stores.
  const std::int64_t pairs = n / 2;
  std::fill_n(p, pairs * 2, value);
  if (n & 1) p[pairs * 2] = value;
}

void mapped_clear_color(OT_Renderer_Data* object, const OT_Rendition& rendition) {
  clear_color<byte>(object, rendition, rendition->colors->window_index, fill_bytes);
}

void rgb32_clear_color(OT_Renderer_Data* object, const OT_Rendition& rendition) {
  clear_color<std::uint32_t>(object, rendition, rendition->colors->window_color.word(), fill_words);
}

// Depth clears take the hard clip as it stands, without clamping, and ignore
// the face pattern: a patterned colour clear still clears depth in full.
void z_clear_depth(OT_Renderer_Data* object, const OT_Rendition& rendition) {
  const Software_Z_Buffer& r = renderer_of(object);
  const OT_Shared_Image_Data& image = *r.depth_image;
  const OT_Int_Rectangle& clip = rendition->device->hard_clip;
  const std::int32_t l = clip.left - r.origin_x;
  const std::int32_t rr = clip.right - r.origin_x;
  const std::int32_t b = clip.bottom - r.origin_y;
  const std::int32_t t = clip.top - r.origin_y;
  if (l == 0 && rr == image.width - 1) {
    const std::int64_t bytes = std::int64_t(t - b + 1) * image.row_bytes;
    if (bytes > 0) std::memset(image.device_rows[t], 255, static_cast<std::size_t>(bytes));
    return;
  }
  const std::int32_t bytes = (rr - l) * 2 + 2;
  if (bytes <= 0) return;
  for (std::int32_t y = b; y <= t; ++y)
    std::memset(image.device_rows[y] + l * 2, 255, static_cast<std::size_t>(bytes));
}

void no_clear_depth(OT_Renderer_Data*, const OT_Rendition&) {}

void mapped_read_color_rectangle(OT_Renderer_Data* object, const OT_Rendition&, const OT_DCI_Point* first,
                                 const OT_DCI_Point* last, OT_Image_Format* format, OT_Shared_Image& image) {
  const Software_Z_Buffer& r = renderer_of(object);
  read_unclipped(r, *r.color_image, OT_Image_Format_Index8, first, last, format, image);
}

void z_read_depth_rectangle(OT_Renderer_Data* object, const OT_Rendition&, const OT_DCI_Point* first,
                            const OT_DCI_Point* last, OT_Image_Format* format, OT_Shared_Image& image) {
  const Software_Z_Buffer& r = renderer_of(object);
  read_unclipped(r, *r.depth_image, OT_Image_Format_Depth16, first, last, format, image);
}

void rgb32_read_color_rectangle(OT_Renderer_Data* object, const OT_Rendition&, const OT_DCI_Point* first,
                                const OT_DCI_Point* last, OT_Image_Format* format, OT_Shared_Image& image) {
  if (*format != OT_Image_Format_RGB32 && *format != OT_Image_Format_Native) {
    image.reset();
    return;
  }
  const Software_Z_Buffer& r = renderer_of(object);
  const OT_Shared_Image_Data& buffer = *r.color_image;
  std::int32_t x = first->x - r.origin_x;
  std::int32_t ytop = first->y - r.origin_y;
  std::int32_t ybot = last->y - r.origin_y;
  const std::int32_t w = last->x - first->x + 1;
  const std::int32_t h = first->y - last->y + 1;

  if (!image || !image->full_frame) {
    if (image && !(image->width == w && image->height == h && image->format == OT_Image_Format_RGB32))
      image.reset();
    if (!image) image = OT_Shared_Image(w, h, OT_Image_Format_RGB32, w * 4, nullptr, false);
    if (!image) return;
    std::int32_t n = w * 4;
    if (w - buffer.width + x > 0) n -= (w - buffer.width + x) * 4;
    if (x < 0) {
      n += x * 4;
      x = 0;
    }
    // Cut against the height of the request, not of the buffer: a rectangle
    // whose bottom lies above row 0 may copy fewer rows than it asked for.
    if (ytop >= h) ytop = h - 1;
    if (ybot < 0) ybot = 0;
    copy_rows_down(buffer.device_rows, x * 4, ytop, ybot, image->top_rows[0], w * 4, n);
    return;
  }

  // Full frame: the caller keeps a copy of the whole buffer and refreshes
  // part of it, row for row through top_rows with the device row number.
  if (!(image->width == buffer.width && image->height == buffer.height &&
        image->format == OT_Image_Format_RGB32))
    image.reset();
  if (!image) {
    image =
        OT_Shared_Image(buffer.width, buffer.height, OT_Image_Format_RGB32, buffer.row_bytes, nullptr, false);
    if (!image) return;
    image->full_frame = 1;
  }
  std::int32_t n = (std::max(buffer.width - 1, last->x) - first->x) * 4 + 4;
  if (x < 0) {
    n += x * 4;
    x = 0;
  }
  if (ytop >= buffer.height) ytop = buffer.height - 1;
  if (ybot < 0) ybot = 0;
  if (ytop < ybot || n <= 0) return;
  for (std::int32_t y = ytop; y >= ybot; --y)
    std::memcpy(image->top_rows[y] + x * 4, buffer.top_rows[y] + x * 4, static_cast<std::size_t>(n));
}

// Only the right side is clipped; the first row is written whatever last.y is.
void z_write_depth_rectangle(OT_Renderer_Data* object, const OT_Rendition&, const OT_DCI_Point* first,
                             const OT_DCI_Point* last, int row_bytes, const byte* data) {
  const Software_Z_Buffer& r = renderer_of(object);
  const std::int32_t right = std::min(last->x, r.origin_x - 1 + r.width);
  const std::int32_t n = (right - first->x) * 2 + 2;
  if (n <= 0) return;
  byte* const* rows = r.depth_image->device_rows;
  const std::int32_t column = (first->x - r.origin_x) * 2;
  const std::int32_t y_last = last->y - r.origin_y;
  std::int32_t y = first->y - r.origin_y;
  std::memcpy(rows[y] + column, data, static_cast<std::size_t>(n));
  while (--y >= y_last) {
    data += row_bytes;
    std::memcpy(rows[y] + column, data, static_cast<std::size_t>(n));
  }
}

}  // namespace tarn
