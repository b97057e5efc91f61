// Thin polylines per mode (short and long segments, unclipped and through the
// clip path) and polygons through the strip shortcut and the triangulator.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "bench/bench_host.h"

namespace tarn::bench {
namespace {

// A zigzag polyline of `segments` segments, each `length` long, at every
// angle of a fan.
std::vector<OT_DCI_Point> fan_polyline(int segments, int length) {
  std::vector<OT_DCI_Point> points;
  const int cx = kWindow / 2, cy = kWindow / 2;
  for (int i = 0; i <= segments; ++i) {
    const double angle = 0.37 * i;
    const int r = (i % 2) ? length : 0;
    points.push_back(
        {cx + int(std::lround(r * std::cos(angle))), cy + int(std::lround(r * std::sin(angle))), 100});
  }
  return points;
}

void BM_Polyline(benchmark::State& state, const Mode& mode, int length, bool clipped) {
  Bench_Host host(mode);
  if (!host.ready(state)) return;
  const std::vector<OT_DCI_Point> points = fan_polyline(1000, length);
  auto draw = [&] {
    if (clipped)
      host.renderer().draw_2di_polyline(host.rendition(), int(points.size()), points.data());
    else
      host.renderer().draw_dci_polyline(host.rendition(), int(points.size()), points.data());
  };
  host.clear();
  for (auto _ : state) {
    draw();
    benchmark::ClobberMemory();
  }
  // Pixels visited: a segment of the major extent n writes n pixels.
  double visited = 0;
  for (std::size_t i = 0; i + 1 < points.size(); ++i)
    visited += std::max(std::abs(points[i + 1].x - points[i].x), std::abs(points[i + 1].y - points[i].y));
  set_rate(state, "segments/s", double(points.size() - 1));
  set_rate(state, "pixels/s", visited);
}
BENCHMARK_CAPTURE(BM_Polyline, mapped_short, kMapped, 8, false);
BENCHMARK_CAPTURE(BM_Polyline, mapped_long, kMapped, 400, false);
BENCHMARK_CAPTURE(BM_Polyline, rgb32_short, kRgb32, 8, false);
BENCHMARK_CAPTURE(BM_Polyline, rgb32_long, kRgb32, 400, false);
BENCHMARK_CAPTURE(BM_Polyline, rgb32_alpha_long, kRgb32Alpha, 400, false);
BENCHMARK_CAPTURE(BM_Polyline, z_mapped_long, kZMapped, 400, false);
BENCHMARK_CAPTURE(BM_Polyline, z_rgb32_long, kZRgb32, 400, false);
BENCHMARK_CAPTURE(BM_Polyline, z_rgb32_alpha_long, kZRgb32Alpha, 400, false);
BENCHMARK_CAPTURE(BM_Polyline, rgb32_long_2di, kRgb32, 400, true);

// A regular convex polygon of n points: one strip through the shortcut.
// A star of n points: concave, through the host's triangulator.
std::vector<OT_Point> polygon(int n, bool star) {
  std::vector<OT_Point> points;
  for (int i = 0; i < n; ++i) {
    const double angle = 6.283185307179586 * i / n;
    const double r = (star && i % 2) ? 150.0 : 400.0;
    points.push_back({float(512 + r * std::cos(angle)), float(512 + r * std::sin(angle)), 100.0f});
  }
  return points;
}

void BM_Polygon(benchmark::State& state, const Mode& mode, int n, bool star) {
  Bench_Host host(mode);
  if (!host.ready(state)) return;
  const std::vector<OT_Point> points = polygon(n, star);
  host.clear();
  for (auto _ : state) {
    host.renderer().draw_dc_polygon(host.rendition(), int(points.size()), points.data(), nullptr);
    benchmark::ClobberMemory();
  }
  set_rate(state, "polygons/s", 1.0);
}
BENCHMARK_CAPTURE(BM_Polygon, rgb32_convex_16, kRgb32, 16, false);
BENCHMARK_CAPTURE(BM_Polygon, rgb32_star_16, kRgb32, 16, true);
BENCHMARK_CAPTURE(BM_Polygon, mapped_convex_16, kMapped, 16, false);
BENCHMARK_CAPTURE(BM_Polygon, mapped_star_16, kMapped, 16, true);

}  // namespace
}  // namespace tarn::bench
