#include "lines/segment_clipper.h"

#include <algorithm>
#include <cstdlib>

#include "pixel/fixed_point.h"
#include "pixel/limits.h"
#include "pixel/rounding.h"

namespace tarn {
namespace {

// v >= 0: v + 0.5 truncated; else v - 0.49999999999 truncated.
std::int32_t rnd(double v) { return round_double(v); }

// In 64 bits: an end far out plus its offset may pass the 32-bit range.
std::int32_t clamp_to_limits(std::int64_t v) {
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(v, kLineLimitLow, kLineLimitHigh));
}

// The cut end at parameter t, measured from a.
OT_DCI_Point cut_point(const OT_DCI_Point& a, double dx, double dy, double dz, double t, int side,
                       bool keep_depth) {
  OT_DCI_Point p;
  switch (side) {
    case 1:
      p.x = kLineLimitLow;
      break;
    case 4:
      p.x = kLineLimitHigh;
      break;
    default:
      p.x = clamp_to_limits(std::int64_t{a.x} + rnd(dx * t));
      break;
  }
  switch (side) {
    case 8:
      p.y = kLineLimitLow;
      break;
    case 2:
      p.y = kLineLimitHigh;
      break;
    default:
      p.y = clamp_to_limits(std::int64_t{a.y} + rnd(dy * t));
      break;
  }
  p.z = keep_depth ? rnd(dz * t + a.z) : 0;
  return p;
}

// The cut of a..b with the differences already formed; colours, when given,
// are cut along: red, green and blue interpolated, alpha kept from the end
// that is replaced.
bool cut_to_limits(const OT_DCI_Point& a, const OT_DCI_Point& b, double dx, double dy, double dz,
                   OT_DCI_Point out[2], bool keep_depth, const OT_RGB32* colors, OT_RGB32* out_colors) {
  // The differences to the limits are made in float, then widened.
  const auto low = [](std::int32_t v) { return double(float(kLineLimitLow) - float(v)); };
  const auto high = [](std::int32_t v) { return double(float(kLineLimitHigh) - float(v)); };
  double t0 = 0.0, t1 = 1.0;
  int side0 = 0, side1 = 0;
  auto enter = [&](double t, int side) {
    if (t > t0) {
      t0 = t;
      side0 = side;
    }
  };
  auto leave = [&](double t, int side) {
    if (t < t1) {
      t1 = t;
      side1 = side;
    }
  };
  if (a.x < kLineLimitLow)
    enter(low(a.x) / dx, 1);
  else if (a.x > kLineLimitHigh)
    enter(high(a.x) / dx, 4);
  if (a.y < kLineLimitLow)
    enter(low(a.y) / dy, 8);
  else if (a.y > kLineLimitHigh)
    enter(high(a.y) / dy, 2);
  if (t0 > 1.0) return false;
  if (b.x < kLineLimitLow)
    leave(low(a.x) / dx, 1);
  else if (b.x > kLineLimitHigh)
    leave(high(a.x) / dx, 4);
  if (b.y < kLineLimitLow)
    leave(low(a.y) / dy, 8);
  else if (b.y > kLineLimitHigh)
    leave(high(a.y) / dy, 2);
  if (t0 > t1) return false;
  out[0] = t0 > 0.0 ? cut_point(a, dx, dy, dz, t0, side0, keep_depth) : a;
  out[1] = t1 < 1.0 ? cut_point(a, dx, dy, dz, t1, side1, keep_depth) : b;
  if (colors) {
    auto cut_color = [&](double t, OT_RGB32 kept) {
      auto channel = [&](byte from, byte to) {
        return static_cast<byte>(rnd((double(to) - double(from)) * t + from));
      };
      kept.r = channel(colors[0].r, colors[1].r);
      kept.g = channel(colors[0].g, colors[1].g);
      kept.b = channel(colors[0].b, colors[1].b);
      return kept;
    };
    out_colors[0] = t0 > 0.0 ? cut_color(t0, colors[0]) : colors[0];
    out_colors[1] = t1 < 1.0 ? cut_color(t1, colors[1]) : colors[1];
  }
  return true;
}

}  // namespace

bool clip_segment_to_limits(const OT_DCI_Point& a, const OT_DCI_Point& b, OT_DCI_Point out[2],
                            bool keep_depth) {
  return cut_to_limits(a, b, double(b.x) - double(a.x), double(b.y) - double(a.y), double(b.z) - double(a.z),
                       out, keep_depth, nullptr, nullptr);
}

bool clip_segment_and_colors_to_limits(const OT_DCI_Point* points, OT_DCI_Point out[2],
                                       const OT_RGB32* colors, OT_RGB32* out_colors) {
  // The differences are exact: formed in 32 bits, as the host's sibling forms
  // them, they wrap for ends far apart, and the segment is then not cut at
  // all and reaches the walker beyond the limits. Where they don't wrap,
  // both agree.
  const OT_DCI_Point &a = points[0], &b = points[1];
  return cut_to_limits(a, b, double(b.x) - double(a.x), double(b.y) - double(a.y), double(b.z) - double(a.z),
                       out, true, colors, out_colors);
}

