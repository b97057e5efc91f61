// Standard routines of the four polytriangle families in the 2D, DC, tiled
// and 2DI forms. Float and double points are rounded to the integer forms;
// 2DI strips are clipped to the hard clip and sent to the DCI slot.
//
// A triangle that crosses the hard clip is cut, in double precision, to the
// rectangle left .. right + 1, bottom .. top + 1: the DCI walk owns a pixel
// when it lies left of the right edge and below the top one, so that is the
// region whose pixels are exactly those of the hard clip. The cut polygon
// goes to the DCI slot as one strip (in the order 0, 1, n-1, 2, n-2, ...) of
// points rounded to nearest; z and the lists of the family are interpolated
// linearly in device space.
#include <algorithm>
#include <vector>

#include "ombra/standard_support.h"

namespace {

using namespace ombra;
using R = OT_Renderer_Data;

// ---- The lists that travel with a strip, by family ------------------------
//
// extra(): doubles per vertex to interpolate; load(): a vertex's values;
// run(): a part of the strip that needs no clipping, from point `first`;
// cut(): a clipped triangle, triangle index and its n points in strip order,
// with their interpolated values `stride` apart after x, y, z.

struct Plain_Lists {
  int extra() const { return 0; }
  void load(int, double*) const {}
  void run(R* r, const OT_Rendition& rd, int first, int n, const OT_DCI_Point* p) const {
    r->draw_dci_polytriangle(rd, n, p + first);
  }
  void cut(R* r, const OT_Rendition& rd, int, int n, const OT_DCI_Point* p, const double*, int) const {
    r->draw_dci_polytriangle(rd, n, p);
  }
};

struct Colorized_Lists {
  const OT_RGB32* colors;
  bool single;

  const OT_RGB32* color_of(int triangle) const { return colors && !single ? colors + triangle : colors; }
  int extra() const { return 0; }
  void load(int, double*) const {}
  void run(R* r, const OT_Rendition& rd, int first, int n, const OT_DCI_Point* p) const {
    r->draw_dci_colorized_polytriangle(rd, n, p + first, color_of(first), single);
  }
  void cut(R* r, const OT_Rendition& rd, int triangle, int n, const OT_DCI_Point* p, const double*,
           int) const {
    r->draw_dci_colorized_polytriangle(rd, n, p, color_of(triangle), true);
  }
};

void load_color(const OT_RGB32& c, double* out) {
  out[0] = c.b;
  out[1] = c.g;
  out[2] = c.r;
  out[3] = c.a;
}

OT_RGB32 color_from(const double* v) {
  return {clamp_byte(v[0]), clamp_byte(v[1]), clamp_byte(v[2]), clamp_byte(v[3])};
}

struct Gouraud_Lists {
  const OT_RGB32* colors;

  int extra() const { return colors ? 4 : 0; }
  void load(int i, double* out) const {
    if (colors) load_color(colors[i], out);
  }
  void run(R* r, const OT_Rendition& rd, int first, int n, const OT_DCI_Point* p) const {
    r->draw_dci_gouraud_polytriangle(rd, n, p + first, colors ? colors + first : nullptr);
  }
  void cut(R* r, const OT_Rendition& rd, int, int n, const OT_DCI_Point* p, const double* v,
           int stride) const {
    OT_RGB32 out[8];
    if (colors)
      for (int k = 0; k < n; ++k) out[k] = color_from(v + k * stride + 3);
    r->draw_dci_gouraud_polytriangle(rd, n, p, colors ? out : nullptr);
  }
};

struct Textured_Lists {
  const OT_RGB32* colors;
  const OT_Parameter* params;
  int width;
  const float* w;
  const OT_Vector* normals;

