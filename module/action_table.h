// Which function goes into which action slot, by mode: the only place where
// the mode is decided.
#pragma once

#include "frame/software_z_buffer.h"

namespace tarn {

enum class Mode : int {
  rgb32_alpha = 0,    // no depth, RGB32, blending
  rgb32 = 1,          // no depth, RGB32, opaque
  mapped = 2,         // no depth, 8-bit index
  z_mapped = 3,       // depth, 8-bit index
  z_rgb32_alpha = 4,  // depth, RGB32, blending
  z_rgb32 = 5,        // depth, RGB32, opaque
};
inline constexpr int kModeCount = 6;

Mode select_mode(int buffer_depth, bool direct, bool alpha);

// One function per slot; null leaves the slot as it stands.
#define TARN_DECLARE_MODE_ACTION(name, ...) OT_Action<__VA_ARGS__>::Function name = nullptr;
struct Mode_Actions {
  OT_ACTION_SLOTS(TARN_DECLARE_MODE_ACTION)
};
#undef TARN_DECLARE_MODE_ACTION

const Mode_Actions& mode_actions(Mode mode);

// Installs the actions of the current options: polygons, the mode's row, the
// colour buffer services by colour system, and the tiled actions when
// `tiling` is on. Never clears a slot it does not set.
void install_actions(Software_Z_Buffer& renderer, bool tiling);

}  // namespace tarn
