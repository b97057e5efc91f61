#include "lines/halo.h"

namespace tarn {
namespace {

constexpr std::int32_t kHaloMaterial = 7;
constexpr std::int32_t kRoundStyle = 2;
constexpr std::int32_t kSolidFace = 64;
constexpr std::int32_t kContrastStipple = 24;

// The material of the halo pass, made once and kept until the module
// unloads. Any type code but 7 will do: it keeps the pass from coming back
// here.
const OT_Material& default_material() {
  static const OT_Material material(new OT_Basic_Textured_Material);
  return material;
}

}  // namespace

bool halo_first_pass(OT_Rendition& copy) {
  const OT_Material halo = copy->colors->material;
  if (!halo || *halo->type_code() != kHaloMaterial) return false;
  copy.set_material(default_material());

  if (copy->line->join_style != kRoundStyle) copy.writable_line()->join_style = kRoundStyle;
  if (copy->line->first_end_style != kRoundStyle || copy->line->last_end_style != kRoundStyle) {
    OT_Rendition_Line* writable = copy.writable_line();
    writable->first_end_style = kRoundStyle;
    writable->last_end_style = kRoundStyle;
  }
  set_face_pattern(copy, kSolidFace);
  copy.set_color(halo->halo_color, false);
  const std::int32_t weight = copy->line->weight;
  copy.writable_line()->weight = weight < 2 ? halo->halo_weight * 2 + 2 : weight + 5;
  if (halo->halo_color.a < 255)
    copy.set_advanced_options(copy->raster->advanced_options | OT_Advanced_Alpha_Path, false);
  OT_Rendition_Line* writable = copy.writable_line();
  writable->halo_flag_a = 1;
  writable->halo_flag_b = 1;
  return true;
}

void halo_second_pass(const OT_Rendition& r, OT_Rendition& copy) {
  const std::int32_t weight = r->line->weight;
  copy.writable_line()->weight = weight;
  copy.set_color(r->colors->color, false);
  copy.set_advanced_options(copy->raster->advanced_options & 0x7F7, false);
  if (weight <= 1) return;
  if (r->face->pattern != kContrastStipple) {
    copy.set_color(r->colors->material->halo_inner_color, false);
  } else {
    // The stipple's holes show the contrast colour laid over the line's by
    // the contrast colour's alpha.
    const OT_RGB32 color = r->colors->color;
    const OT_RGB32 contrast = r->colors->contrast_color;
    const int a = contrast.a;
    auto mix = [a](byte line, byte hole) { return (line * (255 - a) + hole * a) / 255; };
    copy.set_contrast_color(
        OT_RGB32::rgba(mix(color.r, contrast.r), mix(color.g, contrast.g), mix(color.b, contrast.b), 255),
        false);
    set_face_pattern(copy, kContrastStipple);
    if (copy->raster->stipple_flags != 1) copy.writable_raster()->stipple_flags = 1;
    copy.writable_face()->depth_bias = r->face->depth_bias - 4;
  }
  copy.writable_line()->weight = weight + 1;
}

}  // namespace tarn
