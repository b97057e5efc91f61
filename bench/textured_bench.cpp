// Textured triangles per mode and filler: small triangles (set-up rate) and
// two that cover the window (texel rate), with a 64 x 64 texture repeated
// every 64 pixels.
#include <benchmark/benchmark.h>

#include <vector>

#include "bench/bench_host.h"

namespace tarn::bench {
namespace {

using Strip = std::vector<OT_DCI_Point>;
using Strips = std::vector<Strip>;

// A texture of opaque texels, with a band of translucent and empty ones
// so that the alpha fillers take every path.
OT_Material textured_material(bool modulate) {
  OT_Shared_Image image(64, 64, OT_Image_Format_RGB32, 0, nullptr, false);
  for (int row = 0; row < 64; ++row)
    for (int col = 0; col < 64; ++col) {
      const std::uint32_t alpha = row < 8 ? (col < 32 ? 0x80u : 0u) : 0xFFu;
      reinterpret_cast<std::uint32_t*>(image->top_rows[row])[col] =
          alpha << 24 | std::uint32_t(col * 4) << 16 | std::uint32_t(row * 4) << 8 | std::uint32_t(col ^ row);
    }
  OT_Texture texture(new OT_Texture_Data(image));
  texture->modulate = modulate;
  return OT_Material(new OT_Basic_Textured_Material(texture));
}

void run(benchmark::State& state, const Mode& mode, Strips strips, bool modulate) {
  Bench_Host host(mode);
  if (!host.ready(state)) return;
  host.writable_rendition().set_material(textured_material(modulate));
  std::size_t longest = 0;
  int triangles = 0;
  for (const Strip& s : strips) {
    longest = std::max(longest, s.size());
    triangles += int(s.size()) - 2;
  }
  std::vector<OT_RGB32> colors;
  for (std::size_t i = 0; i < longest; ++i)
    colors.push_back(OT_RGB32::rgba(255, int(128 + i % 128), 200, 255));
  std::vector<std::vector<OT_Parameter>> params;
  for (const Strip& s : strips) {
    params.emplace_back();
    for (const OT_DCI_Point& p : s) params.back().push_back({float(p.x) / 64.0f, float(p.y) / 64.0f, 0.0f});
  }
  auto draw = [&] {
    for (std::size_t k = 0; k < strips.size(); ++k)
      host.renderer().draw_dci_textured_polytriangle(host.rendition(), int(strips[k].size()),
                                                     strips[k].data(), colors.data(), params[k].data(), 1,
                                                     nullptr, nullptr);
  };
  const std::int64_t pixels = host.pixels_of(draw);
  if (pixels == 0) {
    state.SkipWithError("a draw changed no pixel");
    return;
  }
  host.clear();
  Nearer_Depth depth;
  for (auto _ : state) {
    const int z = depth.next(host);
    for (Strip& s : strips)
      for (OT_DCI_Point& p : s) p.z = z;
    draw();
  }
  set_rate(state, "triangles/s", triangles);
  set_rate(state, "texels/s", double(pixels));
}

Strips small_strips() { return zigzag_strips(1000, 2, 5); }
Strips window_strip() { return {{{0, 0, 0}, {kWindow, 0, 0}, {0, kWindow, 0}, {kWindow, kWindow, 0}}}; }

void BM_Textured_Small(benchmark::State& state, Mode mode, bool modulate) {
  run(state, mode, small_strips(), modulate);
}
void BM_Textured_Large(benchmark::State& state, Mode mode, bool modulate) {
  run(state, mode, window_strip(), modulate);
}

constexpr Mode kZMappedAlpha{"z_mapped_alpha", 16, OT_Color_System_Mapped, true};

#define TARN_TEXTURED_MODES(bench)                                \
  BENCHMARK_CAPTURE(bench, z_mapped, kZMapped, false);            \
  BENCHMARK_CAPTURE(bench, z_mapped_modulated, kZMapped, true);   \
  BENCHMARK_CAPTURE(bench, z_mapped_alpha, kZMappedAlpha, false); \
  BENCHMARK_CAPTURE(bench, z_rgb32, kZRgb32, false);              \
  BENCHMARK_CAPTURE(bench, z_rgb32_modulated, kZRgb32, true);     \
  BENCHMARK_CAPTURE(bench, z_rgb32_alpha, kZRgb32Alpha, false);   \
  BENCHMARK_CAPTURE(bench, z_rgb32_alpha_modulated, kZRgb32Alpha, true)

TARN_TEXTURED_MODES(BM_Textured_Small);
TARN_TEXTURED_MODES(BM_Textured_Large);

}  // namespace
}  // namespace tarn::bench
