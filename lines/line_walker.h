// The thin-line segment walker: 16.16 fixed point, eight cases by direction.
// A shallow segment is one run of pixels a row, a steep one a pixel a row.
// Segments are half open: the first point is written, the last never; a
// polyline writes its last point once, after the loop, so inner points are
// hit exactly once.
//
// One walker serves whole segments and segments that cross the hard clip.
// The clipping policy says where the walk starts and stops: a clipped walk
// takes up the whole walk's state at its first visible row (`row_at`), so
// that both write the same pixels inside the rectangle, except where the two
// are known to differ (the steep correction, the signed column below).
//
// Precision: a whole segment is in window-relative columns and rows, which
// lie in 0..65535, and its column is the upper half of the 16.16 position as
// an unsigned number. A clipped segment is in device space, cut to the line
// limits first, so every coordinate lies in -4000..28760 and its column is
// the upper half as a signed number. Either way |dx| and |dy| stay below
// 32768 (kMaxWalkSpan), so d << 16 fits in 32 bits, and position and depth
// arithmetic wraps in 32 unsigned bits exactly as the running sums expect: a
// clipped start adds (skipped steps) * step in one product, which equals the
// same number of single additions modulo 2^32.
//
// A plot supplies
//   using Attributes     what it walks beside the position: No_Line_Attributes,
//                        Line_Depth, or colour accumulators; with
//                        skip(k) and next(), which gives a pixel's value and
//                        steps;
//   Attributes attributes(a, b, n) const   for a segment of n major steps;
//   void operator()(std::int32_t column, std::int32_t row, value) const;
// called with window-relative positions and the value of next(). Every
// visited pixel steps the attributes, written or not. The walk returns the
// attributes as the last pixel left them (one step past it).
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "host/ot_base.h"
#include "pixel/fixed_point.h"
#include "pixel/line_attributes.h"

