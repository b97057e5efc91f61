// Standard routines of the polytriangle families in the DCI form: each
// triangle is scan-converted here and its spans go out as two-point calls of
// the DCI polyline slot of the same kind, so that no polytriangle slot is
// called again.
//
// Pixels are owned as by the renderer's walk: rows from the least y up to,
// not including, the greatest; on a row, the pixels from the left edge up to,
// not including, the right edge, each edge's x taken at the row's y and
// rounded to nearest (halves upward). A span is sent as (xl, y) .. (xr, y)
// with xr the last pixel, inclusive. Depth and colours are those of the
// triangle's plane at the two ends. A textured triangle with a texture goes
// out pixel by pixel, as DCI dots of its texels.
#include <algorithm>
#include <cmath>
#include <utility>

#include "ombra/standard_support.h"

namespace {

using namespace ombra;
using R = OT_Renderer_Data;

// x of the edge a -> b at row y, rounded; a.y < b.y.
std::int32_t edge_x(const OT_DCI_Point& a, const OT_DCI_Point& b, std::int32_t y) {
  return step_between(a.x, b.x, std::int64_t(y) - a.y, std::int64_t(b.y) - a.y);
}

// A value given at the three corners, as a plane over the device.
struct Plane {
  double at0, dx, dy, x0, y0;
  double operator()(double x, double y) const { return at0 + dx * (x - x0) + dy * (y - y0); }
};

struct Triangle {
  const OT_DCI_Point* p[3];
  double det;

  explicit Triangle(const OT_DCI_Point* points) : p{points, points + 1, points + 2} {
    det = (double(p[1]->x) - p[0]->x) * (double(p[2]->y) - p[0]->y) -
          (double(p[2]->x) - p[0]->x) * (double(p[1]->y) - p[0]->y);
  }
  Plane plane(double a0, double a1, double a2) const {
    const double ex = double(p[1]->x) - p[0]->x, ey = double(p[1]->y) - p[0]->y;
    const double fx = double(p[2]->x) - p[0]->x, fy = double(p[2]->y) - p[0]->y;
    return {a0, ((a1 - a0) * fy - (a2 - a0) * ey) / det, ((a2 - a0) * ex - (a1 - a0) * fx) / det,
            double(p[0]->x), double(p[0]->y)};
  }
};

// Calls span(y, xl, xr) for each row of the triangle, xr inclusive.
template <class Span>
void scan(const Triangle& triangle, Span span) {
  const OT_DCI_Point* s[3] = {triangle.p[0], triangle.p[1], triangle.p[2]};
  // Stable sort by y: of equal y the earlier point stays first.
  if (s[0]->y > s[1]->y) std::swap(s[0], s[1]);
  if (s[1]->y > s[2]->y) std::swap(s[1], s[2]);
  if (s[0]->y > s[1]->y) std::swap(s[0], s[1]);
  const OT_DCI_Point &top = *s[0], &middle = *s[1], &bottom = *s[2];
  for (std::int64_t y = top.y; y < bottom.y; ++y) {
    const std::int32_t row = std::int32_t(y);
    const std::int32_t a = edge_x(top, bottom, row);
    const std::int32_t b = row < middle.y ? edge_x(top, middle, row) : edge_x(middle, bottom, row);
    const std::int32_t left = std::min(a, b), right = std::max(a, b);
    if (left < right) span(row, left, right - 1);
  }
}

// The end points of a span, depth from the plane.
void span_points(const Plane& z, std::int32_t y, std::int32_t xl, std::int32_t xr, OT_DCI_Point* out) {
  out[0] = {xl, y, round_to_int(z(xl, y))};
  out[1] = {xr, y, round_to_int(z(xr, y))};
}

Plane z_plane(const Triangle& t) { return t.plane(t.p[0]->z, t.p[1]->z, t.p[2]->z); }

// Spans go down as thin solid lines: the line section of a wide, patterned,
// styled or halo line would send them back up as triangles.
OT_Rendition span_rendition(const OT_Rendition& rd) {
  const OT_Rendition_Line& line = *rd->line;
  const OT_Material& material = rd->colors->material;
  const bool halo = material && *material->type_code() == 7;
  if (line.weight <= 1 && line.pattern == 0 && line.line_type_set == &OT_Line_Type_Set::None && !halo)
    return rd;
  OT_Rendition thin = rd;
  OT_Rendition_Line* writable = thin.writable_line();
  writable->weight = 0;
  writable->pattern = 0;
  writable->line_type_set = &OT_Line_Type_Set::None;
  if (halo) thin.writable_colors()->material = OT_Material();
  return thin;
}

void flat_triangle(R* r, const OT_Rendition& caller, const OT_DCI_Point* points, const OT_RGB32* color) {
  const Triangle t(points);
  if (t.det == 0.0) return;
  const OT_Rendition rd = span_rendition(caller);
  const Plane z = z_plane(t);
  scan(t, [&](std::int32_t y, std::int32_t xl, std::int32_t xr) {
    OT_DCI_Point span[2];
    span_points(z, y, xl, xr, span);
    if (color)
      r->draw_dci_colorized_polyline(rd, 2, span, color, true);
    else
      r->draw_dci_polyline(rd, 2, span);
  });
}

void shaded_triangle(R* r, const OT_Rendition& caller, const OT_DCI_Point* points, const OT_RGB32* colors) {
  const Triangle t(points);
  if (t.det == 0.0) return;
  const OT_Rendition rd = span_rendition(caller);
  const Plane z = z_plane(t);
  Plane channel[4];
  for (int c = 0; c < 4; ++c) {
    auto get = [c](const OT_RGB32& k) { return double(c == 0 ? k.b : c == 1 ? k.g : c == 2 ? k.r : k.a); };
    channel[c] = t.plane(get(colors[0]), get(colors[1]), get(colors[2]));
  }
  auto color_at = [&](double x, double y) {
    return OT_RGB32{clamp_byte(channel[0](x, y)), clamp_byte(channel[1](x, y)), clamp_byte(channel[2](x, y)),
                    clamp_byte(channel[3](x, y))};
  };
  scan(t, [&](std::int32_t y, std::int32_t xl, std::int32_t xr) {
    OT_DCI_Point span[2];
    span_points(z, y, xl, xr, span);
    const OT_RGB32 ends[2] = {color_at(xl, y), color_at(xr, y)};
    r->draw_dci_gouraud_polyline(rd, 2, span, ends);
  });
}

// ---- Textured ----------------------------------------------------------------

// The texture of the rendition's material, resolved for lookups: nearest
// texel, wrap 2 repeats, 0 leaves the pixel out, any other value clamps to
// the edge.
struct Texture_Sampler {
  OT_Texture texture;
  OT_Shared_Image image;

