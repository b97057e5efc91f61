// Options, option tables, renderer options and the renderer base class.
#include <gtest/gtest.h>

#include "host/ombra.h"

namespace {

TEST(OmbraOptions, TypedValuesAreReadStraightFromStorage) {
  const OT_Option flag(L"Flag", OT_Option_Enum::Instance, true);
  const OT_Option number(L"Number", OT_Option_Enum::Instance, -17);
  const OT_Option color(L"Color", OT_Option_Enum::Shared, 1, 2, 300);
  int target = 0;
  const OT_Option pointer(L"Pointer", OT_Option_Enum::Instance, static_cast<const void*>(&target));
  EXPECT_EQ(flag.type(), OT_Option_Type::Bool);
  EXPECT_EQ(flag.as_bool(), 1);
  EXPECT_EQ(OT_Option(L"Off", OT_Option_Enum::Instance, false).as_bool(), 0);
  EXPECT_EQ(number.type(), OT_Option_Type::Int);
  EXPECT_EQ(number.as_int(), -17);
  EXPECT_EQ(color.type(), OT_Option_Type::Color);
  EXPECT_EQ(color.as_color()[0], 1);
  EXPECT_EQ(color.as_color()[1], 2);
  EXPECT_EQ(color.as_color()[2], 300);
  EXPECT_EQ(color.scope(), OT_Option_Enum::Shared);
  EXPECT_EQ(pointer.type(), OT_Option_Type::Pointer);
  EXPECT_EQ(pointer.as_pointer(), &target);
  EXPECT_TRUE(pointer.name() == OT_String(L"Pointer"));
  EXPECT_FALSE(pointer.changed());
}

TEST(OmbraOptions, SetSharesTheValueAndMarksTheOptionChanged) {
  OT_Option option(L"Margin", OT_Option_Enum::Instance, 0);
  const OT_Option_Value value = OT_Option_Value::of_int(12);
  option.set(value);
  EXPECT_EQ(option.value().get(), value.get());
  EXPECT_EQ(value->count.load(), 2u);
  EXPECT_EQ(option.as_int(), 12);
  EXPECT_TRUE(option.changed());
  option.clear_changed();
  EXPECT_FALSE(option.changed());
}

TEST(OmbraOptionTable, AddFindAndOverwriteInPlace) {
  OT_Option_Table table;
  OT_Option* margin = table.add(OT_Option(L"Margin", OT_Option_Enum::Instance, 1));
  ASSERT_NE(margin, nullptr);
  // Many more options: the first keeps its address.
  for (int i = 0; i < 100; ++i)
    table.add(OT_Option(OT_String(L"Option " + std::to_wstring(i)), OT_Option_Enum::Instance, i));
  EXPECT_EQ(table.find(L"Margin"), margin);
  EXPECT_EQ(table.find(L"Option 57")->as_int(), 57);
  EXPECT_EQ(table.find(L"Missing"), nullptr);
  OT_Option* again = table.add(OT_Option(L"Margin", OT_Option_Enum::Instance, 2));
  EXPECT_EQ(again, margin);
  EXPECT_EQ(margin->as_int(), 2);
  EXPECT_EQ(table.size(), 101u);
}

TEST(OmbraOptionTable, AddStoresACopySharingTheValue) {
  OT_Option_Table table;
  OT_Option option(L"Use Mask", OT_Option_Enum::Instance, false);
  OT_Option* stored = table.add(option);
  EXPECT_NE(stored, &option);
  EXPECT_EQ(stored->value().get(), option.value().get());
}

TEST(OmbraOptionTable, CopiesHaveTheirOwnOptionsOverSharedValues) {
  OT_Option_Table table;
  OT_Option* original = table.add(OT_Option(L"A", OT_Option_Enum::Instance, 5));
  OT_Option_Table copy(table);
  OT_Option* copied = copy.find(L"A");
  ASSERT_NE(copied, nullptr);
  EXPECT_NE(copied, original);
  EXPECT_EQ(copied->value().get(), original->value().get());
  copied->set(OT_Option_Value::of_int(6));
  EXPECT_EQ(original->as_int(), 5);
}

TEST(OmbraOptionTable, AssignmentKeepsTheAddressesOfCommonNames) {
  OT_Option_Table target;
  OT_Option* kept = target.add(OT_Option(L"A", OT_Option_Enum::Instance, 1));
  target.add(OT_Option(L"Gone", OT_Option_Enum::Instance, 1));
  OT_Option_Table source;
  source.add(OT_Option(L"B", OT_Option_Enum::Instance, 2));
  source.add(OT_Option(L"A", OT_Option_Enum::Instance, 3));
  target = source;
  EXPECT_EQ(target.size(), 2u);
  EXPECT_EQ(target.find(L"A"), kept);
  EXPECT_EQ(kept->as_int(), 3);
  EXPECT_EQ(target.find(L"Gone"), nullptr);
  EXPECT_EQ(target.find(L"B")->as_int(), 2);
  EXPECT_NE(target.find(L"B"), source.find(L"B"));
}

TEST(OmbraRendererOptions, Defaults) {
  const OT_Renderer_Options options;
  EXPECT_EQ(options.buffer_depth(), 0);
  EXPECT_EQ(options.color_system(), OT_Color_System_Direct);
  EXPECT_FALSE(options.alpha_blending());
  EXPECT_FALSE(options.local_coordinates());
  EXPECT_EQ(options.window_origin().x, 0);
  EXPECT_EQ(options.window_origin().y, 0);
  EXPECT_EQ(options.window_size().x, 0);
  EXPECT_EQ(options.window_size().y, 0);
  EXPECT_EQ(options.palette().get(), OB_Default_Palette().get());
}

class Counting_Renderer : public OT_Renderer_Data {
 public:
  explicit Counting_Renderer(const OT_Renderer_Data* prototype = nullptr) : OT_Renderer_Data(prototype) {}
  int establish() override {
    ++established;
    return 7;
  }
  void begin_picture(OT_Document_Info*) override { ++begun; }
  void end_picture() override { ++ended; }
  void update(const OT_Int_Rectangle& region) override { updated = region; }
  void install_standard(bool keep_valid) { set_standard_actions(keep_valid); }
  int established = 0, begun = 0, ended = 0;
  OT_Int_Rectangle updated{};
};

void dummy_update(void*, const OT_DCI_Point*, const OT_DCI_Point*, const OT_Shared_Image*, int, int) {}

TEST(OmbraRendererData, BaseConstructionWithoutPrototype) {
  OT_Renderer_Data renderer(nullptr);
  EXPECT_EQ(renderer.root, &renderer);
  EXPECT_EQ(renderer.image_factory.context, nullptr);
  EXPECT_EQ(renderer.image_factory.function, &OB_Standard_Image_Factory);
  EXPECT_EQ(renderer.window_update.function, nullptr);
  EXPECT_EQ(renderer.current_renderer_options(), &renderer.current_renderer_options_);
  EXPECT_EQ(renderer.current_option_table(), &renderer.current_options);
  EXPECT_EQ(renderer.establish(), 0);
  EXPECT_EQ(renderer.clone(), nullptr);
}

TEST(OmbraRendererData, PrototypeGivesCallbacksTablesAndOptions) {
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
  EXPECT_EQ(renderer.image_factory.function, &OB_Standard_Image_Factory);
  EXPECT_EQ(renderer.window_update.function, &dummy_update);
  ASSERT_NE(renderer.requested_options.find(L"Requested"), nullptr);
  EXPECT_EQ(renderer.requested_options.find(L"Requested")->as_int(), 4);
  ASSERT_NE(renderer.current_options.find(L"Current"), nullptr);
  EXPECT_EQ(renderer.requested_renderer_options.buffer_depth(), 16);
  EXPECT_EQ(renderer.current_renderer_options()->window_size().x, 640);
}

TEST(OmbraRendererData, AllFormsReachTheRenderersOwnOperations) {
  Counting_Renderer renderer;
  EXPECT_EQ(renderer.establish_all(), 7);
  renderer.begin_picture_all(nullptr);
  renderer.end_picture_all();
  renderer.update_all(OT_Int_Rectangle{1, 2, 3, 4});
  EXPECT_EQ(renderer.established, 1);
  EXPECT_EQ(renderer.begun, 1);
  EXPECT_EQ(renderer.ended, 1);
  EXPECT_EQ(renderer.updated, (OT_Int_Rectangle{1, 2, 3, 4}));
}

TEST(OmbraRendererData, UpdateCopiesRendererOptionsAndNewOptions) {
  OT_Renderer_Data renderer(nullptr);
  renderer.requested_renderer_options.set_window_size({32, 16});
  renderer.requested_renderer_options.set_color_system(OT_Color_System_Mapped);
  OT_Option* requested = renderer.requested_options.add(OT_Option(L"Margin", OT_Option_Enum::Instance, 3));
  renderer.update_current_options();
  EXPECT_EQ(renderer.current_renderer_options_.window_size().x, 32);
  EXPECT_EQ(renderer.current_renderer_options_.color_system(), OT_Color_System_Mapped);
  OT_Option* current = renderer.current_options.find(L"Margin");
  ASSERT_NE(current, nullptr);
  EXPECT_NE(current, requested);
  EXPECT_EQ(current->as_int(), 3);
}

TEST(OmbraRendererData, UpdateKeepsValuesStoredInTheCurrentTable) {
  OT_Renderer_Data renderer(nullptr);
  renderer.requested_options.add(OT_Option(L"ZBuffer Write", OT_Option_Enum::Instance, static_cast<const void*>(nullptr)));
  renderer.current_options.add(OT_Option(L"ZBuffer Write", OT_Option_Enum::Instance, static_cast<const void*>(nullptr)));
  int setter = 0;
  OT_Option* current = renderer.current_options.find(L"ZBuffer Write");
  make_unique(current->value())->storage.as_pointer = &setter;
  renderer.update_current_options();
  EXPECT_EQ(renderer.current_options.find(L"ZBuffer Write"), current);
  EXPECT_EQ(current->as_pointer(), &setter);
}

TEST(OmbraRendererData, UpdateCarriesChangedOptionsOnceAndClearsTheMark) {
  OT_Renderer_Data renderer(nullptr);
  OT_Option* requested = renderer.requested_options.add(OT_Option(L"Margin", OT_Option_Enum::Instance, 1));
  renderer.update_current_options();
  OT_Option* current = renderer.current_options.find(L"Margin");
  // A value written into the current table by its owner...
  make_unique(current->value())->storage.as_int = 99;
  renderer.update_current_options();
  EXPECT_EQ(current->as_int(), 99);
  // ...gives way to a client's change of the requested option.
  const OT_Option_Value value = OT_Option_Value::of_int(5);
  requested->set(value);
  EXPECT_TRUE(requested->changed());
  renderer.update_current_options();
  EXPECT_EQ(current->as_int(), 5);
  EXPECT_EQ(current->value().get(), value.get());
  EXPECT_FALSE(requested->changed());
  make_unique(current->value())->storage.as_int = 77;
  renderer.update_current_options();
  EXPECT_EQ(current->as_int(), 77);
}

TEST(OmbraRendererData, StandardActionsFillEverySlot) {
  Counting_Renderer renderer;
  int valid = 0, total = 0;
#define OMBRA_TEST_COUNT(name, ...)              \
  ++total;                                       \
  if (renderer.name.valid == 1 && renderer.name.function && renderer.name.object == &renderer && \
      renderer.name.adjustment == 0)             \
    ++valid;
  OT_ACTION_SLOTS(OMBRA_TEST_COUNT)
#undef OMBRA_TEST_COUNT
  EXPECT_EQ(valid, total);
  EXPECT_EQ(total, 65);
  EXPECT_EQ(renderer.draw_2di_polytriangle.function, &OB_Standard_Draw_2DI_Polytriangle);
  EXPECT_EQ(renderer.draw_dci_colorized_polytriangle.function, &OB_Standard_Draw_DCI_Colorized_Polytriangle);
  EXPECT_EQ(renderer.draw_tiled_polyline.function, &OB_Standard_Draw_Tiled_Polyline);
  EXPECT_EQ(renderer.draw_dc_gouraud_polyline.function, &OB_Standard_Draw_DC_Gouraud_Polyline);
  EXPECT_EQ(renderer.draw_2d_textured_polytriangle.function, &OB_Standard_Draw_2D_Textured_Polytriangle);
  EXPECT_EQ(renderer.draw_dci_index8_image.function, &OB_Standard_Draw_DCI_Index8_Image);
  EXPECT_EQ(renderer.draw_dci_rgb32_image.function, &OB_Standard_Draw_DCI_RGB32_Image);
  EXPECT_EQ(renderer.draw_2di_polymarker.function, &OB_Standard_Draw_2DI_Polymarker);
  EXPECT_EQ(renderer.draw_dc_polygon.function, &OB_Standard_Draw_DC_Polygon);
  EXPECT_EQ(renderer.draw_dci_dot.function, &OB_Standard_Draw_DCI_Dot);
  EXPECT_EQ(renderer.clear_color.function, &OB_Standard_Clear_Color);
  EXPECT_EQ(renderer.clear_depth.function, &OB_Standard_Clear_Depth);
  EXPECT_EQ(renderer.read_color_rectangle.function, &OB_Standard_Read_Color_Rectangle);
  EXPECT_EQ(renderer.read_depth_rectangle.function, &OB_Standard_Read_Depth_Rectangle);
  EXPECT_EQ(renderer.write_depth_rectangle.function, &OB_Standard_Write_Depth_Rectangle);
}

void own_dot(OT_Renderer_Data*, const OT_Rendition&, const OT_DCI_Point*, const OT_RGB32*) {}

TEST(OmbraRendererData, StandardActionsReplaceOrKeepValidSlots) {
  Counting_Renderer renderer;
  renderer.draw_dci_dot.install(&renderer, own_dot);
  renderer.draw_dci_polyline.valid = 0;
  renderer.install_standard(true);
  EXPECT_EQ(renderer.draw_dci_dot.function, &own_dot);
  EXPECT_EQ(renderer.draw_dci_polyline.valid, 1);
  renderer.install_standard(false);
  EXPECT_EQ(renderer.draw_dci_dot.function, &OB_Standard_Draw_DCI_Dot);
}

}  // namespace
