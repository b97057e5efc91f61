#include "primitives/tiled.h"

#include <cstdint>
#include <memory>
#include <vector>

#include "pixel/outcode_buffer.h"
#include "pixel/rounding.h"

namespace tarn {
namespace {

// Half the reach of the tiled limits: what a window-relative integer point may
// be without the walkers' set-up overflowing on the way to the hard clip.
constexpr std::int32_t kTiledReach = 0x40000000;
constexpr OT_Int_Rectangle kWideLimits{-kTiledReach, kTiledReach, -kTiledReach, kTiledReach};

// The preclip writes a convex polygon of at most seven points.
constexpr int kPreclipPoints = 7;

std::int32_t wrap_add(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}
std::int32_t wrap_sub(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

// What every tiled call keeps in its frame: the window origin it found, and a
// counted copy of the rendition whose hard clip is window-relative.
class Tiled_Call {
 public:
  Tiled_Call(Software_Z_Buffer& renderer, const OT_Rendition& rendition)
      : renderer_(renderer), origin_x_(renderer.origin_x), origin_y_(renderer.origin_y), copy_(rendition) {}

  // From here on every 2DI action sees a window at (0, 0), and the copy a hard
  // clip that lies within it.
  void enter() {
    renderer_.origin_x = 0;
    renderer_.origin_y = 0;
    const OT_Int_Rectangle& clip = copy_->device->hard_clip;
    auto cut = [](std::int32_t v, std::int32_t high) {
      if (v < 0) v = 0;
      return v > high ? high : v;
    };
    const std::int32_t right = renderer_.width - 1, top = renderer_.height - 1;
    const OT_Int_Rectangle local{
        cut(wrap_sub(clip.left, origin_x_), right), cut(wrap_sub(clip.right, origin_x_), right),
        cut(wrap_sub(clip.bottom, origin_y_), top), cut(wrap_sub(clip.top, origin_y_), top)};
    copy_.set_hard_clip_unrestricted(local, false);
  }
  // Only on the normal path: a failure in between leaves the origin at (0, 0).
  void leave() {
    renderer_.origin_x = origin_x_;
    renderer_.origin_y = origin_y_;
  }

  OT_Int_Rectangle tiled_limits() const {
    return {wrap_sub(origin_x_, kTiledReach), wrap_add(origin_x_, kTiledReach),
            wrap_sub(origin_y_, kTiledReach), wrap_add(origin_y_, kTiledReach)};
  }
  void convert(const OT_Point_D* points, int count, OT_DCI_Point* out) const {
    round_points_d(points, count, out, origin_x_, origin_y_);
  }
  // A preclipped point is already rounded; it only moves to the window.
  void move(OT_DCI_Point& p) const {
    p.x = wrap_sub(p.x, origin_x_);
    p.y = wrap_sub(p.y, origin_y_);
  }
  // The triangle starting at `first`, window-relative for the wide limits.
  void relative_triangle(const OT_Point_D* first, OT_Point_D* out) const {
    for (int k = 0; k < 3; ++k) out[k] = {first[k].x - origin_x_, first[k].y - origin_y_, first[k].z};
  }

  Software_Z_Buffer& renderer() { return renderer_; }
  const OT_Rendition& copy() const { return copy_; }

 private:
  Software_Z_Buffer& renderer_;
  std::int32_t origin_x_, origin_y_;
  OT_Rendition copy_;
};

// ---- Strips -----------------------------------------------------------------

// The lists of a strip and where each 2DI call of its kind finds them. `run`
// draws n converted points starting at point (and triangle) `first`; `cross`
// preclips triangle `first`, given window-relative, and draws what is left.
struct Plain_Strip {
  void run(Tiled_Call& call, int, int n, const OT_DCI_Point* points) const {
    call.renderer().draw_2di_polytriangle(call.copy(), n, points);
  }
  void cross(Tiled_Call& call, int, const OT_Point_D* triangle) const {
    OT_DCI_Point out[kPreclipPoints];
    int n = 0;
    if (OB_Preclip_2D_Triangle(&call.renderer(), &call.copy(), kWideLimits, triangle, n, out, nullptr,
                               nullptr, nullptr, 1, nullptr, nullptr, nullptr, nullptr, nullptr))
      call.renderer().draw_2di_polytriangle(call.copy(), n, out);
  }
};

struct Colorized_Strip {
  const OT_RGB32* colors;
  bool single;

  const OT_RGB32* at(int triangle) const { return colors && !single ? colors + triangle : colors; }
  void run(Tiled_Call& call, int first, int n, const OT_DCI_Point* points) const {
    call.renderer().draw_2di_colorized_polytriangle(call.copy(), n, points, at(first), single);
  }
  // The pieces of one triangle all take its colour.
  void cross(Tiled_Call& call, int first, const OT_Point_D* triangle) const {
    OT_DCI_Point out[kPreclipPoints];
    int n = 0;
    if (OB_Preclip_2D_Triangle(&call.renderer(), &call.copy(), kWideLimits, triangle, n, out, nullptr,
                               nullptr, nullptr, 1, nullptr, nullptr, nullptr, nullptr, nullptr))
      call.renderer().draw_2di_colorized_polytriangle(call.copy(), n, out, at(first), true);
  }
};

struct Gouraud_Strip {
  const OT_RGB32* colors;

  void run(Tiled_Call& call, int first, int n, const OT_DCI_Point* points) const {
    call.renderer().draw_2di_gouraud_polytriangle(call.copy(), n, points, colors ? colors + first : nullptr);
  }
  void cross(Tiled_Call& call, int first, const OT_Point_D* triangle) const {
    OT_DCI_Point out[kPreclipPoints];
    OT_RGB32 out_colors[kPreclipPoints];
    int n = 0;
    const OT_RGB32* in = colors ? colors + first : nullptr;
    if (OB_Preclip_2D_Triangle(&call.renderer(), &call.copy(), kWideLimits, triangle, n, out, in,
                               in ? out_colors : nullptr, nullptr, 1, nullptr, nullptr, nullptr, nullptr,
                               nullptr))
      call.renderer().draw_2di_gouraud_polytriangle(call.copy(), n, out, in ? out_colors : nullptr);
  }
};

struct Textured_Strip {
  const OT_RGB32* colors;
  const OT_Parameter* params;
  int param_width;
  const float* w_values;
  const OT_Vector* normals;

  template <class T>
  static const T* step(const T* list, int by) {
    return list ? list + by : nullptr;
  }
  void run(Tiled_Call& call, int first, int n, const OT_DCI_Point* points) const {
    call.renderer().draw_2di_textured_polytriangle(call.copy(), n, points, step(colors, first),
                                                   step(params, first * param_width), param_width,
                                                   step(w_values, first), step(normals, first));
  }
  void cross(Tiled_Call& call, int first, const OT_Point_D* triangle) const {
    OT_DCI_Point out[kPreclipPoints];
    OT_RGB32 out_colors[kPreclipPoints];
    float out_w[kPreclipPoints];
    OT_Vector out_normals[kPreclipPoints];
    std::vector<OT_Parameter> out_params;
    if (params && param_width > 0) out_params.resize(std::size_t(kPreclipPoints) * std::size_t(param_width));
    const OT_RGB32* c = step(colors, first);
    const OT_Parameter* p = step(params, first * param_width);
    const float* w = step(w_values, first);
    const OT_Vector* v = step(normals, first);
    OT_Parameter* out_p = out_params.empty() ? nullptr : out_params.data();
    int n = 0;
    if (OB_Preclip_2D_Triangle(&call.renderer(), &call.copy(), kWideLimits, triangle, n, out, c,
                               c ? out_colors : nullptr, p, param_width, out_p, w, w ? out_w : nullptr, v,
                               v ? out_normals : nullptr))
      call.renderer().draw_2di_textured_polytriangle(call.copy(), n, out, c ? out_colors : nullptr,
                                                     p ? out_p : nullptr, param_width, w ? out_w : nullptr,
                                                     v ? out_normals : nullptr);
  }
};

// The strip walk over the tiled outcodes: triangles out on one side are
// skipped, crossing ones preclipped one by one, inside runs drawn whole.
template <class Kind>
void walk_strip(Tiled_Call& call, int count, const OT_Point_D* points, const short* codes,
                OT_DCI_Point* converted, const Kind& kind) {
  int p = 0;
  while (p + 2 < count) {
    while (codes[p] & codes[p + 1] & codes[p + 2])
      if (++p + 2 >= count) return;
    while (codes[p] | codes[p + 1] | codes[p + 2]) {
      OT_Point_D triangle[3];
      call.relative_triangle(points + p, triangle);
      kind.cross(call, p, triangle);
      if (++p + 2 >= count) return;
    }
    const int first = p;
    int third = p + 2;
    do ++third;
    while (third < count && codes[third] == 0);
    const int n = third - first;
    call.convert(points + first, n, converted);
    kind.run(call, first, n, converted);
    p = third - 2;
  }
}

// The frame common to the seven actions, in its order; `walk` runs when the
// points are neither all inside the tiled limits nor all out on one side.
template <class Whole, class Walk>
void tiled_call(OT_Renderer_Data* object, const OT_Rendition& rendition, int count, const OT_Point_D* points,
                Whole&& whole, Walk&& walk) {
  Tiled_Call call(renderer_of(object), rendition);
  Point_Buffer converted(count);
  Outcode_Buffer codes(count);
  call.enter();
  const int r = OB_Clip(call.tiled_limits(), count, points, codes.data());
  if (r == count) {
    call.convert(points, count, converted.data());
    whole(call, converted.data());
  } else if (r != 0) {
    walk(call, codes.data(), converted.data());
  }
  call.leave();
}

template <class Kind>
void tiled_strip(OT_Renderer_Data* object, const OT_Rendition& rendition, int count, const OT_Point_D* points,
                 const Kind& kind) {
  tiled_call(
      object, rendition, count, points,
      [&](Tiled_Call& call, const OT_DCI_Point* converted) { kind.run(call, 0, count, converted); },
      [&](Tiled_Call& call, const short* codes, OT_DCI_Point* converted) {
        walk_strip(call, count, points, codes, converted, kind);
      });
}

// The w of each point, for a textured strip that came without it: the device
// point is taken back through the adjoint of the device matrix and sent
// forward again, which gives its w. Null when there is no matrix.
class Recovered_W {
 public:
  Recovered_W(const OT_Rendition& rendition, int count, const OT_Point_D* points) {
    const OT_Matrix& matrix = rendition->device->matrix;
    if (!matrix) return;
    if (count > kLocalValues) {
      heap_.reset(new float[std::size_t(count)]);
      data_ = heap_.get();
    } else {
      data_ = local_;
    }
    if (!matrix->adjoint) matrix->validate_adjoint();
    const OT_Handle<OT_Matrix_Data> adjoint = matrix->adjoint;
    for (int i = 0; i < count; ++i) {
      OT_Point_D source, device;
      adjoint->transform(points[i], source, nullptr, 0.0f);
      matrix.transform(source, device, data_ + i, 0.0f);
    }
  }
  Recovered_W(const Recovered_W&) = delete;
  Recovered_W& operator=(const Recovered_W&) = delete;
  const float* data() const { return data_; }

 private:
  static constexpr int kLocalValues = 64;
  float local_[kLocalValues];
  std::unique_ptr<float[]> heap_;
  float* data_ = nullptr;
};

// ---- Lines ------------------------------------------------------------------

// Only the low four bits count, so that the end mark is not outside.
bool is_outside(short code) { return (code & 0xF) != 0; }

// A polyline's colour buffer for the Gouraud form: in the frame up to 64
// entries, from the host's heap beyond.
class Line_Colors {
 public:
  explicit Line_Colors(int count) {
    if (count > kLocalColors)
      data_ = static_cast<OT_RGB32*>(OB_AllocateMemory(std::size_t(count) * sizeof(OT_RGB32), nullptr));
  }
  ~Line_Colors() {
    if (data_ != local_) OB_ReleaseMemory(data_);
  }
  Line_Colors(const Line_Colors&) = delete;
  Line_Colors& operator=(const Line_Colors&) = delete;
  OT_RGB32* data() { return data_; }

 private:
  static constexpr int kLocalColors = 64;
  OT_RGB32 local_[kLocalColors];
  OT_RGB32* data_ = local_;
};

// What a line kind draws and which colours the preclip routines carry.
// `in(i)` is the colour list from point i on, `out(k)` the output entry k;
// both null for the kinds without point colours.
struct Plain_Line {
  const OT_RGB32* in(int) const { return nullptr; }
  OT_RGB32* out(int) const { return nullptr; }
  void copy_colors(int, int, int) const {}
  void draw(Tiled_Call& call, int n, const OT_DCI_Point* points) const {
    call.renderer().draw_2di_polyline(call.copy(), n, points);
  }
  void whole(Tiled_Call& call, int n, const OT_DCI_Point* points) const { draw(call, n, points); }
};

// One colour list for the whole call: every piece gets it as it came.
struct Colorized_Line {
  const OT_RGB32* colors;
  bool single;
  const OT_RGB32* in(int) const { return nullptr; }
  OT_RGB32* out(int) const { return nullptr; }
  void copy_colors(int, int, int) const {}
  void draw(Tiled_Call& call, int n, const OT_DCI_Point* points) const {
    call.renderer().draw_2di_colorized_polyline(call.copy(), n, points, colors, single);
  }
  void whole(Tiled_Call& call, int n, const OT_DCI_Point* points) const { draw(call, n, points); }
};

struct Gouraud_Line {
  const OT_RGB32* colors;
  OT_RGB32* buffer;
  const OT_RGB32* in(int i) const { return colors ? colors + i : nullptr; }
  OT_RGB32* out(int k) const { return colors ? buffer + k : nullptr; }
  void copy_colors(int from, int n, int to) const {
    for (int k = 0; colors && k < n; ++k) buffer[to + k] = colors[from + k];
  }
  void draw(Tiled_Call& call, int n, const OT_DCI_Point* points) const {
    call.renderer().draw_2di_gouraud_polyline(call.copy(), n, points, colors ? buffer : nullptr);
  }
  // A polyline wholly within the limits keeps the caller's colours.
  void whole(Tiled_Call& call, int n, const OT_DCI_Point* points) const {
    call.renderer().draw_2di_gouraud_polyline(call.copy(), n, points, colors);
  }
};

template <class Kind>
void walk_line(Tiled_Call& call, int count, const OT_Point_D* points, short* codes, OT_DCI_Point* out,
               const Kind& kind) {
  codes[count] = OT_Outcode_End;
  const OT_Int_Rectangle limits = call.tiled_limits();
  int i = 0;
  if (codes[0] == 0) {
    int n = 0;
    while (codes[n] == 0) ++n;
    call.convert(points, n, out);
    kind.copy_colors(0, n, 0);
    OB_Preclip_Tail(codes[n], limits, points + n - 1, out + n, kind.in(n - 1), kind.out(n));
    call.move(out[n]);
    kind.draw(call, n + 1, out);
    i = n;
  }
  for (;;) {
    // Point i is outside: pass over the outside points, drawing the pieces of
    // segments that join two of them across the limits.
    for (++i; is_outside(codes[i]); ++i) {
      if (codes[i] & codes[i - 1]) continue;
      OT_DCI_Point ends[2];
      if (OB_Preclip_Ends(codes + i - 1, limits, points + i - 1, ends, kind.in(i - 1), kind.out(0))) {
        call.move(ends[0]);
        call.move(ends[1]);
        kind.draw(call, 2, ends);
      }
    }
    if (codes[i] == OT_Outcode_End) return;
    OB_Preclip_Head(codes[i - 1], limits, points + i - 1, out, kind.in(i - 1), kind.out(0));
    call.move(out[0]);
    int m = 0;
    while (codes[i + m] == 0) ++m;
    call.convert(points + i, m, out + 1);
    kind.copy_colors(i, m, 1);
    i += m;
    if (codes[i] == OT_Outcode_End) return kind.draw(call, m + 1, out);
    OB_Preclip_Tail(codes[i], limits, points + i - 1, out + m + 1, kind.in(i - 1), kind.out(m + 1));
    call.move(out[m + 1]);
    kind.draw(call, m + 2, out);
  }
}

template <class Kind>
void tiled_line(OT_Renderer_Data* object, const OT_Rendition& rendition, int count, const OT_Point_D* points,
                const Kind& kind) {
  tiled_call(
      object, rendition, count, points,
      [&](Tiled_Call& call, const OT_DCI_Point* converted) { kind.whole(call, count, converted); },
      [&](Tiled_Call& call, short* codes, OT_DCI_Point* converted) {
        walk_line(call, count, points, codes, converted, kind);
      });
}

}  // namespace

void tiled_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                        const OT_Point_D* points) {
  tiled_strip(object, rendition, count, points, Plain_Strip{});
}

void tiled_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                  const OT_Point_D* points, const OT_RGB32* colors, bool single) {
  tiled_strip(object, rendition, count, points, Colorized_Strip{colors, single});
}

