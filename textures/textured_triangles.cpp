// The gate of the textured actions: what the renderer draws itself, which
// filler draws it, and what goes to the host. The sixteen actions are
// instantiations of one template over mode and form.
#include "textures/textured_triangles.h"

#include <type_traits>

#include "pixel/entry_tests.h"
#include "textures/textured_fill.h"
#include "triangles/strip_modes.h"
#include "triangles/strip_outline.h"

namespace tarn {
namespace {

using Filler = void (*)(OT_Renderer_Data*, const OT_Rendition&, int, const OT_DCI_Point*, const OT_RGB32*,
                        const OT_Parameter*, int);

// The writers of each mode, with and without modulation, and the fillers
// named after them.
template <class Mode>
struct Textured_Writers;
template <>
struct Textured_Writers<Z_Mapped> {
  using Modulated = Mapped_Writer<true, false>;
  using Plain = Mapped_Writer<false, false>;
  static constexpr Filler kModulated = fill_textured_mapped_modulated, kPlain = fill_textured_mapped;
};
template <>
struct Textured_Writers<Z_Mapped_Alpha> {
  using Modulated = Mapped_Writer<true, true>;
  using Plain = Mapped_Writer<false, true>;
  static constexpr Filler kModulated = fill_textured_mapped_keyed_modulated,
                          kPlain = fill_textured_mapped_keyed;
};
template <>
struct Textured_Writers<Z_Rgb32> {
  using Modulated = Rgb32_Modulated_Writer;
  using Plain = Rgb32_Texel_Writer;
  static constexpr Filler kModulated = fill_textured_rgb32_modulated, kPlain = fill_textured_rgb32;
};
template <>
struct Textured_Writers<Z_Rgb32_Alpha> {
  using Modulated = Rgb32_Alpha_Modulated_Writer<Channels_Wide, false>;
  using Plain = Rgb32_Alpha_Texel_Writer<false>;
  static constexpr Filler kModulated = fill_textured_rgb32_alpha_modulated,
                          kPlain = fill_textured_rgb32_alpha;
};

// A filler: the texture and image taken for the call, then the strip.
// The RGB32 opaque fillers hand the alpha path bit to their alpha twins,
// since a clip wrapper reaches them without the action's gate.
template <class Writer, class Alpha_Twin = void>
void textured_filler(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                     const OT_DCI_Point* points, const OT_RGB32* colors, const OT_Parameter* params,
                     int param_width) {
  if constexpr (!std::is_void_v<Alpha_Twin>) {
    if (alpha_path(rendition))
      return textured_filler<Alpha_Twin>(object, rendition, count, points, colors, params, param_width);
  }
  if (count < 3) return;
  const Texture_Hold hold(rendition);
  if (!hold.drawable()) return;
  const Texture_Lookup lookup(*hold.texture, hold.image);
  fill_textured_strip<Writer>(
      {renderer_of(object), rendition, count, points, colors, params, param_width, lookup});
}

template <class Form>
void host_textured(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                   const typename Form::Point* points, const OT_RGB32* colors, const OT_Parameter* params,
                   int param_width, const float* w, const OT_Vector* normals) {
  if constexpr (std::is_same_v<Form, Form_2D>)
    OB_Standard_Draw_2D_Textured_Polytriangle(object, rendition, count, points, colors, params, param_width,
                                              w, normals);
  else if constexpr (std::is_same_v<Form, Form_DC>)
    OB_Standard_Draw_DC_Textured_Polytriangle(object, rendition, count, points, colors, params, param_width,
                                              w, normals);
  else if constexpr (std::is_same_v<Form, Form_2DI>)
    OB_Standard_Draw_2DI_Textured_Polytriangle(object, rendition, count, points, colors, params, param_width,
                                               w, normals);
  else
    OB_Standard_Draw_DCI_Textured_Polytriangle(object, rendition, count, points, colors, params, param_width,
                                               w, normals);
}

// The points as integers: the float forms round them (with depth) into the
// call's frame, or the heap beyond 64 points.
template <class Form, class Body>
void with_integer_points(int count, const typename Form::Point* points, Body&& body) {
  if constexpr (Form::kFloat) {
    Point_Buffer buffer(count);
    round_points(points, count, buffer.data());
    body(static_cast<const OT_DCI_Point*>(buffer.data()));
  } else {
    body(points);
  }
}

template <class Form>
void textured_outline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                      const typename Form::Point* points) {
  with_integer_points<Form>(count, points,
                            [&](const OT_DCI_Point* p) { draw_strip_outline(object, rendition, count, p); });
}

// The action: the gate's tests in their order, then the form.
template <class Mode, class Form, bool kOutlinePassed = false>
void textured_strip(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                    const typename Form::Point* points, const OT_RGB32* colors, const OT_Parameter* params,
                    int param_width, const float* w, const OT_Vector* normals) {
  constexpr bool kRgb32Alpha = !Mode::kIndex && Mode::kAlpha;
  // Unlike the other triangle families, the outline bit comes before the
  // alpha path bit.
  if constexpr (kRgb32Opaque<Mode>) {
    if (outline_asked(rendition)) return textured_outline<Form>(object, rendition, count, points);
    if (alpha_path(rendition))
      return textured_strip<Z_Rgb32_Alpha, Form, true>(object, rendition, count, points, colors, params,
                                                       param_width, w, normals);
  }
  if constexpr (kRgb32Alpha && !Form::kClips && !kOutlinePassed) {
    if (outline_asked(rendition)) return textured_outline<Form>(object, rendition, count, points);
  }
  auto host = [&] {
    host_textured<Form>(object, rendition, count, points, colors, params, param_width, w, normals);
  };
  if (host_pattern(rendition) || depth_off(rendition)) return host();
  // A material without a texture image, or a list without parameters, has
  // nothing for the fillers to read.
  const Texture_Hold hold(rendition);
  if (!hold.drawable() || !params) return host();
  const OT_Texture_Data& texture = *hold.texture;
  if ((rendition->raster->texture_flags & 1) || texture.host_only || (texture.wrap_u & ~2) ||
      (texture.wrap_v & ~2))
    return host();
  if (rendition->colors->lighting && normals) {
    if constexpr (std::is_same_v<Mode, Z_Mapped> && !Form::kClips) {
      if (rendition->raster->shading != 3) {
        return with_integer_points<Form>(count, points, [&](const OT_DCI_Point* p) {
          fill_textured_mapped_lit(object, rendition, count, p, colors, params, param_width, normals);
        });
      }
    }
    return host();
  }
  // A modulating texture without colours is drawn unmodulated.
  const bool modulated = texture.modulate && colors;
  using Writers = Textured_Writers<Mode>;
  const Software_Z_Buffer& r = renderer_of(object);
  if constexpr (Form::kClips) {
    if (nothing_to_draw(r, count)) return;
    if constexpr (kRgb32Alpha) {
      if (modulated && outline_asked(rendition))
        return textured_outline<Form>(object, rendition, count, points);
    }
  }
  const OT_RGB32* const filler_colors = modulated ? colors : nullptr;
  with_integer_points<Form>(count, points, [&](const OT_DCI_Point* p) {
    if constexpr (Form::kClips) {
      const Texture_Lookup lookup(texture, hold.image);
      const Textured_Call call{r, rendition, count, p, filler_colors, params, param_width, lookup};
      if (modulated)
        fill_textured_anywhere<typename Writers::Modulated>(call);
      else
        fill_textured_anywhere<typename Writers::Plain>(call);
    } else {
      // The filler takes the texture again for itself.
      (modulated ? Writers::kModulated : Writers::kPlain)(object, rendition, count, p, filler_colors, params,
                                                          param_width);
    }
  });
}

}  // namespace

