// The two-pass halo: a line whose material is the halo material (type code
// 7) is drawn twice, first wide in the halo colour, then as the line itself.
#pragma once

#include "host/ombra.h"

namespace tarn {

// True if the two-pass drawing applies; `copy` is then the rendition of the
// halo pass. False leaves `copy` unchanged.
bool halo_first_pass(OT_Rendition& copy);

// Turns `copy`, after the halo pass, into the rendition of the line drawn on
// top of it, from the rendition `r` of the call.
void halo_second_pass(const OT_Rendition& r, OT_Rendition& copy);

// The two-pass test of a line action: with the halo material, `draw` is
// called with the halo rendition, then with the line's, and the result is
// true: the two calls are the whole drawing.
template <class Draw>
bool drawn_with_halo(const OT_Rendition& rendition, Draw&& draw) {
  OT_Rendition copy(rendition);
  if (!halo_first_pass(copy)) return false;
  draw(static_cast<const OT_Rendition&>(copy));
  halo_second_pass(rendition, copy);
  draw(static_cast<const OT_Rendition&>(copy));
  return true;
}

}  // namespace tarn
