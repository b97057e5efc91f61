// Loading a renderer module by file name.
#pragma once

#include <string>

#include "host/ot_renderer_data.h"

// The handle that a module's factory export receives: one word, the pointer.
struct OT_Renderer_Handle {
  const OT_Renderer_Data* data;
};

// Exports of a renderer module, C linkage.
using OT_Renderer_Factory = OT_Renderer_Data* (*)(const OT_Renderer_Handle& prototype);
using OT_Renderer_Unloader = void (*)(OT_Renderer_Data* renderer);

// An opened module. Renderers it made must be destroyed before it closes.
class OMBRA_API OT_Module {
 public:
  // Opens the module at `file_name` with dlopen and resolves its factory
  // (OB_Renderer, else OB_Tarn_Renderer) and OB_Unload_Tarn_Renderer. On
  // failure returns false and says why in `error`.
  bool open(const std::string& file_name, std::string& error);
  void close();
  ~OT_Module();

  bool is_open() const { return library_ != nullptr; }
  // A new renderer from the factory, or null.
  OT_Renderer_Data* create(const OT_Renderer_Data* prototype = nullptr) const;
  // Destroys a renderer through the module's unload export.
  void destroy(OT_Renderer_Data* renderer) const;

 private:
  void* library_ = nullptr;
  OT_Renderer_Factory factory_ = nullptr;
  OT_Renderer_Unloader unloader_ = nullptr;
};
