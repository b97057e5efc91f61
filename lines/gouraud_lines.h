// The plot of a Gouraud line: one colour at each end of a segment, each
// channel a 16.16 accumulator stepped once a visited pixel beside depth, and
// what a mode writes from them: the RGB32 word, the weight blend, or the
// dithered index (addition form).
#pragma once

#include <type_traits>

#include "frame/software_z_buffer.h"
#include "host/ombra.h"
#include "lines/line_walker.h"
#include "pixel/depth_test.h"
#include "pixel/dither.h"
#include "pixel/line_attributes.h"
#include "pixel/mask.h"
#include "pixel/near_color.h"
#include "pixel/pixel_writers.h"

namespace tarn {

// A pixel's accumulators (not yet shifted) and depth candidate.
template <int N>
struct Shaded_Value {
  std::int32_t channel[N];
  std::uint16_t depth;
};

template <int N, bool kDepth>
struct Shaded_Line_Attributes {
  std::uint32_t acc[N] = {};
  std::int32_t step[N] = {};
  Line_Depth depth;

  void skip(std::int32_t k) {
    for (int c = 0; c < N; ++c) acc[c] += static_cast<std::uint32_t>(step[c]) * static_cast<std::uint32_t>(k);
    if constexpr (kDepth) depth.skip(k);
  }
  Shaded_Value<N> next() {
    Shaded_Value<N> v;
    for (int c = 0; c < N; ++c) {
      v.channel[c] = static_cast<std::int32_t>(acc[c]);
      acc[c] += static_cast<std::uint32_t>(step[c]);
    }
    v.depth = 0;
    if constexpr (kDepth) v.depth = depth.next();
    return v;
  }
};

// Mode: the mode's traits. Wrap: the complex clip's writer maker. Depth is
// tested at or below and always written, whatever the depth options say.
template <class Mode, class Wrap>
struct Gouraud_Line_Plot {
  static constexpr bool kDepth = Mode::kDepth;
  static constexpr int kChannels = Mode::kAlpha ? 4 : 3;
  using Attributes = Shaded_Line_Attributes<kChannels, kDepth>;
  using Pixel = std::conditional_t<Mode::kIndex, byte, std::uint32_t>;

  const Software_Z_Buffer* r;
  Wrap wrap;
  OT_RGB32 from, to;

  // A channel's walked value: the byte, times the cube's scale when mapped.
  std::int32_t value(OT_RGB32 c, int k) const {
    const std::int32_t byte_value = k == 0 ? c.r : k == 1 ? c.g : k == 2 ? c.b : c.a;
    if constexpr (Mode::kIndex)
      return byte_value * (k == 0 ? r->cube.red_scale : k == 1 ? r->cube.green_scale : r->cube.blue_scale);
    return byte_value;
  }
  // The accumulators at a colour, before any step.
  Attributes at(OT_RGB32 c) const {
    Attributes a;
    for (int k = 0; k < kChannels; ++k) a.acc[k] = (static_cast<std::uint32_t>(value(c, k)) << 16) | 0x8000u;
    return a;
  }
  Attributes attributes(const OT_DCI_Point& a, const OT_DCI_Point& b, std::int32_t n) const {
    Attributes out = at(from);
    for (int k = 0; k < kChannels; ++k) out.step[k] = slope(value(to, k) - value(from, k), n);
    if constexpr (kDepth) out.depth = Line_Depth(a.z, b.z, n);
    return out;
  }

  // The writer of a pixel with accumulators v.
  template <class Put>
  void with_store(const Shaded_Value<kChannels>& v, Pixel* p, std::int32_t row, Put&& put) const {
    if constexpr (Mode::kIndex) {
      const Dither_Levels levels{v.channel[0] >> 8, v.channel[1] >> 8, v.channel[2] >> 8};
      put(Index_Store{dither_add(r->cube, levels, dither_threshold(row, p))});
    } else {
      const OT_RGB32 c{static_cast<byte>(v.channel[2] >> 16), static_cast<byte>(v.channel[1] >> 16),
                       static_cast<byte>(v.channel[0] >> 16),
                       static_cast<byte>(Mode::kAlpha ? v.channel[3] >> 16 : 255)};
      if constexpr (Mode::kAlpha)
        put(Blend_Weight_Store(c));
      else
        put(Word_Store{c.word()});
    }
  }

  void operator()(std::int32_t column, std::int32_t row, const Shaded_Value<kChannels>& v) const {
    Pixel* p = reinterpret_cast<Pixel*>(r->color_image->device_rows[row]) + column;
    with_store(v, p, row, [&](const auto& store) {
      if constexpr (kDepth)
        depth_pixel<Depth_At_Or_Below, true>(
            wrap(store), p, reinterpret_cast<std::uint16_t*>(r->depth_image->device_rows[row]) + column,
            v.depth, row);
      else
        wrap(store).pixel(p, row);
    });
  }
};

}  // namespace tarn

