// The edges of a triangle strip instead of its surface: advanced_options bit
// value 32 in the RGB32 depth modes.
#pragma once

#include "frame/software_z_buffer.h"

namespace tarn {

inline bool outline_asked(const OT_Rendition& rendition) {
  return (rendition->raster->advanced_options & OT_Advanced_Strip_Outline) != 0;
}

// Three polylines that are exactly the strip's edges: all points, the even
// ones, and (above three points) the odd ones, drawn with a copy of the
// rendition that lacks the outline bit, with the face's depth bias handed to
// the polygon actions through edge_depth_bias.
void draw_strip_outline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                        const OT_DCI_Point* points);

}  // namespace tarn
