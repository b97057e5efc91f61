// A renderer made and driven the way a host does it: the module opened by
// file name, options requested, established, and every primitive a call
// through an action slot. Shared by the benchmarks.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "host/ombra.h"

namespace tarn::bench {

struct Mode {
  const char* name;
  int buffer_depth;  // 0 or 16
  OT_Color_System color_system;
  bool alpha;

  bool mapped() const { return color_system != OT_Color_System_Direct; }
  bool depth() const { return buffer_depth > 0; }
};

inline constexpr Mode kMapped{"mapped", 0, OT_Color_System_Mapped, false};
inline constexpr Mode kRgb32{"rgb32", 0, OT_Color_System_Direct, false};
inline constexpr Mode kRgb32Alpha{"rgb32_alpha", 0, OT_Color_System_Direct, true};
inline constexpr Mode kZMapped{"z_mapped", 16, OT_Color_System_Mapped, false};
inline constexpr Mode kZRgb32{"z_rgb32", 16, OT_Color_System_Direct, false};
inline constexpr Mode kZRgb32Alpha{"z_rgb32_alpha", 16, OT_Color_System_Direct, true};

inline constexpr int kWindow = 1024;

class Bench_Host {
 public:
  // An opaque colour, so that the alpha mode takes its blending path with
  // nothing to blend; index 9 in the mapped modes. The window is black / 0.
  static constexpr OT_RGB32 kColor = OT_RGB32::rgba(200, 120, 40, 255);
  static constexpr std::uint32_t kIndex = 9;
  static constexpr OT_RGB32 kWindowColor = OT_RGB32::rgba(0, 0, 0, 255);

  explicit Bench_Host(const Mode& mode, int width = kWindow, int height = kWindow)
      : mode_(mode), width_(width), height_(height) {
    // TARN_MODULE names another build of the module, to compare two builds with one program.
    const char* path = std::getenv("TARN_MODULE");
    if (!module_.open(path && *path ? path : TARN_MODULE_PATH, error_)) return;
    renderer_ = module_.create();
    if (!renderer_) {
      error_ = "the module's factory made no renderer";
      return;
    }
    OT_Renderer_Options& options = renderer_->requested_renderer_options;
    options.set_window_size({width, height});
    options.set_window_origin({0, 0});
    options.set_buffer_depth(mode.buffer_depth);
    options.set_color_system(mode.color_system);
    options.set_alpha_blending(mode.alpha);
    renderer_->update_current_options();
    if (renderer_->establish() != 0) {
      error_ = "establish failed";
      return;
    }
    rendition_ = OT_Rendition::make_default(width, height, options.palette());
    OT_Rendition_Colors* colors = rendition_.writable_colors();
    colors->color = kColor;
    colors->color_index = kIndex;
    colors->window_color = kWindowColor;
    colors->window_index = 0;
    image_ = color_image();
    if (!image_) error_ = "the renderer has no colour buffer";
  }

  ~Bench_Host() {
    rendition_.reset();
    if (renderer_) module_.destroy(renderer_);
  }

  Bench_Host(const Bench_Host&) = delete;
  Bench_Host& operator=(const Bench_Host&) = delete;

  // Empty when the renderer is ready; else why not.
  const std::string& error() const { return error_; }
  bool ready(benchmark::State& state) const {
    if (error_.empty()) return true;
    state.SkipWithError(error_.c_str());
    return false;
  }

  OT_Renderer_Data& renderer() { return *renderer_; }
  const OT_Rendition& rendition() const { return rendition_; }
  OT_Rendition& writable_rendition() { return rendition_; }
  const Mode& mode() const { return mode_; }
  int width() const { return width_; }
  int height() const { return height_; }

  void clear() {
    renderer_->clear_color(rendition_);
    renderer_->clear_depth(rendition_);
  }

  // The colour image, as clients find it: through the "Color Buffer" option.
  const OT_Shared_Image_Data* color_image() const {
    const OT_Option* option = renderer_->current_option_table()->find(L"Color Buffer");
    return option ? static_cast<const OT_Shared_Image_Data*>(option->as_pointer()) : nullptr;
  }

  int pixel_bytes() const { return mode_.mapped() ? 1 : 4; }
  std::int64_t frame_bytes() const { return std::int64_t(width_) * height_ * pixel_bytes(); }

  // Pixels of the window that differ from the window colour.
  std::int64_t drawn_pixels() const {
    std::int64_t n = 0;
    const std::uint32_t clear_value = mode_.mapped() ? 0u : kWindowColor.word();
    for (int y = 0; y < height_; ++y) {
      const byte* row = image_->device_rows[y];
      for (int x = 0; x < width_; ++x) {
        std::uint32_t value;
        if (mode_.mapped()) {
          value = row[x];
        } else {
          std::memcpy(&value, row + x * 4, 4);
        }
        n += value != clear_value;
      }
    }
    return n;
  }

  // The pixels that one call of `draw` writes on a cleared frame.
  template <class Draw>
  std::int64_t pixels_of(Draw&& draw) {
    clear();
    draw();
    const std::int64_t n = drawn_pixels();
    clear();
    return n;
  }

 private:
  Mode mode_;
  int width_, height_;
  OT_Module module_;
  OT_Renderer_Data* renderer_ = nullptr;
  OT_Rendition rendition_;
  const OT_Shared_Image_Data* image_ = nullptr;
  std::string error_;
};

// A zigzag strip of `triangles` triangles: points alternate between row y0
// and row y0 + height, `step` apart in x, so that each triangle has a base of
// 2 * step on one row and its apex on the other, and the area step * height.
// The strip starts at x0 and wraps to a new band below when it reaches the
// right edge of the window; each band is a strip of its own.
inline std::vector<std::vector<OT_DCI_Point>> zigzag_strips(int triangles, int step, int height, int x0 = 8,
                                                            int y0 = 8, int window = kWindow) {
  std::vector<std::vector<OT_DCI_Point>> strips;
  const int per_band = (window - 2 * x0) / step - 1;  // triangles that fit in one band
  int y = y0;
  while (triangles > 0) {
    const int n = triangles < per_band ? triangles : per_band;
    std::vector<OT_DCI_Point> strip;
    for (int i = 0; i < n + 2; ++i) strip.push_back({x0 + i * step, y + (i % 2) * height, 0});
    strips.push_back(std::move(strip));
    triangles -= n;
    y += height + 1;
  }
  return strips;
}

inline std::vector<OT_Point> to_float(const std::vector<OT_DCI_Point>& points) {
  std::vector<OT_Point> out;
  out.reserve(points.size());
  for (const OT_DCI_Point& p : points) out.push_back({float(p.x), float(p.y), float(p.z)});
  return out;
}

// Depth for the depth-buffered modes: each draw is nearer than the last, so
// that every pixel passes the depth test. When the values run out the depth
// buffer is cleared, once in some 65,000 draws.
class Nearer_Depth {
 public:
  int next(Bench_Host& host) {
    if (z_ <= 1) {
      host.renderer().clear_depth(host.rendition());
      z_ = 65000;
    }
    return --z_;
  }

 private:
  int z_ = 65000;
};

inline void set_rate(benchmark::State& state, const char* name, double per_iteration) {
  state.counters[name] =
      benchmark::Counter(per_iteration * double(state.iterations()), benchmark::Counter::kIsRate);
}

}  // namespace tarn::bench