void fill_textured_mapped_modulated(OT_Renderer_Data* o, const OT_Rendition& rd, int n, const OT_DCI_Point* p,
                                    const OT_RGB32* c, const OT_Parameter* t, int tw) {
  textured_filler<Mapped_Writer<true, false>>(o, rd, n, p, c, t, tw);
}
void fill_textured_mapped(OT_Renderer_Data* o, const OT_Rendition& rd, int n, const OT_DCI_Point* p,
                          const OT_RGB32* c, const OT_Parameter* t, int tw) {
  textured_filler<Mapped_Writer<false, false>>(o, rd, n, p, c, t, tw);
}
void fill_textured_mapped_keyed_modulated(OT_Renderer_Data* o, const OT_Rendition& rd, int n,
                                          const OT_DCI_Point* p, const OT_RGB32* c, const OT_Parameter* t,
                                          int tw) {
  textured_filler<Mapped_Writer<true, true>>(o, rd, n, p, c, t, tw);
}
void fill_textured_mapped_keyed(OT_Renderer_Data* o, const OT_Rendition& rd, int n, const OT_DCI_Point* p,
                                const OT_RGB32* c, const OT_Parameter* t, int tw) {
  textured_filler<Mapped_Writer<false, true>>(o, rd, n, p, c, t, tw);
}
void fill_textured_rgb32_modulated(OT_Renderer_Data* o, const OT_Rendition& rd, int n, const OT_DCI_Point* p,
                                   const OT_RGB32* c, const OT_Parameter* t, int tw) {
  textured_filler<Rgb32_Modulated_Writer, Textured_Writers<Z_Rgb32_Alpha>::Modulated>(o, rd, n, p, c, t, tw);
}
void fill_textured_rgb32(OT_Renderer_Data* o, const OT_Rendition& rd, int n, const OT_DCI_Point* p,
                         const OT_RGB32* c, const OT_Parameter* t, int tw) {
  textured_filler<Rgb32_Texel_Writer, Textured_Writers<Z_Rgb32_Alpha>::Plain>(o, rd, n, p, c, t, tw);
}
void fill_textured_rgb32_alpha_modulated(OT_Renderer_Data* o, const OT_Rendition& rd, int n,
                                         const OT_DCI_Point* p, const OT_RGB32* c, const OT_Parameter* t,
                                         int tw) {
  textured_filler<Textured_Writers<Z_Rgb32_Alpha>::Modulated>(o, rd, n, p, c, t, tw);
}
void fill_textured_rgb32_alpha(OT_Renderer_Data* o, const OT_Rendition& rd, int n, const OT_DCI_Point* p,
                               const OT_RGB32* c, const OT_Parameter* t, int tw) {
  textured_filler<Textured_Writers<Z_Rgb32_Alpha>::Plain>(o, rd, n, p, c, t, tw);
}

