// Standard routines of dots, images, clears and buffer reads. The host has
// no pixels of its own: what can be drawn goes to the renderer's DCI slots,
// and what would need the renderer's buffers does nothing.
#include "ombra/standard_support.h"

namespace {

using namespace ombra;
using R = OT_Renderer_Data;

// ---- Dots -------------------------------------------------------------------

template <class Point>
void forward_dot(R* r, const OT_Rendition& rd, const Point* point, const OT_RGB32* color, bool clip_it) {
  if (!point) return;
  const OT_DCI_Point p = round_point(*point);
  if (!clip_it || inside(hard_clip(rd), p)) r->draw_dci_dot(rd, &p, color);
}

// ---- Images -----------------------------------------------------------------

// Breaks an image into dots. `first` is the left end and the top row,
// `last` the right end and the bottom row; data rows run from the top down,
// row_bytes apart. z runs from first.z to last.z across each row. With
// `clip_it`, pixels outside the hard clip are left out.
template <class Pixel_Color>
void image_dots(R* r, const OT_Rendition& rd, const OT_DCI_Point& first, const OT_DCI_Point& last,
                int row_bytes, const byte* data, bool clip_it, Pixel_Color pixel_color) {
  if (!data) return;
  const std::int64_t width = std::int64_t(last.x) - first.x + 1;
  for (std::int64_t y = first.y, row = 0; y >= last.y; --y, ++row) {
    const byte* source = data + row * row_bytes;
    for (std::int64_t i = 0; i < width; ++i) {
      const OT_DCI_Point p{std::int32_t(first.x + i), std::int32_t(y),
                           width > 1 ? step_between(first.z, last.z, i, width - 1) : first.z};
      if (clip_it && !inside(hard_clip(rd), p)) continue;
      const OT_RGB32 color = pixel_color(source, i);
      r->draw_dci_dot(rd, &p, &color);
    }
  }
}

// Index images take their colours from the palette of the renderer's current
// options.
struct Index_Color {
  const OT_Palette* palette;
  OT_RGB32 operator()(const byte* row, std::int64_t i) const {
    const byte index = row[i];
    if (palette && *palette) return palette->color(index);
    return OT_RGB32{index, index, index, 255};
  }
};

struct RGB32_Color {
  OT_RGB32 operator()(const byte* row, std::int64_t i) const {
    const byte* at = row + i * 4;
    return OT_RGB32{at[0], at[1], at[2], at[3]};
  }
};

const OT_Palette* palette_of(R* r) {
  const OT_Renderer_Options* options = r->current_renderer_options();
  return options ? &options->palette() : nullptr;
}

template <class Point>
void index8_image(R* r, const OT_Rendition& rd, const Point* first, const Point* last, int row_bytes,
                  const byte* data, bool clip_it) {
  if (!first || !last) return;
  image_dots(r, rd, round_point(*first), round_point(*last), row_bytes, data, clip_it,
             Index_Color{palette_of(r)});
}

template <class Point>
void rgb32_image(R* r, const OT_Rendition& rd, const Point* first, const Point* last, int row_bytes,
                 const OT_RGB32* data, bool clip_it) {
  if (!first || !last) return;
  image_dots(r, rd, round_point(*first), round_point(*last), row_bytes, reinterpret_cast<const byte*>(data),
             clip_it, RGB32_Color{});
}

}  // namespace

// ---- Dots -------------------------------------------------------------------

void OB_Standard_Draw_2D_Dot(R* r, const OT_Rendition& rd, const OT_Point* point, const OT_RGB32* color) {
  forward_dot(r, rd, point, color, true);
}
void OB_Standard_Draw_DC_Dot(R* r, const OT_Rendition& rd, const OT_Point* point, const OT_RGB32* color) {
  forward_dot(r, rd, point, color, false);
}
void OB_Standard_Draw_2DI_Dot(R* r, const OT_Rendition& rd, const OT_DCI_Point* point,
                              const OT_RGB32* color) {
  forward_dot(r, rd, point, color, true);
}
void OB_Standard_Draw_Tiled_Dot(R* r, const OT_Rendition& rd, const OT_Point_D* point,
                                const OT_RGB32* color) {
  forward_dot(r, rd, point, color, true);
}
// The end of every chain of standard routines: a pixel needs the renderer.
void OB_Standard_Draw_DCI_Dot(R*, const OT_Rendition&, const OT_DCI_Point*, const OT_RGB32*) {}

// ---- Images -----------------------------------------------------------------

