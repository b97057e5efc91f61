// Standard routines of the polyline families and of polymarkers.
//
// 2DI polylines: runs of segments inside the hard clip go to the DCI slot as
// one list; a segment that crosses the clip is cut in double precision to
// the rectangle (inclusive), its ends rounded to nearest, and goes as a list
// of two points, with z and Gouraud colours interpolated to the cuts.
//
// Wide DCI polylines (weight above 1) are rectangles `weight` pixels across,
// one a segment, drawn on past both ends by half the weight so that joints
// close, each a strip of two triangles through the 2DI slot of the same
// colour kind, in the rendition's face pattern. A line pattern is not drawn.
//
// Other DCI polylines are stepped pixel by pixel into draw_dci_dot. Each segment
// owns its pixels from its first point up to, not including, its last; the
// polyline's last point is drawn once, after the loop. Along a segment the
// longer axis steps by one and the other coordinate is rounded to nearest.
#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "ombra/standard_support.h"

namespace {

using namespace ombra;
using R = OT_Renderer_Data;

struct Plain_Line {
  void run(R* r, const OT_Rendition& rd, int first, int n, const OT_DCI_Point* p) const {
    r->draw_dci_polyline(rd, n, p + first);
  }
  void cut(R* r, const OT_Rendition& rd, int, const OT_DCI_Point* ends, double, double) const {
    r->draw_dci_polyline(rd, 2, ends);
  }
};

struct Colorized_Line {
  const OT_RGB32* colors;
  bool single;

  const OT_RGB32* color_of(int segment) const { return colors && !single ? colors + segment : colors; }
  void run(R* r, const OT_Rendition& rd, int first, int n, const OT_DCI_Point* p) const {
    r->draw_dci_colorized_polyline(rd, n, p + first, color_of(first), single);
  }
  void cut(R* r, const OT_Rendition& rd, int segment, const OT_DCI_Point* ends, double, double) const {
    r->draw_dci_colorized_polyline(rd, 2, ends, color_of(segment), single);
  }
};

OT_RGB32 mix(const OT_RGB32& a, const OT_RGB32& b, double t) {
  auto channel = [t](byte u, byte v) { return clamp_byte(u + (double(v) - u) * t); };
  return {channel(a.b, b.b), channel(a.g, b.g), channel(a.r, b.r), channel(a.a, b.a)};
}

struct Gouraud_Line {
  const OT_RGB32* colors;

