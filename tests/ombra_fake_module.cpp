// A minimal renderer module for the loader's tests: it exports the factory
// under its first name only, and the unloader.
#include "host/ombra.h"

namespace {

class Fake_Renderer : public OT_Renderer_Data {
 public:
  explicit Fake_Renderer(const OT_Renderer_Data* prototype) : OT_Renderer_Data(prototype) {}
  int establish() override { return 42; }
};

}  // namespace

extern "C" {

__attribute__((visibility("default"))) OT_Renderer_Data* OB_Renderer(const OT_Renderer_Handle& prototype) {
  return new Fake_Renderer(prototype.data);
}

__attribute__((visibility("default"))) void OB_Unload_Tarn_Renderer(OT_Renderer_Data* renderer) {
  if (renderer) renderer->destroy(1);
}

}  // extern "C"
