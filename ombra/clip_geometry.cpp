#include "ombra/clip_geometry.h"

#include <cmath>

namespace ombra {

std::int32_t round_to_int(double value) {
  if (std::isnan(value)) return 0;
  const double r = std::floor(value + 0.5);
  if (r <= double(INT32_MIN)) return INT32_MIN;
  if (r >= double(INT32_MAX)) return INT32_MAX;
  return std::int32_t(r);
}

bool clip_segment(double ax, double ay, double bx, double by, const Clip_Box& box, double& t0, double& t1) {
  t0 = 0.0;
  t1 = 1.0;
  const double dx = bx - ax, dy = by - ay;
  // Each side as p * t <= q.
  const double p[4] = {-dx, dx, -dy, dy};
  const double q[4] = {ax - box.left, box.right - ax, ay - box.bottom, box.top - ay};
  for (int i = 0; i < 4; ++i) {
    if (p[i] == 0.0) {
      if (q[i] < 0.0) return false;  // parallel to this side and beyond it
      continue;
    }
    const double t = q[i] / p[i];
    if (p[i] < 0.0) {
      if (t > t1) return false;
      if (t > t0) t0 = t;
    } else {
      if (t < t0) return false;
      if (t < t1) t1 = t;
    }
  }
  return t0 <= t1;
}

namespace {

// One side of the box: keep the vertices where sign * (coordinate - limit)
// is at most 0; `axis` 0 is x, 1 is y.
int clip_side(const std::vector<double>& in, int count, std::vector<double>& out, int stride, int axis,
              double limit, double sign) {
  out.clear();
  int n = 0;
  for (int i = 0; i < count; ++i) {
    const double* a = &in[std::size_t(i) * stride];
    const double* b = &in[std::size_t((i + 1) % count) * stride];
    const double da = sign * (a[axis] - limit), db = sign * (b[axis] - limit);
    if (da <= 0.0) {
      out.insert(out.end(), a, a + stride);
      ++n;
    }
    if ((da < 0.0 && db > 0.0) || (da > 0.0 && db < 0.0)) {
      const double t = da / (da - db);
      for (int k = 0; k < stride; ++k) out.push_back(a[k] + (b[k] - a[k]) * t);
      // The cut lies on the side exactly, whatever the rounding of t.
      out[out.size() - stride + axis] = limit;
      ++n;
    }
  }
  return n;
}

}  // namespace

int clip_polygon(std::vector<double>& vertices, int count, int stride, const Clip_Box& box) {
  std::vector<double> other;
  other.reserve(vertices.size() * 2);
  if (!(count = clip_side(vertices, count, other, stride, 0, box.left, -1.0))) return 0;
  if (!(count = clip_side(other, count, vertices, stride, 0, box.right, 1.0))) return 0;
  if (!(count = clip_side(vertices, count, other, stride, 1, box.bottom, -1.0))) return 0;
  return clip_side(other, count, vertices, stride, 1, box.top, 1.0);
}

}  // namespace ombra
