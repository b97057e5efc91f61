// Making the renderer ready for drawing from the current options.
#include "frame/software_z_buffer.h"
#include "module/action_table.h"

namespace {

bool color_image_fits(const OT_Shared_Image& image, OT_Color_System system, OT_Int_XY size) {
  if (!image) return false;
  const bool format_fits = (system == OT_Color_System_Direct && image->format == OT_Image_Format_RGB32) ||
                           (system == OT_Color_System_Mapped && image->format == OT_Image_Format_Index8) ||
                           (system != OT_Color_System_Direct && system != OT_Color_System_Mapped);
  return format_fits && image->width == size.x && image->height == size.y;
}

void make_image(const OT_Image_Factory& factory, OT_Int_XY size, OT_Image_Format format,
                OT_Shared_Image& image) {
  if (factory.function) factory.function(factory.context, size.x, size.y, &format, &image);
}

int closest_index(const OT_Palette& palette, const OT_RGB32& color) {
  return palette ? palette.closest_match(color, false) : 0;
}

// Works out the merge background and an alternate near it that the palette
// can tell apart from it: channels walk by 5 away from their ends until
// closest_match gives another index, 103 passes at most.
void derive_merge_colors(Software_Z_Buffer& r, const OT_Palette& palette) {
  const std::int32_t* rgb = r.current_handles.merge_control_background_color->as_color();
  const byte red = static_cast<byte>(rgb[0]), green = static_cast<byte>(rgb[1]),
             blue = static_cast<byte>(rgb[2]);
  r.merge_color = OT_RGB32{blue, green, red, 255};
  r.merge_alternate_color = OT_RGB32{static_cast<byte>(blue != 0 ? blue - 1 : 1), green, red, 255};
  r.merge_index = static_cast<byte>(closest_index(palette, r.merge_color));
  r.merge_alternate_index = r.merge_index;

  OT_RGB32 probe = palette ? palette.color(r.merge_index) : r.merge_color;
  probe.a = 255;
  byte* channels[3] = {&probe.b, &probe.g, &probe.r};
  int steps[3];
  for (int c = 0; c < 3; ++c) steps[c] = *channels[c] > 250 ? -5 : 5;
  for (int counter = 0; r.merge_alternate_index == r.merge_index && counter < 512; counter += 5) {
    for (int c = 0; c < 3; ++c) {
      if (*channels[c] > 250)
        steps[c] = -5;
      else if (*channels[c] < 5)
        steps[c] = 5;
      *channels[c] = static_cast<byte>(*channels[c] + steps[c]);
    }
    r.merge_alternate_index = static_cast<byte>(closest_index(palette, probe));
  }
}

}  // namespace

int Software_Z_Buffer::establish() {
  const OT_Renderer_Options& options = *current_renderer_options();

  tarn::install_actions(*this, current_handles.enable_tiling->as_bool() != 0);

  if (options.local_coordinates()) {
    origin_x = origin_y = 0;
  } else {
    origin_x = options.window_origin().x;
    origin_y = options.window_origin().y;
  }

  if (options.palette() && options.palette()->color_cube) cube = *options.palette()->color_cube;

  if (const void* supplied = current_handles.color_buffer->as_pointer())
    color_image.reset(static_cast<OT_Shared_Image_Data*>(const_cast<void*>(supplied)));

  const OT_Color_System system = options.color_system();
  const OT_Int_XY size = options.window_size();
  if (!color_image_fits(color_image, system, size)) {
    make_image(image_factory, size,
               system == OT_Color_System_Direct ? OT_Image_Format_RGB32 : OT_Image_Format_Index8,
               color_image);
    // Clients find the image the renderer made through the option.
    current_handles.color_buffer->set(OT_Option_Value(static_cast<const void*>(color_image.get())));
  }

  if (options.buffer_depth() < 1) {
    depth_image.reset();
  } else if (!(depth_image && depth_image->format == OT_Image_Format_Depth16 &&
               depth_image->width == size.x && depth_image->height == size.y)) {
    make_image(image_factory, size, OT_Image_Format_Depth16, depth_image);
  }

  width = size.x;
  height = size.y;

  if (current_handles.use_mask->as_bool()) {
    if (const void* shared = current_handles.mask_cache->as_pointer()) {
      mask_cache.reset(static_cast<Mask_Cache_Data*>(const_cast<void*>(shared)));
    } else {
      mask_cache.reset(new Mask_Cache_Data);
      requested_handles.mask_cache->set(OT_Option_Value(static_cast<const void*>(mask_cache.get())));
      update_current_options();
    }
    mask_cache->empty();
  } else if (mask_cache) {
    // A cache that dies with this reference must not stay named by the
    // option, or a later "Use Mask" would take up freed memory.
    if (mask_cache->count.load() == 1 && current_handles.mask_cache->as_pointer() == mask_cache.get()) {
      requested_handles.mask_cache->set(OT_Option_Value(static_cast<const void*>(nullptr)));
      update_current_options();
    }
    mask_cache.reset();
  }

  // The palette of the options after the update above.
  derive_merge_colors(*this, current_renderer_options()->palette());
  force_merge = current_handles.force_merge_control_on->as_bool();
  return 0;
}
