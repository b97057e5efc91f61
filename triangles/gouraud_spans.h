// The Gouraud span fillers: one colour a point, each channel walked beside x
// as a 16.16 accumulator (and depth beside it in the depth modes), and
// stepped again across each span. One filler serves every mode; what a mode
// makes of a pixel's channels is its shade (RGB32 word, blend, or dithered
// index), and the depth test, pattern and mask are layers chosen per call.
//
// Precision: a channel's edge accumulator starts at (value << 16) + 0x8000,
// value being the byte in the RGB32 modes and byte * cube scale (a level with
// 8 fraction bits) in the mapped ones. Nothing is clamped: every accumulator
// lies between the values of its triangle's points, the truncating steps
// never carrying it past the nearer end.
#pragma once

#include <cstdint>
#include <cstdlib>

#include "pixel/depth_test.h"
#include "pixel/near_color.h"
#include "triangles/depth_fill.h"

namespace tarn {

// A point with its colour.
struct Shaded_Vertex {
  const OT_DCI_Point* point;
  OT_RGB32 color;

  static Shaded_Vertex of(const OT_DCI_Point* p, const OT_RGB32* c, int i) { return {p + i, c[i]}; }
};

// ---- Shades: a mode's channels and what a pixel makes of them ----------------------
// `value(color, k)` is channel k's walked value; `store(v, p, row, put)` hands
// put the writer of the pixel whose channels are v.

// RGB32 opaque: the word with alpha byte 255.
struct Opaque_Shade {
  static constexpr int kChannels = 3;
  static constexpr bool kLevels = false;
  static std::int32_t value(OT_RGB32 c, int k) { return k == 0 ? c.r : k == 1 ? c.g : c.b; }
  template <class Put>
  void store(const std::int32_t* v, std::uint32_t*, std::int32_t, Put&& put) const {
    put(Word_Store{0xFF000000u | static_cast<std::uint32_t>(static_cast<byte>(v[0])) << 16 |
                   static_cast<std::uint32_t>(static_cast<byte>(v[1])) << 8 | static_cast<byte>(v[2])});
  }
};

// RGB32 alpha: alpha 255 stores, alpha 0 leaves the colour (its depth is
// written all the same), anything between blends.
struct Alpha_Shade {
  static constexpr int kChannels = 4;
  static constexpr bool kLevels = false;
  static std::int32_t value(OT_RGB32 c, int k) { return k == 0 ? c.r : k == 1 ? c.g : k == 2 ? c.b : c.a; }
  template <class Put>
  void store(const std::int32_t* v, std::uint32_t*, std::int32_t, Put&& put) const {
    const OT_RGB32 c{static_cast<byte>(v[2]), static_cast<byte>(v[1]), static_cast<byte>(v[0]),
                     static_cast<byte>(v[3])};
    if (v[3] == 255) {
      put(Word_Store{c.word()});
    } else if (v[3] > 0) {
      put(Blend_Exact_Store(c));
    } else {
      put(No_Store<std::uint32_t>{});
    }
  }
};

// Mapped: channels are cube levels, and a pixel's index comes from the
// addition form of the dither.
struct Mapped_Shade {
  static constexpr int kChannels = 3;
  static constexpr bool kLevels = true;
  const OT_Color_Cube* cube;
  std::int32_t scale[3];

  explicit Mapped_Shade(const OT_Color_Cube& c) : cube(&c), scale{c.red_scale, c.green_scale, c.blue_scale} {}
  std::int32_t value(OT_RGB32 c, int k) const { return (k == 0 ? c.r : k == 1 ? c.g : c.b) * scale[k]; }
  template <class Put>
  void store(const std::int32_t* v, byte* p, std::int32_t row, Put&& put) const {
    put(Index_Store{dither_add(*cube, {v[0], v[1], v[2]}, dither_threshold(row, p))});
  }
};

// ---- The filler ----------------------------------------------------------------------

// Shade: one of the above. Wrap: the complex clip's writer maker. Hole: the
// writer of a set pattern bit, already wrapped (No_Store leaves it).
// kPattern: the pattern path. kDepth: depth tested at or below and always
// written, before the mask is looked at.
template <class Shade, class Wrap, class Hole, bool kPattern, bool kDepth>
struct Gouraud_Filler {
  static constexpr int kChannels = Shade::kChannels;
  static constexpr int kZ = kChannels;  // index of depth among the accumulators
  using Vertex = Shaded_Vertex;
  using Edge_Attributes = Accumulators<kChannels + (kDepth ? 1 : 0)>;
  using Pixel = std::conditional_t<Shade::kLevels, byte, std::uint32_t>;