  void run(R* r, const OT_Rendition& rd, int first, int n, const OT_DCI_Point* p) const {
    r->draw_dci_gouraud_polyline(rd, n, p + first, colors ? colors + first : nullptr);
  }
  void cut(R* r, const OT_Rendition& rd, int segment, const OT_DCI_Point* ends, double t0, double t1) const {
    if (!colors) {
      r->draw_dci_gouraud_polyline(rd, 2, ends, nullptr);
      return;
    }
    const OT_RGB32 cut_colors[2] = {mix(colors[segment], colors[segment + 1], t0),
                                    mix(colors[segment], colors[segment + 1], t1)};
    r->draw_dci_gouraud_polyline(rd, 2, ends, cut_colors);
  }
};

template <class Line>
void draw_clipped_polyline(R* r, const OT_Rendition& rd, int count, const OT_DCI_Point* points,
                           const Line& line) {
  if (count < 1 || !points) return;
  const OT_Int_Rectangle& clip = hard_clip(rd);
  Scratch<short> codes{std::size_t(count)};
  const int result = OB_Clip(clip, count, points, codes.data());
  if (result == count) {
    line.run(r, rd, 0, count, points);
    return;
  }
  if (result == 0) return;
  int run_start = -1;
  for (int s = 0; s + 1 < count; ++s) {
    const short a = codes[std::size_t(s)], b = codes[std::size_t(s) + 1];
    if ((a | b) == 0) {
      if (run_start < 0) run_start = s;
      continue;
    }
    if (run_start >= 0) {
      line.run(r, rd, run_start, s + 1 - run_start, points);
      run_start = -1;
    }
    if (a & b) continue;
    const OT_DCI_Point& p = points[s];
    const OT_DCI_Point& q = points[s + 1];
    double t0, t1;
    if (!clip_segment(p.x, p.y, q.x, q.y, box_of(clip), t0, t1)) continue;
    OT_DCI_Point ends[2];
    const double t[2] = {t0, t1};
    for (int e = 0; e < 2; ++e)
      ends[e] = {clamp(round_to_int(p.x + (double(q.x) - p.x) * t[e]), clip.left, clip.right),
                 clamp(round_to_int(p.y + (double(q.y) - p.y) * t[e]), clip.bottom, clip.top),
                 round_to_int(p.z + (double(q.z) - p.z) * t[e])};
    line.cut(r, rd, s, ends, t0, t1);
  }
  if (run_start >= 0) line.run(r, rd, run_start, count - run_start, points);
}

// Sends each segment of a wide polyline as a rectangle to quad(segment,
// corners); false when the line is thin.
template <class Quad>
bool draw_wide(const OT_Rendition& rd, int count, const OT_DCI_Point* points, Quad quad) {
  const std::int32_t weight = rd->line->weight;
  if (weight <= 1 || count < 1 || !points) return false;
  const double half = weight / 2.0;
  for (int s = 0; s == 0 || s + 1 < count; ++s) {
    const OT_DCI_Point& a = points[s];
    const OT_DCI_Point& b = points[count > 1 ? s + 1 : s];
    const double dx = double(b.x) - a.x, dy = double(b.y) - a.y;
    const double length = std::hypot(dx, dy);
    // A segment of no length is a square around its point.
    const double ux = length > 0 ? dx / length : 1.0, uy = length > 0 ? dy / length : 0.0;
    const double ex = ux * half, ey = uy * half;  // along the segment
    const double nx = -ey, ny = ex;               // across it
    auto corner = [](const OT_DCI_Point& p, double x, double y) {
      return OT_DCI_Point{round_to_int(p.x + x), round_to_int(p.y + y), p.z};
    };
    const OT_DCI_Point corners[4] = {corner(a, -ex + nx, -ey + ny), corner(a, -ex - nx, -ey - ny),
                                     corner(b, ex + nx, ey + ny), corner(b, ex - nx, ey - ny)};
    quad(s, corners);
  }
  return true;
}

// Steps each segment into dots. color(segment, k, n) gives the colour of
// pixel k of n of a segment (k == n: its last point), or null.
template <class Color>
void step_polyline(R* r, const OT_Rendition& rd, int count, const OT_DCI_Point* points, Color color) {
  if (count < 1 || !points) return;
  for (int s = 0; s + 1 < count; ++s) {
    const OT_DCI_Point& a = points[s];
    const OT_DCI_Point& b = points[s + 1];
    const std::int64_t dx = std::int64_t(b.x) - a.x, dy = std::int64_t(b.y) - a.y;
    const std::int64_t n = std::max(std::llabs(dx), std::llabs(dy));
    const bool x_major = std::llabs(dx) >= std::llabs(dy);
    for (std::int64_t k = 0; k < n; ++k) {
      OT_DCI_Point dot;
      dot.x = x_major ? std::int32_t(a.x + (dx > 0 ? k : -k)) : step_between(a.x, b.x, k, n);
      dot.y = x_major ? step_between(a.y, b.y, k, n) : std::int32_t(a.y + (dy > 0 ? k : -k));
      dot.z = step_between(a.z, b.z, k, n);
      OT_RGB32 storage;
      r->draw_dci_dot(rd, &dot, color(s, k, n, storage));
    }
  }
  OT_RGB32 storage;
  r->draw_dci_dot(rd, &points[count - 1], color(count >= 2 ? count - 2 : 0, 1, 1, storage));
}

OT_RGB32 step_color(const OT_RGB32& a, const OT_RGB32& b, std::int64_t k, std::int64_t n) {
  if (n == 0) return b;
  return {byte(step_between(a.b, b.b, k, n)), byte(step_between(a.g, b.g, k, n)),
          byte(step_between(a.r, b.r, k, n)), byte(step_between(a.a, b.a, k, n))};
}

template <class Point>
void markers(R* r, const OT_Rendition& rd, int count, const Point* points, bool clip_them) {
  if (count < 1 || !points) return;
  for (int i = 0; i < count; ++i) {
    const OT_DCI_Point p = round_point(points[i]);
    if (!clip_them || inside(hard_clip(rd), p)) r->draw_dci_dot(rd, &p, nullptr);
  }
}

}  // namespace

