// What a line walk carries beside its position, and steps once at every
// pixel it visits: nothing, or depth. (Shaded lines add colour.)
#pragma once

#include <cstdint>

#include "host/ot_base.h"
#include "pixel/fixed_point.h"

namespace tarn {

// Nothing beside the position.
struct No_Line_Attributes {
  void skip(std::int32_t) {}
  int next() { return 0; }
};

// Depth along a segment: 17.15 from the start point's z, n steps of the
// major axis to the end.
struct Line_Depth {
  std::uint32_t pos = 0;
  std::uint32_t step = 0;

  Line_Depth() = default;
  Line_Depth(std::int32_t z0, std::int32_t z1, std::int32_t n)
      : pos((static_cast<std::uint32_t>(z0) << 15) | 0x4000u),
        step(static_cast<std::uint32_t>(slope15(wrap_sub(z1, z0), n))) {}

  void skip(std::int32_t k) { pos += step * static_cast<std::uint32_t>(k); }
  std::uint16_t next() {
    const std::uint16_t candidate = static_cast<std::uint16_t>(static_cast<std::int32_t>(pos) >> 15);
    pos += step;
    return candidate;
  }
};

// The depth a segment's walk has reached at its end point: its accumulator
// one step past the last pixel, taken whole. A segment of no length walks
// nothing and stays at its start.
inline std::int32_t accumulated_z(const Line_Depth& end, const OT_DCI_Point& a, const OT_DCI_Point& b) {
  if (a.x == b.x && a.y == b.y) return a.z;
  return static_cast<std::int32_t>(end.pos) >> 15;
}

}  // namespace tarn
