// What each mode writes, for the flat and the colorized family: the writers
// of an all-inside strip (`inside`) and of one crossing triangle (`cross`).
// Both walk through the same fillers (span_fillers.h, depth_fill.h); they
// differ only where the rules do: crossing mapped patterns merge, crossing
// mapped colorized spans dither in the addition form, crossing depth comes
// from the unclamped ends, and crossing spans of the alpha depth mode switch
// on alpha. `wrap` is the complex clip's writer maker, chosen once per call.
#pragma once

#include <type_traits>

#include "pixel/dither.h"
#include "pixel/mask.h"
#include "triangles/clip_path.h"
#include "triangles/depth_fill.h"
#include "triangles/strip_modes.h"

namespace tarn {

struct Flat {};
struct Colorized {};

inline Fill_Setup fill_setup(const Strip_Call& s) {
  return {s.r.color_image->device_rows, s.r.height, s.fill, s.flags.contrast, &s.source};
}
inline Depth_Setup depth_setup(const Strip_Call& s) {
  return {s.rendition->face->depth_bias, s.r.depth_image->device_rows};
}

// Triangle i of an all-inside strip: points i, i+1, i+2.
inline auto inside_walk(const Strip_Call& s, int i) {
  return [&s, i](auto& filler) {
    walk_triangle(filler, {&s.points[i]}, {&s.points[i + 1]}, {&s.points[i + 2]}, s.r.origin_x, s.r.origin_y);
  };
}
// The crossing triangle from point p, cut and walked across the hard clip.
inline auto crossing_walk(const Strip_Call& s, int p) {
  return [&s, p](auto& filler) {
    cross_triangle(filler, s.rendition, s.points + p, s.r.origin_x, s.r.origin_y);
  };
}

// The dither of each triangle's colour, in the comparison form. The sort is
// done per triangle of nonzero height while the colour pointer is not null;
// after each triangle, skipped or not, a one-colour list sets the pointer to
// null (its sort is done) and a list of colours moves it on. So a one-colour
// list whose first triangle has zero height keeps the all-zero state, and
// draws in index 0: that is how this filler behaves.
class Dither_Per_Triangle {
 public:
  explicit Dither_Per_Triangle(const Strip_Call& s)
      : cube_(&s.r.cube), points_(s.points), color_(s.colors), single_(s.single_color) {}

  Dither_Compare_Store operator()(int i) {
    const std::int32_t y0 = points_[i].y, y1 = points_[i + 1].y, y2 = points_[i + 2].y;
    const std::int32_t height = wrap_sub(std::max({y0, y1, y2}), std::min({y0, y1, y2}));
    if (height >= 1 && color_) state_ = dither_thresholds(*cube_, *color_);
    color_ = single_ ? nullptr : color_ + 1;
    return Dither_Compare_Store(state_);
  }

 private:
  const OT_Color_Cube* cube_;
  const OT_DCI_Point* points_;
  const OT_RGB32* color_;
  bool single_;
  Dither_Thresholds state_{0, 0, 0, 0, 0, 0, 0};
};

// The writers of a mapped strip: the index of a flat strip, a dither per
// triangle of a colorized one; merge on the solid path and across the clip,
// never in the depth mode.
template <class Mode, class Family>
struct Mapped_Fill {
  byte contrast;
  bool merge = false;

  explicit Mapped_Fill(const Strip_Call& s) : contrast(s.rendition->colors->contrast_index) {
    if constexpr (!Mode::kDepth) merge = merge_on(s.r, s.rendition);
  }

  template <class Main, class Contrast, class Walk>
  static void paint(const Strip_Call& s, const Main& main, const Contrast& hole, Walk&& walk) {
    if constexpr (Mode::kDepth)
      with_depth_filler<Depth_Rule<Depth_At_Or_Below, true>>(fill_setup(s), depth_setup(s), main, hole, walk);
    else
      with_color_filler(fill_setup(s), main, hole, walk);
  }

  // The all-inside strip: a mapped pattern does not merge, except behind the
  // mask, where it merges in the first part of each triangle.
  template <class Wrap>
  void inside(const Strip_Call& s, const Wrap& wrap) const {
    const auto hole = wrap(Index_Store{contrast});
    if constexpr (!Mode::kDepth && std::is_same_v<Family, Flat> && !std::is_same_v<Wrap, No_Masking>) {
      if (merge && s.fill != Face_Fill::solid) return masked_pattern_merge(s, wrap);
    }
    if constexpr (std::is_same_v<Family, Colorized>) {
      Dither_Per_Triangle dither(s);
      for (int i = 0; i + 2 < s.count; ++i) paint(s, wrap(dither(i)), hole, inside_walk(s, i));
    } else if (merge && s.fill == Face_Fill::solid) {
      const auto main = wrap(Merge_Index_Store(Merge_Mapped(s.r), flat_index(s)));
      for (int i = 0; i + 2 < s.count; ++i) paint(s, main, hole, inside_walk(s, i));
    } else {
      const auto main = wrap(Index_Store{flat_index(s)});
      for (int i = 0; i + 2 < s.count; ++i) paint(s, main, hole, inside_walk(s, i));
    }
  }

