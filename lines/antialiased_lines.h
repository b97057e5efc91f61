// Antialiased thin lines, in the RGB32 modes without depth: at each step of
// the major axis three pixels across the line, weighted by their distance
// from it. Unlike every other line routine these address the image at the
// points' own x and y: the window origin is not subtracted.
#pragma once

#include <optional>

#include "frame/software_z_buffer.h"
#include "pixel/merge.h"

namespace tarn {

// The three routines: the colour stored at the line's centre, the weight
// blend of the colour's alpha, and that blend behind the complex clip's mask,
// which serves opaque colours too.
enum class Antialiased_Kind { Opaque, Blending, Masked };

// Bit value 2 of advanced_options asks for it; merge control takes
// precedence and draws the merge form instead.
inline bool antialiased_lines(const Software_Z_Buffer& r, const OT_Rendition& rendition) {
  return (rendition->raster->advanced_options & OT_Advanced_Antialiased_Lines) != 0 &&
         !merge_on(r, rendition);
}

// The routine the thin-line walker of Mode hands antialiased work to.
template <class Mode>
constexpr Antialiased_Kind antialiased_kind(bool masked) {
  return masked         ? Antialiased_Kind::Masked
         : Mode::kAlpha ? Antialiased_Kind::Blending
                        : Antialiased_Kind::Opaque;
}

// The same for the inside runs of a 2DI list, which go to the walker: none
// in the mapped and depth modes, which don't look at the bit.
template <class Mode>
std::optional<Antialiased_Kind> antialiased_runs(const Software_Z_Buffer& r, const OT_Rendition& rendition,
                                                 bool masked) {
  if constexpr (Mode::kIndex || Mode::kDepth)
    return std::nullopt;
  else if (antialiased_lines(r, rendition))
    return antialiased_kind<Mode>(masked);
  return std::nullopt;
}

// Points trusted to lie in the image. Segments are half open; draw_end
// writes the last point's triple after the last segment. A colour a
// segment, or colors[0] for all when single_color.
void draw_antialiased_polyline(Antialiased_Kind kind, const Software_Z_Buffer& r,
                               const OT_Rendition& rendition, int count, const OT_DCI_Point* points,
                               const OT_RGB32* colors, bool single_color, bool draw_end);

// Points anywhere, in the rendition's colour, clipped to the hard clip by
// this family's own driver: runs wholly inside go whole to the polyline
// above, crossing segments are cut and keep the pixels and weights of the
// uncut segment.
void draw_antialiased_2di_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                   const OT_DCI_Point* points);

}  // namespace tarn
