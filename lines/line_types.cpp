#include "lines/line_types.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "pixel/rounding.h"

namespace tarn {
namespace {

// 1e-12 by way of single precision: that value is what lengths are compared
// with.
constexpr double kEpsilon = 9.999999960041972e-13;

bool same_point(const OT_DCI_Point& a, const OT_DCI_Point& b) {
  return a.x == b.x && a.y == b.y && a.z == b.z;
}

// Doubles become points by truncation toward zero (out of range, the
// processor's indefinite integer).
OT_DCI_Point to_point(const OT_Point_D& p) {
  return {truncate_to_int32(p.x), truncate_to_int32(p.y), truncate_to_int32(p.z)};
}

// The difference b - a of 32-bit coordinates, wrapping as the integers do.
double difference(std::int32_t a, std::int32_t b) {
  return double(static_cast<std::int32_t>(static_cast<std::uint32_t>(b) - static_cast<std::uint32_t>(a)));
}

OT_Vector_D vector_between(const OT_DCI_Point& a, const OT_DCI_Point& b) {
  return {difference(a.x, b.x), difference(a.y, b.y), difference(a.z, b.z)};
}

double length_of(const OT_Vector_D& v) { return std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z); }

// Pieces joined into polylines: runs lie one behind the other in `points`.
// A dot is a run of two equal points, which the thin walker draws as one
// pixel.
//
// With a clip rectangle (the pieces go to a clipping action), a piece that
// would begin a run and lies wholly on the far side of one of the
// rectangle's edges is left out: the clipping action skips such a piece
// whatever run it is in, and one that would have joined it begins a run of
// its own, which draws the same. So a dashed line thousands of times longer
// than the window keeps only the pieces near it.
class Piece_List {
 public:
  explicit Piece_List(const OT_Int_Rectangle* clip) : clip_(clip) {}

  void add(const OT_DCI_Point& p, const OT_DCI_Point& q) {
    if (!points_.empty() && !after_dropped_) {
      OT_DCI_Point& last = points_.back();
      if (same_point(last, p)) return join(p, q);
      if (same_point(last, q)) return join(q, p);
    }
    after_dropped_ = clip_ && beyond_one_edge(*clip_, p, q);
    if (after_dropped_) return;
    points_.push_back(p);
    points_.push_back(q);
    runs_.push_back(2);
    last_was_dot_ = same_point(p, q);
  }
  void dot(const OT_DCI_Point& p) { add(p, p); }
  const OT_Int_Rectangle* clip() const { return clip_; }
  // Pieces were left out here, as add() leaves them out beyond an edge.
  void mark_dropped() { after_dropped_ = true; }

  const std::vector<OT_DCI_Point>& points() const { return points_; }
  const std::vector<std::uint32_t>& runs() const { return runs_; }

 private:
  // The piece from `at`, the list's last point, on to `to`. A dot's two
  // equal points become the start of a line.
  void join(const OT_DCI_Point& at, const OT_DCI_Point& to) {
    if (same_point(at, to)) return;
    if (last_was_dot_) {
      points_.back() = to;
      last_was_dot_ = false;
    } else {
      points_.push_back(to);
      ++runs_.back();
    }
  }

  static bool beyond_one_edge(const OT_Int_Rectangle& r, const OT_DCI_Point& p, const OT_DCI_Point& q) {
    return (p.x < r.left && q.x < r.left) || (p.x > r.right && q.x > r.right) ||
           (p.y < r.bottom && q.y < r.bottom) || (p.y > r.top && q.y > r.top);
  }

  const OT_Int_Rectangle* clip_;
  std::vector<OT_DCI_Point> points_;
  std::vector<std::uint32_t> runs_;
  bool last_was_dot_ = false;
  bool after_dropped_ = false;
};

// A line type taken from the set, with its lengths scaled by the set's
// scale on a private copy.
OT_Line_Type scaled_type(const OT_Line_Type& from_set, double scale) {
  OT_Line_Type type(from_set);
  if (type != OT_Line_Type::None) {
    OT_Line_Type_Data* data = make_unique(type);
    data->length_scale *= scale;
    data->start_length *= scale;
    data->end_length *= scale;
    data->phase *= scale;
  }
  return type;
}

// The state of one walk along a path with one line type.
class Pattern_Walker {
 public:
  Pattern_Walker(const OT_Line_Type& type, double total, Piece_List& pieces)
      : type_(&type), total_(total), pieces_(pieces) {
    if (type == OT_Line_Type::None) return;
    definition_ = type->definition;
    if (definition_ && definition_->lengths)
      for (std::int64_t i = 0; i < definition_->length_count; ++i)
        abs_lengths_.push_back(std::fabs(type->length_scale * definition_->lengths[i]));
    phase_ = type->phase;
    start_length_ = type->start_length;
    end_length_ = type->end_length;
  }

