#include "triangles/triangle_clipper.h"

#include <algorithm>

#include "pixel/rounding.h"

namespace tarn {

static_assert(kClipTolerance == 9.999999960041972e-13);

namespace {

// Beyond this fraction of an edge the entry is computed again from the other
// end, where the parameter is small and precise.
constexpr double kReverseAbove = 0.999;

// Up to two points per edge and three corners per walk, three of each.
constexpr int kListCapacity = 16;

struct Rectangle_D {
  double xmin, xmax, ymin, ymax;

  explicit Rectangle_D(const OT_Int_Rectangle& r) : xmin(r.left), xmax(r.right), ymin(r.bottom), ymax(r.top) {}
};

// The rational step that keeps parameters right under perspective: r is the
// far end's w over the near end's.
float perspective_t(float t, float r) { return t / ((1.0f - r) * t + r); }

// Liang-Barsky parameters of one edge; top and bottom win a near tie.
struct Edge_Parameters {
  bool visible;
  double t0, t1;
  int enter_code, exit_code;
};

Edge_Parameters edge_parameters(const Clip_Vertex& p, const Clip_Vertex& q, const Rectangle_D& r) {
  constexpr Edge_Parameters invisible{false, 0.0, 0.0, 0, 0};
  double t0 = 0.0, t1 = 1.0;
  int enter_code = 0, exit_code = 0;

  const double dx = q.x - p.x;
  if (dx > 0.0) {
    if (r.xmin > p.x) {
      if (r.xmin > q.x) return invisible;
      enter_code = kClipLeft;
      t0 = (r.xmin - p.x) / dx;
    }
    if (q.x > r.xmax) {
      if (p.x > r.xmax) return invisible;
      exit_code = kClipRight;
      t1 = (r.xmax - p.x) / dx;
    }
  } else {
    if (r.xmin > q.x) {
      if (r.xmin > p.x) return invisible;
      exit_code = kClipLeft;
      t1 = (r.xmin - p.x) / dx;
    }
    if (p.x > r.xmax) {
      if (q.x > r.xmax) return invisible;
      enter_code = kClipRight;
      t0 = (r.xmax - p.x) / dx;
    }
  }

  const auto enter_y = [&](double t, int code) {
    if (t >= t0 - kClipTolerance) {
      t0 = t;
      enter_code = code;
    }
  };
  const auto exit_y = [&](double t, int code) {
    if (t1 + kClipTolerance >= t) {
      t1 = t;
      exit_code = code;
    }
  };
  const double dy = q.y - p.y;
  if (dy > 0.0) {
    if (r.ymin > p.y) {
      if (r.ymin > q.y) return invisible;
      enter_y((r.ymin - p.y) / dy, kClipBottom);
    }
    if (q.y > r.ymax) {
      if (p.y > r.ymax) return invisible;
      exit_y((r.ymax - p.y) / dy, kClipTop);
    }
  } else {
    if (r.ymin > q.y) {
      if (r.ymin > p.y) return invisible;
      exit_y((r.ymin - p.y) / dy, kClipBottom);
    }
    if (p.y > r.ymax) {
      if (q.y > r.ymax) return invisible;
      enter_y((r.ymax - p.y) / dy, kClipTop);
    }
  }

  if (t0 > t1) return invisible;
  return {true, t0, t1, enter_code, exit_code};
}

// The point at parameter t of from -> to, on the side given by code; code 0
// is the edge's own end (to when at_to, else from).
Clip_Vertex edge_point(const Clip_Vertex& from, const Clip_Vertex& to, int code, double t, bool at_to,
                       bool has_colors, bool has_params, bool perspective, const Rectangle_D& r) {
  Clip_Vertex v{};
  v.code = code;
  const double dx = to.x - from.x, dy = to.y - from.y;
  switch (code) {
    case 0:
      v.x = at_to ? to.x : from.x;
      v.y = at_to ? to.y : from.y;
      break;
    case kClipLeft:
    case kClipRight:
      v.x = code == kClipLeft ? r.xmin : r.xmax;
      v.y = std::clamp(dy * t + from.y, r.ymin, r.ymax);
      break;
    default:
      v.y = code == kClipBottom ? r.ymin : r.ymax;
      v.x = std::clamp(dx * t + from.x, r.xmin, r.xmax);
      break;
  }
  v.z = from.z + (to.z - from.z) * t;

  if (has_colors) {
    // Between two byte values no clamp is needed; truncation toward zero.
    const auto channel = [t](byte a, byte b) {
      return static_cast<byte>(static_cast<int>(a + (double(b) - double(a)) * t));
    };
    v.color.r = channel(from.color.r, to.color.r);
    v.color.g = channel(from.color.g, to.color.g);
    v.color.b = channel(from.color.b, to.color.b);
    v.color.a = channel(from.color.a, to.color.a);
  }
  if (has_params) {
    const float tf = static_cast<float>(t);
    const float tp = perspective ? perspective_t(tf, to.w / from.w) : tf;
    v.params.u = from.params.u + (to.params.u - from.params.u) * tp;
    v.params.v = from.params.v + (to.params.v - from.params.v) * tp;
    v.params.r = from.params.r + (to.params.r - from.params.r) * tp;
    v.w = from.w + (to.w - from.w) * tp;
  }
  return v;
}

// Colour gradients are those of red, green, blue and alpha, in this order.
struct Clip_Gradients {
  Plane_Gradient z;
  float color_x[4], color_y[4];
  float param_x[3], param_y[3];
  float w_x, w_y;
};

int channel_of(const OT_RGB32& c, int i) {
  switch (i) {
    case 0:
      return c.r;
    case 1:
      return c.g;
    case 2:
      return c.b;
    default:
      return c.a;
  }
}
void set_channel(OT_RGB32& c, int i, byte value) {
  switch (i) {
    case 0:
      c.r = value;
      break;
    case 1:
      c.g = value;
      break;
    case 2:
      c.b = value;
      break;
    default:
      c.a = value;
      break;
  }
}
float param_of(const OT_Parameter& p, int i) { return i == 0 ? p.u : i == 1 ? p.v : p.r; }
void set_param(OT_Parameter& p, int i, float value) { (i == 0 ? p.u : i == 1 ? p.v : p.r) = value; }

struct Triangle {
  Clip_Vertex p[3];
  bool has_colors, has_params, perspective;
  // The sign of the area: it decides which way the outline turns around the
  // rectangle's corners.
  bool turns_up;
  Clip_Gradients g;
  OT_Int_Rectangle rect;
};

// Parameters and w at (x, y) by the plane gradients.
void linear_params(const Triangle& tri, double x, double y, OT_Parameter& params, float& w) {
  const Clip_Vertex& p0 = tri.p[0];
  const double vx = x - p0.x, vy = y - p0.y;
  for (int i = 0; i < 3; ++i)
    set_param(params, i, static_cast<float>(param_of(p0.params, i) + tri.g.param_x[i] * vx + tri.g.param_y[i] * vy));
  w = static_cast<float>(p0.w + tri.g.w_x * vx + tri.g.w_y * vy);
}

// Parameters and w at a point inside the triangle. Under perspective the
// values are taken along the scan line through the point, between the two
// edges it crosses, by the rational step at each stage.
void point_params(const Triangle& tri, double x, double y, OT_Parameter& params, float& w) {
  if (!tri.perspective) return linear_params(tri, x, y, params, w);

  struct Crossing {
    double x;
    OT_Parameter params;
    float w;
  };
  static constexpr int kEdges[3][2] = {{0, 1}, {0, 2}, {1, 2}};
  Crossing crossings[3];
  int n = 0;
  for (const auto& edge : kEdges) {
    const Clip_Vertex& a = tri.p[edge[0]];
    const Clip_Vertex& b = tri.p[edge[1]];
    if ((y > a.y) == (y > b.y)) continue;
    const double t = (y - a.y) / (b.y - a.y);
    const float tp = perspective_t(static_cast<float>(t), b.w / a.w);
    Crossing& c = crossings[n++];
    c.x = (b.x - a.x) * t + a.x;
    c.params.u = a.params.u + (b.params.u - a.params.u) * tp;
    c.params.v = a.params.v + (b.params.v - a.params.v) * tp;
    c.params.r = a.params.r + (b.params.r - a.params.r) * tp;
    c.w = a.w + (b.w - a.w) * tp;
  }
  if (n != 2 || crossings[0].x == crossings[1].x) return linear_params(tri, x, y, params, w);

  const Crossing& a = crossings[0];
  const Crossing& b = crossings[1];
  const double s = (x - a.x) / (b.x - a.x);
  const float sp = perspective_t(static_cast<float>(s), b.w / a.w);
  params.u = a.params.u + (b.params.u - a.params.u) * sp;
  params.v = a.params.v + (b.params.v - a.params.v) * sp;
  params.r = a.params.r + (b.params.r - a.params.r) * sp;
  w = a.w + (b.w - a.w) * sp;
}

// A rectangle corner inside the triangle, with every attribute from the
// triangle's plane. Unlike points on edges, colours here can leave 0..255.
Clip_Vertex corner_vertex(const Triangle& tri, double x, double y, int code) {
  const Clip_Vertex& p0 = tri.p[0];
  Clip_Vertex v{};
  v.x = x;
  v.y = y;
  v.code = code;
  const double vx = x - p0.x, vy = y - p0.y;
  v.z = p0.z + tri.g.z.x * vx + tri.g.z.y * vy;
  if (tri.has_colors) {
    for (int i = 0; i < 4; ++i) {
      const double c = channel_of(p0.color, i) + double(tri.g.color_x[i]) * vx + double(tri.g.color_y[i]) * vy;
      set_channel(v.color, i, static_cast<byte>(std::clamp(c, 0.0, 255.0)));
    }
  }
  if (tri.has_params) point_params(tri, x, y, v.params, v.w);
  return v;
}

struct Vertex_List {
  Clip_Vertex v[kListCapacity];
  int n = 0;

