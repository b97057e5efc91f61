// Renditions: six shared sections, changed only on private copies.
#include "host/ot_rendition.h"

namespace {

// The cached shifted clip remembers what it was made from, so that it is
// made once per clip and offset and keeps its serial: the mask cache keys on
// that serial.
class Shifted_Contour_Set_Data : public OT_Contour_Set_Data {
 public:
  Shifted_Contour_Set_Data(const OT_Contour_Set_Data& source, float dx, float dy)
      : OT_Contour_Set_Data(source), source_serial(source.serial), dx(dx), dy(dy) {
    for (OT_Point& p : points) {
      p.x += dx;
      p.y += dy;
    }
  }
  OT_Counted* clone() const override { return new Shifted_Contour_Set_Data(*this); }

  std::uint32_t source_serial;
  float dx, dy;
};

template <class Section>
Section* writable_section(OT_Rendition& rendition, OT_Handle<Section> OT_Rendition_Data::*member) {
  OT_Rendition_Data* data = make_unique(rendition);
  if (!data) return nullptr;
  return make_unique(data->*member);
}

}  // namespace

OT_Rendition_Data::OT_Rendition_Data() {
  device.reset(new OT_Rendition_Device);
  colors.reset(new OT_Rendition_Colors);
  line.reset(new OT_Rendition_Line);
  face.reset(new OT_Rendition_Face);
  marker.reset(new OT_Rendition_Marker);
  raster.reset(new OT_Rendition_Raster);
}

OT_Rendition OT_Rendition::make_default(int width, int height, const OT_Palette& palette) {
  OT_Rendition rendition(new OT_Rendition_Data);
  if (!rendition) return rendition;
  OT_Rendition_Data& data = *rendition;
  data.palette = palette;
  if (data.device) {
    data.device->hard_clip = {0, width - 1, 0, height - 1};
    data.device->extent = data.device->hard_clip;
  }
  if (data.colors) {
    data.colors->color = OT_RGB32{255, 255, 255, 255};
    if (palette) data.colors->color_index = std::uint32_t(palette.closest_match(data.colors->color, false));
  }
  return rendition;
}

OT_Rendition_Device* OT_Rendition::writable_device() {
  return writable_section(*this, &OT_Rendition_Data::device);
}
OT_Rendition_Colors* OT_Rendition::writable_colors() {
  return writable_section(*this, &OT_Rendition_Data::colors);
}
OT_Rendition_Line* OT_Rendition::writable_line() { return writable_section(*this, &OT_Rendition_Data::line); }
OT_Rendition_Face* OT_Rendition::writable_face() { return writable_section(*this, &OT_Rendition_Data::face); }
OT_Rendition_Marker* OT_Rendition::writable_marker() {
  return writable_section(*this, &OT_Rendition_Data::marker);
}
OT_Rendition_Raster* OT_Rendition::writable_raster() {
  return writable_section(*this, &OT_Rendition_Data::raster);
}

void OT_Rendition::set_color(const OT_RGB32& color, bool keep_index) {
  OT_Rendition_Colors* colors = writable_colors();
  if (!colors) return;
  colors->color = color;
  if (!keep_index && data_->palette)
    colors->color_index = std::uint32_t(data_->palette.closest_match(color, false));
}

void OT_Rendition::set_contrast_color(const OT_RGB32& color, bool keep_index) {
  OT_Rendition_Colors* colors = writable_colors();
  if (!colors) return;
  colors->contrast_color = color;
  if (!keep_index && data_->palette)
    colors->contrast_index = byte(data_->palette.closest_match(color, false));
}

void OT_Rendition::set_advanced_options(const OT_Advanced_Options& options, bool) {
  if (OT_Rendition_Raster* raster = writable_raster()) raster->advanced_options = options;
}

void OT_Rendition::set_hard_clip_unrestricted(const OT_Int_Rectangle& clip, bool) {
  if (OT_Rendition_Device* device = writable_device()) device->hard_clip = clip;
}

const OT_Contour_Set& OT_Rendition::shifted_complex_clip() const {
  static const OT_Contour_Set none;
  if (!data_ || !data_->device) return none;
  const OT_Rendition_Device& device = *data_->device;
  const OT_Contour_Set& clip = device.complex_clip;
  if (!clip || (device.extent.left >= 0 && device.extent.bottom >= 0)) return clip;
  const float dx = device.extent.left < 0 ? -float(device.extent.left) : 0.0f;
  const float dy = device.extent.bottom < 0 ? -float(device.extent.bottom) : 0.0f;
  const auto* cached = dynamic_cast<const Shifted_Contour_Set_Data*>(data_->shifted_clip.get());
  if (cached && cached->source_serial == clip->serial && cached->dx == dx && cached->dy == dy)
    return data_->shifted_clip;
  data_->shifted_clip.reset(new Shifted_Contour_Set_Data(*clip, dx, dy));
  return data_->shifted_clip;
}

void set_face_pattern(OT_Rendition& rendition, std::int32_t pattern) {
  if (!rendition || (rendition->face && rendition->face->pattern == pattern)) return;
  OT_Rendition_Face* face = rendition.writable_face();
  if (!face) return;
  face->pattern = pattern;
  face->user_pattern.reset();
  face->back_pattern.reset();
  face->edge_pattern.reset();
}

void OT_Rendition::set_material(const OT_Material& material) {
  OT_Rendition_Colors* colors = writable_colors();
  if (!colors) return;
  colors->material = material;
  colors->back_material = material;
}
