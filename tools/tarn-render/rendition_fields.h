// `set SECTION.FIELD VALUE...`: the rendition fields that a renderer reads,
// each written on a private copy of the rendition and its section.
#pragma once

#include <string>
#include <vector>

#include "host/ombra.h"
#include "tools/tarn-render/script_reader.h"

namespace tarn_render {

// `args` are the tokens after `set`: the field name, then its values.
void set_rendition_field(OT_Rendition& rendition, const Arguments& args);

// "device.hard_clip" and the rest, with the values each takes, for messages
// and documentation.
std::vector<std::string> rendition_field_names();

}  // namespace tarn_render