#define TARN_TEXTURED_ACTION(prefix, Mode, form, Form)                                                       \
  void prefix##_##form##_textured_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition,      \
                                               int count, const Form::Point* points, const OT_RGB32* colors, \
                                               const OT_Parameter* params, int param_width, const float* w,  \
                                               const OT_Vector* normals) {                                   \
    textured_strip<Mode, Form>(object, rendition, count, points, colors, params, param_width, w, normals);   \
  }
#define TARN_TEXTURED_ACTIONS(prefix, Mode)         \
  TARN_TEXTURED_ACTION(prefix, Mode, 2d, Form_2D)   \
  TARN_TEXTURED_ACTION(prefix, Mode, dc, Form_DC)   \
  TARN_TEXTURED_ACTION(prefix, Mode, 2di, Form_2DI) \
  TARN_TEXTURED_ACTION(prefix, Mode, dci, Form_DCI)

TARN_TEXTURED_ACTIONS(z_mapped, Z_Mapped)
TARN_TEXTURED_ACTIONS(z_mapped_alpha, Z_Mapped_Alpha)
TARN_TEXTURED_ACTIONS(z_rgb32, Z_Rgb32)
TARN_TEXTURED_ACTIONS(z_rgb32_alpha, Z_Rgb32_Alpha)

}  // namespace tarn
