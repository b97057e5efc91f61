// Random scripts through the tarn-render session: a script may be wrong, and
// then it is refused with a message, but it never crashes the tool, writes
// out of bounds or leaks. Pictures go to a scratch directory.
#include <dlfcn.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "tools/tarn-render/session.h"

namespace {

const std::string& scratch() {
  static const std::string dir = [] {
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "tarn-script-fuzzer";
    std::filesystem::create_directories(path);
    return path.string();
  }();
  return dir;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Each session opens and closes the module; one more handle, never closed,
  // keeps it mapped, with the coverage counters the fuzzer reads.
  static void* const keep_loaded = dlopen(TARN_MODULE_PATH, RTLD_NOW);
  (void)keep_loaded;
  const std::string text(reinterpret_cast<const char*>(data), size);
  try {
    const tarn_render::Script script = tarn_render::parse_script("fuzz", text);
    // Relative texture names find the example textures.
    tarn_render::Session session({TARN_MODULE_PATH, scratch(), TARN_EXAMPLES_DIR});
    for (const tarn_render::Script_Line& line : script.lines) session.run(line);
  } catch (const tarn_render::Script_Error&) {
  } catch (const tarn_render::Tool_Failure&) {
  }
  return 0;
}
