// Face patterns: the host's 8x8 stipples and the user pattern, anchored to
// the window plus the pattern origin. A clear bit draws the main colour; a
// set bit draws the contrast colour when contrast is on, else nothing.
#pragma once

#include <cstdint>

#include "host/ob_functions.h"

namespace tarn {

inline constexpr std::int32_t kEmptyPattern = 0;
inline constexpr std::int32_t kSolidPattern = 64;
inline constexpr std::int32_t kUserPattern = 74;
inline constexpr std::int32_t kLastRendererPattern = 74;

// Above 74 the host draws.
inline bool host_pattern(const OT_Rendition& rendition) {
  return rendition->face->pattern > kLastRendererPattern;
}

// stipple_flags: bit 0 paints the holes in the contrast colour, bit 1
// inverts the pattern.
struct Stipple_Flags {
  bool contrast;
  bool inverted;
};

inline Stipple_Flags stipple_flags(const OT_Rendition& rendition) {
  const std::uint32_t flags = rendition->raster->stipple_flags;
  return {(flags & 1) != 0, (flags & 2) != 0};
}

// What the solid and pattern paths make of the face pattern.
enum class Face_Fill { solid, nothing, pattern };

inline Face_Fill face_fill(std::int32_t pattern, Stipple_Flags flags) {
  if (pattern == kSolidPattern && !flags.inverted) return Face_Fill::solid;
  if (!flags.contrast &&
      ((pattern == kEmptyPattern && !flags.inverted) || (pattern == kSolidPattern && flags.inverted)))
    return Face_Fill::nothing;
  return Face_Fill::pattern;
}

// The source of the pattern path, taken once per list.
struct Pattern_Source {
  const byte* bits;
  std::int32_t width, height, row_stride;
  std::int32_t origin_x, origin_y;
  byte invert;  // 0xFF when inverted

  static Pattern_Source of(const OT_Rendition& rendition, Stipple_Flags flags) {
    const std::int32_t pattern = rendition->face->pattern;
    Pattern_Source s;
    // A user pattern that the rendition does not hold, or one without bits,
    // draws as the solid pattern rather than reading nothing.
    const OT_User_Pattern& user_pattern = rendition->face->user_pattern;
    if (pattern == kUserPattern && user_pattern && user_pattern->bits && user_pattern->width > 0 &&
        user_pattern->height > 0) {
      const OT_User_Pattern_Data& user = *rendition->face->user_pattern;
      s.bits = user.bits;
      s.width = user.width;
      s.height = user.height;
      s.row_stride = user.row_bytes;
    } else {
      // A negative pattern has no stipple either: it too draws solid.
      s.bits = OMBRA.stipples[pattern == kUserPattern || pattern < 0 ? kSolidPattern : pattern];
      s.width = s.height = 8;
      s.row_stride = 1;
    }
    s.origin_x = rendition->raster->pattern_origin_x;
    s.origin_y = rendition->raster->pattern_origin_y;
    s.invert = flags.inverted ? 0xFF : 0;
    return s;
  }
};

// Remainder brought into 0..n-1 (the division is signed).
inline std::int32_t wrap_into(std::int32_t value, std::int32_t n) {
  std::int32_t r = value % n;
  return r < 0 ? r + n : r;
}

// A row of the pattern from window-relative row and left end: bits come from
// the low end of each byte, and a width that is not a multiple of 8 wraps to
// bit 0 of the row's first byte.
class Pattern_Row {
 public:
  Pattern_Row(const Pattern_Source& s, std::int32_t row, std::int32_t xl)
      : source_(s),
        base_(s.bits + wrap_into(row - s.origin_y, s.height) * s.row_stride),
        column_(wrap_into(xl - s.origin_x, s.width)),
        byte_(load()) {}

  // The bit of the current pixel: true is a hole.
  bool hole() const { return (byte_ >> (column_ & 7)) & 1; }

  void next() {
    if (++column_ == source_.width) column_ = 0;
    if ((column_ & 7) == 0) byte_ = load();
  }

 private:
  byte load() const { return static_cast<byte>(base_[column_ >> 3] ^ source_.invert); }

  const Pattern_Source& source_;
  const byte* base_;
  std::int32_t column_;
  byte byte_;
};

}  // namespace tarn
