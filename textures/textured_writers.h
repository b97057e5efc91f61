// What each textured filler makes of a texel T: the eight pixel writers, by
// colour image, modulation and alpha. A writer also owns its colour channels:
// their form on the edges (8.8, or the wider scale where a channel of 255
// must multiply exactly), and the contrast pixel of the pattern path.
//
// write<kShift>(p, T, c, row) takes the channels' current values c and
// reads a product T * c >> kShift: 16 for a pixel, 17 for the mean pixel of
// a two-pixel span, whose c are the sums of its two ends. It answers what
// it stored, which decides the depth store.
#pragma once

#include <cstdint>

#include "frame/software_z_buffer.h"
#include "pixel/blend.h"
#include "pixel/dither.h"
#include "pixel/fixed_point.h"

namespace tarn {

enum class Wrote { nothing, opaque, blended };

// A point with its texel coordinate and, for modulating writers, its colour.
struct Textured_Vertex {
  const OT_DCI_Point* point;
  OT_RGB32 color;
  std::int32_t u, v;
};

inline std::uint32_t texel_channel(std::uint32_t t, int k) {  // k: 0 red, 1 green, 2 blue, 3 alpha
  constexpr int kShift[4] = {16, 8, 0, 24};
  return (t >> kShift[k]) & 0xFFu;
}

inline OT_RGB32 rgb32_of(std::uint32_t r, std::uint32_t g, std::uint32_t b, std::uint32_t a) {
  return {static_cast<byte>(b), static_cast<byte>(g), static_cast<byte>(r), static_cast<byte>(a)};
}

// Channels in 8.8: ((value << 16) + 0x8000) >> 8 at a point, a 16.16 slope
// shifted right 8 along an edge.
struct Channels_8_8 {
  static std::int32_t start(std::int32_t value) {
    return static_cast<std::int32_t>(((static_cast<std::uint32_t>(value) << 16) + 0x8000u) >> 8);
  }
  static std::int32_t step(std::int32_t from, std::int32_t to, std::int32_t h) {
    return slope(to - from, h) >> 8;
  }
};

// Channels on the scale 1..65536 (value * 257 + 1), so that 255 multiplies
// a texel by exactly one.
struct Channels_Wide {
  static std::int32_t start(std::int32_t value) { return value * 257 + 1; }
  static std::int32_t step(std::int32_t from, std::int32_t to, std::int32_t h) {
    return static_cast<std::int32_t>((std::int64_t{slope(to - from, h)} * 257) >> 16);
  }
};

inline std::int32_t color_channel(OT_RGB32 c, int k) {
  return k == 0 ? c.r : k == 1 ? c.g : k == 2 ? c.b : c.a;
}

// ---- RGB32 ----------------------------------------------------------------------

// Contrast pixels of the RGB32 pattern path: the opaque fillers store the
// contrast colour, the alpha ones blend it by its alpha.
struct Rgb32_Contrast {
  std::uint32_t color;
  void contrast(std::uint32_t* p) const { *p = color; }
};
struct Rgb32_Alpha_Contrast {
  OT_RGB32 color;
  void contrast(std::uint32_t* p) const {
    if (color.a == 255)
      *p = color.word();
    else if (color.a > 0)
      *p = blend_exact(*p, color);
  }
};

struct Rgb32_Writer_Base {
  using Pixel = std::uint32_t;
  static constexpr bool kNarrow = true;  // widths 1 and 2 apart on the solid path
  static constexpr bool kDepthFirst = false;
  static constexpr bool kMeanOpaqueTakesLeftDepth = false;
  static constexpr int kFloatChannels = 0;
  using Vertex = Textured_Vertex;
  static std::int32_t channel_value(const Vertex& v, int k) { return color_channel(v.color, k); }
};

// T as it stands, all four bytes.
struct Rgb32_Texel_Writer : Rgb32_Writer_Base, Rgb32_Contrast {
  static constexpr int kChannels = 0;
  using Channels = Channels_8_8;
  using Clipped = Rgb32_Texel_Writer;
  template <int>
  Wrote write(std::uint32_t* p, std::uint32_t t, const std::int32_t*, std::int32_t) const {
    *p = t;
    return Wrote::opaque;
  }
};

// T times the point colours, alpha byte 255.
struct Rgb32_Modulated_Writer : Rgb32_Writer_Base, Rgb32_Contrast {
  static constexpr int kChannels = 3;
  using Channels = Channels_8_8;
  using Clipped = Rgb32_Modulated_Writer;
  template <int kShift>
  Wrote write(std::uint32_t* p, std::uint32_t t, const std::int32_t* c, std::int32_t) const {
    *p = rgb32_of(product<kShift>(t, c, 0), product<kShift>(t, c, 1), product<kShift>(t, c, 2), 255).word();
    return Wrote::opaque;
  }
  template <int kShift>
  static std::uint32_t product(std::uint32_t t, const std::int32_t* c, int k) {
    return (texel_channel(t, k) * static_cast<std::uint32_t>(c[k])) >> kShift;
  }
};

// T by its alpha: 255 stored as it stands, 0 left, between blended. The
// clipped spans write depth before they look at alpha.
template <bool kDepthFirstOnClip>
struct Rgb32_Alpha_Texel_Writer : Rgb32_Writer_Base, Rgb32_Alpha_Contrast {
  static constexpr int kChannels = 0;
  static constexpr bool kDepthFirst = kDepthFirstOnClip;
  using Channels = Channels_8_8;
  using Clipped = Rgb32_Alpha_Texel_Writer<true>;
  template <int>
  Wrote write(std::uint32_t* p, std::uint32_t t, const std::int32_t*, std::int32_t) const {
    const std::uint32_t a = t >> 24;
    if (a == 255) {
      *p = t;
      return Wrote::opaque;
    }
    if (a == 0) return Wrote::nothing;
    *p = blend_exact(*p, OT_RGB32::from_word(t));
    return Wrote::blended;
  }
};

// T times the point colours and their alpha. Inside, the channels run on the
// wide scale, so white keeps T; on a clipped triangle in 8.8, where white
// takes one step off. Of a two-pixel span, an opaque mean pixel stores the
// left end's depth.
template <class Channel_Form, bool kDepthFirstOnClip>
struct Rgb32_Alpha_Modulated_Writer : Rgb32_Writer_Base, Rgb32_Alpha_Contrast {
  static constexpr int kChannels = 4;
  static constexpr bool kDepthFirst = kDepthFirstOnClip;
  static constexpr bool kMeanOpaqueTakesLeftDepth = true;
  using Channels = Channel_Form;
  using Clipped = Rgb32_Alpha_Modulated_Writer<Channels_8_8, true>;
  template <int kShift>
  Wrote write(std::uint32_t* p, std::uint32_t t, const std::int32_t* c, std::int32_t) const {
    using M = Rgb32_Modulated_Writer;
    const std::uint32_t a = M::product<kShift>(t, c, 3);
    const OT_RGB32 color =
        rgb32_of(M::product<kShift>(t, c, 0), M::product<kShift>(t, c, 1), M::product<kShift>(t, c, 2), a);
    if (a == 255) {
      *p = color.word();
      return Wrote::opaque;
    }
    if (a < 1) return Wrote::nothing;
    *p = blend_exact(*p, color);
    return Wrote::blended;
  }
};

// ---- Mapped -----------------------------------------------------------------------

// T times the channels (cube levels in 8.8), dithered by the addition form;
// without modulation the channels are the constant white of each scale. The
// keyed writers of the alpha mode leave a texel of alpha 0, and write no
// depth for it.
template <bool kModulated, bool kKeyed>
struct Mapped_Writer {
  using Pixel = byte;
  static constexpr bool kNarrow = false;
  static constexpr bool kDepthFirst = false;
  static constexpr bool kMeanOpaqueTakesLeftDepth = false;
  static constexpr int kChannels = kModulated ? 3 : 0;
  static constexpr int kFloatChannels = 0;
  using Vertex = Textured_Vertex;
  using Clipped = Mapped_Writer;

