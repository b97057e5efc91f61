// Commands named after the renderer's action slots: the arguments of each slot
// are parsed from the script by the types of its slot, and the call goes
// through the slot as a host makes it.
#pragma once

#include <string>
#include <vector>

#include "host/ombra.h"
#include "tools/tarn-render/script_reader.h"

namespace tarn_render {

struct Slot_Context {
  OT_Renderer_Data* renderer = nullptr;
  const OT_Rendition* rendition = nullptr;
  bool has_window = false;
  OT_Int_Rectangle window{0, 0, 0, 0};  // the window in device coordinates
};

// Looks `name` up among the slots. Returns false when there is no slot of that
// name; otherwise parses `args` (labelled with the slot name) and calls the
// slot, or throws Script_Error.
bool run_slot_command(const Slot_Context& context, const std::string& name, const Arguments& args);

// All slot names, in the order of the table.
std::vector<std::string> slot_names();

}  // namespace tarn_render
