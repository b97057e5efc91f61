// The solid path of the depth-buffered fillers: the walk with a 17.15 depth
// beside x on each edge, and a depth test before every pixel.
//
// Precision: an edge's depth starts at ((z + depth_bias) << 15) + 0x4000 and
// steps by slope15; the integer depth is the accumulator shifted right 15,
// cut to 16 bits. Depths outside 0..65535 wrap, by design.
#pragma once

#include "frame/software_z_buffer.h"
#include "pixel/depth_test.h"
#include "pixel/face_pattern.h"
#include "pixel/pixel_writers.h"
#include "triangles/triangle_walk.h"

namespace tarn {

struct Depth_Attributes {
  std::int32_t z;
  Depth_Attributes& operator+=(const Depth_Attributes& step) {
    z = static_cast<std::int32_t>(static_cast<std::uint32_t>(z) + static_cast<std::uint32_t>(step.z));
    return *this;
  }
  void add_scaled(const Depth_Attributes& step, std::int32_t n) {
    z = static_cast<std::int32_t>(static_cast<std::uint32_t>(z) +
                                  static_cast<std::uint32_t>(step.z) * static_cast<std::uint32_t>(n));
  }
};

inline std::uint16_t depth_of(std::int32_t accumulator) { return static_cast<std::uint16_t>(accumulator >> 15); }

// Depth on the edges: the biased z of each vertex, in 17.15.
struct Depth_Edges {
  using Vertex = Plain_Vertex;
  using Edge_Attributes = Depth_Attributes;

  std::int32_t depth_bias;

  Depth_Attributes edge_start(const Vertex& v) const {
    const std::uint32_t z = static_cast<std::uint32_t>(v.point->z) + static_cast<std::uint32_t>(depth_bias);
    return {static_cast<std::int32_t>((z << 15) + 0x4000u)};
  }
  Depth_Attributes edge_step(const Vertex& from, const Vertex& to, std::int32_t h) const {
    return {slope15(wrap_sub(to.point->z, from.point->z), h)};
  }
};

template <Pixel_Store Store, class Test, bool kWriteDepth>
struct Depth_Span_Filler : Depth_Edges {
  using Pixel = typename Store::Pixel;

  byte* const* rows;        // colour image
  byte* const* depth_rows;  // depth image
  Store store;

  Depth_Span_Filler(std::int32_t bias, byte* const* r, byte* const* z, const Store& s)
      : Depth_Edges{bias}, rows(r), depth_rows(z), store(s) {}

  void pixel(Pixel* p, std::uint16_t* zp, std::uint16_t d, std::int32_t row) const {
    depth_pixel<Test, kWriteDepth>(store, p, zp, d, row);
  }

  void span(std::int32_t row, std::int32_t xl, std::int32_t xr, const Depth_Attributes& left,
            const Depth_Attributes& right) const {
    const std::int32_t n = xr - xl;
    if (n < 1) return;
    Pixel* p = reinterpret_cast<Pixel*>(rows[row]) + xl;
    std::uint16_t* zp = reinterpret_cast<std::uint16_t*>(depth_rows[row]) + xl;
    if (n == 1) {
      pixel(p, zp, depth_of(left.z), row);
      return;
    }
    if (n == 2) {
      // The right pixel takes the middle of the two ends, and goes first.
      pixel(p + 1, zp + 1, depth_of((right.z >> 1) + (left.z >> 1)), row);
      pixel(p, zp, depth_of(left.z), row);
      return;
    }
    // The edges' fractions are dropped at the span's start; the end value is
    // not reached on the last pixel.
    const std::int32_t a = depth_of(left.z);
    const std::int32_t b = depth_of(right.z);
    const std::int32_t step = slope15(b - a, n);
    std::uint32_t z = static_cast<std::uint32_t>(a) * 32768u + 16384u;
    for (std::int32_t i = 0; i < n; ++i) {
      pixel(p + i, zp + i, static_cast<std::uint16_t>(z >> 15), row);
      z += static_cast<std::uint32_t>(step);
    }
  }
};

// The pattern path: depth stepped over every span alike, the test before the
// pattern bit, and the column phase moving on whatever the test says.
template <Pixel_Store Main, Pixel_Store Contrast, class Test, bool kWriteDepth>
struct Depth_Pattern_Span_Filler : Depth_Edges {
  using Pixel = typename Main::Pixel;

