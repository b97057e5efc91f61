// The clipper in five steps: set up the triangle and its planes, clip
// each edge to the rectangle, trace the outline (edge pieces joined by the
// rectangle corners between them), handle a rectangle no edge reaches, and
// write the convex outline as a strip.
#include "triangles/triangle_clipper.h"

#include <algorithm>

#include "pixel/rounding.h"

namespace tarn {
namespace {

// Side codes of a clipped edge's ends and of the corner walk; 0 is an end
// that is the triangle's own point.
constexpr int kLeft = 1;
constexpr int kTop = 2;
constexpr int kRight = 4;
constexpr int kBottom = 8;

// How far a crossing of the top or bottom may lie on the wrong side of the
// left or right crossing and still be taken: 1e-12 as a 32-bit float.
constexpr double kTolerance = static_cast<double>(1e-12f);
static_assert(kTolerance == 9.999999960041972e-13);

// Beyond this fraction of an edge the entry is computed again from the other
// end, where the parameter is small and precise.
constexpr double kReverseAbove = 0.999;

struct Vertex {
  double x, y, z;
  int side;
  std::int32_t c[4];  // red, green, blue, alpha, when the triangle has colours
  float t[3];         // texture parameters, when the triangle has them
};

struct Bounds {
  double xmin, xmax, ymin, ymax;
};

// ---- Step 1: the triangle in doubles, its turning and its planes -----------

// The plane of one attribute through the three points, as gradients from p0.
struct Plane {
  double x0, y0, a0, gx, gy;

