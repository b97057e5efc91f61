// A renderer in a given mode and window, reached through its action slots
// and options, with pixel and depth access in device coordinates.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "frame/renderer_options.h"
#include "frame/software_z_buffer.h"
#include "pixel/dither.h"

namespace tarn::testing {

struct Mode_Case {
  const char* name;
  int buffer_depth;
  OT_Color_System color_system;
  bool alpha;

  bool mapped() const { return color_system != OT_Color_System_Direct; }
  bool depth() const { return buffer_depth >= 1; }
};

inline const Mode_Case kAllModes[] = {
    {"rgb32_alpha", 0, OT_Color_System_Direct, true},    {"rgb32", 0, OT_Color_System_Direct, false},
    {"mapped", 0, OT_Color_System_Mapped, false},        {"z_mapped", 16, OT_Color_System_Mapped, false},
    {"z_rgb32_alpha", 16, OT_Color_System_Direct, true}, {"z_rgb32", 16, OT_Color_System_Direct, false},
};
inline const Mode_Case& kRgb32Alpha = kAllModes[0];
inline const Mode_Case& kRgb32 = kAllModes[1];
inline const Mode_Case& kMapped = kAllModes[2];
inline const Mode_Case& kZMapped = kAllModes[3];
inline const Mode_Case& kZRgb32Alpha = kAllModes[4];
inline const Mode_Case& kZRgb32 = kAllModes[5];
inline const Mode_Case kDepthModes[] = {kAllModes[3], kAllModes[4], kAllModes[5]};

inline std::string mode_name(const ::testing::TestParamInfo<Mode_Case>& info) { return info.param.name; }

using Pixels = std::set<std::pair<int, int>>;
using Points = std::vector<OT_DCI_Point>;

// Deleting through the virtual destructor frees with the host's allocator.
struct Renderer_Deleter {
  void operator()(Software_Z_Buffer* r) const { r->destroy(1); }
};
using Renderer_Pointer = std::unique_ptr<Software_Z_Buffer, Renderer_Deleter>;

inline Renderer_Pointer make_renderer(const OT_Renderer_Data* prototype = nullptr) {
  void* memory = OT_Object::operator new(sizeof(Software_Z_Buffer));
  std::memset(memory, 0, sizeof(Software_Z_Buffer));
  return Renderer_Pointer(new (memory) Software_Z_Buffer(prototype));
}

inline std::vector<OT_Point> as_floats(const Points& points) {
  std::vector<OT_Point> out;
  for (const OT_DCI_Point& p : points) out.push_back({float(p.x), float(p.y), float(p.z)});
  return out;
}

// The closed polygon [left, right) x [bottom, top) as a complex clip.
inline OT_Contour_Set box(float left, float bottom, float right, float top) {
  const OT_Point corners[4] = {{left, bottom, 0}, {right, bottom, 0}, {right, top, 0}, {left, top, 0}};
  return OT_Contour_Set(4, corners, true);
}

class Renderer_Harness {
 public:
  // The main colour: red in RGB32 modes, index 9 in mapped modes; the window
  // is black / index 0, and the frame is cleared.
  static constexpr OT_RGB32 kColor{0, 0, 255, 255};
  static constexpr byte kIndex = 9;
  static constexpr OT_RGB32 kWindowColor{0, 0, 0, 255};

  Renderer_Harness(const Mode_Case& mode, int width = 64, int height = 48, OT_Int_XY origin = {0, 0},
                   OT_Image_Factory factory = {})
      : mode_(mode), renderer_(make_renderer()) {
    if (factory.function) renderer_->image_factory = factory;
    OT_Renderer_Options& o = renderer_->requested_renderer_options;
    o.set_window_size({width, height});
    o.set_window_origin(origin);
    o.set_buffer_depth(mode.buffer_depth);
    o.set_color_system(mode.color_system);
    o.set_alpha_blending(mode.alpha);
    renderer_->update_current_options();
    renderer_->establish();
    rendition_ = OT_Rendition::make_default(width, height, o.palette());
    OT_Rendition_Device* device = rendition_.writable_device();
    device->hard_clip = {origin.x, origin.x + width - 1, origin.y, origin.y + height - 1};
    device->extent = device->hard_clip;
    OT_Rendition_Colors* colors = rendition_.writable_colors();
    colors->color = kColor;
    colors->color_index = kIndex;
    colors->window_color = kWindowColor;
    colors->window_index = 0;
    clear();
  }

