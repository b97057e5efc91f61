// Span routines of the clip path: what a crossing triangle writes on each of
// its clamped spans. They differ from the all-inside fillers where the two
// must differ: the mapped pattern merges here, the colour of a mapped
// colorized triangle is dithered in the addition form, and depth is
// interpolated from the unclamped ends of the span.
#pragma once

#include "pixel/face_pattern.h"
#include "pixel/pixel_writers.h"
#include "triangles/depth_fill.h"
#include "triangles/triangle_walk.h"

namespace tarn {

struct Plain_Edges {
  using Vertex = Plain_Vertex;
  using Edge_Attributes = No_Attributes;
  No_Attributes edge_start(const Vertex&) const { return {}; }
  No_Attributes edge_step(const Vertex&, const Vertex&, std::int32_t) const { return {}; }
};

template <Pixel_Store Store>
struct Crossing_Solid : Plain_Edges {
  byte* const* rows;
  Store store;

  Crossing_Solid(byte* const* r, const Store& s) : rows(r), store(s) {}
  void clipped_span(std::int32_t row, std::int32_t xl, std::int32_t xr, std::int32_t, std::int32_t,
                    const No_Attributes&, const No_Attributes&) const {
    store.span(reinterpret_cast<typename Store::Pixel*>(rows[row]) + xl, xr - xl, row);
  }
};

// The pattern's phase comes from the row and the clamped left end.
template <Pixel_Store Main, Pixel_Store Contrast>
struct Crossing_Pattern : Plain_Edges {
  using Pixel = typename Main::Pixel;
  byte* const* rows;
  Main main;
  Contrast contrast;
  const Pattern_Source* source;
  bool contrast_on;

  Crossing_Pattern(byte* const* r, const Main& m, const Contrast& c, const Pattern_Source* s, bool on)
      : rows(r), main(m), contrast(c), source(s), contrast_on(on) {}
  void clipped_span(std::int32_t row, std::int32_t xl, std::int32_t xr, std::int32_t, std::int32_t,
                    const No_Attributes&, const No_Attributes&) const {
    Pixel* p = reinterpret_cast<Pixel*>(rows[row]) + xl;
    Pattern_Row bits(*source, row, xl);
    for (std::int32_t i = 0; i < xr - xl; ++i, bits.next()) {
      if (!bits.hole())
        main.pixel(p + i, row);
      else if (contrast_on)
        contrast.pixel(p + i, row);
    }
  }
};

// Depth from the span's full ends: slope15 over the unclamped width (all four
// shifts), started at the clamped left end. With a pattern (source not null)
// the test comes first, then the bit.
template <Pixel_Store Main, Pixel_Store Contrast, class Test, bool kWriteDepth>
struct Crossing_Depth : Depth_Edges {
  using Pixel = typename Main::Pixel;
  byte* const* rows;
  byte* const* depth_rows;
  Main main;
  Contrast contrast;
  const Pattern_Source* source;  // null on the solid path
  bool contrast_on;

  Crossing_Depth(std::int32_t bias, byte* const* r, byte* const* z, const Main& m, const Contrast& c,
                 const Pattern_Source* s, bool on)
      : Depth_Edges{bias}, rows(r), depth_rows(z), main(m), contrast(c), source(s), contrast_on(on) {}

  void clipped_span(std::int32_t row, std::int32_t xl, std::int32_t xr, std::int32_t full_xl, std::int32_t full_xr,
                    const Depth_Attributes& left, const Depth_Attributes& right) const {
    const std::int32_t a = depth_of(left.z);
    const std::int32_t step = slope15(depth_of(right.z) - a, full_xr - full_xl);
    std::uint32_t z = (static_cast<std::uint32_t>(a) << 15) + 0x4000u +
                      static_cast<std::uint32_t>(xl - full_xl) * static_cast<std::uint32_t>(step);
    Pixel* p = reinterpret_cast<Pixel*>(rows[row]) + xl;
    std::uint16_t* zp = reinterpret_cast<std::uint16_t*>(depth_rows[row]) + xl;
    const std::int32_t n = xr - xl;
    if (!source) {
      for (std::int32_t i = 0; i < n; ++i, z += static_cast<std::uint32_t>(step))
        depth_pixel<Test, kWriteDepth>(main, p + i, zp + i, static_cast<std::uint16_t>(z >> 15), row);
      return;
    }
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

// The crossing rows of the alpha depth mode look at alpha pixel by pixel:
// 255 stores the word, 0 leaves the colour (its depth is written all the
// same), anything between blends.
struct Alpha_Switch_Store : Pixelwise<Alpha_Switch_Store, std::uint32_t, Blend_Traits> {
  OT_RGB32 color;
  explicit Alpha_Switch_Store(OT_RGB32 c) : color(c) {}
  void pixel(Pixel* p, std::int32_t) const {
    if (color.a == 255)
      *p = color.word();
    else if (color.a != 0)
      *p = blend_exact(*p, color);
  }
};

}  // namespace tarn
