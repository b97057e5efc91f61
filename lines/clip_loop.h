// The clip path of the 2DI polylines, shared by the line families: the
// outcodes of the list, inside runs, segments cut to the line limits, and the
// last point when it alone is inside.
#pragma once

#include "lines/segment_clipper.h"
#include "pixel/outcode_buffer.h"

namespace tarn {

// The steps common to every family, from the outcodes on. A family says
// what becomes of the pieces:
//   inside(first, n)                 points first.. first+n-1, wholly inside
//   cut(i, out) -> bool              segment i cut to the line limits
//   cut_inside(i, cut)               a cut segment that lies wholly inside
//   crossing(i, cut, Clipped_Segment) a cut segment walked clipped
//   last_dot()                       the last point when it alone is inside
template <class Family>
void clip_polyline(const Software_Z_Buffer& r, const OT_Rendition& rendition, int count,
                   const OT_DCI_Point* points, const Family& family) {
  const OT_Int_Rectangle& clip = rendition->device->hard_clip;
  Outcode_Buffer buffer(count);
  short* codes = buffer.data();
  const int result = OB_Clip(clip, count, points, codes);
  if (result == count) return family.inside(0, count);
  if (result == 0) return;
  codes[count] = OT_Outcode_End;
  codes[count + 1] = 0;
  // A segment leaves out its end: a last point that alone is inside is
  // written here, by the mode's dot.
  if (codes[count - 1] == 0 && codes[count - 2] != 0) family.last_dot();
  int i = 0;
  for (;;) {
    while (codes[i] & codes[i + 1]) ++i;
    if (codes[i + 1] == OT_Outcode_End) return;
    if (codes[i] | codes[i + 1]) {
      OT_DCI_Point cut[2];
      if (family.cut(i, cut)) {
        const short start_code = local_outcode(clip, cut[0]), end_code = local_outcode(clip, cut[1]);
        if ((start_code | end_code) == 0)
          family.cut_inside(i, cut);
        else if ((start_code & end_code) == 0)
          family.crossing(i, cut, Clipped_Segment(clip, r.origin_x, r.origin_y, start_code, end_code));
      }
      ++i;
      continue;
    }
    // An inside run; its last point is written again by the crossing
    // segment that follows it, which shows under alpha.
    int j = i + 1;
    while (codes[j + 1] == 0) ++j;
    family.inside(i, j - i + 1);
    i = j;
  }
}

}  // namespace tarn
