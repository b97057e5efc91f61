// A textured strip of one call: the filler's frame over a strip of inside
// points, the clipped path of a crossing triangle, and the clip wrapper that
// sorts a strip anywhere into the two.
#pragma once

#include <cstddef>
#include <type_traits>

#include "pixel/limits.h"
#include "pixel/outcode_buffer.h"
#include "textures/textured_filler.h"
#include "triangles/clip_path.h"

namespace tarn {

// What a textured fill knows of its call once the gate is passed.
struct Textured_Call {
  const Software_Z_Buffer& r;
  const OT_Rendition& rendition;
  int count;
  const OT_DCI_Point* points;
  const OT_RGB32* colors;  // null for the writers without channels
  const OT_Parameter* params;
  int param_width;
  const Texture_Lookup& lookup;

  const OT_Parameter& param(int i) const { return params[static_cast<std::ptrdiff_t>(i) * param_width]; }
  Textured_Call run(int first, int n) const {
    Textured_Call part = *this;
    part.count = n;
    part.points = points + first;
    if (colors) part.colors = colors + first;
    part.params = &param(first);
    return part;
  }
};

template <class Writer>
inline Writer make_writer(const Software_Z_Buffer& r, const OT_Rendition& rendition) {
  const OT_Rendition_Colors& colors = *rendition->colors;
  if constexpr (std::is_base_of_v<Rgb32_Contrast, Writer>)
    return Writer{{}, {colors.contrast_color.word()}};
  else if constexpr (std::is_base_of_v<Rgb32_Alpha_Contrast, Writer>)
    return Writer{{}, {colors.contrast_color}};
  else
    return Writer(r.cube, colors.contrast_index);
}

// The point's texel coordinate and colour.
inline Textured_Vertex textured_vertex(const Texture_Lookup& lookup, const OT_DCI_Point* point,
                                       const OT_RGB32* color, const OT_Parameter& param) {
  return {point, color ? *color : OT_RGB32{}, texel_coordinate(lookup.width, param.u),
          texel_coordinate(lookup.height, param.v)};
}

// The filler of one call on its path, solid, pattern, or pattern with
// contrast pixels: walk(filler). A pattern that draws nothing walks nothing.
template <class Writer, class Walk>
void with_textured_filler(const Software_Z_Buffer& r, const OT_Rendition& rendition, const Writer& writer,
                          const Texture_Lookup& lookup, Walk&& walk) {
  const Stipple_Flags flags = stipple_flags(rendition);
  const Face_Fill fill = face_fill(rendition->face->pattern, flags);
  if (fill == Face_Fill::nothing) return;
  const Pattern_Source source =
      fill == Face_Fill::pattern ? Pattern_Source::of(rendition, flags) : Pattern_Source{};
  auto make = [&]<bool kPattern, bool kContrast>() {
    walk(Textured_Filler<Writer, kPattern, kContrast>{writer, &lookup, r.color_image->device_rows,
                                                      r.depth_image->device_rows, rendition->face->depth_bias,
                                                      &source});
  };
  if (fill == Face_Fill::solid)
    make.template operator()<false, false>();
  else if (flags.contrast)
    make.template operator()<true, true>();
  else
    make.template operator()<true, false>();
}

// The filler over a strip of inside points: each point's parameters scaled
// once, the triangles walked in turn.
template <class Writer>
void fill_textured_strip(const Textured_Call& c) {
  const OT_RGB32* colors = Writer::kChannels ? c.colors : nullptr;
  auto vertex = [&](int i) {
    return textured_vertex(c.lookup, c.points + i, colors ? colors + i : nullptr, c.param(i));
  };
  with_textured_filler(c.r, c.rendition, make_writer<Writer>(c.r, c.rendition), c.lookup,
                       [&](const auto& filler) {
                         Textured_Vertex a = vertex(0), b = vertex(1);
                         for (int i = 2; i < c.count; ++i) {
                           const Textured_Vertex v = vertex(i);
                           walk_triangle(filler, a, b, v, c.r.origin_x, c.r.origin_y);
                           a = b;
                           b = v;
                         }
                       });
}

// A triangle across the hard clip (point p of the call and the two after
// it): cut to the walk limits first when a point lies beyond them, with one
// parameter a point from then on, then walked with its rows and spans cut
// to the clip. The clipped path knows no pattern.
template <class Writer>
void fill_clipped_textured_triangle(const Textured_Call& c, int p) {
  using Clipped = typename Writer::Clipped;
  constexpr bool kColors = Clipped::kChannels > 0;
  OT_DCI_Point points[kMaxClipVertices] = {c.points[p], c.points[p + 1], c.points[p + 2]};
  OT_RGB32 colors[kMaxClipVertices] = {};
  OT_Parameter params[kMaxClipVertices] = {c.param(p), c.param(p + 1), c.param(p + 2)};
  if (kColors)
    for (int k = 0; k < 3; ++k) colors[k] = c.colors[p + k];
  int n = 3;
  short codes[3];
  OB_Clip(kWalkLimits, 3, points, codes);
  if (codes[0] | codes[1] | codes[2]) {
    const OT_DCI_Point triangle[3] = {points[0], points[1], points[2]};
    const OT_RGB32 triangle_colors[3] = {colors[0], colors[1], colors[2]};
    const OT_Parameter triangle_params[3] = {params[0], params[1], params[2]};
    n = clip_triangle_to_rectangle(triangle, kColors ? triangle_colors : nullptr, triangle_params,
                                   kWalkLimits, points, colors, params);
  }
  const Textured_Filler<Clipped, false, false> filler{
      make_writer<Clipped>(c.r, c.rendition), &c.lookup,
      c.r.color_image->device_rows,           c.r.depth_image->device_rows,
      c.rendition->face->depth_bias,          nullptr};
  const Rect_Clip clip(c.rendition->device->hard_clip, c.r.origin_x);
  for (int i = 0; i + 2 < n; ++i) {
    auto vertex = [&](int k) { return textured_vertex(c.lookup, points + k, colors + k, params[k]); };
    walk_triangle(filler, vertex(i), vertex(i + 1), vertex(i + 2), c.r.origin_x, c.r.origin_y, clip);
  }
}

// A strip anywhere: OB_Clip on the hard clip; runs wholly inside go to the
// filler as strips, crossing triangles one by one to the clipped path.
template <class Writer>
void fill_textured_anywhere(const Textured_Call& c) {
  Outcode_Buffer codes(c.count);
  const int result = OB_Clip(c.rendition->device->hard_clip, c.count, c.points, codes.data());
  if (result == 0) return;
  if (result == c.count) return fill_textured_strip<Writer>(c);
  run_clip_loop(
      c.count, codes.data(), [&](int first, int n) { fill_textured_strip<Writer>(c.run(first, n)); },
      [&](int p) { fill_clipped_textured_triangle<Writer>(c, p); });
}

}  // namespace tarn
