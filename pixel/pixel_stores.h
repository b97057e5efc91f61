// Plain span stores: a run of one value into one row of the colour image.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "host/ot_base.h"

namespace tarn {

// 8-bit palette index.
struct Index_Store {
  using Pixel = byte;
  byte value;
  void span(Pixel* p, std::int32_t n) const { std::memset(p, value, static_cast<std::size_t>(n)); }
};

// 32-bit RGB32 word, alpha byte as it came.
struct Word_Store {
  using Pixel = std::uint32_t;
  std::uint32_t value;
  void span(Pixel* p, std::int32_t n) const { std::fill_n(p, n, value); }
};

template <class T>
concept Span_Store = requires(const T store, typename T::Pixel* p, std::int32_t n) {
  { store.span(p, n) };
};

}  // namespace tarn
