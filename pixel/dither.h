// Mapped colour: an RGB colour becomes a palette index through the colour
// cube, an 8x8 ordered dither choosing between neighbouring levels. One rule
// in two arithmetic forms, which differ in a band of 129 values of d + F:
// the comparison form steps a channel up at d + F >= 0xFFFF, the addition
// form at d + F + 128 >= 0x10000.
#pragma once

#include <cstdint>
#include <utility>

#include "host/ob_functions.h"

namespace tarn {

// The threshold of a pixel: row of the table from the window-relative row,
// column from the low three bits of the pixel's address (not its x).
inline std::uint16_t dither_threshold(std::int32_t row, const void* address) {
  return SHARED.dither[(row & 7) * 8 + (reinterpret_cast<std::uintptr_t>(address) & 7)];
}

// Fixed-point cube level of a channel byte: level in bits 16 and up.
inline std::int32_t cube_level(byte channel, std::int32_t scale) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(channel * scale) << 8);
}

// Comparison form: sorted once per colour, so that a pixel costs a table load
// and up to three comparisons.
struct Dither_Thresholds {
  byte i0, i1, i2, i3;
  std::uint16_t t1, t2, t3;
};

inline Dither_Thresholds dither_thresholds(const OT_Color_Cube& cube, OT_RGB32 color) {
  const std::int32_t v[3] = {cube_level(color.r, cube.red_scale), cube_level(color.g, cube.green_scale),
                             cube_level(color.b, cube.blue_scale)};
  const std::uint32_t steps[3] = {cube.red_step, cube.green_step, cube.blue_step};
  const std::uint32_t level[3] = {std::uint32_t(v[0] >> 16) & 255, std::uint32_t(v[1] >> 16) & 255,
                                  std::uint32_t(v[2] >> 16) & 255};
  const std::uint16_t fraction[3] = {std::uint16_t(v[0]), std::uint16_t(v[1]), std::uint16_t(v[2])};

  // Channels by fraction, largest first; equal fractions keep r, g, b order.
  int order[3] = {0, 1, 2};
  if (fraction[order[1]] > fraction[order[0]]) std::swap(order[0], order[1]);
  if (fraction[order[2]] > fraction[order[1]]) std::swap(order[1], order[2]);
  if (fraction[order[1]] > fraction[order[0]]) std::swap(order[0], order[1]);

  Dither_Thresholds t;
  t.i0 = static_cast<byte>(cube.base + level[0] * cube.red_step + level[1] * cube.green_step + level[2]);
  t.i1 = static_cast<byte>(t.i0 + steps[order[0]]);
  t.i2 = static_cast<byte>(t.i1 + steps[order[1]]);
  t.i3 = static_cast<byte>(t.i2 + steps[order[2]]);
  t.t1 = static_cast<std::uint16_t>(0xFFFF - fraction[order[0]]);
  t.t2 = static_cast<std::uint16_t>(0xFFFF - fraction[order[1]]);
  t.t3 = static_cast<std::uint16_t>(0xFFFF - fraction[order[2]]);
  return t;
}

inline byte dither_pick(const Dither_Thresholds& t, std::uint16_t d) {
  if (d < t.t1) return t.i0;
  if (d < t.t2) return t.i1;
  if (d < t.t3) return t.i2;
  return t.i3;
}

// Addition form: three fixed-point levels V (v with 128 added for a constant
// colour, an accumulator for an interpolated one) and the threshold d. Blue
// always counts 1.
struct Dither_Levels {
  std::int32_t red, green, blue;
};

inline Dither_Levels dither_levels(const OT_Color_Cube& cube, OT_RGB32 color) {
  return {cube_level(color.r, cube.red_scale) + 128, cube_level(color.g, cube.green_scale) + 128,
          cube_level(color.b, cube.blue_scale) + 128};
}

inline byte dither_add(const OT_Color_Cube& cube, const Dither_Levels& v, std::uint16_t d) {
  const std::uint32_t r = static_cast<std::uint32_t>((v.red + d) >> 16);
  const std::uint32_t g = static_cast<std::uint32_t>((v.green + d) >> 16);
  const std::uint32_t b = static_cast<std::uint32_t>((v.blue + d) >> 16);
  return static_cast<byte>(r * cube.red_step + g * cube.green_step + b + cube.base);
}

}  // namespace tarn
