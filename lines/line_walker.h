// The thin-line segment walker: 16.16 fixed point, eight cases by direction.
// A shallow segment is one run of pixels a row, a steep one a pixel a row.
// Segments are half open: the first point is written, the last never; a
// polyline writes its last point once, after the loop, so inner points are
// hit exactly once.
//
// Precision: columns and rows are window-relative and lie in 0..65535; the
// clip limits keep |dx| and |dy| below 32768, so d << 16 fits in 32 bits.
//
// A writer supplies
//   static constexpr bool kDepth;
//   void pixel(int32_t column, int32_t row, uint16_t depth) const;
// called in visiting order; depth is the interpolated candidate (0 without
// depth).
#pragma once

#include <cstdint>
#include <cstdlib>

#include "pixel/fixed_point.h"

namespace tarn {

// Depth along a segment: 17.15 from the start point's z.
struct Line_Depth {
  std::uint32_t pos = 0;
  std::uint32_t step = 0;

  Line_Depth() = default;
  Line_Depth(std::int32_t z0, std::int32_t z1, std::int32_t n)
      : pos((static_cast<std::uint32_t>(z0) << 15) | 0x4000u),
        step(static_cast<std::uint32_t>(slope15(wrap_sub(z1, z0), n))) {}

  std::uint16_t next() {
    const std::uint16_t candidate = static_cast<std::uint16_t>(static_cast<std::int32_t>(pos) >> 15);
    pos += step;
    return candidate;
  }
};

template <class Writer>
inline void walk_segment(const Writer& writer, std::int32_t x0, std::int32_t y0, std::int32_t z0,
                         std::int32_t x1, std::int32_t y1, std::int32_t z1) {
  const std::int32_t dx = x1 - x0, dy = y1 - y0;
  const std::int32_t adx = std::abs(dx), ady = std::abs(dy);
  const std::int32_t sx = dx < 0 ? -1 : 1, sy = dy < 0 ? -1 : 1;
  Line_Depth depth;
  auto candidate = [&depth]() -> std::uint16_t {
    if constexpr (Writer::kDepth) return depth.next();
    return 0;
  };
  auto start_depth = [&](std::int32_t n) {
    if constexpr (Writer::kDepth) depth = Line_Depth(z0, z1, n);
  };

  if (dy == 0) {
    if (dx == 0) return;  // no pixel, and no dot either
    start_depth(adx);
    for (std::int32_t x = x0; x != x1; x += sx) writer.pixel(x, y0, candidate());
    return;
  }
  if (dx == 0) {
    start_depth(ady);
    for (std::int32_t y = y0; y != y1; y += sy) writer.pixel(x0, y, candidate());
    return;
  }
  if (adx == ady) {
    start_depth(ady);
    for (std::int32_t i = 0, x = x0, y = y0; i < ady; ++i, x += sx, y += sy) writer.pixel(x, y, candidate());
    return;
  }

  const std::int32_t step = slope(dx, ady);
  if (ady > adx) {
    // Steep. Only when both run negative is the start lowered, so that the
    // segment and its reverse hit the same pixels; the other two directions
    // are not each other's mirror.
    start_depth(ady);
    std::uint32_t pos = (static_cast<std::uint32_t>(x0) << 16) | 0x8000u;
    if (dx < 0 && dy < 0)
      pos -= (static_cast<std::uint32_t>(step) * static_cast<std::uint32_t>(ady)) & 0xFFFFu;
    for (std::int32_t i = 0, y = y0; i < ady; ++i, y += sy) {
      writer.pixel(static_cast<std::int32_t>(pos >> 16), y, candidate());
      pos += static_cast<std::uint32_t>(step);
    }
    return;
  }

  // Shallow: a run a row, the start rounded by direction.
  start_depth(adx);
  std::uint32_t pos;
  const std::uint32_t base = static_cast<std::uint32_t>(x0) << 16;
  if (dx > 0 && dy > 0)
    pos = (base | 0xFFFFu) + static_cast<std::uint32_t>(step >> 1);
  else if (dx < 0 && dy > 0)
    pos = base + static_cast<std::uint32_t>((step + 1) >> 1);
  else if (dx > 0)
    pos = base + 0x10000u + static_cast<std::uint32_t>(step >> 1);
  else
    pos = base - 1u + static_cast<std::uint32_t>((step + 1) >> 1);

  auto run = [&](std::int32_t from, std::int32_t to, std::int32_t y) {
    if (dx > 0) {
      for (std::int32_t x = from; x < to; ++x) writer.pixel(x, y, candidate());
    } else {
      for (std::int32_t x = from; x > to; --x) writer.pixel(x, y, candidate());
    }
  };
  std::int32_t x = x0, y = y0;
  for (std::int32_t round = 0; round < ady; ++round) {
    const std::int32_t hi = static_cast<std::int32_t>(pos >> 16);
    run(x, hi, y);
    x = hi;
    y += sy;
    if (round + 1 < ady) pos += static_cast<std::uint32_t>(step);
  }
  run(x, x1, y1);
}

}  // namespace tarn