namespace tarn {

template <class Mode>
void dci_colorized_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                            const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color);

// A Gouraud polyline after its entry tests, with the writers behind `wrap`.
// Outside the RGB32 depth modes a segment whose ends' colours are nearly the
// same is a whole colorized polyline of its own, end pixel and all. After the
// segments the last point is written: in the RGB32 modes in the last colour
// (depth tested with the point's full z), in the mapped modes from the
// accumulators where the walk ended (not after a nearly flat last segment).
// Behind the mask there is no nearly flat case, and a depth form tests and
// writes the last point with the depth the walk accumulated.
template <class Mode, class Wrap>
void walk_gouraud_segments(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                           const OT_DCI_Point* points, const OT_RGB32* colors, const Wrap& wrap) {
  using Plot = Gouraud_Line_Plot<Mode, Wrap>;
  constexpr bool kMasked = !std::is_same_v<Wrap, No_Masking>;
  constexpr bool kNearFlat = (Mode::kIndex || !Mode::kDepth) && !kMasked;
  const Software_Z_Buffer& r = renderer_of(object);
  auto window = [&r](const OT_DCI_Point& p) { return OT_DCI_Point{p.x - r.origin_x, p.y - r.origin_y, p.z}; };
  OT_DCI_Point a = window(points[0]);
  const OT_RGB32 last = colors[count - 1];
  typename Plot::Attributes end = Plot{&r, wrap, last, last}.at(last);
  [[maybe_unused]] std::int32_t walked_z = a.z;
  for (int i = 0; i + 1 < count; ++i) {
    const OT_DCI_Point b = window(points[i + 1]);
    if constexpr (kNearFlat) {
      if (near_color(colors[i], colors[i + 1])) {
        dci_colorized_polyline<Mode>(object, rendition, 2, points + i, colors + i, true);
        if (Mode::kIndex && i + 2 == count) return;
        a = b;
        continue;
      }
    }
    end = walk_segment(Plot{&r, wrap, colors[i], colors[i + 1]}, Whole_Segment{}, a, b);
    if constexpr (kMasked && Mode::kDepth) walked_z = accumulated_z(end.depth, a, b);
    // A segment of no length walks nothing: its end is its colour.
    if (a.x == b.x && a.y == b.y) end = Plot{&r, wrap, last, last}.at(colors[i + 1]);
    a = b;
  }
  const std::int32_t last_z = kMasked ? walked_z : a.z;
  using Pixel = typename Plot::Pixel;
  Pixel* p = reinterpret_cast<Pixel*>(r.color_image->device_rows[a.y]) + a.x;
  if constexpr (Mode::kIndex) {
    const Plot plot{&r, wrap, last, last};
    const Shaded_Value<Plot::kChannels> v = end.next();
    if constexpr (Mode::kDepth) {
      std::uint16_t* zp = reinterpret_cast<std::uint16_t*>(r.depth_image->device_rows[a.y]) + a.x;
      if (!Depth_At_Or_Below::passes(last_z, *zp)) return;
      plot.with_store(v, p, a.y, [&](const auto& store) {
        if constexpr (kMasked) {
          if (wrap(store).hidden(p, a.y)) return;
        }
        *zp = v.depth;
        store.pixel(p, a.y);
      });
    } else {
      plot(a.x, a.y, v);
    }
  } else {
    auto put = [&](const auto& store) {
      if constexpr (Mode::kDepth)
        depth_pixel<Depth_At_Or_Below, true>(
            wrap(store), p, reinterpret_cast<std::uint16_t*>(r.depth_image->device_rows[a.y]) + a.x, last_z,
            a.y);
      else
        wrap(store).pixel(p, a.y);
    };
    if constexpr (Mode::kAlpha)
      put(Blend_Weight_Store(last));
    else
      put(Word_Store{last.word() | 0xFF000000u});
  }
}

// Behind the mask the RGB32 forms write opaque pixels, alpha or not.
template <class Mode, class Wrap>
void walk_gouraud_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                           const OT_DCI_Point* points, const OT_RGB32* colors, const Wrap& wrap) {
  if constexpr (!std::is_same_v<Wrap, No_Masking> && Mode::kAlpha)
    walk_gouraud_segments<typename Mode::Opaque>(object, rendition, count, points, colors, wrap);
  else
    walk_gouraud_segments<Mode>(object, rendition, count, points, colors, wrap);
}

}  // namespace tarn
