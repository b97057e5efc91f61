// Clipping arithmetic shared by the preclip functions and the standard
// routines: rounding, segment and polygon clipping against a rectangle, all
// in double precision.
#pragma once

#include <cstdint>
#include <vector>

#include "host/ot_base.h"

namespace ombra {

// The host's rounding: to nearest, halves upward, saturated to 32 bits; NaN
// gives 0.
std::int32_t round_to_int(double value);

inline std::int32_t clamp(std::int32_t v, std::int32_t low, std::int32_t high) {
  return v < low ? low : v > high ? high : v;
}

// A rectangle in double precision, inclusive on all sides.
struct Clip_Box {
  double left, right, bottom, top;
};

inline Clip_Box box_of(const OT_Int_Rectangle& r) {
  return {double(r.left), double(r.right), double(r.bottom), double(r.top)};
}

// Liang-Barsky: the parameters t0 <= t1 in [0, 1] of the piece of the segment
// a -> b that lies in the box; false when no piece does.
bool clip_segment(double ax, double ay, double bx, double by, const Clip_Box& box, double& t0, double& t1);

// A convex polygon clipped against a box (Sutherland-Hodgman). A vertex is
// `stride` doubles: x, y, then anything that varies linearly along an edge.
// Returns the number of vertices left in `vertices`, 0 when none.
int clip_polygon(std::vector<double>& vertices, int count, int stride, const Clip_Box& box);

// The strip order of a convex polygon of n vertices: 0, 1, n-1, 2, n-2, ...
// A strip in this order covers the polygon with n - 2 triangles.
inline int zigzag_index(int k, int n) { return k == 0 ? 0 : (k % 2 == 1) ? (k + 1) / 2 : n - k / 2; }

inline byte clamp_byte(double v) { return byte(clamp(round_to_int(v), 0, 255)); }

}  // namespace ombra
