// The renderer frame: the module as a host loads it, construction and
// establish (images, origin, cube, mask cache, merge colours), the
// selection of a mode's actions, and the options with their setters.
#include <dlfcn.h>

#include "module/action_table.h"
#include "primitives/tiled.h"
#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

// tarn-render loads the module and draws through it (tests/tool_render_test.cpp);
// here the exports by name and the unloader.
TEST(Module, FactoriesByBothNamesAndTheUnloader) {
  void* library = dlopen(TARN_MODULE_PATH, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr) << dlerror();
  auto unload = reinterpret_cast<OT_Renderer_Unloader>(dlsym(library, "OB_Unload_Tarn_Renderer"));
  unload(nullptr);  // does nothing
  for (const char* name : {"OB_Renderer", "OB_Tarn_Renderer"}) {
    auto factory = reinterpret_cast<OT_Renderer_Factory>(dlsym(library, name));
    ASSERT_NE(factory, nullptr) << name;
    OT_Renderer_Data* made = factory(OT_Renderer_Handle{nullptr});
    ASSERT_NE(made, nullptr) << name;
    unload(made);
  }
  dlclose(library);
}

// Brings a mode and window size into the options, as a client does, and
// establishes.
void establish_in(Software_Z_Buffer& r, const Mode_Case& mode, OT_Int_XY size = {32, 24}) {
  OT_Renderer_Options& o = r.requested_renderer_options;
  o.set_window_size(size);
  o.set_buffer_depth(mode.buffer_depth);
  o.set_color_system(mode.color_system);
  o.set_alpha_blending(mode.alpha);
  r.update_current_options();
  ASSERT_EQ(r.establish(), 0);
}

void set_current(Software_Z_Buffer& r, const wchar_t* name, const OT_Option_Value& value) {
  r.current_options.find(name)->set(value);
}

TEST(Establish, ConstructionDefaultsAndTheFirstEstablish) {
  Renderer_Pointer r = make_renderer();
  EXPECT_FALSE(r->color_image || r->mask_cache);
  EXPECT_EQ((std::vector<int>{r->depth_write, r->depth_test, r->merge_index, r->merge_alternate_index,
                              r->force_merge}),
            (std::vector<int>{1, 2, 255, 0, 0}));
  EXPECT_EQ(r->merge_color, (OT_RGB32{0, 0, 0, 253}));
  EXPECT_EQ(r->merge_alternate_color, (OT_RGB32{1, 0, 0, 253}));
  r->requested_renderer_options.set_window_origin({3, -7});
  establish_in(*r, kZRgb32, {13, 9});
  EXPECT_EQ((std::vector<int>{r->color_image->format, r->depth_image->format, r->color_image->width,
                              r->depth_image->height, r->width, r->height, r->origin_x, r->origin_y}),
            (std::vector<int>{OT_Image_Format_RGB32, OT_Image_Format_Depth16, 13, 9, 13, 9, 3, -7}));
  EXPECT_EQ(r->current_handles.color_buffer->as_pointer(), r->color_image.get());
  // White by default, its alternate one blue lower.
  EXPECT_EQ(r->merge_color, (OT_RGB32{255, 255, 255, 255}));
  EXPECT_EQ(r->merge_alternate_color, (OT_RGB32{254, 255, 255, 255}));
  r->requested_renderer_options.set_local_coordinates(true);
  establish_in(*r, kZRgb32, {13, 9});
  EXPECT_EQ(std::pair(r->origin_x, r->origin_y), std::pair(0, 0));
}

TEST(Establish, SameSizeKeepsTheImagesNewSizeOrNoDepthReplacesThem) {
  for (const Mode_Case& mode : kAllModes) {
    SCOPED_TRACE(mode.name);
    Renderer_Pointer r = make_renderer();
    establish_in(*r, mode);
    const OT_Shared_Image color = r->color_image, depth = r->depth_image;
    const OT_Option_Value_Data* value = r->current_handles.color_buffer->value().get();
    establish_in(*r, mode);
    EXPECT_EQ(r->color_image.get(), color.get());
    EXPECT_EQ(r->depth_image.get(), depth.get());
    EXPECT_EQ(r->current_handles.color_buffer->value().get(), value);
    for (OT_Int_XY size : {OT_Int_XY{32, 25}, OT_Int_XY{31, 25}}) {
      const OT_Shared_Image before = r->color_image, before_depth = r->depth_image;
      establish_in(*r, mode, size);
      EXPECT_NE(r->color_image.get(), before.get());
      EXPECT_EQ(std::pair(r->color_image->width, r->color_image->height), std::pair(size.x, size.y));
      EXPECT_EQ(r->current_handles.color_buffer->as_pointer(), r->color_image.get());
      if (mode.depth()) {
        EXPECT_NE(r->depth_image.get(), before_depth.get());
        EXPECT_EQ(r->depth_image->width, size.x);
      }
    }
    establish_in(*r, {"no_depth", 0, mode.color_system, mode.alpha}, {31, 25});
    EXPECT_FALSE(r->depth_image);
  }
}