  double at(double x, double y) const { return a0 + gx * (x - x0) + gy * (y - y0); }
};

struct Triangle {
  Vertex p[3];
  Bounds bounds;
  // The sign of the area: it decides which way the outline turns around the
  // rectangle's corners.
  bool turns_up;
  Plane depth;
  bool has_color;
  Plane color[4];  // gradients narrowed to 32-bit floats
  bool has_params;
  Plane param[3];  // gradients narrowed to 32-bit floats
};

Plane plane(const Vertex& p0, const Vertex& p1, const Vertex& p2, double a0, double a1, double a2) {
  const double dx1 = p1.x - p0.x, dy1 = p1.y - p0.y;
  const double dx2 = p2.x - p0.x, dy2 = p2.y - p0.y;
  const double d = dy2 * dx1 - dy1 * dx2;
  const double da1 = a1 - a0, da2 = a2 - a0;
  if (d != 0.0) return {p0.x, p0.y, a0, (da1 * dy2 - da2 * dy1) / d, (da1 * dx2 - da2 * dx1) * (-1.0 / d)};
  // A flat triangle has no plane: the slope along whichever edge has extent.
  const double gx = dx1 != 0.0 ? da1 / dx1 : dx2 != 0.0 ? da2 / dx2 : 0.0;
  const double gy = dy1 != 0.0 ? da1 / dy1 : dy2 != 0.0 ? da2 / dy2 : 0.0;
  return {p0.x, p0.y, a0, gx, gy};
}

std::int32_t channel(OT_RGB32 c, int k) { return k == 0 ? c.r : k == 1 ? c.g : k == 2 ? c.b : c.a; }

Plane narrowed(Plane p) {
  p.gx = static_cast<float>(p.gx);
  p.gy = static_cast<float>(p.gy);
  return p;
}

Triangle set_up(const OT_DCI_Point* points, const OT_RGB32* colors, const OT_Parameter* params,
                const OT_Int_Rectangle& r) {
  Triangle tri{};
  for (int i = 0; i < 3; ++i) {
    tri.p[i] = {double(points[i].x), double(points[i].y), double(points[i].z), 0, {}, {}};
    if (colors)
      for (int k = 0; k < 4; ++k) tri.p[i].c[k] = channel(colors[i], k);
    if (params) tri.p[i].t[0] = params[i].u, tri.p[i].t[1] = params[i].v, tri.p[i].t[2] = params[i].r;
  }
  tri.bounds = {double(r.left), double(r.right), double(r.bottom), double(r.top)};
  const Vertex &p0 = tri.p[0], &p1 = tri.p[1], &p2 = tri.p[2];
  tri.turns_up = (p2.y - p0.y) * (p1.x - p0.x) > (p1.y - p0.y) * (p2.x - p0.x);
  tri.depth = plane(p0, p1, p2, p0.z, p1.z, p2.z);
  tri.has_color = colors != nullptr;
  if (colors)
    for (int k = 0; k < 4; ++k) tri.color[k] = narrowed(plane(p0, p1, p2, p0.c[k], p1.c[k], p2.c[k]));
  tri.has_params = params != nullptr;
  if (params)
    for (int k = 0; k < 3; ++k) tri.param[k] = narrowed(plane(p0, p1, p2, p0.t[k], p1.t[k], p2.t[k]));
  return tri;
}

// A colour on the triangle's planes, clamped to a byte's range.
void color_at(const Triangle& tri, double x, double y, std::int32_t* c) {
  if (!tri.has_color) return;
  for (int k = 0; k < 4; ++k) c[k] = static_cast<std::int32_t>(std::clamp(tri.color[k].at(x, y), 0.0, 255.0));
}

// Texture parameters on the triangle's planes.
void params_at(const Triangle& tri, double x, double y, float* t) {
  if (!tri.has_params) return;
  for (int k = 0; k < 3; ++k) t[k] = static_cast<float>(tri.param[k].at(x, y));
}

// ---- Step 2: one edge against the rectangle -------------------------------

// Liang-Barsky parameters of the edge p -> q: where it enters and leaves the
// rectangle, and by which sides.
struct Edge_Span {
  bool visible;
  double t0, t1;
  int enter_side, exit_side;
};

// Left and right: an end beyond a side moves the span's start or end there.
bool clip_x(const Vertex& p, const Vertex& q, const Bounds& r, Edge_Span& s) {
  const double dx = q.x - p.x;
  if (dx > 0.0) {
    if (r.xmin > p.x) {
      if (r.xmin > q.x) return false;
      s.enter_side = kLeft;
      s.t0 = (r.xmin - p.x) / dx;
    }
    if (q.x > r.xmax) {
      if (p.x > r.xmax) return false;
      s.exit_side = kRight;
      s.t1 = (r.xmax - p.x) / dx;
    }
  } else {
    if (r.xmin > q.x) {
      if (r.xmin > p.x) return false;
      s.exit_side = kLeft;
      s.t1 = (r.xmin - p.x) / dx;
    }
    if (p.x > r.xmax) {
      if (q.x > r.xmax) return false;
      s.enter_side = kRight;
      s.t0 = (r.xmax - p.x) / dx;
    }
  }
  return true;
}

// Top and bottom: the same, but a crossing up to kTolerance short of the
// left or right one still takes its place, so a corner cut goes to them.
bool clip_y(const Vertex& p, const Vertex& q, const Bounds& r, Edge_Span& s) {
  const auto enter = [&s](double t, int side) {
    if (t >= s.t0 - kTolerance) {
      s.t0 = t;
      s.enter_side = side;
    }
  };
  const auto exit = [&s](double t, int side) {
    if (s.t1 + kTolerance >= t) {
      s.t1 = t;
      s.exit_side = side;
    }
  };
  const double dy = q.y - p.y;
  if (dy > 0.0) {
    if (r.ymin > p.y) {
      if (r.ymin > q.y) return false;
      enter((r.ymin - p.y) / dy, kBottom);
    }
    if (q.y > r.ymax) {
      if (p.y > r.ymax) return false;
      exit((r.ymax - p.y) / dy, kTop);
    }
  } else {
    if (r.ymin > q.y) {
      if (r.ymin > p.y) return false;
      exit((r.ymin - p.y) / dy, kBottom);
    }
    if (p.y > r.ymax) {
      if (q.y > r.ymax) return false;
      enter((r.ymax - p.y) / dy, kTop);
    }
  }
  return true;
}

Edge_Span edge_span(const Vertex& p, const Vertex& q, const Bounds& r) {
  Edge_Span s{true, 0.0, 1.0, 0, 0};
  if (!clip_x(p, q, r, s) || !clip_y(p, q, r, s) || s.t0 > s.t1) return {};
  return s;
}

// The point at t on from -> to, on the given side; side 0 is the edge's own
// end (to when at_to, else from). The free coordinate is clamped to the
// rectangle, since a tie taken within the tolerance may step just past it.
Vertex edge_point(const Vertex& from, const Vertex& to, int side, double t, bool at_to, const Bounds& r) {
  Vertex v{0.0, 0.0, from.z + (to.z - from.z) * t, side, {}, {}};
  // Colours along the edge are truncated and not clamped: they lie between
  // the ends' own.
  for (int k = 0; k < 4; ++k) v.c[k] = static_cast<std::int32_t>(from.c[k] + (to.c[k] - from.c[k]) * t);
  // Parameters in 32-bit floats.
  const float tf = static_cast<float>(t);
  for (int k = 0; k < 3; ++k) v.t[k] = from.t[k] + (to.t[k] - from.t[k]) * tf;
  if (side == 0) {
    v.x = at_to ? to.x : from.x;
    v.y = at_to ? to.y : from.y;
  } else if (side == kLeft || side == kRight) {
    v.x = side == kLeft ? r.xmin : r.xmax;
    v.y = std::clamp((to.y - from.y) * t + from.y, r.ymin, r.ymax);
  } else {
    v.y = side == kBottom ? r.ymin : r.ymax;
    v.x = std::clamp((to.x - from.x) * t + from.x, r.xmin, r.xmax);
  }
  return v;
}

struct Edge_Piece {
  bool visible;
  Vertex enter, exit;
};

Edge_Piece clip_edge(const Vertex& p, const Vertex& q, const Bounds& r) {
  const Edge_Span s = edge_span(p, q, r);
  if (!s.visible) return {};
  if (s.t0 <= kReverseAbove)
    return {true, edge_point(p, q, s.enter_side, s.t0, false, r),
            edge_point(p, q, s.exit_side, s.t1, true, r)};
  // An entry this close to q is computed from q's side instead, and the ends
  // handed back in the caller's direction.
  const Edge_Span b = edge_span(q, p, r);
  if (!b.visible || b.t0 > kReverseAbove) return {};
  return {true, edge_point(q, p, b.exit_side, b.t1, true, r), edge_point(q, p, b.enter_side, b.t0, false, r)};
}

// ---- Step 3: the outline -------------------------------------------------

// Six edge ends and at most three corners for each of three walks.
struct Outline {
  Vertex v[16];
  int n = 0;