  Shade shade;
  Wrap wrap;
  Hole hole;
  byte* const* rows;
  byte* const* depth_rows;
  std::int32_t depth_bias;
  const Pattern_Source* source;

  Edge_Attributes edge_start(const Vertex& v) const {
    Edge_Attributes a;
    for (int k = 0; k < kChannels; ++k)
      a.v[k] =
          static_cast<std::int32_t>((static_cast<std::uint32_t>(shade.value(v.color, k)) << 16) + 0x8000u);
    if constexpr (kDepth) a.v[kZ] = Depth_Edges{depth_bias}.edge_start({v.point}).z;
    return a;
  }
  Edge_Attributes edge_step(const Vertex& from, const Vertex& to, std::int32_t h) const {
    Edge_Attributes a;
    for (int k = 0; k < kChannels; ++k)
      a.v[k] = slope(shade.value(to.color, k) - shade.value(from.color, k), h);
    if constexpr (kDepth) a.v[kZ] = slope15(wrap_sub(to.point->z, from.point->z), h);
    return a;
  }

  // One pixel of channels v and depth d; `hole` true for a set pattern bit.
  void put(Pixel* p, std::uint16_t* zp, std::uint16_t d, std::int32_t row, const std::int32_t* v) const {
    shade.store(v, p, row, [&](const auto& store) {
      if constexpr (kDepth)
        depth_pixel<Depth_At_Or_Below, true>(wrap(store), p, zp, d, row);
      else
        wrap(store).pixel(p, row);
    });
  }
  void put_hole(Pixel* p, std::uint16_t* zp, std::uint16_t d, std::int32_t row) const {
    if constexpr (!kLeavesHoles<Hole>) {
      if constexpr (kDepth)
        depth_pixel<Depth_At_Or_Below, true>(hole, p, zp, d, row);
      else
        hole.pixel(p, row);
    }
  }

  // n pixels from the accumulators q, read as q >> kShift, stepping by dq;
  // depth from z by dz (17.15).
  template <int kShift>
  void run(std::int32_t row, std::int32_t xl, std::int32_t n, Accumulators<kChannels> q,
           const Accumulators<kChannels>& dq, std::uint32_t z, std::int32_t dz) const {
    Pixel* p = pixel_at(row, xl);
    std::uint16_t* zp = depth_at(row, xl);
    auto one = [&](std::int32_t i) {
      std::int32_t v[kChannels];
      for (int k = 0; k < kChannels; ++k) v[k] = q.v[k] >> kShift;
      put(p + i, depth_plus(zp, i), static_cast<std::uint16_t>(z >> 15), row, v);
    };
    if constexpr (kPattern) {
      Pattern_Row bits(*source, row, xl);
      for (std::int32_t i = 0; i < n; ++i, bits.next()) {
        if (!bits.hole())
          one(i);
        else
          put_hole(p + i, depth_plus(zp, i), static_cast<std::uint16_t>(z >> 15), row);
        q += dq;
        z += static_cast<std::uint32_t>(dz);
      }
    } else {
      for (std::int32_t i = 0; i < n; ++i) {
        one(i);
        q += dq;
        z += static_cast<std::uint32_t>(dz);
      }
    }
  }

  // Inside: widths 1 and 2 apart on the solid path; otherwise each channel
  // restarts from its ends' integer parts.
  void span(std::int32_t row, std::int32_t xl, std::int32_t xr, const Edge_Attributes& left,
            const Edge_Attributes& right) const {
    const std::int32_t n = xr - xl;
    if (n < 1) return;
    if constexpr (!kPattern) {
      if (n <= 2) {
        Pixel* p = pixel_at(row, xl);
        std::uint16_t* zp = depth_at(row, xl);
        std::int32_t v[kChannels];
        // Of two pixels the right one takes the mean of the two ends, and
        // goes first.
        if (n == 2) {
          for (int k = 0; k < kChannels; ++k) v[k] = mean(left.v[k], right.v[k]);
          put(p + 1, depth_plus(zp, 1), depth_mean(left, right), row, v);
        }
        for (int k = 0; k < kChannels; ++k) v[k] = first(left.v[k]);
        put(p, zp, depth_first(left), row, v);
        return;
      }
    }
    Accumulators<kChannels> q, dq;
    for (int k = 0; k < kChannels; ++k) {
      const std::int32_t li = left.v[k] >> 16, ri = right.v[k] >> 16;
      q.v[k] = static_cast<std::int32_t>((static_cast<std::uint32_t>(li) << 16) + 0x8000u);
      dq.v[k] = slope(ri - li, n);
      if constexpr (Shade::kLevels) {
        // Levels walk in the dither's form: the step's low bits are lost.
        q.v[k] >>= 8;
        dq.v[k] >>= 8;
      }
    }
    std::uint32_t z = 0;
    std::int32_t dz = 0;
    if constexpr (kDepth) {
      const std::int32_t a = depth_of(left.v[kZ]);
      z = static_cast<std::uint32_t>(a) * 32768u + 16384u;
      dz = slope15(depth_of(right.v[kZ]) - a, n);
    }
    run<Shade::kLevels ? 0 : 16>(row, xl, n, q, dq, z, dz);
  }

