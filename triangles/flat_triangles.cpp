#include "triangles/flat_triangles.h"

#include "frame/software_z_buffer.h"
#include "pixel/entry_tests.h"
#include "pixel/mask.h"
#include "triangles/span_fillers.h"

#include <type_traits>

namespace tarn {
namespace {



// Solid RGB32 spans of the alpha filler: plain store (or merge) where the
// colour is opaque, the exact blend elsewhere; rows outside the image are
// walked without writing.
template <class Wrap>
void alpha_solid_triangle(const Software_Z_Buffer& r, const OT_DCI_Point* p, OT_RGB32 color, bool merge,
                          const Wrap& wrap) {
  byte* const* rows = r.color_image->device_rows;
  auto walk = [&](const auto& store) {
    Solid_Span_Filler<std::decay_t<decltype(store)>, true> filler{rows, store, r.height};
    walk_triangle(filler, {&p[0]}, {&p[1]}, {&p[2]}, r.origin_x, r.origin_y);
  };
  if (color.a == 255) {
    if (merge)
      walk(wrap(Merge_Word_Store(Merge_Rgb32(r), color.word())));
    else
      walk(wrap(Word_Store{color.word()}));
  } else {
    walk(wrap(Blend_Exact_Store(color)));
  }
}

template <class Wrap>
void alpha_pattern_triangle(const Software_Z_Buffer& r, const OT_DCI_Point* p, OT_RGB32 color, bool merge,
                            const OT_Rendition& rendition, Stipple_Flags flags, const Pattern_Source& source,
                            const Wrap& wrap) {
  auto walk = [&](auto& filler) { walk_triangle(filler, {&p[0]}, {&p[1]}, {&p[2]}, r.origin_x, r.origin_y); };
  byte* const* rows = r.color_image->device_rows;
  const std::uint32_t contrast = rendition->colors->contrast_color.word();
  if (color.a != 255) {
    // Translucent: the main colour blends, the contrast colour replaces.
    with_pattern_filler(rows, wrap(Blend_Exact_Store(color)), flags.contrast, wrap(Word_Store{contrast}), source,
                        walk);
  } else if (merge) {
    const Merge_Rgb32 rule(r);
    with_pattern_filler(rows, wrap(Merge_Word_Store(rule, color.word())), flags.contrast,
                        wrap(Merge_Word_Store(rule, contrast)), source, walk);
  } else {
    with_pattern_filler(rows, wrap(Word_Store{color.word()}), flags.contrast, wrap(Word_Store{contrast}), source,
                        walk);
  }
}

}  // namespace

// ---- Mapped ------------------------------------------------------------------

void mapped_dci_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                             const OT_DCI_Point* points) {
  if (host_pattern(rendition)) return OB_Standard_Draw_DCI_Polytriangle(object, rendition, count, points);
  const Software_Z_Buffer& r = renderer_of(object);
  const byte index = static_cast<byte>(rendition->colors->color_index);
  const Stipple_Flags flags = stipple_flags(rendition);
  const Face_Fill fill = face_fill(rendition->face->pattern, flags);
  if (fill == Face_Fill::nothing) return;
  const bool merge = merge_on(r, rendition);
  with_masking(r, rendition, [&](const auto& wrap) {
    const auto contrast = wrap(Index_Store{rendition->colors->contrast_index});
    // Merge applies on the solid path only.
    if (fill == Face_Fill::solid && merge) {
      const Merge_Mapped rule(r);
      fill_strip(r, rendition, count, points, fill, flags,
                 [&](int) { return wrap(Merge_Index_Store(rule, index)); }, contrast);
    } else {
      fill_strip(r, rendition, count, points, fill, flags, [&](int) { return wrap(Index_Store{index}); }, contrast);
    }
  });
}

void mapped_dc_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                            const OT_Point* points) {
  if (host_pattern(rendition)) return OB_Standard_Draw_DC_Polytriangle(object, rendition, count, points);
  run_rounded<false>(mapped_dci_polytriangle, object, rendition, count, points);
}

// ---- RGB32 -------------------------------------------------------------------

