// Alpha blending of RGB32 pixels. Two arithmetic forms that differ in the
// last bit: the weight form for points and lines, the exact form for filled
// triangles and images. Both leave the pixel's alpha byte at 255.
#pragma once

#include <cstdint>

#include "host/ot_base.h"

namespace tarn {

// Weight of an alpha byte: the identity, but 255 weighs 256.
inline constexpr std::int32_t blend_weight_of(byte alpha) { return alpha == 255 ? 256 : alpha; }

// new = old + ((color - old) * w >> 8), the shift arithmetic (toward -inf).
inline std::uint32_t blend_weight(std::uint32_t old, OT_RGB32 color) {
  const std::int32_t w = blend_weight_of(color.a);
  const OT_RGB32 o = OT_RGB32::from_word(old);
  auto mix = [w](std::int32_t before, std::int32_t target) {
    return static_cast<byte>(before + (((target - before) * w) >> 8));
  };
  return OT_RGB32{mix(o.b, color.b), mix(o.g, color.g), mix(o.r, color.r), 255}.word();
}

// new = (old * (255 - a) + color * a) / 255, truncating (never negative).
inline std::uint32_t blend_exact(std::uint32_t old, OT_RGB32 color) {
  const std::uint32_t a = color.a;
  const std::uint32_t ia = 255 - a;
  const OT_RGB32 o = OT_RGB32::from_word(old);
  auto mix = [a, ia](std::uint32_t before, std::uint32_t target) {
    return static_cast<byte>((before * ia + target * a) / 255);
  };
  return OT_RGB32{mix(o.b, color.b), mix(o.g, color.g), mix(o.r, color.r), 255}.word();
}

}  // namespace tarn
