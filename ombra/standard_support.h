// What the standard routines share: temporary arrays, rounding of point
// lists, and the calls that forward a primitive to another slot.
//
// The routines call each other only through the slots, and only downwards:
// 2D, DC and tiled forms call a 2DI or DCI slot; 2DI forms call DCI slots;
// DCI triangles call DCI polyline slots (a textured one with a texture,
// draw_dci_dot); DCI polylines, markers and images call draw_dci_dot; DCI
// dots do nothing. Polygons call polytriangle slots.
// Whatever a renderer puts in its slots, as long as its own actions only
// hand down to the standard routine of their own slot, no call comes back.
#pragma once

#include <cstdint>
#include <vector>

#include "host/ob_functions.h"
#include "ombra/clip_geometry.h"

namespace ombra {

// A temporary array: up to 64 entries in the call's frame, on the heap above.
template <class T, std::size_t N = 64>
class Scratch {
 public:
  explicit Scratch(std::size_t n) {
    if (n > N) heap_.resize(n);
    data_ = n > N ? heap_.data() : local_;
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  T* data() { return data_; }
  T& operator[](std::size_t i) { return data_[i]; }

 private:
  T local_[N];
  std::vector<T> heap_;
  T* data_;
};

inline OT_DCI_Point round_point(const OT_Point& p) {
  return {round_to_int(p.x), round_to_int(p.y), round_to_int(p.z)};
}
inline OT_DCI_Point round_point(const OT_Point_D& p) {
  return {round_to_int(p.x), round_to_int(p.y), round_to_int(p.z)};
}
inline OT_DCI_Point round_point(const OT_DCI_Point& p) { return p; }

template <class Point>
void round_points(const Point* in, int count, OT_DCI_Point* out) {
  for (int i = 0; i < count; ++i) out[i] = round_point(in[i]);
}

inline bool inside(const OT_Int_Rectangle& r, const OT_DCI_Point& p) {
  return p.x >= r.left && p.x <= r.right && p.y >= r.bottom && p.y <= r.top;
}

inline const OT_Int_Rectangle& hard_clip(const OT_Rendition& rendition) {
  return rendition->device->hard_clip;
}

// Rounds a point list and calls `slot` of the renderer with it in place of
// the points, the other arguments as they came.
template <auto Slot, class Point, class... Rest>
void forward_rounded(OT_Renderer_Data* renderer, const OT_Rendition& rendition, int count,
                     const Point* points, Rest... rest) {
  if (count < 1 || !points) return;
  Scratch<OT_DCI_Point> rounded{std::size_t(count)};
  round_points(points, count, rounded.data());
  (renderer->*Slot)(rendition, count, rounded.data(), rest...);
}

// a + (b - a) * k / n rounded to nearest, halves upward; n > 0.
inline std::int32_t step_between(std::int64_t a, std::int64_t b, std::int64_t k, std::int64_t n) {
  const std::int64_t num = 2 * (b - a) * k + n, den = 2 * n;
  std::int64_t q = num / den;
  if ((num % den != 0) && ((num < 0) != (den < 0))) --q;
  return std::int32_t(a + q);
}

}  // namespace ombra
