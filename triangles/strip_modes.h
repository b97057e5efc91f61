// The four coordinate forms of the triangle actions as types,
// and what one strip call knows once its entry tests are passed.
#pragma once

#include <cstdint>

#include "frame/software_z_buffer.h"
#include "pixel/face_pattern.h"
#include "pixel/merge.h"
#include "pixel/modes.h"

namespace tarn {

// ---- Modes: pixel/modes.h; what the triangle families ask of them --------------

template <class Mode>
inline constexpr bool kRgb32Opaque = !Mode::kIndex && !Mode::kAlpha;
// The strip outline belongs to the RGB32 depth modes.
template <class Mode>
inline constexpr bool kOutlines = !Mode::kIndex && Mode::kDepth;

// ---- Forms ----------------------------------------------------------------------
// 2D and DC are floats rounded into 2DI and DCI; 2D and 2DI clip.

struct Form_DCI {
  using Point = OT_DCI_Point;
  static constexpr bool kFloat = false, kClips = false;
};
struct Form_2DI {
  using Point = OT_DCI_Point;
  static constexpr bool kFloat = false, kClips = true;
};
struct Form_DC {
  using Point = OT_Point;
  using Integer = Form_DCI;
  static constexpr bool kFloat = true, kClips = false;
};
struct Form_2D {
  using Point = OT_Point;
  using Integer = Form_2DI;
  static constexpr bool kFloat = true, kClips = true;
};

// ---- Entry tests known to have passed -------------------------------------------
// An action that hands a call on passes along which tests it has already
// passed, so that the receiver skips them; none of them can change during a
// call.
enum Passed : unsigned {
  kPassedNone = 0,
  kPassedPattern = 1,     // pattern not above 74
  kPassedAlphaPath = 2,   // advanced_options bit value 8 clear
  kPassedOutline = 4,     // advanced_options bit value 32 clear
  kPassedDepthOn = 8,     // depth_enabled not zero
  kPassedSomething = 16,  // a colour image and a count of 2 or more
  kPassedMergeOff = 32,   // neither force_merge nor write mode 20
};

// ---- One strip call ----------------------------------------------------------------

// What a filler needs of the call: the renderer, the rendition, the list,
// its colours (null for a flat strip) and the face fill.
struct Strip_Call {
  const Software_Z_Buffer& r;
  const OT_Rendition& rendition;
  int count;
  const OT_DCI_Point* points;
  const OT_RGB32* colors;
  bool single_color;
  Stipple_Flags flags;
  Face_Fill fill;
  Pattern_Source source;

  Strip_Call(const Software_Z_Buffer& renderer, const OT_Rendition& rend, int n, const OT_DCI_Point* p,
             const OT_RGB32* c = nullptr, bool single = true)
      : r(renderer),
        rendition(rend),
        count(n),
        points(p),
        colors(c),
        single_color(single),
        flags(stipple_flags(rend)),
        fill(face_fill(rend->face->pattern, flags)),
        source(fill == Face_Fill::pattern ? Pattern_Source::of(rend, flags) : Pattern_Source{}) {}

  // The run of n points from `first`, with its colours.
  Strip_Call run(int first, int n) const {
    Strip_Call part = *this;
    part.count = n;
    part.points = points + first;
    if (colors && !single_color) part.colors = colors + first;
    return part;
  }
  // Triangle i alone, in its first colour (colours one a point).
  Strip_Call one_color(int i) const {
    Strip_Call part = *this;
    part.count = 3;
    part.points = points + i;
    part.colors = colors + i;
    part.single_color = true;
    return part;
  }
  // The colour of triangle i.
  OT_RGB32 color_of(int i) const { return colors[single_color ? 0 : i]; }
};

}  // namespace tarn
