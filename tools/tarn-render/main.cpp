// tarn-render: loads the renderer module, makes one renderer and replays a
// script of commands against it: window and mode changes, rendition fields,
// calls through the action slots, probes of single pixels and PNG pictures.
// The script language is described in docs/script.md.
#include <filesystem>
#include <iostream>
#include <string>
#include <system_error>

#include "tools/tarn-render/rendition_fields.h"
#include "tools/tarn-render/script_reader.h"
#include "tools/tarn-render/session.h"
#include "tools/tarn-render/slot_commands.h"

namespace {

using namespace tarn_render;

constexpr const char* usage =
    "usage: tarn-render [--module PATH] [--output-dir DIR] SCRIPT\n"
    "  SCRIPT          the script to replay; - reads standard input\n"
    "  --module PATH   the renderer module (default: tarn13.obx beside tarn-render)\n"
    "  --output-dir D  where `save` writes files given by relative paths (made if missing)\n"
    "  --list          lists the commands, the slot commands and the rendition fields\n"
    "Exit status: 0 done, 1 the module or an output file failed, 2 a mistake in the script or the command "
    "line.\n";

// tarn13.obx in the directory of this program.
std::string default_module_path() {
  std::error_code error;
  const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) return "tarn13.obx";
  return (self.parent_path() / "tarn13.obx").string();
}

struct Command_Line {
  std::string module_path;
  std::string output_dir;
  std::string script;
};

// Throws Script_Error for a command line it can't use.
Command_Line parse_command_line(int argc, char** argv) {
  Command_Line result;
  bool have_script = false;
  for (int i = 1; i < argc; ++i) {
    const std::string word = argv[i];
    auto value = [&]() -> std::string {
      if (i + 1 >= argc) throw Script_Error(word + " needs a value");
      return argv[++i];
    };
    if (word == "--module") {
      result.module_path = value();
    } else if (word == "--output-dir") {
      result.output_dir = value();
    } else if (word.size() > 1 && word[0] == '-' && word != "-") {
      throw Script_Error("unknown option " + word);
    } else if (have_script) {
      throw Script_Error("only one script at a time");
    } else {
      result.script = word;
      have_script = true;
    }
  }
  if (!have_script) throw Script_Error("no script given");
  if (result.module_path.empty()) result.module_path = default_module_path();
  return result;
}

int run(int argc, char** argv) {
  Command_Line command_line;
  try {
    for (int i = 1; i < argc; ++i) {
      const std::string word = argv[i];
      if (word == "--help" || word == "-h") {
        std::cout << usage;
        return 0;
      }
      if (word == "--list") {
        for (const std::string& name : Session::command_names()) std::cout << "command " << name << '\n';
        for (const std::string& name : slot_names()) std::cout << "slot " << name << '\n';
        for (const std::string& field : rendition_field_names()) std::cout << "set " << field << '\n';
        return 0;
      }
    }
    command_line = parse_command_line(argc, argv);
  } catch (const Script_Error& error) {
    std::cerr << "tarn-render: " << error.what() << '\n' << usage;
    return 2;
  }

  Script script;
  try {
    script = read_script(command_line.script);
  } catch (const Script_Error& error) {
    std::cerr << error.what() << '\n';  // names the file, and the line if there is one
    return 2;
  }

  if (!command_line.output_dir.empty()) {
    std::error_code error;
    std::filesystem::create_directories(command_line.output_dir, error);
    if (error) {
      std::cerr << "tarn-render: cannot make the output directory " << command_line.output_dir << ": "
                << error.message() << '\n';
      return 1;
    }
  }

  const Script_Line* current = nullptr;
  auto place = [&] { return script.name + ":" + std::to_string(current ? current->number : 0) + ": "; };
  try {
    // Textures named by relative paths are found beside the script.
    const std::string script_dir =
        command_line.script == "-" ? "" : std::filesystem::path(command_line.script).parent_path().string();
    Session session({command_line.module_path, command_line.output_dir, script_dir});
    for (const Script_Line& line : script.lines) {
      current = &line;
      session.run(line);
    }
  } catch (const Script_Error& error) {
    std::cout.flush();
    std::cerr << place() << error.what() << '\n';
    return 2;
  } catch (const Tool_Failure& error) {
    std::cout.flush();
    std::cerr << (current ? place() : std::string("tarn-render: ")) << error.what() << '\n';
    return 1;
  }
  std::cout.flush();
  return std::cout ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) { return run(argc, argv); }