  Software_Z_Buffer& renderer() { return *renderer_; }
  OT_Rendition& rendition() { return rendition_; }
  const Mode_Case& mode() const { return mode_; }

  void clear() {
    renderer_->clear_color(rendition_);
    renderer_->clear_depth(rendition_);
  }

  byte* address(int x, int y) const {
    const OT_Shared_Image_Data& image = *renderer_->color_image;
    return image.device_rows[y - renderer_->origin_y] +
           (x - renderer_->origin_x) * OT_Shared_Image_Data::pixel_bytes(image.format);
  }
  // The pixel at device (x, y) as a 32-bit value: the index in mapped modes.
  std::uint32_t pixel(int x, int y) const {
    if (mode_.mapped()) return *address(x, y);
    std::uint32_t word;
    std::memcpy(&word, address(x, y), 4);
    return word;
  }
  void poke(int x, int y, std::uint32_t value) {
    if (mode_.mapped())
      *address(x, y) = static_cast<byte>(value);
    else
      std::memcpy(address(x, y), &value, 4);
  }
  std::uint16_t depth(int x, int y) const {
    std::uint16_t d;
    std::memcpy(&d, depth_address(x, y), 2);
    return d;
  }
  void poke_depth(int x, int y, std::uint16_t d) { std::memcpy(depth_address(x, y), &d, 2); }

  // What the main colour writes in this mode, and what the clear leaves.
  std::uint32_t drawn_value() const { return mode_.mapped() ? kIndex : kColor.word(); }
  std::uint32_t clear_value() const { return mode_.mapped() ? 0u : kWindowColor.word(); }

  // What a flat colour writes at device (x, y): its word, or the index the
  // comparison form of the dither picks there, by window row and address.
  std::uint32_t flat_value(OT_RGB32 c, int x, int y) const {
    if (!mode_.mapped()) return c.word();
    return dither_pick(dither_thresholds(renderer_->cube, c),
                       dither_threshold(y - renderer_->origin_y, address(x, y)));
  }

  // Device positions whose pixel differs from the clear value.
  Pixels drawn() const {
    Pixels out;
    for (int y = 0; y < renderer_->height; ++y)
      for (int x = 0; x < renderer_->width; ++x) {
        const int dx = x + renderer_->origin_x, dy = y + renderer_->origin_y;
        if (pixel(dx, dy) != clear_value()) out.insert({dx, dy});
      }
    return out;
  }

  // The whole colour image, and the depth image after it in depth modes.
  std::vector<std::uint32_t> snapshot() const {
    std::vector<std::uint32_t> out;
    for (int pass = 0; pass < (mode_.depth() ? 2 : 1); ++pass)
      for (int y = 0; y < renderer_->height; ++y)
        for (int x = 0; x < renderer_->width; ++x) {
          const int dx = x + renderer_->origin_x, dy = y + renderer_->origin_y;
          out.push_back(pass ? depth(dx, dy) : pixel(dx, dy));
        }
    return out;
  }

  void draw_dci(const Points& p) { renderer_->draw_dci_polytriangle(rendition_, int(p.size()), p.data()); }
  void draw_2di(const Points& p) { renderer_->draw_2di_polytriangle(rendition_, int(p.size()), p.data()); }
  void draw_dc(const std::vector<OT_Point>& p) {
    renderer_->draw_dc_polytriangle(rendition_, int(p.size()), p.data());
  }
  void draw_2d(const std::vector<OT_Point>& p) {
    renderer_->draw_2d_polytriangle(rendition_, int(p.size()), p.data());
  }
  void colorized(const Points& p, const std::vector<OT_RGB32>& colors, bool single) {
    renderer_->draw_dci_colorized_polytriangle(rendition_, int(p.size()), p.data(), colors.data(), single);
  }
  void line(const Points& p) { renderer_->draw_dci_polyline(rendition_, int(p.size()), p.data()); }
  void line_2di(const Points& p) { renderer_->draw_2di_polyline(rendition_, int(p.size()), p.data()); }
  void dot(int x, int y, int z, const OT_RGB32* color = nullptr) {
    const OT_DCI_Point p{x, y, z};
    renderer_->draw_dci_dot(rendition_, &p, color);
  }
  void markers(const Points& p) { renderer_->draw_2di_polymarker(rendition_, int(p.size()), p.data()); }

