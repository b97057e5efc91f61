#include "triangles/clipped_triangles.h"

#include <type_traits>

#include "frame/software_z_buffer.h"
#include "pixel/entry_tests.h"
#include "pixel/mask.h"
#include "pixel/rounding.h"
#include "triangles/clip_path.h"
#include "triangles/colorized_triangles.h"
#include "triangles/crossing_fillers.h"
#include "triangles/depth_triangles.h"
#include "triangles/flat_triangles.h"
#include "triangles/strip_outline.h"

namespace tarn {
namespace {


// What every clipped action knows once its own tests are passed.
struct Clip_Call {
  OT_Renderer_Data* object;
  const Software_Z_Buffer& r;
  const OT_Rendition& rendition;
  int count;
  const OT_DCI_Point* points;
  Stipple_Flags flags;
  Face_Fill fill;
  Pattern_Source source;

  Clip_Call(OT_Renderer_Data* o, const OT_Rendition& rend, int n, const OT_DCI_Point* p)
      : object(o),
        r(renderer_of(o)),
        rendition(rend),
        count(n),
        points(p),
        flags(stipple_flags(rend)),
        fill(face_fill(rend->face->pattern, flags)),
        source(fill == Face_Fill::pattern ? Pattern_Source::of(rend, flags) : Pattern_Source{}) {}

  // OB_Clip on the hard clip: the whole list to whole(), nothing, or the run
  // loop with inside(first, n) and cross(p).
  template <class Whole, class Inside, class Cross>
  void run(Whole&& whole, Inside&& inside, Cross&& cross) const {
    Outcode_Buffer codes(count);
    const int result = OB_Clip(rendition->device->hard_clip, count, points, codes.data());
    if (result == count) return whole();
    if (result == 0 || fill == Face_Fill::nothing) return;
    run_clip_loop(count, codes.data(), inside, cross);
  }

  // A crossing triangle without depth, solid or patterned.
  template <class Main, class Contrast>
  void cross_plain(int p, const Main& main, const Contrast& contrast) const {
    byte* const* rows = r.color_image->device_rows;
    if (fill == Face_Fill::solid) {
      Crossing_Solid<Main> filler(rows, main);
      cross_triangle(filler, rendition, points + p, r.origin_x, r.origin_y);
    } else {
      Crossing_Pattern<Main, Contrast> filler(rows, main, contrast, &source, flags.contrast);
      cross_triangle(filler, rendition, points + p, r.origin_x, r.origin_y);
    }
  }

  template <class Test, bool kWriteDepth, class Main, class Contrast>
  void cross_depth(int p, const Main& main, const Contrast& contrast) const {
    Crossing_Depth<Main, Contrast, Test, kWriteDepth> filler(
        rendition->face->depth_bias, r.color_image->device_rows, r.depth_image->device_rows, main, contrast,
        fill == Face_Fill::pattern ? &source : nullptr, flags.contrast);
    cross_triangle(filler, rendition, points + p, r.origin_x, r.origin_y);
  }

  // "ZBuffer Test" and "ZBuffer Write" of the RGB32 opaque depth mode; behind
  // a mask at or below, always written.
  template <class Wrap, class Main, class Contrast>
  void cross_depth_for(const Wrap&, int p, const Main& main, const Contrast& contrast) const {
    if constexpr (std::is_same_v<Wrap, No_Masking>)
      cross_depth_by_options(p, main, contrast);
    else
      cross_depth<Depth_At_Or_Below, true>(p, main, contrast);
  }