// An image of the window's size in "Color Buffer": kept when its format is
// the colour system's, or for any format in a colour system other than 0
// and 1; otherwise replaced, and the option then names the new image.
TEST(Establish, ClientColorBufferIsKeptOrReplacedBySystemFormatAndSize) {
  const struct {
    int system;
    OT_Image_Format format;
    OT_Int_XY size;
    bool kept;
  } cases[] = {{1, OT_Image_Format_RGB32, {20, 10}, true},    {1, OT_Image_Format_Index8, {20, 10}, false},
               {1, OT_Image_Format_RGB32, {19, 10}, false},   {1, OT_Image_Format_RGB32, {20, 11}, false},
               {0, OT_Image_Format_Index8, {20, 10}, true},   {0, OT_Image_Format_RGB32, {20, 10}, false},
               {0, OT_Image_Format_Depth16, {20, 10}, false}, {2, OT_Image_Format_RGB32, {20, 10}, true},
               {2, OT_Image_Format_Depth16, {20, 10}, true}};
  for (const auto& c : cases) {
    Renderer_Pointer r = make_renderer();
    const OT_Shared_Image mine(c.size.x, c.size.y, c.format, 0, nullptr, false);
    set_current(*r, L"Color Buffer", OT_Option_Value(static_cast<const void*>(mine.get())));
    establish_in(*r, {"case", 0, static_cast<OT_Color_System>(c.system), false}, {20, 10});
    EXPECT_EQ(r->color_image.get() == mine.get(), c.kept) << c.system << " " << c.format;
    EXPECT_EQ(r->current_handles.color_buffer->as_pointer(), r->color_image.get());
    if (!c.kept) {
      EXPECT_EQ(r->color_image->format, c.system == 1 ? OT_Image_Format_RGB32 : OT_Image_Format_Index8);
    }
  }
  // Adopted, it is drawn into.
  Renderer_Harness h(kRgb32);
  const OT_Shared_Image mine(64, 48, OT_Image_Format_RGB32, 0, nullptr, false);
  set_current(h.renderer(), L"Color Buffer", OT_Option_Value(static_cast<const void*>(mine.get())));
  ASSERT_EQ(h.renderer().establish(), 0);
  h.clear();
  h.draw_dci({{10, 10, 0}, {14, 10, 0}, {10, 14, 0}});
  EXPECT_EQ(reinterpret_cast<const std::uint32_t*>(mine->device_rows[13])[10],
            Renderer_Harness::kColor.word());
}

// "Use Mask" on: the renderer's own cache or the client's, emptied by every
// establish; off: released.
TEST(Establish, MaskCacheIsMadeOrAdoptedAndEmptiedEachTime) {
  OT_Handle<Mask_Cache_Data> mine(new Mask_Cache_Data);
  for (bool client : {false, true}) {
    Renderer_Harness h(kRgb32);
    Software_Z_Buffer& r = h.renderer();
    set_current(r, L"Use Mask", OT_Option_Value::of_bool(true));
    if (client) set_current(r, L"Mask Cache", OT_Option_Value(static_cast<const void*>(mine.get())));
    ASSERT_EQ(r.establish(), 0);
    ASSERT_TRUE(r.mask_cache);
    EXPECT_EQ(r.mask_cache.get() == mine.get(), client);
    EXPECT_EQ(r.current_handles.mask_cache->as_pointer(), r.mask_cache.get());
    h.rendition().writable_device()->complex_clip = box(0, 0, 4, 4);
    h.dot(1, 1, 0);
    ASSERT_EQ(r.mask_cache->mask_count, 1);
    const OT_Handle<Mask_Cache_Data> held(r.mask_cache.get());
    ASSERT_EQ(r.establish(), 0);
    EXPECT_EQ(r.mask_cache.get(), held.get());
    EXPECT_TRUE(held->mask_count == 0 && held->head == nullptr);
    set_current(r, L"Use Mask", OT_Option_Value::of_bool(false));
    ASSERT_EQ(r.establish(), 0);
    EXPECT_FALSE(r.mask_cache);
    EXPECT_EQ(held->count.load(), client ? 2u : 1u);
  }
}