  using Channels = Channels_8_8;

  const OT_Color_Cube* cube;
  std::int32_t scale[3];
  std::uint32_t white[3];  // scale * 65280 + 128
  byte contrast_index;

  Mapped_Writer(const OT_Color_Cube& c, byte contrast)
      : cube(&c),
        scale{c.red_scale, c.green_scale, c.blue_scale},
        white{static_cast<std::uint32_t>(c.red_scale) * 65280u + 128u,
              static_cast<std::uint32_t>(c.green_scale) * 65280u + 128u,
              static_cast<std::uint32_t>(c.blue_scale) * 65280u + 128u},
        contrast_index(contrast) {}

  // Channels enter the edges as byte times the cube's scale.
  std::int32_t channel_value(const Vertex& v, int k) const { return color_channel(v.color, k) * scale[k]; }

  template <int>
  Wrote write(byte* p, std::uint32_t t, const std::int32_t* c, std::int32_t row) const {
    if constexpr (kKeyed) {
      if ((t >> 24) == 0) return Wrote::nothing;
    }
    std::int32_t v[3];
    for (int k = 0; k < 3; ++k) {
      const std::uint32_t level = kModulated ? static_cast<std::uint32_t>(c[k]) : white[k];
      v[k] = static_cast<std::int32_t>((texel_channel(t, k) * level) >> 8);
    }
    *p = dither_add(*cube, {v[0], v[1], v[2]}, dither_threshold(row, p));
    return Wrote::opaque;
  }
  void contrast(byte* p) const { *p = contrast_index; }
};

}  // namespace tarn