  void set_hard_clip(const OT_Int_Rectangle& clip) { rendition_.writable_device()->hard_clip = clip; }
  void set_color(OT_RGB32 color, byte index) {
    OT_Rendition_Colors* colors = rendition_.writable_colors();
    colors->color = color;
    colors->color_index = index;
  }

  // "ZBuffer Test" and "ZBuffer Write" through the setters that the options
  // hold, as a client changes them between primitives.
  void set_depth_test(int value) {
    reinterpret_cast<Depth_Test_Setter>(setter(L"ZBuffer Test"))(renderer_.get(), &value);
  }
  void set_depth_write(byte value) {
    reinterpret_cast<Depth_Write_Setter>(setter(L"ZBuffer Write"))(renderer_.get(), value);
  }

  // Turns "Use Mask" on, establishes again, and gives the rendition `clip`.
  void use_mask(const OT_Contour_Set& clip) {
    renderer_->requested_options.find(L"Use Mask")->set(OT_Option_Value::of_bool(true));
    renderer_->update_current_options();
    renderer_->establish();
    clear();
    rendition_.writable_device()->complex_clip = clip;
  }

 private:
  byte* depth_address(int x, int y) const {
    return renderer_->depth_image->device_rows[y - renderer_->origin_y] + (x - renderer_->origin_x) * 2;
  }
  void* setter(const wchar_t* name) {
    return const_cast<void*>(renderer_->current_option_table()->find(name)->as_pointer());
  }

  Mode_Case mode_;
  Renderer_Pointer renderer_;
  OT_Rendition rendition_;
};

// The expected coverage: per row, the inclusive x range.
inline Pixels rows_of(std::vector<std::pair<int, std::pair<int, int>>> rows) {
  Pixels out;
  for (const auto& [y, range] : rows)
    for (int x = range.first; x <= range.second; ++x) out.insert({x, y});
  return out;
}

// A primitive drawn through the clip path (`cut`, under the hard clip `clip`)
// against the same primitive drawn whole: inside the clip the same pixels are
// drawn, with the same values and depths; with a `tolerance`, RGB32 channels
// and depths within it and mapped indices not compared. Adds the pixels drawn
// inside the clip to `compared`. Outside the clip is the draw fuzzer's.
inline ::testing::AssertionResult matches_inside_clip(const Renderer_Harness& cut,
                                                      const Renderer_Harness& whole,
                                                      const OT_Int_Rectangle& clip, int tolerance = 0,
                                                      int* compared = nullptr) {
  for (int y = clip.bottom; y <= clip.top; ++y)
    for (int x = clip.left; x <= clip.right; ++x) {
      const std::uint32_t a = whole.pixel(x, y), b = cut.pixel(x, y);
      bool same = (a == whole.clear_value()) == (b == cut.clear_value()) && (tolerance > 0 || a == b);
      for (int shift = 0; tolerance > 0 && !cut.mode().mapped() && shift < 24; shift += 8)
        same = same && std::abs(int(a >> shift & 255) - int(b >> shift & 255)) <= tolerance;
      if (cut.mode().depth()) same = same && std::abs(whole.depth(x, y) - cut.depth(x, y)) <= tolerance;
      if (!same)
        return ::testing::AssertionFailure()
               << "at " << x << "," << y << ": " << std::hex << b << " not " << a;
      if (compared) *compared += a != whole.clear_value();
    }
  return ::testing::AssertionSuccess();
}

// The strip of two triangles that covers [x0, x1) x [y0, y1).
inline Points rectangle(int x0, int y0, int x1, int y1, int z = 100) {
  return {{x0, y0, z}, {x1, y0, z}, {x0, y1, z}, {x1, y1, z}};
}

}  // namespace tarn::testing
