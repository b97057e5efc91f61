// Solid flat triangle strips through the slots draw_dci_polytriangle and
// draw_dc_polytriangle, and the colour clear, per mode.
//
//   Strip:  a strip of 100 medium triangles (512 pixels each): the usual load.
//   Large:  two triangles that cover the 1024 x 1024 window: fill rate.
//   Small:  strips of 10-pixel triangles: set-up rate.
//   Clear:  clear_color of the whole window.
#include <benchmark/benchmark.h>

#include <vector>

#include "bench/bench_host.h"

namespace tarn::bench {
namespace {

using Strips = std::vector<std::vector<OT_DCI_Point>>;

// 100 triangles, base 16 and height 64, in one strip of 102 points.
Strips medium_strip() { return zigzag_strips(100, 8, 64); }
// 1000 triangles, base 4 and height 5, in strips of up to 503.
Strips small_strips() { return zigzag_strips(1000, 2, 5); }
// The window as a strip of two triangles. The right column and the top row of
// the points lie just outside, where spans and rows end.
Strips window_strip() { return {{{0, 0, 0}, {kWindow, 0, 0}, {0, kWindow, 0}, {kWindow, kWindow, 0}}}; }

int triangle_count(const Strips& strips) {
  int n = 0;
  for (const auto& strip : strips) n += int(strip.size()) - 2;
  return n;
}

void draw_dci(Bench_Host& host, const Strips& strips) {
  for (const auto& strip : strips)
    host.renderer().draw_dci_polytriangle(host.rendition(), int(strip.size()), strip.data());
}

void draw_dc(Bench_Host& host, const std::vector<std::vector<OT_Point>>& strips) {
  for (const auto& strip : strips)
    host.renderer().draw_dc_polytriangle(host.rendition(), int(strip.size()), strip.data());
}

template <class Point>
void set_depth(std::vector<std::vector<Point>>& strips, int z) {
  for (auto& strip : strips)
    for (auto& p : strip) p.z = decltype(p.z)(z);
}

// The integer form. In the depth modes every draw is nearer than the last.
void run_dci(benchmark::State& state, const Mode& mode, Strips strips) {
  Bench_Host host(mode);
  if (!host.ready(state)) return;
  const std::int64_t pixels = host.pixels_of([&] { draw_dci(host, strips); });
  if (pixels == 0) {
    state.SkipWithError("a draw changed no pixel");
    return;
  }
  host.clear();
  Nearer_Depth depth;
  for (auto _ : state) {
    if (mode.depth()) set_depth(strips, depth.next(host));
    draw_dci(host, strips);
  }
  set_rate(state, "triangles/s", triangle_count(strips));
  set_rate(state, "pixels/s", double(pixels));
  state.counters["pixels/draw"] = double(pixels);
}

// The float form, on the same points.
void run_dc(benchmark::State& state, const Mode& mode, const Strips& integer_strips) {
  Bench_Host host(mode);
  if (!host.ready(state)) return;
  std::vector<std::vector<OT_Point>> strips;
  for (const auto& strip : integer_strips) strips.push_back(to_float(strip));
  const std::int64_t pixels = host.pixels_of([&] { draw_dc(host, strips); });
  if (pixels == 0) {
    state.SkipWithError("a draw changed no pixel");
    return;
  }
  host.clear();
  Nearer_Depth depth;
  for (auto _ : state) {
    if (mode.depth()) set_depth(strips, depth.next(host));
    draw_dc(host, strips);
  }
  set_rate(state, "triangles/s", triangle_count(integer_strips));
  set_rate(state, "pixels/s", double(pixels));
  state.counters["pixels/draw"] = double(pixels);
}

void BM_Strip_DCI(benchmark::State& state, Mode mode) { run_dci(state, mode, medium_strip()); }
void BM_Strip_DC(benchmark::State& state, Mode mode) { run_dc(state, mode, medium_strip()); }
void BM_Small_DCI(benchmark::State& state, Mode mode) { run_dci(state, mode, small_strips()); }
void BM_Small_DC(benchmark::State& state, Mode mode) { run_dc(state, mode, small_strips()); }

// One call per 10-pixel triangle: the cost of an action's entry tests.
void BM_Single_Triangle_DCI(benchmark::State& state, Mode mode) {
  Strips triangles;
  for (const auto& strip : small_strips())
    for (std::size_t i = 0; i + 2 < strip.size(); ++i)
      triangles.push_back({strip[i], strip[i + 1], strip[i + 2]});
  run_dci(state, mode, triangles);
}

void BM_Large_DCI(benchmark::State& state, Mode mode) {
  run_dci(state, mode, window_strip());
  state.SetBytesProcessed(state.iterations() * std::int64_t(kWindow) * kWindow * (mode.mapped() ? 1 : 4));
}

void BM_Clear(benchmark::State& state, Mode mode) {
  Bench_Host host(mode);
  if (!host.ready(state)) return;
  for (auto _ : state) host.renderer().clear_color(host.rendition());
  set_rate(state, "pixels/s", double(host.width()) * host.height());
  state.SetBytesProcessed(state.iterations() * host.frame_bytes());
}

BENCHMARK_CAPTURE(BM_Strip_DCI, mapped, kMapped);
BENCHMARK_CAPTURE(BM_Strip_DCI, rgb32, kRgb32);
BENCHMARK_CAPTURE(BM_Strip_DCI, rgb32_alpha, kRgb32Alpha);
BENCHMARK_CAPTURE(BM_Strip_DCI, z_mapped, kZMapped);
BENCHMARK_CAPTURE(BM_Strip_DCI, z_rgb32, kZRgb32);

BENCHMARK_CAPTURE(BM_Strip_DC, mapped, kMapped);
BENCHMARK_CAPTURE(BM_Strip_DC, rgb32, kRgb32);

BENCHMARK_CAPTURE(BM_Large_DCI, mapped, kMapped);
BENCHMARK_CAPTURE(BM_Large_DCI, rgb32, kRgb32);
BENCHMARK_CAPTURE(BM_Large_DCI, rgb32_alpha, kRgb32Alpha);
BENCHMARK_CAPTURE(BM_Large_DCI, z_rgb32, kZRgb32);

BENCHMARK_CAPTURE(BM_Small_DCI, mapped, kMapped);
BENCHMARK_CAPTURE(BM_Small_DCI, rgb32, kRgb32);
BENCHMARK_CAPTURE(BM_Small_DCI, rgb32_alpha, kRgb32Alpha);
BENCHMARK_CAPTURE(BM_Single_Triangle_DCI, mapped, kMapped);
BENCHMARK_CAPTURE(BM_Single_Triangle_DCI, rgb32, kRgb32);
BENCHMARK_CAPTURE(BM_Single_Triangle_DCI, rgb32_alpha, kRgb32Alpha);
BENCHMARK_CAPTURE(BM_Single_Triangle_DCI, z_mapped, kZMapped);
BENCHMARK_CAPTURE(BM_Single_Triangle_DCI, z_rgb32, kZRgb32);
BENCHMARK_CAPTURE(BM_Single_Triangle_DCI, z_rgb32_alpha, kZRgb32Alpha);
BENCHMARK_CAPTURE(BM_Small_DC, mapped, kMapped);
BENCHMARK_CAPTURE(BM_Small_DC, rgb32, kRgb32);

BENCHMARK_CAPTURE(BM_Clear, mapped, kMapped);
BENCHMARK_CAPTURE(BM_Clear, rgb32, kRgb32);

}  // namespace
}  // namespace tarn::bench
