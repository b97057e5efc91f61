// The fixed-point triangle walk shared by every triangle filler, inside the
// drawing area and across the hard clip alike.
//
// Precision: x runs in 16.16 fixed point in 32 bits. Every walked triangle
// lies within a square of at most kMaxWalkSpan pixels: the drawing area for
// the all-inside fillers, and kWalkLimits (pixel/limits.h) for crossing
// triangles, which the clip path cuts to those limits first. So a difference
// of x shifted left by 16 stays below 2^31 and no slope overflows
// (static_asserts in pixel/fixed_point.h and pixel/limits.h). A clipped
// edge starts part-way down by skip * slope, which is the edge's own x at the
// first visible row, so it stays within the same bound. x is read back as the
// upper 16 bits: unsigned inside the drawing area (window-relative columns
// are never negative there), signed across the clip, where an edge may lie
// left of the window before its span is clamped.
//
// The walk is one template over its filler and its clip policy. A filler
// supplies:
//   using Vertex           a record with `const OT_DCI_Point* point` and any
//                          per-vertex attributes;
//   using Edge_Attributes  values walked beside x on each edge (depth, ...),
//                          with += and add_scaled(step, n); No_Attributes
//                          when there are none;
//   Edge_Attributes edge_start(const Vertex&)
//   Edge_Attributes edge_step(const Vertex& from, const Vertex& to, int32_t rows)
//   void span(row, xl, xr, left, right)            (No_Clip: any width)
//   void clipped_span(row, xl, xr, full_xl, full_xr, left, right)
//                                                  (Rect_Clip: xl < xr)
// where row is window-relative and the span covers xl <= x < xr; full_xl and
// full_xr are a clipped span's unclamped ends, from which depth is
// interpolated. Nothing a filler does feeds back into the walk.
#pragma once

#include <algorithm>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "host/ot_base.h"
#include "pixel/fixed_point.h"

namespace tarn {

struct No_Attributes {
  No_Attributes& operator+=(const No_Attributes&) { return *this; }
  void add_scaled(const No_Attributes&, std::int32_t) {}
};

// N accumulators stepped together, wrapping.
template <int N>
struct Accumulators {
  std::int32_t v[N];

  Accumulators& operator+=(const Accumulators& step) {
    for (int k = 0; k < N; ++k)
      v[k] =
          static_cast<std::int32_t>(static_cast<std::uint32_t>(v[k]) + static_cast<std::uint32_t>(step.v[k]));
    return *this;
  }
  void add_scaled(const Accumulators& step, std::int32_t n) {
    for (int k = 0; k < N; ++k)
      v[k] = static_cast<std::int32_t>(static_cast<std::uint32_t>(v[k]) +
                                       static_cast<std::uint32_t>(step.v[k]) * static_cast<std::uint32_t>(n));
  }
};

// A vertex with nothing but its point.
struct Plain_Vertex {
  const OT_DCI_Point* point;

  // Point i of a list (and, for vertices that have one, its colour).
  static Plain_Vertex of(const OT_DCI_Point* p, const OT_RGB32*, int i) { return {p + i}; }
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
};

// The all-inside walk: rows from the least y up to the greatest, every span
// handed on as it falls.
struct No_Clip {
  static constexpr bool kClips = false;
  std::int32_t first_row(std::int32_t y) const { return y; }
  std::int32_t end_row(std::int32_t y) const { return y; }
  // Second-part sides by position, as unsigned numbers.
  static bool before(std::uint32_t a, std::uint32_t b) { return a < b; }
  template <class Filler, class Edge>
  void span(Filler& filler, std::int32_t row, const Edge& left, const Edge& right) const {
    filler.span(row, static_cast<std::int32_t>(left.x >> 16), static_cast<std::int32_t>(right.x >> 16),
                left.a, right.a);
  }
};

// The walk of a triangle that crosses the hard clip: rows cut to the
// rectangle (top inclusive, so top + 1 ends them), span ends clamped to its
// columns, and only spans with something left handed on, with their full
// ends beside them.
struct Rect_Clip {
  static constexpr bool kClips = true;
  std::int32_t bottom, top_end, xmin, xmax;  // xmax exclusive, window-relative

