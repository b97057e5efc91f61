// Construction and establish: the images, the window origin, the cube, the
// mask cache, the merge colours, and which function lands in which slot.
#include <tuple>

#include "module/action_table.h"
#include "frame/buffer_services.h"
#include "frame/renderer_options.h"
#include "primitives/polygons.h"
#include "tests/tarn_test_support.h"
#include "triangles/depth_triangles.h"
#include "triangles/flat_triangles.h"

namespace tarn::testing {
namespace {

const Mode_Case& kRgb32 = kAllModes[1];
const Mode_Case& kMapped = kAllModes[2];
const Mode_Case& kZRgb32 = kAllModes[5];

// Brings a mode and a window size into the current renderer options, as a
// client does, and establishes.
int establish_in(Software_Z_Buffer& r, const Mode_Case& mode, OT_Int_XY size = {32, 24}) {
  OT_Renderer_Options& o = r.requested_renderer_options;
  o.set_window_size(size);
  o.set_buffer_depth(mode.buffer_depth);
  o.set_color_system(mode.color_system);
  o.set_alpha_blending(mode.alpha);
  r.update_current_options();
  return r.establish();
}

OT_Option* current_option(Software_Z_Buffer& r, const wchar_t* name) { return r.current_options.find(name); }

void set_current(Software_Z_Buffer& r, const wchar_t* name, const OT_Option_Value& value) {
  OT_Option* option = current_option(r, name);
  ASSERT_NE(option, nullptr);
  option->set(value);
}

OT_Shared_Image new_image(int width, int height, OT_Image_Format format) {
  return OT_Shared_Image(width, height, format, 0, nullptr, false);
}

// An image factory that remembers what it was asked for, then makes the
// image as the host does.
struct Factory_Call {
  void* context;
  int width, height;
  OT_Image_Format format;
};
std::vector<Factory_Call> g_factory_calls;
int g_factory_context;

void recording_factory(void* context, int width, int height, const OT_Image_Format* format,
                       OT_Shared_Image* image_out) {
  g_factory_calls.push_back({context, width, height, *format});
  OB_Standard_Image_Factory(context, width, height, format, image_out);
}

void recording_factory_into(Software_Z_Buffer& r) {
  g_factory_calls.clear();
  r.image_factory.context = &g_factory_context;
  r.image_factory.function = recording_factory;
}

void null_factory(void*, int, int, const OT_Image_Format*, OT_Shared_Image* image_out) { image_out->reset(); }

// ---- Construction ----------------------------------------------------------

TEST(Establish, ConstructionLeavesTheDocumentedDefaults) {
  Renderer_Pointer r = make_renderer();
  EXPECT_FALSE(r->color_image);
  EXPECT_FALSE(r->depth_image);
  EXPECT_FALSE(r->mask_cache);  // the constructor's cache does not survive
  EXPECT_EQ(r->origin_x, 0);
  EXPECT_EQ(r->origin_y, 0);
  EXPECT_EQ(r->width, 0);
  EXPECT_EQ(r->height, 0);
  EXPECT_EQ(r->depth_write, 1);
  EXPECT_EQ(r->depth_test, 2);
  EXPECT_EQ(r->edge_depth_bias, 0);
  EXPECT_EQ(r->merge_index, 255);
  EXPECT_EQ(r->merge_alternate_index, 0);
  EXPECT_EQ(r->merge_color, (OT_RGB32{0, 0, 0, 253}));
  EXPECT_EQ(r->merge_alternate_color, (OT_RGB32{1, 0, 0, 253}));
  EXPECT_EQ(r->force_merge, 0);

  const OT_Color_Cube expected(OT_Int_RGB{2, 2, 2}, 1.0f, 0);
  EXPECT_EQ(r->cube.base, expected.base);
  EXPECT_EQ(r->cube.red_step, expected.red_step);
  EXPECT_EQ(r->cube.green_step, expected.green_step);
  EXPECT_EQ(r->cube.blue_step, expected.blue_step);
  EXPECT_EQ(r->cube.red_scale, expected.red_scale);
  EXPECT_EQ(r->cube.green_scale, expected.green_scale);
  EXPECT_EQ(r->cube.blue_scale, expected.blue_scale);

  const OT_Renderer_Options& requested = r->requested_renderer_options;
  EXPECT_EQ(requested.buffer_depth(), 16);
  EXPECT_TRUE(requested.backing_store());
  EXPECT_TRUE(requested.supports_complex_clip());
}

TEST(Establish, AlwaysAnswersZero) {
  Renderer_Pointer r = make_renderer();
  for (const Mode_Case& mode : kAllModes) EXPECT_EQ(establish_in(*r, mode), 0) << mode.name;
}

// ---- Images ------------------------------------------------------------------

class Establish_Images : public ::testing::TestWithParam<Mode_Case> {};

TEST_P(Establish_Images, FirstEstablishAsksTheFactoryForTheModesImages) {
  const Mode_Case& mode = GetParam();
  Renderer_Pointer r = make_renderer();
  recording_factory_into(*r);
  ASSERT_EQ(establish_in(*r, mode, {13, 9}), 0);

  const OT_Image_Format color_format = mode.mapped() ? OT_Image_Format_Index8 : OT_Image_Format_RGB32;
  ASSERT_EQ(g_factory_calls.size(), mode.depth() ? 2u : 1u);
  EXPECT_EQ(g_factory_calls[0].context, &g_factory_context);
  EXPECT_EQ(g_factory_calls[0].width, 13);
  EXPECT_EQ(g_factory_calls[0].height, 9);
  EXPECT_EQ(g_factory_calls[0].format, color_format);
  if (mode.depth()) {
    EXPECT_EQ(g_factory_calls[1].context, &g_factory_context);
    EXPECT_EQ(g_factory_calls[1].width, 13);
    EXPECT_EQ(g_factory_calls[1].height, 9);
    EXPECT_EQ(g_factory_calls[1].format, OT_Image_Format_Depth16);
  }

  ASSERT_TRUE(r->color_image);
  EXPECT_EQ(r->color_image->format, color_format);
  EXPECT_EQ(r->width, 13);
  EXPECT_EQ(r->height, 9);
  EXPECT_EQ(r->depth_image ? r->depth_image->format : OT_Image_Format(0),
            mode.depth() ? OT_Image_Format_Depth16 : OT_Image_Format(0));
  // Clients find the new colour image through the option.
  EXPECT_EQ(r->current_handles.color_buffer->as_pointer(), r->color_image.get());
}

TEST_P(Establish_Images, SecondEstablishOfTheSameSizeKeepsBothImagesAndLeavesTheOption) {
  const Mode_Case& mode = GetParam();
  Renderer_Pointer r = make_renderer();
  ASSERT_EQ(establish_in(*r, mode), 0);
  const OT_Shared_Image color = r->color_image, depth = r->depth_image;
  const OT_Option_Value_Data* option_value = r->current_handles.color_buffer->value().get();

  recording_factory_into(*r);
  ASSERT_EQ(establish_in(*r, mode), 0);
  EXPECT_TRUE(g_factory_calls.empty());
  EXPECT_EQ(r->color_image.get(), color.get());
  EXPECT_EQ(r->depth_image.get(), depth.get());
  EXPECT_EQ(r->current_handles.color_buffer->value().get(), option_value);
  EXPECT_EQ(r->current_handles.color_buffer->as_pointer(), color.get());
}

TEST_P(Establish_Images, NewWindowSizeReplacesBothImages) {
  const Mode_Case& mode = GetParam();
  Renderer_Pointer r = make_renderer();
  ASSERT_EQ(establish_in(*r, mode, {32, 24}), 0);
  const OT_Shared_Image color = r->color_image, depth = r->depth_image;  // held: no address reuse

  ASSERT_EQ(establish_in(*r, mode, {32, 25}), 0);
  ASSERT_TRUE(r->color_image);
  EXPECT_NE(r->color_image.get(), color.get());
  EXPECT_EQ(r->color_image->width, 32);
  EXPECT_EQ(r->color_image->height, 25);
  EXPECT_EQ(r->current_handles.color_buffer->as_pointer(), r->color_image.get());
  EXPECT_EQ(r->height, 25);
  if (mode.depth()) {
    ASSERT_TRUE(r->depth_image);
    EXPECT_NE(r->depth_image.get(), depth.get());
    EXPECT_EQ(r->depth_image->width, 32);
    EXPECT_EQ(r->depth_image->height, 25);
  }

  const OT_Shared_Image taller = r->color_image, taller_depth = r->depth_image;
  ASSERT_EQ(establish_in(*r, mode, {31, 25}), 0);
  EXPECT_NE(r->color_image.get(), taller.get());
  EXPECT_EQ(r->color_image->width, 31);
  EXPECT_EQ(r->width, 31);
  if (mode.depth()) {
    ASSERT_TRUE(r->depth_image);
    EXPECT_NE(r->depth_image.get(), taller_depth.get());
    EXPECT_EQ(r->depth_image->width, 31);
    EXPECT_EQ(r->depth_image->height, 25);
  }
}

INSTANTIATE_TEST_SUITE_P(Establish, Establish_Images, ::testing::ValuesIn(kAllModes), mode_name);

TEST(Establish, BufferDepthZeroReleasesTheDepthImage) {
  Renderer_Pointer r = make_renderer();
  ASSERT_EQ(establish_in(*r, kZRgb32), 0);
  ASSERT_TRUE(r->depth_image);
  const OT_Shared_Image color = r->color_image;
  ASSERT_EQ(establish_in(*r, kRgb32), 0);
  EXPECT_FALSE(r->depth_image);
  EXPECT_EQ(r->color_image.get(), color.get());

  OT_Renderer_Options& o = r->requested_renderer_options;
  o.set_buffer_depth(1);  // 1 is a depth buffer already
  r->update_current_options();
  ASSERT_EQ(r->establish(), 0);
  ASSERT_TRUE(r->depth_image);
  EXPECT_EQ(r->depth_image->format, OT_Image_Format_Depth16);
  o.set_buffer_depth(-1);
  r->update_current_options();
  ASSERT_EQ(r->establish(), 0);
  EXPECT_FALSE(r->depth_image);
}

TEST(Establish, DepthBufferOptionIsNeitherReadNorWritten) {
  Renderer_Pointer r = make_renderer();
  const OT_Shared_Image offered = new_image(32, 24, OT_Image_Format_Depth16);
  set_current(*r, L"Depth Buffer", OT_Option_Value(static_cast<const void*>(offered.get())));
  const OT_Option_Value_Data* value = r->current_handles.depth_buffer->value().get();
  ASSERT_EQ(establish_in(*r, kZRgb32), 0);
  ASSERT_TRUE(r->depth_image);
  EXPECT_NE(r->depth_image.get(), offered.get());
  EXPECT_EQ(r->current_handles.depth_buffer->value().get(), value);
  EXPECT_EQ(r->current_handles.depth_buffer->as_pointer(), offered.get());
}

TEST(Establish, ClientColorBufferOfTheRightSizeIsAdoptedAndDrawnInto) {
  Renderer_Harness h(kRgb32);
  Software_Z_Buffer& r = h.renderer();
  const OT_Shared_Image mine = new_image(64, 48, OT_Image_Format_RGB32);
  set_current(r, L"Color Buffer", OT_Option_Value(static_cast<const void*>(mine.get())));
  const OT_Option_Value_Data* value = r.current_handles.color_buffer->value().get();

  ASSERT_EQ(r.establish(), 0);
  EXPECT_EQ(r.color_image.get(), mine.get());
  EXPECT_EQ(r.current_handles.color_buffer->value().get(), value);  // not written back

  h.clear();
  h.draw_dci({{10, 10, 0}, {14, 10, 0}, {10, 14, 0}});
  auto pixel = [&](int x, int y) {
    std::uint32_t word;
    std::memcpy(&word, mine->device_rows[y] + x * 4, 4);
    return word;
  };
  EXPECT_EQ(pixel(10, 10), Renderer_Harness::kColor.word());
  EXPECT_EQ(pixel(10, 13), Renderer_Harness::kColor.word());
  EXPECT_EQ(pixel(14, 10), Renderer_Harness::kWindowColor.word());
  EXPECT_EQ(pixel(0, 0), Renderer_Harness::kWindowColor.word());
}

TEST(Establish, ClientColorBufferOfTheWrongSizeIsDroppedForANewImage) {
  for (const OT_Int_XY size : {OT_Int_XY{63, 48}, OT_Int_XY{64, 49}}) {
    Renderer_Harness h(kRgb32);
    Software_Z_Buffer& r = h.renderer();
    const OT_Shared_Image mine = new_image(size.x, size.y, OT_Image_Format_RGB32);
    set_current(r, L"Color Buffer", OT_Option_Value(static_cast<const void*>(mine.get())));
    ASSERT_EQ(r.establish(), 0);
    ASSERT_TRUE(r.color_image);
    EXPECT_NE(r.color_image.get(), mine.get());
    EXPECT_EQ(r.color_image->width, 64);
    EXPECT_EQ(r.color_image->height, 48);
    EXPECT_EQ(r.color_image->format, OT_Image_Format_RGB32);
    EXPECT_EQ(r.current_handles.color_buffer->as_pointer(), r.color_image.get());
  }
}

// An image of the window's size handed in through "Color Buffer": whether
// the colour system keeps it, and what replaces it when not.
struct Color_Buffer_Case {
  const char* name;
  int color_system;
  OT_Image_Format supplied;
  bool kept;
};

const Color_Buffer_Case kColorBufferCases[] = {
    {"direct_rgb32", 1, OT_Image_Format_RGB32, true},     {"direct_index8", 1, OT_Image_Format_Index8, false},
    {"direct_depth16", 1, OT_Image_Format_Depth16, false}, {"mapped_index8", 0, OT_Image_Format_Index8, true},
    {"mapped_rgb32", 0, OT_Image_Format_RGB32, false},     {"mapped_depth16", 0, OT_Image_Format_Depth16, false},
    {"system2_index8", 2, OT_Image_Format_Index8, true},   {"system2_rgb32", 2, OT_Image_Format_RGB32, true},
    {"system2_depth16", 2, OT_Image_Format_Depth16, true},
};

class Establish_Color_Buffer : public ::testing::TestWithParam<Color_Buffer_Case> {};

TEST_P(Establish_Color_Buffer, KeepsOrReplacesBySystemAndFormat) {
  const Color_Buffer_Case& c = GetParam();
  Renderer_Pointer r = make_renderer();
  const OT_Shared_Image mine = new_image(20, 10, c.supplied);
  set_current(*r, L"Color Buffer", OT_Option_Value(static_cast<const void*>(mine.get())));
  const Mode_Case mode{c.name, 0, static_cast<OT_Color_System>(c.color_system), false};
  ASSERT_EQ(establish_in(*r, mode, {20, 10}), 0);
  ASSERT_TRUE(r->color_image);
  if (c.kept) {
    EXPECT_EQ(r->color_image.get(), mine.get());
    EXPECT_EQ(r->current_handles.color_buffer->as_pointer(), mine.get());
  } else {
    EXPECT_NE(r->color_image.get(), mine.get());
    EXPECT_EQ(r->color_image->format, c.color_system == 1 ? OT_Image_Format_RGB32 : OT_Image_Format_Index8);
    EXPECT_EQ(r->current_handles.color_buffer->as_pointer(), r->color_image.get());
  }
}

INSTANTIATE_TEST_SUITE_P(Establish, Establish_Color_Buffer, ::testing::ValuesIn(kColorBufferCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(Establish, ColorSystemTwoKeepsTheImageOfAnotherSystemAndInstallsMappedActions) {
  Renderer_Pointer r = make_renderer();
  ASSERT_EQ(establish_in(*r, kRgb32), 0);
  const OT_Shared_Image rgb32 = r->color_image;
  ASSERT_EQ(establish_in(*r, {"system2", 0, static_cast<OT_Color_System>(2), false}), 0);
  EXPECT_EQ(r->color_image.get(), rgb32.get());
  EXPECT_EQ(r->color_image->format, OT_Image_Format_RGB32);
  EXPECT_EQ(r->draw_dci_polytriangle.function, &mapped_dci_polytriangle);
  EXPECT_EQ(r->clear_color.function, &mapped_clear_color);
  EXPECT_EQ(r->read_color_rectangle.function, &mapped_read_color_rectangle);
}

TEST(Establish, ImageFactoryLeavingNullIsStoredIntoTheOption) {
  Renderer_Pointer r = make_renderer();
  ASSERT_EQ(establish_in(*r, kZRgb32, {32, 24}), 0);
  ASSERT_NE(r->current_handles.color_buffer->as_pointer(), nullptr);

  r->image_factory.function = null_factory;
  EXPECT_EQ(establish_in(*r, kZRgb32, {40, 30}), 0);
  EXPECT_FALSE(r->color_image);
  EXPECT_FALSE(r->depth_image);
  EXPECT_EQ(r->current_handles.color_buffer->as_pointer(), nullptr);
  EXPECT_EQ(r->width, 40);
  EXPECT_EQ(r->height, 30);

  // The clipping forms see no colour image and draw nothing.
  OT_Rendition rendition = OT_Rendition::make_default(40, 30, r->current_renderer_options()->palette());
  const OT_Point points[3] = {{1, 1, 0}, {20, 1, 0}, {1, 20, 0}};
  const OT_DCI_Point dci_points[3] = {{1, 1, 0}, {20, 1, 0}, {1, 20, 0}};
  r->draw_2d_polytriangle(rendition, 3, points);
  r->draw_2di_polytriangle(rendition, 3, dci_points);
}

// ---- Window origin and cube --------------------------------------------------

TEST(Establish, OriginComesFromTheWindowUnlessCoordinatesAreLocal) {
  Renderer_Pointer r = make_renderer();
  OT_Renderer_Options& o = r->requested_renderer_options;
  o.set_window_origin({3, -7});
  ASSERT_EQ(establish_in(*r, kRgb32), 0);
  EXPECT_EQ(r->origin_x, 3);
  EXPECT_EQ(r->origin_y, -7);

  o.set_local_coordinates(true);
  ASSERT_EQ(establish_in(*r, kRgb32), 0);
  EXPECT_EQ(r->origin_x, 0);
  EXPECT_EQ(r->origin_y, 0);

  o.set_local_coordinates(false);
  o.set_window_origin({-5, 11});
  ASSERT_EQ(establish_in(*r, kRgb32), 0);
  EXPECT_EQ(r->origin_x, -5);
  EXPECT_EQ(r->origin_y, 11);
}

void expect_cube(const OT_Color_Cube& actual, const OT_Color_Cube& expected) {
  EXPECT_EQ(actual.base, expected.base);
  EXPECT_EQ(actual.red_step, expected.red_step);
  EXPECT_EQ(actual.green_step, expected.green_step);
  EXPECT_EQ(actual.blue_step, expected.blue_step);
  EXPECT_EQ(actual.red_scale, expected.red_scale);
  EXPECT_EQ(actual.green_scale, expected.green_scale);
  EXPECT_EQ(actual.blue_scale, expected.blue_scale);
}

TEST(Establish, CubeIsCopiedFromThePaletteAndKeptWhenThePaletteHasNone) {
  Renderer_Pointer r = make_renderer();
  OT_Renderer_Options& o = r->requested_renderer_options;
  const OT_Color_Cube initial(OT_Int_RGB{2, 2, 2}, 1.0f, 0);

  o.set_palette(OT_Palette(new OT_Palette_Data));  // no cube
  ASSERT_EQ(establish_in(*r, kMapped), 0);
  expect_cube(r->cube, initial);

  const OT_Palette cubed = OB_Cube_Palette({3, 4, 5}, 10);
  ASSERT_NE(cubed->color_cube, nullptr);
  o.set_palette(cubed);
  ASSERT_EQ(establish_in(*r, kMapped), 0);
  expect_cube(r->cube, *cubed->color_cube);
  EXPECT_EQ(r->cube.base, 10u);

  o.set_palette(OT_Palette(new OT_Palette_Data));
  ASSERT_EQ(establish_in(*r, kMapped), 0);
  expect_cube(r->cube, *cubed->color_cube);  // the earlier palette's cube stays
}

// ---- Mask cache ----------------------------------------------------------------

// A mask that reports its destruction.
class Tracked_Mask : public Frame_Buffer_Mask {
 public:
  explicit Tracked_Mask(bool* destroyed) : destroyed_(destroyed) {}
  ~Tracked_Mask() override { *destroyed_ = true; }

 private:
  bool* destroyed_;
};

void put_mask(Mask_Cache_Data& cache, bool* destroyed) {
  Frame_Buffer_Mask* mask = new Tracked_Mask(destroyed);
  mask->next = cache.head;
  if (cache.head) cache.head->previous = mask;
  cache.head = mask;
  if (!cache.tail) cache.tail = mask;
  ++cache.mask_count;
}

void expect_empty(const Mask_Cache_Data& cache) {
  EXPECT_EQ(cache.head, nullptr);
  EXPECT_EQ(cache.tail, nullptr);
  EXPECT_EQ(cache.mask_count, 0);
}

TEST(Establish, UseMaskMakesACacheSharesItAndEmptiesItEachTime) {
  Renderer_Pointer r = make_renderer();
  set_current(*r, L"Use Mask", OT_Option_Value::of_bool(true));
  ASSERT_EQ(establish_in(*r, kRgb32), 0);
  ASSERT_TRUE(r->mask_cache);
  expect_empty(*r->mask_cache);
  EXPECT_EQ(r->requested_handles.mask_cache->as_pointer(), r->mask_cache.get());
  EXPECT_EQ(r->current_handles.mask_cache->as_pointer(), r->mask_cache.get());
  EXPECT_TRUE(r->current_handles.use_mask->as_bool());

  Mask_Cache_Data* const cache = r->mask_cache.get();
  bool destroyed = false;
  put_mask(*cache, &destroyed);
  ASSERT_EQ(r->establish(), 0);
  EXPECT_EQ(r->mask_cache.get(), cache);
  EXPECT_TRUE(destroyed);
  expect_empty(*cache);
}

TEST(Establish, ClientMaskCacheIsAdoptedAndEmptied) {
  OT_Handle<Mask_Cache_Data> mine(new Mask_Cache_Data);
  bool first = false, second = false;
  put_mask(*mine, &first);
  put_mask(*mine, &second);
  {
    Renderer_Pointer r = make_renderer();
    set_current(*r, L"Use Mask", OT_Option_Value::of_bool(true));
    set_current(*r, L"Mask Cache", OT_Option_Value(static_cast<const void*>(mine.get())));
    ASSERT_EQ(establish_in(*r, kRgb32), 0);
    EXPECT_EQ(r->mask_cache.get(), mine.get());
    EXPECT_EQ(mine->count.load(), 2u);  // the client's reference and the renderer's
    EXPECT_TRUE(first);
    EXPECT_TRUE(second);
    expect_empty(*mine);

    bool third = false;
    put_mask(*mine, &third);
    ASSERT_EQ(r->establish(), 0);
    EXPECT_EQ(r->mask_cache.get(), mine.get());
    EXPECT_TRUE(third);
    expect_empty(*mine);

    // "Use Mask" off lets go of the cache.
    set_current(*r, L"Use Mask", OT_Option_Value::of_bool(false));
    ASSERT_EQ(r->establish(), 0);
    EXPECT_FALSE(r->mask_cache);
    EXPECT_EQ(mine->count.load(), 1u);
  }
  EXPECT_EQ(mine->count.load(), 1u);
}

TEST(Establish, UseMaskOffReleasesTheRenderersOwnCache) {
  Renderer_Pointer r = make_renderer();
  set_current(*r, L"Use Mask", OT_Option_Value::of_bool(true));
  ASSERT_EQ(establish_in(*r, kRgb32), 0);
  ASSERT_TRUE(r->mask_cache);
  // The option keeps only a pointer; hold the cache to see the release.
  const OT_Handle<Mask_Cache_Data> held(r->mask_cache.get());
  EXPECT_EQ(held->count.load(), 2u);
  set_current(*r, L"Use Mask", OT_Option_Value::of_bool(false));
  ASSERT_EQ(r->establish(), 0);
  EXPECT_FALSE(r->mask_cache);
  EXPECT_EQ(held->count.load(), 1u);
}

// ---- Merge colours -------------------------------------------------------------

struct Merge_Case {
  const char* name;
  int red, green, blue;     // as given to the option
  OT_RGB32 merge;           // what establish derives
  byte alternate_blue;
};

const Merge_Case kMergeCases[] = {
    {"blue0", 10, 20, 0, {0, 20, 10, 255}, 1},
    {"blue1", 10, 20, 1, {1, 20, 10, 255}, 0},
    {"blue2", 200, 100, 2, {2, 100, 200, 255}, 1},
    {"white", 255, 255, 255, {255, 255, 255, 255}, 254},
    {"low_bytes", 300, 511, 257, {1, 255, 44, 255}, 0},
    {"negative", -1, 0, 256, {0, 0, 255, 255}, 1},
};

class Establish_Merge : public ::testing::TestWithParam<std::tuple<Mode_Case, Merge_Case>> {};

TEST_P(Establish_Merge, BackgroundAlternateAndIndicesInEveryMode) {
  const auto& [mode, c] = GetParam();
  Renderer_Pointer r = make_renderer();
  set_current(*r, L"Merge Control Background Color", OT_Option_Value::of_color(c.red, c.green, c.blue));
  ASSERT_EQ(establish_in(*r, mode), 0);

  EXPECT_EQ(r->merge_color, c.merge);
  EXPECT_EQ(r->merge_alternate_color, (OT_RGB32{c.alternate_blue, c.merge.g, c.merge.r, 255}));
  const OT_Palette& palette = r->current_renderer_options()->palette();
  EXPECT_EQ(r->merge_index, static_cast<byte>(palette.closest_match(c.merge, false)));
  EXPECT_NE(r->merge_alternate_index, r->merge_index);  // the default palette has near colours
}

INSTANTIATE_TEST_SUITE_P(Establish, Establish_Merge,
                         ::testing::Combine(::testing::ValuesIn(kAllModes), ::testing::ValuesIn(kMergeCases)),
                         [](const auto& info) {
                           return std::string(std::get<0>(info.param).name) + "_" + std::get<1>(info.param).name;
                         });

TEST(Establish, MergeDefaultsToWhiteWithANearlyWhiteAlternate) {
  Renderer_Pointer r = make_renderer();
  ASSERT_EQ(establish_in(*r, kMapped), 0);
  EXPECT_EQ(r->merge_color, (OT_RGB32{255, 255, 255, 255}));
  EXPECT_EQ(r->merge_alternate_color, (OT_RGB32{254, 255, 255, 255}));
  const OT_Palette& palette = r->current_renderer_options()->palette();
  EXPECT_EQ(r->merge_index, static_cast<byte>(palette.closest_match({255, 255, 255, 255}, false)));
  ASSERT_NE(r->merge_alternate_index, r->merge_index);
  const OT_RGB32 alternate = palette.color(r->merge_alternate_index);
  EXPECT_GE(alternate.r, 180);
  EXPECT_GE(alternate.g, 180);
  EXPECT_GE(alternate.b, 180);
  EXPECT_NE(alternate, palette.color(r->merge_index));
}

// A palette of black entries with a few colours set.
OT_Palette palette_of(const std::vector<std::pair<int, OT_RGB32>>& colors) {
  auto* data = new OT_Palette_Data;
  for (const auto& [index, color] : colors) data->entries[index].color = color;
  return OT_Palette(data);
}

struct Walk_Case {
  const char* name;
  int red, green, blue;
  std::vector<std::pair<int, OT_RGB32>> palette;
  byte merge_index, alternate_index;
};

const Walk_Case kWalkCases[] = {
    // From white the channels walk down by 5: (225, 225, 225) is the first
    // probe nearer to grey 200 than to white.
    {"down_from_white", 255, 255, 255, {{1, OT_RGB32::rgba(255, 255, 255)}, {2, OT_RGB32::rgba(200, 200, 200)}}, 1, 2},
    // From black they walk up: (15, 15, 15) is the first nearer to grey 21.
    {"up_from_black", 0, 0, 0, {{1, OT_RGB32::rgba(21, 21, 21)}}, 0, 1},
    // A channel between 5 and 250 keeps its step: blue walks down from 255
    // and stays on its way down at 250, red and green walk up.
    {"middle_keeps_step", 0, 128, 255, {{1, OT_RGB32::rgba(0, 128, 255)}, {2, OT_RGB32::rgba(15, 143, 240)}}, 1, 2},
    // The walk starts at the palette's colour, not at the background: from
    // 251 the channels walk down to grey 228, where from the background's 240
    // they would first climb to the white of entry 3.
    {"walk_starts_at_the_palette_colour", 240, 240, 240,
     {{1, OT_RGB32::rgba(251, 251, 251)}, {2, OT_RGB32::rgba(228, 228, 228)}, {3, OT_RGB32::rgba(255, 255, 255)}}, 1, 2},
    // Nothing near: 103 passes, and the two indices stay equal.
    {"nothing_near", 0, 0, 0, {}, 0, 0},
    {"nothing_near_grey", 100, 100, 100, {}, 0, 0},
};

class Establish_Merge_Walk : public ::testing::TestWithParam<Walk_Case> {};

TEST_P(Establish_Merge_Walk, AlternateIndexIsTheFirstOtherMatchOfTheWalk) {
  const Walk_Case& c = GetParam();
  Renderer_Pointer r = make_renderer();
  r->requested_renderer_options.set_palette(palette_of(c.palette));
  set_current(*r, L"Merge Control Background Color", OT_Option_Value::of_color(c.red, c.green, c.blue));
  ASSERT_EQ(establish_in(*r, kRgb32), 0);
  EXPECT_EQ(r->merge_index, c.merge_index);
  EXPECT_EQ(r->merge_alternate_index, c.alternate_index);
}

INSTANTIATE_TEST_SUITE_P(Establish, Establish_Merge_Walk, ::testing::ValuesIn(kWalkCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(Establish, ForceMergeFollowsItsOption) {
  Renderer_Pointer r = make_renderer();
  set_current(*r, L"Force Merge Control On", OT_Option_Value::of_bool(true));
  ASSERT_EQ(establish_in(*r, kRgb32), 0);
  EXPECT_EQ(r->force_merge, 1);
  set_current(*r, L"Force Merge Control On", OT_Option_Value::of_bool(false));
  ASSERT_EQ(r->establish(), 0);
  EXPECT_EQ(r->force_merge, 0);
}

// ---- The mode table --------------------------------------------------------------

// What a mode puts into the slots checked here; null: the slot is not set
// by this mode, or not checked.
struct Mode_Row {
  OT_Action_Types::draw_dci_polytriangle_function dci_polytriangle;
  OT_Action_Types::draw_dc_polytriangle_function dc_polytriangle;
  OT_Action_Types::clear_color_function clear_color;
  OT_Action_Types::read_color_rectangle_function read_color;
  OT_Action_Types::clear_depth_function clear_depth;
  OT_Action_Types::read_depth_rectangle_function read_depth;
  OT_Action_Types::write_depth_rectangle_function write_depth;
  OT_Action_Types::draw_dci_index8_image_function index8_image;
  OT_Action_Types::draw_dci_rgb32_image_function rgb32_image;
  bool polymarker_not_set;
};

const Mode_Row kRows[] = {
    {rgb32_alpha_dci_polytriangle, rgb32_alpha_dc_polytriangle, rgb32_clear_color, rgb32_read_color_rectangle,
     no_clear_depth, nullptr, nullptr, OB_Standard_Draw_DCI_Index8_Image, nullptr, false},
    {rgb32_dci_polytriangle, rgb32_dc_polytriangle, rgb32_clear_color, rgb32_read_color_rectangle, no_clear_depth,
     nullptr, nullptr, OB_Standard_Draw_DCI_Index8_Image, nullptr, false},
    {mapped_dci_polytriangle, mapped_dc_polytriangle, mapped_clear_color, mapped_read_color_rectangle,
     no_clear_depth, nullptr, nullptr, nullptr, OB_Standard_Draw_DCI_RGB32_Image, false},
    {z_mapped_dci_polytriangle, z_mapped_dc_polytriangle, mapped_clear_color, mapped_read_color_rectangle,
     z_clear_depth, z_read_depth_rectangle, z_write_depth_rectangle, nullptr, OB_Standard_Draw_DCI_RGB32_Image,
     true},
    {z_rgb32_alpha_dci_polytriangle, z_rgb32_alpha_dc_polytriangle, rgb32_clear_color, rgb32_read_color_rectangle,
     z_clear_depth, z_read_depth_rectangle, z_write_depth_rectangle, OB_Standard_Draw_DCI_Index8_Image, nullptr,
     false},
    {z_rgb32_dci_polytriangle, z_rgb32_dc_polytriangle, rgb32_clear_color, rgb32_read_color_rectangle,
     z_clear_depth, z_read_depth_rectangle, z_write_depth_rectangle, OB_Standard_Draw_DCI_Index8_Image, nullptr,
     false},
};

struct Table_Case {
  Mode_Case mode;
  int row;
};

const OT_Color_System kSystem2 = static_cast<OT_Color_System>(2);

const Table_Case kTableCases[] = {
    {kAllModes[0], 0},
    {kAllModes[1], 1},
    {kAllModes[2], 2},
    {kAllModes[3], 3},
    {kAllModes[4], 4},
    {kAllModes[5], 5},
    // Alpha is not looked at in mapped colour.
    {{"mapped_alpha", 0, OT_Color_System_Mapped, true}, 2},
    {{"z_mapped_alpha", 16, OT_Color_System_Mapped, true}, 3},
    // Any colour system but 1 is mapped.
    {{"system2", 0, kSystem2, false}, 2},
    {{"system2_alpha", 0, kSystem2, true}, 2},
    {{"z_system2", 16, kSystem2, false}, 3},
    // Depth from 1 up; 0 and below is none.
    {{"depth1_rgb32", 1, OT_Color_System_Direct, false}, 5},
    {{"depth1_mapped", 1, OT_Color_System_Mapped, false}, 3},
    {{"depth_negative_rgb32_alpha", -1, OT_Color_System_Direct, true}, 0},
};

template <class Action>
bool same_slot(const Action& a, const Action& b) {
  return a.object == b.object && a.function == b.function && a.adjustment == b.adjustment && a.valid == b.valid;
}

template <class Action, class Function>
void expect_installed(const Action& slot, Function function, const Software_Z_Buffer& r, const char* name) {
  SCOPED_TRACE(name);
  EXPECT_EQ(slot.function, function);
  EXPECT_EQ(slot.object, &r);
  EXPECT_EQ(slot.adjustment, 0);
  EXPECT_EQ(slot.valid, 1);
}

class Establish_Mode_Table : public ::testing::TestWithParam<Table_Case> {};

TEST_P(Establish_Mode_Table, InstallsTheRowOfTheMode) {
  const Table_Case& c = GetParam();
  const Mode_Row& row = kRows[c.row];
  Renderer_Pointer r = make_renderer();
  const OT_Action_Slots before = *r;
  ASSERT_EQ(establish_in(*r, c.mode), 0);

  expect_installed(r->draw_dci_polytriangle, row.dci_polytriangle, *r, "draw_dci_polytriangle");
  expect_installed(r->draw_dc_polytriangle, row.dc_polytriangle, *r, "draw_dc_polytriangle");
  expect_installed(r->draw_2d_polygon, &common_2d_polygon, *r, "draw_2d_polygon");
  expect_installed(r->draw_dc_polygon, &common_dc_polygon, *r, "draw_dc_polygon");
  expect_installed(r->draw_2di_polygon, &common_2di_polygon, *r, "draw_2di_polygon");
  expect_installed(r->draw_dci_polygon, &common_dci_polygon, *r, "draw_dci_polygon");
  expect_installed(r->clear_color, row.clear_color, *r, "clear_color");
  expect_installed(r->read_color_rectangle, row.read_color, *r, "read_color_rectangle");
  expect_installed(r->clear_depth, row.clear_depth, *r, "clear_depth");
  if (row.read_depth) {
    expect_installed(r->read_depth_rectangle, row.read_depth, *r, "read_depth_rectangle");
    expect_installed(r->write_depth_rectangle, row.write_depth, *r, "write_depth_rectangle");
  } else {
    EXPECT_TRUE(same_slot(r->read_depth_rectangle, before.read_depth_rectangle));
    EXPECT_TRUE(same_slot(r->write_depth_rectangle, before.write_depth_rectangle));
  }
  if (row.index8_image) expect_installed(r->draw_dci_index8_image, row.index8_image, *r, "draw_dci_index8_image");
  if (row.rgb32_image) expect_installed(r->draw_dci_rgb32_image, row.rgb32_image, *r, "draw_dci_rgb32_image");
  if (row.polymarker_not_set) {
    EXPECT_TRUE(same_slot(r->draw_2di_polymarker, before.draw_2di_polymarker));
  }
  // Tiling is off by default: the tiled slots stay as they were.
  EXPECT_TRUE(same_slot(r->draw_tiled_polytriangle, before.draw_tiled_polytriangle));
  EXPECT_TRUE(same_slot(r->draw_tiled_polyline, before.draw_tiled_polyline));
}

INSTANTIATE_TEST_SUITE_P(Establish, Establish_Mode_Table, ::testing::ValuesIn(kTableCases),
                         [](const auto& info) { return std::string(info.param.mode.name); });

// Functions that establish must leave where they are.
void sentinel_textured(OT_Renderer_Data*, const OT_Rendition&, int, const OT_Point*, const OT_RGB32*,
                       const OT_Parameter*, int, const float*, const OT_Vector*) {}
void sentinel_tiled(OT_Renderer_Data*, const OT_Rendition&, int, const OT_Point_D*) {}

class Establish_Untouched_Slots : public ::testing::TestWithParam<Mode_Case> {};

TEST_P(Establish_Untouched_Slots, SlotsOutsideTheModesRowKeepWhatTheyHeld) {
  const Mode_Case& mode = GetParam();
  Renderer_Pointer r = make_renderer();
  int marker = 0;
  auto* const stranger = reinterpret_cast<OT_Renderer_Data*>(&marker);
  r->draw_2d_textured_polytriangle.object = stranger;
  r->draw_2d_textured_polytriangle.function = sentinel_textured;
  r->draw_2d_textured_polytriangle.adjustment = 0;
  r->draw_2d_textured_polytriangle.valid = 1;
  r->draw_tiled_polytriangle.object = stranger;
  r->draw_tiled_polytriangle.function = sentinel_tiled;
  r->draw_tiled_polytriangle.adjustment = 0;
  r->draw_tiled_polytriangle.valid = 1;

  ASSERT_EQ(establish_in(*r, mode), 0);
  EXPECT_EQ(r->draw_tiled_polytriangle.function, &sentinel_tiled);
  EXPECT_EQ(r->draw_tiled_polytriangle.object, stranger);
  if (!mode.depth()) {  // the modes without depth have no textured functions
    EXPECT_EQ(r->draw_2d_textured_polytriangle.function, &sentinel_textured);
    EXPECT_EQ(r->draw_2d_textured_polytriangle.object, stranger);
    EXPECT_EQ(r->draw_2d_textured_polytriangle.valid, 1);
  }
}

INSTANTIATE_TEST_SUITE_P(Establish, Establish_Untouched_Slots, ::testing::ValuesIn(kAllModes), mode_name);

class Establish_After_Depth : public ::testing::TestWithParam<Mode_Case> {};

TEST_P(Establish_After_Depth, ModeWithoutDepthKeepsTheDepthFunctionsOfTheModeBefore) {
  Renderer_Pointer r = make_renderer();
  ASSERT_EQ(establish_in(*r, kZRgb32), 0);
  ASSERT_EQ(establish_in(*r, GetParam()), 0);
  expect_installed(r->read_depth_rectangle, &z_read_depth_rectangle, *r, "read_depth_rectangle");
  expect_installed(r->write_depth_rectangle, &z_write_depth_rectangle, *r, "write_depth_rectangle");
  expect_installed(r->clear_depth, &no_clear_depth, *r, "clear_depth");
  EXPECT_FALSE(r->depth_image);
}

INSTANTIATE_TEST_SUITE_P(Establish, Establish_After_Depth,
                         ::testing::Values(kAllModes[0], kAllModes[1], kAllModes[2]), mode_name);

}  // namespace
}  // namespace tarn::testing

namespace tarn::testing {
namespace {

void establish_mode(Software_Z_Buffer& r, const Mode_Case& mode) {
  OT_Renderer_Options& o = r.requested_renderer_options;
  o.set_window_size({32, 32});
  o.set_buffer_depth(mode.buffer_depth);
  o.set_color_system(mode.color_system);
  o.set_alpha_blending(mode.alpha);
  r.update_current_options();
  r.establish();
}

// A slot the mode sets, whose renderer function does not exist yet, holds
// the host's routine rather than the function of the mode before.
TEST(Establish_Pending, SlotsAwaitingTheirFunctionHoldTheHostsRoutine) {
  Renderer_Pointer r = make_renderer();
  establish_mode(*r, kAllModes[5]);  // z_rgb32: its colorized polyline is the renderer's
  EXPECT_NE(r->draw_dci_colorized_polyline.function, &OB_Standard_Draw_DCI_Colorized_Polyline);
  establish_mode(*r, kAllModes[2]);  // mapped
  EXPECT_EQ(r->draw_dci_colorized_polyline.function, &OB_Standard_Draw_DCI_Colorized_Polyline);
  EXPECT_EQ(r->draw_dci_gouraud_polytriangle.function, &OB_Standard_Draw_DCI_Gouraud_Polytriangle);
  EXPECT_EQ(r->draw_dci_index8_image.function, &OB_Standard_Draw_DCI_Index8_Image);
  EXPECT_EQ(r->draw_dci_colorized_polyline.object, r.get());
}

TEST(Establish_Pending, TilingInstallsTheHostsTiledRoutines) {
  Renderer_Pointer r = make_renderer();
  r->requested_options.find(L"Enable Tiling")->set(OT_Option_Value::of_bool(true));
  establish_mode(*r, kAllModes[1]);
  EXPECT_EQ(r->draw_tiled_polyline.function, &OB_Standard_Draw_Tiled_Polyline);
  EXPECT_EQ(r->draw_tiled_polyline.object, r.get());
  EXPECT_EQ(r->draw_tiled_polyline.valid, 1);
}

// Turning "Use Mask" off drops the renderer's own cache, and with it the
// option's name for it: turning it on again makes a new cache.
TEST(Establish_Mask, OffAndOnAgainMakesANewCacheAndNamesNoFreedOne) {
  Renderer_Pointer r = make_renderer();
  auto use_mask = [&](bool on) {
    r->requested_options.find(L"Use Mask")->set(OT_Option_Value::of_bool(on));
    establish_mode(*r, kAllModes[1]);
  };
  use_mask(true);
  ASSERT_TRUE(r->mask_cache);
  use_mask(false);
  EXPECT_FALSE(r->mask_cache);
  EXPECT_EQ(r->current_handles.mask_cache->as_pointer(), nullptr);
  use_mask(true);
  ASSERT_TRUE(r->mask_cache);
  EXPECT_EQ(r->current_handles.mask_cache->as_pointer(), r->mask_cache.get());
  EXPECT_EQ(r->mask_cache->count.load(), 1u);
}

// A cache that others still hold stays named.
TEST(Establish_Mask, OffKeepsNamingASharedCache) {
  Renderer_Pointer r = make_renderer();
  r->requested_options.find(L"Use Mask")->set(OT_Option_Value::of_bool(true));
  establish_mode(*r, kAllModes[1]);
  OT_Handle<Mask_Cache_Data> shared(r->mask_cache.get());
  r->requested_options.find(L"Use Mask")->set(OT_Option_Value::of_bool(false));
  establish_mode(*r, kAllModes[1]);
  EXPECT_EQ(r->current_handles.mask_cache->as_pointer(), shared.get());
}

}  // namespace
}  // namespace tarn::testing
