// Plain span stores: a run of one value into one row of the colour image.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "host/ot_base.h"
#include "pixel/blend.h"

namespace tarn {

// 8-bit palette index.
struct Index_Store {
  using Pixel = byte;
  byte value;
  void pixel(Pixel* p) const { *p = value; }
  void span(Pixel* p, std::int32_t n) const { std::memset(p, value, static_cast<std::size_t>(n)); }
};

// 32-bit RGB32 word, alpha byte as it came.
struct Word_Store {
  using Pixel = std::uint32_t;
  std::uint32_t value;
  void pixel(Pixel* p) const { *p = value; }
  void span(Pixel* p, std::int32_t n) const { std::fill_n(p, n, value); }
};

// The exact blend of a translucent colour, pixel alpha byte 255.
struct Blend_Exact_Store {
  using Pixel = std::uint32_t;
  OT_RGB32 color;
  void pixel(Pixel* p) const { *p = blend_exact(*p, color); }
  void span(Pixel* p, std::int32_t n) const {
    for (std::int32_t i = 0; i < n; ++i) pixel(p + i);
  }
};

template <class T>
concept Span_Store = requires(const T store, typename T::Pixel* p, std::int32_t n) {
  { store.span(p, n) };
  { store.pixel(p) };
};

}  // namespace tarn