  explicit Texture_Sampler(const OT_Rendition& rd) {
    const OT_Material& material = rd->colors->material;
    if (material) material->texture(&texture);
    if (texture) texture->image(&image);
    if (image && (image->format != OT_Image_Format_RGB32 || image->width < 1 || image->height < 1))
      image.reset();
  }
  explicit operator bool() const { return bool(image); }

  static bool place(double t, std::int32_t size, std::int32_t wrap, std::int32_t& at) {
    const double scaled = std::floor(t * size);
    if (!std::isfinite(scaled)) return false;
    if (wrap == 2) {
      const double m = scaled - std::floor(scaled / size) * size;
      at = std::int32_t(std::clamp(m, 0.0, double(size - 1)));
      return true;
    }
    if (wrap == 0 && (scaled < 0 || scaled >= size)) return false;
    at = std::int32_t(std::clamp(scaled, 0.0, double(size - 1)));
    return true;
  }
  // The texel at (u, v); false when the wrap leaves it out. v runs up from
  // the image's last row in memory, as device y does.
  bool lookup(double u, double v, OT_RGB32& texel) const {
    std::int32_t x = 0, y = 0;
    if (!place(u, image->width, texture->wrap_u, x) || !place(v, image->height, texture->wrap_v, y))
      return false;
    texel = reinterpret_cast<const OT_RGB32*>(image->top_rows[image->height - 1 - y])[x];
    return true;
  }
};

// The light that reaches a white surface at each point of a lit call, or
// nothing for an unlit one.
struct Vertex_Light {
  OT_Rendition white;
  const OT_Material* material = nullptr;

