// The textured span filler: the triangle walk with depth, u, v and the
// writer's colour channels beside x, and a pixel loop of depth test, pattern
// bit, texel lookup and writer. One template serves every writer, the solid
// and pattern paths, and the clipped path.
//
// Precision: x, u and v are 16.16 and depth 17.15, as in the other fillers;
// u and v start at (texel << 16) + 0x8000 and wrap with their 32 bits, so a
// coordinate beyond +-32767 texels wraps too. Spans restart u and v from
// their ends' upper halves read as unsigned, which drops the edge's fraction.
#pragma once

#include <cstdint>

#include "pixel/face_pattern.h"
#include "textures/texture_lookup.h"
#include "textures/textured_writers.h"
#include "triangles/depth_fill.h"
#include "triangles/triangle_walk.h"

namespace tarn {

// Floats stepped together; what the lit filler carries of specular light.
template <int N>
struct Float_Accumulators {
  float v[N];
  Float_Accumulators& operator+=(const Float_Accumulators& step) {
    for (int k = 0; k < N; ++k) v[k] += step.v[k];
    return *this;
  }
  void add_scaled(const Float_Accumulators& step, std::int32_t n) {
    for (int k = 0; k < N; ++k) v[k] += step.v[k] * static_cast<float>(n);
  }
};
template <>
struct Float_Accumulators<0> : No_Attributes {};

// An edge's depth, u, v and channels, and the writer's float channels.
template <int kInts, int kFloats>
struct Textured_Edge {
  Accumulators<kInts> i;
  Float_Accumulators<kFloats> f;
  Textured_Edge& operator+=(const Textured_Edge& step) {
    i += step.i;
    f += step.f;
    return *this;
  }
  void add_scaled(const Textured_Edge& step, std::int32_t n) {
    i.add_scaled(step.i, n);
    f.add_scaled(step.f, n);
  }
};

// A channel's step across a span: widths 2, 4 and 8 shift, rounding a
// negative difference down; other widths divide.
inline std::int32_t span_step(std::int32_t a, std::int32_t b, std::int32_t n) {
  const std::int32_t d = b - a;
  switch (n) {
    case 0:
    case 1:
      return d;
    case 2:
      return d >> 1;
    case 4:
      return d >> 2;
    case 8:
      return d >> 3;
    default:
      return d / n;
  }
}

// kPattern: the pattern path, with contrast pixels when kContrast.
// kClipped: the spans of the clipped path, cut to the hard clip.
template <class Writer, bool kPattern, bool kContrast>
struct Textured_Filler {
  static constexpr int kC = Writer::kChannels;
  static constexpr int kF = Writer::kFloatChannels;
  static constexpr int kZ = 0, kU = 1, kV = 2, kFirstChannel = 3;
  using Vertex = typename Writer::Vertex;
  using Edge_Attributes = Textured_Edge<kFirstChannel + kC, kF>;
  using Pixel = typename Writer::Pixel;

  Writer writer;
  const Texture_Lookup* lookup;
  byte* const* rows;
  byte* const* depth_rows;
  std::int32_t depth_bias;
  const Pattern_Source* source;

  Edge_Attributes edge_start(const Vertex& v) const {
    Edge_Attributes a;
    a.i.v[kZ] = Depth_Edges{depth_bias}.edge_start({v.point}).z;
    a.i.v[kU] = fixed_start(v.u);
    a.i.v[kV] = fixed_start(v.v);
    for (int k = 0; k < kC; ++k)
      a.i.v[kFirstChannel + k] = Writer::Channels::start(writer.channel_value(v, k));
    if constexpr (kF > 0)
      for (int k = 0; k < kF; ++k) a.f.v[k] = Writer::float_value(v, k);
    return a;
  }
  // Float channels step by their difference over the height in floats.
  Edge_Attributes edge_step(const Vertex& from, const Vertex& to, std::int32_t h) const {
    Edge_Attributes a;
    a.i.v[kZ] = slope15(wrap_sub(to.point->z, from.point->z), h);
    a.i.v[kU] = slope(wrap_sub(to.u, from.u), h);
    a.i.v[kV] = slope(wrap_sub(to.v, from.v), h);
    for (int k = 0; k < kC; ++k)
      a.i.v[kFirstChannel + k] =
          Writer::Channels::step(writer.channel_value(from, k), writer.channel_value(to, k), h);
    if constexpr (kF > 0) {
      for (int k = 0; k < kF; ++k) {
        const float d = Writer::float_value(to, k) - Writer::float_value(from, k);
        a.f.v[k] = h == 1 ? d : d / static_cast<float>(h);
      }
    }
    return a;
  }

