// The triangle families, flat, colorized and Gouraud strips, as templates
// over the mode and the coordinate form. Each family's entry tests are written
// once here, in their required order; an action that hands a call on calls the
// receiver with the tests already passed (Passed bits), so no test runs twice.
// What a family does after its tests is the same for every mode: the float
// forms round into the integer forms, 2DI clips (inside runs and crossing
// triangles), DCI fills; the mode's writers come from strip_fills.h.
#pragma once

#include <type_traits>

#include "pixel/entry_tests.h"
#include "triangles/gouraud_fill.h"
#include "triangles/strip_fills.h"
#include "triangles/strip_outline.h"

namespace tarn {

// ---- The host's routines of each form ---------------------------------------------

template <class Form>
inline void host_flat(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                      const typename Form::Point* points) {
  if constexpr (std::is_same_v<Form, Form_2D>)
    OB_Standard_Draw_2D_Polytriangle(object, rendition, count, points);
  else if constexpr (std::is_same_v<Form, Form_DC>)
    OB_Standard_Draw_DC_Polytriangle(object, rendition, count, points);
  else if constexpr (std::is_same_v<Form, Form_2DI>)
    OB_Standard_Draw_2DI_Polytriangle(object, rendition, count, points);
  else
    OB_Standard_Draw_DCI_Polytriangle(object, rendition, count, points);
}

template <class Form>
inline void host_colorized(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                           const typename Form::Point* points, const OT_RGB32* colors, bool single_color) {
  if constexpr (std::is_same_v<Form, Form_2D>)
    OB_Standard_Draw_2D_Colorized_Polytriangle(object, rendition, count, points, colors, single_color);
  else if constexpr (std::is_same_v<Form, Form_DC>)
    OB_Standard_Draw_DC_Colorized_Polytriangle(object, rendition, count, points, colors, single_color);
  else if constexpr (std::is_same_v<Form, Form_2DI>)
    OB_Standard_Draw_2DI_Colorized_Polytriangle(object, rendition, count, points, colors, single_color);
  else
    OB_Standard_Draw_DCI_Colorized_Polytriangle(object, rendition, count, points, colors, single_color);
}

template <class Form>
inline void host_gouraud(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                         const typename Form::Point* points, const OT_RGB32* colors) {
  if constexpr (std::is_same_v<Form, Form_2D>)
    OB_Standard_Draw_2D_Gouraud_Polytriangle(object, rendition, count, points, colors);
  else if constexpr (std::is_same_v<Form, Form_DC>)
    OB_Standard_Draw_DC_Gouraud_Polytriangle(object, rendition, count, points, colors);
  else if constexpr (std::is_same_v<Form, Form_2DI>)
    OB_Standard_Draw_2DI_Gouraud_Polytriangle(object, rendition, count, points, colors);
  else
    OB_Standard_Draw_DCI_Gouraud_Polytriangle(object, rendition, count, points, colors);
}

// ---- After the tests --------------------------------------------------------------

// The writers of the whole call, behind the complex clip when one is in
// force; the alpha depth mode does not look at the mask.
template <class Mode, class Body>
inline void with_call_masking(const Strip_Call& s, Body&& body) {
  if constexpr (Mode::kDepth && Mode::kAlpha)
    body(No_Masking{});
  else
    with_masking(s.r, s.rendition, body);
}

// An all-inside list (DCI).
template <class Mode, class Family>
inline void fill_inside(const Strip_Call& s) {
  if constexpr (std::is_same_v<Strip_Fill<Mode, Family>, Alpha_Fill>) {
    if (!Alpha_Fill::draws(s)) return;
  }
  if (s.fill == Face_Fill::nothing) return;
  const Strip_Fill<Mode, Family> fill(s);
  with_call_masking<Mode>(s, [&](const auto& wrap) { fill.inside(s, wrap); });
}

// A list anywhere (2DI): OB_Clip on the hard clip; runs wholly inside are
// filled as strips, crossing triangles walked one by one across the clip.
// The inside runs of the RGB32 opaque filler merge through the alpha filler;
// its crossing triangles never merge.
template <class Mode, class Family, unsigned kPassed>
inline void fill_clipped(const Strip_Call& s) {
  const Strip_Fill<Mode, Family> fill(s);
  constexpr bool kMayMerge = kRgb32Opaque<Mode> && !Mode::kDepth && !(kPassed & kPassedMergeOff);
  const bool inside_merges = kMayMerge && merge_on(s.r, s.rendition);
  with_call_masking<Mode>(s, [&](const auto& wrap) {
    auto inside = [&](const Strip_Call& run) { fill_run<kMayMerge>(fill, run, wrap, inside_merges); };
    Outcode_Buffer codes(s.count);
    const int result = OB_Clip(s.rendition->device->hard_clip, s.count, s.points, codes.data());
    if (result == 0 || s.fill == Face_Fill::nothing) return;
    if (result == s.count) return inside(s);
    run_clip_loop(
        s.count, codes.data(), [&](int first, int n) { inside(s.run(first, n)); },
        [&](int p) { fill.cross(s, p, wrap); });
  });
}

// The integer forms after their tests: one function with the call's set-up
// and its triangle loop, so that the entry ladder stays small and a call of
// one triangle pays for one frame.
template <class Mode, class Family, class Form, unsigned kPassed>
[[gnu::noinline, gnu::flatten]] void fill_integer(OT_Renderer_Data* object, const OT_Rendition& rendition,
                                                  int count, const OT_DCI_Point* points,
                                                  const OT_RGB32* colors, bool single_color) {
  const Strip_Call s(renderer_of(object), rendition, count, points, colors, single_color);
  if constexpr (Form::kClips)
    fill_clipped<Mode, Family, kPassed>(s);
  else
    fill_inside<Mode, Family>(s);
}

// A float form's points rounded into the call's frame (or the heap beyond 64
// points); forms without depth leave z unconverted.
template <bool kWithZ, class Body>
inline void with_rounded(int count, const OT_Point* points, Body&& body) {
  Point_Buffer buffer(count);
  if constexpr (kWithZ)
    round_points(points, count, buffer.data());
  else
    round_points_xy(points, count, buffer.data());
  body(static_cast<const OT_DCI_Point*>(buffer.data()));
}

// ---- The colorized and Gouraud families ----------------------------------------------
// One ladder for both. They differ in the host routine, in that the Gouraud
// family never looks at merge, and in the order of the RGB32 depth modes'
// tests: the outline bit comes before the alpha path bit in every Gouraud
// form, and in the colorized 2DI form only.

template <class Family, class Mode, class Form, unsigned kPassed>
void shaded_strip(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                  const typename Form::Point* points, const OT_RGB32* colors, bool single_color) {
  constexpr bool kGouraud = std::is_same_v<Family, Gouraud>;
  constexpr bool k2D = std::is_same_v<Form, Form_2D>;
  constexpr bool k2DI = std::is_same_v<Form, Form_2DI>;
  constexpr bool kDCI = std::is_same_v<Form, Form_DCI>;
  constexpr bool kOutlineFirst = kOutlines<Mode> && (k2DI || (kGouraud && kDCI));
  constexpr bool kOutlineSecond = kOutlines<Mode> && kDCI && !kGouraud;
  // A list without colours is the host's, which draws it in the rendition's
  // colour. (Only the actions themselves can be given one.)
  if constexpr (kPassed == (kGouraud ? kPassedMergeOff : kPassedNone)) {
    if (!colors) {
      if constexpr (kGouraud)
        return host_gouraud<Form>(object, rendition, count, points, colors);
      else
        return host_colorized<Form>(object, rendition, count, points, colors, single_color);
    }
  }
  if constexpr (kOutlineFirst && !(kPassed & kPassedOutline)) {
    if (outline_asked(rendition)) return draw_strip_outline(object, rendition, count, points);
  }
  constexpr unsigned kAfterOutline = kPassed | (kOutlineFirst ? kPassedOutline : 0u);
  if constexpr (kRgb32Opaque<Mode> && !k2D && !(kPassed & kPassedAlphaPath)) {
    if (alpha_path(rendition))
      return shaded_strip<Family, typename Mode::Alpha_Path, Form, kAfterOutline>(
          object, rendition, count, points, colors, single_color);
  }
  if constexpr (kOutlineSecond && !(kPassed & kPassedOutline)) {
    if (outline_asked(rendition)) return draw_strip_outline(object, rendition, count, points);
  }
  constexpr unsigned kAfterAlpha = kAfterOutline | (kRgb32Opaque<Mode> && !k2D ? kPassedAlphaPath : 0u) |
                                   (kOutlineSecond ? kPassedOutline : 0u);
  if constexpr (!(kPassed & kPassedPattern)) {
    if (host_pattern(rendition)) {
      if constexpr (kGouraud)
        return host_gouraud<Form>(object, rendition, count, points, colors);
      else
        return host_colorized<Form>(object, rendition, count, points, colors, single_color);
    }
  }
  constexpr unsigned kAfterPattern = kAfterAlpha | kPassedPattern;
  // The opaque filler never merges: merge goes to the alpha filler.
  if constexpr (std::is_same_v<Mode, Rgb32> && kDCI && !(kPassed & kPassedMergeOff)) {
    if (merge_on(renderer_of(object), rendition))
      return shaded_strip<Family, Rgb32_Alpha, Form, kAfterPattern>(object, rendition, count, points, colors,
                                                                    single_color);
  }
  if constexpr (Mode::kDepth && !k2D && !(kPassed & kPassedDepthOn)) {
    if (depth_off(rendition))
      return shaded_strip<Family, typename Mode::Without_Depth, Form, kAfterPattern>(
          object, rendition, count, points, colors, single_color);
  }
  constexpr unsigned kAll = kAfterPattern | (Mode::kDepth && !k2D ? kPassedDepthOn : 0u);
  if constexpr (Form::kClips && !(kPassed & kPassedSomething)) {
    if (nothing_to_draw(renderer_of(object), count)) return;
  }
  if constexpr (Form::kFloat) {
    with_rounded<k2D || Mode::kDepth>(count, points, [&](const OT_DCI_Point* rounded) {
      shaded_strip<Family, Mode, typename Form::Integer, kAll | kPassedSomething>(
          object, rendition, count, rounded, colors, single_color);
    });
  } else {
    fill_integer<Mode, Family, Form, kAll>(object, rendition, count, points, colors, single_color);
  }
}

template <class Mode, class Form, unsigned kPassed = kPassedNone>
inline void colorized_strip(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                            const typename Form::Point* points, const OT_RGB32* colors, bool single_color) {
  shaded_strip<Colorized, Mode, Form, kPassed>(object, rendition, count, points, colors, single_color);
}

// Merge is never looked at on a Gouraud path, so it counts as passed off.
template <class Mode, class Form>
inline void gouraud_strip(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                          const typename Form::Point* points, const OT_RGB32* colors) {
  shaded_strip<Gouraud, Mode, Form, kPassedMergeOff>(object, rendition, count, points, colors, false);
}

template <class Mode, class Form, unsigned kPassed = kPassedNone>
void flat_strip(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                const typename Form::Point* points);

// ---- The flat family -----------------------------------------------------------------
// The mapped modes have flat fillers of their own; the RGB32 modes draw a flat
// strip as a colorized one of the rendition's colour, after tests that differ
// by form.

template <class Mode, class Form, unsigned kPassed>
void flat_strip(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                const typename Form::Point* points) {
  constexpr bool k2D = std::is_same_v<Form, Form_2D>;
  constexpr bool kDC = std::is_same_v<Form, Form_DC>;
  constexpr bool kDCI = std::is_same_v<Form, Form_DCI>;
  const OT_RGB32* const color = &rendition->colors->color;
  if constexpr (!Mode::kIndex && kDCI) {
    // DCI: straight to the colorized filler, the opaque one by way of the
    // alpha path bit and merge.
    if constexpr (kRgb32Opaque<Mode>) {
      if (alpha_path(rendition))
        return colorized_strip<typename Mode::Alpha_Path, Form, kPassed>(object, rendition, count, points,
                                                                         color, true);
      if constexpr (!Mode::kDepth) {
        OT_RGB32 copy = *color;
        if (merge_on(renderer_of(object), rendition)) {
          copy.a = 255;
          return colorized_strip<Rgb32_Alpha, Form, kPassed>(object, rendition, count, points, &copy, true);
        }
        return colorized_strip<Mode, Form, kPassed | kPassedAlphaPath | kPassedMergeOff>(
            object, rendition, count, points, &copy, true);
      }
    }
    return colorized_strip<Mode, Form, kPassed | (kRgb32Opaque<Mode> ? kPassedAlphaPath : 0u)>(
        object, rendition, count, points, color, true);
  }
  if constexpr (!(kPassed & kPassedPattern)) {
    if (host_pattern(rendition)) return host_flat<Form>(object, rendition, count, points);
  }
  constexpr unsigned kAfterPattern = kPassed | kPassedPattern;
  if constexpr (Mode::kDepth && !k2D && (Mode::kIndex || kDC) && !(kPassed & kPassedDepthOn)) {
    if (depth_off(rendition))
      return flat_strip<typename Mode::Without_Depth, Form, kAfterPattern>(object, rendition, count, points);
  }
  constexpr unsigned kAll =
      kAfterPattern | (Mode::kDepth && !k2D && (Mode::kIndex || kDC) ? kPassedDepthOn : 0u);
  if constexpr (!Mode::kIndex && !k2D && !(Mode::kDepth && kDC)) {
    // 2DI, and DC without depth: the colorized family takes over.
    if constexpr (kRgb32Opaque<Mode> && !Mode::kDepth) {
      if constexpr (kDC) {
        if (alpha_path(rendition))
          return colorized_strip<Rgb32_Alpha, Form, kAll>(object, rendition, count, points, color, true);
        return colorized_strip<Mode, Form, kAll | kPassedAlphaPath>(object, rendition, count, points, color,
                                                                    true);
      } else {
        OT_RGB32 copy = *color;
        if (merge_on(renderer_of(object), rendition)) {
          copy.a = 255;
          return colorized_strip<Rgb32_Alpha, Form, kAll>(object, rendition, count, points, &copy, true);
        }
        return colorized_strip<Mode, Form, kAll | kPassedMergeOff>(object, rendition, count, points, &copy,
                                                                   true);
      }
    } else {
      return colorized_strip<Mode, Form, kAll>(object, rendition, count, points, color, true);
    }
  } else {
    if constexpr (Form::kClips && !(kPassed & kPassedSomething)) {
      if (nothing_to_draw(renderer_of(object), count)) return;
    }
    if constexpr (Form::kFloat) {
      with_rounded<k2D || Mode::kDepth>(count, points, [&](const OT_DCI_Point* rounded) {
        flat_strip<Mode, typename Form::Integer, kAll | kPassedSomething>(object, rendition, count, rounded);
      });
    } else {
      fill_integer<Mode, Flat, Form, kAll>(object, rendition, count, points, nullptr, true);
    }
  }
}

}  // namespace tarn