  Rect_Clip(const OT_Int_Rectangle& clip, std::int32_t origin_x)
      : bottom(clip.bottom),
        top_end(clip.top + 1),
        xmin(clip.left - origin_x),
        xmax(clip.right - origin_x + 1) {}
  std::int32_t first_row(std::int32_t y) const { return std::max(bottom, y); }
  std::int32_t end_row(std::int32_t y) const { return std::min(top_end, y); }
  // Second-part sides by position, as signed numbers.
  static bool before(std::uint32_t a, std::uint32_t b) {
    return static_cast<std::int32_t>(a) < static_cast<std::int32_t>(b);
  }
  template <class Filler, class Edge>
  void span(Filler& filler, std::int32_t row, const Edge& left, const Edge& right) const {
    const std::int32_t xl = static_cast<std::int16_t>(left.x >> 16);
    const std::int32_t xr = static_cast<std::int16_t>(right.x >> 16);
    const std::int32_t clamped_xl = std::max(xl, xmin);
    const std::int32_t clamped_xr = std::min(xr, xmax);
    if (clamped_xr - clamped_xl < 1) return;
    filler.clipped_span(row, clamped_xl, clamped_xr, xl, xr, left.a, right.a);
  }
};

// Walks one triangle: stable sort by y, a long edge from the least to the
// greatest y and a short edge in two parts; spans half open on the right and
// rows half open at the greatest y. Edges always come from the full end
// points; a clipped part starts at its first visible row. Each filler's walk
// is compiled as one function with its span loops inside it (flatten), and
// kept out of the callers (noinline): the callers are the families' large
// entry templates, in which the inliner would otherwise run out of room and
// leave the span and slope calls out of line. The clip and a small filler
// are the walk's own copies, which no pixel store can reach, so they stay in
// registers across the rows instead of being read again after every span.
template <class Filler, class Clip = No_Clip>
[[gnu::noinline, gnu::flatten]] inline void walk_triangle(const Filler& caller_filler,
                                                          typename Filler::Vertex t,
                                                          typename Filler::Vertex m,
                                                          typename Filler::Vertex b, std::int32_t origin_x,
                                                          std::int32_t origin_y, const Clip clip = Clip{}) {
  using Own = std::conditional_t<(sizeof(Filler) <= 24), const Filler, const Filler&>;
  Own filler = caller_filler;
  using Attributes = typename Filler::Edge_Attributes;
  using Edge = Walk_Edge<Attributes>;

  // Three strict comparisons: equal y never change places.
  if (t.point->y > m.point->y) std::swap(t, m);
  if (m.point->y > b.point->y) std::swap(m, b);
  if (t.point->y > m.point->y) std::swap(t, m);

  const std::int32_t y0 = clip.first_row(t.point->y);
  if (wrap_sub(clip.end_row(b.point->y), y0) < 1) return;

  const std::int32_t tx = wrap_sub(t.point->x, origin_x);
  const std::int32_t mx = wrap_sub(m.point->x, origin_x);
  const std::int32_t bx = wrap_sub(b.point->x, origin_x);

  // An edge from its full end point, moved on by `skip` rows when clipped.
  auto start_edge = [](std::int32_t x, std::int32_t dx, Attributes a, const Attributes& da,
                       std::int32_t skip) {
    std::uint32_t x16 = (static_cast<std::uint32_t>(x) << 16) + 0x8000u;
    if constexpr (Clip::kClips) {
      x16 += static_cast<std::uint32_t>(skip) * static_cast<std::uint32_t>(dx);
      a.add_scaled(da, skip);
    }
    return Edge{x16, dx, a, da};
  };

  const std::int32_t h = wrap_sub(b.point->y, t.point->y);
  const std::int32_t skip = wrap_sub(y0, t.point->y);
  Edge long_edge =
      start_edge(tx, slope(wrap_sub(bx, tx), h), filler.edge_start(t), filler.edge_step(t, b, h), skip);
  std::int32_t row = wrap_sub(y0, origin_y);

  // First part, from T to M: sides by slope, the short edge right when it is
  // steeper to the right.
  const std::int32_t rows1 = wrap_sub(clip.end_row(m.point->y), y0);
  if (rows1 >= 1) {
    const std::int32_t h1 = wrap_sub(m.point->y, t.point->y);
    Edge short_edge =
        start_edge(tx, slope(wrap_sub(mx, tx), h1), filler.edge_start(t), filler.edge_step(t, m, h1), skip);
    const bool short_right = short_edge.dx > long_edge.dx;
    const Edge& left = short_right ? long_edge : short_edge;
    const Edge& right = short_right ? short_edge : long_edge;
    for (std::int32_t rows = rows1;;) {
      clip.span(filler, row, left, right);
      long_edge.step();
      ++row;
      if (--rows == 0) break;
      short_edge.step();
    }
  }

  // Second part, from M to B: the long edge carries on unbroken; sides by
  // position.
  const std::int32_t second_y0 = clip.first_row(m.point->y);
  const std::int32_t rows2 = wrap_sub(clip.end_row(b.point->y), second_y0);
  if (rows2 < 1) return;
  const std::int32_t h2 = wrap_sub(b.point->y, m.point->y);
  row = wrap_sub(second_y0, origin_y);
  Edge short_edge = start_edge(mx, slope(wrap_sub(bx, mx), h2), filler.edge_start(m),
                               filler.edge_step(m, b, h2), wrap_sub(second_y0, m.point->y));
  const bool short_left = Clip::before(short_edge.x, long_edge.x);
  const Edge& left = short_left ? short_edge : long_edge;
  const Edge& right = short_left ? long_edge : short_edge;
  for (std::int32_t rows = rows2;;) {
    clip.span(filler, row, left, right);
    if (--rows == 0) break;
    long_edge.step();
    short_edge.step();
    ++row;
  }
}

}  // namespace tarn
