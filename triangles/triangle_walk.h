// The fixed-point triangle walk shared by every triangle filler.
//
// Precision: x runs in 16.16 fixed point in 32 bits. Callers guarantee that
// all points of a walked triangle lie within a square of 32760 pixels (the
// drawing area, or the walk limits of the clip path), so a difference of x
// shifted left by 16 stays below 2^31 and a slope never overflows. x is read
// back as the upper 16 bits taken unsigned, which is right for the
// non-negative window-relative columns that the callers allow.
//
// The walk is one template over its filler. A filler supplies:
//   using Vertex           a record with `const OT_DCI_Point* point` and any
//                          per-vertex attributes (colours, ...);
//   using Edge_Attributes  values walked beside x on each edge (depth, ...),
//                          with += ; No_Attributes when there are none;
//   Edge_Attributes edge_start(const Vertex&)
//   Edge_Attributes edge_step(const Vertex& from, const Vertex& to, int32_t rows)
//   void span(int32_t row, int32_t xl, int32_t xr,
//             const Edge_Attributes& left, const Edge_Attributes& right)
// where row is window-relative and the span covers xl <= x < xr. Nothing a
// filler does feeds back into the walk.
#pragma once

#include <cstdint>
#include <utility>

#include "host/ot_base.h"
#include "pixel/fixed_point.h"

namespace tarn {

struct No_Attributes {
  No_Attributes& operator+=(const No_Attributes&) { return *this; }
  void add_scaled(const No_Attributes&, std::int32_t) {}
};

// A vertex with nothing but its point.
struct Plain_Vertex {
  const OT_DCI_Point* point;
};

template <class Attributes>
struct Walk_Edge {
  std::uint32_t x;  // 16.16, wraps
  std::int32_t dx;
  Attributes a;
  Attributes da;

  void step() {
    x += static_cast<std::uint32_t>(dx);
    a += da;
  }
  std::int32_t column() const { return static_cast<std::int32_t>(x >> 16); }
};

// Walks one triangle: stable sort by y, a long edge from the least to the
// greatest y and a short edge in two parts; spans half open on the right and
// rows half open at the greatest y.
template <class Filler>
inline void walk_triangle(Filler& filler, typename Filler::Vertex t, typename Filler::Vertex m,
                          typename Filler::Vertex b, std::int32_t origin_x, std::int32_t origin_y) {
  using Attributes = typename Filler::Edge_Attributes;

  // Three strict comparisons: equal y never change places.
  if (t.point->y > m.point->y) std::swap(t, m);
  if (m.point->y > b.point->y) std::swap(m, b);
  if (t.point->y > m.point->y) std::swap(t, m);

  const std::int32_t h = wrap_sub(b.point->y, t.point->y);
  if (h < 1) return;

  const std::int32_t tx = wrap_sub(t.point->x, origin_x);
  const std::int32_t mx = wrap_sub(m.point->x, origin_x);
  const std::int32_t bx = wrap_sub(b.point->x, origin_x);
  std::int32_t row = wrap_sub(t.point->y, origin_y);

  Walk_Edge<Attributes> long_edge{(static_cast<std::uint32_t>(tx) << 16) + 0x8000u, slope(wrap_sub(bx, tx), h),
                                  filler.edge_start(t), filler.edge_step(t, b, h)};
  Walk_Edge<Attributes> short_edge;

  auto draw = [&](const Walk_Edge<Attributes>* left, const Walk_Edge<Attributes>* right) {
    filler.span(row, left->column(), right->column(), left->a, right->a);
  };

  // First part, from T to M: sides by slope, the short edge right when it is
  // steeper to the right.
  const std::int32_t h1 = wrap_sub(m.point->y, t.point->y);
  if (h1 >= 1) {
    short_edge = long_edge;
    short_edge.dx = slope(wrap_sub(mx, tx), h1);
    short_edge.da = filler.edge_step(t, m, h1);
    const bool short_right = short_edge.dx > long_edge.dx;
    const Walk_Edge<Attributes>* left = short_right ? &long_edge : &short_edge;
    const Walk_Edge<Attributes>* right = short_right ? &short_edge : &long_edge;
    for (std::int32_t rows = h1;;) {
      draw(left, right);
      long_edge.step();
      ++row;
      if (--rows == 0) break;
      short_edge.step();
    }
  }

  // Second part, from M to B: the long edge carries on unbroken; sides by
  // position.
  const std::int32_t h2 = wrap_sub(b.point->y, m.point->y);
  if (h2 < 1) return;
  short_edge.x = (static_cast<std::uint32_t>(mx) << 16) + 0x8000u;
  short_edge.dx = slope(wrap_sub(bx, mx), h2);
  short_edge.a = filler.edge_start(m);
  short_edge.da = filler.edge_step(m, b, h2);
  const bool short_left = short_edge.x < long_edge.x;
  const Walk_Edge<Attributes>* left = short_left ? &short_edge : &long_edge;
  const Walk_Edge<Attributes>* right = short_left ? &long_edge : &short_edge;
  for (std::int32_t rows = h2;;) {
    draw(left, right);
    if (--rows == 0) break;
    long_edge.step();
    short_edge.step();
    ++row;
  }
}

}  // namespace tarn
