#include "frame/renderer_options.h"

#include <climits>

namespace tarn {

void create_options(OT_Option_Table& table, option_handles& handles) {
  using OT_Option_Enum::Instance;
  handles.margin = table.add(OT_Option(L"Margin", Instance, 0));
  handles.color_buffer = table.add(OT_Option(L"Color Buffer", Instance, static_cast<const void*>(nullptr)));
  handles.depth_buffer = table.add(OT_Option(L"Depth Buffer", Instance, static_cast<const void*>(nullptr)));
  handles.use_mask = table.add(OT_Option(L"Use Mask", Instance, false));
  handles.clip_phase = table.add(OT_Option(L"Clip Phase", Instance, false));
  handles.enable_tiling = table.add(OT_Option(L"Enable Tiling", Instance, false));
  handles.merge_control_background_color =
      table.add(OT_Option(L"Merge Control Background Color", Instance, 255, 255, 255));
  handles.force_merge_control_on = table.add(OT_Option(L"Force Merge Control On", Instance, false));
  handles.zbuffer_write = table.add(OT_Option(L"ZBuffer Write", Instance, static_cast<const void*>(nullptr)));
  handles.zbuffer_test = table.add(OT_Option(L"ZBuffer Test", Instance, static_cast<const void*>(nullptr)));
  handles.mask_cache = table.find(L"Mask Cache");
  if (!handles.mask_cache)
    handles.mask_cache =
        table.add(OT_Option(L"Mask Cache", OT_Option_Enum::Shared, static_cast<const void*>(nullptr)));
  // What this renderer can do, for the host; never read here.
  table.add(OT_Option(L"Supports Advanced Lattice Rendering", Instance, true));
  table.add(OT_Option(L"Supports Antialiased Lines", Instance, false));
  table.add(OT_Option(L"Supports Gooch Shader", Instance, false));
  table.add(OT_Option(L"Supports Shadow Mapping Shader", Instance, false));
  table.add(OT_Option(L"Shadow Mapping Quality", Instance, 0));
  table.add(OT_Option(L"Max Active Lights", Instance, INT_MAX));
  table.add(OT_Option(L"No ISM Image Support", Instance, true));
}

void install_depth_setters(OT_Option_Table& current) {
  const Depth_Write_Setter write = set_depth_write;
  const Depth_Test_Setter test = set_depth_test;
  if (OT_Option* option = current.find(L"ZBuffer Write"))
    make_unique(option->value())->storage.as_pointer = reinterpret_cast<const void*>(write);
  if (OT_Option* option = current.find(L"ZBuffer Test"))
    make_unique(option->value())->storage.as_pointer = reinterpret_cast<const void*>(test);
}

void set_depth_write(OT_Renderer_Data* renderer, byte value) { renderer_of(renderer).depth_write = value; }

void set_depth_test(OT_Renderer_Data* renderer, const int* value) {
  renderer_of(renderer).depth_test = *value;
}

}  // namespace tarn
