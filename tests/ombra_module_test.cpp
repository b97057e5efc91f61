// Loading renderer modules by file name.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include "host/ombra.h"

namespace {

TEST(OmbraModule, MissingFileSaysWhichAndWhy) {
  OT_Module module;
  std::string error;
  EXPECT_FALSE(module.open("/nonexistent/nowhere.obx", error));
  EXPECT_EQ(error.rfind("cannot open module '/nonexistent/nowhere.obx': ", 0), 0u) << error;
  EXPECT_GT(error.size(), std::string("cannot open module '/nonexistent/nowhere.obx': ").size());
  EXPECT_FALSE(module.is_open());
  EXPECT_EQ(module.create(), nullptr);
  module.destroy(nullptr);
}

TEST(OmbraModule, LibraryWithoutTheExportsIsRefused) {
  // The host library itself is a loadable file without a renderer factory.
  Dl_info info{};
  ASSERT_NE(dladdr(reinterpret_cast<void*>(&OB_New_Serial), &info), 0);
  OT_Module module;
  std::string error;
  EXPECT_FALSE(module.open(info.dli_fname, error));
  EXPECT_NE(error.find("OB_Renderer"), std::string::npos) << error;
  EXPECT_NE(error.find(info.dli_fname), std::string::npos) << error;
  EXPECT_FALSE(module.is_open());
}

#ifdef OMBRA_FAKE_MODULE_PATH
TEST(OmbraModule, OpensCreatesWithThePrototypeAndDestroys) {
  OT_Module module;
  std::string error;
  ASSERT_TRUE(module.open(OMBRA_FAKE_MODULE_PATH, error)) << error;
  EXPECT_TRUE(module.is_open());
  OT_Renderer_Data prototype(nullptr);
  prototype.requested_options.add(OT_Option(L"From Prototype", OT_Option_Enum::Instance, 3));
  OT_Renderer_Data* renderer = module.create(&prototype);
  ASSERT_NE(renderer, nullptr);
  EXPECT_EQ(renderer->establish_all(), 42);
  EXPECT_EQ(renderer->root, renderer);
  ASSERT_NE(renderer->requested_options.find(L"From Prototype"), nullptr);
  module.destroy(renderer);
  module.close();
  EXPECT_FALSE(module.is_open());
}
#endif

}  // namespace
