// A renderer in a given mode and window, with pixel access in device
// coordinates, for the renderer's tests.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "frame/software_z_buffer.h"

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
    {"rgb32_alpha", 0, OT_Color_System_Direct, true},  {"rgb32", 0, OT_Color_System_Direct, false},
    {"mapped", 0, OT_Color_System_Mapped, false},      {"z_mapped", 16, OT_Color_System_Mapped, false},
    {"z_rgb32_alpha", 16, OT_Color_System_Direct, true}, {"z_rgb32", 16, OT_Color_System_Direct, false},
};

inline std::string mode_name(const ::testing::TestParamInfo<Mode_Case>& info) { return info.param.name; }

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

class Renderer_Harness {
 public:
  // The main colour: red in RGB32 modes, index 9 in mapped modes; the window
  // colour is black / index 0, and the frame is cleared.
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

  // The pixel at device (x, y) as a 32-bit value: the index in mapped modes.
  std::uint32_t pixel(int x, int y) const {
    const OT_Shared_Image_Data& image = *renderer_->color_image;
    const byte* row = image.device_rows[y - renderer_->origin_y];
    const int column = x - renderer_->origin_x;
    if (image.format == OT_Image_Format_Index8) return row[column];
    std::uint32_t word;
    std::memcpy(&word, row + column * 4, 4);
    return word;
  }

  std::uint16_t depth(int x, int y) const {
    const OT_Shared_Image_Data& image = *renderer_->depth_image;
    std::uint16_t d;
    std::memcpy(&d, image.device_rows[y - renderer_->origin_y] + (x - renderer_->origin_x) * 2, 2);
    return d;
  }

  // What the main colour writes in this mode.
  std::uint32_t drawn_value() const { return mode_.mapped() ? kIndex : kColor.word(); }
  std::uint32_t clear_value() const { return mode_.mapped() ? 0u : kWindowColor.word(); }

  // Device positions whose pixel differs from the clear value.
  std::set<std::pair<int, int>> drawn() const {
    std::set<std::pair<int, int>> out;
    const int w = renderer_->width, h = renderer_->height;
    for (int y = 0; y < h; ++y)
      for (int x = 0; x < w; ++x) {
        const int dx = x + renderer_->origin_x, dy = y + renderer_->origin_y;
        if (pixel(dx, dy) != clear_value()) out.insert({dx, dy});
      }
    return out;
  }

  // The whole colour image, for comparing two drawings.
  std::vector<std::uint32_t> snapshot() const {
    std::vector<std::uint32_t> out;
    for (int y = 0; y < renderer_->height; ++y)
      for (int x = 0; x < renderer_->width; ++x) out.push_back(pixel(x + renderer_->origin_x, y + renderer_->origin_y));
    return out;
  }

  void draw_dci(std::vector<OT_DCI_Point> points) {
    renderer_->draw_dci_polytriangle(rendition_, static_cast<int>(points.size()), points.data());
  }
  void draw_dc(std::vector<OT_Point> points) {
    renderer_->draw_dc_polytriangle(rendition_, static_cast<int>(points.size()), points.data());
  }
  void draw_2di(std::vector<OT_DCI_Point> points) {
    renderer_->draw_2di_polytriangle(rendition_, static_cast<int>(points.size()), points.data());
  }
  void draw_2d(std::vector<OT_Point> points) {
    renderer_->draw_2d_polytriangle(rendition_, static_cast<int>(points.size()), points.data());
  }
  void set_hard_clip(const OT_Int_Rectangle& clip) { rendition_.writable_device()->hard_clip = clip; }

 private:
  Mode_Case mode_;
  Renderer_Pointer renderer_;
  OT_Rendition rendition_;
};

// The expected coverage: per row, the inclusive x range.
inline std::set<std::pair<int, int>> rows_of(std::vector<std::pair<int, std::pair<int, int>>> rows) {
  std::set<std::pair<int, int>> out;
  for (const auto& [y, range] : rows)
    for (int x = range.first; x <= range.second; ++x) out.insert({x, y});
  return out;
}

}  // namespace tarn::testing
