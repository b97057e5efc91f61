// Functions and global data of the host: clipping, the standard routines that
// break primitives down and call back through the slots, and the tables.
#pragma once

#include "host/ot_renderer_data.h"

// ---- Global data -----------------------------------------------------------

// The serial counter, then the table of 8x8 stipples indexed by face pattern
// 0..73: eight bytes, one a row, least significant bit the first column. A
// set bit is a hole of the pattern. Entry 0 has all bits set, 64 all clear.
class OMBRA_API Ombra_Global {
 public:
  std::atomic<std::uint32_t> serial_counter{0};
  const byte* const* stipples = nullptr;
};
extern OMBRA_API Ombra_Global OMBRA;

// The 8x8 ordered dither matrix, 64 unsigned 16-bit thresholds, row * 8 + column.
class OMBRA_API Ombra_Shared {
 public:
  std::uint16_t dither[64];
};
extern OMBRA_API const Ombra_Shared SHARED;

// ---- Clipping ---------------------------------------------------------------

// Outcode bits; 0 is inside (the rectangle is inclusive), 4096 an end mark.
enum : short {
  OT_Outcode_Left = 1,
  OT_Outcode_Above = 2,
  OT_Outcode_Right = 4,
  OT_Outcode_Below = 8,
  OT_Outcode_End = 4096,
};

// Fills codes[0 .. count-1] with the outcode of each point. Returns count when
// all points are inside, 0 when all share an outcode bit (nothing can show),
// and another value (-1) when the list needs walking.
OMBRA_API int OB_Clip(const OT_Int_Rectangle& rectangle, int count, const OT_DCI_Point* points, short* codes);
OMBRA_API int OB_Clip(const OT_Int_Rectangle& rectangle, int count, const OT_Point_D* points, short* codes);

// Where the segment from points[0] (inside) to points[1] (outside, `code`)
// leaves the rectangle (Tail), or where the segment from points[0] (outside,
// `code`) to points[1] enters it (Head). Colours, when given, are
// interpolated to the cut.
OMBRA_API void OB_Preclip_Head(short code, const OT_Int_Rectangle& rectangle, const OT_Point_D* points,
                               OT_DCI_Point* out_point, const OT_RGB32* colors, OT_RGB32* out_color);
OMBRA_API void OB_Preclip_Tail(short code, const OT_Int_Rectangle& rectangle, const OT_Point_D* points,
                               OT_DCI_Point* out_point, const OT_RGB32* colors, OT_RGB32* out_color);
// A segment with both ends outside: true and its two cut points when it
// crosses the rectangle.
OMBRA_API bool OB_Preclip_Ends(const short* codes, const OT_Int_Rectangle& rectangle,
                               const OT_Point_D* points, OT_DCI_Point* out_points, const OT_RGB32* colors,
                               OT_RGB32* out_colors);
// Clips the triangle points[0..2] to the rectangle; true with out_count points
// (a convex polygon as a strip) when something remains. A list is read and
// written only when both its input and output are given; outputs need room
// for 7 points.
OMBRA_API bool OB_Preclip_2D_Triangle(const OT_Renderer_Data* renderer, const OT_Rendition* rendition,
                                      const OT_Int_Rectangle& rectangle, const OT_Point_D* points,
                                      int& out_count, OT_DCI_Point* out_points, const OT_RGB32* colors,
                                      OT_RGB32* out_colors, const OT_Parameter* parameters,
                                      int parameter_width, OT_Parameter* out_parameters,
                                      const float* w_values, float* out_w_values, const OT_Vector* normals,
                                      OT_Vector* out_normals);

// ---- Polygons -------------------------------------------------------------

// 0 (OT_Polygon_Rank_Convex) when the polygon may be drawn as a strip.
OMBRA_API OT_Polygon_Rank OB_Rank_Polygon(int count, const OT_Point* points);

// ---- Memory ---------------------------------------------------------------

struct OmbraHeap;
OMBRA_API void* OB_AllocateMemory(std::size_t size, OmbraHeap* heap);
OMBRA_API void OB_ReleaseMemory(void* memory);

// ---- Standard routines ----------------------------------------------------
// Each takes the renderer and the rendition first and the slot's arguments
// after; each breaks its primitive down and calls back through the slots.

#define OB_DECLARE_STANDARD(Name, ...) \
  OMBRA_API void Name(OT_Renderer_Data* renderer, const OT_Rendition& rendition, __VA_ARGS__);

#define OB_STANDARD_FAMILY(Family, ARGS)                                 \
  OB_DECLARE_STANDARD(OB_Standard_Draw_2D_##Family, ARGS(OT_Point))      \
  OB_DECLARE_STANDARD(OB_Standard_Draw_DC_##Family, ARGS(OT_Point))      \
  OB_DECLARE_STANDARD(OB_Standard_Draw_2DI_##Family, ARGS(OT_DCI_Point)) \
  OB_DECLARE_STANDARD(OB_Standard_Draw_DCI_##Family, ARGS(OT_DCI_Point)) \
  OB_DECLARE_STANDARD(OB_Standard_Draw_Tiled_##Family, ARGS(OT_Point_D))

OB_STANDARD_FAMILY(Polytriangle, OT_PLAIN_ARGS)
OB_STANDARD_FAMILY(Colorized_Polytriangle, OT_COLORIZED_ARGS)
OB_STANDARD_FAMILY(Gouraud_Polytriangle, OT_GOURAUD_ARGS)
OB_STANDARD_FAMILY(Textured_Polytriangle, OT_TEXTURED_ARGS)
OB_STANDARD_FAMILY(Polyline, OT_PLAIN_ARGS)
OB_STANDARD_FAMILY(Colorized_Polyline, OT_COLORIZED_ARGS)
OB_STANDARD_FAMILY(Gouraud_Polyline, OT_GOURAUD_ARGS)
OB_STANDARD_FAMILY(Polymarker, OT_PLAIN_ARGS)
OB_STANDARD_FAMILY(Polygon, OT_GOURAUD_ARGS)
OB_STANDARD_FAMILY(Dot, OT_DOT_ARGS)
OB_STANDARD_FAMILY(RGB32_Image, OT_RGB32_IMAGE_ARGS)
OB_STANDARD_FAMILY(Index8_Image, OT_INDEX8_IMAGE_ARGS)
OB_DECLARE_STANDARD(OB_Standard_Write_Depth_Rectangle, OT_RECTANGLE_WRITE_ARGS)
OB_DECLARE_STANDARD(OB_Standard_Read_Color_Rectangle, OT_RECTANGLE_READ_ARGS)
OB_DECLARE_STANDARD(OB_Standard_Read_Depth_Rectangle, OT_RECTANGLE_READ_ARGS)
OMBRA_API void OB_Standard_Clear_Color(OT_Renderer_Data* renderer, const OT_Rendition& rendition);
OMBRA_API void OB_Standard_Clear_Depth(OT_Renderer_Data* renderer, const OT_Rendition& rendition);

// Fills the device rectangle (inclusive) with the rendition's window colour
// under its face pattern, as spans through the slots.
OMBRA_API void OB_Span_DC_Rectangle(OT_Renderer_Data* renderer, const OT_Rendition& rendition, int left,
                                    int right, int bottom, int top);
