// Images of 256 x 256 pixels per form: the row copy, the blend, the two
// depth forms, and the masked twins with a mask over half the image.
// Rates count every pixel of the image, drawn or masked away.
#include <benchmark/benchmark.h>

#include <vector>

#include "bench/bench_host.h"

namespace tarn::bench {
namespace {

constexpr int kSide = 256;
constexpr OT_DCI_Point kFirst{100, 400, 0};
constexpr OT_DCI_Point kLast{kFirst.x + kSide - 1, kFirst.y - kSide + 1, 0};

// Translucent pixels with a sprinkling of empty and opaque ones, so that the
// blends take every path; index images hold a ramp.
std::vector<byte> image_block(const Mode& mode) {
  const int bytes = mode.mapped() ? 1 : 4;
  std::vector<byte> block(std::size_t(kSide) * kSide * bytes);
  for (int row = 0; row < kSide; ++row)
    for (int col = 0; col < kSide; ++col) {
      byte* p = &block[(std::size_t(row) * kSide + col) * bytes];
      if (bytes == 1) {
        *p = byte(row ^ col);
        continue;
      }
      const int k = (row * 7 + col) % 16;
      p[0] = byte(col);
      p[1] = byte(row);
      p[2] = byte(row + col);
      p[3] = k == 0 ? 0 : k == 1 ? 255 : byte(64 + 8 * k);
    }
  return block;
}

// "Use Mask" on, and a clip over the left half of the image.
void mask_left_half(Bench_Host& host) {
  OT_Renderer_Data& r = host.renderer();
  r.requested_options.find(L"Use Mask")->set(OT_Option_Value::of_bool(true));
  r.update_current_options();
  r.establish();
  const float left = float(kFirst.x), right = float(kFirst.x + kSide / 2);
  const float bottom = float(kLast.y), top = float(kFirst.y + 1);
  const OT_Point corners[4] = {{left, bottom, 0}, {right, bottom, 0}, {right, top, 0}, {left, top, 0}};
  host.writable_rendition().writable_device()->complex_clip = OT_Contour_Set(4, corners, true);
}

void BM_Image(benchmark::State& state, Mode mode, bool masked) {
  Bench_Host host(mode);
  if (!host.ready(state)) return;
  if (masked) mask_left_half(host);
  host.clear();
  const std::vector<byte> block = image_block(mode);
  const int row_bytes = kSide * (mode.mapped() ? 1 : 4);
  Nearer_Depth depth;
  for (auto _ : state) {
    OT_DCI_Point first = kFirst, last = kLast;
    if (mode.depth()) first.z = last.z = depth.next(host);
    if (mode.mapped())
      host.renderer().draw_dci_index8_image(host.rendition(), &first, &last, row_bytes, block.data());
    else
      host.renderer().draw_dci_rgb32_image(host.rendition(), &first, &last, row_bytes,
                                           reinterpret_cast<const OT_RGB32*>(block.data()), 0, nullptr);
  }
  set_rate(state, "pixels/s", double(kSide) * kSide);
}

BENCHMARK_CAPTURE(BM_Image, copy_mapped, kMapped, false);
BENCHMARK_CAPTURE(BM_Image, copy_rgb32, kRgb32, false);
BENCHMARK_CAPTURE(BM_Image, blend_rgb32_alpha, kRgb32Alpha, false);
BENCHMARK_CAPTURE(BM_Image, depth_copy_z_mapped, kZMapped, false);
BENCHMARK_CAPTURE(BM_Image, depth_copy_z_rgb32, kZRgb32, false);
BENCHMARK_CAPTURE(BM_Image, depth_blend_z_rgb32_alpha, kZRgb32Alpha, false);
BENCHMARK_CAPTURE(BM_Image, masked_copy_rgb32, kRgb32, true);
BENCHMARK_CAPTURE(BM_Image, masked_blend_rgb32_alpha, kRgb32Alpha, true);
BENCHMARK_CAPTURE(BM_Image, masked_depth_blend_z_rgb32_alpha, kZRgb32Alpha, true);

}  // namespace
}  // namespace tarn::bench
