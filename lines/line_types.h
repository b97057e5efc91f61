// Line types: a polyline with a line type set is cut into plain pieces by
// walking it with a pattern of lengths; the pieces go back, as thin solid
// polylines, through the mode's own line action.
#pragma once

#include <functional>

#include "host/ombra.h"

namespace tarn {

// Takes a rendition without line type (the recursion ends there), a run's
// point count and its first point.
using Piece_Callback = std::function<void(const OT_Rendition&, int, const OT_DCI_Point*)>;

inline bool has_line_type(const OT_Rendition& rendition) {
  return rendition->line->line_type_set != &OT_Line_Type_Set::None;
}

// Walks the polyline with the rendition's line type set and calls `callback`
// once per run of joined pieces, in order, with a copy of the rendition whose
// line_type_set is None. A per-segment set whose slots don't fit the number
// of segments gives no run.
// `clipping`: the callback is a clipping action, which draws nothing of a
// piece wholly beyond one edge of the hard clip; such pieces are left out.
void decompose_polyline(const OT_Rendition& rendition, int count, const OT_DCI_Point* points,
                        Piece_Callback callback, bool clipping = false);

}  // namespace tarn
