// The span fillers of the depth-buffered modes: the walk with a 17.15 depth
// beside x on each edge, and a depth test before every pixel. As without
// depth, one filler serves the inside walk and the walk across the clip.
//
// Precision: an edge's depth starts at ((z + depth_bias) << 15) + 0x4000 and
// steps by slope15; the integer depth is the accumulator shifted right 15,
// cut to 16 bits. Depths outside 0..65535 wrap, by design.
#pragma once

#include <type_traits>

#include "pixel/depth_test.h"
#include "pixel/mask.h"
#include "triangles/span_fillers.h"

namespace tarn {

struct Depth_Attributes {
  std::int32_t z;
  Depth_Attributes& operator+=(const Depth_Attributes& step) {
    z = static_cast<std::int32_t>(static_cast<std::uint32_t>(z) + static_cast<std::uint32_t>(step.z));
    return *this;
  }
  void add_scaled(const Depth_Attributes& step, std::int32_t n) {
    z = static_cast<std::int32_t>(static_cast<std::uint32_t>(z) +
                                  static_cast<std::uint32_t>(step.z) * static_cast<std::uint32_t>(n));
  }
};

inline std::uint16_t depth_of(std::int32_t accumulator) {
  return static_cast<std::uint16_t>(accumulator >> 15);
}

// Depth on the edges: the biased z of each vertex, in 17.15.
struct Depth_Edges {
  using Vertex = Plain_Vertex;
  using Edge_Attributes = Depth_Attributes;

  std::int32_t depth_bias;

  Depth_Attributes edge_start(const Vertex& v) const {
    const std::uint32_t z = static_cast<std::uint32_t>(v.point->z) + static_cast<std::uint32_t>(depth_bias);
    return {static_cast<std::int32_t>((z << 15) + 0x4000u)};
  }
  Depth_Attributes edge_step(const Vertex& from, const Vertex& to, std::int32_t h) const {
    return {slope15(wrap_sub(to.point->z, from.point->z), h)};
  }
};

// The depth choice of a primitive as a type: the test and whether depth is
// written.
template <class Test_, bool kWrite>
struct Depth_Rule {
  using Test = Test_;
  static constexpr bool kWriteDepth = kWrite;
};

// Where a depth span writes: its pixels and depth words from column xl.
template <class Pixel>
struct Depth_Span_At {
  Pixel* p;
  std::uint16_t* zp;
  std::int32_t row, xl;
};

// A solid run of depth-tested pixels: z steps by `step` after each pixel.
template <Pixel_Store Store, class Rule>
struct Depth_Solid_Pixels {
  static constexpr bool kSolid = true;
  using Pixel = typename Store::Pixel;
  Store store;

  void pixel(Pixel* p, std::uint16_t* zp, std::uint16_t d, std::int32_t row) const {
    depth_pixel<typename Rule::Test, Rule::kWriteDepth>(store, p, zp, d, row);
  }
  // A plain store of one word or index is copied: no pixel the run writes
  // can reach the copy, so its value stays in a register.
  void run(const Depth_Span_At<Pixel>& at, std::int32_t n, std::uint32_t z, std::int32_t step) const {
    if constexpr (Store::kMasked) {
      // The mask cursor steps beside the pixel: the test, then the bit.
      Mask_Cursor cursor = store.cursor_at(at.p, at.row);
      for (std::int32_t i = 0; i < n; ++i, z += static_cast<std::uint32_t>(step), tarn::step(cursor)) {
        const std::uint16_t d = static_cast<std::uint16_t>(z >> 15);
        if (!Rule::Test::passes(d, at.zp[i]) || mask_bit(cursor)) continue;
        if constexpr (Rule::kWriteDepth) at.zp[i] = d;
        store.inner.pixel(at.p + i, at.row);
      }
      return;
    }
    using Own = std::conditional_t<(sizeof(Store) <= 8), const Store, const Store&>;
    Own own = store;
    for (std::int32_t i = 0; i < n; ++i, z += static_cast<std::uint32_t>(step))
      depth_pixel<typename Rule::Test, Rule::kWriteDepth>(own, at.p + i, at.zp + i,
                                                          static_cast<std::uint16_t>(z >> 15), at.row);
  }
};

// A patterned run: the test comes first, then the bit; the column phase moves
// on whatever the test says. A hole without contrast changes nothing.
template <Pixel_Store Main, Pixel_Store Contrast, class Rule>
struct Depth_Pattern_Pixels {
  static constexpr bool kSolid = false;
  using Pixel = typename Main::Pixel;
  Main main;
  Contrast contrast;
  const Pattern_Source* source;

