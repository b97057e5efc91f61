// Whether a complex clip mask applies to a primitive, and the bit cursor with
// which masked pixels are tested. A set bit hides its pixel.
#pragma once

#include "frame/software_z_buffer.h"
#include "pixel/pixel_writers.h"

namespace tarn {

// True guarantees that the cache's head is the mask of this rendition's clip.
// Without a cache ("Use Mask" off) no mask is ever in force, which every
// primitive call finds out inline.
bool mask_in_force_with_cache(const Software_Z_Buffer& renderer, const OT_Rendition& rendition);
inline bool mask_in_force(const Software_Z_Buffer& renderer, const OT_Rendition& rendition) {
  return renderer.mask_cache && mask_in_force_with_cache(renderer, rendition);
}

// The mask whose key is the clip's serial, made (or rebuilt in the least
// recently used entry) when missing, and moved to the head of the list.
Frame_Buffer_Mask* find_or_make(Mask_Cache_Data& cache, const OT_Contour_Set& clip, int width, int height,
                                int origin_x, int origin_y);

// A position in a mask row: pixels run from the high bit of a byte to the
// low bit, x growing with the bit number.
struct Mask_Cursor {
  const byte* address;
  int bit;
};

inline Mask_Cursor row_cursor(const Frame_Buffer_Mask& mask, std::int32_t row) {
  return {mask.image->device_rows[row], 0};
}

// Moves by n pixels, n of either sign.
inline void advance(Mask_Cursor& cursor, std::int32_t n) {
  if (n < 0) {
    cursor.address -= (7 - n) >> 3;
    n += (7 - n) & ~7;
  }
  const std::int32_t t = cursor.bit + n;
  cursor.address += t >> 3;
  cursor.bit = t & 7;
}

inline bool mask_bit(const Mask_Cursor& cursor) { return (*cursor.address & (128 >> cursor.bit)) != 0; }

// One pixel to the right.
inline void step(Mask_Cursor& cursor) {
  if (++cursor.bit == 8) {
    cursor.bit = 0;
    ++cursor.address;
  }
}

// The cursor of a window-relative pixel in the head mask.
inline Mask_Cursor mask_cursor_at(const Software_Z_Buffer& renderer, std::int32_t row, std::int32_t x) {
  Mask_Cursor cursor = row_cursor(*renderer.mask_cache->head, row);
  advance(cursor, x);
  return cursor;
}

// The bit of one window-relative pixel.
inline bool masked_bit(const Frame_Buffer_Mask& mask, std::int32_t x, std::int32_t y) {
  Mask_Cursor cursor = row_cursor(mask, y);
  advance(cursor, x);
  return mask_bit(cursor);
}

}  // namespace tarn

namespace tarn {

// A writer behind the complex clip: the pixel is written only where the head
// mask's bit is clear. The pixel's column comes from its address in the row,
// so every primitive can use it, whatever it knows of its columns.
template <Pixel_Store Store>
struct Masked_Store : Pixelwise<Masked_Store<Store>, typename Store::Pixel> {
  using Pixel = typename Store::Pixel;
  static constexpr bool kMasked = true;
  static constexpr bool kMerge = Store::kMerge;
  static constexpr bool kBlend = Store::kBlend;
  Store inner;
  byte* const* rows;
  const Frame_Buffer_Mask* mask;

  Masked_Store(const Store& s, byte* const* r, const Frame_Buffer_Mask* m) : inner(s), rows(r), mask(m) {}
  Mask_Cursor cursor_at(const Pixel* p, std::int32_t row) const {
    Mask_Cursor cursor = row_cursor(*mask, row);
    advance(cursor, static_cast<std::int32_t>(p - reinterpret_cast<const Pixel*>(rows[row])));
    return cursor;
  }
  bool hidden(const Pixel* p, std::int32_t row) const { return mask_bit(cursor_at(p, row)); }
  void pixel(Pixel* p, std::int32_t row) const {
    if (!hidden(p, row)) inner.pixel(p, row);
  }
  // A run finds its first bit once and steps the cursor beside the pixel; a
  // whole mask byte of eight clear or eight set bits is one run of the inner
  // writer or nothing.
  void span(Pixel* p, std::int32_t n, std::int32_t row) const {
    Mask_Cursor cursor = cursor_at(p, row);
    std::int32_t i = 0;
    for (; i < n && cursor.bit != 0; ++i, step(cursor))
      if (!mask_bit(cursor)) inner.pixel(p + i, row);
    for (; i + 8 <= n; i += 8, ++cursor.address) {
      const byte bits = *cursor.address;
      if (bits == 0) {
        inner.span(p + i, 8, row);
      } else if (bits != 0xFF) {
        for (int k = 0; k < 8; ++k)
          if (!(bits & (128 >> k))) inner.pixel(p + i + k, row);
      }
    }
    for (; i < n; ++i, step(cursor))
      if (!mask_bit(cursor)) inner.pixel(p + i, row);
  }
};

// Behind the mask a triangle's blend leaves the pixel's alpha byte as it was,
// where the unmasked blend makes it 255.
using Masked_Blend_Store = Masked_Store<Blend_Exact_Store_Of<true>>;

// How a filler's writers are made: as they are, or behind the mask. Chosen
// once per call, so that no unmasked pixel loop pays for the test.
struct No_Masking {
  template <class Store>
  const Store& operator()(const Store& store) const {
    return store;
  }
};

struct Masking {
  byte* const* rows;
  const Frame_Buffer_Mask* mask;
  explicit Masking(const Software_Z_Buffer& r) : rows(r.color_image->device_rows), mask(r.mask_cache->head) {}
  template <class Store>
  Masked_Store<Store> operator()(const Store& store) const {
    return Masked_Store<Store>(store, rows, mask);
  }
  Masked_Blend_Store operator()(const Blend_Exact_Store& store) const {
    return Masked_Blend_Store(Blend_Exact_Store_Of<true>(store.color), rows, mask);
  }
};

// Runs body(No_Masking) or, with a mask in force, body(Masking).
template <class Body>
inline void with_masking(const Software_Z_Buffer& r, const OT_Rendition& rendition, Body&& body) {
  if (mask_in_force(r, rendition))
    body(Masking(r));
  else
    body(No_Masking{});
}

}  // namespace tarn