TEST(Establish, MergeBackgroundAndItsAlternate) {
  const struct {
    int red, green, blue;
    OT_RGB32 merge;
    byte alternate_blue;
  } cases[] = {{10, 20, 0, {0, 20, 10, 255}, 1},
               {10, 20, 1, {1, 20, 10, 255}, 0},
               {200, 100, 2, {2, 100, 200, 255}, 1},
               {300, 511, 257, {1, 255, 44, 255}, 0}};
  for (const Mode_Case& mode : {kRgb32, kMapped})
    for (const auto& c : cases) {
      Renderer_Pointer r = make_renderer();
      set_current(*r, L"Merge Control Background Color", OT_Option_Value::of_color(c.red, c.green, c.blue));
      set_current(*r, L"Force Merge Control On", OT_Option_Value::of_bool(true));
      establish_in(*r, mode);
      EXPECT_EQ(r->merge_color, c.merge);
      EXPECT_EQ(r->merge_alternate_color, (OT_RGB32{c.alternate_blue, c.merge.g, c.merge.r, 255}));
      EXPECT_EQ(r->merge_index, byte(r->current_renderer_options()->palette().closest_match(c.merge, false)));
      EXPECT_NE(r->merge_alternate_index, r->merge_index);
      EXPECT_EQ(r->force_merge, 1);
    }
  // The alternate index: the first other match of a walk from the palette's
  // colour, down by 5 from white; up from black; none found, the same index.
  const struct {
    int grey;
    std::vector<std::pair<int, OT_RGB32>> palette;
    byte merge_index, alternate_index;
  } walks[] = {{255, {{1, OT_RGB32::rgba(255, 255, 255)}, {2, OT_RGB32::rgba(200, 200, 200)}}, 1, 2},
               {0, {{1, OT_RGB32::rgba(21, 21, 21)}}, 0, 1},
               {240,
                {{1, OT_RGB32::rgba(251, 251, 251)},
                 {2, OT_RGB32::rgba(228, 228, 228)},
                 {3, OT_RGB32::rgba(255, 255, 255)}},
                1,
                2},
               {100, {}, 0, 0}};
  for (const auto& w : walks) {
    Renderer_Pointer r = make_renderer();
    auto* data = new OT_Palette_Data;
    for (const auto& [index, color] : w.palette) data->entries[index].color = color;
    r->requested_renderer_options.set_palette(OT_Palette(data));
    set_current(*r, L"Merge Control Background Color", OT_Option_Value::of_color(w.grey, w.grey, w.grey));
    establish_in(*r, kRgb32);
    EXPECT_EQ(r->merge_index, w.merge_index) << w.grey;
    EXPECT_EQ(r->merge_alternate_index, w.alternate_index) << w.grey;
  }
}

// ---- Mode selection ------------------------------------------------------------------

TEST(Modes, SelectionByDepthColourSystemAndAlpha) {
  EXPECT_EQ(select_mode(0, true, true), select_mode(-1, true, true));
  EXPECT_EQ(select_mode(16, true, false), select_mode(1, true, false));
  EXPECT_EQ(select_mode(0, false, true), select_mode(0, false, false));  // alpha is not looked at in mapped
  EXPECT_EQ(select_mode(16, false, true), select_mode(16, false, false));
  std::set<Mode> all;
  for (int depth : {0, 16})
    for (bool direct : {false, true})
      for (bool alpha : {false, true}) all.insert(select_mode(depth, direct, alpha));
  EXPECT_EQ(all.size(), 6u);
}

