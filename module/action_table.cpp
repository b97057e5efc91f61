#include "module/action_table.h"

#include "frame/buffer_services.h"
#include "lines/clipped_polylines.h"
#include "lines/gouraud_polylines.h"
#include "lines/thin_polylines.h"
#include "primitives/dots.h"
#include "primitives/images.h"
#include "primitives/polygons.h"
#include "primitives/tiled.h"
#include "textures/textured_triangles.h"
#include "triangles/clipped_triangles.h"
#include "triangles/colorized_triangles.h"
#include "triangles/depth_triangles.h"
#include "triangles/flat_triangles.h"
#include "triangles/gouraud_triangles.h"

namespace tarn {

Mode select_mode(int buffer_depth, bool direct, bool alpha) {
  if (buffer_depth < 1) {
    if (!direct) return Mode::mapped;
    return alpha ? Mode::rgb32_alpha : Mode::rgb32;
  }
  if (!direct) return Mode::z_mapped;
  return alpha ? Mode::z_rgb32_alpha : Mode::z_rgb32;
}

namespace {

// The cells a mode sets whose renderer function does not exist yet hold the
// host's routine, so that a change of mode never leaves another mode's
// function in a slot that this mode sets. `depth` rows set the
// depth rectangle slots; `marker` rows set the polymarker.
Mode_Actions with_host_routines(Mode_Actions row, bool depth, bool marker) {
  auto fill = [](auto& cell, auto routine) {
    if (!cell) cell = routine;
  };
  fill(row.draw_2d_gouraud_polytriangle, OB_Standard_Draw_2D_Gouraud_Polytriangle);
  fill(row.draw_dc_gouraud_polytriangle, OB_Standard_Draw_DC_Gouraud_Polytriangle);
  fill(row.draw_2di_gouraud_polytriangle, OB_Standard_Draw_2DI_Gouraud_Polytriangle);
  fill(row.draw_dci_gouraud_polytriangle, OB_Standard_Draw_DCI_Gouraud_Polytriangle);
  if (depth) {
    fill(row.write_depth_rectangle, OB_Standard_Write_Depth_Rectangle);
    fill(row.read_depth_rectangle, OB_Standard_Read_Depth_Rectangle);
  }
  fill(row.draw_2di_colorized_polyline, OB_Standard_Draw_2DI_Colorized_Polyline);
  fill(row.draw_dci_colorized_polyline, OB_Standard_Draw_DCI_Colorized_Polyline);
  fill(row.draw_2di_gouraud_polyline, OB_Standard_Draw_2DI_Gouraud_Polyline);
  fill(row.draw_dci_gouraud_polyline, OB_Standard_Draw_DCI_Gouraud_Polyline);
  if (marker) fill(row.draw_2di_polymarker, OB_Standard_Draw_2DI_Polymarker);
  return row;
}

// Rows in slot order.
const Mode_Actions kRgb32AlphaActions = with_host_routines(
    Mode_Actions{
        .draw_2d_polytriangle = rgb32_alpha_2d_polytriangle,
        .draw_dc_polytriangle = rgb32_alpha_dc_polytriangle,
        .draw_2di_polytriangle = rgb32_alpha_2di_polytriangle,
        .draw_dci_polytriangle = rgb32_alpha_dci_polytriangle,
        .draw_2d_colorized_polytriangle = rgb32_alpha_2d_colorized_polytriangle,
        .draw_dc_colorized_polytriangle = rgb32_alpha_dc_colorized_polytriangle,
        .draw_2di_colorized_polytriangle = rgb32_alpha_2di_colorized_polytriangle,
        .draw_dci_colorized_polytriangle = rgb32_alpha_dci_colorized_polytriangle,
        .draw_2d_gouraud_polytriangle = rgb32_alpha_2d_gouraud_polytriangle,
        .draw_dc_gouraud_polytriangle = rgb32_alpha_dc_gouraud_polytriangle,
        .draw_2di_gouraud_polytriangle = rgb32_alpha_2di_gouraud_polytriangle,
        .draw_dci_gouraud_polytriangle = rgb32_alpha_dci_gouraud_polytriangle,
        .draw_2di_polyline = rgb32_alpha_2di_polyline,
        .draw_dci_polyline = rgb32_alpha_dci_polyline,
        .draw_2di_colorized_polyline = rgb32_alpha_2di_colorized_polyline,
        .draw_dci_colorized_polyline = rgb32_alpha_dci_colorized_polyline,
        .draw_2di_gouraud_polyline = rgb32_alpha_2di_gouraud_polyline,
        .draw_dci_gouraud_polyline = rgb32_alpha_dci_gouraud_polyline,
        .draw_2di_polymarker = rgb32_alpha_2di_polymarker,
        .draw_dci_dot = rgb32_alpha_dci_dot,
        .draw_dci_rgb32_image = rgb32_alpha_dci_rgb32_image,
        .draw_dci_index8_image = OB_Standard_Draw_DCI_Index8_Image,
        .clear_depth = no_clear_depth,
    },
    false, true);

const Mode_Actions kRgb32Actions = with_host_routines(
    Mode_Actions{
        .draw_2d_polytriangle = rgb32_2d_polytriangle,
        .draw_dc_polytriangle = rgb32_dc_polytriangle,
        .draw_2di_polytriangle = rgb32_2di_polytriangle,
        .draw_dci_polytriangle = rgb32_dci_polytriangle,
        .draw_2d_colorized_polytriangle = rgb32_2d_colorized_polytriangle,
        .draw_dc_colorized_polytriangle = rgb32_dc_colorized_polytriangle,
        .draw_2di_colorized_polytriangle = rgb32_2di_colorized_polytriangle,
        .draw_dci_colorized_polytriangle = rgb32_dci_colorized_polytriangle,
        .draw_2d_gouraud_polytriangle = rgb32_2d_gouraud_polytriangle,
        .draw_dc_gouraud_polytriangle = rgb32_dc_gouraud_polytriangle,
        .draw_2di_gouraud_polytriangle = rgb32_2di_gouraud_polytriangle,
        .draw_dci_gouraud_polytriangle = rgb32_dci_gouraud_polytriangle,
        .draw_2di_polyline = rgb32_2di_polyline,
        .draw_dci_polyline = rgb32_dci_polyline,
        .draw_2di_colorized_polyline = rgb32_2di_colorized_polyline,
        .draw_dci_colorized_polyline = rgb32_dci_colorized_polyline,
        .draw_2di_gouraud_polyline = rgb32_2di_gouraud_polyline,
        .draw_dci_gouraud_polyline = rgb32_dci_gouraud_polyline,
        .draw_2di_polymarker = rgb32_2di_polymarker,
        .draw_dci_dot = rgb32_dci_dot,
        .draw_dci_rgb32_image = rgb32_dci_rgb32_image,
        .draw_dci_index8_image = OB_Standard_Draw_DCI_Index8_Image,
        .clear_depth = no_clear_depth,
    },
    false, true);

const Mode_Actions kMappedActions = with_host_routines(
    Mode_Actions{
        .draw_2d_polytriangle = mapped_2d_polytriangle,
        .draw_dc_polytriangle = mapped_dc_polytriangle,
        .draw_2di_polytriangle = mapped_2di_polytriangle,
        .draw_dci_polytriangle = mapped_dci_polytriangle,
        .draw_2d_colorized_polytriangle = mapped_2d_colorized_polytriangle,
        .draw_dc_colorized_polytriangle = mapped_dc_colorized_polytriangle,
        .draw_2di_colorized_polytriangle = mapped_2di_colorized_polytriangle,
        .draw_dci_colorized_polytriangle = mapped_dci_colorized_polytriangle,
        .draw_2d_gouraud_polytriangle = mapped_2d_gouraud_polytriangle,
        .draw_dc_gouraud_polytriangle = mapped_dc_gouraud_polytriangle,
        .draw_2di_gouraud_polytriangle = mapped_2di_gouraud_polytriangle,
        .draw_dci_gouraud_polytriangle = mapped_dci_gouraud_polytriangle,
        .draw_2di_polyline = mapped_2di_polyline,
        .draw_dci_polyline = mapped_dci_polyline,
        .draw_2di_colorized_polyline = mapped_2di_colorized_polyline,
        .draw_dci_colorized_polyline = mapped_dci_colorized_polyline,
        .draw_2di_gouraud_polyline = mapped_2di_gouraud_polyline,
        .draw_dci_gouraud_polyline = mapped_dci_gouraud_polyline,
        .draw_2di_polymarker = mapped_2di_polymarker,
        .draw_dci_dot = mapped_dci_dot,
        .draw_dci_rgb32_image = OB_Standard_Draw_DCI_RGB32_Image,
        .draw_dci_index8_image = mapped_dci_index8_image,
        .clear_depth = no_clear_depth,
    },
    false, true);

const Mode_Actions kZMappedActions = with_host_routines(
    Mode_Actions{
        .draw_2d_polytriangle = z_mapped_2d_polytriangle,
        .draw_dc_polytriangle = z_mapped_dc_polytriangle,
        .draw_2di_polytriangle = z_mapped_2di_polytriangle,
        .draw_dci_polytriangle = z_mapped_dci_polytriangle,
        .draw_2d_colorized_polytriangle = z_mapped_2d_colorized_polytriangle,
        .draw_dc_colorized_polytriangle = z_mapped_dc_colorized_polytriangle,
        .draw_2di_colorized_polytriangle = z_mapped_2di_colorized_polytriangle,
        .draw_dci_colorized_polytriangle = z_mapped_dci_colorized_polytriangle,
        .draw_2d_gouraud_polytriangle = z_mapped_2d_gouraud_polytriangle,
        .draw_dc_gouraud_polytriangle = z_mapped_dc_gouraud_polytriangle,
        .draw_2di_gouraud_polytriangle = z_mapped_2di_gouraud_polytriangle,
        .draw_dci_gouraud_polytriangle = z_mapped_dci_gouraud_polytriangle,
        .draw_2d_textured_polytriangle = z_mapped_2d_textured_polytriangle,
        .draw_dc_textured_polytriangle = z_mapped_dc_textured_polytriangle,
        .draw_2di_textured_polytriangle = z_mapped_2di_textured_polytriangle,
        .draw_dci_textured_polytriangle = z_mapped_dci_textured_polytriangle,
        .draw_2di_polyline = z_mapped_2di_polyline,
        .draw_dci_polyline = z_mapped_dci_polyline,
        .draw_2di_colorized_polyline = z_mapped_2di_colorized_polyline,
        .draw_dci_colorized_polyline = z_mapped_dci_colorized_polyline,
        .draw_2di_gouraud_polyline = z_mapped_2di_gouraud_polyline,
        .draw_dci_gouraud_polyline = z_mapped_dci_gouraud_polyline,
        .draw_dci_dot = z_mapped_dci_dot,
        .draw_dci_rgb32_image = OB_Standard_Draw_DCI_RGB32_Image,
        .draw_dci_index8_image = z_mapped_dci_index8_image,
        .write_depth_rectangle = z_write_depth_rectangle,
        .read_depth_rectangle = z_read_depth_rectangle,
        .clear_depth = z_clear_depth,
    },
    true, false);

const Mode_Actions kZRgb32AlphaActions = with_host_routines(
    Mode_Actions{
        .draw_2d_polytriangle = z_rgb32_alpha_2d_polytriangle,
        .draw_dc_polytriangle = z_rgb32_alpha_dc_polytriangle,
        .draw_2di_polytriangle = z_rgb32_alpha_2di_polytriangle,
        .draw_dci_polytriangle = z_rgb32_alpha_dci_polytriangle,
        .draw_2d_colorized_polytriangle = z_rgb32_alpha_2d_colorized_polytriangle,
        .draw_dc_colorized_polytriangle = z_rgb32_alpha_dc_colorized_polytriangle,
        .draw_2di_colorized_polytriangle = z_rgb32_alpha_2di_colorized_polytriangle,
        .draw_dci_colorized_polytriangle = z_rgb32_alpha_dci_colorized_polytriangle,
        .draw_2d_gouraud_polytriangle = z_rgb32_alpha_2d_gouraud_polytriangle,
        .draw_dc_gouraud_polytriangle = z_rgb32_alpha_dc_gouraud_polytriangle,
        .draw_2di_gouraud_polytriangle = z_rgb32_alpha_2di_gouraud_polytriangle,
        .draw_dci_gouraud_polytriangle = z_rgb32_alpha_dci_gouraud_polytriangle,
        .draw_2d_textured_polytriangle = z_rgb32_alpha_2d_textured_polytriangle,
        .draw_dc_textured_polytriangle = z_rgb32_alpha_dc_textured_polytriangle,
        .draw_2di_textured_polytriangle = z_rgb32_alpha_2di_textured_polytriangle,
        .draw_dci_textured_polytriangle = z_rgb32_alpha_dci_textured_polytriangle,
        .draw_2di_polyline = z_rgb32_alpha_2di_polyline,
        .draw_dci_polyline = z_rgb32_alpha_dci_polyline,
        .draw_2di_colorized_polyline = z_rgb32_alpha_2di_colorized_polyline,
        .draw_dci_colorized_polyline = z_rgb32_alpha_dci_colorized_polyline,
        .draw_2di_gouraud_polyline = z_rgb32_alpha_2di_gouraud_polyline,
        .draw_dci_gouraud_polyline = z_rgb32_alpha_dci_gouraud_polyline,
        .draw_2di_polymarker = z_rgb32_alpha_2di_polymarker,
        .draw_dci_dot = z_rgb32_alpha_dci_dot,
        .draw_dci_rgb32_image = z_rgb32_alpha_dci_rgb32_image,
        .draw_dci_index8_image = OB_Standard_Draw_DCI_Index8_Image,
        .write_depth_rectangle = z_write_depth_rectangle,
        .read_depth_rectangle = z_read_depth_rectangle,
        .clear_depth = z_clear_depth,
    },
    true, true);

const Mode_Actions kZRgb32Actions = with_host_routines(
    Mode_Actions{
        .draw_2d_polytriangle = z_rgb32_2d_polytriangle,
        .draw_dc_polytriangle = z_rgb32_dc_polytriangle,
        .draw_2di_polytriangle = z_rgb32_2di_polytriangle,
        .draw_dci_polytriangle = z_rgb32_dci_polytriangle,
        .draw_2d_colorized_polytriangle = z_rgb32_2d_colorized_polytriangle,
        .draw_dc_colorized_polytriangle = z_rgb32_dc_colorized_polytriangle,
        .draw_2di_colorized_polytriangle = z_rgb32_2di_colorized_polytriangle,
        .draw_dci_colorized_polytriangle = z_rgb32_dci_colorized_polytriangle,
        .draw_2d_gouraud_polytriangle = z_rgb32_2d_gouraud_polytriangle,
        .draw_dc_gouraud_polytriangle = z_rgb32_dc_gouraud_polytriangle,
        .draw_2di_gouraud_polytriangle = z_rgb32_2di_gouraud_polytriangle,
        .draw_dci_gouraud_polytriangle = z_rgb32_dci_gouraud_polytriangle,
        .draw_2d_textured_polytriangle = z_rgb32_2d_textured_polytriangle,
        .draw_dc_textured_polytriangle = z_rgb32_dc_textured_polytriangle,
        .draw_2di_textured_polytriangle = z_rgb32_2di_textured_polytriangle,
        .draw_dci_textured_polytriangle = z_rgb32_dci_textured_polytriangle,
        .draw_2di_polyline = z_rgb32_2di_polyline,
        .draw_dci_polyline = z_rgb32_dci_polyline,
        .draw_2di_colorized_polyline = z_rgb32_2di_colorized_polyline,
        .draw_dci_colorized_polyline = z_rgb32_dci_colorized_polyline,
        .draw_2di_gouraud_polyline = z_rgb32_2di_gouraud_polyline,
        .draw_dci_gouraud_polyline = z_rgb32_dci_gouraud_polyline,
        .draw_2di_polymarker = z_rgb32_2di_polymarker,
        .draw_dci_dot = z_rgb32_dci_dot,
        .draw_dci_rgb32_image = z_rgb32_dci_rgb32_image,
        .draw_dci_index8_image = OB_Standard_Draw_DCI_Index8_Image,
        .write_depth_rectangle = z_write_depth_rectangle,
        .read_depth_rectangle = z_read_depth_rectangle,
        .clear_depth = z_clear_depth,
    },
    true, true);

const Mode_Actions* const kModeTable[] = {&kRgb32AlphaActions, &kRgb32Actions,       &kMappedActions,
                                          &kZMappedActions,    &kZRgb32AlphaActions, &kZRgb32Actions};
static_assert(std::size(kModeTable) == kModeCount, "one row a mode");

}  // namespace

const Mode_Actions& mode_actions(Mode mode) { return *kModeTable[static_cast<int>(mode)]; }

void install_actions(Software_Z_Buffer& r, bool tiling) {
  const OT_Renderer_Options& options = *r.current_renderer_options();
  const bool direct = options.color_system() == OT_Color_System_Direct;
  const Mode mode = select_mode(options.buffer_depth(), direct, options.alpha_blending());

  // Polygons are the same in every mode.
  r.draw_2d_polygon.install(&r, common_2d_polygon);
  r.draw_2di_polygon.install(&r, common_2di_polygon);
  r.draw_dc_polygon.install(&r, common_dc_polygon);
  r.draw_dci_polygon.install(&r, common_dci_polygon);

  const Mode_Actions& row = mode_actions(mode);
#define TARN_INSTALL_FROM_ROW(name, ...) \
  if (row.name) r.name.install(&r, row.name);
  OT_ACTION_SLOTS(TARN_INSTALL_FROM_ROW)
#undef TARN_INSTALL_FROM_ROW
  // The mapped depth mode keys its textures by texel alpha when blending.
  if (mode == Mode::z_mapped && options.alpha_blending()) {
    r.draw_2d_textured_polytriangle.install(&r, z_mapped_alpha_2d_textured_polytriangle);
    r.draw_dc_textured_polytriangle.install(&r, z_mapped_alpha_dc_textured_polytriangle);
    r.draw_2di_textured_polytriangle.install(&r, z_mapped_alpha_2di_textured_polytriangle);
    r.draw_dci_textured_polytriangle.install(&r, z_mapped_alpha_dci_textured_polytriangle);
  }

  if (direct) {
    r.clear_color.install(&r, rgb32_clear_color);
    r.read_color_rectangle.install(&r, rgb32_read_color_rectangle);
  } else {
    r.clear_color.install(&r, mapped_clear_color);
    r.read_color_rectangle.install(&r, mapped_read_color_rectangle);
  }
  // The same in every mode: they hand over to whatever the 2DI slots hold.
  if (tiling) {
    r.draw_tiled_polytriangle.install(&r, tiled_polytriangle);
    r.draw_tiled_colorized_polytriangle.install(&r, tiled_colorized_polytriangle);
    r.draw_tiled_gouraud_polytriangle.install(&r, tiled_gouraud_polytriangle);
    r.draw_tiled_textured_polytriangle.install(&r, tiled_textured_polytriangle);
    r.draw_tiled_polyline.install(&r, tiled_polyline);
    r.draw_tiled_colorized_polyline.install(&r, tiled_colorized_polyline);
    r.draw_tiled_gouraud_polyline.install(&r, tiled_gouraud_polyline);
  }
}

}  // namespace tarn
