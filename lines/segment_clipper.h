// Segments of the 2DI line forms that cross the hard clip: first cut, in
// floating point, to the limits the 16.16 walker can hold; then walked by a
// clipped walker that takes up the unclipped walker's state at the first
// visible row, so that both write the same pixels inside the rectangle.
#pragma once

#include "host/ombra.h"
#include "lines/line_walker.h"

namespace tarn {

// Cuts a..b to the line limits -4000..28760 on x and y. False when nothing
// remains; else out[0], out[1] are the (possibly cut) ends. A cut end has z 0
// unless keep_depth.
bool clip_segment_to_limits(const OT_DCI_Point& a, const OT_DCI_Point& b, OT_DCI_Point out[2],
                            bool keep_depth);

// The sibling for lines with colours: z is always kept, and with colours
// (two, or null for none) out_colors gets the ends' colours, cut ends
// interpolated in red, green and blue.
bool clip_segment_and_colors_to_limits(const OT_DCI_Point* points, OT_DCI_Point out[2],
                                       const OT_RGB32* colors, OT_RGB32* out_colors);

// Outcode of a point against the hard clip, computed here rather than by
// OB_Clip: x right 4 or left 1, then y above 2 or below 8.
inline short local_outcode(const OT_Int_Rectangle& clip, const OT_DCI_Point& p) {
  short code = p.x > clip.right ? 4 : p.x < clip.left ? 1 : 0;
  if (p.y > clip.top)
    code |= 2;
  else if (p.y < clip.bottom)
    code |= 8;
  return code;
}

// Direction code of a segment: 0 a point; 1, 2 horizontal (dx negative,
// positive); 3, 4 vertical (dy negative, positive); then by the signs of dy
// and dx in threes of shallow, diagonal, steep: 5..7 (-,-), 8..10 (-,+),
// 11..13 (+,-), 14..16 (+,+).
int direction_code(std::int32_t dx, std::int32_t dy);

// The clipped walker's state of a segment.
struct Clip_Line {
  std::uint32_t pos;  // 16.16 column, x0 << 16 to begin with
  std::int32_t step;  // slope(dx, |dy|), for codes above 4
  int code;
  std::int32_t x0, y0;
  std::int32_t rows;  // |dy|
};

Clip_Line make_clip_line(const OT_DCI_Point& a, const OT_DCI_Point& b);

// The row at which the unclipped walker crosses column c (the rectangle's
// left or right side), clamped in y to the rectangle.
std::int32_t row_at(const Clip_Line& line, std::int32_t c, const OT_Int_Rectangle& clip);

// Rows of a crossing segment that is neither vertical nor horizontal: false
// when it passes a corner and misses the rectangle.
bool clip_rows(const Clip_Line& line, const OT_DCI_Point& b, short start_code, short end_code,
               const OT_Int_Rectangle& clip, Clip_Rows& rows);

// The walker's policy for a segment that crosses the hard clip: device
// space, the window origin coming off where a pixel is addressed, so that the
// rectangle tests compare device coordinates.
struct Clipped_Segment {
  static constexpr bool kClipped = true;
  const OT_Int_Rectangle& clip;
  std::int32_t left, right, bottom, top;
  std::int32_t origin_x, origin_y;
  short start_code, end_code;

  Clipped_Segment(const OT_Int_Rectangle& c, std::int32_t ox, std::int32_t oy, short start, short end)
      : clip(c),
        left(c.left),
        right(c.right),
        bottom(c.bottom),
        top(c.top),
        origin_x(ox),
        origin_y(oy),
        start_code(start),
        end_code(end) {}
  static std::int32_t column(std::uint32_t pos) { return static_cast<std::int32_t>(pos) >> 16; }
  bool holds(std::int32_t x, std::int32_t y) const {
    return x >= left && x <= right && y >= bottom && y <= top;
  }
  bool rows(const OT_DCI_Point& a, const OT_DCI_Point& b, Clip_Rows& out) const {
    return clip_rows(make_clip_line(a, b), b, start_code, end_code, clip, out);
  }
};

}  // namespace tarn
