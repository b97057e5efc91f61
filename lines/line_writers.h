// Pixel writers of the line walkers, by mode: column and row are
// window-relative, depth the interpolated candidate.
#pragma once

#include "frame/software_z_buffer.h"
#include "pixel/blend.h"
#include "pixel/depth_test.h"
#include "pixel/mask.h"
#include "pixel/merge.h"

namespace tarn {

template <class Pixel>
Pixel* pixel_address(byte* const* rows, std::int32_t column, std::int32_t row) {
  return reinterpret_cast<Pixel*>(rows[row]) + column;
}

struct Mapped_Writer {
  static constexpr bool kDepth = false;
  byte* const* rows;
  byte index;
  const Merge_Mapped* merge;  // null when merge is off
  void pixel(std::int32_t x, std::int32_t y, std::uint16_t) const {
    byte* p = pixel_address<byte>(rows, x, y);
    if (merge)
      merge->apply(p, index);
    else
      *p = index;
  }
};

struct Word_Writer {
  static constexpr bool kDepth = false;
  byte* const* rows;
  std::uint32_t word;
  void pixel(std::int32_t x, std::int32_t y, std::uint16_t) const {
    *pixel_address<std::uint32_t>(rows, x, y) = word;
  }
};

struct Merge_Writer {
  static constexpr bool kDepth = false;
  byte* const* rows;
  std::uint32_t word;
  Merge_Rgb32 rule;
  void pixel(std::int32_t x, std::int32_t y, std::uint16_t) const {
    rule.apply(pixel_address<std::uint32_t>(rows, x, y), word);
  }
};

struct Blend_Writer {
  static constexpr bool kDepth = false;
  byte* const* rows;
  OT_RGB32 color;
  void pixel(std::int32_t x, std::int32_t y, std::uint16_t) const {
    std::uint32_t* p = pixel_address<std::uint32_t>(rows, x, y);
    *p = blend_weight(*p, color);
  }
};

// ---- Writers with depth -------------------------------------------------------

// Mapped: at or below, depth always written, no options, no merge.
struct Mapped_Depth_Writer {
  static constexpr bool kDepth = true;
  byte* const* rows;
  byte* const* depth_rows;
  byte index;
  void pixel(std::int32_t x, std::int32_t y, std::uint16_t d) const {
    std::uint16_t* z = pixel_address<std::uint16_t>(depth_rows, x, y);
    if (d > *z) return;
    *z = d;
    *pixel_address<byte>(rows, x, y) = index;
  }
};

// RGB32: "ZBuffer Test" and "ZBuffer Write" as read at the start of the call.
template <class Test, bool kWriteDepth, bool kBlend>
struct Rgb32_Depth_Writer {
  static constexpr bool kDepth = true;
  byte* const* rows;
  byte* const* depth_rows;
  OT_RGB32 color;
  void pixel(std::int32_t x, std::int32_t y, std::uint16_t d) const {
    std::uint16_t* z = pixel_address<std::uint16_t>(depth_rows, x, y);
    if (!Test::passes(d, *z)) return;
    if constexpr (kWriteDepth) *z = d;
    std::uint32_t* p = pixel_address<std::uint32_t>(rows, x, y);
    *p = kBlend ? blend_weight(*p, color) : color.word();
  }
};

// A line writer behind the complex clip: pixels whose mask bit is set are
// skipped before anything else, depth included.
template <class Writer>
struct Masked_Writer {
  static constexpr bool kDepth = Writer::kDepth;
  Writer inner;
  const Frame_Buffer_Mask* mask;

  bool hidden(std::int32_t x, std::int32_t y) const { return masked_bit(*mask, x, y); }
  void pixel(std::int32_t x, std::int32_t y, std::uint16_t d) const {
    if (!hidden(x, y)) inner.pixel(x, y, d);
  }
};

struct No_Line_Masking {
  template <class Writer>
  const Writer& operator()(const Writer& writer) const {
    return writer;
  }
  bool hidden(std::int32_t, std::int32_t) const { return false; }
};

struct Line_Masking {
  const Frame_Buffer_Mask* mask;
  explicit Line_Masking(const Software_Z_Buffer& r) : mask(r.mask_cache->head) {}
  template <class Writer>
  Masked_Writer<Writer> operator()(const Writer& writer) const {
    return {writer, mask};
  }
  bool hidden(std::int32_t x, std::int32_t y) const { return masked_bit(*mask, x, y); }
};

// Runs body(No_Line_Masking) or, with a mask in force, body(Line_Masking).
template <class Body>
inline void with_line_masking(const Software_Z_Buffer& r, const OT_Rendition& rendition, Body&& body) {
  if (mask_in_force(r, rendition))
    body(Line_Masking(r));
  else
    body(No_Line_Masking{});
}

// Hands body a maker of the writer for a colour, in the RGB32 modes without
// depth: the merge rule when merge is on, else a plain store or, with
// kBlend, the weight blend; behind the mask when one is in force.
template <bool kBlend, class Body>
inline void with_rgb32_writers(const Software_Z_Buffer& r, const OT_Rendition& rendition, Body&& body) {
  byte* const* rows = r.color_image->device_rows;
  const bool merge = merge_on(r, rendition);
  with_line_masking(r, rendition, [&](const auto& wrap) {
    if (merge) {
      const Merge_Rgb32 rule(r);
      body([&](OT_RGB32 c) { return wrap(Merge_Writer{rows, c.word(), rule}); });
    } else if constexpr (kBlend) {
      body([&](OT_RGB32 c) { return wrap(Blend_Writer{rows, c}); });
    } else {
      body([&](OT_RGB32 c) { return wrap(Word_Writer{rows, c.word()}); });
    }
  });
}

}  // namespace tarn
