// Gouraud triangles against flat ones of the same geometry, per mode, and
// shaded lines.
//
//   Small:  strips of 10-pixel triangles (set-up rate).
//   Large:  two triangles that cover the 1024 x 1024 window (fill rate).
//   Lines:  fans of 64-pixel segments, colorized and Gouraud.
// Colours change from point to point by far more than the nearly flat limit,
// so that every triangle is interpolated.
#include <benchmark/benchmark.h>

#include <vector>

#include "bench/bench_host.h"

namespace tarn::bench {
namespace {

using Strip = std::vector<OT_DCI_Point>;
using Strips = std::vector<Strip>;

std::vector<OT_RGB32> point_colors(std::size_t n) {
  std::vector<OT_RGB32> colors;
  for (std::size_t i = 0; i < n; ++i)
    colors.push_back(OT_RGB32::rgba(int(97 * i % 256), int(31 + 151 * i % 200), int(211 * i % 256), 255));
  return colors;
}

Strips small_strips() { return zigzag_strips(1000, 2, 5); }
Strips window_strip() { return {{{0, 0, 0}, {kWindow, 0, 0}, {0, kWindow, 0}, {kWindow, kWindow, 0}}}; }

void run(benchmark::State& state, const Mode& mode, Strips strips, bool gouraud) {
  Bench_Host host(mode);
  if (!host.ready(state)) return;
  std::size_t longest = 0;
  int triangles = 0;
  for (const Strip& s : strips) {
    longest = std::max(longest, s.size());
    triangles += int(s.size()) - 2;
  }
  const std::vector<OT_RGB32> colors = point_colors(longest);
  auto draw = [&] {
    for (const Strip& s : strips) {
      if (gouraud)
        host.renderer().draw_dci_gouraud_polytriangle(host.rendition(), int(s.size()), s.data(),
                                                      colors.data());
      else
        host.renderer().draw_dci_polytriangle(host.rendition(), int(s.size()), s.data());
    }
  };
  const std::int64_t pixels = host.pixels_of(draw);
  if (pixels == 0) {
    state.SkipWithError("a draw changed no pixel");
    return;
  }
  host.clear();
  Nearer_Depth depth;
  for (auto _ : state) {
    if (mode.depth()) {
      const int z = depth.next(host);
      for (Strip& s : strips)
        for (OT_DCI_Point& p : s) p.z = z;
    }
    draw();
  }
  set_rate(state, "triangles/s", triangles);
  set_rate(state, "pixels/s", double(pixels));
}

void BM_Gouraud_Small(benchmark::State& state, Mode mode) { run(state, mode, small_strips(), true); }
void BM_Flat_Small(benchmark::State& state, Mode mode) { run(state, mode, small_strips(), false); }
void BM_Gouraud_Large(benchmark::State& state, Mode mode) { run(state, mode, window_strip(), true); }
void BM_Flat_Large(benchmark::State& state, Mode mode) { run(state, mode, window_strip(), false); }

// 64 segments of 64 pixels from one centre, one call each.
void BM_Shaded_Lines(benchmark::State& state, Mode mode, bool gouraud) {
  Bench_Host host(mode);
  if (!host.ready(state)) return;
  std::vector<Strip> segments;
  for (int k = 0; k < 64; ++k) {
    const int dx = k < 32 ? 64 : 64 - 4 * (k - 32), dy = k < 32 ? 2 * k : 64;
    segments.push_back({{300, 300, 100}, {300 + dx, 300 + dy, 100}});
  }
  const std::vector<OT_RGB32> colors = point_colors(2);
  Nearer_Depth depth;
  for (auto _ : state) {
    if (mode.depth()) {
      const int z = depth.next(host);
      for (Strip& s : segments) s[0].z = s[1].z = z;
    }
    for (const Strip& s : segments) {
      if (gouraud)
        host.renderer().draw_dci_gouraud_polyline(host.rendition(), 2, s.data(), colors.data());
      else
        host.renderer().draw_dci_colorized_polyline(host.rendition(), 2, s.data(), colors.data(), false);
    }
  }
  set_rate(state, "segments/s", double(segments.size()));
}

#define TARN_EVERY_MODE(bench)                        \
  BENCHMARK_CAPTURE(bench, mapped, kMapped);          \
  BENCHMARK_CAPTURE(bench, rgb32, kRgb32);            \
  BENCHMARK_CAPTURE(bench, rgb32_alpha, kRgb32Alpha); \
  BENCHMARK_CAPTURE(bench, z_mapped, kZMapped);       \
  BENCHMARK_CAPTURE(bench, z_rgb32, kZRgb32);         \
  BENCHMARK_CAPTURE(bench, z_rgb32_alpha, kZRgb32Alpha)

TARN_EVERY_MODE(BM_Gouraud_Small);
TARN_EVERY_MODE(BM_Flat_Small);
TARN_EVERY_MODE(BM_Gouraud_Large);
TARN_EVERY_MODE(BM_Flat_Large);
BENCHMARK_CAPTURE(BM_Shaded_Lines, colorized_mapped, kMapped, false);
BENCHMARK_CAPTURE(BM_Shaded_Lines, colorized_rgb32, kRgb32, false);
BENCHMARK_CAPTURE(BM_Shaded_Lines, colorized_z_rgb32, kZRgb32, false);
BENCHMARK_CAPTURE(BM_Shaded_Lines, gouraud_mapped, kMapped, true);
BENCHMARK_CAPTURE(BM_Shaded_Lines, gouraud_rgb32, kRgb32, true);
BENCHMARK_CAPTURE(BM_Shaded_Lines, gouraud_z_rgb32, kZRgb32, true);

}  // namespace
}  // namespace tarn::bench
