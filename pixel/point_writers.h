// Writing at a column and a row, for the primitives that know their pixels by
// position rather than by a running pointer: lines, dots and markers. A plot
// turns (column, row, candidate depth) into the pixel's address, and its
// depth word, and calls a pixel store, through the depth layer in the depth
// modes. The stores of a call are chosen once, by colour, before any pixel.
#pragma once

#include <cstdint>
#include <type_traits>

#include "frame/software_z_buffer.h"
#include "pixel/depth_test.h"
#include "pixel/line_attributes.h"
#include "pixel/merge.h"
#include "pixel/modes.h"
#include "pixel/pixel_writers.h"

namespace tarn {

// A plot without depth; the candidate, if any, is ignored.
template <Pixel_Store Store>
struct Color_Plot {
  static constexpr bool kDepth = false;
  using Attributes = No_Line_Attributes;
  Store store;
  byte* const* rows;
  static Attributes attributes(const OT_DCI_Point&, const OT_DCI_Point&, std::int32_t) { return {}; }
  template <class D>
  void operator()(std::int32_t column, std::int32_t row, D) const {
    store.pixel(reinterpret_cast<typename Store::Pixel*>(rows[row]) + column, row);
  }
};

// A depth-tested plot. The candidate is a 16-bit depth, or the full signed z
// of a dot or of a polyline's last point.
template <class Test, bool kWriteDepth, Pixel_Store Store>
struct Depth_Plot {
  static constexpr bool kDepth = true;
  using Attributes = Line_Depth;
  Store store;
  byte* const* rows;
  byte* const* depth_rows;
  static Attributes attributes(const OT_DCI_Point& a, const OT_DCI_Point& b, std::int32_t n) {
    return Line_Depth(a.z, b.z, n);
  }
  template <class D>
  void operator()(std::int32_t column, std::int32_t row, D d) const {
    depth_pixel<Test, kWriteDepth>(store, reinterpret_cast<typename Store::Pixel*>(rows[row]) + column,
                                   reinterpret_cast<std::uint16_t*>(depth_rows[row]) + column, d, row);
  }
};

template <Pixel_Store Store>
Color_Plot<Store> color_plot(const Software_Z_Buffer& r, const Store& store) {
  return {store, r.color_image->device_rows};
}

template <class Test, bool kWriteDepth, Pixel_Store Store>
Depth_Plot<Test, kWriteDepth, Store> depth_plot(const Software_Z_Buffer& r, const Store& store) {
  return {store, r.color_image->device_rows, r.depth_image->device_rows};
}

// Store makers: the store for a colour (an index in the mapped modes).
struct Index_Stores {
  Index_Store operator()(byte index) const { return Index_Store(index); }
};
struct Merge_Index_Stores {
  Merge_Mapped rule;
  Merge_Index_Store operator()(byte index) const { return {rule, index}; }
};
struct Word_Stores {
  Word_Store operator()(OT_RGB32 c) const { return Word_Store(c.word()); }
};
struct Blend_Weight_Stores {
  Blend_Weight_Store operator()(OT_RGB32 c) const { return Blend_Weight_Store(c); }
};
struct Merge_Word_Stores {
  Merge_Rgb32 rule;
  Merge_Word_Store operator()(OT_RGB32 c) const { return {rule, c.word()}; }
};

// Runs body(stores) with the maker of the mode's colour stores without depth:
// the merge rule when merge is on (it ignores alpha), else the plain store or,
// in the alpha modes, the weight blend.
template <class Mode, class Body>
inline void with_color_stores(const Software_Z_Buffer& r, const OT_Rendition& rendition, Body&& body) {
  const bool merge = merge_on(r, rendition);
  if constexpr (Mode::kIndex) {
    if (merge)
      body(Merge_Index_Stores{Merge_Mapped(r)});
    else
      body(Index_Stores{});
  } else {
    if (merge)
      body(Merge_Word_Stores{Merge_Rgb32(r)});
    else if constexpr (Mode::kAlpha)
      body(Blend_Weight_Stores{});
    else
      body(Word_Stores{});
  }
}

// The stores of the depth modes, which know no merge.
template <class Mode>
using Depth_Color_Stores =
    std::conditional_t<Mode::kIndex, Index_Stores,
                       std::conditional_t<Mode::kAlpha, Blend_Weight_Stores, Word_Stores>>;

// Runs body.template operator()<Test, kWriteDepth>() by "ZBuffer Test" and
// "ZBuffer Write" as they stand.
template <class Body>
inline void with_depth_options(const Software_Z_Buffer& r, Body&& body) {
  with_depth_test(r.depth_test, [&]<class Test>() {
    if (r.depth_write)
      body.template operator()<Test, true>();
    else
      body.template operator()<Test, false>();
  });
}

}  // namespace tarn