// The opaque filler never merges and never blends: what needs either goes to
// the alpha filler with the same arguments.
void rgb32_dci_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                      const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color) {
  if (alpha_path(rendition))
    return rgb32_alpha_dci_colorized_polytriangle(object, rendition, count, points, colors, single_color);
  if (host_pattern(rendition))
    return OB_Standard_Draw_DCI_Colorized_Polytriangle(object, rendition, count, points, colors, single_color);
  const Software_Z_Buffer& r = renderer_of(object);
  if (merge_on(r, rendition))
    return rgb32_alpha_dci_colorized_polytriangle(object, rendition, count, points, colors, single_color);
  const Stipple_Flags flags = stipple_flags(rendition);
  const Face_Fill fill = face_fill(rendition->face->pattern, flags);
  if (fill == Face_Fill::nothing) return;
  with_masking(r, rendition, [&](const auto& wrap) {
    fill_strip(
        r, rendition, count, points, fill, flags,
        [&](int i) { return wrap(Word_Store{colors[single_color ? 0 : i].word()}); },
        wrap(Word_Store{rendition->colors->contrast_color.word()}));
  });
}

void rgb32_alpha_dci_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                            const OT_DCI_Point* points, const OT_RGB32* colors,
                                            bool single_color) {
  if (host_pattern(rendition))
    return OB_Standard_Draw_DCI_Colorized_Polytriangle(object, rendition, count, points, colors, single_color);
  const Software_Z_Buffer& r = renderer_of(object);
  OT_RGB32 first = colors[0];
  if (first.a == 0 && single_color) return;
  const bool merge = merge_on(r, rendition);
  // Under merge only the colour in hand is taken as opaque; later colours of
  // a list keep their alpha.
  if (merge) first.a = 255;
  const Stipple_Flags flags = stipple_flags(rendition);
  const Face_Fill fill = face_fill(rendition->face->pattern, flags);
  if (fill == Face_Fill::nothing) return;
  const Pattern_Source source = fill == Face_Fill::pattern ? Pattern_Source::of(rendition, flags) : Pattern_Source{};
  with_masking(r, rendition, [&](const auto& wrap) {
    for (int i = 0; i + 2 < count; ++i) {
      const OT_RGB32 color = (i == 0 || single_color) ? first : colors[i];
      if (fill == Face_Fill::solid)
        alpha_solid_triangle(r, points + i, color, merge, wrap);
      else
        alpha_pattern_triangle(r, points + i, color, merge, rendition, flags, source, wrap);
    }
  });
}

void rgb32_dc_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                     const OT_Point* points, const OT_RGB32* colors, bool single_color) {
  if (alpha_path(rendition))
    return rgb32_alpha_dc_colorized_polytriangle(object, rendition, count, points, colors, single_color);
  if (host_pattern(rendition))
    return OB_Standard_Draw_DC_Colorized_Polytriangle(object, rendition, count, points, colors, single_color);
  run_rounded<false>(rgb32_dci_colorized_polytriangle, object, rendition, count, points, colors, single_color);
}

void rgb32_alpha_dc_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                           const OT_Point* points, const OT_RGB32* colors, bool single_color) {
  if (host_pattern(rendition))
    return OB_Standard_Draw_DC_Colorized_Polytriangle(object, rendition, count, points, colors, single_color);
  run_rounded<false>(rgb32_alpha_dci_colorized_polytriangle, object, rendition, count, points, colors, single_color);
}

// A flat strip in the RGB32 modes is a filler with one colour.
void rgb32_dci_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                            const OT_DCI_Point* points) {
  OT_RGB32 color = rendition->colors->color;
  if (alpha_path(rendition))
    return rgb32_alpha_dci_colorized_polytriangle(object, rendition, count, points, &color, true);
  if (merge_on(renderer_of(object), rendition)) {
    color.a = 255;
    return rgb32_alpha_dci_colorized_polytriangle(object, rendition, count, points, &color, true);
  }
  rgb32_dci_colorized_polytriangle(object, rendition, count, points, &color, true);
}

void rgb32_alpha_dci_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                  const OT_DCI_Point* points) {
  rgb32_alpha_dci_colorized_polytriangle(object, rendition, count, points, &rendition->colors->color, true);
}

void rgb32_dc_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                           const OT_Point* points) {
  if (host_pattern(rendition)) return OB_Standard_Draw_DC_Polytriangle(object, rendition, count, points);
  const OT_RGB32* color = &rendition->colors->color;
  if (alpha_path(rendition)) return rgb32_alpha_dc_colorized_polytriangle(object, rendition, count, points, color, true);
  rgb32_dc_colorized_polytriangle(object, rendition, count, points, color, true);
}

void rgb32_alpha_dc_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                 const OT_Point* points) {
  if (host_pattern(rendition)) return OB_Standard_Draw_DC_Polytriangle(object, rendition, count, points);
  rgb32_alpha_dc_colorized_polytriangle(object, rendition, count, points, &rendition->colors->color, true);
}

}  // namespace tarn