  // A crossing triangle: merge reaches patterns too; colours dither in the
  // addition form.
  template <class Wrap>
  void cross(const Strip_Call& s, int p, const Wrap& wrap) const {
    if constexpr (std::is_same_v<Family, Colorized>) {
      const Dither_Levels levels = dither_levels(s.r.cube, s.color_of(p));
      if (merge) {
        const Merge_Mapped rule(s.r);
        paint(s, wrap(Merge_Dither_Add_Store(rule, s.r.cube, levels)),
              wrap(Merge_Index_Store(rule, contrast)), crossing_walk(s, p));
      } else {
        paint(s, wrap(Dither_Add_Store(s.r.cube, levels)), wrap(Index_Store{contrast}), crossing_walk(s, p));
      }
    } else if (merge) {
      const Merge_Mapped rule(s.r);
      paint(s, wrap(Merge_Index_Store(rule, flat_index(s))), wrap(Merge_Index_Store(rule, contrast)),
            crossing_walk(s, p));
    } else {
      paint(s, wrap(Index_Store{flat_index(s)}), wrap(Index_Store{contrast}), crossing_walk(s, p));
    }
  }

  static byte flat_index(const Strip_Call& s) { return static_cast<byte>(s.rendition->colors->color_index); }

  // Each triangle merges main and contrast colour down to its middle point,
  // and stores them plain below it.
  template <class Wrap>
  void masked_pattern_merge(const Strip_Call& s, const Wrap& wrap) const {
    const Merge_Mapped rule(s.r);
    const auto merged = wrap(Merge_Index_Store(rule, flat_index(s)));
    const auto plain = wrap(Index_Store{flat_index(s)});
    auto each = [&](const auto& first_hole, const auto& second_hole) {
      using First = Pattern_Pixels<std::decay_t<decltype(merged)>, std::decay_t<decltype(first_hole)>>;
      using Second = Pattern_Pixels<std::decay_t<decltype(plain)>, std::decay_t<decltype(second_hole)>>;
      for (int i = 0; i + 2 < s.count; ++i) {
        const OT_DCI_Point* p = s.points + i;
        const std::int32_t middle =
            std::max(std::min(p[0].y, p[1].y), std::min(std::max(p[0].y, p[1].y), p[2].y));
        const Color_Filler<Split_Pixels<First, Second>> filler{{},
                                                               s.r.color_image->device_rows,
                                                               {{merged, first_hole, &s.source},
                                                                {plain, second_hole, &s.source},
                                                                wrap_sub(middle, s.r.origin_y)}};
        inside_walk(s, i)(filler);
      }
    };
    if (s.flags.contrast)
      each(wrap(Merge_Index_Store(rule, contrast)), wrap(Index_Store{contrast}));
    else
      each(No_Store<byte>{}, No_Store<byte>{});
  }
};

// The writers of a translucent or merging colour without depth: a blend
// (holes stored plain), the merge rule, or plain stores.
template <class Wrap, class Body>
inline void with_alpha_stores(OT_RGB32 color, bool merge, const Merge_Rgb32& rule, std::uint32_t contrast,
                              const Wrap& wrap, Body&& body) {
  if (color.a != 255)
    body(wrap(Blend_Exact_Store(color)), wrap(Word_Store{contrast}));
  else if (merge)
    body(wrap(Merge_Word_Store(rule, color.word())), wrap(Merge_Word_Store(rule, contrast)));
  else
    body(wrap(Word_Store{color.word()}), wrap(Word_Store{contrast}));
}

// The RGB32 alpha filler without depth. Under merge only the colour in hand
// is taken as opaque: the first of the list (of the run, inside), and later
// colours keep their alpha.
struct Alpha_Fill {
  std::uint32_t contrast;
  bool merge;
  Merge_Rgb32 rule;

  explicit Alpha_Fill(const Strip_Call& s)
      : contrast(s.rendition->colors->contrast_color.word()), merge(merge_on(s.r, s.rendition)), rule(s.r) {}

  // A one-colour list with alpha 0 draws nothing.
  static bool draws(const Strip_Call& s) { return !(s.colors[0].a == 0 && s.single_color); }

  template <class Wrap>
  void inside(const Strip_Call& s, const Wrap& wrap) const {
    OT_RGB32 first = s.colors[0];
    if (merge) first.a = 255;
    for (int i = 0; i + 2 < s.count; ++i) {
      const OT_RGB32 color = (i == 0 || s.single_color) ? first : s.colors[i];
      with_alpha_stores(color, merge, rule, contrast, wrap, [&](const auto& main, const auto& hole) {
        with_color_filler<true>(fill_setup(s), main, hole, inside_walk(s, i));
      });
    }
  }

