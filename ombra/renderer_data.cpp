// The renderer base class: construction from a prototype, the default virtual
// operations, the passage of options from requested to current, and the
// standard routines in the slots.
#include "host/ob_functions.h"

namespace {

// Each slot's standard routine under the slot's own name, so that the slot
// list below can name it; a slot without one is a compile error.
#define OMBRA_STANDARD_ALIASES(family, Family)                                \
  constexpr auto standard_draw_2d_##family = &OB_Standard_Draw_2D_##Family;   \
  constexpr auto standard_draw_dc_##family = &OB_Standard_Draw_DC_##Family;   \
  constexpr auto standard_draw_2di_##family = &OB_Standard_Draw_2DI_##Family; \
  constexpr auto standard_draw_dci_##family = &OB_Standard_Draw_DCI_##Family; \
  constexpr auto standard_draw_tiled_##family = &OB_Standard_Draw_Tiled_##Family;

OMBRA_STANDARD_ALIASES(polytriangle, Polytriangle)
OMBRA_STANDARD_ALIASES(colorized_polytriangle, Colorized_Polytriangle)
OMBRA_STANDARD_ALIASES(gouraud_polytriangle, Gouraud_Polytriangle)
OMBRA_STANDARD_ALIASES(textured_polytriangle, Textured_Polytriangle)
OMBRA_STANDARD_ALIASES(polyline, Polyline)
OMBRA_STANDARD_ALIASES(colorized_polyline, Colorized_Polyline)
OMBRA_STANDARD_ALIASES(gouraud_polyline, Gouraud_Polyline)
OMBRA_STANDARD_ALIASES(polymarker, Polymarker)
OMBRA_STANDARD_ALIASES(polygon, Polygon)
OMBRA_STANDARD_ALIASES(dot, Dot)
OMBRA_STANDARD_ALIASES(rgb32_image, RGB32_Image)
OMBRA_STANDARD_ALIASES(index8_image, Index8_Image)
constexpr auto standard_write_depth_rectangle = &OB_Standard_Write_Depth_Rectangle;
constexpr auto standard_read_color_rectangle = &OB_Standard_Read_Color_Rectangle;
constexpr auto standard_read_depth_rectangle = &OB_Standard_Read_Depth_Rectangle;
constexpr auto standard_clear_color = &OB_Standard_Clear_Color;
constexpr auto standard_clear_depth = &OB_Standard_Clear_Depth;

#undef OMBRA_STANDARD_ALIASES

template <class Action>
void install_standard(OT_Renderer_Data* owner, Action& slot, typename Action::Function routine,
                      bool keep_valid) {
  if (keep_valid && slot.valid && slot.function) return;
  slot.install(owner, routine);
}

}  // namespace

void OB_Standard_Image_Factory(void*, int width, int height, const OT_Image_Format* format,
                               OT_Shared_Image* image_out) {
  if (!image_out) return;
  *image_out = OT_Shared_Image(width, height, format ? *format : OT_Image_Format_Index8, 0, nullptr, false);
}

OT_Renderer_Data::OT_Renderer_Data(const OT_Renderer_Data* prototype) : root(this) {
  image_factory = {nullptr, OB_Standard_Image_Factory};
  if (prototype) {
    image_factory = prototype->image_factory;
    window_update = prototype->window_update;
    requested_options = prototype->requested_options;
    current_options = prototype->current_options;
    requested_renderer_options = prototype->requested_renderer_options;
    current_renderer_options_ = prototype->current_renderer_options_;
  }
  set_standard_actions(false);
}

OT_Renderer_Data::~OT_Renderer_Data() = default;

OT_Renderer_Options* OT_Renderer_Data::current_renderer_options() { return &root->current_renderer_options_; }

const OT_Renderer_Options* OT_Renderer_Data::current_renderer_options() const {
  return &root->current_renderer_options_;
}

void OT_Renderer_Data::optimize_current_options() {}

void OT_Renderer_Data::optimize_current_renderer_options(OT_Renderer_Data&) {}

OT_Option_Table* OT_Renderer_Data::current_option_table() { return &root->current_options; }

int OT_Renderer_Data::establish() { return 0; }

int OT_Renderer_Data::establish_all() { return establish(); }

void OT_Renderer_Data::begin_picture(OT_Document_Info*) {}

void OT_Renderer_Data::begin_picture_all(OT_Document_Info* info) { begin_picture(info); }

void OT_Renderer_Data::end_picture() {}

void OT_Renderer_Data::end_picture_all() { end_picture(); }

void OT_Renderer_Data::update(const OT_Int_Rectangle&) {}

void OT_Renderer_Data::update_all(const OT_Int_Rectangle& region) { update(region); }

void OT_Renderer_Data::update_current_options() {
  current_renderer_options_ = requested_renderer_options;
  for (std::size_t i = 0; i < requested_options.size(); ++i) {
    OT_Option& requested = requested_options.at(i);
    if (OT_Option* current = current_options.find(requested.name())) {
      if (requested.changed()) current->value() = requested.value();
    } else {
      current_options.add(requested)->clear_changed();
    }
    requested.clear_changed();
  }
}

// With keep_valid, slots that already hold a valid function keep it.
void OT_Renderer_Data::set_standard_actions(bool keep_valid) {
#define OMBRA_INSTALL_STANDARD(name, ...) install_standard(this, name, standard_##name, keep_valid);
  OT_ACTION_SLOTS(OMBRA_INSTALL_STANDARD)
#undef OMBRA_INSTALL_STANDARD
}