// ---- Plain ----------------------------------------------------------------

void OB_Standard_Draw_2D_Polyline(R* r, const OT_Rendition& rd, int count, const OT_Point* points) {
  forward_rounded<&R::draw_2di_polyline>(r, rd, count, points);
}
void OB_Standard_Draw_DC_Polyline(R* r, const OT_Rendition& rd, int count, const OT_Point* points) {
  forward_rounded<&R::draw_dci_polyline>(r, rd, count, points);
}
void OB_Standard_Draw_Tiled_Polyline(R* r, const OT_Rendition& rd, int count, const OT_Point_D* points) {
  forward_rounded<&R::draw_2di_polyline>(r, rd, count, points);
}
void OB_Standard_Draw_2DI_Polyline(R* r, const OT_Rendition& rd, int count, const OT_DCI_Point* points) {
  draw_clipped_polyline(r, rd, count, points, Plain_Line{});
}
void OB_Standard_Draw_DCI_Polyline(R* r, const OT_Rendition& rd, int count, const OT_DCI_Point* points) {
  if (draw_wide(rd, count, points,
                [r, &rd](int, const OT_DCI_Point* corners) { r->draw_2di_polytriangle(rd, 4, corners); }))
    return;
  step_polyline(r, rd, count, points,
                [](int, std::int64_t, std::int64_t, OT_RGB32&) -> const OT_RGB32* { return nullptr; });
}

// ---- Colorized ------------------------------------------------------------

void OB_Standard_Draw_2D_Colorized_Polyline(R* r, const OT_Rendition& rd, int count, const OT_Point* points,
                                            const OT_RGB32* colors, bool single) {
  forward_rounded<&R::draw_2di_colorized_polyline>(r, rd, count, points, colors, single);
}
void OB_Standard_Draw_DC_Colorized_Polyline(R* r, const OT_Rendition& rd, int count, const OT_Point* points,
                                            const OT_RGB32* colors, bool single) {
  forward_rounded<&R::draw_dci_colorized_polyline>(r, rd, count, points, colors, single);
}
void OB_Standard_Draw_Tiled_Colorized_Polyline(R* r, const OT_Rendition& rd, int count,
                                               const OT_Point_D* points, const OT_RGB32* colors,
                                               bool single) {
  forward_rounded<&R::draw_2di_colorized_polyline>(r, rd, count, points, colors, single);
}
void OB_Standard_Draw_2DI_Colorized_Polyline(R* r, const OT_Rendition& rd, int count,
                                             const OT_DCI_Point* points, const OT_RGB32* colors,
                                             bool single) {
  draw_clipped_polyline(r, rd, count, points, Colorized_Line{colors, single});
}
// The last point takes the colour of the last segment.
void OB_Standard_Draw_DCI_Colorized_Polyline(R* r, const OT_Rendition& rd, int count,
                                             const OT_DCI_Point* points, const OT_RGB32* colors,
                                             bool single) {
  const Colorized_Line line{colors, single};
  if (draw_wide(rd, count, points, [r, &rd, &line](int s, const OT_DCI_Point* corners) {
        if (line.colors)
          r->draw_2di_colorized_polytriangle(rd, 4, corners, line.color_of(s), true);
        else
          r->draw_2di_polytriangle(rd, 4, corners);
      }))
    return;
  step_polyline(r, rd, count, points, [colors, single](int s, std::int64_t, std::int64_t, OT_RGB32&) {
    return colors && !single ? colors + s : colors;
  });
}

