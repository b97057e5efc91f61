// The commands that give surfaces more than one colour: a texture from a PNG
// file, the lit basic material, and the lights of the scene.
#include <filesystem>
#include <string>

#include "tools/tarn-render/png_reader.h"
#include "tools/tarn-render/session.h"

namespace tarn_render {

namespace {

float non_negative(const Arguments& args, std::size_t i, const std::string& name) {
  const float value = args.real32(i, name);
  if (value < 0.0f) args.fail(name + ": " + args.text(i) + " is below 0");
  return value;
}

// The optional words of a lit material, [specular R G B] [shininess S], in
// any order among the other words of a command. Returns the number of tokens
// taken at `i` (0 when the word there is not one of them).
std::size_t parse_lit_word(const Arguments& args, std::size_t i, OT_Basic_Material& material) {
  const std::string& word = args.text(i);
  if (args.token(i).quoted) return 0;
  if (word == "specular") {
    if (i + 3 >= args.size()) args.fail("`specular` takes 3 numbers R G B");
    for (int c = 0; c < 3; ++c)
      material.specular[c] = non_negative(args, i + 1 + c, std::string("specular ") + "RGB"[c]);
    return 4;
  }
  if (word == "shininess") {
    if (i + 1 >= args.size()) args.fail("`shininess` takes 1 number");
    material.shininess = non_negative(args, i + 1, "shininess");
    return 2;
  }
  return 0;
}

}  // namespace

// texture FILE [wrap WU WV] [modulate] [specular R G B] [shininess S]
void Session::texture(const Arguments& args) {
  constexpr const char* grammar = "FILE [wrap WU WV] [modulate] [specular R G B] [shininess S]";
  if (args.size() == 0) args.fail(std::string("expected ") + grammar + ", got nothing");
  std::filesystem::path file(args.text(0));
  if (file.is_relative() && !script_dir_.empty()) file = std::filesystem::path(script_dir_) / file;

  auto* material = new OT_Basic_Textured_Material;
  const OT_Material owner(material);
  std::int32_t wrap_u = 2, wrap_v = 2;
  bool modulate = false;
  for (std::size_t i = 1; i < args.size();) {
    if (const std::size_t taken = parse_lit_word(args, i, *material)) {
      i += taken;
    } else if (!args.token(i).quoted && args.text(i) == "wrap") {
      if (i + 2 >= args.size()) args.fail("`wrap` takes 2 integers WU WV");
      wrap_u = args.int32(i + 1, "WU");
      wrap_v = args.int32(i + 2, "WV");
      i += 3;
    } else if (!args.token(i).quoted && args.text(i) == "modulate") {
      modulate = true;
      i += 1;
    } else {
      args.fail("unexpected '" + args.text(i) + "'; expected " + grammar);
    }
  }

  std::string error;
  const OT_Shared_Image image = read_png_texture(file.string(), error);
  if (!image) args.fail("cannot read " + file.string() + ": " + error);
  OT_Texture texture(new OT_Texture_Data(image));
  texture->wrap_u = wrap_u;
  texture->wrap_v = wrap_v;
  texture->modulate = modulate ? 1 : 0;
  material->texture_record = texture;
  rendition_.set_material(owner);
}

// material basic [specular R G B] [shininess S] | material none
void Session::material(const Arguments& args) {
  if (args.size() == 1 && args.text(0) == "none") {
    rendition_.set_material(OT_Material());
    return;
  }
  if (args.size() == 0 || args.text(0) != "basic")
    args.fail("expected `basic [specular R G B] [shininess S]` or `none`");
  auto* material = new OT_Basic_Material;
  const OT_Material owner(material);
  for (std::size_t i = 1; i < args.size();) {
    const std::size_t taken = parse_lit_word(args, i, *material);
    if (!taken) args.fail("unexpected '" + args.text(i) + "'; expected `specular R G B` or `shininess S`");
    i += taken;
  }
  rendition_.set_material(owner);
}

// light ambient R G B | light directional X Y Z R G B | light none
void Session::light(const Arguments& args) {
  const std::string what = args.size() ? args.text(0) : "";
  if (what == "none") {
    args.expect_count(1, "`none` alone");
    lighting_ = OT_Lighting();
    rendition_.writable_colors()->lighting = nullptr;
    return;
  }
  if (what == "ambient") {
    const Arguments colour = args.from(1, args.label() + " ambient");
    colour.expect_count(3, "3 numbers R G B (0 or more)");
    lighting_.ambient_red = non_negative(colour, 0, "R");
    lighting_.ambient_green = non_negative(colour, 1, "G");
    lighting_.ambient_blue = non_negative(colour, 2, "B");
  } else if (what == "directional") {
    const Arguments light = args.from(1, args.label() + " directional");
    light.expect_count(6, "6 numbers X Y Z (towards the light) and R G B (0 or more)");
    const OT_Vector direction{light.real32(0, "X"), light.real32(1, "Y"), light.real32(2, "Z")};
    if (direction.x == 0.0f && direction.y == 0.0f && direction.z == 0.0f)
      light.fail("the direction 0 0 0 points nowhere");
    lighting_.lights.push_back(
        {direction, non_negative(light, 3, "R"), non_negative(light, 4, "G"), non_negative(light, 5, "B")});
  } else {
    args.fail("expected `ambient R G B`, `directional X Y Z R G B` or `none`");
  }
  // A fresh colours section, so that whoever keys on the rendition's change
  // sees that the light changed.
  rendition_.writable_colors()->lighting = &lighting_;
}

}  // namespace tarn_render