int direction_code(std::int32_t dx, std::int32_t dy) {
  if (dy == 0) return dx == 0 ? 0 : dx < 0 ? 1 : 2;
  if (dx == 0) return dy < 0 ? 3 : 4;
  const int base = dy < 0 ? (dx < 0 ? 5 : 8) : (dx < 0 ? 11 : 14);
  const std::int32_t adx = std::abs(dx), ady = std::abs(dy);
  return base + (adx > ady ? 0 : adx == ady ? 1 : 2);
}

Clip_Line make_clip_line(const OT_DCI_Point& a, const OT_DCI_Point& b) {
  const std::int32_t dx = b.x - a.x, dy = b.y - a.y;
  Clip_Line line;
  line.code = direction_code(dx, dy);
  line.pos = static_cast<std::uint32_t>(a.x) << 16;
  line.step = line.code > 4 ? slope(dx, std::abs(dy)) : 0;
  line.x0 = a.x;
  line.y0 = a.y;
  line.rows = std::abs(dy);
  return line;
}

std::int32_t row_at(const Clip_Line& line, std::int32_t c, const OT_Int_Rectangle& clip) {
  using U32 = std::uint32_t;
  const std::int32_t s = line.step, x0 = line.x0, y0 = line.y0;
  const bool at_right = c == clip.right;
  auto shl16 = [](std::int32_t v) { return static_cast<U32>(v) << 16; };
  auto U = [](U32 a, U32 b) { return static_cast<std::int32_t>(a / b); };
  auto S = [](U32 a, std::int32_t b) { return static_cast<std::int32_t>(a) / b; };
  auto at_most_top = [&](std::int32_t y) { return std::min(y, clip.top); };
  auto at_least_bottom = [&](std::int32_t y) { return std::max(y, clip.bottom); };
  std::int32_t y = y0;
  switch (line.code) {
    case 5:
      y = y0 - U(static_cast<U32>((-1 - s) >> 1) + shl16(x0 - c), static_cast<U32>(-s));
      return at_right ? at_most_top(y) : at_least_bottom(y);
    case 8:
      y = y0 - U(static_cast<U32>((s - 1) >> 1) + shl16(c - x0), static_cast<U32>(s));
      return at_right ? at_least_bottom(y) : at_most_top(y);
    case 11:
      y = y0 + U(static_cast<U32>((1 - s) >> 1) + shl16(x0 - c), static_cast<U32>(-s));
      return at_right ? at_least_bottom(y) : at_most_top(y);
    case 14:
      y = y0 + U(static_cast<U32>((s + 1) >> 1) + shl16(c - x0), static_cast<U32>(s));
      return at_right ? at_most_top(y) : at_least_bottom(y);
    case 6:
    case 15:
      y = y0 + c - x0;
      return at_right ? at_most_top(y) : at_least_bottom(y);
    case 9:
    case 12:
      y = y0 - c + x0;
      return at_right ? at_least_bottom(y) : at_most_top(y);
    case 7:
      if (at_right) return at_most_top(y0 - 1 + S(shl16(x0 - c) - 0x8000u, s));
      return at_least_bottom(y0 + S(shl16(x0 - c) + 0x8000u, s));
    case 10:
      if (at_right) return at_least_bottom(y0 - S(shl16(c - x0) + 0x7FFFu, s));
      return at_most_top(y0 - 1 - S(shl16(c - x0) - 0x8001u, s));
    case 13:
      if (at_right) return at_least_bottom(y0 + 1 - S(shl16(x0 - c) - 0x8000u, s));
      return at_most_top(y0 - S(shl16(x0 - c) + 0x8000u, s));
    case 16:
      if (at_right) return at_most_top(y0 + S(shl16(c - x0) + 0x7FFFu, s));
      return at_least_bottom(y0 + 1 + S(shl16(c - x0) - 0x8001u, s));
    default:
      return y0;
  }
}

namespace {

std::int32_t row_of_code(const Clip_Line& line, short code, std::int32_t y_inside,
                         const OT_Int_Rectangle& clip) {
  if (code == 0) return y_inside;
  if (code & 1) return row_at(line, clip.left, clip);
  if (code & 4) return row_at(line, clip.right, clip);
  return (code & 2) ? clip.top : clip.bottom;
}

}  // namespace

bool clip_rows(const Clip_Line& line, const OT_DCI_Point& b, short start_code, short end_code,
               const OT_Int_Rectangle& clip, Clip_Rows& rows) {
  rows.first_row = row_of_code(line, start_code, line.y0, clip);
  rows.last_row = row_of_code(line, end_code, b.y, clip);
  rows.include_end = end_code != 0;
  // Outcodes with no bit in common can still pass a corner outside.
  if ((end_code & 2) && rows.first_row > clip.top) return false;
  if ((end_code & 8) && rows.first_row < clip.bottom) return false;
  if ((start_code & 2) && rows.last_row > clip.top) return false;
  if ((start_code & 8) && rows.last_row < clip.bottom) return false;
  return true;
}

}  // namespace tarn
