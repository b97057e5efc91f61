// The span fillers of the all-inside triangle walk: the solid path (one writer
// a span) and the pattern path (a writer for clear bits, another for holes).
#pragma once

#include "frame/software_z_buffer.h"
#include "pixel/face_pattern.h"
#include "pixel/pixel_writers.h"
#include "triangles/triangle_walk.h"

namespace tarn {

// kRowGuard: rows outside 0..height-1 are walked but write nothing (the
// alpha filler's solid path alone tolerates them).
template <Pixel_Store Store, bool kRowGuard = false>
struct Solid_Span_Filler {
  using Vertex = Plain_Vertex;
  using Edge_Attributes = No_Attributes;

  byte* const* rows;  // device_rows of the colour image
  Store store;
  std::int32_t height = 0;

  No_Attributes edge_start(const Vertex&) const { return {}; }
  No_Attributes edge_step(const Vertex&, const Vertex&, std::int32_t) const { return {}; }
  void span(std::int32_t row, std::int32_t xl, std::int32_t xr, const No_Attributes&, const No_Attributes&) const {
    if constexpr (kRowGuard) {
      if (row < 0 || row >= height) return;
    }
    const std::int32_t n = xr - xl;
    if (n <= 0) return;
    store.span(reinterpret_cast<typename Store::Pixel*>(rows[row]) + xl, n, row);
  }
};

// Clear bits take `main`, holes take `contrast` (No_Store when contrast is
// off). The phase of every row starts again from its own left end.
template <Pixel_Store Main, Pixel_Store Contrast>
struct Pattern_Span_Filler {
  using Vertex = Plain_Vertex;
  using Edge_Attributes = No_Attributes;
  using Pixel = typename Main::Pixel;

  byte* const* rows;
  Main main;
  Contrast contrast;
  const Pattern_Source* source;

  No_Attributes edge_start(const Vertex&) const { return {}; }
  No_Attributes edge_step(const Vertex&, const Vertex&, std::int32_t) const { return {}; }
  void span(std::int32_t row, std::int32_t xl, std::int32_t xr, const No_Attributes&, const No_Attributes&) const {
    const std::int32_t n = xr - xl;
    if (n <= 0) return;
    Pixel* p = reinterpret_cast<Pixel*>(rows[row]) + xl;
    Pattern_Row bits(*source, row, xl);
    for (std::int32_t i = 0; i < n; ++i, bits.next()) {
      if (!bits.hole())
        main.pixel(p + i, row);
      else
        contrast.pixel(p + i, row);
    }
  }
};

// Triangle i of a strip is points i, i+1, i+2; a count below 3 draws nothing.
template <class Filler>
inline void walk_strip(Filler& filler, int count, const OT_DCI_Point* points, std::int32_t origin_x,
                       std::int32_t origin_y) {
  for (int i = 0; i + 2 < count; ++i)
    walk_triangle(filler, {&points[i]}, {&points[i + 1]}, {&points[i + 2]}, origin_x, origin_y);
}

// The pattern path with or without contrast, chosen once per list.
template <class Main, class Contrast_Store, class Walk>
inline void with_pattern_filler(byte* const* rows, const Main& main, bool contrast_on, const Contrast_Store& contrast,
                                const Pattern_Source& source, Walk&& walk) {
  if (contrast_on) {
    Pattern_Span_Filler<Main, Contrast_Store> filler{rows, main, contrast, &source};
    walk(filler);
  } else {
    Pattern_Span_Filler<Main, No_Store<typename Main::Pixel>> filler{rows, main, {}, &source};
    walk(filler);
  }
}

// Walks a strip, triangle i with the store store_of(i), on the solid or the
// pattern path (holes in `contrast` when contrast is on).
template <class Store_Of, class Contrast>
void fill_strip(const Software_Z_Buffer& r, const OT_Rendition& rendition, int count, const OT_DCI_Point* points,
                Face_Fill fill, Stipple_Flags flags, Store_Of store_of, const Contrast& contrast) {
  using Store = decltype(store_of(0));
  byte* const* rows = r.color_image->device_rows;
  if (fill == Face_Fill::solid) {
    for (int i = 0; i + 2 < count; ++i) {
      Solid_Span_Filler<Store> filler{rows, store_of(i)};
      walk_triangle(filler, {&points[i]}, {&points[i + 1]}, {&points[i + 2]}, r.origin_x, r.origin_y);
    }
    return;
  }
  const Pattern_Source source = Pattern_Source::of(rendition, flags);
  for (int i = 0; i + 2 < count; ++i)
    with_pattern_filler(rows, store_of(i), flags.contrast, contrast, source, [&](auto& filler) {
      walk_triangle(filler, {&points[i]}, {&points[i + 1]}, {&points[i + 2]}, r.origin_x, r.origin_y);
    });
}

}  // namespace tarn
