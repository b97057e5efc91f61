// Limit rectangles handed to the clip routines.
#pragma once

#include "host/ot_base.h"
#include "pixel/fixed_point.h"

namespace tarn {

// Triangles crossing the clip are walked directly only when all three points
// lie within these limits: their span of 32760 keeps coordinate differences
// inside what the 16.16 steps can hold.
inline constexpr OT_Int_Rectangle kWalkLimits{-4000, 28760, -4000, 28760};

// Lines are cut to the same square before the walker sees them.
inline constexpr std::int32_t kLineLimitLow = -4000;
inline constexpr std::int32_t kLineLimitHigh = 28760;

static_assert(kWalkLimits.right - kWalkLimits.left <= kMaxWalkSpan &&
                  kWalkLimits.top - kWalkLimits.bottom <= kMaxWalkSpan,
              "a triangle within the walk limits steps in 16.16 without overflow");
static_assert(kLineLimitHigh - kLineLimitLow <= kMaxWalkSpan,
              "a cut segment steps in 16.16 without overflow");

}  // namespace tarn
