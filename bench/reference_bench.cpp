// Memory bandwidth references for the fill rates of the renderer: filling a
// frame of the same size as the large-triangle and clear benchmarks, with
// memset and with a 32-bit std::fill.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "bench/bench_host.h"

namespace tarn::bench {
namespace {

// Argument: bytes per pixel (1 for a mapped frame, 4 for an RGB32 frame).
void BM_Memset(benchmark::State& state) {
  const std::size_t bytes = std::size_t(kWindow) * kWindow * std::size_t(state.range(0));
  std::vector<unsigned char> frame(bytes);
  int value = 0;
  for (auto _ : state) {
    std::memset(frame.data(), ++value & 0xFF, bytes);
    benchmark::DoNotOptimize(frame.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * std::int64_t(bytes));
  set_rate(state, "pixels/s", double(kWindow) * kWindow);
}

void BM_Fill32(benchmark::State& state) {
  const std::size_t words = std::size_t(kWindow) * kWindow;
  std::vector<std::uint32_t> frame(words);
  std::uint32_t value = 0x12345678;
  for (auto _ : state) {
    std::fill(frame.begin(), frame.end(), ++value);
    benchmark::DoNotOptimize(frame.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * std::int64_t(words * 4));
  set_rate(state, "pixels/s", double(words));
}

BENCHMARK(BM_Memset)->ArgName("bytes_per_pixel")->Arg(1)->Arg(4);
BENCHMARK(BM_Fill32);

}  // namespace
}  // namespace tarn::bench