void OB_Standard_Draw_2D_Index8_Image(R* r, const OT_Rendition& rd, const OT_Point* first,
                                      const OT_Point* last, int row_bytes, const byte* data) {
  index8_image(r, rd, first, last, row_bytes, data, true);
}
void OB_Standard_Draw_DC_Index8_Image(R* r, const OT_Rendition& rd, const OT_Point* first,
                                      const OT_Point* last, int row_bytes, const byte* data) {
  index8_image(r, rd, first, last, row_bytes, data, false);
}
void OB_Standard_Draw_2DI_Index8_Image(R* r, const OT_Rendition& rd, const OT_DCI_Point* first,
                                       const OT_DCI_Point* last, int row_bytes, const byte* data) {
  index8_image(r, rd, first, last, row_bytes, data, true);
}
void OB_Standard_Draw_DCI_Index8_Image(R* r, const OT_Rendition& rd, const OT_DCI_Point* first,
                                       const OT_DCI_Point* last, int row_bytes, const byte* data) {
  index8_image(r, rd, first, last, row_bytes, data, false);
}
void OB_Standard_Draw_Tiled_Index8_Image(R* r, const OT_Rendition& rd, const OT_Point_D* first,
                                         const OT_Point_D* last, int row_bytes, const byte* data) {
  index8_image(r, rd, first, last, row_bytes, data, true);
}

void OB_Standard_Draw_2D_RGB32_Image(R* r, const OT_Rendition& rd, const OT_Point* first,
                                     const OT_Point* last, int row_bytes, const OT_RGB32* data, int,
                                     const OT_Packing*) {
  rgb32_image(r, rd, first, last, row_bytes, data, true);
}
void OB_Standard_Draw_DC_RGB32_Image(R* r, const OT_Rendition& rd, const OT_Point* first,
                                     const OT_Point* last, int row_bytes, const OT_RGB32* data, int,
                                     const OT_Packing*) {
  rgb32_image(r, rd, first, last, row_bytes, data, false);
}
void OB_Standard_Draw_2DI_RGB32_Image(R* r, const OT_Rendition& rd, const OT_DCI_Point* first,
                                      const OT_DCI_Point* last, int row_bytes, const OT_RGB32* data, int,
                                      const OT_Packing*) {
  rgb32_image(r, rd, first, last, row_bytes, data, true);
}
void OB_Standard_Draw_DCI_RGB32_Image(R* r, const OT_Rendition& rd, const OT_DCI_Point* first,
                                      const OT_DCI_Point* last, int row_bytes, const OT_RGB32* data, int,
                                      const OT_Packing*) {
  rgb32_image(r, rd, first, last, row_bytes, data, false);
}
void OB_Standard_Draw_Tiled_RGB32_Image(R* r, const OT_Rendition& rd, const OT_Point_D* first,
                                        const OT_Point_D* last, int row_bytes, const OT_RGB32* data, int,
                                        const OT_Packing*) {
  rgb32_image(r, rd, first, last, row_bytes, data, true);
}

// ---- Buffers ----------------------------------------------------------------

void OB_Standard_Write_Depth_Rectangle(R*, const OT_Rendition&, const OT_DCI_Point*, const OT_DCI_Point*, int,
                                       const byte*) {}

// Nothing to read: the image comes back null, which tells the caller that
// this buffer can't serve the request.
void OB_Standard_Read_Color_Rectangle(R*, const OT_Rendition&, const OT_DCI_Point*, const OT_DCI_Point*,
                                      OT_Image_Format*, OT_Shared_Image& image) {
  image.reset();
}
void OB_Standard_Read_Depth_Rectangle(R*, const OT_Rendition&, const OT_DCI_Point*, const OT_DCI_Point*,
                                      OT_Image_Format*, OT_Shared_Image& image) {
  image.reset();
}

void OB_Standard_Clear_Color(R* r, const OT_Rendition& rd) {
  if (!rd) return;
  const OT_Int_Rectangle& clip = hard_clip(rd);
  OB_Span_DC_Rectangle(r, rd, clip.left, clip.right, clip.bottom, clip.top);
}

void OB_Standard_Clear_Depth(R*, const OT_Rendition&) {}

// The rectangle as a strip of two triangles whose right and top edges lie one
// beyond the last column and row: the walk owns neither edge, so it fills
// exactly left..right, bottom..top. The fill uses a private copy of the
// rendition in the window colour, face pattern and all else as they stand.
void OB_Span_DC_Rectangle(R* r, const OT_Rendition& rendition, int left, int right, int bottom, int top) {
  if (!rendition || left > right || bottom > top) return;
  OT_Rendition window(rendition);
  OT_Rendition_Colors* colors = window.writable_colors();
  if (!colors) return;
  colors->color = colors->window_color;
  colors->color_index = colors->window_index;
  const std::int32_t past_right = right < INT32_MAX ? right + 1 : right;
  const std::int32_t past_top = top < INT32_MAX ? top + 1 : top;
  const OT_DCI_Point strip[4] = {
      {left, bottom, 0}, {past_right, bottom, 0}, {left, past_top, 0}, {past_right, past_top, 0}};
  r->draw_dci_polytriangle(window, 4, strip);
}