  Vertex_Light(const OT_Rendition& rd, const OT_Vector* normals) {
    if (!normals || !rd->colors->lighting || !rd->colors->material) return;
    white = rd;
    white.set_color(OT_RGB32{255, 255, 255, 255}, true);
    material = &rd->colors->material;
  }
  void at(const OT_Vector& normal, double* out) const {
    float light[3] = {1.0f, 1.0f, 1.0f};
    if (material) (*material)->shade(light, white, &normal, nullptr, nullptr, nullptr, 1, nullptr);
    for (int c = 0; c < 3; ++c) out[c] = light[c];
  }
};

// Texels times the interpolated colour (modulate) and light; u and v are
// divided by w across the triangle when w is given.
void textured_triangle(R* r, const OT_Rendition& rd, const OT_DCI_Point* points, const OT_RGB32* colors,
                       const OT_Parameter* params, int width, const float* w, const OT_Vector* normals,
                       const Texture_Sampler& sampler, const Vertex_Light& light) {
  const Triangle t(points);
  if (t.det == 0.0) return;
  const Plane z = z_plane(t);
  double q[3], u[3], v[3];
  for (int k = 0; k < 3; ++k) {
    q[k] = w && w[k] != 0.0f ? 1.0 / w[k] : 1.0;
    u[k] = params[std::size_t(k) * width].u * q[k];
    v[k] = params[std::size_t(k) * width].v * q[k];
  }
  const Plane q_plane = t.plane(q[0], q[1], q[2]), u_plane = t.plane(u[0], u[1], u[2]),
              v_plane = t.plane(v[0], v[1], v[2]);
  const bool modulate = colors && sampler.texture->modulate;
  Plane factor[4];  // b, g, r, a scale of the texel
  double corner[3][4];
  for (int k = 0; k < 3; ++k) {
    double lit[3] = {1.0, 1.0, 1.0};
    if (light.material) light.at(normals[k], lit);
    const OT_RGB32 c = modulate ? colors[k] : OT_RGB32{255, 255, 255, 255};
    corner[k][0] = c.b / 255.0 * lit[2];
    corner[k][1] = c.g / 255.0 * lit[1];
    corner[k][2] = c.r / 255.0 * lit[0];
    corner[k][3] = c.a / 255.0;
  }
  for (int c = 0; c < 4; ++c) factor[c] = t.plane(corner[0][c], corner[1][c], corner[2][c]);
  scan(t, [&](std::int32_t y, std::int32_t xl, std::int32_t xr) {
    for (std::int32_t x = xl; x <= xr; ++x) {
      const double qq = q_plane(x, y);
      OT_RGB32 texel;
      if (qq == 0.0 || !sampler.lookup(u_plane(x, y) / qq, v_plane(x, y) / qq, texel)) continue;
      const OT_RGB32 color{clamp_byte(texel.b * factor[0](x, y)), clamp_byte(texel.g * factor[1](x, y)),
                           clamp_byte(texel.r * factor[2](x, y)), clamp_byte(texel.a * factor[3](x, y))};
      const OT_DCI_Point p{x, y, round_to_int(z(x, y))};
      r->draw_dci_dot(rd, &p, &color);
    }
  });
}

}  // namespace

void OB_Standard_Draw_DCI_Polytriangle(R* r, const OT_Rendition& rd, int count, const OT_DCI_Point* points) {
  for (int t = 0; t + 2 < count; ++t) flat_triangle(r, rd, points + t, nullptr);
}

// Without colours the spans take the rendition's colour.
void OB_Standard_Draw_DCI_Colorized_Polytriangle(R* r, const OT_Rendition& rd, int count,
                                                 const OT_DCI_Point* points, const OT_RGB32* colors,
                                                 bool single) {
  for (int t = 0; t + 2 < count; ++t)
    flat_triangle(r, rd, points + t, colors && !single ? colors + t : colors);
}

void OB_Standard_Draw_DCI_Gouraud_Polytriangle(R* r, const OT_Rendition& rd, int count,
                                               const OT_DCI_Point* points, const OT_RGB32* colors) {
  for (int t = 0; t + 2 < count; ++t) {
    if (colors)
      shaded_triangle(r, rd, points + t, colors + t);
    else
      flat_triangle(r, rd, points + t, nullptr);
  }
}

// Without a texture (or without parameters) a textured triangle is drawn in
// its vertex colours, or in the rendition's colour when there are none.
void OB_Standard_Draw_DCI_Textured_Polytriangle(R* r, const OT_Rendition& rd, int count,
                                                const OT_DCI_Point* points, const OT_RGB32* colors,
                                                const OT_Parameter* params, int width, const float* w,
                                                const OT_Vector* normals) {
  const Texture_Sampler sampler(rd);
  if (!sampler || !params || width < 1) {
    OB_Standard_Draw_DCI_Gouraud_Polytriangle(r, rd, count, points, colors);
    return;
  }
  const Vertex_Light light(rd, normals);
  for (int t = 0; t + 2 < count; ++t)
    textured_triangle(r, rd, points + t, colors ? colors + t : nullptr, params + std::size_t(t) * width,
                      width, w ? w + t : nullptr, normals ? normals + t : nullptr, sampler, light);
}