  // The segment from a to b: solid start, pattern, solid end, as far as each
  // reaches into this segment.
  void walk_segment(const OT_DCI_Point& a, const OT_DCI_Point& b) {
    if (*type_ == OT_Line_Type::None) return pieces_.add(a, b);
    cursor_ = {double(a.x), double(a.y), double(a.z)};
    dir_ = vector_between(a, b);
    const double len = length_of(dir_);
    if (total_ == 0.0) total_ = len;
    dir_.normalize();
    const double head = std::min(len, start_length_ - done_);
    double used = 0.0;
    if (head > kEpsilon) {
      solid_start(head);
      used = head;
    }
    double rest = len - used;
    const double middle = std::min(rest, total_ - done_ - end_length_);
    if (middle > kEpsilon) {
      walk_pattern(middle);
      rest -= middle;
    }
    const double tail = std::min(rest, total_ - done_);
    if (tail > kEpsilon) solid_end(tail);
  }

 private:
  bool dotted_ends() const { return definition_ && definition_->end_style == 2; }

  OT_Point_D advance(double length) {
    const OT_Point_D from = cursor_;
    cursor_.x += dir_.x * length;
    cursor_.y += dir_.y * length;
    cursor_.z += dir_.z * length;
    return from;
  }

  // With dotted ends a solid part shrinks to one dot, and only at the very
  // start or the very end of the path.
  bool solid_part_is_dot(double length) const {
    return !(done_ > kEpsilon && std::fabs(done_ + length - total_) > kEpsilon);
  }

  void solid_start(double length) {
    const OT_Point_D from = advance(length);
    if (!dotted_ends())
      pieces_.add(to_point(from), to_point(cursor_));
    else if (solid_part_is_dot(length))
      pieces_.dot(to_point(from));
    done_ += length;
  }

  void solid_end(double length) {
    const OT_Point_D from = advance(length);
    if (!dotted_ends())
      pieces_.add(to_point(from), to_point(cursor_));
    else if (solid_part_is_dot(length))
      pieces_.dot(to_point(cursor_));
    done_ += length;
  }

  // Rounds of the pattern until `length` is used; phase_ then says how much
  // of the current round is used, so that the next segment, skipping that
  // much, continues at the same place.
  void walk_pattern(double length) {
    double pattern_length = 0.0;
    for (double piece : abs_lengths_) pattern_length += piece;
    // A pattern that can't advance would never use the length up: it passes
    // undrawn.
    if (!(pattern_length > 0.0)) {
      advance(length);
      done_ += length;
      return;
    }
    const double* lengths = definition_->lengths;
    double remaining = length;
    for (;;) {
      if (phase_ == 0.0 && pieces_.clip()) skip_rounds_beyond_clip(pattern_length, remaining);
      double round_used = 0.0;
      for (std::size_t i = 0; i < abs_lengths_.size(); ++i) {
        double piece = abs_lengths_[i];
        if (phase_ > 0.0) {
          const double skipped = phase_;
          phase_ -= piece;
          if (phase_ >= 0.0) {
            round_used += piece;
            continue;
          }
          round_used += skipped;
          piece = -phase_;
          phase_ = 0.0;
        }
        piece = std::min(piece, remaining);
        if (lengths[i] != 0.0) {
          const OT_Point_D from = advance(piece);
          done_ += piece;
          remaining -= piece;
          if (lengths[i] > 0.0) pieces_.add(to_point(from), to_point(cursor_));
          round_used += piece;
          if (remaining <= 0.0) {
            phase_ = round_used;
            return;
          }
        } else if (!dot_left_out(length)) {
          pieces_.dot(to_point(cursor_));
        }
      }
    }
  }

