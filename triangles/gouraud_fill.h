// What each mode writes for the Gouraud family: the mode's shade and contrast
// writer around the Gouraud filler, and the shortcut of nearly flat triangles
// to the colorized family, which draws them in their first colour.
#pragma once

#include "triangles/gouraud_spans.h"
#include "triangles/strip_fills.h"

namespace tarn {

struct Gouraud {};

template <class Mode>
struct Gouraud_Fill {
  using Shade = std::conditional_t<Mode::kIndex, Mapped_Shade,
                                   std::conditional_t<Mode::kAlpha, Alpha_Shade, Opaque_Shade>>;
  using Hole = std::conditional_t<Mode::kIndex, Index_Store, Word_Store>;
  // A nearly flat triangle goes where a one-colour colorized list of its
  // three points goes: the opaque RGB32 filler merges through the alpha one.
  static constexpr bool kFlatMayMerge = kRgb32Opaque<Mode> && !Mode::kDepth;

  Shade shade;
  Hole hole;
  Strip_Fill<Mode, Colorized> flat;
  bool flat_merges;

  explicit Gouraud_Fill(const Strip_Call& s)
      : shade(make_shade(s)),
        hole(contrast_of(s)),
        flat(s),
        flat_merges(kFlatMayMerge && merge_on(s.r, s.rendition)) {}

  template <class Wrap>
  void inside(const Strip_Call& s, const Wrap& wrap) const {
    with_filler(s, wrap, [&](auto& filler) {
      for (int i = 0; i + 2 < s.count; ++i) {
        const OT_RGB32* c = s.colors + i;
        if (near_color(c[0], c[1]) && near_color(c[0], c[2])) {
          fill_run<kFlatMayMerge>(flat, s.one_color(i), wrap, flat_merges);
          continue;
        }
        walk_triangle(filler, Shaded_Vertex::of(s.points + i, c, 0), Shaded_Vertex::of(s.points + i, c, 1),
                      Shaded_Vertex::of(s.points + i, c, 2), s.r.origin_x, s.r.origin_y);
      }
    });
  }

  // A crossing triangle compares its colours in a chain: c0 with c1, c1 with
  // c2.
  template <class Wrap>
  void cross(const Strip_Call& s, int p, const Wrap& wrap) const {
    const OT_RGB32* c = s.colors + p;
    if (near_color(c[0], c[1]) && near_color(c[1], c[2])) return flat.cross(s.one_color(p), 0, wrap);
    with_filler(s, wrap, [&](auto& filler) {
      cross_triangle(filler, s.rendition, s.points + p, s.r.origin_x, s.r.origin_y, c);
    });
  }

 private:
  static Shade make_shade(const Strip_Call& s) {
    if constexpr (Mode::kIndex)
      return Mapped_Shade(s.r.cube);
    else
      return Shade{};
  }
  static Hole contrast_of(const Strip_Call& s) {
    if constexpr (Mode::kIndex)
      return Index_Store{static_cast<byte>(s.rendition->colors->contrast_index)};
    else
      return Word_Store{s.rendition->colors->contrast_color.word()};
  }

  template <class Wrap, class Walk>
  void with_filler(const Strip_Call& s, const Wrap& wrap, Walk&& walk) const {
    Depth_Setup depth{0, nullptr};
    if constexpr (Mode::kDepth) depth = depth_setup(s);
    with_gouraud_filler<Shade, Mode::kDepth>(fill_setup(s), depth, shade, wrap, wrap(hole), walk);
  }
};

template <class Mode>
struct Strip_Fill_Of<Mode, Gouraud> {
  using Type = Gouraud_Fill<Mode>;
};

}  // namespace tarn