  void push(const Vertex& vertex) { v[n++] = vertex; }
};

// The corners met going around the rectangle from side `from` to side `to`,
// the first one always; depth comes from the plane.
void walk_corners(const Triangle& tri, int from, int to, Outline& outline) {
  // Both are single side bits from clip_edge; a 0 would never be reached, so
  // the walk is left out rather than run around the rectangle.
  if (from == 0 || to == 0) return;
  const Bounds& b = tri.bounds;
  int c = from;
  do {
    const int side = c;
    double x, y;
    if (tri.turns_up) {
      x = (c == kLeft || c == kTop) ? b.xmin : b.xmax;
      y = (c == kLeft || c == kBottom) ? b.ymin : b.ymax;
      c = c == kLeft ? kBottom : c >> 1;
    } else {
      x = (c == kLeft || c == kBottom) ? b.xmin : b.xmax;
      y = (c == kLeft || c == kTop) ? b.ymax : b.ymin;
      c = c == kBottom ? kLeft : c << 1;
    }
    Vertex corner{x, y, tri.depth.at(x, y), side, {}, {}};
    color_at(tri, x, y, corner.c);
    params_at(tri, x, y, corner.t);
    outline.push(corner);
  } while (c != to);
}

// The clipped polygon in order around it: where the outline leaves the
// rectangle by one side and comes back by another, the corners between are
// walked. `pending` is the side last left by, `first` the side of the first
// entry, which the walk closes on.
Outline trace_outline(const Triangle& tri) {
  const Edge_Piece edges[3] = {clip_edge(tri.p[0], tri.p[1], tri.bounds),
                               clip_edge(tri.p[1], tri.p[2], tri.bounds),
                               clip_edge(tri.p[2], tri.p[0], tri.bounds)};
  Outline outline;
  int pending = 0, first = 0;
  if (edges[0].visible) {
    // An inside p0 is not taken here: it closes the outline as the end of
    // the third edge.
    if (edges[0].enter.side != 0) {
      outline.push(edges[0].enter);
      first = edges[0].enter.side;
    }
    outline.push(edges[0].exit);
    pending = edges[0].exit.side;
  }
  for (int i = 1; i < 3; ++i) {
    const Edge_Piece& e = edges[i];
    if (!e.visible) continue;
    if (pending != 0) {
      if (e.enter.side != pending) walk_corners(tri, pending, e.enter.side, outline);
      outline.push(e.enter);
      pending = 0;
    } else if (!edges[i - 1].visible) {
      outline.push(e.enter);
      first = e.enter.side;
    }
    // Otherwise the outline already stands on this edge's start.
    outline.push(e.exit);
    if (e.exit.side != 0) pending = e.exit.side;
  }
  if (pending != first) walk_corners(tri, pending, first, outline);
  return outline;
}

// ---- Step 4: a rectangle that no edge reaches ------------------------------

// Whether (x, y) lies in the triangle. u is the weight of p2 and v that of
// p1; v must be strictly positive, which leaves the edge p0-p2 out.
bool point_in_triangle(const Triangle& tri, double x, double y) {
  const Vertex &p0 = tri.p[0], &p1 = tri.p[1], &p2 = tri.p[2];
  const double vx = x - p0.x, vy = y - p0.y;
  const double dx1 = p1.x - p0.x, dy1 = p1.y - p0.y;
  const double dx2 = p2.x - p0.x, dy2 = p2.y - p0.y;
  if (dx1 == 0.0) {
    if (dy1 == 0.0 || dx2 == 0.0) return false;
    const double u = vx / dx2;
    if (!(u >= 0.0 && u <= 1.0)) return false;
    const double v = (vy - u * dy2) / dy1;
    return v > 0.0 && v + u <= 1.0;
  }
  const double q = dx1 * dy2 - dx2 * dy1;
  if (q == 0.0) return false;
  const double u = (dx1 * vy - vx * dy1) / q;
  if (!(u >= 0.0 && u <= 1.0)) return false;
  const double v = (vx - u * dx2) / dx1;
  return v > 0.0 && v + u <= 1.0;
}

OT_DCI_Point rounded(double x, double y, double z) {
  return {round_double(x), round_double(y), round_double(z)};
}

OT_RGB32 color_of(const std::int32_t* c) { return OT_RGB32::rgba(c[0], c[1], c[2], c[3]); }

// Where the output's colours and parameters go; null for what isn't carried.
struct Attribute_Out {
  OT_RGB32* colors;
  OT_Parameter* params;