  // Whole rounds of the pattern that lie beyond one edge of the clip, where
  // every piece would be left out, are walked in one step when there are
  // more than kManyRounds of them: a dashed line from far outside the window
  // costs no more than one that starts near it. (The cursor after such a
  // step may differ in the last bits of a double from the cursor after as
  // many single steps; the pieces near the window are placed from it.)
  static constexpr double kManyRounds = 4096;
  void skip_rounds_beyond_clip(double pattern_length, double& remaining) {
    const OT_Int_Rectangle& r = *pieces_.clip();
    // How far along dir_ the cursor stays two pixels beyond an edge, so that
    // a truncated end is beyond it too.
    auto reach = [](double at, double step, double edge, bool below) {
      if (below ? !(at < edge - 2) : !(at > edge + 2)) return 0.0;
      if (below ? step <= 0.0 : step >= 0.0) return std::numeric_limits<double>::infinity();
      return ((below ? edge - 2 : edge + 2) - at) / step;
    };
    const double beyond =
        std::max({reach(cursor_.x, dir_.x, r.left, true), reach(cursor_.x, dir_.x, r.right, false),
                  reach(cursor_.y, dir_.y, r.bottom, true), reach(cursor_.y, dir_.y, r.top, false)});
    const double rounds = std::floor(std::min(beyond, remaining - pattern_length) / pattern_length);
    if (!(rounds > kManyRounds)) return;
    const double skipped = rounds * pattern_length;
    advance(skipped);
    done_ += skipped;
    remaining -= skipped;
    pieces_.mark_dropped();
  }

  // With dotted ends, the pattern's dots on the ends of the solid parts go,
  // unless there are no solid parts.
  bool dot_left_out(double length) const {
    if (!dotted_ends() || (start_length_ == 0.0 && end_length_ == 0.0)) return false;
    return std::fabs(done_ - start_length_) <= kEpsilon ||
           std::fabs(done_ + length + end_length_ - total_) <= kEpsilon;
  }

  const OT_Line_Type* type_;
  const OT_Line_Type_Definition* definition_ = nullptr;
  double done_ = 0.0;
  double total_;
  double start_length_ = 0.0;
  double end_length_ = 0.0;
  double phase_ = 0.0;
  std::vector<double> abs_lengths_;
  OT_Point_D cursor_{0.0, 0.0, 0.0};
  OT_Vector_D dir_{0.0, 0.0, 0.0};
  Piece_List& pieces_;
};

// The first type over the whole path: the pattern runs on from segment to
// segment, and the solid parts lie at the ends of the path.
void walk_whole_path(const OT_Line_Type_Set& set, int count, const OT_DCI_Point* points, Piece_List& pieces) {
  const OT_Line_Type type = scaled_type(set.line_types[0], set.scale);
  double total = 0.0;
  for (int i = 0; i + 1 < count; ++i) total += length_of(vector_between(points[i], points[i + 1]));
  Pattern_Walker walker(type, total, pieces);
  for (int i = 0; i + 1 < count; ++i) walker.walk_segment(points[i], points[i + 1]);
}

// A type a slot, each segment walked afresh; skipped slots take no segment.
// Slots that don't fit the segments draw nothing.
void walk_per_segment(const OT_Line_Type_Set& set, int count, const OT_DCI_Point* points,
                      Piece_List& pieces) {
  if (std::int64_t(count) - 1 != std::int64_t(set.end_type) - std::int64_t(set.skip_count) ||
      set.end_type < 1)
    return;
  std::uint32_t next_skip = 0;
  int segment = 0;
  for (std::int32_t slot = 0; slot < set.end_type && segment + 1 < count; ++slot) {
    if (next_skip < set.skip_count && std::uint32_t(slot) == set.skips[next_skip]) {
      ++next_skip;
      continue;
    }
    const OT_Line_Type type = scaled_type(set.line_types[std::size_t(set.first_type + slot)], set.scale);
    Pattern_Walker walker(type, 0.0, pieces);
    walker.walk_segment(points[segment], points[segment + 1]);
    ++segment;
  }
}

}  // namespace

void decompose_polyline(const OT_Rendition& rendition, int count, const OT_DCI_Point* points,
                        Piece_Callback callback, bool clipping) {
  const OT_Line_Type_Set& set = *rendition->line->line_type_set;
  Piece_List pieces(clipping ? &rendition->device->hard_clip : nullptr);
  if (set.per_segment != 0 || count < 3)
    walk_per_segment(set, count, points, pieces);
  else
    walk_whole_path(set, count, points, pieces);

  OT_Rendition plain(rendition);
  if (has_line_type(plain)) plain.writable_line()->line_type_set = &OT_Line_Type_Set::None;
  const OT_DCI_Point* run = pieces.points().data();
  for (std::uint32_t n : pieces.runs()) {
    callback(plain, int(n), run);
    run += n;
  }
}

}  // namespace tarn
