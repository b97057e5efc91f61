// A renderer for the host's tests: chosen slots record their calls instead of
// drawing, the others keep the host's standard routines.
#pragma once

#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "host/ombra.h"

namespace ombra_testing {

struct Call {
  std::string slot;
  std::vector<OT_DCI_Point> points;
  const OT_RGB32* color_pointer = nullptr;
  std::vector<OT_RGB32> colors;  // copied: one a point (Gouraud) or the first (colorized)
  bool single = false;
  OT_Rendition rendition;
};

struct Dot {
  OT_DCI_Point point;
  bool has_color;
  OT_RGB32 color;
};

class Recording_Renderer : public OT_Renderer_Data {
 public:
  Recording_Renderer() : OT_Renderer_Data(nullptr) {}

  static Recording_Renderer& of(OT_Renderer_Data* object) { return *static_cast<Recording_Renderer*>(object); }

  void add(const char* slot, const OT_Rendition& rendition, int count, const OT_DCI_Point* points,
           const OT_RGB32* colors, int copied_colors, bool single) {
    Call call;
    call.slot = slot;
    call.points.assign(points, points + count);
    call.color_pointer = colors;
    if (colors) call.colors.assign(colors, colors + copied_colors);
    call.single = single;
    call.rendition = rendition;
    calls.push_back(std::move(call));
  }

  // The DCI polytriangle slots record.
  void record_dci_triangles() {
    draw_dci_polytriangle.install(this, [](OT_Renderer_Data* o, const OT_Rendition& rd, int n, const OT_DCI_Point* p) {
      of(o).add("dci_polytriangle", rd, n, p, nullptr, 0, false);
    });
    draw_dci_colorized_polytriangle.install(
        this, [](OT_Renderer_Data* o, const OT_Rendition& rd, int n, const OT_DCI_Point* p, const OT_RGB32* c, bool s) {
          of(o).add("dci_colorized_polytriangle", rd, n, p, c, 1, s);
        });
    draw_dci_gouraud_polytriangle.install(
        this, [](OT_Renderer_Data* o, const OT_Rendition& rd, int n, const OT_DCI_Point* p, const OT_RGB32* c) {
          of(o).add("dci_gouraud_polytriangle", rd, n, p, c, n, false);
        });
    draw_dci_textured_polytriangle.install(
        this, [](OT_Renderer_Data* o, const OT_Rendition& rd, int n, const OT_DCI_Point* p, const OT_RGB32* c,
                 const OT_Parameter* params, int, const float* w, const OT_Vector*) {
          of(o).add("dci_textured_polytriangle", rd, n, p, c, n, false);
          of(o).parameters.push_back(params ? std::vector<OT_Parameter>(params, params + n) : std::vector<OT_Parameter>{});
          of(o).w_values.push_back(w ? std::vector<float>(w, w + n) : std::vector<float>{});
        });
  }

  // The 2DI polytriangle slots record.
  void record_2di_triangles() {
    draw_2di_polytriangle.install(this, [](OT_Renderer_Data* o, const OT_Rendition& rd, int n, const OT_DCI_Point* p) {
      of(o).add("2di_polytriangle", rd, n, p, nullptr, 0, false);
    });
    draw_2di_colorized_polytriangle.install(
        this, [](OT_Renderer_Data* o, const OT_Rendition& rd, int n, const OT_DCI_Point* p, const OT_RGB32* c, bool s) {
          of(o).add("2di_colorized_polytriangle", rd, n, p, c, 1, s);
        });
    draw_2di_gouraud_polytriangle.install(
        this, [](OT_Renderer_Data* o, const OT_Rendition& rd, int n, const OT_DCI_Point* p, const OT_RGB32* c) {
          of(o).add("2di_gouraud_polytriangle", rd, n, p, c, n, false);
        });
  }

  // The DCI polyline slots record.
  void record_dci_lines() {
    draw_dci_polyline.install(this, [](OT_Renderer_Data* o, const OT_Rendition& rd, int n, const OT_DCI_Point* p) {
      of(o).add("dci_polyline", rd, n, p, nullptr, 0, false);
    });
    draw_dci_colorized_polyline.install(
        this, [](OT_Renderer_Data* o, const OT_Rendition& rd, int n, const OT_DCI_Point* p, const OT_RGB32* c, bool s) {
          of(o).add("dci_colorized_polyline", rd, n, p, c, 1, s);
        });
    draw_dci_gouraud_polyline.install(
        this, [](OT_Renderer_Data* o, const OT_Rendition& rd, int n, const OT_DCI_Point* p, const OT_RGB32* c) {
          of(o).add("dci_gouraud_polyline", rd, n, p, c, n, false);
        });
  }

  // The DCI dot slot records every pixel.
  void record_dots() {
    draw_dci_dot.install(this, [](OT_Renderer_Data* o, const OT_Rendition&, const OT_DCI_Point* p, const OT_RGB32* c) {
      of(o).dots.push_back(Dot{*p, c != nullptr, c ? *c : OT_RGB32{}});
    });
  }

  std::set<std::pair<int, int>> dot_positions() const {
    std::set<std::pair<int, int>> out;
    for (const Dot& d : dots) out.insert({d.point.x, d.point.y});
    return out;
  }

  std::vector<Call> calls;
  std::vector<Dot> dots;
  std::vector<std::vector<OT_Parameter>> parameters;
  std::vector<std::vector<float>> w_values;
};

inline std::set<std::pair<int, int>> rectangle_pixels(int left, int right, int bottom, int top) {
  std::set<std::pair<int, int>> out;
  for (int y = bottom; y <= top; ++y)
    for (int x = left; x <= right; ++x) out.insert({x, y});
  return out;
}

}  // namespace ombra_testing
