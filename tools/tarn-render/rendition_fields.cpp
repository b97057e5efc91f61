#include "tools/tarn-render/rendition_fields.h"

#include <cstdint>

namespace tarn_render {

namespace {

using Setter = void (*)(OT_Rendition& rendition, const Arguments& values);
// For fields whose value points to what the session must keep.
using Owning_Setter = void (*)(OT_Rendition& rendition, const Arguments& values, Rendition_Storage& storage);

struct Field {
  const char* name;    // SECTION.FIELD
  const char* values;  // what it takes, for the documentation
  Setter set;
  Owning_Setter set_owned = nullptr;
};

OT_Int_Rectangle rectangle(const Arguments& v) {
  v.expect_count(4, "4 integers L R B T");
  return {v.int32(0, "L"), v.int32(1, "R"), v.int32(2, "B"), v.int32(3, "T")};
}

OT_RGB32 color(const Arguments& v, std::size_t first = 0) {
  return OT_RGB32::rgba(int(v.integer(first, "R", 0, 255)), int(v.integer(first + 1, "G", 0, 255)),
                        int(v.integer(first + 2, "B", 0, 255)), int(v.integer(first + 3, "A", 0, 255)));
}

OT_RGB32 one_color(const Arguments& v) {
  v.expect_count(4, "4 integers R G B A");
  return color(v);
}

std::int32_t one_int(const Arguments& v) {
  v.expect_count(1, "1 integer");
  return v.int32(0, "value");
}

byte one_byte(const Arguments& v) {
  v.expect_count(1, "1 integer 0..255");
  return byte(v.integer(0, "value", 0, 255));
}

std::uint32_t one_word(const Arguments& v) {
  v.expect_count(1, "1 integer 0..0xFFFFFFFF");
  return std::uint32_t(v.integer(0, "value", 0, 0xFFFFFFFF));
}

bool is_none(const Arguments& v) { return v.size() == 1 && !v.token(0).quoted && v.text(0) == "none"; }

void set_complex_clip(OT_Rendition& r, const Arguments& v) {
  if (is_none(v)) {
    r.writable_device()->complex_clip.reset();
    return;
  }
  if (v.size() % 2 != 0 || v.size() < 6)
    v.fail("expected `none` or at least 3 vertices as X Y pairs, got " + std::to_string(v.size()) +
           " numbers");
  std::vector<OT_Point> points;
  for (std::size_t i = 0; i < v.size(); i += 2) {
    const std::string n = "vertex " + std::to_string(i / 2 + 1);
    points.push_back({v.real32(i, n + " x"), v.real32(i + 1, n + " y"), 0.0f});
  }
  r.writable_device()->complex_clip = OT_Contour_Set(int(points.size()), points.data(), true);
}

void set_material(OT_Rendition& r, const Arguments& v) {
  if (is_none(v)) {
    r.set_material(OT_Material());
    return;
  }
  if (v.size() == 0 || v.text(0) != "halo" || v.size() != 10)
    v.fail("expected `none` or `halo WEIGHT R G B A R G B A` (weight, halo colour, inner colour), got " +
           std::to_string(v.size()) + " values");
  OT_Material material(new OT_Material_Data);
  if (!material) throw Tool_Failure("out of memory for a material");
  material->code = 7;
  material->halo_weight = v.int32(1, "WEIGHT");
  material->halo_color = color(v, 2);
  material->halo_inner_color = color(v, 6);
  r.set_material(material);
}

void set_line_type_set(OT_Rendition& r, const Arguments& v, Rendition_Storage& storage) {
  if (v.size() == 0) v.fail("expected `none` or a line type set: [per_segment] ... type LENGTH...");
  if (is_none(v)) {
    r.writable_line()->line_type_set = &OT_Line_Type_Set::None;
    return;
  }
  storage.line_type_sets.push_back(parse_line_type_set(v));
  r.writable_line()->line_type_set = &storage.line_type_sets.back()->set;
}

// W H, then H rows of (W + 7) / 8 bytes, least significant bit first.
void set_user_pattern(OT_Rendition& r, const Arguments& v) {
  if (is_none(v)) {
    r.writable_face()->user_pattern.reset();
    return;
  }
  if (v.size() < 2)
    v.fail("expected `none` or WIDTH HEIGHT and the bytes of each row, got " + std::to_string(v.size()) +
           " values");
  const int width = int(v.integer(0, "WIDTH", 1, 1024));
  const int height = int(v.integer(1, "HEIGHT", 1, 1024));
  const int row_bytes = (width + 7) / 8;
  const std::size_t expected = std::size_t(row_bytes) * height;
  if (v.size() - 2 != expected)
    v.fail("expected " + std::to_string(expected) + " bytes (" + std::to_string(height) + " rows of " +
           std::to_string(row_bytes) + "), got " + std::to_string(v.size() - 2));
  std::vector<byte> bits;
  for (std::size_t i = 2; i < v.size(); ++i)
    bits.push_back(byte(v.integer(i, "byte " + std::to_string(i - 1), 0, 255)));
  OT_User_Pattern pattern(new OT_User_Pattern_Data(width, height, bits.data(), row_bytes));
  if (!pattern) throw Tool_Failure("out of memory for a user pattern");
  r.writable_face()->user_pattern = pattern;
}

#define TARN_INT_FIELD(section, field)                                                           \
  {                                                                                              \
#section "." #field, "integer",                                                              \
        [](OT_Rendition & r, const Arguments& v) { r.writable_##section()->field = one_int(v); } \
  }
#define TARN_BYTE_FIELD(section, field)                                                           \
  {                                                                                               \
#section "." #field, "0..255",                                                                \
        [](OT_Rendition & r, const Arguments& v) { r.writable_##section()->field = one_byte(v); } \
  }
#define TARN_WORD_FIELD(section, field)                                                           \
  {                                                                                               \
#section "." #field, "0..0xFFFFFFFF",                                                         \
        [](OT_Rendition & r, const Arguments& v) { r.writable_##section()->field = one_word(v); } \
  }

const Field fields[] = {
    {"device.extent", "L R B T",
     [](OT_Rendition& r, const Arguments& v) { r.writable_device()->extent = rectangle(v); }},
    {"device.hard_clip", "L R B T",
     [](OT_Rendition& r, const Arguments& v) { r.writable_device()->hard_clip = rectangle(v); }},
    {"device.complex_clip", "none | X Y X Y X Y ...", set_complex_clip},
    TARN_BYTE_FIELD(device, depth_enabled),

    {"colors.color", "R G B A", [](OT_Rendition& r, const Arguments& v) { r.set_color(one_color(v), true); }},
    TARN_WORD_FIELD(colors, color_index),
    {"colors.contrast_color", "R G B A",
     [](OT_Rendition& r, const Arguments& v) { r.set_contrast_color(one_color(v), true); }},
    TARN_BYTE_FIELD(colors, contrast_index),
    {"colors.window_color", "R G B A",
     [](OT_Rendition& r, const Arguments& v) { r.writable_colors()->window_color = one_color(v); }},
    TARN_BYTE_FIELD(colors, window_index),
    {"colors.material", "none | halo WEIGHT R G B A R G B A", set_material},

    TARN_INT_FIELD(line, pattern),
    TARN_INT_FIELD(line, first_end_style),
    TARN_INT_FIELD(line, last_end_style),
    TARN_INT_FIELD(line, join_style),
    TARN_INT_FIELD(line, weight),
    TARN_BYTE_FIELD(line, halo_flag_a),
    TARN_BYTE_FIELD(line, halo_flag_b),
    {"line.line_type_set",
     "none | [per_segment] [scale S] [first N] [end N] [skips A,B...] type LENGTH... [length_scale X] "
     "[start X] [end_length X] [phase X] [end_style N] [type ...]",
     nullptr, set_line_type_set},

    TARN_INT_FIELD(face, pattern),
    {"face.user_pattern", "none | WIDTH HEIGHT BYTE ...", set_user_pattern},
    TARN_INT_FIELD(face, depth_bias),

    TARN_INT_FIELD(marker, symbol),

    TARN_INT_FIELD(raster, pattern_origin_x),
    TARN_INT_FIELD(raster, pattern_origin_y),
    TARN_INT_FIELD(raster, write_mode),
    TARN_WORD_FIELD(raster, stipple_flags),
    TARN_WORD_FIELD(raster, texture_flags),
    TARN_INT_FIELD(raster, shading),
    TARN_WORD_FIELD(raster, advanced_options),
};

#undef TARN_INT_FIELD
#undef TARN_BYTE_FIELD
#undef TARN_WORD_FIELD

}  // namespace

void set_rendition_field(OT_Rendition& rendition, const Arguments& args, Rendition_Storage& storage) {
  if (args.size() == 0) args.fail("expected SECTION.FIELD and its values, got nothing");
  const std::string& name = args.text(0);
  for (const Field& field : fields) {
    if (name == field.name) {
      const Arguments values = args.from(1, args.label() + " " + name);
      if (field.set_owned)
        field.set_owned(rendition, values, storage);
      else
        field.set(rendition, values);
      return;
    }
  }
  // Name the fields of the section when the section at least is right.
  const std::string section = name.substr(0, name.find('.'));
  std::string known;
  for (const Field& field : fields) {
    const std::string_view full(field.name);
    if (full.substr(0, full.find('.')) == section) known += (known.empty() ? "" : ", ") + std::string(full);
  }
  if (known.empty())
    args.fail("unknown field '" + name + "': sections are device, colors, line, face, marker, raster");
  args.fail("unknown field '" + name + "'; the fields of " + section + " are " + known);
}

std::vector<std::string> rendition_field_names() {
  std::vector<std::string> names;
  for (const Field& field : fields) names.push_back(std::string(field.name) + " " + field.values);
  return names;
}

}  // namespace tarn_render
