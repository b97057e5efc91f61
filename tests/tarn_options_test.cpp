// The renderer's 18 named options in both tables, the handles kept on them,
// and the two depth setters a client calls between primitives.
#include <array>
#include <variant>

#include "frame/renderer_options.h"
#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

struct Color_Value {
  int red, green, blue;
};
using Default_Value = std::variant<bool, int, std::nullptr_t, Color_Value>;

struct Option_Case {
  const wchar_t* name;
  OT_Option_Type type;
  Default_Value value;
  OT_Option_Enum::Scope scope;
};

// The options in their order of creation, with their defaults.
const Option_Case kOptions[] = {
    {L"Margin", OT_Option_Type::Int, 0, OT_Option_Enum::Instance},
    {L"Color Buffer", OT_Option_Type::Pointer, nullptr, OT_Option_Enum::Instance},
    {L"Depth Buffer", OT_Option_Type::Pointer, nullptr, OT_Option_Enum::Instance},
    {L"Use Mask", OT_Option_Type::Bool, false, OT_Option_Enum::Instance},
    {L"Clip Phase", OT_Option_Type::Bool, false, OT_Option_Enum::Instance},
    {L"Enable Tiling", OT_Option_Type::Bool, false, OT_Option_Enum::Instance},
    {L"Merge Control Background Color", OT_Option_Type::Color, Color_Value{255, 255, 255}, OT_Option_Enum::Instance},
    {L"Force Merge Control On", OT_Option_Type::Bool, false, OT_Option_Enum::Instance},
    {L"ZBuffer Write", OT_Option_Type::Pointer, nullptr, OT_Option_Enum::Instance},
    {L"ZBuffer Test", OT_Option_Type::Pointer, nullptr, OT_Option_Enum::Instance},
    {L"Mask Cache", OT_Option_Type::Pointer, nullptr, OT_Option_Enum::Shared},
    {L"Supports Advanced Lattice Rendering", OT_Option_Type::Bool, true, OT_Option_Enum::Instance},
    {L"Supports Antialiased Lines", OT_Option_Type::Bool, false, OT_Option_Enum::Instance},
    {L"Supports Gooch Shader", OT_Option_Type::Bool, false, OT_Option_Enum::Instance},
    {L"Supports Shadow Mapping Shader", OT_Option_Type::Bool, false, OT_Option_Enum::Instance},
    {L"Shadow Mapping Quality", OT_Option_Type::Int, 0, OT_Option_Enum::Instance},
    {L"Max Active Lights", OT_Option_Type::Int, 2147483647, OT_Option_Enum::Instance},
    {L"No ISM Image Support", OT_Option_Type::Bool, true, OT_Option_Enum::Instance},
};
static_assert(std::size(kOptions) == 18);

std::string narrow(const wchar_t* name) {
  std::string out;
  for (; *name; ++name) out += static_cast<char>(*name);
  return out;
}

// The setters hold these in the current table.
const void* write_setter() { return reinterpret_cast<const void*>(&tarn::set_depth_write); }
const void* test_setter() { return reinterpret_cast<const void*>(&tarn::set_depth_test); }

void expect_default(const OT_Option& option, const Option_Case& c) {
  EXPECT_EQ(option.type(), c.type);
  EXPECT_EQ(option.scope(), c.scope);
  if (const bool* b = std::get_if<bool>(&c.value)) {
    EXPECT_EQ(option.as_bool(), *b ? 1 : 0);
  }
  if (const int* i = std::get_if<int>(&c.value)) {
    EXPECT_EQ(option.as_int(), *i);
  }
  if (std::holds_alternative<std::nullptr_t>(c.value)) {
    EXPECT_EQ(option.as_pointer(), nullptr);
  }
  if (const Color_Value* rgb = std::get_if<Color_Value>(&c.value)) {
    EXPECT_EQ(option.as_color()[0], rgb->red);
    EXPECT_EQ(option.as_color()[1], rgb->green);
    EXPECT_EQ(option.as_color()[2], rgb->blue);
  }
}

// Position of an option in a table, or -1.
int position(const OT_Option_Table& table, const wchar_t* name) {
  for (std::size_t i = 0; i < table.size(); ++i)
    if (table.at(i).name() == OT_String(name)) return static_cast<int>(i);
  return -1;
}