  int param_floats() const { return params && width > 0 ? 3 * width : 0; }
  int extra() const { return (colors ? 4 : 0) + param_floats() + (w ? 1 : 0) + (normals ? 3 : 0); }
  void load(int i, double* out) const {
    if (colors) {
      load_color(colors[i], out);
      out += 4;
    }
    for (int k = 0; k < param_floats(); ++k) {
      const OT_Parameter& q = params[std::size_t(i) * width + k / 3];
      *out++ = k % 3 == 0 ? q.u : k % 3 == 1 ? q.v : q.r;
    }
    if (w) *out++ = w[i];
    if (normals) {
      *out++ = normals[i].x;
      *out++ = normals[i].y;
      *out++ = normals[i].z;
    }
  }
  void run(R* r, const OT_Rendition& rd, int first, int n, const OT_DCI_Point* p) const {
    r->draw_dci_textured_polytriangle(rd, n, p + first, colors ? colors + first : nullptr,
                                      params ? params + std::size_t(first) * width : nullptr, width,
                                      w ? w + first : nullptr, normals ? normals + first : nullptr);
  }
  void cut(R* r, const OT_Rendition& rd, int, int n, const OT_DCI_Point* p, const double* v,
           int stride) const {
    OT_RGB32 out_colors[8];
    std::vector<OT_Parameter> out_params(std::size_t(n) * std::size_t(width > 0 ? width : 0));
    float out_w[8];
    OT_Vector out_normals[8];
    for (int k = 0; k < n; ++k) {
      const double* in = v + k * stride + 3;
      if (colors) {
        out_colors[k] = color_from(in);
        in += 4;
      }
      for (int j = 0; j < param_floats(); ++j) {
        OT_Parameter& q = out_params[std::size_t(k) * width + j / 3];
        (j % 3 == 0 ? q.u : j % 3 == 1 ? q.v : q.r) = float(*in++);
      }
      if (w) out_w[k] = float(*in++);
      if (normals) {
        out_normals[k] = {float(in[0]), float(in[1]), float(in[2])};
        out_normals[k].normalize();
      }
    }
    r->draw_dci_textured_polytriangle(rd, n, p, colors ? out_colors : nullptr,
                                      param_floats() ? out_params.data() : nullptr, width,
                                      w ? out_w : nullptr, normals ? out_normals : nullptr);
  }
};

// Triangle `t` of the strip cut to the clip region, and drawn when anything
// of it is left.
template <class Lists>
void draw_cut_triangle(R* r, const OT_Rendition& rd, const OT_DCI_Point* points, int t, const Lists& lists) {
  const OT_Int_Rectangle& clip = hard_clip(rd);
  const int stride = 3 + lists.extra();
  std::vector<double> v(std::size_t(stride) * 3);
  for (int i = 0; i < 3; ++i) {
    double* vertex = &v[std::size_t(i) * stride];
    vertex[0] = points[t + i].x;
    vertex[1] = points[t + i].y;
    vertex[2] = points[t + i].z;
    lists.load(t + i, vertex + 3);
  }
  const std::int32_t right = clip.right < INT32_MAX ? clip.right + 1 : INT32_MAX;
  const std::int32_t top = clip.top < INT32_MAX ? clip.top + 1 : INT32_MAX;
  const int n = clip_polygon(v, 3, stride,
                             Clip_Box{double(clip.left), double(right), double(clip.bottom), double(top)});
  if (n < 3) return;
  // A triangle cut by four sides keeps at most seven corners.
  OT_DCI_Point out[8];
  std::vector<double> ordered(std::size_t(n) * stride);
  for (int k = 0; k < n; ++k) {
    const double* vertex = &v[std::size_t(zigzag_index(k, n)) * stride];
    std::copy(vertex, vertex + stride, &ordered[std::size_t(k) * stride]);
    out[k] = {clamp(round_to_int(vertex[0]), clip.left, right),
              clamp(round_to_int(vertex[1]), clip.bottom, top), round_to_int(vertex[2])};
  }
  lists.cut(r, rd, t, n, out, ordered.data(), stride);
}

// Classifies the strip against the hard clip: all inside goes whole to the
// DCI slot, runs of triangles inside as one strip each, triangles wholly
// beyond one side are dropped, and the others are cut.
template <class Lists>
void draw_clipped_strip(R* r, const OT_Rendition& rd, int count, const OT_DCI_Point* points,
                        const Lists& lists) {
  if (count < 3 || !points) return;
  Scratch<short> codes{std::size_t(count)};
  const int result = OB_Clip(hard_clip(rd), count, points, codes.data());
  if (result == count) {
    lists.run(r, rd, 0, count, points);
    return;
  }
  if (result == 0) return;
  int run_start = -1;
  for (int t = 0; t + 2 < count; ++t) {
    const short a = codes[std::size_t(t)], b = codes[std::size_t(t) + 1], c = codes[std::size_t(t) + 2];
    if ((a | b | c) == 0) {
      if (run_start < 0) run_start = t;
      continue;
    }
    if (run_start >= 0) {
      lists.run(r, rd, run_start, t + 2 - run_start, points);
      run_start = -1;
    }
    if (a & b & c) continue;
    draw_cut_triangle(r, rd, points, t, lists);
  }
  if (run_start >= 0) lists.run(r, rd, run_start, count - run_start, points);
}

}  // namespace

// ---- Plain ----------------------------------------------------------------

