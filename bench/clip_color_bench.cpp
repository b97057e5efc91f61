// Strips beyond the plain flat fill: depth with blending, colorized lists
// (dithered in the mapped modes), and strips that straddle the hard clip
// through the 2DI form.
#include <benchmark/benchmark.h>

#include <vector>

#include "bench/bench_host.h"

namespace tarn::bench {
namespace {

using Strip = std::vector<OT_DCI_Point>;

// 100 triangles of base 16 and height 64, one strip of 102 points.
Strip medium_strip(int x0 = 8, int y0 = 8) { return zigzag_strips(100, 8, 64, x0, y0).front(); }

void run_strip(benchmark::State& state, Bench_Host& host, Strip strip, auto&& draw) {
  if (!host.ready(state)) return;
  const std::int64_t pixels = host.pixels_of([&] { draw(strip); });
  if (pixels == 0) return state.SkipWithError("a draw changed no pixel");
  Nearer_Depth depth;
  for (auto _ : state) {
    if (host.mode().depth()) {
      const int z = depth.next(host);
      for (OT_DCI_Point& p : strip) p.z = z;
    }
    draw(strip);
    benchmark::ClobberMemory();
  }
  set_rate(state, "pixels/s", double(pixels));
  set_rate(state, "triangles/s", double(strip.size() - 2));
}

// A translucent flat strip: the blend in every pixel.
void BM_Translucent_Strip(benchmark::State& state, const Mode& mode) {
  Bench_Host host(mode);
  OT_Rendition rendition = host.rendition();
  rendition.writable_colors()->color = OT_RGB32::rgba(200, 120, 40, 160);
  run_strip(state, host, medium_strip(), [&](const Strip& s) {
    host.renderer().draw_dci_polytriangle(rendition, int(s.size()), s.data());
  });
}
BENCHMARK_CAPTURE(BM_Translucent_Strip, rgb32_alpha, kRgb32Alpha);
BENCHMARK_CAPTURE(BM_Translucent_Strip, z_rgb32_alpha, kZRgb32Alpha);

// A colorized strip, one colour a triangle: the mapped modes sort a dither
// per triangle and pick per pixel.
void BM_Colorized_Strip(benchmark::State& state, const Mode& mode) {
  Bench_Host host(mode);
  std::vector<OT_RGB32> colors;
  for (int i = 0; i < 100; ++i)
    colors.push_back(OT_RGB32::rgba(37 * i % 256, 91 * i % 256, 53 * i % 256, 255));
  run_strip(state, host, medium_strip(), [&](const Strip& s) {
    host.renderer().draw_dci_colorized_polytriangle(host.rendition(), int(s.size()), s.data(), colors.data(),
                                                    false);
  });
}
BENCHMARK_CAPTURE(BM_Colorized_Strip, mapped, kMapped);
BENCHMARK_CAPTURE(BM_Colorized_Strip, z_mapped, kZMapped);
BENCHMARK_CAPTURE(BM_Colorized_Strip, rgb32, kRgb32);

// The same strip through the 2DI form, wholly inside (one OB_Clip and the
// filler) and straddling the hard clip (crossing triangles walked clipped).
void BM_Clip_Strip(benchmark::State& state, const Mode& mode, bool straddle) {
  Bench_Host host(mode);
  OT_Rendition rendition = host.rendition();
  if (straddle) rendition.writable_device()->hard_clip = {0, 1023, 40, 1023};  // cuts every triangle
  run_strip(state, host, medium_strip(), [&](const Strip& s) {
    host.renderer().draw_2di_polytriangle(rendition, int(s.size()), s.data());
  });
}
BENCHMARK_CAPTURE(BM_Clip_Strip, mapped_inside, kMapped, false);
BENCHMARK_CAPTURE(BM_Clip_Strip, mapped_straddle, kMapped, true);
BENCHMARK_CAPTURE(BM_Clip_Strip, rgb32_inside, kRgb32, false);
BENCHMARK_CAPTURE(BM_Clip_Strip, rgb32_straddle, kRgb32, true);
BENCHMARK_CAPTURE(BM_Clip_Strip, z_rgb32_straddle, kZRgb32, true);

// A triangle with points a million pixels out: the exact clipper first.
void BM_Far_Triangle(benchmark::State& state, const Mode& mode) {
  Bench_Host host(mode, 256, 256);
  Strip strip{{-1000000, -1000000, 0}, {1000000, -500000, 0}, {0, 1000000, 0}};
  run_strip(state, host, strip, [&](const Strip& s) {
    host.renderer().draw_2di_polytriangle(host.rendition(), int(s.size()), s.data());
  });
}
BENCHMARK_CAPTURE(BM_Far_Triangle, rgb32, kRgb32);

}  // namespace
}  // namespace tarn::bench
