// Options, option tables, and the renderer base class: prototype, virtual
// operations, the passage from requested to current options, standard slots.
#include <gtest/gtest.h>

#include "host/ombra.h"

namespace {

TEST(OmbraOptionTable, AddOverwritesInPlaceAndCopiesKeepTheirOwnOptions) {
  OT_Option_Table table;
  const OT_Option source(L"Margin", OT_Option_Enum::Instance, 1);
  OT_Option* margin = table.add(source);
  EXPECT_NE(margin, &source);
  EXPECT_EQ(margin->value().get(), source.value().get());  // a copy sharing the value
  for (int i = 0; i < 100; ++i)
    table.add(OT_Option(OT_String(L"O" + std::to_wstring(i)), OT_Option_Enum::Instance, i));
  EXPECT_EQ(std::pair(table.find(L"Margin"), table.find(L"Missing")), std::pair(margin, (OT_Option*)nullptr));
  EXPECT_EQ(table.find(L"O57")->as_int(), 57);
  EXPECT_EQ(table.add(OT_Option(L"Margin", OT_Option_Enum::Instance, 2)), margin);
  EXPECT_EQ(margin->as_int(), 2);
  EXPECT_EQ(table.size(), 101u);
  OT_Option_Table copy(table);
  EXPECT_NE(copy.find(L"Margin"), margin);
  copy.find(L"Margin")->set(OT_Option_Value::of_int(6));
  EXPECT_EQ(margin->as_int(), 2);
  // Assignment keeps the options of names that both tables hold in place.
  OT_Option_Table source_table;
  source_table.add(OT_Option(L"B", OT_Option_Enum::Instance, 2));
  source_table.add(OT_Option(L"Margin", OT_Option_Enum::Instance, 3));
  table = source_table;
  EXPECT_EQ(std::pair(table.find(L"Margin"), table.find(L"O1")), std::pair(margin, (OT_Option*)nullptr));
  EXPECT_EQ(std::pair(table.size(), margin->as_int()), std::pair(std::size_t{2}, 3));
  EXPECT_NE(table.find(L"B"), source_table.find(L"B"));
}

class Counting_Renderer : public OT_Renderer_Data {
 public:
  explicit Counting_Renderer(const OT_Renderer_Data* prototype = nullptr) : OT_Renderer_Data(prototype) {}
  int establish() override { return 40 + ++calls; }
  void begin_picture(OT_Document_Info*) override { ++calls; }
  void end_picture() override { ++calls; }
  void update(const OT_Int_Rectangle& region) override { updated = region; }
  void install_standard(bool keep_valid) { set_standard_actions(keep_valid); }
  int calls = 0;
  OT_Int_Rectangle updated{};
};

void dummy_update(void*, const OT_DCI_Point*, const OT_DCI_Point*, const OT_Shared_Image*, int, int) {}

TEST(OmbraRendererData, StartsFromThePrototypeAndIsItsOwnRoot) {
  const OT_Renderer_Data plain(nullptr);
  EXPECT_EQ(plain.root, &plain);
  EXPECT_EQ(plain.image_factory.function, &OB_Standard_Image_Factory);
  EXPECT_EQ(std::pair(plain.current_renderer_options()->color_system(),
                      plain.current_renderer_options()->palette().get()),
            std::pair(OT_Color_System_Direct, OB_Default_Palette().get()));
  OT_Renderer_Data prototype(nullptr);
  int context = 0;
  prototype.image_factory.context = &context;
  prototype.window_update = {&context, dummy_update};
  prototype.requested_options.add(OT_Option(L"Requested", OT_Option_Enum::Instance, 4));
  prototype.current_options.add(OT_Option(L"Current", OT_Option_Enum::Instance, 5));
  prototype.requested_renderer_options.set_buffer_depth(16);
  prototype.current_renderer_options_.set_window_size({640, 480});
  Counting_Renderer renderer(&prototype);
  EXPECT_EQ(renderer.root, &renderer);
  EXPECT_EQ(renderer.image_factory.context, &context);
  EXPECT_EQ(renderer.window_update.function, &dummy_update);
  EXPECT_EQ((std::vector{renderer.requested_options.find(L"Requested")->as_int(),
                         renderer.current_option_table()->find(L"Current")->as_int(),
                         renderer.requested_renderer_options.buffer_depth(),
                         renderer.current_renderer_options()->window_size().x}),
            (std::vector{4, 5, 16, 640}));
  EXPECT_EQ(renderer.clone(), nullptr);
  // The host's _all forms reach the renderer's own operations.
  renderer.begin_picture_all(nullptr);
  renderer.end_picture_all();
  EXPECT_EQ(renderer.establish_all(), 43);
  renderer.update_all(OT_Int_Rectangle{1, 2, 3, 4});
  EXPECT_EQ(renderer.updated, (OT_Int_Rectangle{1, 2, 3, 4}));
}

TEST(OmbraRendererData, UpdateCarriesNewAndChangedOptionsAndKeepsWhatTheRendererStored) {
  OT_Renderer_Data renderer(nullptr);
  renderer.requested_renderer_options.set_window_size({32, 16});
  OT_Option* requested = renderer.requested_options.add(OT_Option(L"Margin", OT_Option_Enum::Instance, 1));
  renderer.update_current_options();
  EXPECT_EQ(renderer.current_renderer_options()->window_size().x, 32);
  OT_Option* current = renderer.current_options.find(L"Margin");
  ASSERT_NE(current, nullptr);
  EXPECT_NE(current, requested);
  EXPECT_EQ(current->as_int(), 1);
  make_unique(current->value())->storage.as_int = 99;  // the renderer's own value stays...
  renderer.update_current_options();
  EXPECT_EQ(renderer.current_options.find(L"Margin"), current);
  EXPECT_EQ(current->as_int(), 99);
  const OT_Option_Value value = OT_Option_Value::of_int(5);  // ...until a client changes it, once
  requested->set(value);
  EXPECT_TRUE(requested->changed());
  renderer.update_current_options();
  EXPECT_EQ(current->value().get(), value.get());
  EXPECT_FALSE(requested->changed());
  make_unique(current->value())->storage.as_int = 77;
  renderer.update_current_options();
  EXPECT_EQ(current->as_int(), 77);
}

void own_dot(OT_Renderer_Data*, const OT_Rendition&, const OT_DCI_Point*, const OT_RGB32*) {}

TEST(OmbraRendererData, StandardActionsFillEverySlotOrKeepTheValidOnes) {
  Counting_Renderer renderer;
  int valid = 0, total = 0;
#define OMBRA_TEST_COUNT(name, ...) \
  ++total;                          \
  valid += renderer.name.valid == 1 && renderer.name.function && renderer.name.object == &renderer;
  OT_ACTION_SLOTS(OMBRA_TEST_COUNT)
#undef OMBRA_TEST_COUNT
  EXPECT_EQ(valid, total);
  EXPECT_EQ(total, 65);
  renderer.draw_dci_dot.install(&renderer, own_dot);
  renderer.draw_dci_polyline.valid = 0;
  renderer.install_standard(true);
  EXPECT_EQ(renderer.draw_dci_dot.function, &own_dot);
  EXPECT_EQ(renderer.draw_dci_polyline.valid, 1);
  renderer.install_standard(false);
  EXPECT_EQ(renderer.draw_dci_dot.function, &OB_Standard_Draw_DCI_Dot);
}

}  // namespace