void OB_Standard_Draw_2D_Polytriangle(R* r, const OT_Rendition& rd, int count, const OT_Point* points) {
  forward_rounded<&R::draw_2di_polytriangle>(r, rd, count, points);
}
void OB_Standard_Draw_DC_Polytriangle(R* r, const OT_Rendition& rd, int count, const OT_Point* points) {
  forward_rounded<&R::draw_dci_polytriangle>(r, rd, count, points);
}
void OB_Standard_Draw_Tiled_Polytriangle(R* r, const OT_Rendition& rd, int count, const OT_Point_D* points) {
  forward_rounded<&R::draw_2di_polytriangle>(r, rd, count, points);
}
void OB_Standard_Draw_2DI_Polytriangle(R* r, const OT_Rendition& rd, int count, const OT_DCI_Point* points) {
  draw_clipped_strip(r, rd, count, points, Plain_Lists{});
}

// ---- Colorized ------------------------------------------------------------

void OB_Standard_Draw_2D_Colorized_Polytriangle(R* r, const OT_Rendition& rd, int count,
                                                const OT_Point* points, const OT_RGB32* colors, bool single) {
  forward_rounded<&R::draw_2di_colorized_polytriangle>(r, rd, count, points, colors, single);
}
void OB_Standard_Draw_DC_Colorized_Polytriangle(R* r, const OT_Rendition& rd, int count,
                                                const OT_Point* points, const OT_RGB32* colors, bool single) {
  forward_rounded<&R::draw_dci_colorized_polytriangle>(r, rd, count, points, colors, single);
}
void OB_Standard_Draw_Tiled_Colorized_Polytriangle(R* r, const OT_Rendition& rd, int count,
                                                   const OT_Point_D* points, const OT_RGB32* colors,
                                                   bool single) {
  forward_rounded<&R::draw_2di_colorized_polytriangle>(r, rd, count, points, colors, single);
}
void OB_Standard_Draw_2DI_Colorized_Polytriangle(R* r, const OT_Rendition& rd, int count,
                                                 const OT_DCI_Point* points, const OT_RGB32* colors,
                                                 bool single) {
  draw_clipped_strip(r, rd, count, points, Colorized_Lists{colors, single});
}

// ---- Gouraud --------------------------------------------------------------

void OB_Standard_Draw_2D_Gouraud_Polytriangle(R* r, const OT_Rendition& rd, int count, const OT_Point* points,
                                              const OT_RGB32* colors) {
  forward_rounded<&R::draw_2di_gouraud_polytriangle>(r, rd, count, points, colors);
}
void OB_Standard_Draw_DC_Gouraud_Polytriangle(R* r, const OT_Rendition& rd, int count, const OT_Point* points,
                                              const OT_RGB32* colors) {
  forward_rounded<&R::draw_dci_gouraud_polytriangle>(r, rd, count, points, colors);
}
void OB_Standard_Draw_Tiled_Gouraud_Polytriangle(R* r, const OT_Rendition& rd, int count,
                                                 const OT_Point_D* points, const OT_RGB32* colors) {
  forward_rounded<&R::draw_2di_gouraud_polytriangle>(r, rd, count, points, colors);
}
void OB_Standard_Draw_2DI_Gouraud_Polytriangle(R* r, const OT_Rendition& rd, int count,
                                               const OT_DCI_Point* points, const OT_RGB32* colors) {
  draw_clipped_strip(r, rd, count, points, Gouraud_Lists{colors});
}

// ---- Textured -------------------------------------------------------------

void OB_Standard_Draw_2D_Textured_Polytriangle(R* r, const OT_Rendition& rd, int count,
                                               const OT_Point* points, const OT_RGB32* colors,
                                               const OT_Parameter* params, int width, const float* w,
                                               const OT_Vector* normals) {
  forward_rounded<&R::draw_2di_textured_polytriangle>(r, rd, count, points, colors, params, width, w,
                                                      normals);
}
void OB_Standard_Draw_DC_Textured_Polytriangle(R* r, const OT_Rendition& rd, int count,
                                               const OT_Point* points, const OT_RGB32* colors,
                                               const OT_Parameter* params, int width, const float* w,
                                               const OT_Vector* normals) {
  forward_rounded<&R::draw_dci_textured_polytriangle>(r, rd, count, points, colors, params, width, w,
                                                      normals);
}
void OB_Standard_Draw_Tiled_Textured_Polytriangle(R* r, const OT_Rendition& rd, int count,
                                                  const OT_Point_D* points, const OT_RGB32* colors,
                                                  const OT_Parameter* params, int width, const float* w,
                                                  const OT_Vector* normals) {
  forward_rounded<&R::draw_2di_textured_polytriangle>(r, rd, count, points, colors, params, width, w,
                                                      normals);
}
void OB_Standard_Draw_2DI_Textured_Polytriangle(R* r, const OT_Rendition& rd, int count,
                                                const OT_DCI_Point* points, const OT_RGB32* colors,
                                                const OT_Parameter* params, int width, const float* w,
                                                const OT_Vector* normals) {
  draw_clipped_strip(r, rd, count, points, Textured_Lists{colors, params, width, w, normals});
}
