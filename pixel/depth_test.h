// The depth test: a candidate 16-bit depth against the stored word. Smaller
// is nearer; the clear value 0xFFFF is the farthest.
#pragma once

#include <cstdint>

namespace tarn {

// The same tests as types, so that a span loop carries no branch on the value.
// A candidate is a 16-bit depth, or the full signed z of a dot or of a
// polyline's last point, compared as a number with the stored word.
struct Depth_Below {
  template <class D>
  static bool passes(D d, std::uint16_t stored) {
    return d < stored;
  }
};
struct Depth_Above {
  template <class D>
  static bool passes(D d, std::uint16_t stored) {
    return d > stored;
  }
};
struct Depth_At_Or_Below {
  template <class D>
  static bool passes(D d, std::uint16_t stored) {
    return d <= stored;
  }
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

// One depth-tested pixel: the test, then (behind a mask) the mask bit, then
// depth and colour. A failing or hidden pixel changes nothing. The stored
// depth is the candidate's low 16 bits.
template <class Test, bool kWriteDepth, class Store, class D>
inline void depth_pixel(const Store& store, typename Store::Pixel* p, std::uint16_t* zp, D d,
                        std::int32_t row) {
  if (!Test::passes(d, *zp)) return;
  if constexpr (Store::kMasked) {
    if (store.hidden(p, row)) return;
    if constexpr (kWriteDepth) *zp = static_cast<std::uint16_t>(d);
    store.inner.pixel(p, row);
  } else {
    if constexpr (kWriteDepth) *zp = static_cast<std::uint16_t>(d);
    store.pixel(p, row);
  }
}

}  // namespace tarn
