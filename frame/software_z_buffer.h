// The renderer: a colour image (8-bit index or RGB32) and a 16-bit depth
// image in memory, and one generated function per primitive, coordinate form
// and mode in the action slots.
#pragma once

#include "frame/mask_cache.h"
#include "host/ombra.h"

// The stored OT_Option* of the options the renderer keeps a handle on.
struct option_handles {
  OT_Option* margin;
  OT_Option* color_buffer;
  OT_Option* depth_buffer;
  OT_Option* mask_cache;
  OT_Option* use_mask;
  OT_Option* clip_phase;
  OT_Option* enable_tiling;
  OT_Option* merge_control_background_color;
  OT_Option* force_merge_control_on;
  OT_Option* zbuffer_write;
  OT_Option* zbuffer_test;
};

class Software_Z_Buffer : public OT_Renderer_Data {
 public:
  explicit Software_Z_Buffer(const OT_Renderer_Data* prototype);
  ~Software_Z_Buffer() override;

  OT_Counted* clone() const override;  // null: a renderer is never copied
  OT_Renderer_Options* current_renderer_options() override;
  const OT_Renderer_Options* current_renderer_options() const override;
  OT_Option_Table* current_option_table() override;
  int establish() override;
  void begin_picture(OT_Document_Info* info) override;
  void end_picture() override;
  void update(const OT_Int_Rectangle& region) override;

  option_handles requested_handles;
  option_handles current_handles;
  OT_Shared_Image color_image;
  OT_Shared_Image depth_image;
  OT_Handle<Mask_Cache_Data> mask_cache;
  std::int32_t origin_x = 0;
  std::int32_t origin_y = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;
  OT_Color_Cube cube;
  byte depth_write = 1;
  std::int32_t depth_test = 2;
  std::int32_t edge_depth_bias = 0;
  byte merge_index = 255;
  byte merge_alternate_index = 0;
  OT_RGB32 merge_color{0, 0, 0, 253};
  OT_RGB32 merge_alternate_color{1, 0, 0, 253};
  byte force_merge = 0;
};

// Action functions receive the renderer as the slot's object.
inline Software_Z_Buffer& renderer_of(OT_Renderer_Data* object) {
  return *static_cast<Software_Z_Buffer*>(object);
}
