// One run of a script: the module, the renderer it made, the rendition that
// goes with every call, and the commands that act on them.
#pragma once

#include <string>

#include "host/ombra.h"
#include "tools/tarn-render/rendition_fields.h"
#include "tools/tarn-render/script_reader.h"
#include "tools/tarn-render/slot_commands.h"

namespace tarn_render {

class Session {
 public:
  struct Settings {
    std::string module_path;
    std::string output_dir;  // where relative `save` paths go; empty: the working directory
    std::string script_dir;  // where relative `texture` paths go; empty: the working directory
  };

  // Opens the module and makes a renderer; throws Tool_Failure.
  explicit Session(const Settings& settings);
  // Destroys the renderer through the module before the module closes.
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // Runs one command. Throws Script_Error for a mistake in the line and
  // Tool_Failure when something outside the script fails; the messages don't
  // carry the line's place, the caller adds it.
  void run(const Script_Line& line);

  // The names of the tool's own commands (slots come on top of them).
  static std::vector<std::string> command_names();

 private:
  void window(const Arguments& args);
  void origin(const Arguments& args);
  void mode(const Arguments& args);
  void establish_command(const Arguments& args);
  void palette(const Arguments& args);
  void option(const Arguments& args);
  void set(const Arguments& args);
  void probe(const Arguments& args);
  void save(const Arguments& args);
  void echo(const Arguments& args);
  void update(const Arguments& args);
  void depth_write(const Arguments& args);
  void depth_test(const Arguments& args);
  // Materials and lights (scene_commands.cpp).
  void texture(const Arguments& args);
  void material(const Arguments& args);
  void light(const Arguments& args);

  // update_current_options() and establish(), once there is a window; until
  // then the requested options only collect what the script sets.
  void establish();
  void require_window(const Arguments& args) const;
  // hard_clip and extent of the rendition: the whole window at its origin.
  void cover_window();
  // The window in device coordinates, from the current renderer options.
  OT_Int_Rectangle window_rectangle() const;
  Slot_Context slot_context() const;
  std::string output_path(const std::string& file) const;

  using Command = void (Session::*)(const Arguments& args);
  struct Command_Entry {
    const char* name;
    Command run;
  };
  static const Command_Entry commands_[];

  // What the rendition's colors.lighting points to while the scene is lit;
  // it outlives every rendition of the session.
  OT_Lighting lighting_;
  // What the rendition points to without counting it; made before the
  // rendition and gone after it.
  Rendition_Storage rendition_storage_;
  OT_Module module_;
  OT_Renderer_Data* renderer_ = nullptr;
  OT_Rendition rendition_;
  std::string output_dir_;
  std::string script_dir_;
  bool has_window_ = false;
};

}  // namespace tarn_render
