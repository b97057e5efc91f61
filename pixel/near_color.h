// The test by which shaded primitives whose colours barely change are drawn
// in one colour instead.
#pragma once

#include <cstdlib>

#include "host/ot_base.h"

namespace tarn {

// Red, green and blue differ by at most 3 either way; alpha is not compared.
inline bool near_color(OT_RGB32 a, OT_RGB32 b) {
  return std::abs(a.r - b.r) <= 3 && std::abs(a.g - b.g) <= 3 && std::abs(a.b - b.b) <= 3;
}

}  // namespace tarn
