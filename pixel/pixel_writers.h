// Pixel writers, as small policies: each writes one pixel or a run of one
// row, and says at compile time what it is. Triangles, lines, dots and
// markers all write through these; the depth test and the complex clip are
// layers around them (pixel/depth_test.h, pixel/mask.h). `row` is the
// window-relative row number, which only the dither and the mask need. The
// choice between writers is made outside the pixel loops.
#pragma once

#include <algorithm>
#include <concepts>
#include <cstdint>
#include <cstring>

#include "host/ot_base.h"
#include "pixel/blend.h"
#include "pixel/dither.h"
#include "pixel/merge.h"

namespace tarn {

// kMasked: the writer sits behind the complex clip and can tell whether a
// pixel is hidden (`hidden(p, row)`, and `inner` writes it unmasked).
// kMerge, kBlend: it reads the pixel it writes.
template <class T>
concept Pixel_Store = requires(const T store, typename T::Pixel* p, std::int32_t n, std::int32_t row) {
  { T::kMasked } -> std::convertible_to<bool>;
  { T::kMerge } -> std::convertible_to<bool>;
  { T::kBlend } -> std::convertible_to<bool>;
  {store.pixel(p, row)};
  {store.span(p, n, row)};
};

// The traits of a writer that neither reads its pixel nor hides any.
struct Plain_Traits {
  static constexpr bool kMasked = false;
  static constexpr bool kMerge = false;
  static constexpr bool kBlend = false;
};
struct Merge_Traits : Plain_Traits {
  static constexpr bool kMerge = true;
};
struct Blend_Traits : Plain_Traits {
  static constexpr bool kBlend = true;
};

// Runs one pixel after another, for the writers that have no block form.
template <class Derived, class P, class Traits = Plain_Traits>
struct Pixelwise : Traits {
  using Pixel = P;
  void span(Pixel* p, std::int32_t n, std::int32_t row) const {
    for (std::int32_t i = 0; i < n; ++i) static_cast<const Derived*>(this)->pixel(p + i, row);
  }
};

// 8-bit palette index, plain store.
struct Index_Store : Plain_Traits {
  using Pixel = byte;
  byte value;
  constexpr explicit Index_Store(byte v) : value(v) {}
  void pixel(Pixel* p, std::int32_t) const { *p = value; }
  // Runs of small triangles and thin strips are a few bytes: two stores that
  // may overlap, rather than a call to memset, which takes the long runs.
  void span(Pixel* p, std::int32_t n, std::int32_t) const {
    if (n > 16) {
      std::memset(p, value, static_cast<std::size_t>(n));
      return;
    }
    const std::uint64_t bytes8 = value * std::uint64_t{0x0101010101010101};
    if (n >= 8) {
      std::memcpy(p, &bytes8, 8);
      std::memcpy(p + n - 8, &bytes8, 8);
      return;
    }
    if (n >= 4) {
      const auto bytes4 = static_cast<std::uint32_t>(bytes8);
      std::memcpy(p, &bytes4, 4);
      std::memcpy(p + n - 4, &bytes4, 4);
      return;
    }
    for (std::int32_t i = 0; i < n; ++i) p[i] = value;
  }
};

// 32-bit RGB32 word, plain store, its alpha byte as it came.
struct Word_Store : Plain_Traits {
  using Pixel = std::uint32_t;
  std::uint32_t value;
  constexpr explicit Word_Store(std::uint32_t v) : value(v) {}
  void pixel(Pixel* p, std::int32_t) const { *p = value; }
  // Long runs four words a store, the last four ending at the run's end (they
  // may overlap the ones before). Short runs go word by word: rows of RGB32
  // lie 4 KB apart, so the runs of a narrow triangle all fall in the same
  // cache sets, and storing them faster only makes the rows evict each other.
  void span(Pixel* p, std::int32_t n, std::int32_t) const {
    if (n >= 32) {
      const std::uint32_t words4[4] = {value, value, value, value};
      std::int32_t i = 0;
      for (; i + 4 <= n; i += 4) std::memcpy(p + i, words4, sizeof words4);
      if (i < n) std::memcpy(p + n - 4, words4, sizeof words4);
      return;
    }
    if (n >= 2 && n <= 4) {
      // The rows of a small triangle: two stores of two words whatever the
      // width, so no loop whose end depends on it.
      const std::uint64_t words2 = value * std::uint64_t{0x100000001};
      std::memcpy(p, &words2, 8);
      std::memcpy(p + n - 2, &words2, 8);
      return;
    }
    for (std::int32_t i = 0; i < n; ++i) p[i] = value;
  }
};

// The exact blend of a translucent colour; the pixel's alpha byte becomes 255,
// or with kKeepAlpha stays as it was. The colour's products are formed once;
// the span loop is plain integer arithmetic on words, which the compiler
// vectorizes.
template <bool kKeepAlpha>
struct Blend_Exact_Store_Of : Blend_Traits {
  using Pixel = std::uint32_t;
  OT_RGB32 color;
  std::uint32_t inverse, red, green, blue;  // 255 - a, and each channel times a

