// `set SECTION.FIELD VALUE...`: the rendition fields that a renderer reads,
// each written on a private copy of the rendition and its section.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/ombra.h"
#include "tools/tarn-render/line_type_sets.h"
#include "tools/tarn-render/script_reader.h"

namespace tarn_render {

// What renditions point to without counting it, kept for the whole session:
// the line type sets that `set line.line_type_set` made.
struct Rendition_Storage {
  std::vector<std::unique_ptr<Script_Line_Type_Set>> line_type_sets;
};

// `args` are the tokens after `set`: the field name, then its values.
void set_rendition_field(OT_Rendition& rendition, const Arguments& args, Rendition_Storage& storage);

// "device.hard_clip" and the rest, with the values each takes, for messages
// and documentation.
std::vector<std::string> rendition_field_names();

}  // namespace tarn_render
