// The solid path of the triangle fillers: the walk with a plain span store.
#pragma once

#include "pixel/pixel_stores.h"
#include "triangles/triangle_walk.h"

namespace tarn {

template <Span_Store Store>
struct Solid_Span_Filler {
  using Vertex = Plain_Vertex;
  using Edge_Attributes = No_Attributes;

  byte* const* rows;  // device_rows of the colour image
  Store store;

  No_Attributes edge_start(const Vertex&) const { return {}; }
  No_Attributes edge_step(const Vertex&, const Vertex&, std::int32_t) const { return {}; }
  void span(std::int32_t row, std::int32_t xl, std::int32_t xr, const No_Attributes&, const No_Attributes&) const {
    const std::int32_t n = xr - xl;
    if (n <= 0) return;
    store.span(reinterpret_cast<typename Store::Pixel*>(rows[row]) + xl, n);
  }
};

// Triangle i of a strip is points i, i+1, i+2; a count below 3 draws nothing.
template <class Filler>
inline void walk_strip(Filler& filler, int count, const OT_DCI_Point* points, std::int32_t origin_x,
                       std::int32_t origin_y) {
  for (int i = 0; i + 2 < count; ++i)
    walk_triangle(filler, {&points[i]}, {&points[i + 1]}, {&points[i + 2]}, origin_x, origin_y);
}

}  // namespace tarn
