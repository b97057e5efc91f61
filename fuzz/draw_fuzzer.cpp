// Decodes the input into a renderer and a run of drawing calls through the
// slots of every clipping family, with points of every magnitude (NaN and
// infinities for the float forms), and checks after each call that nothing
// outside the hard clip changed. Out-of-image writes are ASan's to catch;
// at the end of an input every object the host made is gone again.
// Built with TARN_FUZZ_TEXTURED the same target gives the rendition a
// textured material (and lights), sets the depth options and adds the
// textured slots; its inputs are a corpus of their own, so that the seeds of
// each keep their meaning.
#include <fuzzer/FuzzedDataProvider.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <vector>

#include "host/ombra.h"

namespace {

const OT_Module& module() {
  static OT_Module* m = [] {
    auto* opened = new OT_Module;
    std::string error;
    if (!opened->open(TARN_MODULE_PATH, error)) {
      std::fprintf(stderr, "cannot open the module: %s\n", error.c_str());
      std::abort();
    }
    return opened;
  }();
  return *m;
}

[[noreturn]] void fail(const char* what, int x, int y) {
  std::fprintf(stderr, "draw fuzzer: %s at window pixel (%d, %d)\n", what, x, y);
  std::abort();
}

struct Frame {
  int width, height, pixel_bytes;
  bool depth;
};

// An image as clients find it, through its option.
const OT_Shared_Image_Data* image(OT_Renderer_Data& r, const wchar_t* name) {
  const OT_Option* option = r.current_option_table()->find(name);
  return option ? static_cast<const OT_Shared_Image_Data*>(option->as_pointer()) : nullptr;
}

// Colour and depth bytes of the window, in row order.
std::vector<byte> snapshot(OT_Renderer_Data& r, const Frame& f) {
  const OT_Shared_Image_Data* color = image(r, L"Color Buffer");
  const OT_Shared_Image_Data* depth = image(r, L"Depth Buffer");
  std::vector<byte> out;
  for (int y = 0; y < f.height; ++y) {
    const byte* row = color->device_rows[y];
    out.insert(out.end(), row, row + f.width * f.pixel_bytes);
    if (f.depth) {
      const byte* z = depth->device_rows[y];
      out.insert(out.end(), z, z + f.width * 2);
    }
  }
  return out;
}

class Decoder {
 public:
  explicit Decoder(FuzzedDataProvider& in) : in_(in) {}

  std::int32_t coordinate(int low, int high) {
    switch (in_.ConsumeIntegralInRange(0, 5)) {
      case 0:
      case 1:
        return in_.ConsumeIntegralInRange(low - 8, high + 8);
      case 2:
        return in_.ConsumeIntegralInRange(-5000, 30000);
      case 3:
        return in_.ConsumeIntegralInRange(-2000000, 2000000);
      default:
        return in_.ConsumeIntegral<std::int32_t>();
    }
  }
  double real(int low, int high) {
    switch (in_.ConsumeIntegralInRange(0, 9)) {
      case 0:
        return std::numeric_limits<double>::quiet_NaN();
      case 1:
        return in_.ConsumeBool() ? HUGE_VAL : -HUGE_VAL;
      case 2:
        return in_.ConsumeFloatingPointInRange(-1e30, 1e30);
      case 3:
        return in_.ConsumeFloatingPointInRange(-5e9, 5e9);
      default:
        return coordinate(low, high) + in_.ConsumeProbability<double>();
    }
  }
  OT_RGB32 color() {
    return OT_RGB32::rgba(in_.ConsumeIntegral<byte>(), in_.ConsumeIntegral<byte>(),
                          in_.ConsumeIntegral<byte>(), in_.ConsumeBool() ? 255 : in_.ConsumeIntegral<byte>());
  }
  int count() {
    return in_.ConsumeBool() ? in_.ConsumeIntegralInRange(0, 8) : in_.ConsumeIntegralInRange(0, 70);
  }

