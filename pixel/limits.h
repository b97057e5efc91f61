// Limit rectangles handed to the clip routines.
#pragma once

#include "host/ot_base.h"

namespace tarn {

// Triangles crossing the clip are walked directly only when all three points
// lie within these limits: their span of 32760 keeps coordinate differences
// inside what the 16.16 steps can hold.
inline constexpr OT_Int_Rectangle kWalkLimits{-4000, 28760, -4000, 28760};

// Lines are cut to the same square before the walker sees them.
inline constexpr std::int32_t kLineLimitLow = -4000;
inline constexpr std::int32_t kLineLimitHigh = 28760;

// The tiled polytriangle actions' constant.
inline constexpr OT_Int_Rectangle kWideLimits{-0x40000000, 0x40000000, -0x40000000, 0x40000000};

// First clip of the tiled actions, around the window origin.
inline OT_Int_Rectangle tiled_limits(std::int32_t origin_x, std::int32_t origin_y) {
  return {origin_x - 0x40000000, origin_x + 0x40000000, origin_y - 0x40000000, origin_y + 0x40000000};
}

}  // namespace tarn
