// The solid path of the depth-buffered fillers: the walk with a 17.15 depth
// beside x on each edge, and a depth test before every pixel.
//
// Precision: an edge's depth starts at ((z + depth_bias) << 15) + 0x4000 and
// steps by slope15; the integer depth is the accumulator shifted right 15,
// cut to 16 bits. Depths outside 0..65535 wrap, by design.
#pragma once

#include "pixel/depth_test.h"
#include "pixel/pixel_stores.h"
#include "triangles/triangle_walk.h"

namespace tarn {

struct Depth_Attributes {
  std::int32_t z;
  Depth_Attributes& operator+=(const Depth_Attributes& step) {
    z = static_cast<std::int32_t>(static_cast<std::uint32_t>(z) + static_cast<std::uint32_t>(step.z));
    return *this;
  }
};

inline std::uint16_t depth_of(std::int32_t accumulator) { return static_cast<std::uint16_t>(accumulator >> 15); }

template <Span_Store Store, class Test, bool kWriteDepth>
struct Depth_Span_Filler {
  using Vertex = Plain_Vertex;
  using Edge_Attributes = Depth_Attributes;
  using Pixel = typename Store::Pixel;

  byte* const* rows;        // colour image
  byte* const* depth_rows;  // depth image
  Store store;
  std::int32_t depth_bias;

  Depth_Attributes edge_start(const Vertex& v) const {
    const std::uint32_t z = static_cast<std::uint32_t>(v.point->z) + static_cast<std::uint32_t>(depth_bias);
    return {static_cast<std::int32_t>((z << 15) + 0x4000u)};
  }
  Depth_Attributes edge_step(const Vertex& from, const Vertex& to, std::int32_t h) const {
    return {slope15(wrap_sub(to.point->z, from.point->z), h)};
  }

  // Depth first, then colour.
  void pixel(Pixel* p, std::uint16_t* zp, std::uint16_t d) const {
    if (!Test::passes(d, *zp)) return;
    if constexpr (kWriteDepth) *zp = d;
    store.pixel(p);
  }

  void span(std::int32_t row, std::int32_t xl, std::int32_t xr, const Depth_Attributes& left,
            const Depth_Attributes& right) const {
    const std::int32_t n = xr - xl;
    if (n < 1) return;
    Pixel* p = reinterpret_cast<Pixel*>(rows[row]) + xl;
    std::uint16_t* zp = reinterpret_cast<std::uint16_t*>(depth_rows[row]) + xl;
    if (n == 1) {
      pixel(p, zp, depth_of(left.z));
      return;
    }
    if (n == 2) {
      // The right pixel takes the middle of the two ends, and goes first.
      pixel(p + 1, zp + 1, depth_of((right.z >> 1) + (left.z >> 1)));
      pixel(p, zp, depth_of(left.z));
      return;
    }
    // The edges' fractions are dropped at the span's start; the end value is
    // not reached on the last pixel.
    const std::int32_t a = depth_of(left.z);
    const std::int32_t b = depth_of(right.z);
    const std::int32_t step = slope15(b - a, n);
    std::uint32_t z = static_cast<std::uint32_t>(a) * 32768u + 16384u;
    for (std::int32_t i = 0; i < n; ++i) {
      pixel(p + i, zp + i, static_cast<std::uint16_t>(z >> 15));
      z += static_cast<std::uint32_t>(step);
    }
  }
};

}  // namespace tarn