  void push(const Clip_Vertex& vertex) {
    if (n < kListCapacity) v[n] = vertex;
    ++n;
  }
};

// The corners met going around the rectangle from side `from` to side `to`,
// the first one always.
void walk_corners(const Triangle& tri, int from, int to, Vertex_List& list) {
  // Both are single side bits from clip_edge; a 0 would never be reached, so
  // the walk is left out rather than run around the rectangle.
  if (from == 0 || to == 0) return;
  const double left = tri.rect.left, right = tri.rect.right, bottom = tri.rect.bottom, top = tri.rect.top;
  int c = from;
  do {
    const int side = c;
    double x, y;
    if (tri.turns_up) {
      x = (c == kClipLeft || c == kClipTop) ? left : right;
      y = (c == kClipLeft || c == kClipBottom) ? bottom : top;
      c = c == kClipLeft ? kClipBottom : c >> 1;
    } else {
      x = (c == kClipLeft || c == kClipBottom) ? left : right;
      y = (c == kClipLeft || c == kClipTop) ? top : bottom;
      c = c == kClipBottom ? kClipLeft : c << 1;
    }
    list.push(corner_vertex(tri, x, y, side));
  } while (c != to);
}

void write_vertex(const Triangle& tri, const Clip_Vertex& v, int k, OT_DCI_Point* out_points, OT_RGB32* out_colors,
                  OT_Parameter* out_params, float* out_w) {
  out_points[k] = {round_double(v.x), round_double(v.y), round_double(v.z)};
  if (tri.has_colors && out_colors) out_colors[k] = v.color;
  if (tri.has_params) {
    if (out_params) out_params[k] = v.params;
    if (out_w) out_w[k] = v.w;
  }
}

}  // namespace

Plane_Gradient plane_gradient(const Clip_Vertex& p0, const Clip_Vertex& p1, const Clip_Vertex& p2, double a0,
                              double a1, double a2) {
  const double dx1 = p1.x - p0.x, dy1 = p1.y - p0.y;
  const double dx2 = p2.x - p0.x, dy2 = p2.y - p0.y;
  const double d = dy2 * dx1 - dy1 * dx2;
  const double da1 = a1 - a0, da2 = a2 - a0;
  if (d != 0.0) return {(da1 * dy2 - da2 * dy1) / d, (da1 * dx2 - da2 * dx1) * (-1.0 / d)};
  // A flat triangle has no plane: the slope along whichever edge has extent.
  const double gx = dx1 != 0.0 ? da1 / dx1 : dx2 != 0.0 ? da2 / dx2 : 0.0;
  const double gy = dy1 != 0.0 ? da1 / dy1 : dy2 != 0.0 ? da2 / dy2 : 0.0;
  return {gx, gy};
}

bool point_in_triangle(double x, double y, const Clip_Vertex& p0, const Clip_Vertex& p1, const Clip_Vertex& p2) {
  const double vx = x - p0.x, vy = y - p0.y;
  const double dx1 = p1.x - p0.x, dy1 = p1.y - p0.y;
  const double dx2 = p2.x - p0.x, dy2 = p2.y - p0.y;
  // u is the weight of p2 and v that of p1; v must be strictly positive,
  // which leaves the edge p0-p2 out.
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

Edge_Clip clip_edge(const Clip_Vertex& p, const Clip_Vertex& q, bool has_colors, bool has_params, bool perspective,
                    const OT_Int_Rectangle& rectangle) {
  const Rectangle_D r(rectangle);
  const Edge_Parameters e = edge_parameters(p, q, r);
  if (!e.visible) return Edge_Clip{};
  if (e.t0 > kReverseAbove) {
    // An entry this close to q is computed from q's side instead, and the
    // ends handed back in the caller's direction.
    const Edge_Parameters b = edge_parameters(q, p, r);
    if (!b.visible || b.t0 > kReverseAbove) return Edge_Clip{};
    return {true, edge_point(q, p, b.exit_code, b.t1, true, has_colors, has_params, perspective, r),
            edge_point(q, p, b.enter_code, b.t0, false, has_colors, has_params, perspective, r)};
  }
  return {true, edge_point(p, q, e.enter_code, e.t0, false, has_colors, has_params, perspective, r),
          edge_point(p, q, e.exit_code, e.t1, true, has_colors, has_params, perspective, r)};
}

void clip_triangle_to_rectangle(const OT_Rendition& rendition, const OT_DCI_Point* points, const OT_RGB32* color0,
                                const OT_RGB32* color1, const OT_RGB32* color2, const OT_Parameter* params0,
                                const OT_Parameter* params1, const OT_Parameter* params2, float w0, float w1,
                                float w2, const OT_Int_Rectangle& rectangle, int& out_count,
                                OT_DCI_Point* out_points, OT_RGB32* out_colors, OT_Parameter* out_params,
                                float* out_w) {
  Triangle tri{};
  tri.rect = rectangle;
  tri.has_colors = color0 != nullptr;
  tri.has_params = params0 != nullptr;
  tri.perspective = (static_cast<byte>(rendition->raster->texture_flags) & 1) != 0;

  const OT_RGB32* colors[3] = {color0, color1 ? color1 : color0, color2 ? color2 : color0};
  const OT_Parameter* params[3] = {params0, params1 ? params1 : params0, params2 ? params2 : params0};
  const float ws[3] = {w0, w1, w2};
  for (int i = 0; i < 3; ++i) {
    Clip_Vertex& v = tri.p[i];
    v.x = points[i].x;
    v.y = points[i].y;
    v.z = points[i].z;
    if (tri.has_colors) v.color = *colors[i];
    if (tri.has_params) {
      v.params = *params[i];
      v.w = ws[i];
    }
  }
  const Clip_Vertex &p0 = tri.p[0], &p1 = tri.p[1], &p2 = tri.p[2];

  const double dx1 = p1.x - p0.x, dy1 = p1.y - p0.y;
  const double dx2 = p2.x - p0.x, dy2 = p2.y - p0.y;
  tri.turns_up = dy2 * dx1 > dy1 * dx2;
  tri.g.z = plane_gradient(p0, p1, p2, p0.z, p1.z, p2.z);
  if (tri.has_colors) {
    for (int i = 0; i < 4; ++i) {
      const Plane_Gradient g =
          plane_gradient(p0, p1, p2, channel_of(p0.color, i), channel_of(p1.color, i), channel_of(p2.color, i));
      tri.g.color_x[i] = static_cast<float>(g.x);
      tri.g.color_y[i] = static_cast<float>(g.y);
    }
  }
  if (tri.has_params) {
    // Differences and quotients in 64 bits, the gradients kept in 32.
    for (int i = 0; i < 3; ++i) {
      const Plane_Gradient g =
          plane_gradient(p0, p1, p2, param_of(p0.params, i), param_of(p1.params, i), param_of(p2.params, i));
      tri.g.param_x[i] = static_cast<float>(g.x);
      tri.g.param_y[i] = static_cast<float>(g.y);
    }
    const Plane_Gradient g = plane_gradient(p0, p1, p2, p0.w, p1.w, p2.w);
    tri.g.w_x = static_cast<float>(g.x);
    tri.g.w_y = static_cast<float>(g.y);
  }

  const auto clip = [&](const Clip_Vertex& a, const Clip_Vertex& b) {
    return clip_edge(a, b, tri.has_colors, tri.has_params, tri.perspective, rectangle);
  };
  const Edge_Clip edges[3] = {clip(p0, p1), clip(p1, p2), clip(p2, p0)};

  // The outline of the clipped polygon: edge pieces joined by the corners
  // passed between leaving the rectangle by one side and entering by another.
  Vertex_List list;
  int pending = 0, first = 0;
  if (edges[0].visible) {
    // An inside p0 is not taken here: it closes the outline as the end of
    // the third edge.
    if (edges[0].enter.code != 0) {
      list.push(edges[0].enter);
      first = edges[0].enter.code;
    }
    list.push(edges[0].exit);
    pending = edges[0].exit.code;
  }
  for (int i = 1; i < 3; ++i) {
    const Edge_Clip& e = edges[i];
    if (!e.visible) continue;
    if (pending != 0) {
      if (e.enter.code != pending) walk_corners(tri, pending, e.enter.code, list);
      list.push(e.enter);
      pending = 0;
    } else if (!edges[i - 1].visible) {
      list.push(e.enter);
      first = e.enter.code;
    }
    // Otherwise the outline already stands on this edge's start.
    list.push(e.exit);
    if (e.exit.code != 0) pending = e.exit.code;
  }
  if (pending != first) walk_corners(tri, pending, first, list);

  if (list.n == 0) {
    // No edge meets the rectangle: it lies wholly inside the triangle or
    // wholly outside it.
    out_count = 0;
    if (!point_in_triangle(rectangle.left, rectangle.bottom, p0, p1, p2)) return;
    const double left = rectangle.left, right = rectangle.right, bottom = rectangle.bottom, top = rectangle.top;
    const Clip_Vertex corners[4] = {corner_vertex(tri, left, bottom, 0), corner_vertex(tri, left, top, 0),
                                    corner_vertex(tri, right, bottom, 0), corner_vertex(tri, right, top, 0)};
    for (int k = 0; k < 4; ++k) write_vertex(tri, corners[k], k, out_points, out_colors, out_params, out_w);
    out_count = 4;
    return;
  }

  const int n = list.n;
  if (n > kMaxClipVertices) {
    // Only rounding can take the outline past eight points; such a
    // triangle is not drawn rather than drawn wrong.
    out_count = 0;
    return;
  }
  out_count = n;
  if (n < 3) return;
  // Strip order 0, 1, n-1, 2, n-2, ...: each new point closes a triangle
  // with the two before it, fanning the convex polygon from both ends.
  int low = 1, high = n - 1;
  write_vertex(tri, list.v[0], 0, out_points, out_colors, out_params, out_w);
  for (int k = 1; k < n; ++k) {
    const int index = (k & 1) ? low++ : high--;
    write_vertex(tri, list.v[index], k, out_points, out_colors, out_params, out_w);
  }
}

}  // namespace tarn
