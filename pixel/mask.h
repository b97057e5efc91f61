// Whether a complex clip mask applies to a primitive.
#pragma once

#include "frame/software_z_buffer.h"

namespace tarn {

// No masks are kept yet, so none is ever in force and every filler takes its
// unmasked path.
inline bool mask_in_force(const Software_Z_Buffer&, const OT_Rendition&) { return false; }

}  // namespace tarn