TEST(Options, RequestedTableHoldsAllEighteenWithTheirDefaultsInOrder) {
  Renderer_Pointer r = make_renderer();
  int last = -1;
  for (const Option_Case& c : kOptions) {
    SCOPED_TRACE(narrow(c.name));
    const OT_Option* option = r->requested_options.find(c.name);
    ASSERT_NE(option, nullptr);
    expect_default(*option, c);
    const int at = position(r->requested_options, c.name);
    EXPECT_GT(at, last);
    last = at;
  }
}

TEST(Options, CurrentTableHoldsAllEighteenWithTheirDefaultsButTheSetters) {
  Renderer_Pointer r = make_renderer();
  int last = -1;
  for (const Option_Case& c : kOptions) {
    SCOPED_TRACE(narrow(c.name));
    const OT_Option* option = r->current_options.find(c.name);
    ASSERT_NE(option, nullptr);
    const std::wstring name = c.name;
    if (name == L"ZBuffer Write" || name == L"ZBuffer Test") {
      EXPECT_EQ(option->type(), OT_Option_Type::Pointer);
      EXPECT_EQ(option->scope(), OT_Option_Enum::Instance);
    } else {
      expect_default(*option, c);
    }
    const int at = position(r->current_options, c.name);
    EXPECT_GT(at, last);
    last = at;
  }
  EXPECT_EQ(r->current_option_table(), &r->current_options);
}

// The kept handles in the order of their record.
const wchar_t* const kHandleNames[] = {
    L"Margin",         L"Color Buffer",  L"Depth Buffer", L"Mask Cache", L"Use Mask", L"Clip Phase",
    L"Enable Tiling", L"Merge Control Background Color", L"Force Merge Control On", L"ZBuffer Write",
    L"ZBuffer Test",
};
static_assert(sizeof(option_handles) == std::size(kHandleNames) * sizeof(OT_Option*));

void expect_handles(const option_handles& handles, const OT_Option_Table& table) {
  std::array<OT_Option*, std::size(kHandleNames)> in_order;
  std::memcpy(in_order.data(), &handles, sizeof handles);
  for (std::size_t i = 0; i < in_order.size(); ++i) {
    SCOPED_TRACE(narrow(kHandleNames[i]));
    EXPECT_NE(in_order[i], nullptr);
    EXPECT_EQ(in_order[i], table.find(kHandleNames[i]));
  }
}

TEST(Options, HandleRecordsPointAtTheStoredOptionsOfTheirTables) {
  Renderer_Pointer r = make_renderer();
  expect_handles(r->requested_handles, r->requested_options);
  expect_handles(r->current_handles, r->current_options);
}

TEST(Options, SettersSitInTheCurrentTableOnly) {
  Renderer_Pointer r = make_renderer();
  EXPECT_EQ(r->current_options.find(L"ZBuffer Write")->as_pointer(), write_setter());
  EXPECT_EQ(r->current_options.find(L"ZBuffer Test")->as_pointer(), test_setter());
  EXPECT_EQ(r->requested_options.find(L"ZBuffer Write")->as_pointer(), nullptr);
  EXPECT_EQ(r->requested_options.find(L"ZBuffer Test")->as_pointer(), nullptr);
}

TEST(Options, SettersSurviveUpdatesAndEstablish) {
  Renderer_Pointer r = make_renderer();
  r->requested_renderer_options.set_window_size({16, 16});
  r->requested_options.find(L"Use Mask")->set(OT_Option_Value::of_bool(true));
  r->update_current_options();
  EXPECT_EQ(r->current_handles.zbuffer_write->as_pointer(), write_setter());
  EXPECT_EQ(r->current_handles.zbuffer_test->as_pointer(), test_setter());
  // Establish makes the mask cache and updates the current options itself.
  ASSERT_EQ(r->establish(), 0);
  ASSERT_TRUE(r->mask_cache);
  EXPECT_EQ(r->current_handles.zbuffer_write->as_pointer(), write_setter());
  EXPECT_EQ(r->current_handles.zbuffer_test->as_pointer(), test_setter());
  r->update_current_options();
  EXPECT_EQ(r->current_handles.zbuffer_write->as_pointer(), write_setter());
  EXPECT_EQ(r->current_handles.zbuffer_test->as_pointer(), test_setter());
}

