// Antialiased thin lines against the aliased walker on the same segments:
// opaque and blending, short and long segments, whole (DCI) and through the
// 2DI clip path with segments that leave the window.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "bench/bench_host.h"

namespace tarn::bench {
namespace {

// A zigzag of `segments` segments from the centre, each `length` long, at
// every angle of a fan: all octants, steep and shallow alike.
std::vector<OT_DCI_Point> fan(int segments, int length) {
  std::vector<OT_DCI_Point> points;
  const int c = kWindow / 2;
  for (int i = 0; i <= segments; ++i) {
    const double angle = 0.37 * i;
    const int r = (i % 2) ? length : 0;
    points.push_back(
        {c + int(std::lround(r * std::cos(angle))), c + int(std::lround(r * std::sin(angle))), 100});
  }
  return points;
}

void BM_Antialiased(benchmark::State& state, const Mode& mode, int length, bool antialiased, bool translucent,
                    bool clipped) {
  Bench_Host host(mode);
  if (!host.ready(state)) return;
  OT_Rendition& rendition = host.writable_rendition();
  if (antialiased) rendition.writable_raster()->advanced_options = OT_Advanced_Antialiased_Lines;
  if (translucent) rendition.writable_colors()->color.a = 128;
  const std::vector<OT_DCI_Point> points = fan(1000, length);
  host.clear();
  for (auto _ : state) {
    if (clipped)
      host.renderer().draw_2di_polyline(rendition, int(points.size()), points.data());
    else
      host.renderer().draw_dci_polyline(rendition, int(points.size()), points.data());
    benchmark::ClobberMemory();
  }
  // A step of the major axis writes one pixel, or three antialiased.
  double steps = 0;
  for (std::size_t i = 0; i + 1 < points.size(); ++i)
    steps += std::max(std::abs(points[i + 1].x - points[i].x), std::abs(points[i + 1].y - points[i].y));
  set_rate(state, "segments/s", double(points.size() - 1));
  set_rate(state, "steps/s", steps);
  set_rate(state, "pixels/s", steps * (antialiased ? 3 : 1));
}

// Segments of 400 from the centre of a 1024 window stay inside; of 900 they
// cross its edges, and the 2DI form cuts them.
BENCHMARK_CAPTURE(BM_Antialiased, aliased_rgb32_short, kRgb32, 8, false, false, false);
BENCHMARK_CAPTURE(BM_Antialiased, antialiased_rgb32_short, kRgb32, 8, true, false, false);
BENCHMARK_CAPTURE(BM_Antialiased, aliased_rgb32_long, kRgb32, 400, false, false, false);
BENCHMARK_CAPTURE(BM_Antialiased, antialiased_rgb32_long, kRgb32, 400, true, false, false);
BENCHMARK_CAPTURE(BM_Antialiased, aliased_rgb32_alpha_blend_long, kRgb32Alpha, 400, false, true, false);
BENCHMARK_CAPTURE(BM_Antialiased, antialiased_rgb32_alpha_blend_long, kRgb32Alpha, 400, true, true, false);
BENCHMARK_CAPTURE(BM_Antialiased, aliased_rgb32_long_2di, kRgb32, 400, false, false, true);
BENCHMARK_CAPTURE(BM_Antialiased, antialiased_rgb32_long_2di, kRgb32, 400, true, false, true);
BENCHMARK_CAPTURE(BM_Antialiased, aliased_rgb32_crossing_2di, kRgb32, 900, false, false, true);
BENCHMARK_CAPTURE(BM_Antialiased, antialiased_rgb32_crossing_2di, kRgb32, 900, true, false, true);

}  // namespace
}  // namespace tarn::bench