  // "ZBuffer Test" and "ZBuffer Write" of the RGB32 opaque depth mode.
  template <class Main, class Contrast>
  void cross_depth_by_options(int p, const Main& main, const Contrast& contrast) const {
    with_depth_test(r.depth_test, [&]<class Test>() {
      if (r.depth_write)
        cross_depth<Test, true>(p, main, contrast);
      else
        cross_depth<Test, false>(p, main, contrast);
    });
  }
};


const OT_RGB32* colors_from(const OT_RGB32* colors, bool single_color, int first) {
  return single_color ? colors : colors + first;
}

// The colour of triangle p of a list.
OT_RGB32 color_of(const OT_RGB32* colors, bool single_color, int p) { return colors[single_color ? 0 : p]; }

// The 2D forms: patterns above 74 go to the host; otherwise all three
// coordinates are rounded and the mode's 2DI form runs.
template <auto Integer_Form>
void plain_2d(OT_Renderer_Data* object, const OT_Rendition& rendition, int count, const OT_Point* points) {
  if (host_pattern(rendition)) return OB_Standard_Draw_2D_Polytriangle(object, rendition, count, points);
  if (nothing_to_draw(renderer_of(object), count)) return;
  run_rounded<true>(Integer_Form, object, rendition, count, points);
}

template <auto Integer_Form>
void colorized_2d(OT_Renderer_Data* object, const OT_Rendition& rendition, int count, const OT_Point* points,
                  const OT_RGB32* colors, bool single_color) {
  if (host_pattern(rendition))
    return OB_Standard_Draw_2D_Colorized_Polytriangle(object, rendition, count, points, colors, single_color);
  if (nothing_to_draw(renderer_of(object), count)) return;
  run_rounded<true>(Integer_Form, object, rendition, count, points, colors, single_color);
}

}  // namespace

// ---- Mapped --------------------------------------------------------------------

void mapped_2di_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                             const OT_DCI_Point* points) {
  if (host_pattern(rendition)) return OB_Standard_Draw_2DI_Polytriangle(object, rendition, count, points);
  if (nothing_to_draw(renderer_of(object), count)) return;
  const Clip_Call call(object, rendition, count, points);
  const byte index = static_cast<byte>(rendition->colors->color_index);
  const byte contrast = rendition->colors->contrast_index;
  const bool merge = merge_on(call.r, rendition);
  const Merge_Mapped rule(call.r);
  with_masking(call.r, rendition, [&](const auto& wrap) {
    call.run([&] { mapped_dci_polytriangle(object, rendition, count, points); },
             [&](int first, int n) { mapped_dci_polytriangle(object, rendition, n, points + first); },
             [&](int p) {
               // Crossing spans merge, patterned ones too.
               if (merge)
                 call.cross_plain(p, wrap(Merge_Index_Store(rule, index)),
                                  wrap(Merge_Index_Store(rule, contrast)));
               else
                 call.cross_plain(p, wrap(Index_Store{index}), wrap(Index_Store{contrast}));
             });
  });
}

void mapped_2di_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                       const OT_DCI_Point* points, const OT_RGB32* colors,
                                       bool single_color) {
  if (host_pattern(rendition))
    return OB_Standard_Draw_2DI_Colorized_Polytriangle(object, rendition, count, points, colors,
                                                       single_color);
  if (nothing_to_draw(renderer_of(object), count)) return;
  const Clip_Call call(object, rendition, count, points);
  const byte contrast = rendition->colors->contrast_index;
  const bool merge = merge_on(call.r, rendition);
  const Merge_Mapped rule(call.r);
  const OT_Color_Cube& cube = call.r.cube;
  with_masking(call.r, rendition, [&](const auto& wrap) {
    call.run(
        [&] { mapped_dci_colorized_polytriangle(object, rendition, count, points, colors, single_color); },
        [&](int first, int n) {
          mapped_dci_colorized_polytriangle(object, rendition, n, points + first,
                                            colors_from(colors, single_color, first), single_color);
        },
        [&](int p) {
          const Dither_Levels levels = dither_levels(cube, color_of(colors, single_color, p));
          if (merge)
            call.cross_plain(p, wrap(Merge_Dither_Add_Store(rule, cube, levels)),
                             wrap(Merge_Index_Store(rule, contrast)));
          else
            call.cross_plain(p, wrap(Dither_Add_Store(cube, levels)), wrap(Index_Store{contrast}));
        });
  });
}

