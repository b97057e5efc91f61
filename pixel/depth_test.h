// The depth test: a candidate 16-bit depth against the stored word. Smaller
// is nearer; the clear value 0xFFFF is the farthest.
#pragma once

#include <cstdint>

namespace tarn {

// The same tests as types, so that a span loop carries no branch on the value.
struct Depth_Below {
  static bool passes(std::uint16_t d, std::uint16_t stored) { return d < stored; }
};
struct Depth_Above {
  static bool passes(std::uint16_t d, std::uint16_t stored) { return d > stored; }
};
struct Depth_At_Or_Below {
  static bool passes(std::uint16_t d, std::uint16_t stored) { return d <= stored; }
};

// Calls body.template operator()<Test>() with the test type for a value.
template <class Body>
inline void with_depth_test(std::int32_t zbuffer_test, Body&& body) {
  if (zbuffer_test == 1)
    body.template operator()<Depth_Below>();
  else if (zbuffer_test == 5)
    body.template operator()<Depth_Above>();
  else
    body.template operator()<Depth_At_Or_Below>();
}

}  // namespace tarn
