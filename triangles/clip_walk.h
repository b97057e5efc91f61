// The clipping form of the triangle walk, for triangles that cross the hard
// clip rectangle: the same edges and steps as the all-inside walk, started at
// the first visible row, with rows cut to the rectangle and every span's ends
// clamped to its columns.
//
// A crossing filler supplies what an all-inside filler does (Vertex,
// Edge_Attributes, edge_start, edge_step), Edge_Attributes::add_scaled(step,
// n) to start an edge part-way down, and
//   void clipped_span(int32_t row, int32_t xl, int32_t xr, int32_t full_xl,
//                     int32_t full_xr, const Edge_Attributes& left,
//                     const Edge_Attributes& right)
// called only for spans with xl < xr after clamping; full_xl and full_xr are
// the unclamped ends, from which depth is interpolated.
#pragma once

#include <algorithm>

#include "triangles/triangle_walk.h"

namespace tarn {

template <class Filler>
inline void walk_clipped_triangle(Filler& filler, typename Filler::Vertex t, typename Filler::Vertex m,
                                  typename Filler::Vertex b, const OT_Int_Rectangle& clip, std::int32_t origin_x,
                                  std::int32_t origin_y) {
  using Attributes = typename Filler::Edge_Attributes;
  using Edge = Walk_Edge<Attributes>;

  if (t.point->y > m.point->y) std::swap(t, m);
  if (m.point->y > b.point->y) std::swap(m, b);
  if (t.point->y > m.point->y) std::swap(t, m);

  const std::int32_t top_end = clip.top + 1;  // rows are half open at the top
  const std::int32_t y0 = std::max(clip.bottom, t.point->y);
  const std::int32_t y1 = std::min(top_end, b.point->y);
  if (y1 - y0 < 1) return;
  const std::int32_t xmin = clip.left - origin_x;
  const std::int32_t xmax = clip.right - origin_x + 1;

  const std::int32_t tx = t.point->x - origin_x, mx = m.point->x - origin_x, bx = b.point->x - origin_x;
  const std::int32_t h = b.point->y - t.point->y;
  std::int32_t row = y0 - origin_y;

  // Edges from the full, unclipped end points, moved on to the first row.
  auto start_edge = [](std::int32_t x, std::int32_t dx, Attributes a, const Attributes& da, std::int32_t skip) {
    a.add_scaled(da, skip);
    return Edge{(static_cast<std::uint32_t>(x) << 16) + 0x8000u +
                    static_cast<std::uint32_t>(skip) * static_cast<std::uint32_t>(dx),
                dx, a, da};
  };
  Edge long_edge = start_edge(tx, slope(bx - tx, h), filler.edge_start(t), filler.edge_step(t, b, h), y0 - t.point->y);
  Edge short_edge;

  auto draw = [&](const Edge& left, const Edge& right) {
    const std::int32_t xl = static_cast<std::int16_t>(left.x >> 16);
    const std::int32_t xr = static_cast<std::int16_t>(right.x >> 16);
    const std::int32_t clamped_xl = std::max(xl, xmin);
    const std::int32_t clamped_xr = std::min(xr, xmax);
    if (clamped_xr - clamped_xl < 1) return;
    filler.clipped_span(row, clamped_xl, clamped_xr, xl, xr, left.a, right.a);
  };

  const std::int32_t h1 = m.point->y - t.point->y;
  const std::int32_t rows1 = std::min(top_end, m.point->y) - y0;
  if (rows1 >= 1) {
    const std::int32_t ds = slope(mx - tx, h1);
    short_edge = start_edge(tx, ds, filler.edge_start(t), filler.edge_step(t, m, h1), y0 - t.point->y);
    const bool short_right = ds > long_edge.dx;
    const Edge& left = short_right ? long_edge : short_edge;
    const Edge& right = short_right ? short_edge : long_edge;
    for (std::int32_t rows = rows1;;) {
      draw(left, right);
      long_edge.step();
      ++row;
      if (--rows == 0) break;
      short_edge.step();
    }
  }

  const std::int32_t h2 = b.point->y - m.point->y;
  const std::int32_t second_y0 = std::max(clip.bottom, m.point->y);
  const std::int32_t rows2 = std::min(top_end, b.point->y) - second_y0;
  if (rows2 < 1) return;
  row = second_y0 - origin_y;
  short_edge = start_edge(mx, slope(bx - mx, h2), filler.edge_start(m), filler.edge_step(m, b, h2),
                          second_y0 - m.point->y);
  // Sides by position, as signed numbers here.
  const bool long_left = static_cast<std::int32_t>(short_edge.x) >= static_cast<std::int32_t>(long_edge.x);
  const Edge& left = long_left ? long_edge : short_edge;
  const Edge& right = long_left ? short_edge : long_edge;
  for (std::int32_t rows = rows2;;) {
    draw(left, right);
    if (--rows == 0) break;
    long_edge.step();
    short_edge.step();
    ++row;
  }
}

}  // namespace tarn