  FuzzedDataProvider& in_;
};

void fuzz(FuzzedDataProvider& in) {
  Decoder d(in);
  const bool depth = in.ConsumeBool(), mapped = in.ConsumeBool(), alpha = !mapped && in.ConsumeBool();
  const Frame f{in.ConsumeIntegralInRange(1, 48), in.ConsumeIntegralInRange(1, 40), mapped ? 1 : 4, depth};
  const OT_Int_XY origin{in.ConsumeIntegralInRange(-300, 300), in.ConsumeIntegralInRange(-300, 300)};

  OT_Renderer_Data* r = module().create();
  if (!r) std::abort();
  OT_Renderer_Options& o = r->requested_renderer_options;
  o.set_window_size({f.width, f.height});
  o.set_window_origin(origin);
  o.set_buffer_depth(f.depth ? 16 : 0);
  o.set_color_system(mapped ? OT_Color_System_Mapped : OT_Color_System_Direct);
  o.set_alpha_blending(alpha);
  const bool use_mask = in.ConsumeBool();
  r->requested_options.find(L"Use Mask")->set(OT_Option_Value::of_bool(use_mask));
  r->requested_options.find(L"Enable Tiling")->set(OT_Option_Value::of_bool(in.ConsumeBool()));
  r->requested_options.find(L"Force Merge Control On")->set(OT_Option_Value::of_bool(in.ConsumeBool()));
  r->update_current_options();
  if (r->establish() != 0 || !image(*r, L"Color Buffer") || (depth && !image(*r, L"Depth Buffer"))) {
    module().destroy(r);
    return;
  }
  {
    // A dashed line type, kept here so that it outlives the rendition.
    std::vector<double> dash;
    OT_Line_Type_Definition dash_definition{};
    OT_Line_Type_Set dash_set;
    OT_Rendition rendition = OT_Rendition::make_default(f.width, f.height, o.palette());
    // A hard clip somewhere in the window.
    const int left = in.ConsumeIntegralInRange(0, f.width - 1),
              right = in.ConsumeIntegralInRange(left, f.width - 1);
    const int bottom = in.ConsumeIntegralInRange(0, f.height - 1),
              top = in.ConsumeIntegralInRange(bottom, f.height - 1);
    const OT_Int_Rectangle clip{origin.x + left, origin.x + right, origin.y + bottom, origin.y + top};
    OT_Rendition_Device* device = rendition.writable_device();
    device->hard_clip = clip;
    device->extent = {origin.x, origin.x + f.width - 1, origin.y, origin.y + f.height - 1};
    device->depth_enabled = in.ConsumeBool() ? 1 : 0;
    if (use_mask && in.ConsumeBool()) {
      std::vector<OT_Point> polygon;
      for (int i = in.ConsumeIntegralInRange(0, 9); i > 0; --i)
        polygon.push_back({float(d.real(clip.left, clip.right)), float(d.real(clip.bottom, clip.top)), 0.0f});
      device->complex_clip = OT_Contour_Set(int(polygon.size()), polygon.data(), true);
    }
    OT_Rendition_Face* face = rendition.writable_face();
    static const std::int32_t patterns[] = {64, 64, 0, 1, 17, 40, 63, 73, 74, 75, 90};
    face->pattern = patterns[in.ConsumeIntegralInRange(0, 10)];
    if (face->pattern == 74 && in.ConsumeBool()) {
      // A user pattern of up to 20 x 6, or one with no rows.
      const int width = in.ConsumeIntegralInRange(0, 20), height = in.ConsumeIntegralInRange(0, 6);
      const std::vector<byte> rows = in.ConsumeBytes<byte>(std::size_t((width + 7) / 8 * height));
      if (rows.size() == std::size_t((width + 7) / 8 * height))
        face->user_pattern =
            OT_User_Pattern(new OT_User_Pattern_Data(width, height, rows.data(), (width + 7) / 8));
    }
    face->depth_bias = in.ConsumeIntegralInRange(-70000, 70000);
    OT_Rendition_Raster* raster = rendition.writable_raster();
    raster->stipple_flags = in.ConsumeIntegralInRange(0, 3);
    raster->write_mode = in.ConsumeBool() ? 20 : 0;
    raster->pattern_origin_x = in.ConsumeIntegralInRange(-20, 20);
    raster->pattern_origin_y = in.ConsumeIntegralInRange(-20, 20);
    raster->advanced_options = in.ConsumeIntegralInRange(0, 63);
    const bool antialiased = !mapped && (raster->advanced_options & OT_Advanced_Antialiased_Lines) != 0;
    OT_Rendition_Line* line = rendition.writable_line();
    line->weight = in.ConsumeIntegralInRange(0, 3);
    line->pattern = in.ConsumeIntegralInRange(0, 1);
    OT_Rendition_Colors* colors = rendition.writable_colors();
    colors->color = d.color();
    colors->color_index = in.ConsumeIntegral<byte>();
    colors->contrast_color = d.color();
    colors->contrast_index = in.ConsumeIntegral<byte>();
    // Halo materials and line types are chosen from values already decoded,
    // so that the seeds keep their meaning.
    if (colors->contrast_index % 7 == 3) {
      OT_Material halo(new OT_Material_Data);
      halo->code = 7;
      halo->halo_weight = colors->contrast_index % 4;
      halo->halo_color = colors->contrast_color;
      halo->halo_inner_color = colors->color;
      rendition.set_material(halo);
    }
    if (colors->color_index % 5 == 1) {
      const int k = colors->color_index;
      dash = {double(1 + k % 7), -double(1 + k % 3), 0.0, -2.0};
      dash_definition = {dash.data(), k % 3 == 0 ? 4 : 2, k % 4 == 0 ? 2 : 0};
      OT_Line_Type type(new OT_Line_Type_Data);
      type->definition = &dash_definition;
      type->start_length = k % 3;
      type->end_length = k % 2;
      type->phase = k % 6;
      dash_set.per_segment = k % 2;
      dash_set.end_type = 3;
      dash_set.scale = 1 + k % 3;
      for (int i = 0; i < 3; ++i)
        dash_set.line_types.push_back(i == 1 && k % 8 == 1 ? OT_Line_Type::None : type);
      rendition.writable_line()->line_type_set = &dash_set;
    }
#ifdef TARN_FUZZ_TEXTURED
    // A texture of up to 8 x 8 texels, any size, wrap 0, 2 or another value.
    const int texture_width = in.ConsumeIntegralInRange(0, 8),
              texture_height = in.ConsumeIntegralInRange(0, 8);
    OT_Shared_Image texels(texture_width, texture_height, OT_Image_Format_RGB32, 0, nullptr, false);
    if (texels)
      for (int row = 0; row < texture_height; ++row)
        for (int col = 0; col < texture_width; ++col)
          reinterpret_cast<std::uint32_t*>(texels->top_rows[row])[col] = in.ConsumeIntegral<std::uint32_t>();
    OT_Texture texture(new OT_Texture_Data(texels));
    static const std::int32_t wraps[] = {2, 2, 0, 1, 3};
    texture->wrap_u = wraps[in.ConsumeIntegralInRange(0, 4)];
    texture->wrap_v = wraps[in.ConsumeIntegralInRange(0, 4)];
    texture->modulate = in.ConsumeBool();
    texture->host_only = in.ConsumeIntegralInRange(0, 7) == 0;
    if (in.ConsumeIntegralInRange(0, 7) != 0)
      rendition.set_material(OT_Material(new OT_Basic_Textured_Material(texture)));
    OT_Lighting lighting;
    lighting.ambient_red = lighting.ambient_green = lighting.ambient_blue = float(d.real(0, 2));
    lighting.lights.push_back({{float(d.real(-1, 1)), float(d.real(-1, 1)), -1.0f}, 1.0f, 0.8f, 0.6f});
    if (in.ConsumeBool()) rendition.writable_colors()->lighting = &lighting;
    rendition.writable_raster()->texture_flags = in.ConsumeIntegralInRange(0, 7) == 0 ? 1 : 0;
    rendition.writable_raster()->shading = in.ConsumeBool() ? 3 : 0;
    // The depth options, through the setters that the option table holds.
    if (depth) {
      auto setter = [&](const wchar_t* name) {
        const OT_Option* option = r->current_option_table()->find(name);
        return option ? const_cast<void*>(option->as_pointer()) : nullptr;
      };
      const int test = in.ConsumeIntegralInRange(0, 7);
      if (void* set_test = setter(L"ZBuffer Test"))
        reinterpret_cast<void (*)(OT_Renderer_Data*, const int*)>(set_test)(r, &test);
      if (void* set_write = setter(L"ZBuffer Write"))
        reinterpret_cast<void (*)(OT_Renderer_Data*, byte)>(set_write)(r, in.ConsumeBool() ? 1 : 0);
    }
    constexpr int kLastSlot = 20;
#else
    constexpr int kLastSlot = 17;
#endif

    r->clear_color(rendition);
    r->clear_depth(rendition);
    std::vector<byte> before = snapshot(*r, f);
    for (int call = 0; call < 24 && in.remaining_bytes() > 0; ++call) {
      const int n = d.count();
      std::vector<OT_DCI_Point> ints;
      std::vector<OT_Point> floats;
      std::vector<OT_Point_D> doubles;
      std::vector<OT_RGB32> shades;
      std::vector<OT_Parameter> params;
      std::vector<OT_Vector> normals;
      for (int i = 0; i < n; ++i) {
        const std::int32_t x = d.coordinate(clip.left, clip.right), y = d.coordinate(clip.bottom, clip.top);
        const std::int32_t z = in.ConsumeIntegralInRange(-1000, 70000);
        ints.push_back({x, y, z});
        floats.push_back(
            {float(d.real(clip.left, clip.right)), float(d.real(clip.bottom, clip.top)), float(z)});
        doubles.push_back({d.real(clip.left, clip.right), d.real(clip.bottom, clip.top), double(z)});
        shades.push_back(d.color());
#ifdef TARN_FUZZ_TEXTURED
        params.push_back({float(d.real(-3, 3)), float(d.real(-3, 3)), 0.0f});
        normals.push_back({float(d.real(-1, 1)), float(d.real(-1, 1)), float(d.real(-1, 1))});
#endif
      }
      const bool single = in.ConsumeBool();
      const OT_RGB32* c = n > 0 ? shades.data() : nullptr;
      const int slot = in.ConsumeIntegralInRange(0, kLastSlot);
      // TARN_FUZZ_VERBOSE=1 prints each call, to turn a finding into a test.
      static const bool verbose = std::getenv("TARN_FUZZ_VERBOSE") != nullptr;
      if (verbose) {
        std::fprintf(stderr, "mode depth=%d mapped=%d alpha=%d window %dx%d at (%d,%d) clip %d %d %d %d\n",
                     depth, mapped, alpha, f.width, f.height, origin.x, origin.y, clip.left, clip.right,
                     clip.bottom, clip.top);
        std::fprintf(stderr, "call %d, %d points, single %d:", slot, n, single);
        for (const OT_DCI_Point& p : ints) std::fprintf(stderr, " (%d %d %d)", p.x, p.y, p.z);
        std::fprintf(stderr, "\n");
      }
      switch (slot) {
        case 0:
          r->draw_2di_polytriangle(rendition, n, ints.data());
          break;
        case 1:
          r->draw_2d_polytriangle(rendition, n, floats.data());
          break;
        case 2:
          r->draw_2di_colorized_polytriangle(rendition, n, ints.data(), c, single);
          break;
        case 3:
          r->draw_2d_colorized_polytriangle(rendition, n, floats.data(), c, single);
          break;
        case 4:
          r->draw_2di_gouraud_polytriangle(rendition, n, ints.data(), c);
          break;
        case 5:
          r->draw_2d_gouraud_polytriangle(rendition, n, floats.data(), c);
          break;
        case 6:
          r->draw_2di_polyline(rendition, n, ints.data());
          break;
        case 7:
          r->draw_2di_colorized_polyline(rendition, n, ints.data(), c, single);
          break;
        case 8:
          r->draw_2di_gouraud_polyline(rendition, n, ints.data(), c);
          break;
        case 9:
          r->draw_2di_polygon(rendition, n, ints.data(), in.ConsumeBool() ? c : nullptr);
          break;
        case 10:
          r->draw_2d_polygon(rendition, n, floats.data(), in.ConsumeBool() ? c : nullptr);
          break;
        case 11:
          r->draw_2di_polymarker(rendition, n, ints.data());
          break;
        case 12:
          r->draw_tiled_polytriangle(rendition, n, doubles.data());
          break;
        case 13:
          r->draw_tiled_colorized_polytriangle(rendition, n, doubles.data(), c, single);
          break;
        case 14:
          r->draw_tiled_gouraud_polytriangle(rendition, n, doubles.data(), c);
          break;
        case 15:
          r->draw_tiled_polyline(rendition, n, doubles.data());
          break;
        case 16:
          r->draw_tiled_polygon(rendition, n, doubles.data(), c);
          break;
        case 17:
          r->draw_2d_polyline(rendition, n, floats.data());
          break;
#ifdef TARN_FUZZ_TEXTURED
        default: {
          // Colours, normals and parameters each may be missing.
          const OT_RGB32* tc = in.ConsumeBool() ? c : nullptr;
          const OT_Vector* tn = in.ConsumeBool() && n > 0 ? normals.data() : nullptr;
          const OT_Parameter* tp = n > 0 ? params.data() : nullptr;
          if (slot == 18)
            r->draw_2di_textured_polytriangle(rendition, n, ints.data(), tc, tp, 1, nullptr, tn);
          else if (slot == 19)
            r->draw_2d_textured_polytriangle(rendition, n, floats.data(), tc, tp, 1, nullptr, tn);
          else
            r->draw_tiled_textured_polytriangle(rendition, n, doubles.data(), tc, tp, 1, nullptr, tn);
          break;
        }
#endif
      }
      // Nothing outside the hard clip may change. Antialiased lines are
      // exempt: they are placed without the window origin, and a truncating
      // cut may put a pixel one past the clip, as they must.
      const std::vector<byte> after = snapshot(*r, f);
      const int stride = f.width * f.pixel_bytes + (f.depth ? f.width * 2 : 0);
      for (int y = 0; y < f.height; ++y)
        for (int x = 0; x < f.width; ++x) {
          if (x >= left && x <= right && y >= bottom && y <= top) continue;
          const int at = y * stride + x * f.pixel_bytes;
          if (std::memcmp(&before[at], &after[at], f.pixel_bytes) != 0 && !antialiased)
            fail("colour written outside the hard clip", x, y);
          if (f.depth) {
            const int z = y * stride + f.width * f.pixel_bytes + x * 2;
            if (std::memcmp(&before[z], &after[z], 2) != 0) fail("depth written outside the hard clip", x, y);
          }
        }
      before = after;
    }
  }
  module().destroy(r);
}

}  // namespace

// An input that leaves objects behind is run once more: objects the host
// makes once for the whole process (shared tables, the mask cache) come from
// the first run only, a leak from every run.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  module();
  const std::int64_t before = OB_Live_Objects();
  {
    FuzzedDataProvider in(data, size);
    fuzz(in);
  }
  const std::int64_t after = OB_Live_Objects();
  if (after == before) return 0;
  {
    FuzzedDataProvider in(data, size);
    fuzz(in);
  }
  if (OB_Live_Objects() != after) {
    std::fprintf(stderr, "draw fuzzer: %lld host objects left behind by each run\n",
                 static_cast<long long>(OB_Live_Objects() - after));
    std::abort();
  }
  return 0;
}
