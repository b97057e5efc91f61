// The module as a host sees it: opened by file name, made through its factory,
// drawn with through the slots, destroyed through its unload export.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <set>
#include <sstream>
#include <string>

#include "host/ombra.h"

namespace {

TEST(Module, LoadsByFileNameDrawsAndUnloads) {
  OT_Module module;
  std::string error;
  ASSERT_TRUE(module.open(TARN_MODULE_PATH, error)) << error;
  OT_Renderer_Data* renderer = module.create();
  ASSERT_NE(renderer, nullptr);

  OT_Renderer_Options& options = renderer->requested_renderer_options;
  options.set_window_size({32, 24});
  options.set_color_system(OT_Color_System_Direct);
  options.set_buffer_depth(0);
  renderer->update_current_options();
  EXPECT_EQ(renderer->establish_all(), 0);

  OT_Rendition rendition = OT_Rendition::make_default(32, 24, options.palette());
  rendition.writable_colors()->color = OT_RGB32::rgba(10, 20, 30);
  rendition.writable_colors()->window_color = OT_RGB32::rgba(0, 0, 0);
  renderer->clear_color(rendition);
  const OT_DCI_Point strip[3] = {{10, 10, 0}, {14, 10, 0}, {10, 14, 0}};
  ASSERT_EQ(renderer->draw_dci_polytriangle.object, renderer);
  renderer->draw_dci_polytriangle(rendition, 3, strip);

  // The colour image, as clients find it, through the option.
  const auto* image = static_cast<const OT_Shared_Image_Data*>(
      renderer->current_option_table()->find(L"Color Buffer")->as_pointer());
  ASSERT_NE(image, nullptr);
  auto pixel = [image](int x, int y) { return reinterpret_cast<const std::uint32_t*>(image->device_rows[y])[x]; };
  EXPECT_EQ(pixel(10, 13), OT_RGB32::rgba(10, 20, 30).word());
  EXPECT_EQ(pixel(11, 13), OT_RGB32::rgba(0, 0, 0).word());
  EXPECT_EQ(pixel(13, 10), OT_RGB32::rgba(10, 20, 30).word());
  EXPECT_EQ(pixel(14, 10), OT_RGB32::rgba(0, 0, 0).word());

  module.destroy(renderer);
}

TEST(Module, ExportsOnlyItsThreeEntryPoints) {
  // The dynamic symbols the module defines itself, as nm lists them.
  FILE* pipe = popen("nm -D --defined-only '" TARN_MODULE_PATH "'", "r");
  ASSERT_NE(pipe, nullptr);
  std::set<std::string> names;
  char line[4096];
  while (fgets(line, sizeof line, pipe)) {
    std::istringstream fields(line);
    std::string address, kind, name;
    if (fields >> address >> kind >> name && kind != "A") names.insert(name);
  }
  ASSERT_EQ(pclose(pipe), 0);
  EXPECT_EQ(names, (std::set<std::string>{"OB_Renderer", "OB_Tarn_Renderer", "OB_Unload_Tarn_Renderer"}));

  void* library = dlopen(TARN_MODULE_PATH, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr) << dlerror();
  using Unload = void (*)(OT_Renderer_Data*);
  reinterpret_cast<Unload>(dlsym(library, "OB_Unload_Tarn_Renderer"))(nullptr);  // does nothing
  dlclose(library);
}

TEST(Module, BothFactoryNamesMakeARenderer) {
  void* library = dlopen(TARN_MODULE_PATH, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr) << dlerror();
  auto unload = reinterpret_cast<OT_Renderer_Unloader>(dlsym(library, "OB_Unload_Tarn_Renderer"));
  for (const char* name : {"OB_Renderer", "OB_Tarn_Renderer"}) {
    auto factory = reinterpret_cast<OT_Renderer_Factory>(dlsym(library, name));
    ASSERT_NE(factory, nullptr) << name;
    OT_Renderer_Data* renderer = factory(OT_Renderer_Handle{nullptr});
    ASSERT_NE(renderer, nullptr) << name;
    EXPECT_EQ(renderer->clone(), nullptr);
    EXPECT_NE(renderer->current_option_table()->find(L"ZBuffer Test"), nullptr);
    unload(renderer);
  }
  dlclose(library);
}

TEST(Module, LoaderExplainsAMissingFile) {
  OT_Module module;
  std::string error;
  EXPECT_FALSE(module.open("/nonexistent/tarn13.obx", error));
  EXPECT_NE(error.find("/nonexistent/tarn13.obx"), std::string::npos) << error;
  EXPECT_FALSE(module.is_open());
}

}  // namespace