  void run(const Depth_Span_At<Pixel>& at, std::int32_t n, std::uint32_t z, std::int32_t step) const {
    Pattern_Row bits(*source, at.row, at.xl);
    for (std::int32_t i = 0; i < n; ++i, bits.next(), z += static_cast<std::uint32_t>(step)) {
      const std::uint16_t d = static_cast<std::uint16_t>(z >> 15);
      if (!bits.hole())
        depth_pixel<typename Rule::Test, Rule::kWriteDepth>(main, at.p + i, at.zp + i, d, at.row);
      else if constexpr (!kLeavesHoles<Contrast>)
        depth_pixel<typename Rule::Test, Rule::kWriteDepth>(contrast, at.p + i, at.zp + i, d, at.row);
    }
  }
};

template <class Pixels>
struct Depth_Filler : Depth_Edges {
  using Pixel = typename Pixels::Pixel;
  byte* const* rows;        // colour image
  byte* const* depth_rows;  // depth image
  Pixels pixels;

  Depth_Span_At<Pixel> at(std::int32_t row, std::int32_t xl) const {
    return {reinterpret_cast<Pixel*>(rows[row]) + xl, reinterpret_cast<std::uint16_t*>(depth_rows[row]) + xl,
            row, xl};
  }

  // Inside: the solid path takes one and two pixels apart; otherwise the
  // edges' fractions are dropped at the span's start, and the end value is not
  // reached on the last pixel.
  void span(std::int32_t row, std::int32_t xl, std::int32_t xr, const Depth_Attributes& left,
            const Depth_Attributes& right) const {
    const std::int32_t n = xr - xl;
    if (n < 1) return;
    if constexpr (Pixels::kSolid) {
      if (n <= 2) {
        const Depth_Span_At<Pixel> first = at(row, xl);
        // Of two pixels the right one takes the middle of the two ends, and
        // goes first.
        if (n == 2) pixels.pixel(first.p + 1, first.zp + 1, depth_of((right.z >> 1) + (left.z >> 1)), row);
        pixels.pixel(first.p, first.zp, depth_of(left.z), row);
        return;
      }
    }
    const std::int32_t a = depth_of(left.z);
    pixels.run(at(row, xl), n, static_cast<std::uint32_t>(a) * 32768u + 16384u,
               slope15(depth_of(right.z) - a, n));
  }

  // Across the clip: depth from the span's full ends, slope15 over the
  // unclamped width, started at the clamped left end.
  void clipped_span(std::int32_t row, std::int32_t xl, std::int32_t xr, std::int32_t full_xl,
                    std::int32_t full_xr, const Depth_Attributes& left, const Depth_Attributes& right) const {
    const std::int32_t a = depth_of(left.z);
    const std::int32_t step = slope15(depth_of(right.z) - a, full_xr - full_xl);
    const std::uint32_t z = (static_cast<std::uint32_t>(a) << 15) + 0x4000u +
                            static_cast<std::uint32_t>(xl - full_xl) * static_cast<std::uint32_t>(step);
    pixels.run(at(row, xl), xr - xl, z, step);
  }
};

// What the depth fillers of one strip share beside the colour setup.
struct Depth_Setup {
  std::int32_t bias;
  byte* const* depth_rows;
};

// The depth filler for one triangle's writers: walk(filler).
template <class Rule, class Main, class Contrast, class Walk>
inline void with_depth_filler(const Fill_Setup& setup, const Depth_Setup& depth, const Main& main,
                              const Contrast& contrast, Walk&& walk) {
  if (setup.fill == Face_Fill::solid) {
    Depth_Filler<Depth_Solid_Pixels<Main, Rule>> filler{{depth.bias}, setup.rows, depth.depth_rows, {main}};
    walk(filler);
  } else if (setup.contrast_on) {
    Depth_Filler<Depth_Pattern_Pixels<Main, Contrast, Rule>> filler{
        {depth.bias}, setup.rows, depth.depth_rows, {main, contrast, setup.source}};
    walk(filler);
  } else {
    Depth_Filler<Depth_Pattern_Pixels<Main, No_Store<typename Main::Pixel>, Rule>> filler{
        {depth.bias}, setup.rows, depth.depth_rows, {main, {}, setup.source}};
    walk(filler);
  }
}

// The rule of the RGB32 opaque depth mode: "ZBuffer Test" and "ZBuffer
// Write", read afresh for each primitive.
template <class Body>
inline void with_depth_options(std::int32_t zbuffer_test, bool write, Body&& body) {
  with_depth_test(zbuffer_test, [&]<class Test>() {
    if (write)
      body.template operator()<Depth_Rule<Test, true>>();
    else
      body.template operator()<Depth_Rule<Test, false>>();
  });
}

}  // namespace tarn
