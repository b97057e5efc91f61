// Merge control: drawing combines with the page like ink on white paper. A
// pixel still showing the background takes the colour; one already drawn
// takes the AND of the two. A result equal to the background is replaced by
// the alternate, so drawn pixels stay distinguishable from the background.
#pragma once

#include <cstdint>

#include "frame/software_z_buffer.h"

namespace tarn {

// Merge is on when forced or when the write mode is 20.
inline bool merge_on(const Software_Z_Buffer& r, const OT_Rendition& rendition) {
  return r.force_merge != 0 || rendition->raster->write_mode == 20;
}

// The RGB32 rule with its comparison values in hand.
struct Merge_Rgb32 {
  std::uint32_t background;  // merge_color
  std::uint32_t alternate;   // merge_alternate_color

  explicit Merge_Rgb32(const Software_Z_Buffer& r)
      : background(r.merge_color.word()), alternate(r.merge_alternate_color.word()) {}

  void apply(std::uint32_t* pixel, std::uint32_t color) const {
    const std::uint32_t old = *pixel;
    std::uint32_t result;
    if (old == background)
      result = color;
    else if (old == color)
      return;
    else
      result = old & color;
    result |= 0xFF000000u;
    *pixel = result == background ? alternate : result;
  }
};

inline void merge_rgb32(const Software_Z_Buffer& r, std::uint32_t* pixel, std::uint32_t color) {
  Merge_Rgb32(r).apply(pixel, color);
}

// The mapped rule: the alternate serves only a background pixel; an AND that
// the palette maps onto the background index is stored as it is.
struct Merge_Mapped {
  byte background;  // merge_index
  byte alternate;   // merge_alternate_index
  const OT_Palette* palette;

  explicit Merge_Mapped(const Software_Z_Buffer& r)
      : background(r.merge_index),
        alternate(r.merge_alternate_index),
        palette(&r.current_renderer_options()->palette()) {}

  void apply(byte* pixel, byte index) const {
    const byte old = *pixel;
    if (old == background) {
      *pixel = index == background ? alternate : index;
      return;
    }
    if (old == index) return;
    OT_RGB32 c = OT_RGB32::from_word(palette->color(old).word() & palette->color(index).word());
    c.a = 255;
    *pixel = static_cast<byte>(palette->closest_match(c, false));
  }
};

inline void merge_mapped(const Software_Z_Buffer& r, byte* pixel, byte index) {
  Merge_Mapped(r).apply(pixel, index);
}

}  // namespace tarn
