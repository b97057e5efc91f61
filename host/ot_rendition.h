// Renditions: the attribute set that comes with every action, a counted record
// of six shared sections, each changed only on a private copy.
#pragma once

#include "host/ot_geometry.h"
#include "host/ot_material.h"
#include "host/ot_palette.h"

class OMBRA_API OT_Rendition_Device : public OT_Clonable<OT_Rendition_Device> {
 public:
  OT_Int_Rectangle extent{0, 0, 0, 0};
  OT_Matrix matrix;
  OT_Int_Rectangle hard_clip{0, 0, 0, 0};
  OT_Contour_Set complex_clip;
  byte depth_enabled = 1;
};

class OMBRA_API OT_Rendition_Colors : public OT_Clonable<OT_Rendition_Colors> {
 public:
  OT_RGB32 color{255, 255, 255, 255};
  std::uint32_t color_index = 7;  // the low byte counts
  OT_RGB32 contrast_color{0, 0, 0, 255};
  byte contrast_index = 0;
  OT_RGB32 window_color{0, 0, 0, 255};
  byte window_index = 0;
  OT_Material material;
  OT_Material back_material;  // host only; set_material fills both
  const OT_Lighting* lighting = nullptr;
};

class OMBRA_API OT_Rendition_Line : public OT_Clonable<OT_Rendition_Line> {
 public:
  std::int32_t pattern = 0;
  std::int32_t first_end_style = 0;
  std::int32_t last_end_style = 0;
  std::int32_t join_style = 0;
  std::int32_t weight = 0;
  byte halo_flag_a = 0;
  byte halo_flag_b = 0;
  const OT_Line_Type_Set* line_type_set = &OT_Line_Type_Set::None;
};

class OMBRA_API OT_Rendition_Face : public OT_Clonable<OT_Rendition_Face> {
 public:
  std::int32_t pattern = 64;
  OT_User_Pattern user_pattern;
  OT_User_Pattern back_pattern;  // host only
  OT_User_Pattern edge_pattern;  // host only
  std::int32_t depth_bias = 0;
};

class OMBRA_API OT_Rendition_Marker : public OT_Clonable<OT_Rendition_Marker> {
 public:
  std::int32_t symbol = 0;
};

class OMBRA_API OT_Rendition_Raster : public OT_Clonable<OT_Rendition_Raster> {
 public:
  std::int32_t pattern_origin_x = 0;
  std::int32_t pattern_origin_y = 0;
  std::int32_t write_mode = 0;  // 20 is merge control
  std::uint32_t stipple_flags = 0;
  std::uint32_t texture_flags = 0;
  std::int32_t shading = 0;
  OT_Advanced_Options advanced_options = 0;
};

class OMBRA_API OT_Rendition_Data : public OT_Clonable<OT_Rendition_Data> {
 public:
  // All six sections, with the host's defaults.
  OT_Rendition_Data();

  OT_Handle<OT_Rendition_Device> device;
  OT_Handle<OT_Rendition_Colors> colors;
  OT_Handle<OT_Rendition_Line> line;
  OT_Handle<OT_Rendition_Face> face;
  OT_Handle<OT_Rendition_Marker> marker;
  OT_Handle<OT_Rendition_Raster> raster;

  // Host only: the palette that turns a colour into its index in set_color,
  // and the cached result of shifted_complex_clip().
  OT_Palette palette;
  mutable OT_Contour_Set shifted_clip;
};

class OMBRA_API OT_Rendition : public OT_Handle<OT_Rendition_Data> {
 public:
  OT_Rendition() = default;
  explicit OT_Rendition(OT_Rendition_Data* data) : OT_Handle(data) {}

  // A rendition with default sections whose hard clip and extent cover
  // width x height from (0, 0).
  static OT_Rendition make_default(int width, int height, const OT_Palette& palette);

  // Change `color` and the `color_index` that goes with it (looked up in the
  // rendition's palette; with `keep_index` true the index is left alone).
  void set_color(const OT_RGB32& color, bool keep_index);
  void set_contrast_color(const OT_RGB32& color, bool keep_index);
  // Installs `material` in both material fields of a private colours section.
  void set_material(const OT_Material& material);
  void set_advanced_options(const OT_Advanced_Options& options, bool);
  // Set hard_clip as given, without intersecting it with the old one.
  void set_hard_clip_unrestricted(const OT_Int_Rectangle& clip, bool);
  // The complex clip, moved so that its coordinates hold when `extent` starts
  // at a negative position.
  const OT_Contour_Set& shifted_complex_clip() const;

  // Writable sections of a private copy: make_unique on the rendition, then on
  // the section.
  OT_Rendition_Device* writable_device();
  OT_Rendition_Colors* writable_colors();
  OT_Rendition_Line* writable_line();
  OT_Rendition_Face* writable_face();
  OT_Rendition_Marker* writable_marker();
  OT_Rendition_Raster* writable_raster();
};
static_assert(sizeof(OT_Rendition) == sizeof(void*), "a handle is a single pointer");

// Sets the face pattern on a private copy; clears the user patterns when the
// pattern changes, and does nothing when it already holds the value.
OMBRA_API void set_face_pattern(OT_Rendition& rendition, std::int32_t pattern);
