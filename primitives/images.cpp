#include "primitives/images.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "pixel/blend.h"
#include "pixel/entry_tests.h"
#include "pixel/fixed_point.h"
#include "pixel/mask.h"

namespace tarn {
namespace {

// advanced_options bit value 4: images store their pixels as they stand.
bool images_opaque(const OT_Rendition& rendition) {
  return (rendition->raster->advanced_options & OT_Advanced_Images) != 0;
}

// Source rows follow the client's pitch, so a word may sit anywhere.
std::uint32_t load_word(const byte* p) {
  std::uint32_t word;
  std::memcpy(&word, p, sizeof word);
  return word;
}

// The writers of the walk. A colour writer stores one source pixel, or a
// whole row of n; a depth writer is called for a pixel that passed the depth
// test and decides what it stores.
struct Index_Copy {
  using Pixel = byte;
  static constexpr bool kDepth = false;
  static constexpr std::int32_t kSourceBytes = 1;
  static void pixel(Pixel* target, const byte* source) { *target = *source; }
  static void row(Pixel* target, const byte* source, std::int32_t n) {
    std::memcpy(target, source, static_cast<std::size_t>(n));
  }
};

// Alpha bytes travel with the pixel.
struct Word_Copy {
  using Pixel = std::uint32_t;
  static constexpr bool kDepth = false;
  static constexpr std::int32_t kSourceBytes = 4;
  static void pixel(Pixel* target, const byte* source) { *target = load_word(source); }
  static void row(Pixel* target, const byte* source, std::int32_t n) {
    std::memcpy(target, source, static_cast<std::size_t>(n) * 4);
  }
};

// Alpha above 254 stores the word as it is, alpha 0 leaves the pixel (and its
// alpha byte) alone, anything between blends exactly.
struct Word_Blend {
  using Pixel = std::uint32_t;
  static constexpr bool kDepth = false;
  static constexpr std::int32_t kSourceBytes = 4;
  static void pixel(Pixel* target, const byte* source) {
    const std::uint32_t word = load_word(source);
    const std::uint32_t alpha = word >> 24;
    if (alpha > 254)
      *target = word;
    else if (alpha != 0)
      *target = blend_exact(*target, OT_RGB32::from_word(word));
  }
  static void row(Pixel* target, const byte* source, std::int32_t n) {
    for (std::int32_t i = 0; i < n; ++i) pixel(target + i, source + i * kSourceBytes);
  }
};

// A copy with depth: every passing pixel stores its depth and itself.
template <class Color>
struct Depth_Copy {
  using Pixel = typename Color::Pixel;
  static constexpr bool kDepth = true;
  static constexpr std::int32_t kSourceBytes = Color::kSourceBytes;
  static void pixel(Pixel* target, std::uint16_t* depth, const byte* source, std::uint16_t d) {
    *depth = d;
    Color::pixel(target, source);
  }
};

// The blend with depth: depth goes with any pixel written, never with alpha 0.
struct Depth_Blend {
  using Pixel = std::uint32_t;
  static constexpr bool kDepth = true;
  static constexpr std::int32_t kSourceBytes = 4;
  static void pixel(Pixel* target, std::uint16_t* depth, const byte* source, std::uint16_t d) {
    const std::uint32_t word = load_word(source);
    const std::uint32_t alpha = word >> 24;
    if (alpha > 254) {
      *depth = d;
      *target = word;
    } else if (alpha != 0) {
      *depth = d;
      *target = blend_exact(*target, OT_RGB32::from_word(word));
    }
  }
};

struct Image_Call {
  const Software_Z_Buffer& r;
  const OT_Rendition& rendition;
  const OT_DCI_Point& first;
  const OT_DCI_Point& last;
  std::int32_t row_bytes;
  const byte* data;
};

// The one walk of every image: rows from first.y down to last.y, at least one
// (the end test comes after the row), each cut at the window's right edge
// only. Source rows keep the client's pitch however much is cut.
//
// Depth ramps over the image's full width, cut or not, in one accumulator
// that steps between the pixels of a row and runs on into the next row
// without a step and without going back: each row starts at the depth the
// row before ended on. The test is at or below, whatever the options say.
//
// Under a mask each pixel asks its bit first; a masked pixel still steps the
// depth.
template <class Writer, bool kMasked>
void walk_image(const Image_Call& c) {
  using Pixel = typename Writer::Pixel;
  const Software_Z_Buffer& r = c.r;
  const std::int64_t right = std::min<std::int64_t>(c.last.x, std::int64_t{r.origin_x} + r.width - 1);
  const std::int64_t columns = right - c.first.x + 1;
  if (columns < 1) return;
  const auto n = static_cast<std::int32_t>(columns);
  const std::int32_t x = c.first.x - r.origin_x;
  const std::int32_t last_row = c.last.y - r.origin_y;
  byte* const* color_rows = r.color_image->device_rows;

  [[maybe_unused]] byte* const* depth_rows = nullptr;
  [[maybe_unused]] std::uint32_t depth = 0;
  [[maybe_unused]] std::uint32_t step = 0;
  if constexpr (Writer::kDepth) {
    depth_rows = r.depth_image->device_rows;
    depth = (static_cast<std::uint32_t>(c.first.z) << 15) + 0x4000;
    const std::int32_t dz = wrap_sub(c.last.z, c.first.z);
    const std::int32_t dx = wrap_sub(c.last.x, c.first.x);
    step = static_cast<std::uint32_t>(dx == 0 ? dz : slope15(dz, dx));
  }

  [[maybe_unused]] Mask_Cursor row_start{};
  [[maybe_unused]] std::int32_t mask_row_bits = 0;
  if constexpr (kMasked) {
    const Frame_Buffer_Mask& mask = *r.mask_cache->head;
    row_start = row_cursor(mask, c.first.y - r.origin_y);
    advance(row_start, x);
    mask_row_bits = mask.image->row_bytes * 8;
  }

  const byte* source = c.data;
  for (std::int32_t row = c.first.y - r.origin_y;; --row, source += c.row_bytes) {
    Pixel* target = reinterpret_cast<Pixel*>(color_rows[row]) + x;
    if constexpr (!Writer::kDepth && !kMasked) {
      Writer::row(target, source, n);
    } else {
      [[maybe_unused]] std::uint16_t* depth_row = nullptr;
      if constexpr (Writer::kDepth) {
        depth_row = reinterpret_cast<std::uint16_t*>(depth_rows[row]) + x;
        depth -= step;  // the row's first pixel takes no step
      }
      [[maybe_unused]] Mask_Cursor cursor = row_start;
      for (std::int32_t i = 0; i < n; ++i) {
        const byte* pixel_source = source + i * Writer::kSourceBytes;
        [[maybe_unused]] std::uint16_t d = 0;
        if constexpr (Writer::kDepth) {
          depth += step;
          d = static_cast<std::uint16_t>(static_cast<std::int32_t>(depth) >> 15);
        }
        if constexpr (kMasked) {
          const bool hidden = mask_bit(cursor);
          advance(cursor, 1);
          if (hidden) continue;
        }
        if constexpr (Writer::kDepth) {
          if (d <= depth_row[i]) Writer::pixel(target + i, depth_row + i, pixel_source, d);
        } else {
          Writer::pixel(target + i, pixel_source);
        }
      }
    }
    if (row <= last_row) break;
    if constexpr (kMasked) advance(row_start, mask_row_bits);
  }
}

// The writer as it is, or behind the mask when one is in force.
template <class Writer>
void walk_with_mask(const Image_Call& c) {
  if (mask_in_force(c.r, c.rendition))
    walk_image<Writer, true>(c);
  else
    walk_image<Writer, false>(c);
}

// The entries, their tests in order. A test that hands the call on goes to
// the point of the receiver after the tests already made.

void index_copy(const Image_Call& c) { walk_with_mask<Index_Copy>(c); }

void depth_index_copy(const Image_Call& c) {
  if (depth_off(c.rendition)) return index_copy(c);
  walk_with_mask<Depth_Copy<Index_Copy>>(c);
}

// The blend once no mask is in force: only here does bit value 4 count.
void rgb32_blend_unmasked(const Image_Call& c) {
  if (images_opaque(c.rendition))
    walk_image<Word_Copy, false>(c);
  else
    walk_image<Word_Blend, false>(c);
}

// Under a mask alpha always counts.
void rgb32_blend(const Image_Call& c) {
  if (mask_in_force(c.r, c.rendition)) return walk_image<Word_Blend, true>(c);
  rgb32_blend_unmasked(c);
}

void rgb32_copy_after_alpha_path(const Image_Call& c) { walk_with_mask<Word_Copy>(c); }

void rgb32_copy(const Image_Call& c) {
  if (alpha_path(c.rendition)) return rgb32_blend(c);
  rgb32_copy_after_alpha_path(c);
}

// The mask comes before depth_enabled here: a masked call keeps its depth.
void depth_rgb32_blend(const Image_Call& c) {
  if (mask_in_force(c.r, c.rendition)) return walk_image<Depth_Blend, true>(c);
  if (depth_off(c.rendition)) return rgb32_blend_unmasked(c);
  if (images_opaque(c.rendition))
    walk_image<Depth_Copy<Word_Copy>, false>(c);
  else
    walk_image<Depth_Blend, false>(c);
}

void depth_rgb32_copy(const Image_Call& c) {
  if (alpha_path(c.rendition)) return depth_rgb32_blend(c);
  if (depth_off(c.rendition)) return rgb32_copy_after_alpha_path(c);
  walk_with_mask<Depth_Copy<Word_Copy>>(c);
}

Image_Call index_call(OT_Renderer_Data* object, const OT_Rendition& rendition, const OT_DCI_Point* first,
                      const OT_DCI_Point* last, int row_bytes, const byte* data) {
  return {renderer_of(object), rendition, *first, *last, row_bytes, data};
}

Image_Call rgb32_call(OT_Renderer_Data* object, const OT_Rendition& rendition, const OT_DCI_Point* first,
                      const OT_DCI_Point* last, int row_bytes, const OT_RGB32* data) {
  return {renderer_of(object), rendition, *first, *last, row_bytes, reinterpret_cast<const byte*>(data)};
}

}  // namespace

void mapped_dci_index8_image(OT_Renderer_Data* object, const OT_Rendition& rendition,
                             const OT_DCI_Point* first, const OT_DCI_Point* last, int row_bytes,
                             const byte* data) {
  index_copy(index_call(object, rendition, first, last, row_bytes, data));
}

void z_mapped_dci_index8_image(OT_Renderer_Data* object, const OT_Rendition& rendition,
                               const OT_DCI_Point* first, const OT_DCI_Point* last, int row_bytes,
                               const byte* data) {
  depth_index_copy(index_call(object, rendition, first, last, row_bytes, data));
}

void rgb32_dci_rgb32_image(OT_Renderer_Data* object, const OT_Rendition& rendition, const OT_DCI_Point* first,
                           const OT_DCI_Point* last, int row_bytes, const OT_RGB32* data, int,
                           const OT_Packing*) {
  rgb32_copy(rgb32_call(object, rendition, first, last, row_bytes, data));
}

void rgb32_alpha_dci_rgb32_image(OT_Renderer_Data* object, const OT_Rendition& rendition,
                                 const OT_DCI_Point* first, const OT_DCI_Point* last, int row_bytes,
                                 const OT_RGB32* data, int, const OT_Packing*) {
  rgb32_blend(rgb32_call(object, rendition, first, last, row_bytes, data));
}

void z_rgb32_dci_rgb32_image(OT_Renderer_Data* object, const OT_Rendition& rendition,
                             const OT_DCI_Point* first, const OT_DCI_Point* last, int row_bytes,
                             const OT_RGB32* data, int, const OT_Packing*) {
  depth_rgb32_copy(rgb32_call(object, rendition, first, last, row_bytes, data));
}

void z_rgb32_alpha_dci_rgb32_image(OT_Renderer_Data* object, const OT_Rendition& rendition,
                                   const OT_DCI_Point* first, const OT_DCI_Point* last, int row_bytes,
                                   const OT_RGB32* data, int, const OT_Packing*) {
  depth_rgb32_blend(rgb32_call(object, rendition, first, last, row_bytes, data));
}

}  // namespace tarn
