#include "frame/software_z_buffer.h"

#include "frame/renderer_options.h"

Software_Z_Buffer::Software_Z_Buffer(const OT_Renderer_Data* prototype) : OT_Renderer_Data(prototype) {
  tarn::create_options(requested_options, requested_handles);
  tarn::create_options(current_options, current_handles);

  color_image.reset();
  depth_image.reset();
  mask_cache.reset(new Mask_Cache_Data);

  cube = OT_Color_Cube(OT_Int_RGB{2, 2, 2}, 1.0f, 0);
  depth_write = 1;
  depth_test = 2;
  edge_depth_bias = 0;

  requested_renderer_options.set_buffer_depth(16);
  requested_renderer_options.set_backing_store(true);
  requested_renderer_options.set_supports_complex_clip(true);

  set_standard_actions(false);

  // A cache comes into being only when establish finds "Use Mask" on.
  mask_cache.reset();

  merge_index = 255;
  merge_color = OT_RGB32{0, 0, 0, 253};
  merge_alternate_color = OT_RGB32{1, 0, 0, 253};
  force_merge = 0;

  tarn::install_depth_setters(current_options);
}

Software_Z_Buffer::~Software_Z_Buffer() {
  mask_cache.reset();
  depth_image.reset();
  color_image.reset();
}

OT_Counted* Software_Z_Buffer::clone() const { return nullptr; }

OT_Renderer_Options* Software_Z_Buffer::current_renderer_options() {
  return &root->current_renderer_options_;
}

const OT_Renderer_Options* Software_Z_Buffer::current_renderer_options() const {
  return &root->current_renderer_options_;
}

OT_Option_Table* Software_Z_Buffer::current_option_table() { return &root->current_options; }

void Software_Z_Buffer::begin_picture(OT_Document_Info*) {}

void Software_Z_Buffer::end_picture() {}

// Hands a finished region to the window, turning device y (upwards) into the
// window's downward y.
void Software_Z_Buffer::update(const OT_Int_Rectangle& region) {
  if (!window_update.function) return;
  const OT_DCI_Point first{region.left, region.top, 0};
  const OT_DCI_Point last{region.right, region.bottom, 0};
  const int window_height = current_renderer_options()->window_size().y;
  window_update.function(window_update.context, &first, &last, &color_image, origin_x + region.left,
                         window_height + origin_y - region.top - 1);
}
