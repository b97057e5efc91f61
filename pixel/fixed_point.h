// Fixed-point helpers shared by the triangle and line walks: the 16.16 and
// 17.15 steps and wrapping subtraction.
//
// Precision: every walked coordinate difference is below 32768 in magnitude
// (the drawing area, or the walk and line limits of the clip paths), so a
// difference shifted left by 16 fits in 32 bits, and a depth difference
// (16 bits plus a bias) shifted left by 15 wraps exactly as the walks expect.
#pragma once

#include <cstdint>

namespace tarn {

// The widest coordinate difference the walks are given.
inline constexpr std::int32_t kMaxWalkSpan = 32767;
static_assert((std::int64_t{kMaxWalkSpan} << 16) <= INT32_MAX,
              "16.16 steps of the widest span fit in 32 bits");

// d / h as a fixed-point step with kFraction fraction bits: d shifted left
// in 32 bits, divided with truncation toward zero. Heights 1, 2, 4 and 8
// shift instead of dividing.
template <int kFraction>
inline std::int32_t fixed_step(std::int32_t d, std::int32_t h) {
  const std::uint32_t u = static_cast<std::uint32_t>(d);
  switch (h) {
    case 1:
      return static_cast<std::int32_t>(u << kFraction);
    case 2:
      return static_cast<std::int32_t>(u << (kFraction - 1));
    case 4:
      return static_cast<std::int32_t>(u << (kFraction - 2));
    case 8:
      return static_cast<std::int32_t>(u << (kFraction - 3));
    default:
      return static_cast<std::int32_t>(u << kFraction) / h;
  }
}

// 16.16, for x and colours.
inline std::int32_t slope(std::int32_t d, std::int32_t h) { return fixed_step<16>(d, h); }

// 17.15, for depth.
inline std::int32_t slope15(std::int32_t d, std::int32_t h) { return fixed_step<15>(d, h); }

// a - b in 32 bits, wrapping.
inline std::int32_t wrap_sub(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

}  // namespace tarn
