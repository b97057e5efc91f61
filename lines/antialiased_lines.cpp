#include "lines/antialiased_lines.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "lines/antialias_filter.h"
#include "pixel/blend.h"
#include "pixel/mask.h"

namespace tarn {
namespace {

using i64 = std::int64_t;
using u64 = std::uint64_t;

constexpr i64 kOne = i64{1} << 32;  // one pixel in 32.32
constexpr u64 kHalf = u64{1} << 31;

// What limits a triple: the hard clip, held to the image. The points are not
// made window-relative, so a clip in device terms can reach past the image;
// inside the image every test comes out as against the clip itself.
struct Limits {
  i64 left, right, bottom, top;
  i64 width, height;  // of the image
};

Limits limits_of(const Software_Z_Buffer& r, const OT_Rendition& rendition) {
  const OT_Int_Rectangle& clip = rendition->device->hard_clip;
  const OT_Shared_Image_Data& image = *r.color_image;
  return {std::max<i64>(clip.left, 0),
          std::min<i64>(clip.right, image.width - 1),
          std::max<i64>(clip.bottom, 0),
          std::min<i64>(clip.top, image.height - 1),
          i64{image.width},
          i64{image.height}};
}

// A colour's channels over a pixel at weight w: old + ((colour - old) * w
// >> shift) on each, the shift arithmetic; the alpha byte becomes 255.
struct Channels {
  std::int32_t b, g, r;
  explicit Channels(OT_RGB32 c) : b(c.b), g(c.g), r(c.r) {}
  std::uint32_t over(std::uint32_t old, std::int32_t w, int shift) const {
    auto mix = [old, w, shift](std::int32_t target, int at) {
      const auto before = static_cast<std::int32_t>(old >> at & 255);
      return static_cast<std::uint32_t>(before + (((target - before) * w) >> shift)) << at;
    };
    return mix(b, 0) | mix(g, 8) | mix(r, 16) | 0xFF000000u;
  }
};

// The writers of a triple: `solid` for a pixel on an exact line, `weighted`
// for a coverage weight out of 256.
struct Opaque_Cover {
  byte* const* rows;
  Channels channels;
  std::uint32_t word;
  std::uint32_t* at(i64 x, i64 y) const { return reinterpret_cast<std::uint32_t*>(rows[y]) + x; }
  void solid(i64 x, i64 y) const { *at(x, y) = word; }
  void weighted(i64 x, i64 y, std::int32_t w) const {
    std::uint32_t* p = at(x, y);
    *p = channels.over(*p, w, 8);
  }
};

// The colour's alpha weight a scales every weight: a * w with a shift of 16,
// and a plain a with a shift of 8 where the opaque writer stores.
template <bool kMasked>
struct Blend_Cover {
  byte* const* rows;
  Channels channels;
  std::int32_t alpha;
  const Frame_Buffer_Mask* mask;
  std::uint32_t* at(i64 x, i64 y) const { return reinterpret_cast<std::uint32_t*>(rows[y]) + x; }
  bool hidden(i64 x, i64 y) const {
    if constexpr (kMasked)
      return masked_bit(*mask, static_cast<std::int32_t>(x), static_cast<std::int32_t>(y));
    else
      return false;
  }
  void solid(i64 x, i64 y) const {
    if (hidden(x, y)) return;
    std::uint32_t* p = at(x, y);
    *p = channels.over(*p, alpha, 8);
  }
  void weighted(i64 x, i64 y, std::int32_t w) const {
    if (hidden(x, y)) return;
    std::uint32_t* p = at(x, y);
    *p = channels.over(*p, alpha * w, 16);
  }
};

// A writer that leaves out pixels beyond the image. A cut segment's ends are
// found by truncating arithmetic and may put a centre one pixel past the
// clip; and trusted points, not being made window-relative, lie beyond the
// image when the window origin isn't 0. Inside the image nothing changes.
template <class Cover>
struct Guarded {
  Cover cover;
  i64 width, height;
  bool fits(i64 x, i64 y) const { return x >= 0 && x < width && y >= 0 && y < height; }
  void solid(i64 x, i64 y) const {
    if (fits(x, y)) cover.solid(x, y);
  }
  void weighted(i64 x, i64 y, std::int32_t w) const {
    if (fits(x, y)) cover.weighted(x, y, w);
  }
};

// Runs body(make), make(colour) giving the writer of the routine `kind`.
template <class Body>
void with_cover(Antialiased_Kind kind, const Software_Z_Buffer& r, Body&& body) {
  byte* const* rows = r.color_image->device_rows;
  switch (kind) {
    case Antialiased_Kind::Opaque:
      return body([rows](OT_RGB32 c) { return Opaque_Cover{rows, Channels(c), c.word()}; });
    case Antialiased_Kind::Blending:
      return body([rows](OT_RGB32 c) {
        return Blend_Cover<false>{rows, Channels(c), blend_weight_of(c.a), {}};
      });
    case Antialiased_Kind::Masked: {
      const Frame_Buffer_Mask* mask = r.mask_cache->head;
      return body([rows, mask](OT_RGB32 c) {
        return Blend_Cover<true>{rows, Channels(c), blend_weight_of(c.a), mask};
      });
    }
  }
}

// Direction codes: horizontal 0 (dx > 0) and 1, vertical 2 (dy > 0) and 3;
// then diagonal, shallow and steep in this order for dx and dy positive (4),
// dx negative (7), both negative (10), dy negative (13); 16 a single point.
enum class Shape { Horizontal, Vertical, Diagonal, Shallow, Steep };
struct Direction {
  Shape shape;
  i64 sx, sy;
};

int direction_code(i64 dx, i64 dy) {
  if (dy == 0) return dx > 0 ? 0 : dx < 0 ? 1 : 16;
  if (dx == 0) return dy > 0 ? 2 : 3;
  const i64 adx = std::abs(dx), ady = std::abs(dy);
  const int shape = adx == ady ? 0 : adx > ady ? 1 : 2;
  const int quadrant = dy > 0 ? (dx > 0 ? 0 : 1) : (dx < 0 ? 2 : 3);
  return 4 + 3 * quadrant + shape;
}

Direction direction_of(int code) {
  switch (code) {
    case 0:
      return {Shape::Horizontal, 1, 0};
    case 1:
      return {Shape::Horizontal, -1, 0};
    case 2:
      return {Shape::Vertical, 0, 1};
    case 3:
      return {Shape::Vertical, 0, -1};
    case 16:  // a point writes the triple of a horizontal line
      return {Shape::Horizontal, 1, 0};
  }
  const int quadrant = (code - 4) / 3, shape = (code - 4) % 3;
  return {shape == 0   ? Shape::Diagonal
          : shape == 1 ? Shape::Shallow
                       : Shape::Steep,
          quadrant == 0 || quadrant == 3 ? 1 : -1, quadrant < 2 ? 1 : -1};
}

// (d << 32) / n truncated toward zero, |d| < n: a minor extent over the
// major one. d << 32 is a multiple of 8, so the shifts for n = 1, 2, 4, 8
// give the quotient exactly. Only a segment longer than 2^31 needs the wide
// product.
u64 step32(i64 d, i64 n) {
  switch (n) {
    case 1:
      return static_cast<u64>(d) << 32;
    case 2:
      return static_cast<u64>(d) << 31;
    case 4:
      return static_cast<u64>(d) << 30;
    case 8:
      return static_cast<u64>(d) << 29;
  }
  if (std::abs(d) < kOne / 2) return static_cast<u64>(d * kOne / n);
  return static_cast<u64>(static_cast<i64>((static_cast<__int128>(d) << 32) / n));
}

// The weight of the pixel at minor position m << 32 for the line at pos.
// With off = (c << 32) - pos for the rounded centre c, off lies in
// (-2^31, 2^31], and the three distances are |off|, 2^32 - off, 2^32 + off:
// table indices up to 384.
inline std::int32_t centre_weight(i64 off) { return kAntialiasFilter[static_cast<u64>(std::abs(off)) >> 24]; }
inline std::int32_t lower_weight(i64 off) { return kAntialiasFilter[static_cast<u64>(kOne - off) >> 24]; }
inline std::int32_t upper_weight(i64 off) { return kAntialiasFilter[static_cast<u64>(kOne + off) >> 24]; }

// Steps `skip` to `skip + length` (the last one only with draw_end) of the
// segment from `start` with extents adx, ady and direction `code`. The
// fixed-point position of a cut segment starts from the uncut start, so it
// keeps the uncut segment's pixels and weights.
template <class Cover>
void antialiased_segment(const Cover& cover, const Limits& lim, const OT_DCI_Point& start, i64 skip,
                         i64 length, i64 adx, i64 ady, int code, bool draw_end) {
  const i64 n = length + (draw_end ? 1 : 0);
  if (n <= 0) return;
  const Direction d = direction_of(code);
  i64 x = start.x + d.sx * skip, y = start.y + d.sy * skip;
  switch (d.shape) {
    case Shape::Horizontal: {
      const bool below = y > lim.bottom, above = y < lim.top;
      for (i64 k = 0; k < n; ++k, x += d.sx) {
        if (below) cover.weighted(x, y - 1, kNeighbourWeight);
        cover.solid(x, y);
        if (above) cover.weighted(x, y + 1, kNeighbourWeight);
      }
      return;
    }
    case Shape::Vertical: {
      const bool left = x > lim.left, right = x < lim.right;
      for (i64 k = 0; k < n; ++k, y += d.sy) {
        if (left) cover.weighted(x - 1, y, kNeighbourWeight);
        cover.solid(x, y);
        if (right) cover.weighted(x + 1, y, kNeighbourWeight);
      }
      return;
    }
    case Shape::Diagonal: {
      // Only the first pixel's neighbour behind and the last pixel's ahead
      // are tested: the others lie on the line's own columns.
      for (i64 k = 0; k < n; ++k, x += d.sx, y += d.sy) {
        const bool first = k == 0, last = k + 1 == n;
        const bool test_lower = d.sx > 0 ? first : last, test_upper = d.sx > 0 ? last : first;
        if (!test_lower || x > lim.left) cover.weighted(x - 1, y, kNeighbourWeight);
        cover.solid(x, y);
        if (!test_upper || x < lim.right) cover.weighted(x + 1, y, kNeighbourWeight);
      }
      return;
    }
    case Shape::Steep: {
      const u64 step = step32(d.sx * adx, ady);
      u64 pos = static_cast<u64>(start.x * kOne) + static_cast<u64>(skip) * step;
      for (i64 k = 0; k < n; ++k, y += d.sy, pos += step) {
        const i64 c = static_cast<i64>(pos + kHalf) >> 32;
        const i64 off = static_cast<i64>((static_cast<u64>(c) << 32) - pos);
        if (c > lim.left) cover.weighted(c - 1, y, lower_weight(off));
        cover.weighted(c, y, centre_weight(off));
        if (c < lim.right) cover.weighted(c + 1, y, upper_weight(off));
      }
      return;
    }
    case Shape::Shallow: {
      const u64 step = step32(d.sy * ady, adx);
      u64 pos = static_cast<u64>(start.y * kOne) + static_cast<u64>(skip) * step;
      for (i64 k = 0; k < n; ++k, x += d.sx, pos += step) {
        const i64 r = static_cast<i64>(pos + kHalf) >> 32;
        const i64 off = static_cast<i64>((static_cast<u64>(r) << 32) - pos);
        if (r > lim.bottom) cover.weighted(x, r - 1, lower_weight(off));
        cover.weighted(x, r, centre_weight(off));
        if (r < lim.top) cover.weighted(x, r + 1, upper_weight(off));
      }
      return;
    }
  }
}

// Whole segments in order, half open; with draw_end the last one writes its
// end too. A zero-length segment writes nothing, unless it is that last one.
template <class Make>
void polyline(const Make& make, const Limits& lim, int count, const OT_DCI_Point* points,
              const OT_RGB32* colors, bool single_color, bool draw_end) {
  if (count == 1 && draw_end) antialiased_segment(make(colors[0]), lim, points[0], 0, 0, 0, 0, 16, true);
  for (int i = 0; i + 1 < count; ++i) {
    const OT_DCI_Point& a = points[i];
    const OT_DCI_Point& b = points[i + 1];
    const i64 dx = i64{b.x} - a.x, dy = i64{b.y} - a.y;
    const i64 adx = std::abs(dx), ady = std::abs(dy);
    antialiased_segment(make(colors[single_color ? 0 : i]), lim, a, 0, std::max(adx, ady), adx, ady,
                        direction_code(dx, dy), draw_end && i + 2 == count);
  }
}

// The driver's outcodes: the first point counts the right and top columns
// as outside, the later points don't.
int first_outcode(const Limits& l, const OT_DCI_Point& p) {
  return (p.x < l.left ? 1 : p.x >= l.right ? 4 : 0) | (p.y < l.bottom ? 8 : p.y >= l.top ? 2 : 0);
}
int outcode(const Limits& l, const OT_DCI_Point& p) {
  return (p.x < l.left ? 1 : p.x > l.right ? 4 : 0) | (p.y < l.bottom ? 8 : p.y > l.top ? 2 : 0);
}

// a * b / c with the truncating division; the product in 128 bits, so that
// points anywhere in 32 bits stay defined.
i64 scale(i64 a, i64 b, i64 c) { return static_cast<i64>(static_cast<__int128>(a) * b / c); }

struct Cut_End {
  i64 x, y;
};

// Moves an end with outcode `code` onto the clip along the segment (dx, dy):
// to the left or right limit first, then, if still above or below, to the
// top or bottom with x measured from the uncut end. False when the end then
// lies beside the clip.
bool cut_end(const Limits& l, const OT_DCI_Point& q, int code, i64 dx, i64 dy, Cut_End& out) {
  out = {q.x, q.y};
  if (code == 0) return true;
  if (dx == 0 || dy == 0) {
    if (code & 1) out.x = l.left;
    if (code & 4) out.x = l.right;
    if (code & 8) out.y = l.bottom;
    if (code & 2) out.y = l.top;
    return true;
  }
  if (code & 5) {
    const i64 limit = (code & 1) ? l.left : l.right;
    out = {limit, q.y + scale(limit - q.x, dy, dx)};
  }
  if (out.y < l.bottom || out.y > l.top) {
    const i64 limit = out.y < l.bottom ? l.bottom : l.top;
    out = {q.x + scale(limit - q.y, dx, dy), limit};
    if (out.x < l.left || out.x > l.right) return false;
  }
  return true;
}

// The clipping driver: runs of inside points go whole to the polyline,
// without their last point, which the crossing segment after them writes;
// a crossing segment is cut and drawn from the uncut start.
template <class Make>
void clip_antialiased(const Make& make, const Limits& lim, int count, const OT_DCI_Point* points,
                      const OT_RGB32& color) {
  const auto cover = make(color);
  const Guarded<decltype(cover)> guarded{cover, lim.width, lim.height};
  int previous = first_outcode(lim, points[0]);
  if (count == 1) {
    if (previous == 0) antialiased_segment(cover, lim, points[0], 0, 0, 0, 0, 16, true);
    return;
  }
  int run_first = 0, run_length = 1;
  for (int i = 1; i < count; ++i) {
    const int code = outcode(lim, points[i]);
    if ((code | previous) == 0) {
      ++run_length;
    } else if ((code & previous) == 0) {
      if (run_length >= 2) polyline(make, lim, run_length, points + run_first, &color, true, false);
      const OT_DCI_Point& s = points[i - 1];
      const OT_DCI_Point& e = points[i];
      const i64 dx = i64{e.x} - s.x, dy = i64{e.y} - s.y;
      Cut_End a, b;
      if (cut_end(lim, s, previous, dx, dy, a) && cut_end(lim, e, code, dx, dy, b)) {
        const i64 adx = std::abs(dx), ady = std::abs(dy);
        const bool x_major = adx >= ady;
        const i64 skip = x_major ? std::abs(a.x - s.x) : std::abs(a.y - s.y);
        const i64 length = x_major ? std::abs(b.x - a.x) : std::abs(b.y - a.y);
        antialiased_segment(guarded, lim, s, skip, length, adx, ady, direction_code(dx, dy),
                            code != 0 || i + 1 == count);
      }
      run_first = i;
      run_length = 1;
    } else {
      run_first = i;
      run_length = 1;
    }
    previous = code;
  }
  if (run_length >= 2) polyline(make, lim, run_length, points + run_first, &color, true, true);
}

}  // namespace

void draw_antialiased_polyline(Antialiased_Kind kind, const Software_Z_Buffer& r,
                               const OT_Rendition& rendition, int count, const OT_DCI_Point* points,
                               const OT_RGB32* colors, bool single_color, bool draw_end) {
  const Limits lim = limits_of(r, rendition);
  if (lim.left > lim.right || lim.bottom > lim.top) return;  // the clip lies wholly off the image
  // Points in the image keep every pixel in it: a centre lies between the
  // ends, a neighbour within the limits or on a centre's column.
  const bool in_image = std::all_of(points, points + count, [&lim](const OT_DCI_Point& p) {
    return p.x >= 0 && p.x < lim.width && p.y >= 0 && p.y < lim.height;
  });
  with_cover(kind, r, [&](const auto& make) {
    if (in_image) return polyline(make, lim, count, points, colors, single_color, draw_end);
    auto guarded = [&make, &lim](OT_RGB32 c) {
      return Guarded<decltype(make(c))>{make(c), lim.width, lim.height};
    };
    polyline(guarded, lim, count, points, colors, single_color, draw_end);
  });
}

void draw_antialiased_2di_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                                   const OT_DCI_Point* points) {
  if (count < 1) return;
  const Software_Z_Buffer& r = renderer_of(object);
  const OT_RGB32 color = rendition->colors->color;
  // The mask first: behind it opaque and translucent colours share a routine.
  const Antialiased_Kind kind = mask_in_force(r, rendition) ? Antialiased_Kind::Masked
                                : color.a > 254             ? Antialiased_Kind::Opaque
                                                            : Antialiased_Kind::Blending;
  const Limits lim = limits_of(r, rendition);
  if (lim.left > lim.right || lim.bottom > lim.top) return;  // the clip lies wholly off the image
  with_cover(kind, r, [&](const auto& make) { clip_antialiased(make, lim, count, points, color); });
}

}  // namespace tarn