// A depth-buffered RGB32 window with one triangle at depth 500 in red.
class Options_Depth_Setters : public ::testing::Test {
 protected:
  Options_Depth_Setters() : h_(kAllModes[5]) { draw(500); }

  void draw(int z) { h_.draw_dci({{10, 10, z}, {30, 10, z}, {10, 30, z}}); }
  void recolor() {
    OT_Rendition_Colors* colors = h_.rendition().writable_colors();
    colors->color = kGreen;
  }
  template <class Setter>
  Setter setter(const wchar_t* name) {
    const OT_Option* option = h_.renderer().current_option_table()->find(name);
    return option ? reinterpret_cast<Setter>(const_cast<void*>(option->as_pointer())) : nullptr;
  }

  static constexpr OT_RGB32 kGreen{0, 255, 0, 255};
  Renderer_Harness h_;
};

TEST_F(Options_Depth_Setters, TestSetterTakesItsValueThroughAPointer) {
  recolor();
  draw(500);  // comparison 2: an equal depth passes
  EXPECT_EQ(h_.pixel(12, 12), kGreen.word());

  const Depth_Test_Setter set_test = setter<Depth_Test_Setter>(L"ZBuffer Test");
  ASSERT_NE(set_test, nullptr);
  const int one = 1;
  set_test(&h_.renderer(), &one);
  EXPECT_EQ(h_.renderer().depth_test, 1);

  h_.rendition().writable_colors()->color = Renderer_Harness::kColor;
  draw(500);  // comparison 1: an equal depth fails, with no establish in between
  EXPECT_EQ(h_.pixel(12, 12), kGreen.word());
  draw(499);  // a nearer one still passes
  EXPECT_EQ(h_.pixel(12, 12), Renderer_Harness::kColor.word());
  EXPECT_EQ(h_.depth(12, 12), 499);

  const int two = 2;
  set_test(&h_.renderer(), &two);
  EXPECT_EQ(h_.renderer().depth_test, 2);
}

TEST_F(Options_Depth_Setters, WriteSetterTakesItsByteByValue) {
  const Depth_Write_Setter set_write = setter<Depth_Write_Setter>(L"ZBuffer Write");
  ASSERT_NE(set_write, nullptr);
  set_write(&h_.renderer(), 0);
  EXPECT_EQ(h_.renderer().depth_write, 0);
  recolor();
  draw(400);  // drawn, but the depth stays
  EXPECT_EQ(h_.pixel(12, 12), kGreen.word());
  EXPECT_EQ(h_.depth(12, 12), 500);

  set_write(&h_.renderer(), 1);
  EXPECT_EQ(h_.renderer().depth_write, 1);
  draw(400);
  EXPECT_EQ(h_.depth(12, 12), 400);
}

TEST(Options, PrototypeMaskCacheOptionIsKeptWithItsScopeAndValue) {
  int shared_cache = 0;  // stands for a cache; only its address is compared
  OT_Renderer_Data prototype(nullptr);
  const OT_Option carried(L"Mask Cache", OT_Option_Enum::Instance, static_cast<const void*>(&shared_cache));
  prototype.requested_options.add(carried);
  prototype.current_options.add(carried);

  Renderer_Pointer r = make_renderer(&prototype);
  for (OT_Option_Table* table : {&r->requested_options, &r->current_options}) {
    const OT_Option* option = table->find(L"Mask Cache");
    ASSERT_NE(option, nullptr);
    EXPECT_EQ(option->scope(), OT_Option_Enum::Instance);
    EXPECT_EQ(option->as_pointer(), &shared_cache);
  }
  EXPECT_EQ(r->requested_handles.mask_cache, r->requested_options.find(L"Mask Cache"));
  EXPECT_EQ(r->current_handles.mask_cache, r->current_options.find(L"Mask Cache"));
  // The other seventeen are there as usual.
  for (const Option_Case& c : kOptions) EXPECT_NE(r->requested_options.find(c.name), nullptr) << narrow(c.name);
}

}  // namespace
}  // namespace tarn::testing
