// The module's three exports, the only symbols it shows.
#include <cstring>

#include "frame/software_z_buffer.h"
#include "host/ot_module.h"

namespace {

// The object's memory starts as zero bytes, so that all the constructor does
// not name is zero.
OT_Renderer_Data* make_renderer(const OT_Renderer_Handle& prototype) {
  void* memory = OT_Object::operator new(sizeof(Software_Z_Buffer));
  if (!memory) return nullptr;
  std::memset(memory, 0, sizeof(Software_Z_Buffer));
  return new (memory) Software_Z_Buffer(prototype.data);
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) OT_Renderer_Data* OB_Renderer(const OT_Renderer_Handle& prototype) {
  return make_renderer(prototype);
}

__attribute__((visibility("default"))) OT_Renderer_Data* OB_Tarn_Renderer(
    const OT_Renderer_Handle& prototype) {
  return make_renderer(prototype);
}

__attribute__((visibility("default"))) void OB_Unload_Tarn_Renderer(OT_Renderer_Data* renderer) {
  if (renderer) renderer->destroy(1);
}

}  // extern "C"