// ---- Gouraud --------------------------------------------------------------

void OB_Standard_Draw_2D_Gouraud_Polyline(R* r, const OT_Rendition& rd, int count, const OT_Point* points,
                                          const OT_RGB32* colors) {
  forward_rounded<&R::draw_2di_gouraud_polyline>(r, rd, count, points, colors);
}
void OB_Standard_Draw_DC_Gouraud_Polyline(R* r, const OT_Rendition& rd, int count, const OT_Point* points,
                                          const OT_RGB32* colors) {
  forward_rounded<&R::draw_dci_gouraud_polyline>(r, rd, count, points, colors);
}
void OB_Standard_Draw_Tiled_Gouraud_Polyline(R* r, const OT_Rendition& rd, int count,
                                             const OT_Point_D* points, const OT_RGB32* colors) {
  forward_rounded<&R::draw_2di_gouraud_polyline>(r, rd, count, points, colors);
}
void OB_Standard_Draw_2DI_Gouraud_Polyline(R* r, const OT_Rendition& rd, int count,
                                           const OT_DCI_Point* points, const OT_RGB32* colors) {
  draw_clipped_polyline(r, rd, count, points, Gouraud_Line{colors});
}
void OB_Standard_Draw_DCI_Gouraud_Polyline(R* r, const OT_Rendition& rd, int count,
                                           const OT_DCI_Point* points, const OT_RGB32* colors) {
  if (draw_wide(rd, count, points, [r, &rd, colors, count](int s, const OT_DCI_Point* corners) {
        if (!colors) return r->draw_2di_polytriangle(rd, 4, corners);
        const OT_RGB32& a = colors[s];
        const OT_RGB32& b = colors[count > 1 ? s + 1 : s];
        const OT_RGB32 quad_colors[4] = {a, a, b, b};
        r->draw_2di_gouraud_polytriangle(rd, 4, corners, quad_colors);
      }))
    return;
  step_polyline(r, rd, count, points,
                [colors, count](int s, std::int64_t k, std::int64_t n, OT_RGB32& storage) -> const OT_RGB32* {
                  if (!colors) return nullptr;
                  storage = count >= 2 ? step_color(colors[s], colors[s + 1], k, n) : colors[0];
                  return &storage;
                });
}

// ---- Polymarkers ----------------------------------------------------------

void OB_Standard_Draw_2D_Polymarker(R* r, const OT_Rendition& rd, int count, const OT_Point* points) {
  forward_rounded<&R::draw_2di_polymarker>(r, rd, count, points);
}
void OB_Standard_Draw_DC_Polymarker(R* r, const OT_Rendition& rd, int count, const OT_Point* points) {
  forward_rounded<&R::draw_dci_polymarker>(r, rd, count, points);
}
void OB_Standard_Draw_Tiled_Polymarker(R* r, const OT_Rendition& rd, int count, const OT_Point_D* points) {
  forward_rounded<&R::draw_2di_polymarker>(r, rd, count, points);
}
// One dot a point, in the rendition's colour: the host draws no symbols.
void OB_Standard_Draw_2DI_Polymarker(R* r, const OT_Rendition& rd, int count, const OT_DCI_Point* points) {
  markers(r, rd, count, points, true);
}
void OB_Standard_Draw_DCI_Polymarker(R* r, const OT_Rendition& rd, int count, const OT_DCI_Point* points) {
  markers(r, rd, count, points, false);
}
