// Loading a renderer module by file name.
#include <dlfcn.h>

#include "host/ot_module.h"

namespace {

std::string last_error() {
  const char* message = dlerror();
  return message ? message : "unknown error";
}

void* symbol(void* library, const char* name) {
  dlerror();  // clear what an earlier call left
  return dlsym(library, name);
}

}  // namespace

bool OT_Module::open(const std::string& file_name, std::string& error) {
  close();
  void* library = dlopen(file_name.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!library) {
    error = "cannot open module '" + file_name + "': " + last_error();
    return false;
  }
  void* factory = symbol(library, "OB_Renderer");
  if (!factory) factory = symbol(library, "OB_Tarn_Renderer");
  if (!factory) {
    error = "module '" + file_name + "' exports neither OB_Renderer nor OB_Tarn_Renderer";
    dlclose(library);
    return false;
  }
  void* unloader = symbol(library, "OB_Unload_Tarn_Renderer");
  if (!unloader) {
    error = "module '" + file_name + "' does not export OB_Unload_Tarn_Renderer";
    dlclose(library);
    return false;
  }
  library_ = library;
  factory_ = reinterpret_cast<OT_Renderer_Factory>(factory);
  unloader_ = reinterpret_cast<OT_Renderer_Unloader>(unloader);
  return true;
}

void OT_Module::close() {
  if (library_) dlclose(library_);
  library_ = nullptr;
  factory_ = nullptr;
  unloader_ = nullptr;
}

OT_Module::~OT_Module() { close(); }

OT_Renderer_Data* OT_Module::create(const OT_Renderer_Data* prototype) const {
  if (!factory_) return nullptr;
  return factory_(OT_Renderer_Handle{prototype});
}

void OT_Module::destroy(OT_Renderer_Data* renderer) const {
  if (unloader_ && renderer) unloader_(renderer);
}