void tiled_gouraud_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                const OT_Point_D* points, const OT_RGB32* colors) {
  tiled_strip(object, rendition, count, points, Gouraud_Strip{colors});
}

// Without w and with texture flags, w is recovered from the device matrix,
// but only for a strip that needs walking.
void tiled_textured_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                 const OT_Point_D* points, const OT_RGB32* colors, const OT_Parameter* params,
                                 int param_width, const float* w_values, const OT_Vector* normals) {
  const Textured_Strip given{colors, params, param_width, w_values, normals};
  tiled_call(
      object, rendition, count, points,
      [&](Tiled_Call& call, const OT_DCI_Point* converted) { given.run(call, 0, count, converted); },
      [&](Tiled_Call& call, const short* codes, OT_DCI_Point* converted) {
        if (w_values || rendition->raster->texture_flags == 0)
          return walk_strip(call, count, points, codes, converted, given);
        const Recovered_W w(rendition, count, points);
        walk_strip(call, count, points, codes, converted,
                   Textured_Strip{colors, params, param_width, w.data(), normals});
      });
}

void tiled_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                    const OT_Point_D* points) {
  tiled_line(object, rendition, count, points, Plain_Line{});
}

void tiled_colorized_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                              const OT_Point_D* points, const OT_RGB32* colors, bool single) {
  tiled_line(object, rendition, count, points, Colorized_Line{colors, single});
}

void tiled_gouraud_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                            const OT_Point_D* points, const OT_RGB32* colors) {
  Line_Colors buffer(count);
  tiled_line(object, rendition, count, points, Gouraud_Line{colors, buffer.data()});
}

}  // namespace tarn