  // Inside: the RGB32 writers' solid path takes widths 1 and 2 apart.
  void span(std::int32_t row, std::int32_t xl, std::int32_t xr, const Edge_Attributes& left,
            const Edge_Attributes& right) const {
    const std::int32_t n = xr - xl;
    if (n < 1) return;
    if constexpr (Writer::kNarrow && !kPattern) {
      if (n <= 2) return narrow(row, xl, n, left, right);
    }
    run(row, xl, n, span_start(left, right, n, 0));
  }

  // Across the clip: steps over the full span, started at the clamped left
  // end.
  void clipped_span(std::int32_t row, std::int32_t xl, std::int32_t xr, std::int32_t full_xl,
                    std::int32_t full_xr, const Edge_Attributes& left, const Edge_Attributes& right) const {
    run(row, xl, xr - xl,
        span_start(left, right, full_xr - full_xl, static_cast<std::uint32_t>(xl - full_xl)));
  }

 private:
  // A span's depth, u, v and channels, the float channels as whole numbers
  // after the others.
  using Span_Values = Accumulators<kFirstChannel + kC + kF>;
  struct Span {
    Span_Values at, step;
  };

  static std::int32_t fixed_start(std::int32_t t) {
    return static_cast<std::int32_t>((static_cast<std::uint32_t>(t) << 16) + 0x8000u);
  }
  static std::uint32_t upper(std::int32_t a) { return static_cast<std::uint32_t>(a) >> 16; }

  // Depth, u and v restart from their ends' integer parts; the channels
  // start at the left edge's value. Everything is moved on by `skip` pixels.
  static Span span_start(const Edge_Attributes& left, const Edge_Attributes& right, std::int32_t width,
                         std::uint32_t skip) {
    Span s;
    const std::int32_t dl = depth_of(left.i.v[kZ]), dr = depth_of(right.i.v[kZ]);
    s.at.v[kZ] = static_cast<std::int32_t>((static_cast<std::uint32_t>(dl) << 15) + 0x4000u);
    s.step.v[kZ] = slope15(dr - dl, width);
    for (int k : {kU, kV}) {
      const std::int32_t l = static_cast<std::int32_t>(upper(left.i.v[k]));
      s.at.v[k] = fixed_start(l);
      s.step.v[k] = slope(static_cast<std::int32_t>(upper(right.i.v[k])) - l, width);
    }
    for (int k = kFirstChannel; k < kFirstChannel + kC; ++k) {
      s.at.v[k] = left.i.v[k];
      s.step.v[k] = span_step(left.i.v[k], right.i.v[k], width);
    }
    if constexpr (kF > 0) {
      for (int k = 0; k < kF; ++k) {
        const std::int32_t l = truncate_to_int32(left.f.v[k]);
        s.at.v[kFirstChannel + kC + k] = l;
        s.step.v[kFirstChannel + kC + k] = span_step(l, truncate_to_int32(right.f.v[k]), width);
      }
    }
    if (skip != 0) s.at.add_scaled(s.step, static_cast<std::int32_t>(skip));
    return s;
  }