void mapped_2d_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                            const OT_Point* points) {
  plain_2d<mapped_2di_polytriangle>(object, rendition, count, points);
}

void mapped_2d_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                      const OT_Point* points, const OT_RGB32* colors, bool single_color) {
  colorized_2d<mapped_2di_colorized_polytriangle>(object, rendition, count, points, colors, single_color);
}

// ---- RGB32 without depth ----------------------------------------------------------

// Crossing triangles store plain: the opaque form has no merge.
void rgb32_2di_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                      const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color) {
  if (alpha_path(rendition))
    return rgb32_alpha_2di_colorized_polytriangle(object, rendition, count, points, colors, single_color);
  if (host_pattern(rendition))
    return OB_Standard_Draw_2DI_Colorized_Polytriangle(object, rendition, count, points, colors,
                                                       single_color);
  if (nothing_to_draw(renderer_of(object), count)) return;
  const Clip_Call call(object, rendition, count, points);
  const Word_Store contrast{rendition->colors->contrast_color.word()};
  with_masking(call.r, rendition, [&](const auto& wrap) {
    call.run(
        [&] { rgb32_dci_colorized_polytriangle(object, rendition, count, points, colors, single_color); },
        [&](int first, int n) {
          rgb32_dci_colorized_polytriangle(object, rendition, n, points + first,
                                           colors_from(colors, single_color, first), single_color);
        },
        [&](int p) {
          call.cross_plain(p, wrap(Word_Store{color_of(colors, single_color, p).word()}), wrap(contrast));
        });
  });
}

// As the alpha filler: under merge the first colour counts as opaque; opaque
// colours store plain or merge, translucent ones blend (and their pattern
// holes store the contrast colour plain).
void rgb32_alpha_2di_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition,
                                            int count, const OT_DCI_Point* points, const OT_RGB32* colors,
                                            bool single_color) {
  if (host_pattern(rendition))
    return OB_Standard_Draw_2DI_Colorized_Polytriangle(object, rendition, count, points, colors,
                                                       single_color);
  if (nothing_to_draw(renderer_of(object), count)) return;
  const Clip_Call call(object, rendition, count, points);
  const bool merge = merge_on(call.r, rendition);
  const Merge_Rgb32 rule(call.r);
  const std::uint32_t contrast = rendition->colors->contrast_color.word();
  with_masking(call.r, rendition, [&](const auto& wrap) {
    call.run(
        [&] {
          rgb32_alpha_dci_colorized_polytriangle(object, rendition, count, points, colors, single_color);
        },
        [&](int first, int n) {
          rgb32_alpha_dci_colorized_polytriangle(object, rendition, n, points + first,
                                                 colors_from(colors, single_color, first), single_color);
        },
        [&](int p) {
          OT_RGB32 color = color_of(colors, single_color, p);
          if (merge && (single_color || p == 0)) color.a = 255;
          if (color.a != 255)
            call.cross_plain(p, wrap(Blend_Exact_Store(color)), wrap(Word_Store{contrast}));
          else if (merge)
            call.cross_plain(p, wrap(Merge_Word_Store(rule, color.word())),
                             wrap(Merge_Word_Store(rule, contrast)));
          else
            call.cross_plain(p, wrap(Word_Store{color.word()}), wrap(Word_Store{contrast}));
        });
  });
}

void rgb32_2di_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                            const OT_DCI_Point* points) {
  if (host_pattern(rendition)) return OB_Standard_Draw_2DI_Polytriangle(object, rendition, count, points);
  OT_RGB32 color = rendition->colors->color;
  if (merge_on(renderer_of(object), rendition)) {
    color.a = 255;
    return rgb32_alpha_2di_colorized_polytriangle(object, rendition, count, points, &color, true);
  }
  rgb32_2di_colorized_polytriangle(object, rendition, count, points, &color, true);
}

void rgb32_alpha_2di_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                  const OT_DCI_Point* points) {
  if (host_pattern(rendition)) return OB_Standard_Draw_2DI_Polytriangle(object, rendition, count, points);
  rgb32_alpha_2di_colorized_polytriangle(object, rendition, count, points, &rendition->colors->color, true);
}

