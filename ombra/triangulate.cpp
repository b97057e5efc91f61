// Triangulation of contour sets by ear clipping.
//
// Each contour is taken as a polygon of its own (holes are not cut out of an
// enclosing contour). The polygon is projected along `projection` by dropping
// the coordinate in which that vector is largest, and ears are clipped in the
// projected plane; the callback receives the original points. A simple
// polygon, convex or not, comes out exactly: n - 2 triangles at most, whose
// areas add up to the polygon's. Points on a straight run are dropped, as
// they would only give triangles of no area. For a polygon that crosses
// itself the clipping still ends, with triangles that follow its outline as
// well as they can.
#include <cmath>
#include <vector>

#include "host/ot_geometry.h"

namespace {

struct Flat {
  double u, v;
};

double cross(const Flat& a, const Flat& b, const Flat& c) {
  return (b.u - a.u) * (c.v - b.v) - (b.v - a.v) * (c.u - b.u);
}

bool same(const Flat& a, const Flat& b) { return a.u == b.u && a.v == b.v; }

// p inside or on the triangle abc of orientation `orient` (+1 or -1).
bool inside_triangle(const Flat& p, const Flat& a, const Flat& b, const Flat& c, double orient) {
  auto side = [](const Flat& s, const Flat& e, const Flat& q) {
    return (e.u - s.u) * (q.v - s.v) - (e.v - s.v) * (q.u - s.u);
  };
  return orient * side(a, b, p) >= 0.0 && orient * side(b, c, p) >= 0.0 && orient * side(c, a, p) >= 0.0;
}

class Ear_Clipper {
 public:
  Ear_Clipper(const std::vector<OT_Point>& points, const OT_Vector& projection) : points_(points) {
    const double ax = std::fabs(projection.x), ay = std::fabs(projection.y), az = std::fabs(projection.z);
    // Drop the dominant axis; keep the other two in cyclic order.
    if (az >= ax && az >= ay) {
      first_ = 0;
      second_ = 1;
    } else if (ax >= ay) {
      first_ = 1;
      second_ = 2;
    } else {
      first_ = 2;
      second_ = 0;
    }
  }

  void run(int begin, int end, OT_Contour_Set_Data::Triangle_Callback callback, void* context) {
    ring_.clear();
    for (int i = begin; i < end; ++i) {
      if (!ring_.empty() && same(flat(ring_.back()), flat(i))) continue;
      ring_.push_back(i);
    }
    while (ring_.size() > 1 && same(flat(ring_.back()), flat(ring_.front()))) ring_.pop_back();
    if (ring_.size() < 3) return;

    double area = 0.0;
    for (std::size_t i = 0; i < ring_.size(); ++i) {
      const Flat a = flat(ring_[i]), b = flat(ring_[(i + 1) % ring_.size()]);
      area += a.u * b.v - b.u * a.v;
    }
    if (area == 0.0) return;
    const double orient = area > 0.0 ? 1.0 : -1.0;

    std::size_t cursor = 0;
    while (ring_.size() >= 3) {
      const std::size_t n = ring_.size();
      bool clipped = false;
      // One pass round the ring looking for an ear, starting where the last
      // one was found, so that the clipping walks on rather than fanning.
      for (std::size_t step = 0; step < n && !clipped; ++step) {
        const std::size_t i = (cursor + step) % n;
        const std::size_t ip = (i + n - 1) % n, in = (i + 1) % n;
        const Flat a = flat(ring_[ip]), b = flat(ring_[i]), c = flat(ring_[in]);
        const double turn = orient * cross(a, b, c);
        if (turn == 0.0) {
          // No area on either side: drop the point, nothing to draw.
          ring_.erase(ring_.begin() + std::ptrdiff_t(i));
          cursor = i;
          clipped = true;
        } else if (turn > 0.0 && is_ear(ip, i, in, a, b, c, orient)) {
          emit(ip, i, in, callback, context);
          cursor = i;
          clipped = true;
        }
      }
      if (!clipped) {
        // No ear: the outline crosses itself. Cut the first convex corner, or
        // any corner, so that the loop ends.
        std::size_t pick = 0;
        for (std::size_t i = 0; i < n; ++i)
          if (orient * cross(flat(ring_[(i + n - 1) % n]), flat(ring_[i]), flat(ring_[(i + 1) % n])) > 0.0) {
            pick = i;
            break;
          }
        emit((pick + n - 1) % n, pick, (pick + 1) % n, callback, context);
        cursor = pick;
      }
      if (cursor >= ring_.size()) cursor = 0;
    }
  }

 private:
  Flat flat(int index) const {
    const OT_Point& p = points_[std::size_t(index)];
    const double c[3] = {p.x, p.y, p.z};
    return {c[first_], c[second_]};
  }

  bool is_ear(std::size_t ip, std::size_t i, std::size_t in, const Flat& a, const Flat& b, const Flat& c,
              double orient) const {
    for (std::size_t k = 0; k < ring_.size(); ++k) {
      if (k == ip || k == i || k == in) continue;
      const Flat p = flat(ring_[k]);
      if (same(p, a) || same(p, b) || same(p, c)) continue;
      if (inside_triangle(p, a, b, c, orient)) return false;
    }
    return true;
  }

  // Sends the triangle and removes its middle corner from the ring; a ring
  // of three ends with it.
  void emit(std::size_t ip, std::size_t i, std::size_t in, OT_Contour_Set_Data::Triangle_Callback callback,
            void* context) {
    callback(&points_[std::size_t(ring_[ip])], &points_[std::size_t(ring_[i])],
             &points_[std::size_t(ring_[in])], context);
    if (ring_.size() == 3)
      ring_.clear();
    else
      ring_.erase(ring_.begin() + std::ptrdiff_t(i));
  }

  const std::vector<OT_Point>& points_;
  int first_ = 0, second_ = 1;
  std::vector<int> ring_;
};

}  // namespace

void OT_Contour_Set_Data::triangulate(Triangle_Callback callback, void* context) const {
  if (!callback) return;
  Ear_Clipper clipper(points, projection);
  const int total = int(points.size());
  if (contour_starts.empty()) {
    clipper.run(0, total, callback, context);
    return;
  }
  for (std::size_t c = 0; c < contour_starts.size(); ++c) {
    const int begin = contour_starts[c];
    const int end = c + 1 < contour_starts.size() ? contour_starts[c + 1] : total;
    if (begin >= 0 && begin < end && end <= total) clipper.run(begin, end, callback, context);
  }
}