  void put(int k, const std::int32_t* c, const float* t) const {
    if (colors) colors[k] = color_of(c);
    if (params) params[k] = {t[0], t[1], t[2]};
  }
};

// With no edge crossing it, the rectangle is wholly outside the triangle or
// wholly inside; one corner tells which. Inside, its four corners in this
// order are already a strip.
int cover_rectangle(const Triangle& tri, OT_DCI_Point* out, const Attribute_Out& attributes) {
  const Bounds& b = tri.bounds;
  if (!point_in_triangle(tri, b.xmin, b.ymin)) return 0;
  const double xs[4] = {b.xmin, b.xmin, b.xmax, b.xmax};
  const double ys[4] = {b.ymin, b.ymax, b.ymin, b.ymax};
  for (int k = 0; k < 4; ++k) {
    out[k] = rounded(xs[k], ys[k], tri.depth.at(xs[k], ys[k]));
    std::int32_t c[4];
    float t[3];
    color_at(tri, xs[k], ys[k], c);
    params_at(tri, xs[k], ys[k], t);
    attributes.put(k, c, t);
  }
  return 4;
}

// ---- Step 5: the outline as a strip ----------------------------------------

// Order 0, 1, n-1, 2, n-2, ...: each new point closes a triangle with the two
// before it, fanning the convex polygon from both ends.
int write_strip(const Outline& outline, OT_DCI_Point* out, const Attribute_Out& attributes) {
  const int n = outline.n;
  // Only rounding can take the outline past eight points; such a triangle
  // is not drawn rather than drawn wrong. Below three there is nothing.
  if (n > kMaxClipVertices) return 0;
  if (n < 3) return n;
  int low = 1, high = n - 1;
  for (int k = 0; k < n; ++k) {
    const Vertex& v = outline.v[k == 0 ? 0 : (k & 1) ? low++ : high--];
    out[k] = rounded(v.x, v.y, v.z);
    attributes.put(k, v.c, v.t);
  }
  return n;
}

}  // namespace

int clip_triangle_to_rectangle(const OT_DCI_Point* triangle, const OT_RGB32* colors,
                               const OT_Parameter* params, const OT_Int_Rectangle& rectangle,
                               OT_DCI_Point* out, OT_RGB32* out_colors, OT_Parameter* out_params) {
  const Triangle tri = set_up(triangle, colors, params, rectangle);
  const Attribute_Out attributes{colors ? out_colors : nullptr, params ? out_params : nullptr};
  const Outline outline = trace_outline(tri);
  if (outline.n == 0) return cover_rectangle(tri, out, attributes);
  return write_strip(outline, out, attributes);
}

}  // namespace tarn