void rgb32_2d_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                           const OT_Point* points) {
  plain_2d<rgb32_2di_polytriangle>(object, rendition, count, points);
}

void rgb32_alpha_2d_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                 const OT_Point* points) {
  plain_2d<rgb32_alpha_2di_polytriangle>(object, rendition, count, points);
}

void rgb32_2d_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                     const OT_Point* points, const OT_RGB32* colors, bool single_color) {
  colorized_2d<rgb32_2di_colorized_polytriangle>(object, rendition, count, points, colors, single_color);
}

void rgb32_alpha_2d_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                           const OT_Point* points, const OT_RGB32* colors,
                                           bool single_color) {
  colorized_2d<rgb32_alpha_2di_colorized_polytriangle>(object, rendition, count, points, colors,
                                                       single_color);
}

// ---- Depth --------------------------------------------------------------------------
// No merge anywhere in the depth modes.

void z_mapped_2di_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                               const OT_DCI_Point* points) {
  if (host_pattern(rendition)) return OB_Standard_Draw_2DI_Polytriangle(object, rendition, count, points);
  if (depth_off(rendition)) return mapped_2di_polytriangle(object, rendition, count, points);
  if (nothing_to_draw(renderer_of(object), count)) return;
  const Clip_Call call(object, rendition, count, points);
  const Index_Store main{static_cast<byte>(rendition->colors->color_index)};
  const Index_Store contrast{rendition->colors->contrast_index};
  with_masking(call.r, rendition, [&](const auto& wrap) {
    call.run([&] { z_mapped_dci_polytriangle(object, rendition, count, points); },
             [&](int first, int n) { z_mapped_dci_polytriangle(object, rendition, n, points + first); },
             [&](int p) { call.cross_depth<Depth_At_Or_Below, true>(p, wrap(main), wrap(contrast)); });
  });
}

void z_mapped_2di_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                         const OT_DCI_Point* points, const OT_RGB32* colors,
                                         bool single_color) {
  if (host_pattern(rendition))
    return OB_Standard_Draw_2DI_Colorized_Polytriangle(object, rendition, count, points, colors,
                                                       single_color);
  if (depth_off(rendition))
    return mapped_2di_colorized_polytriangle(object, rendition, count, points, colors, single_color);
  if (nothing_to_draw(renderer_of(object), count)) return;
  const Clip_Call call(object, rendition, count, points);
  const Index_Store contrast{rendition->colors->contrast_index};
  const OT_Color_Cube& cube = call.r.cube;
  with_masking(call.r, rendition, [&](const auto& wrap) {
    call.run(
        [&] { z_mapped_dci_colorized_polytriangle(object, rendition, count, points, colors, single_color); },
        [&](int first, int n) {
          z_mapped_dci_colorized_polytriangle(object, rendition, n, points + first,
                                              colors_from(colors, single_color, first), single_color);
        },
        [&](int p) {
          const Dither_Add_Store main(cube, dither_levels(cube, color_of(colors, single_color, p)));
          call.cross_depth<Depth_At_Or_Below, true>(p, wrap(main), wrap(contrast));
        });
  });
}

void z_rgb32_2di_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                        const OT_DCI_Point* points, const OT_RGB32* colors,
                                        bool single_color) {
  if (outline_asked(rendition)) return draw_strip_outline(object, rendition, count, points);
  if (alpha_path(rendition))
    return z_rgb32_alpha_2di_colorized_polytriangle(object, rendition, count, points, colors, single_color);
  if (host_pattern(rendition))
    return OB_Standard_Draw_2DI_Colorized_Polytriangle(object, rendition, count, points, colors,
                                                       single_color);
  if (depth_off(rendition))
    return rgb32_2di_colorized_polytriangle(object, rendition, count, points, colors, single_color);
  if (nothing_to_draw(renderer_of(object), count)) return;
  const Clip_Call call(object, rendition, count, points);
  const Word_Store contrast{rendition->colors->contrast_color.word()};
  with_masking(call.r, rendition, [&](const auto& wrap) {
    call.run(
        [&] { z_rgb32_dci_colorized_polytriangle(object, rendition, count, points, colors, single_color); },
        [&](int first, int n) {
          z_rgb32_dci_colorized_polytriangle(object, rendition, n, points + first,
                                             colors_from(colors, single_color, first), single_color);
        },
        [&](int p) {
          call.cross_depth_for(wrap, p, wrap(Word_Store{color_of(colors, single_color, p).word()}),
                               wrap(contrast));
        });
  });
}