TEST(Modes, EstablishInstallsTheModesFunctions) {
  Renderer_Pointer r = make_renderer();
  const OT_Action_Slots before = *r;
  establish_in(*r, kZRgb32);
  // The mode's own functions, on this renderer.
  EXPECT_EQ(r->draw_dci_polytriangle.object, r.get());
  EXPECT_NE(r->draw_dci_polytriangle.function, before.draw_dci_polytriangle.function);
  EXPECT_NE(r->draw_2di_polymarker.function, before.draw_2di_polymarker.function);
  const auto z_clear_depth = r->clear_depth.function;
  // Mapped with depth: no marker of its own, the host's RGB32 image routine.
  r = make_renderer();
  establish_in(*r, kZMapped);
  EXPECT_EQ(r->draw_2di_polymarker.function, before.draw_2di_polymarker.function);
  EXPECT_EQ(r->draw_dci_rgb32_image.function, &OB_Standard_Draw_DCI_RGB32_Image);
  // Colour system 2 is 0.
  Renderer_Pointer two = make_renderer();
  establish_in(*two, {"system2", 0, static_cast<OT_Color_System>(2), false});
  Renderer_Pointer mapped = make_renderer();
  establish_in(*mapped, kMapped);
  EXPECT_EQ(two->draw_dci_polytriangle.function, mapped->draw_dci_polytriangle.function);
  EXPECT_EQ(two->clear_color.function, mapped->clear_color.function);
  // No depth: a clear_depth that does nothing; the depth image services of a
  // mode before stay in place.
  Renderer_Pointer changed = make_renderer();
  establish_in(*changed, kZRgb32);
  establish_in(*changed, kRgb32);
  EXPECT_NE(changed->clear_depth.function, z_clear_depth);
  EXPECT_EQ(changed->clear_depth.function, mapped->clear_depth.function);
  EXPECT_NE(changed->read_depth_rectangle.function, mapped->read_depth_rectangle.function);
  // A mode without depth installs none of the textured actions, and tiling
  // off after on leaves the tiled slots in place.
  EXPECT_EQ(changed->draw_tiled_polyline.function, &OB_Standard_Draw_Tiled_Polyline);
  changed->requested_options.find(L"Enable Tiling")->set(OT_Option_Value::of_bool(true));
  establish_in(*changed, kRgb32);
  EXPECT_EQ(changed->draw_tiled_polyline.function, &tiled_polyline);
  changed->requested_options.find(L"Enable Tiling")->set(OT_Option_Value::of_bool(false));
  establish_in(*changed, kRgb32);
  EXPECT_EQ(changed->draw_tiled_polyline.function, &tiled_polyline);
  EXPECT_EQ(changed->draw_tiled_polyline.object, changed.get());
}

// ---- Options -------------------------------------------------------------------------

TEST(Options, AllEighteenInBothTablesWithTheCapabilityDefaults) {
  Renderer_Pointer r = make_renderer();
  for (const wchar_t* name :
       {L"Margin", L"Color Buffer", L"Depth Buffer", L"Use Mask", L"Clip Phase", L"Enable Tiling",
        L"Merge Control Background Color", L"Force Merge Control On", L"ZBuffer Write", L"ZBuffer Test",
        L"Mask Cache", L"Supports Advanced Lattice Rendering", L"Supports Antialiased Lines",
        L"Supports Gooch Shader", L"Supports Shadow Mapping Shader", L"Shadow Mapping Quality",
        L"Max Active Lights", L"No ISM Image Support"}) {
    EXPECT_NE(r->requested_options.find(name), nullptr);
    EXPECT_NE(r->current_options.find(name), nullptr);
  }
  auto current = [&r](const wchar_t* name) { return r->current_options.find(name); };
  EXPECT_EQ(
      (std::vector<int>{
          current(L"Max Active Lights")->as_int(), current(L"Supports Advanced Lattice Rendering")->as_bool(),
          current(L"No ISM Image Support")->as_bool(), current(L"Supports Antialiased Lines")->as_bool(),
          current(L"Shadow Mapping Quality")->as_int()}),
      (std::vector<int>{2147483647, 1, 1, 0, 0}));
  // A prototype's "Mask Cache" is kept with its scope and value.
  int shared_cache = 0;
  OT_Renderer_Data prototype(nullptr);
  const OT_Option carried(L"Mask Cache", OT_Option_Enum::Instance, static_cast<const void*>(&shared_cache));
  prototype.requested_options.add(carried);
  prototype.current_options.add(carried);
  Renderer_Pointer copy = make_renderer(&prototype);
  for (OT_Option_Table* table : {&copy->requested_options, &copy->current_options}) {
    EXPECT_EQ(table->find(L"Mask Cache")->scope(), OT_Option_Enum::Instance);
    EXPECT_EQ(table->find(L"Mask Cache")->as_pointer(), &shared_cache);
  }
}

// "Margin", "Clip Phase" and "Depth Buffer" change no pixel.
TEST(Options, InertOptionsChangeNothing) {
  Renderer_Harness h(kZRgb32), plain(kZRgb32);
  Software_Z_Buffer& r = h.renderer();
  set_current(r, L"Margin", OT_Option_Value::of_int(7));
  set_current(r, L"Clip Phase", OT_Option_Value::of_bool(true));
  const OT_Shared_Image other(64, 48, OT_Image_Format_Depth16, 0, nullptr, false);
  set_current(r, L"Depth Buffer", OT_Option_Value(static_cast<const void*>(other.get())));
  ASSERT_EQ(r.establish(), 0);
  h.clear();
  for (Renderer_Harness* each : {&h, &plain}) {
    each->draw_dci(rectangle(0, 0, 30, 30, 500));
    each->line_2di({{-5, 40, 9}, {60, 44, 9}});
  }
  EXPECT_EQ(h.snapshot(), plain.snapshot());
  EXPECT_NE(r.depth_image.get(), other.get());
}
}  // namespace
}  // namespace tarn::testing