  template <class Wrap>
  void cross(const Strip_Call& s, int p, const Wrap& wrap) const {
    OT_RGB32 color = s.color_of(p);
    if (merge && (s.single_color || p == 0)) color.a = 255;
    with_alpha_stores(color, merge, rule, contrast, wrap, [&](const auto& main, const auto& hole) {
      with_color_filler(fill_setup(s), main, hole, crossing_walk(s, p));
    });
  }
};

// The RGB32 opaque filler: plain stores of each triangle's word, never a
// merge. With depth, "ZBuffer Test" and "ZBuffer Write" hold, but behind the
// mask the test is at or below and depth is always written.
template <class Mode>
struct Opaque_Fill {
  Word_Store hole;

  explicit Opaque_Fill(const Strip_Call& s) : hole{s.rendition->colors->contrast_color.word()} {}

  template <class Wrap, class Each>
  void paint_all(const Strip_Call& s, const Wrap& wrap, Each&& each) const {
    if constexpr (!Mode::kDepth) {
      each([&](const auto& main, auto&& walk) { with_color_filler(fill_setup(s), main, wrap(hole), walk); });
    } else if constexpr (!std::is_same_v<Wrap, No_Masking>) {
      each([&](const auto& main, auto&& walk) {
        with_depth_filler<Depth_Rule<Depth_At_Or_Below, true>>(fill_setup(s), depth_setup(s), main,
                                                               wrap(hole), walk);
      });
    } else {
      with_depth_options(s.r.depth_test, s.r.depth_write, [&]<class Rule>() {
        each([&](const auto& main, auto&& walk) {
          with_depth_filler<Rule>(fill_setup(s), depth_setup(s), main, hole, walk);
        });
      });
    }
  }

  template <class Wrap>
  void inside(const Strip_Call& s, const Wrap& wrap) const {
    paint_all(s, wrap, [&](auto&& paint) {
      for (int i = 0; i + 2 < s.count; ++i) paint(wrap(Word_Store{s.color_of(i).word()}), inside_walk(s, i));
    });
  }

  template <class Wrap>
  void cross(const Strip_Call& s, int p, const Wrap& wrap) const {
    paint_all(s, wrap,
              [&](auto&& paint) { paint(wrap(Word_Store{s.color_of(p).word()}), crossing_walk(s, p)); });
  }
};

// The RGB32 alpha depth filler: no mask, the test at or below, depth written
// as "ZBuffer Write" says. Inside it always blends; crossing rows switch on
// alpha: 255 stores the word, 0 leaves the colour (its depth is written all
// the same), anything between blends.
struct Alpha_Depth_Fill {
  Word_Store hole;

  explicit Alpha_Depth_Fill(const Strip_Call& s) : hole{s.rendition->colors->contrast_color.word()} {}

  template <class Each>
  static void with_rule(const Strip_Call& s, Each&& each) {
    if (s.r.depth_write)
      each.template operator()<Depth_Rule<Depth_At_Or_Below, true>>();
    else
      each.template operator()<Depth_Rule<Depth_At_Or_Below, false>>();
  }

  template <class Wrap>
  void inside(const Strip_Call& s, const Wrap&) const {
    with_rule(s, [&]<class Rule>() {
      for (int i = 0; i + 2 < s.count; ++i)
        with_depth_filler<Rule>(fill_setup(s), depth_setup(s), Blend_Exact_Store(s.color_of(i)), hole,
                                inside_walk(s, i));
    });
  }

  template <class Wrap>
  void cross(const Strip_Call& s, int p, const Wrap&) const {
    const OT_RGB32 color = s.color_of(p);
    with_rule(s, [&]<class Rule>() {
      auto paint = [&](const auto& main) {
        with_depth_filler<Rule>(fill_setup(s), depth_setup(s), main, hole, crossing_walk(s, p));
      };
      if (color.a == 255)
        paint(Word_Store{color.word()});
      else if (color.a == 0)
        paint(No_Store<std::uint32_t>{});
      else
        paint(Blend_Exact_Store(color));
    });
  }
};

// The fill of a mode and family.
template <class Mode, class Family>
struct Strip_Fill_Of {
  using Type = std::conditional_t<
      Mode::kIndex, Mapped_Fill<Mode, Family>,
      std::conditional_t<Mode::kAlpha, std::conditional_t<Mode::kDepth, Alpha_Depth_Fill, Alpha_Fill>,
                         Opaque_Fill<Mode>>>;
};
template <class Mode, class Family>
using Strip_Fill = typename Strip_Fill_Of<Mode, Family>::Type;

// An all-inside run as the clip path hands it on. When kMayMerge, the run of
// an RGB32 opaque colorized fill that merges goes through the alpha filler.
template <bool kMayMerge, class Fill, class Wrap>
inline void fill_run(const Fill& fill, const Strip_Call& run, const Wrap& wrap, bool merges) {
  if constexpr (kMayMerge) {
    if (merges) {
      if (Alpha_Fill::draws(run)) Alpha_Fill(run).inside(run, wrap);
      return;
    }
  }
  if constexpr (std::is_same_v<Fill, Alpha_Fill>) {
    if (!Alpha_Fill::draws(run)) return;
  }
  fill.inside(run, wrap);
}

}  // namespace tarn
