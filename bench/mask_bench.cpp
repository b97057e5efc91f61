// The price of the complex clip: the same fills and lines with and without a
// mask that hides nothing, so the difference is the per-pixel bit test alone;
// and the price of a dashed line type.
#include <benchmark/benchmark.h>

#include <vector>

#include "bench/bench_host.h"

namespace tarn::bench {
namespace {

// "Use Mask" on, and a clip over the whole window.
void mask_everything(Bench_Host& host) {
  OT_Renderer_Data& r = host.renderer();
  r.requested_options.find(L"Use Mask")->set(OT_Option_Value::of_bool(true));
  r.update_current_options();
  r.establish();
  const float side = float(kWindow + 8);
  const OT_Point corners[4] = {{-4, -4, 0}, {side, -4, 0}, {side, side, 0}, {-4, side, 0}};
  host.writable_rendition().writable_device()->complex_clip = OT_Contour_Set(4, corners, true);
  host.clear();
}

// Two triangles over the window: about a million pixels a call.
void BM_Fill(benchmark::State& state, const Mode& mode, bool masked, bool gouraud) {
  Bench_Host host(mode);
  if (!host.ready(state)) return;
  if (masked) mask_everything(host);
  const int e = kWindow - 1;
  const std::vector<OT_DCI_Point> strip{{0, 0, 100}, {e, 0, 200}, {0, e, 300}, {e, e, 400}};
  const std::vector<OT_RGB32> colors{OT_RGB32::rgba(250, 10, 10, 255), OT_RGB32::rgba(10, 250, 10, 255),
                                     OT_RGB32::rgba(10, 10, 250, 255), OT_RGB32::rgba(90, 90, 90, 255)};
  for (auto _ : state) {
    if (mode.depth()) host.renderer().clear_depth(host.rendition());
    if (gouraud)
      host.renderer().draw_dci_gouraud_polytriangle(host.rendition(), 4, strip.data(), colors.data());
    else
      host.renderer().draw_dci_polytriangle(host.rendition(), 4, strip.data());
    benchmark::ClobberMemory();
  }
  set_rate(state, "pixels/s", double(kWindow) * kWindow);
}
BENCHMARK_CAPTURE(BM_Fill, flat_mapped, kMapped, false, false);
BENCHMARK_CAPTURE(BM_Fill, flat_mapped_masked, kMapped, true, false);
BENCHMARK_CAPTURE(BM_Fill, flat_rgb32, kRgb32, false, false);
BENCHMARK_CAPTURE(BM_Fill, flat_rgb32_masked, kRgb32, true, false);
BENCHMARK_CAPTURE(BM_Fill, flat_z_rgb32, kZRgb32, false, false);
BENCHMARK_CAPTURE(BM_Fill, flat_z_rgb32_masked, kZRgb32, true, false);
BENCHMARK_CAPTURE(BM_Fill, gouraud_rgb32, kRgb32, false, true);
BENCHMARK_CAPTURE(BM_Fill, gouraud_rgb32_masked, kRgb32, true, true);

// A fan of 1000 segments of 400 pixels.
void BM_Lines(benchmark::State& state, const Mode& mode, bool masked) {
  Bench_Host host(mode);
  if (!host.ready(state)) return;
  if (masked) mask_everything(host);
  std::vector<OT_DCI_Point> points;
  const int c = kWindow / 2;
  for (int i = 0; i <= 1000; ++i) {
    const int k = (i * 37) % 400;
    const int side = (i / 2) % 4;
    const OT_DCI_Point ends[4] = {{c - 200 + k, c - 200, 100},
                                  {c + 200, c - 200 + k, 100},
                                  {c + 200 - k, c + 200, 100},
                                  {c - 200, c + 200 - k, 100}};
    points.push_back(i % 2 ? ends[side] : OT_DCI_Point{c, c, 100});
  }
  for (auto _ : state) {
    host.renderer().draw_dci_polyline(host.rendition(), int(points.size()), points.data());
    benchmark::ClobberMemory();
  }
  set_rate(state, "pixels/s", 1000.0 * 200);
}
BENCHMARK_CAPTURE(BM_Lines, mapped, kMapped, false);
BENCHMARK_CAPTURE(BM_Lines, mapped_masked, kMapped, true);
BENCHMARK_CAPTURE(BM_Lines, rgb32, kRgb32, false);
BENCHMARK_CAPTURE(BM_Lines, rgb32_masked, kRgb32, true);
BENCHMARK_CAPTURE(BM_Lines, z_rgb32, kZRgb32, false);
BENCHMARK_CAPTURE(BM_Lines, z_rgb32_masked, kZRgb32, true);

// The same fan dashed 10 on, 5 off in the two modes that take line types
// apart: the walk of the pattern and one action call a dash. Pixels/s counts
// the whole fan's length, drawn or skipped.
// kind: 0 over the whole path, 1 a type a segment, -1 solid (no line type).
void BM_Dashed_Lines(benchmark::State& state, const Mode& mode, int kind) {
  const bool per_segment = kind == 1;
  Bench_Host host(mode);
  if (!host.ready(state)) return;
  const std::vector<double> lengths{10, -5};
  const OT_Line_Type_Definition definition{lengths.data(), 2, 0};
  OT_Line_Type type(new OT_Line_Type_Data);
  type->definition = &definition;
  OT_Line_Type_Set set;
  const int segments = 1000;
  set.per_segment = per_segment;
  set.end_type = per_segment ? segments : 1;
  for (int i = 0; i < set.end_type; ++i) set.line_types.push_back(type);
  if (kind >= 0) host.writable_rendition().writable_line()->line_type_set = &set;
  std::vector<OT_DCI_Point> points;
  const int c = kWindow / 2;
  for (int i = 0; i <= segments; ++i) {
    const int k = (i * 37) % 400;
    points.push_back(i % 2 ? OT_DCI_Point{c + 200, c - 200 + k, 100} : OT_DCI_Point{c, c, 100});
  }
  for (auto _ : state) {
    host.renderer().draw_dci_polyline(host.rendition(), int(points.size()), points.data());
    benchmark::ClobberMemory();
  }
  set_rate(state, "segments/s", segments);
  set_rate(state, "pixels/s", segments * 200.0);
}
BENCHMARK_CAPTURE(BM_Dashed_Lines, rgb32_alpha_whole_path, kRgb32Alpha, 0);
BENCHMARK_CAPTURE(BM_Dashed_Lines, rgb32_alpha_per_segment, kRgb32Alpha, 1);
BENCHMARK_CAPTURE(BM_Dashed_Lines, mapped_whole_path, kMapped, 0);
BENCHMARK_CAPTURE(BM_Dashed_Lines, rgb32_alpha_solid, kRgb32Alpha, -1);

}  // namespace
}  // namespace tarn::bench