  Pixel* pixel_at(std::int32_t row, std::int32_t xl) const {
    return reinterpret_cast<Pixel*>(rows[row]) + xl;
  }
  std::uint16_t* depth_at(std::int32_t row, std::int32_t xl) const {
    return reinterpret_cast<std::uint16_t*>(depth_rows[row]) + xl;
  }

  // One pixel that passed the depth test at d; kShift as in the writers.
  template <int kShift>
  void texel_pixel(Pixel* p, std::uint16_t* zp, std::uint16_t d, std::uint32_t tu, std::uint32_t tv,
                   const std::int32_t* c, std::int32_t row, std::uint16_t opaque_depth) const {
    if (lookup->outside(tu, tv)) return;
    const std::uint32_t t = lookup->texel(tu, tv);
    if constexpr (Writer::kDepthFirst) {
      *zp = d;
      writer.template write<kShift>(p, t, c, row);
    } else {
      const Wrote wrote = writer.template write<kShift>(p, t, c, row);
      if (wrote == Wrote::opaque) *zp = opaque_depth;
      if (wrote == Wrote::blended) *zp = d;
    }
  }

  void run(std::int32_t row, std::int32_t xl, std::int32_t n, Span s) const {
    Pixel* p = pixel_at(row, xl);
    std::uint16_t* zp = depth_at(row, xl);
    auto texel = [&](std::int32_t i, std::uint16_t d) {
      texel_pixel<16>(p + i, zp + i, d, upper(s.at.v[kU]), upper(s.at.v[kV]), s.at.v + kFirstChannel, row, d);
    };
    if constexpr (kPattern) {
      Pattern_Row bits(*source, row, xl);
      for (std::int32_t i = 0; i < n; ++i, bits.next(), s.at += s.step) {
        const std::uint16_t d = depth_of(s.at.v[kZ]);
        if (d > zp[i]) continue;
        if (!bits.hole()) {
          texel(i, d);
        } else if constexpr (kContrast) {
          writer.contrast(p + i);
          zp[i] = d;
        }
      }
    } else {
      for (std::int32_t i = 0; i < n; ++i, s.at += s.step) {
        const std::uint16_t d = depth_of(s.at.v[kZ]);
        if (d <= zp[i]) texel(i, d);
      }
    }
  }

  // One pixel from the left edge's values; of two, the right one first, from
  // the mean of both ends.
  void narrow(std::int32_t row, std::int32_t xl, std::int32_t n, const Edge_Attributes& left,
              const Edge_Attributes& right) const {
    Pixel* p = pixel_at(row, xl);
    std::uint16_t* zp = depth_at(row, xl);
    const std::uint16_t left_depth = depth_of(left.i.v[kZ]);
    if (n == 2) {
      const std::uint16_t d =
          depth_of(static_cast<std::int32_t>((static_cast<std::uint32_t>(left.i.v[kZ]) >> 1) +
                                             (static_cast<std::uint32_t>(right.i.v[kZ]) >> 1)));
      if (d <= zp[1]) {
        std::int32_t c[kC + 1];
        for (int k = 0; k < kC; ++k)
          c[k] = static_cast<std::int32_t>(static_cast<std::uint32_t>(left.i.v[kFirstChannel + k]) +
                                           static_cast<std::uint32_t>(right.i.v[kFirstChannel + k]));
        texel_pixel<17>(p + 1, zp + 1, d, mean_upper(left.i.v[kU], right.i.v[kU]),
                        mean_upper(left.i.v[kV], right.i.v[kV]), c, row,
                        Writer::kMeanOpaqueTakesLeftDepth ? left_depth : d);
      }
    }
    if (left_depth <= zp[0])
      texel_pixel<16>(p, zp, left_depth, upper(left.i.v[kU]), upper(left.i.v[kV]), left.i.v + kFirstChannel,
                      row, left_depth);
  }
  static std::uint32_t mean_upper(std::int32_t a, std::int32_t b) {
    return ((static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b)) >> 1) >> 16;
  }
};

}  // namespace tarn
