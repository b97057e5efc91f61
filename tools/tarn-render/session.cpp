#include "tools/tarn-render/session.h"

#include <cstdint>
#include <filesystem>
#include <iostream>
#include <span>

#include "tools/tarn-render/buffers.h"
#include "tools/tarn-render/png_writer.h"
#include "tools/tarn-render/rendition_fields.h"

namespace tarn_render {

namespace {

struct Mode {
  const char* name;
  int buffer_depth;
  OT_Color_System color_system;
  bool alpha_blending;
};

constexpr Mode modes[] = {
    {"rgb32_alpha", 0, OT_Color_System_Direct, true},    {"rgb32", 0, OT_Color_System_Direct, false},
    {"mapped", 0, OT_Color_System_Mapped, false},        {"z_mapped", 16, OT_Color_System_Mapped, false},
    {"z_rgb32_alpha", 16, OT_Color_System_Direct, true}, {"z_rgb32", 16, OT_Color_System_Direct, false},
};

// The setters that the renderer keeps in the pointer options "ZBuffer Write"
// and "ZBuffer Test" of its current table.
using Depth_Write_Setter = void (*)(OT_Renderer_Data* renderer, byte value);
using Depth_Test_Setter = void (*)(OT_Renderer_Data* renderer, const int* value);

// Window update callback for the `update` command: says what the renderer
// reported.
void print_update(void*, const OT_DCI_Point* first, const OT_DCI_Point* last, const OT_Shared_Image*, int x,
                  int y) {
  std::cout << "update first=" << first->x << ',' << first->y << " last=" << last->x << ',' << last->y
            << " x=" << x << " y=" << y << '\n';
}

std::wstring widen(const std::string& text) { return std::wstring(text.begin(), text.end()); }

constexpr std::int64_t largest_window = 8192;
constexpr std::int64_t largest_origin = 1 << 28;

}  // namespace

const Session::Command_Entry Session::commands_[] = {
    {"window", &Session::window},
    {"origin", &Session::origin},
    {"mode", &Session::mode},
    {"establish", &Session::establish_command},
    {"palette", &Session::palette},
    {"option", &Session::option},
    {"set", &Session::set},
    {"probe", &Session::probe},
    {"save", &Session::save},
    {"echo", &Session::echo},
    {"update", &Session::update},
    {"depth_write", &Session::depth_write},
    {"depth_test", &Session::depth_test},
    {"texture", &Session::texture},
    {"material", &Session::material},
    {"light", &Session::light},
};

Session::Session(const Settings& settings)
    : output_dir_(settings.output_dir), script_dir_(settings.script_dir) {
  std::string error;
  if (!module_.open(settings.module_path, error)) throw Tool_Failure("cannot load the module: " + error);
  renderer_ = module_.create();
  if (!renderer_) throw Tool_Failure("the module " + settings.module_path + " made no renderer");
  if (!renderer_->image_factory.function) renderer_->image_factory = {nullptr, OB_Standard_Image_Factory};
  renderer_->window_update = {nullptr, print_update};
  rendition_ = OT_Rendition::make_default(1, 1, renderer_->requested_renderer_options.palette());
}

Session::~Session() {
  rendition_.reset();
  if (renderer_) module_.destroy(renderer_);
}

std::vector<std::string> Session::command_names() {
  std::vector<std::string> names;
  for (const Command_Entry& entry : commands_) names.emplace_back(entry.name);
  return names;
}

void Session::run(const Script_Line& line) {
  const Token& command = line.tokens.front();
  if (command.quoted)
    throw Script_Error("expected a command, got the quoted string \"" + command.text + "\"");
  const Arguments args(command.text, std::span(line.tokens).subspan(1));
  for (const Command_Entry& entry : commands_) {
    if (command.text == entry.name) {
      (this->*entry.run)(args);
      return;
    }
  }
  if (!run_slot_command(slot_context(), command.text, args))
    throw Script_Error("unknown command '" + command.text + "'");
}

// ---- Renderer options -------------------------------------------------------

void Session::establish() {
  if (!has_window_) return;
  renderer_->update_current_options();
  renderer_->establish();
  if (!published_color_image(renderer_))
    throw Tool_Failure("establish left the renderer without a colour image");
}

void Session::require_window(const Arguments& args) const {
  if (!has_window_) args.fail("no window yet: the script must set one with `window W H` first");
}

OT_Int_Rectangle Session::window_rectangle() const {
  const OT_Renderer_Options& options = *renderer_->current_renderer_options();
  const OT_Int_XY origin = options.local_coordinates() ? OT_Int_XY{0, 0} : options.window_origin();
  const OT_Int_XY size = options.window_size();
  return {origin.x, origin.x + size.x - 1, origin.y, origin.y + size.y - 1};
}

void Session::cover_window() {
  const OT_Renderer_Options& options = renderer_->requested_renderer_options;
  const OT_Int_XY origin = options.window_origin();
  const OT_Int_XY size = options.window_size();
  const OT_Int_Rectangle whole{origin.x, origin.x + size.x - 1, origin.y, origin.y + size.y - 1};
  OT_Rendition_Device* device = rendition_.writable_device();
  device->hard_clip = whole;
  device->extent = whole;
}

void Session::window(const Arguments& args) {
  args.expect_count(2, "2 integers W H");
  const int width = int(args.integer(0, "W", 1, largest_window));
  const int height = int(args.integer(1, "H", 1, largest_window));
  renderer_->requested_renderer_options.set_window_size({width, height});
  has_window_ = true;
  cover_window();
  establish();
}

void Session::origin(const Arguments& args) {
  args.expect_count(2, "2 integers X Y");
  const int x = int(args.integer(0, "X", -largest_origin, largest_origin));
  const int y = int(args.integer(1, "Y", -largest_origin, largest_origin));
  renderer_->requested_renderer_options.set_window_origin({x, y});
  if (has_window_) cover_window();
  establish();
}

void Session::mode(const Arguments& args) {
  args.expect_count(1, "1 mode name");
  for (const Mode& m : modes) {
    if (args.text(0) != m.name) continue;
    OT_Renderer_Options& options = renderer_->requested_renderer_options;
    options.set_buffer_depth(m.buffer_depth);
    options.set_color_system(m.color_system);
    options.set_alpha_blending(m.alpha_blending);
    establish();
    return;
  }
  std::string names;
  for (const Mode& m : modes) names += (names.empty() ? "" : ", ") + std::string(m.name);
  args.fail("unknown mode '" + args.text(0) + "'; the modes are " + names);
}

void Session::establish_command(const Arguments& args) {
  args.expect_count(0, "no arguments");
  require_window(args);
  establish();
}

void Session::palette(const Arguments& args) {
  OT_Palette palette;
  if (args.size() == 1 && args.text(0) == "default") {
    palette = OB_Default_Palette();
  } else if (args.size() >= 1 && args.text(0) == "cube") {
    const Arguments cube = args.from(1, "palette cube");
    cube.expect_count(4, "4 integers R G B BASE");
    const OT_Int_RGB sizes{int(cube.integer(0, "R", 2, 256)), int(cube.integer(1, "G", 2, 256)),
                           int(cube.integer(2, "B", 2, 256))};
    const int base = int(cube.integer(3, "BASE", 0, 255));
    if (std::int64_t(sizes.r) * sizes.g * sizes.b + base > 256)
      cube.fail("a cube of " + std::to_string(sizes.r * sizes.g * sizes.b) + " colours from " +
                std::to_string(base) + " does not fit 256 entries");
    palette = OB_Cube_Palette(sizes, base);
  } else {
    args.fail("expected `cube R G B BASE` or `default`");
  }
  if (!palette) throw Tool_Failure("the host made no palette");
  renderer_->requested_renderer_options.set_palette(palette);
  ::make_unique(rendition_)->palette = palette;
  establish();
}

void Session::option(const Arguments& args) {
  if (args.size() == 0) args.fail("expected \"Name\" and its value, got nothing");
  const std::string& name = args.text(0);
  OT_Option* option = renderer_->requested_options.find(OT_String(widen(name)));
  if (!option) args.fail("the renderer has no option \"" + name + "\"");
  if (name == "ZBuffer Write" || name == "ZBuffer Test")
    args.fail("\"" + name + "\" holds the renderer's setter; use the command " +
              (name == "ZBuffer Write" ? "depth_write" : "depth_test"));
  // The renderer writes this one only when it makes an image: a null would
  // hide the image it keeps from probe and save.
  if (name == "Color Buffer")
    args.fail(
        "\"Color Buffer\" is where the renderer shows its colour image to probe and save; scripts don't set "
        "it");
  const Arguments value = args.from(1, "option \"" + name + "\"");
  switch (option->type()) {
    case OT_Option_Type::Bool:
      value.expect_count(1, "1 value 0, 1, true or false");
      option->set(OT_Option_Value::of_bool(value.boolean(0, "value")));
      break;
    case OT_Option_Type::Int:
      value.expect_count(1, "1 integer");
      option->set(OT_Option_Value::of_int(value.int32(0, "value")));
      break;
    case OT_Option_Type::Color:
      value.expect_count(3, "3 integers R G B");
      option->set(OT_Option_Value::of_color(value.int32(0, "R"), value.int32(1, "G"), value.int32(2, "B")));
      break;
    case OT_Option_Type::Pointer:
      value.expect_count(1, "`null`");
      if (value.text(0) != "null")
        value.fail("a pointer option takes only `null`, got '" + value.text(0) + "'");
      option->set(OT_Option_Value(static_cast<const void*>(nullptr)));
      break;
  }
  establish();
}

void Session::depth_write(const Arguments& args) {
  args.expect_count(1, "1 integer 0..255");
  const byte value = byte(args.integer(0, "value", 0, 255));
  const OT_Option* option = renderer_->current_option_table()->find(L"ZBuffer Write");
  if (!option || !option->as_pointer()) args.fail("the renderer keeps no setter in \"ZBuffer Write\"");
  reinterpret_cast<Depth_Write_Setter>(const_cast<void*>(option->as_pointer()))(renderer_, value);
}

void Session::depth_test(const Arguments& args) {
  args.expect_count(1, "1 integer");
  const int value = args.int32(0, "value");
  const OT_Option* option = renderer_->current_option_table()->find(L"ZBuffer Test");
  if (!option || !option->as_pointer()) args.fail("the renderer keeps no setter in \"ZBuffer Test\"");
  reinterpret_cast<Depth_Test_Setter>(const_cast<void*>(option->as_pointer()))(renderer_, &value);
}

// ---- Rendition, slots ------------------------------------------------------------

void Session::set(const Arguments& args) { set_rendition_field(rendition_, args, rendition_storage_); }

Slot_Context Session::slot_context() const {
  Slot_Context context;
  context.renderer = renderer_;
  context.rendition = &rendition_;
  context.has_window = has_window_;
  if (has_window_) context.window = window_rectangle();
  return context;
}

void Session::update(const Arguments& args) {
  args.expect_count(4, "4 integers L R B T");
  require_window(args);
  renderer_->update({args.int32(0, "L"), args.int32(1, "R"), args.int32(2, "B"), args.int32(3, "T")});
}

// ---- Looking at the result ---------------------------------------------------------

void Session::probe(const Arguments& args) {
  args.expect_count(2, "2 integers X Y");
  require_window(args);
  const int x = args.int32(0, "X");
  const int y = args.int32(1, "Y");
  const OT_Int_Rectangle window = window_rectangle();
  if (x < window.left || x > window.right || y < window.bottom || y > window.top)
    args.fail(std::to_string(x) + " " + std::to_string(y) + " lies outside the window " +
              std::to_string(window.left) + " " + std::to_string(window.right) + " " +
              std::to_string(window.bottom) + " " + std::to_string(window.top) + " (L R B T)");
  const OT_Shared_Image_Data* image = published_color_image(renderer_);
  if (!image) args.fail("the option \"Color Buffer\" holds no image");
  const byte* row = image->device_rows[y - window.bottom];
  const int column = x - window.left;

  std::cout << "probe " << x << ' ' << y;
  if (image->format == OT_Image_Format_RGB32) {
    const byte* p = row + 4 * column;  // b, g, r, a
    std::cout << " color=" << int(p[2]) << ',' << int(p[1]) << ',' << int(p[0]) << ',' << int(p[3]);
  } else {
    std::cout << " index=" << int(row[column]);
  }
  const OT_DCI_Point point{x, y, 0};
  if (const OT_Shared_Image depth = read_depth(renderer_, rendition_, point, point))
    std::cout << " depth=" << *reinterpret_cast<const std::uint16_t*>(depth->top_rows[0]);
  std::cout << '\n';
}

std::string Session::output_path(const std::string& file) const {
  if (output_dir_.empty() || std::filesystem::path(file).is_absolute()) return file;
  return (std::filesystem::path(output_dir_) / file).string();
}

void Session::save(const Arguments& args) {
  if (args.size() == 0) args.fail("expected `color FILE [alpha]` or `depth FILE`, got nothing");
  require_window(args);
  const std::string& what = args.text(0);
  Png_Picture picture;
  if (what == "color") {
    const bool keep_alpha = args.size() == 3 && args.text(2) == "alpha";
    if (args.size() != 2 && !keep_alpha)
      args.fail("expected `color FILE` or `color FILE alpha`, got " + std::to_string(args.size()) + " words");
    const OT_Shared_Image_Data* image = published_color_image(renderer_);
    if (!image) args.fail("the option \"Color Buffer\" holds no image");
    picture = color_picture(*image, renderer_->current_renderer_options()->palette(), keep_alpha);
  } else if (what == "depth") {
    args.expect_count(2, "`depth FILE`");
    const OT_Int_Rectangle window = window_rectangle();
    const OT_DCI_Point first{window.left, window.top, 0}, last{window.right, window.bottom, 0};
    const OT_Shared_Image depth = read_depth(renderer_, rendition_, first, last);
    if (!depth) args.fail("the renderer has no depth buffer in this mode");
    picture = depth_picture(*depth);
  } else {
    args.fail("expected `color` or `depth`, got '" + what + "'");
  }
  const std::string path = output_path(args.text(1));
  std::string error;
  if (!write_png(path, picture, error)) throw Tool_Failure("save: cannot write " + path + ": " + error);
}

void Session::echo(const Arguments& args) {
  for (std::size_t i = 0; i < args.size(); ++i) std::cout << (i ? " " : "") << args.text(i);
  std::cout << '\n';
}

}  // namespace tarn_render
