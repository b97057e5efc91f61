// The exact clipper of a triangle against a rectangle, in 64-bit floats, for
// triangles with a point beyond what the fixed-point walk can hold. It
// carries every vertex attribute: depth, colour, texture parameters and w.
#pragma once

#include "host/ombra.h"

namespace tarn {

inline constexpr int kMaxClipVertices = 8;

// The clipped triangle as a strip of out_count points (3..8), or out_count
// below 3 when nothing of it lies in the rectangle. Colours are carried when
// color0 is not null, parameters and w when params0 is not null; a null
// color1, color2, params1 or params2 then stands for the first vertex's value.
// Bit 0 of the rendition's texture_flags asks for perspective-correct
// parameters. Output arrays hold kMaxClipVertices entries; those of absent
// attributes may be null.
void clip_triangle_to_rectangle(const OT_Rendition& rendition, const OT_DCI_Point* points, const OT_RGB32* color0,
                                const OT_RGB32* color1, const OT_RGB32* color2, const OT_Parameter* params0,
                                const OT_Parameter* params1, const OT_Parameter* params2, float w0, float w1,
                                float w2, const OT_Int_Rectangle& rectangle, int& out_count,
                                OT_DCI_Point* out_points, OT_RGB32* out_colors, OT_Parameter* out_params,
                                float* out_w);

// One end of a clipped edge, with its side code (0 inside, 1 left, 2 top,
// 4 right, 8 bottom).
struct Clip_Vertex {
  double x, y, z;
  OT_RGB32 color;
  OT_Parameter params;
  float w;
  int code;
};

struct Edge_Clip {
  bool visible;
  Clip_Vertex enter;
  Clip_Vertex exit;
};

// Side codes of clip_edge and of the corner walk.
inline constexpr int kClipLeft = 1;
inline constexpr int kClipTop = 2;
inline constexpr int kClipRight = 4;
inline constexpr int kClipBottom = 8;

// How far a crossing of the top or bottom may lie on the wrong side of the
// left or right crossing and still be taken: 1e-12 as a 32-bit float.
inline constexpr double kClipTolerance = static_cast<double>(1e-12f);

// The edge p -> q against the rectangle; exposed for testing.
Edge_Clip clip_edge(const Clip_Vertex& p, const Clip_Vertex& q, bool has_colors, bool has_params, bool perspective,
                    const OT_Int_Rectangle& rectangle);

// The point-in-triangle test of the clipper (it leaves the edge p0-p2 out).
bool point_in_triangle(double x, double y, const Clip_Vertex& p0, const Clip_Vertex& p1, const Clip_Vertex& p2);

// Partial derivatives against x and y of an attribute with values a0, a1, a2
// at p0, p1, p2; a flat triangle takes them from its edges. Exposed for
// testing.
struct Plane_Gradient {
  double x, y;
};
Plane_Gradient plane_gradient(const Clip_Vertex& p0, const Clip_Vertex& p1, const Clip_Vertex& p2, double a0,
                              double a1, double a2);

}  // namespace tarn
