// `set line.line_type_set ...`: a line type set made from a script, with the
// storage that its pointers reach. The session keeps every set it made for
// as long as it runs, since a rendition points to a set without counting it.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "host/ombra.h"
#include "tools/tarn-render/script_reader.h"

namespace tarn_render {

struct Script_Line_Type_Set {
  struct Definition {
    std::vector<double> lengths;
    OT_Line_Type_Definition record;
  };

  OT_Line_Type_Set set;
  std::vector<std::unique_ptr<Definition>> definitions;
  std::vector<std::uint32_t> skips;
};

// The values after the field name (anything but `none`):
//   [per_segment] [scale S] [first N] [end N] [skips A,B,...]
//   type LENGTH... [length_scale X] [start X] [end_length X] [phase X] [end_style N]
//   [type ...]
// `type none` is a slot without line type. Throws Script_Error naming what
// is wrong.
std::unique_ptr<Script_Line_Type_Set> parse_line_type_set(const Arguments& values);

// At most how many pieces `set` cuts a polyline of `segments` segments and
// `length` in all into: a piece for each entry of each round of the densest
// type, and the solid parts of every segment.
double most_line_type_pieces(const OT_Line_Type_Set& set, double length, std::size_t segments);

}  // namespace tarn_render