  explicit Blend_Exact_Store_Of(OT_RGB32 c)
      : color(c),
        inverse(255u - c.a),
        red(std::uint32_t(c.r) * c.a),
        green(std::uint32_t(c.g) * c.a),
        blue(std::uint32_t(c.b) * c.a) {}
  std::uint32_t blended(std::uint32_t old) const {
    const std::uint32_t b = ((old & 255u) * inverse + blue) / 255u;
    const std::uint32_t g = ((old >> 8 & 255u) * inverse + green) / 255u;
    const std::uint32_t r = ((old >> 16 & 255u) * inverse + red) / 255u;
    return b | g << 8 | r << 16 | (kKeepAlpha ? old & 0xFF000000u : 0xFF000000u);
  }
  void pixel(Pixel* p, std::int32_t) const { *p = blended(*p); }
  void span(Pixel* p, std::int32_t n, std::int32_t) const {
    for (std::int32_t i = 0; i < n; ++i) p[i] = blended(p[i]);
  }
};

using Blend_Exact_Store = Blend_Exact_Store_Of<false>;

// The weight blend, for pixels touched one at a time.
struct Blend_Weight_Store : Pixelwise<Blend_Weight_Store, std::uint32_t, Blend_Traits> {
  OT_RGB32 color;
  explicit Blend_Weight_Store(OT_RGB32 c) : color(c) {}
  void pixel(Pixel* p, std::int32_t) const { *p = blend_weight(*p, color); }
};

struct Merge_Word_Store : Pixelwise<Merge_Word_Store, std::uint32_t, Merge_Traits> {
  Merge_Rgb32 rule;
  std::uint32_t value;
  Merge_Word_Store(const Merge_Rgb32& r, std::uint32_t v) : rule(r), value(v) {}
  void pixel(Pixel* p, std::int32_t) const { rule.apply(p, value); }
};

struct Merge_Index_Store : Pixelwise<Merge_Index_Store, byte, Merge_Traits> {
  Merge_Mapped rule;
  byte value;
  Merge_Index_Store(const Merge_Mapped& r, byte v) : rule(r), value(v) {}
  void pixel(Pixel* p, std::int32_t) const { rule.apply(p, value); }
};

// Dithered index, comparison form.
struct Dither_Compare_Store : Pixelwise<Dither_Compare_Store, byte> {
  Dither_Thresholds thresholds;
  explicit Dither_Compare_Store(const Dither_Thresholds& t) : thresholds(t) {}
  void pixel(Pixel* p, std::int32_t row) const { *p = dither_pick(thresholds, dither_threshold(row, p)); }
};

// Dithered index, addition form.
struct Dither_Add_Store : Pixelwise<Dither_Add_Store, byte> {
  const OT_Color_Cube* cube;
  Dither_Levels levels;
  Dither_Add_Store(const OT_Color_Cube& c, const Dither_Levels& v) : cube(&c), levels(v) {}
  void pixel(Pixel* p, std::int32_t row) const { *p = dither_add(*cube, levels, dither_threshold(row, p)); }
};

// Dithered index through the merge rule, addition form (crossing spans).
struct Merge_Dither_Add_Store : Pixelwise<Merge_Dither_Add_Store, byte, Merge_Traits> {
  Merge_Mapped rule;
  const OT_Color_Cube* cube;
  Dither_Levels levels;
  Merge_Dither_Add_Store(const Merge_Mapped& r, const OT_Color_Cube& c, const Dither_Levels& v)
      : rule(r), cube(&c), levels(v) {}
  void pixel(Pixel* p, std::int32_t row) const {
    rule.apply(p, dither_add(*cube, levels, dither_threshold(row, p)));
  }
};

// The writer of a set pattern bit when contrast is off: nothing.
template <class P>
struct No_Store : Plain_Traits {
  using Pixel = P;
  void pixel(Pixel*, std::int32_t) const {}
  void span(Pixel*, std::int32_t, std::int32_t) const {}
};

}  // namespace tarn