namespace tarn {

// The 16.16 position of a shallow segment before its first row, rounded by
// direction.
inline std::uint32_t shallow_start(std::int32_t x0, std::int32_t dx, std::int32_t dy, std::int32_t step) {
  const std::uint32_t base = static_cast<std::uint32_t>(x0) << 16;
  if (dx > 0 && dy > 0) return (base | 0xFFFFu) + static_cast<std::uint32_t>(step >> 1);
  if (dx < 0 && dy > 0) return base + static_cast<std::uint32_t>((step + 1) >> 1);
  if (dx > 0) return base + 0x10000u + static_cast<std::uint32_t>(step >> 1);
  return base - 1u + static_cast<std::uint32_t>((step + 1) >> 1);
}

// The rows a walk visits: from first_row, |n| rows before last_row, and the
// last row itself when include_end.
struct Clip_Rows {
  std::int32_t first_row, last_row;
  bool include_end;
};

// The policy of a whole segment: window-relative ends, nothing cut.
struct Whole_Segment {
  static constexpr bool kClipped = false;
  static constexpr std::int32_t origin_x = 0, origin_y = 0;
  static std::int32_t column(std::uint32_t pos) { return static_cast<std::int32_t>(pos >> 16); }
};

// Walks a..b. Clip is Whole_Segment, or a policy with kClipped that also has
// the device rectangle (left, right, bottom, top), the window origin, the
// two ends' outcodes (start_code, end_code), column(pos), and
// rows(a, b, Clip_Rows&), false when the segment misses the rectangle.
// Flattened: the slope, the start rule and the plot are inlined into the
// loops, which a segment of a few pixels notices.
template <class Plot, class Clip>
[[gnu::flatten]] inline typename Plot::Attributes walk_segment(const Plot& plot, const Clip& clip,
                                                               const OT_DCI_Point& a, const OT_DCI_Point& b) {
  const std::int32_t dx = b.x - a.x, dy = b.y - a.y;
  const std::int32_t adx = std::abs(dx), ady = std::abs(dy);
  const std::int32_t sx = dx < 0 ? -1 : 1, sy = dy < 0 ? -1 : 1;
  typename Plot::Attributes attributes{};
  // n: steps of the major axis; k: steps skipped before the first pixel.
  auto start_depth = [&](std::int32_t n, std::int32_t k) {
    attributes = plot.attributes(a, b, n);
    if constexpr (Clip::kClipped) attributes.skip(k);
  };
  auto put = [&](std::int32_t x, std::int32_t y) {
    const auto value = attributes.next();
    // The rows of a clipped steep segment may still reach a column beside a
    // narrow rectangle: such a pixel is stepped over, never written.
    if constexpr (Clip::kClipped) {
      if (!clip.holds(x, y)) return;
    }
    plot(x - clip.origin_x, y - clip.origin_y, value);
  };
  // Where a walk along one axis enters and leaves [low, high], by direction.
  auto enter = [](std::int32_t v, std::int32_t s, std::int32_t low, std::int32_t high) {
    return s > 0 ? std::max(v, low) : std::min(v, high);
  };
  auto leave = [](std::int32_t v, std::int32_t s, std::int32_t low, std::int32_t high) {
    return s > 0 ? std::min(v, high + 1) : std::max(v, low - 1);
  };

  if (dy == 0) {
    if (dx == 0) return attributes;  // no pixel, and no dot either
    std::int32_t first = a.x, stop = b.x;
    if constexpr (Clip::kClipped) {
      first = enter(first, sx, clip.left, clip.right);
      stop = leave(stop, sx, clip.left, clip.right);
    }
    start_depth(adx, std::abs(first - a.x));
    for (std::int32_t i = 0, x = first; i < (stop - first) * sx; ++i, x += sx) put(x, a.y);
    return attributes;
  }
  if (dx == 0) {
    std::int32_t first = a.y, stop = b.y;
    if constexpr (Clip::kClipped) {
      first = enter(first, sy, clip.bottom, clip.top);
      stop = leave(stop, sy, clip.bottom, clip.top);
    }
    start_depth(ady, std::abs(first - a.y));
    for (std::int32_t i = 0, y = first; i < (stop - first) * sy; ++i, y += sy) put(a.x, y);
    return attributes;
  }

  Clip_Rows rows{a.y, b.y, false};
  if constexpr (Clip::kClipped) {
    if (!clip.rows(a, b, rows)) return attributes;
  }
  const std::int32_t n = std::abs(rows.last_row - rows.first_row);
  const std::int32_t skipped = std::abs(rows.first_row - a.y);
  const std::int32_t count = n + (rows.include_end ? 1 : 0);

  if (adx == ady) {
    start_depth(ady, skipped);
    for (std::int32_t i = 0, x = a.x + sx * skipped, y = rows.first_row; i < count; ++i, x += sx, y += sy)
      put(x, y);
    return attributes;
  }

  const std::int32_t step = slope(dx, ady);
  if (ady > adx) {
    // Steep. Only when both run negative is a whole segment's start lowered,
    // so that the segment and its reverse hit the same pixels; the other two
    // directions are not each other's mirror. A clipped segment has no such
    // correction and may sit one column over.
    start_depth(ady, skipped);
    std::uint32_t pos = (static_cast<std::uint32_t>(a.x) << 16) | 0x8000u;
    if constexpr (Clip::kClipped)
      pos += static_cast<std::uint32_t>(skipped) * static_cast<std::uint32_t>(step);
    else if (dx < 0 && dy < 0)
      pos -= (static_cast<std::uint32_t>(step) * static_cast<std::uint32_t>(ady)) & 0xFFFFu;
    for (std::int32_t i = 0, y = rows.first_row; i < count; ++i, y += sy) {
      put(clip.column(pos), y);
      pos += static_cast<std::uint32_t>(step);
    }
    return attributes;
  }

  // Shallow: a run a row. A clipped start takes up the whole walk's position
  // one row before the first visible row, its column held to the rectangle.
  std::uint32_t pos = shallow_start(a.x, dx, dy, step);
  std::int32_t column = a.x;
  if constexpr (Clip::kClipped) {
    if (clip.start_code != 0) {
      pos += static_cast<std::uint32_t>(skipped - 1) * static_cast<std::uint32_t>(step);
      column = dx < 0 ? std::min(clip.column(pos), clip.right) : std::max(clip.column(pos), clip.left);
      pos += static_cast<std::uint32_t>(step);
    }
  }
  start_depth(adx, std::abs(column - a.x));
  auto run = [&](std::int32_t from, std::int32_t to, std::int32_t y) {
    if (dx > 0) {
      for (std::int32_t x = from; x < to; ++x) put(x, y);
    } else {
      for (std::int32_t x = from; x > to; --x) put(x, y);
    }
  };
  std::int32_t y = rows.first_row;
  for (std::int32_t i = 0; i < n; ++i, y += sy) {
    const std::int32_t hi = clip.column(pos);
    run(column, hi, y);
    column = hi;
    pos += static_cast<std::uint32_t>(step);
  }
  std::int32_t stop = b.x;
  if constexpr (Clip::kClipped) {
    if (clip.end_code != 0)
      stop = dx < 0 ? std::max(clip.left - 1, clip.column(pos)) : std::min(clip.right + 1, clip.column(pos));
  }
  run(column, stop, y);
  return attributes;
}

}  // namespace tarn
