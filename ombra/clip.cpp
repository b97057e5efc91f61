// Outcodes of point lists against an inclusive rectangle.
#include "host/ob_functions.h"

namespace {

template <class Point>
int clip_points(const OT_Int_Rectangle& r, int count, const Point* points, short* codes) {
  int inside = 0;
  short common = ~short(0);
  for (int i = 0; i < count; ++i) {
    const Point& p = points[i];
    short code = 0;
    if (p.x < r.left) code |= OT_Outcode_Left;
    if (p.y > r.top) code |= OT_Outcode_Above;
    if (p.x > r.right) code |= OT_Outcode_Right;
    if (p.y < r.bottom) code |= OT_Outcode_Below;
    codes[i] = code;
    common &= code;
    if (!code) ++inside;
  }
  if (inside == count) return count;
  if (common) return 0;
  return -1;
}

}  // namespace

int OB_Clip(const OT_Int_Rectangle& rectangle, int count, const OT_DCI_Point* points, short* codes) {
  return clip_points(rectangle, count, points, codes);
}

int OB_Clip(const OT_Int_Rectangle& rectangle, int count, const OT_Point_D* points, short* codes) {
  return clip_points(rectangle, count, points, codes);
}