  byte* const* rows;
  byte* const* depth_rows;
  Main main;
  Contrast contrast;
  const Pattern_Source* source;
  bool contrast_on;

  Depth_Pattern_Span_Filler(std::int32_t bias, byte* const* r, byte* const* z, const Main& m, const Contrast& c,
                            const Pattern_Source* s, bool on)
      : Depth_Edges{bias}, rows(r), depth_rows(z), main(m), contrast(c), source(s), contrast_on(on) {}

  void span(std::int32_t row, std::int32_t xl, std::int32_t xr, const Depth_Attributes& left,
            const Depth_Attributes& right) const {
    const std::int32_t n = xr - xl;
    if (n < 1) return;
    Pixel* p = reinterpret_cast<Pixel*>(rows[row]) + xl;
    std::uint16_t* zp = reinterpret_cast<std::uint16_t*>(depth_rows[row]) + xl;
    const std::int32_t a = depth_of(left.z);
    const std::int32_t step = slope15(depth_of(right.z) - a, n);
    std::uint32_t z = static_cast<std::uint32_t>(a) * 32768u + 16384u;
    Pattern_Row bits(*source, row, xl);
    for (std::int32_t i = 0; i < n; ++i, bits.next(), z += static_cast<std::uint32_t>(step)) {
      const std::uint16_t d = static_cast<std::uint16_t>(z >> 15);
      if (!bits.hole())
        depth_pixel<Test, kWriteDepth>(main, p + i, zp + i, d, row);
      else if (contrast_on)
        depth_pixel<Test, kWriteDepth>(contrast, p + i, zp + i, d, row);
    }
  }
};

// Walks a strip, triangle i with the store store_of(i), on the solid or the
// pattern path.
template <class Test, bool kWriteDepth, class Store_Of, class Contrast>
void fill_depth_strip(const Software_Z_Buffer& r, const OT_Rendition& rendition, int count,
                      const OT_DCI_Point* points, Face_Fill fill, Stipple_Flags flags, Store_Of store_of,
                      const Contrast& contrast) {
  using Store = decltype(store_of(0));
  const std::int32_t bias = rendition->face->depth_bias;
  byte* const* rows = r.color_image->device_rows;
  byte* const* depth_rows = r.depth_image->device_rows;
  if (fill == Face_Fill::solid) {
    for (int i = 0; i + 2 < count; ++i) {
      Depth_Span_Filler<Store, Test, kWriteDepth> filler(bias, rows, depth_rows, store_of(i));
      walk_triangle(filler, {&points[i]}, {&points[i + 1]}, {&points[i + 2]}, r.origin_x, r.origin_y);
    }
    return;
  }
  const Pattern_Source source = Pattern_Source::of(rendition, flags);
  for (int i = 0; i + 2 < count; ++i) {
    Depth_Pattern_Span_Filler<Store, Contrast, Test, kWriteDepth> filler(bias, rows, depth_rows, store_of(i),
                                                                         contrast, &source, flags.contrast);
    walk_triangle(filler, {&points[i]}, {&points[i + 1]}, {&points[i + 2]}, r.origin_x, r.origin_y);
  }
}

// "ZBuffer Write" is read afresh for each primitive.
template <class Test, class... Args>
void fill_depth_strip_writing(const Software_Z_Buffer& r, Args&&... args) {
  if (r.depth_write)
    fill_depth_strip<Test, true>(r, args...);
  else
    fill_depth_strip<Test, false>(r, args...);
}

}  // namespace tarn
