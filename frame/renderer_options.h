// The renderer's named options and the two setters behind "ZBuffer Write"
// and "ZBuffer Test".
#pragma once

#include "frame/software_z_buffer.h"

namespace tarn {

// Adds the 18 options to `table` in their order and records the eleven kept
// handles. "Mask Cache" is added only when the table lacks it, so a cache the
// table already carries survives.
void create_options(OT_Option_Table& table, option_handles& handles);

// Stores the setters' addresses into the values of "ZBuffer Write" and
// "ZBuffer Test" of the current table, on private copies of the values.
void install_depth_setters(OT_Option_Table& current);

// The setters a client finds in the current table and calls between
// primitives: the first takes its byte by value, the second its int through a
// pointer. They take the host's renderer type, as clients call them through
// it.
void set_depth_write(OT_Renderer_Data* renderer, byte value);
void set_depth_test(OT_Renderer_Data* renderer, const int* value);

using Depth_Write_Setter = void (*)(OT_Renderer_Data*, byte);
using Depth_Test_Setter = void (*)(OT_Renderer_Data*, const int*);

}  // namespace tarn
