// The outcode list of a clipping action, shared by the triangle and line clip
// paths.
#pragma once

#include <cstdint>
#include <memory>

namespace tarn {

// Outcodes of a 2DI action: in the call's frame while count + 2 (unsigned)
// is 66 or less, else on the heap; released on every path.
class Outcode_Buffer {
 public:
  static constexpr std::uint32_t kLocalCodes = 66;

  explicit Outcode_Buffer(int count) {
    if (static_cast<std::uint32_t>(count) + 2u > kLocalCodes) {
      heap_.reset(new short[static_cast<std::size_t>(count) + 2]);
      data_ = heap_.get();
    }
  }
  Outcode_Buffer(const Outcode_Buffer&) = delete;
  Outcode_Buffer& operator=(const Outcode_Buffer&) = delete;
  short* data() { return data_; }

 private:
  short local_[kLocalCodes];
  std::unique_ptr<short[]> heap_;
  short* data_ = local_;
};

}  // namespace tarn
