// The span fillers without depth: the solid path (one writer a span) and the
// pattern path (a writer for clear bits, another for holes). The same fillers
// serve the all-inside walk (`span`) and the walk across the clip
// (`clipped_span`, already clamped): a clipped span is written exactly as an
// inside span of the clamped ends, the pattern's phase coming from the row and
// the clamped left end.
#pragma once

#include <type_traits>

#include "pixel/face_pattern.h"
#include "pixel/pixel_writers.h"
#include "triangles/triangle_walk.h"

namespace tarn {

// The edges of fillers that walk nothing beside x.
struct Plain_Edges {
  using Vertex = Plain_Vertex;
  using Edge_Attributes = No_Attributes;
  No_Attributes edge_start(const Vertex&) const { return {}; }
  No_Attributes edge_step(const Vertex&, const Vertex&, std::int32_t) const { return {}; }
};

// Whether a hole writer is the empty one: a hole then changes nothing at all,
// not even depth.
template <class Store>
inline constexpr bool kLeavesHoles = false;
template <class P>
inline constexpr bool kLeavesHoles<No_Store<P>> = true;

// The pixels of one span, solid. kRowGuard: rows outside 0..height-1 are
// walked but write nothing (the alpha filler's solid path alone tolerates
// them).
template <Pixel_Store Store, bool kRowGuard = false>
struct Solid_Pixels {
  using Pixel = typename Store::Pixel;
  Store store;
  std::int32_t height = 0;

  void run(byte* const* rows, std::int32_t row, std::int32_t xl, std::int32_t n) const {
    if constexpr (kRowGuard) {
      if (row < 0 || row >= height) return;
    }
    store.span(reinterpret_cast<Pixel*>(rows[row]) + xl, n, row);
  }
};

// The pixels of one span, patterned: clear bits take `main`, holes take
// `contrast` (No_Store when contrast is off). The phase of every row starts
// again from its own left end.
template <Pixel_Store Main, Pixel_Store Contrast>
struct Pattern_Pixels {
  using Pixel = typename Main::Pixel;
  Main main;
  Contrast contrast;
  const Pattern_Source* source;

  void run(byte* const* rows, std::int32_t row, std::int32_t xl, std::int32_t n) const {
    Pixel* p = reinterpret_cast<Pixel*>(rows[row]) + xl;
    Pattern_Row bits(*source, row, xl);
    for (std::int32_t i = 0; i < n; ++i, bits.next()) {
      if (!bits.hole())
        main.pixel(p + i, row);
      else if constexpr (!kLeavesHoles<Contrast>)
        contrast.pixel(p + i, row);
    }
  }
};

// Two pattern paths in one triangle: rows below split_row (its first part,
// up to the middle point) take `first`, the others `second`.
template <class First, class Second>
struct Split_Pixels {
  First first;
  Second second;
  std::int32_t split_row;

  void run(byte* const* rows, std::int32_t row, std::int32_t xl, std::int32_t n) const {
    if (row < split_row)
      first.run(rows, row, xl, n);
    else
      second.run(rows, row, xl, n);
  }
};

template <class Pixels>
struct Color_Filler : Plain_Edges {
  byte* const* rows;  // device_rows of the colour image
  Pixels pixels;

  void span(std::int32_t row, std::int32_t xl, std::int32_t xr, const No_Attributes&,
            const No_Attributes&) const {
    const std::int32_t n = xr - xl;
    if (n <= 0) return;
    pixels.run(rows, row, xl, n);
  }
  void clipped_span(std::int32_t row, std::int32_t xl, std::int32_t xr, std::int32_t, std::int32_t,
                    const No_Attributes&, const No_Attributes&) const {
    pixels.run(rows, row, xl, xr - xl);
  }
};

// What every filler of one strip shares: the colour rows, the fill, the
// pattern source and the row limit of the guarded path.
struct Fill_Setup {
  byte* const* rows;
  std::int32_t height;
  Face_Fill fill;
  bool contrast_on;
  const Pattern_Source* source;
};

// The filler without depth for one triangle's writers, on the solid or the
// pattern path, with holes painted or left: walk(filler).
template <bool kRowGuard = false, class Main, class Contrast, class Walk>
inline void with_color_filler(const Fill_Setup& setup, const Main& main, const Contrast& contrast,
                              Walk&& walk) {
  if (setup.fill == Face_Fill::solid) {
    Color_Filler<Solid_Pixels<Main, kRowGuard>> filler{{}, setup.rows, {main, setup.height}};
    walk(filler);
  } else if (setup.contrast_on) {
    Color_Filler<Pattern_Pixels<Main, Contrast>> filler{{}, setup.rows, {main, contrast, setup.source}};
    walk(filler);
  } else {
    Color_Filler<Pattern_Pixels<Main, No_Store<typename Main::Pixel>>> filler{
        {}, setup.rows, {main, {}, setup.source}};
    walk(filler);
  }
}

}  // namespace tarn
