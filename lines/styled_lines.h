// The styled-line tests of the line actions, by mode: line types are taken
// apart only by the RGB32 alpha and mapped modes without depth, the two-pass
// halo is drawn only by the RGB32 modes. `Action` is the mode's own line
// action, which the pieces and the passes re-enter.
#pragma once

#include "lines/halo.h"
#include "lines/line_types.h"

namespace tarn {

template <class Mode>
inline constexpr bool kTakesLineTypes = !Mode::kDepth && (Mode::kIndex || Mode::kAlpha);
template <class Mode>
inline constexpr bool kDrawsHalo = !Mode::kIndex;

using Line_Action = void (*)(OT_Renderer_Data*, const OT_Rendition&, int, const OT_DCI_Point*);

// True if the rendition's line type took the call: its pieces went to Action.
// kClipping: Action is a clipping (2DI) action.
template <class Mode, Line_Action Action, bool kClipping = false>
bool drawn_as_line_type(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                        const OT_DCI_Point* points) {
  if constexpr (kTakesLineTypes<Mode>) {
    if (has_line_type(rendition)) {
      decompose_polyline(
          rendition, count, points,
          [object](const OT_Rendition& r, int n, const OT_DCI_Point* p) { Action(object, r, n, p); },
          kClipping);
      return true;
    }
  }
  return false;
}

// True if the halo material took the call: both passes went to Action.
template <class Mode, Line_Action Action>
bool drawn_as_halo(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                   const OT_DCI_Point* points) {
  if constexpr (kDrawsHalo<Mode>)
    return drawn_with_halo(rendition, [&](const OT_Rendition& r) { Action(object, r, count, points); });
  return false;
}

}  // namespace tarn
