// The tests at the entry of the actions that hand a call on unchanged.
#pragma once

#include "frame/software_z_buffer.h"
#include "pixel/rounding.h"

namespace tarn {

// Depth-buffered actions hand over to the same shape without depth.
inline bool depth_off(const OT_Rendition& rendition) { return rendition->device->depth_enabled == 0; }

// advanced_options bit value 8: colour through the alpha path.
inline bool alpha_path(const OT_Rendition& rendition) {
  return (rendition->raster->advanced_options & OT_Advanced_Alpha_Path) != 0;
}

// The clipping forms return at once without an image or a real list.
inline bool nothing_to_draw(const Software_Z_Buffer& r, int count) { return !r.color_image || count < 2; }

// Wide and patterned lines are the host's.
inline bool host_line(const OT_Rendition& rendition) {
  return rendition->line->pattern != 0 || rendition->line->weight > 1;
}

}  // namespace tarn