void z_rgb32_alpha_2di_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition,
                                              int count, const OT_DCI_Point* points, const OT_RGB32* colors,
                                              bool single_color) {
  if (outline_asked(rendition)) return draw_strip_outline(object, rendition, count, points);
  if (host_pattern(rendition))
    return OB_Standard_Draw_2DI_Colorized_Polytriangle(object, rendition, count, points, colors,
                                                       single_color);
  if (depth_off(rendition))
    return rgb32_alpha_2di_colorized_polytriangle(object, rendition, count, points, colors, single_color);
  if (nothing_to_draw(renderer_of(object), count)) return;
  const Clip_Call call(object, rendition, count, points);
  const Word_Store contrast{rendition->colors->contrast_color.word()};
  call.run(
      [&] {
        z_rgb32_alpha_dci_colorized_polytriangle(object, rendition, count, points, colors, single_color);
      },
      [&](int first, int n) {
        z_rgb32_alpha_dci_colorized_polytriangle(object, rendition, n, points + first,
                                                 colors_from(colors, single_color, first), single_color);
      },
      [&](int p) {
        const Alpha_Switch_Store main(color_of(colors, single_color, p));
        if (call.r.depth_write)
          call.cross_depth<Depth_At_Or_Below, true>(p, main, contrast);
        else
          call.cross_depth<Depth_At_Or_Below, false>(p, main, contrast);
      });
}

void z_mapped_2d_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                              const OT_Point* points) {
  plain_2d<z_mapped_2di_polytriangle>(object, rendition, count, points);
}

void z_mapped_2d_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                        const OT_Point* points, const OT_RGB32* colors, bool single_color) {
  colorized_2d<z_mapped_2di_colorized_polytriangle>(object, rendition, count, points, colors, single_color);
}

void z_rgb32_2di_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                              const OT_DCI_Point* points) {
  if (host_pattern(rendition)) return OB_Standard_Draw_2DI_Polytriangle(object, rendition, count, points);
  z_rgb32_2di_colorized_polytriangle(object, rendition, count, points, &rendition->colors->color, true);
}

void z_rgb32_alpha_2di_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                    const OT_DCI_Point* points) {
  if (host_pattern(rendition)) return OB_Standard_Draw_2DI_Polytriangle(object, rendition, count, points);
  z_rgb32_alpha_2di_colorized_polytriangle(object, rendition, count, points, &rendition->colors->color, true);
}

void z_rgb32_2d_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                             const OT_Point* points) {
  plain_2d<z_rgb32_2di_polytriangle>(object, rendition, count, points);
}

void z_rgb32_alpha_2d_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                   const OT_Point* points) {
  plain_2d<z_rgb32_alpha_2di_polytriangle>(object, rendition, count, points);
}

void z_rgb32_2d_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                       const OT_Point* points, const OT_RGB32* colors, bool single_color) {
  colorized_2d<z_rgb32_2di_colorized_polytriangle>(object, rendition, count, points, colors, single_color);
}

void z_rgb32_alpha_2d_colorized_polytriangle(OT_Renderer_Data* object, const OT_Rendition& rendition,
                                             int count, const OT_Point* points, const OT_RGB32* colors,
                                             bool single_color) {
  colorized_2d<z_rgb32_alpha_2di_colorized_polytriangle>(object, rendition, count, points, colors,
                                                         single_color);
}

}  // namespace tarn
