// Preclipping of double-precision lines and triangles to a rectangle, for
// primitives whose coordinates don't fit the integer forms.
//
// Conventions: cuts are computed in double precision; x and y of a result
// are rounded to nearest and then clamped into the rectangle, z is rounded
// and not clamped; colours are interpolated channel by channel (alpha too)
// and rounded.
#include <cmath>
#include <vector>

#include "host/ob_functions.h"
#include "ombra/clip_geometry.h"

namespace {

using namespace ombra;

OT_DCI_Point point_at(const OT_Point_D& a, const OT_Point_D& b, double t, const OT_Int_Rectangle& r) {
  return {clamp(round_to_int(a.x + (b.x - a.x) * t), r.left, r.right),
          clamp(round_to_int(a.y + (b.y - a.y) * t), r.bottom, r.top), round_to_int(a.z + (b.z - a.z) * t)};
}

OT_RGB32 color_at(const OT_RGB32& a, const OT_RGB32& b, double t) {
  auto mix = [t](byte u, byte v) { return clamp_byte(u + (double(v) - u) * t); };
  return {mix(a.b, b.b), mix(a.g, b.g), mix(a.r, b.r), mix(a.a, b.a)};
}

// The cut of points[0] -> points[1] with the rectangle: where the segment
// enters it (head) or leaves it (tail). A segment that misses the rectangle
// altogether, against what the caller said, gives its inside end clamped.
void preclip_end(bool head, const OT_Int_Rectangle& r, const OT_Point_D* points, OT_DCI_Point* out_point,
                 const OT_RGB32* colors, OT_RGB32* out_color) {
  double t0, t1;
  double t = head ? 1.0 : 0.0;
  if (clip_segment(points[0].x, points[0].y, points[1].x, points[1].y, box_of(r), t0, t1)) t = head ? t0 : t1;
  *out_point = point_at(points[0], points[1], t, r);
  if (colors && out_color) *out_color = color_at(colors[0], colors[1], t);
}

}  // namespace

void OB_Preclip_Head(short, const OT_Int_Rectangle& rectangle, const OT_Point_D* points,
                     OT_DCI_Point* out_point, const OT_RGB32* colors, OT_RGB32* out_color) {
  preclip_end(true, rectangle, points, out_point, colors, out_color);
}

void OB_Preclip_Tail(short, const OT_Int_Rectangle& rectangle, const OT_Point_D* points,
                     OT_DCI_Point* out_point, const OT_RGB32* colors, OT_RGB32* out_color) {
  preclip_end(false, rectangle, points, out_point, colors, out_color);
}

bool OB_Preclip_Ends(const short*, const OT_Int_Rectangle& rectangle, const OT_Point_D* points,
                     OT_DCI_Point* out_points, const OT_RGB32* colors, OT_RGB32* out_colors) {
  double t0, t1;
  if (!clip_segment(points[0].x, points[0].y, points[1].x, points[1].y, box_of(rectangle), t0, t1))
    return false;
  out_points[0] = point_at(points[0], points[1], t0, rectangle);
  out_points[1] = point_at(points[0], points[1], t1, rectangle);
  if (colors && out_colors) {
    out_colors[0] = color_at(colors[0], colors[1], t0);
    out_colors[1] = color_at(colors[0], colors[1], t1);
  }
  return true;
}

// Reads the three points points[0..2], and the three entries of each list
// that is given; writes out_count points (at most 7) into each output list
// whose input list is given. Parameters, w and normals are interpolated
// linearly in device space; normals are made unit length again.
bool OB_Preclip_2D_Triangle(const OT_Renderer_Data*, const OT_Rendition*, const OT_Int_Rectangle& rectangle,
                            const OT_Point_D* points, int& out_count, OT_DCI_Point* out_points,
                            const OT_RGB32* colors, OT_RGB32* out_colors, const OT_Parameter* parameters,
                            int parameter_width, OT_Parameter* out_parameters, const float* w_values,
                            float* out_w_values, const OT_Vector* normals, OT_Vector* out_normals) {
  out_count = 0;
  const bool with_colors = colors && out_colors;
  const int param_floats = parameters && out_parameters && parameter_width > 0 ? 3 * parameter_width : 0;
  const bool with_w = w_values && out_w_values;
  const bool with_normals = normals && out_normals;
  const int color_from = 3, param_at = color_from + (with_colors ? 4 : 0), w_at = param_at + param_floats,
            normal_at = w_at + (with_w ? 1 : 0), stride = normal_at + (with_normals ? 3 : 0);

  std::vector<double> v(std::size_t(stride) * 3);
  for (int i = 0; i < 3; ++i) {
    double* p = &v[std::size_t(i) * stride];
    p[0] = points[i].x;
    p[1] = points[i].y;
    p[2] = points[i].z;
    if (with_colors) {
      p[color_from] = colors[i].b;
      p[color_from + 1] = colors[i].g;
      p[color_from + 2] = colors[i].r;
      p[color_from + 3] = colors[i].a;
    }
    for (int k = 0; k < param_floats; ++k) {
      const OT_Parameter& q = parameters[i * parameter_width + k / 3];
      p[param_at + k] = k % 3 == 0 ? q.u : k % 3 == 1 ? q.v : q.r;
    }
    if (with_w) p[w_at] = w_values[i];
    if (with_normals) {
      p[normal_at] = normals[i].x;
      p[normal_at + 1] = normals[i].y;
      p[normal_at + 2] = normals[i].z;
    }
  }
  const int n = clip_polygon(v, 3, stride, box_of(rectangle));
  if (n < 3) return false;

  for (int k = 0; k < n; ++k) {
    const double* p = &v[std::size_t(zigzag_index(k, n)) * stride];
    out_points[k] = {clamp(round_to_int(p[0]), rectangle.left, rectangle.right),
                     clamp(round_to_int(p[1]), rectangle.bottom, rectangle.top), round_to_int(p[2])};
    if (with_colors)
      out_colors[k] = {clamp_byte(p[color_from]), clamp_byte(p[color_from + 1]),
                       clamp_byte(p[color_from + 2]), clamp_byte(p[color_from + 3])};
    for (int j = 0; j < param_floats; ++j) {
      OT_Parameter& q = out_parameters[k * parameter_width + j / 3];
      (j % 3 == 0 ? q.u : j % 3 == 1 ? q.v : q.r) = float(p[param_at + j]);
    }
    if (with_w) out_w_values[k] = float(p[w_at]);
    if (with_normals) {
      OT_Vector normal{float(p[normal_at]), float(p[normal_at + 1]), float(p[normal_at + 2])};
      normal.normalize();
      out_normals[k] = normal;
    }
  }
  out_count = n;
  return true;
}
