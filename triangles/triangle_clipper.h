// The exact clipper of a triangle against a rectangle, in 64-bit floats, for
// triangles with a point beyond what the fixed-point walk can hold.
#pragma once

#include "host/ombra.h"

namespace tarn {

inline constexpr int kMaxClipVertices = 8;

// Clips the three points of triangle to rectangle (inclusive on all sides)
// and writes the result to out as a strip. Returns its number of points,
// 3..kMaxClipVertices, or a number below 3 when nothing lies in the rectangle
// (out is then left alone). Depth is interpolated on the triangle's plane;
// x, y and z are rounded with exact halves going up. With colours (one a
// point, or null for none) out_colors gets the colours of the output points,
// and with texture parameters (one a point, or null) out_params theirs,
// interpolated linearly in 32-bit floats.
int clip_triangle_to_rectangle(const OT_DCI_Point* triangle, const OT_RGB32* colors,
                               const OT_Parameter* params, const OT_Int_Rectangle& rectangle,
                               OT_DCI_Point* out, OT_RGB32* out_colors, OT_Parameter* out_params);

inline int clip_triangle_to_rectangle(const OT_DCI_Point* triangle, const OT_RGB32* colors,
                                      const OT_Int_Rectangle& rectangle, OT_DCI_Point* out,
                                      OT_RGB32* out_colors) {
  return clip_triangle_to_rectangle(triangle, colors, nullptr, rectangle, out, out_colors, nullptr);
}

inline int clip_triangle_to_rectangle(const OT_DCI_Point* triangle, const OT_Int_Rectangle& rectangle,
                                      OT_DCI_Point* out) {
  return clip_triangle_to_rectangle(triangle, nullptr, rectangle, out, nullptr);
}

}  // namespace tarn
