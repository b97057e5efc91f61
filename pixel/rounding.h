// Float, double and integer device coordinates: rounding to pixels, and the
// temporary point arrays of the float and tiled forms.
#pragma once

#include <bit>
#include <cstdint>
#include <memory>

#include "host/ot_base.h"

namespace tarn {

// The processor's conversion to 32-bit integer: toward zero, and the
// "integer indefinite" -2147483648 for anything out of range or not a number.
inline std::int32_t truncate_to_int32(float x) {
  if (!(x >= -2147483648.0f && x < 2147483648.0f)) return INT32_MIN;
  return static_cast<std::int32_t>(x);
}
inline std::int32_t truncate_to_int32(double x) {
  if (!(x >= -2147483648.0 && x < 2147483648.0)) return INT32_MIN;
  return static_cast<std::int32_t>(x);
}

// An exact half rounds upward on both sides of zero: 0.5 gives 1, -0.5 gives
// 0, -1.5 gives -1. The negative side subtracts just under a half, in the
// argument's own precision.
inline constexpr float kFloatBelowHalf = std::bit_cast<float>(0x3EFFFFDEu);
inline constexpr double kDoubleBelowHalf = std::bit_cast<double>(0x3FDFFFFFFFFD4050ull);

inline std::int32_t round_float(float x) {
  if (x >= 0.0f) return truncate_to_int32(x + 0.5f);
  return truncate_to_int32(x - kFloatBelowHalf);
}

inline std::int32_t round_double(double x) {
  if (x >= 0.0) return truncate_to_int32(x + 0.5);
  return truncate_to_int32(x - kDoubleBelowHalf);
}

inline void round_points(const OT_Point* points, int count, OT_DCI_Point* out) {
  for (int i = 0; i < count; ++i) {
    out[i].x = round_float(points[i].x);
    out[i].y = round_float(points[i].y);
    out[i].z = round_float(points[i].z);
  }
}

// For the forms without depth, which never read z: out's z stays as it is.
inline void round_points_xy(const OT_Point* points, int count, OT_DCI_Point* out) {
  for (int i = 0; i < count; ++i) {
    out[i].x = round_float(points[i].x);
    out[i].y = round_float(points[i].y);
  }
}

// The tiled forms' conversion: rounded first, then moved by (dx, dy) in
// 32-bit wrapping arithmetic; z is rounded and not moved.
inline void round_points_d(const OT_Point_D* points, int count, OT_DCI_Point* out, std::int32_t dx,
                           std::int32_t dy) {
  for (int i = 0; i < count; ++i) {
    out[i].x = static_cast<std::int32_t>(static_cast<std::uint32_t>(round_double(points[i].x)) -
                                         static_cast<std::uint32_t>(dx));
    out[i].y = static_cast<std::int32_t>(static_cast<std::uint32_t>(round_double(points[i].y)) -
                                         static_cast<std::uint32_t>(dy));
    out[i].z = round_double(points[i].z);
  }
}

// Rounded points of a wrapper: in the call's frame up to 64 points, on the
// heap above that; released on every path.
class Point_Buffer {
 public:
  static constexpr int kLocalPoints = 64;

  explicit Point_Buffer(int count) {
    if (count > kLocalPoints) {
      heap_.reset(new OT_DCI_Point[static_cast<std::size_t>(count)]);
      data_ = heap_.get();
    }
  }
  Point_Buffer(const Point_Buffer&) = delete;
  Point_Buffer& operator=(const Point_Buffer&) = delete;

  OT_DCI_Point* data() { return data_; }

 private:
  OT_DCI_Point local_[kLocalPoints];
  std::unique_ptr<OT_DCI_Point[]> heap_;
  OT_DCI_Point* data_ = local_;
};

}  // namespace tarn