  // Across the clip: every channel and depth from the span's full ends, over
  // the unclamped width, moved on to the clamped left end; levels step at full
  // precision and are read shifted.
  void clipped_span(std::int32_t row, std::int32_t xl, std::int32_t xr, std::int32_t full_xl,
                    std::int32_t full_xr, const Edge_Attributes& left, const Edge_Attributes& right) const {
    const std::int32_t width = full_xr - full_xl;
    const std::uint32_t skip = static_cast<std::uint32_t>(xl - full_xl);
    Accumulators<kChannels> q, dq;
    for (int k = 0; k < kChannels; ++k) {
      const std::int32_t li = left.v[k] >> 16, ri = right.v[k] >> 16;
      dq.v[k] = slope(ri - li, width);
      q.v[k] = static_cast<std::int32_t>((static_cast<std::uint32_t>(li) << 16) + 0x8000u +
                                         skip * static_cast<std::uint32_t>(dq.v[k]));
    }
    std::uint32_t z = 0;
    std::int32_t dz = 0;
    if constexpr (kDepth) {
      const std::int32_t a = depth_of(left.v[kZ]);
      dz = slope15(depth_of(right.v[kZ]) - a, width);
      z = (static_cast<std::uint32_t>(a) << 15) + 0x4000u + skip * static_cast<std::uint32_t>(dz);
    }
    run<Shade::kLevels ? 8 : 16>(row, xl, xr - xl, q, dq, z, dz);
  }

 private:
  Pixel* pixel_at(std::int32_t row, std::int32_t xl) const {
    return reinterpret_cast<Pixel*>(rows[row]) + xl;
  }
  std::uint16_t* depth_at(std::int32_t row, std::int32_t xl) const {
    if constexpr (kDepth) return reinterpret_cast<std::uint16_t*>(depth_rows[row]) + xl;
    return nullptr;
  }
  static std::uint16_t* depth_plus(std::uint16_t* zp, std::int32_t i) {
    if constexpr (kDepth) return zp + i;
    return nullptr;
  }
  // A width-1 pixel and the left of two: the left end's channel.
  static std::int32_t first(std::int32_t l) { return Shade::kLevels ? l >> 8 : l >> 16; }
  // The right of two: the mean of the ends.
  static std::int32_t mean(std::int32_t l, std::int32_t r) {
    if constexpr (Shade::kLevels) return (l >> 9) + (r >> 9);
    return static_cast<std::int32_t>((static_cast<std::uint32_t>(l) + static_cast<std::uint32_t>(r)) >> 17);
  }
  static std::uint16_t depth_first(const Edge_Attributes& left) {
    if constexpr (kDepth) return depth_of(left.v[kZ]);
    return 0;
  }
  static std::uint16_t depth_mean(const Edge_Attributes& left, const Edge_Attributes& right) {
    if constexpr (kDepth) return depth_of((right.v[kZ] >> 1) + (left.v[kZ] >> 1));
    return 0;
  }
};

// The Gouraud filler of one call's fill: walk(filler). Shade and hole come
// from the mode; the path is chosen here, once.
template <class Shade, bool kDepth, class Wrap, class Hole, class Walk>
inline void with_gouraud_filler(const Fill_Setup& setup, const Depth_Setup& depth, const Shade& shade,
                                const Wrap& wrap, const Hole& hole, Walk&& walk) {
  auto make = [&]<bool kPattern>(const auto& h) {
    Gouraud_Filler<Shade, Wrap, std::decay_t<decltype(h)>, kPattern, kDepth> filler{
        shade, wrap, h, setup.rows, depth.depth_rows, depth.bias, setup.source};
    walk(filler);
  };
  if (setup.fill == Face_Fill::solid)
    make.template operator()<false>(No_Store<typename Hole::Pixel>{});
  else if (setup.contrast_on)
    make.template operator()<true>(hole);
  else
    make.template operator()<true>(No_Store<typename Hole::Pixel>{});
}

}  // namespace tarn
