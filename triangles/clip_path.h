// The clip path of the 2D and 2DI triangle actions: points are classified
// against the hard clip; runs wholly inside go to the all-inside filler as
// strips, triangles wholly out on one side are skipped, and the rest are
// walked one by one in the clipping form of the walk.
#pragma once

#include <memory>

#include "pixel/limits.h"
#include "pixel/outcode_buffer.h"
#include "triangles/triangle_clipper.h"
#include "triangles/triangle_walk.h"

namespace tarn {

// The run loop over a strip whose outcodes are known. inside(first, n) gets a
// run of n >= 3 points all inside; cross(p) gets the triangle starting at
// point p. The triangle index p is also the colour index of a list.
template <class Inside, class Cross>
inline void run_clip_loop(int count, const short* codes, Inside&& inside, Cross&& cross) {
  int p = 0;
  while (p + 2 < count) {
    while (codes[p] & codes[p + 1] & codes[p + 2])
      if (++p + 2 >= count) return;
    // A crossing triangle is walked even if it lies wholly beyond one side:
    // rows and columns clip it away.
    while (codes[p] | codes[p + 1] | codes[p + 2]) {
      cross(p);
      if (++p + 2 >= count) return;
    }
    const int first = p;
    int third = p + 2;
    do ++third;
    while (third < count && codes[third] == 0);
    inside(first, third - first);
    // The next triangle looked at is the first holding the offending point.
    p = third - 2;
  }
}

// One crossing triangle, with its points' colours when the filler walks
// them: beyond the walk limits it is first cut to them by the exact clipper,
// which gives the new points colours too; then each piece is walked against
// the hard clip.
template <class Filler>
inline void cross_triangle(Filler& filler, const OT_Rendition& rendition, const OT_DCI_Point* triangle,
                           std::int32_t origin_x, std::int32_t origin_y, const OT_RGB32* colors = nullptr) {
  using Vertex = typename Filler::Vertex;
  const Rect_Clip clip(rendition->device->hard_clip, origin_x);
  auto walk = [&](const OT_DCI_Point* p, const OT_RGB32* c) {
    walk_triangle(filler, Vertex::of(p, c, 0), Vertex::of(p, c, 1), Vertex::of(p, c, 2), origin_x, origin_y,
                  clip);
  };
  short codes[3];
  OB_Clip(kWalkLimits, 3, triangle, codes);
  if ((codes[0] | codes[1] | codes[2]) == 0) return walk(triangle, colors);
  OT_DCI_Point pieces[kMaxClipVertices];
  OT_RGB32 piece_colors[kMaxClipVertices];
  const int n = clip_triangle_to_rectangle(triangle, colors, kWalkLimits, pieces, piece_colors);
  for (int i = 0; i + 2 < n; ++i) walk(pieces + i, piece_colors + i);
}

}  // namespace tarn
