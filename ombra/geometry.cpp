// Contour sets, matrices, vectors, user patterns and the polygon rank.
#include <cmath>
#include <numbers>

#include "host/ob_functions.h"

const OT_Line_Type_Set OT_Line_Type_Set::None{};
const OT_Line_Type OT_Line_Type::None;

OT_Line_Type::OT_Line_Type(const OT_Line_Type& other) : OT_Handle(other) {}

void OT_Vector::normalize() {
  const double length = std::sqrt(double(x) * x + double(y) * y + double(z) * z);
  if (length > 0.0) {
    x = float(x / length);
    y = float(y / length);
    z = float(z / length);
  }
}

void OT_Vector_D::normalize() {
  const double length = std::sqrt(x * x + y * y + z * z);
  if (length > 0.0) {
    x /= length;
    y /= length;
    z /= length;
  }
}

OT_Contour_Set_Data::OT_Contour_Set_Data(int count, const OT_Point* source) {
  if (count > 0 && source) {
    points.assign(source, source + count);
    contour_starts.push_back(0);
  }
}

void OT_Contour_Set_Data::force_projection(const OT_Vector& direction) { projection = direction; }

// `closed`: the list repeats its first point at the end; that copy is
// dropped. Either way the contour closes from its last point to its first.
OT_Contour_Set::OT_Contour_Set(int count, const OT_Point* points, bool closed) {
  if (closed && count > 1 && points[count - 1].x == points[0].x && points[count - 1].y == points[0].y &&
      points[count - 1].z == points[0].z)
    --count;
  reset(new OT_Contour_Set_Data(count, points));
}

OT_Matrix_Data::OT_Matrix_Data() {
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c) m[r][c] = r == c ? 1.0 : 0.0;
}

// The adjugate by cofactors: adj[c][r] is the signed minor of m[r][c].
void OT_Matrix_Data::validate_adjoint() const {
  auto* result = new OT_Matrix_Data;
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c) {
      double minor[3][3];
      for (int i = 0, mi = 0; i < 4; ++i) {
        if (i == r) continue;
        for (int j = 0, mj = 0; j < 4; ++j) {
          if (j == c) continue;
          minor[mi][mj++] = m[i][j];
        }
        ++mi;
      }
      const double det = minor[0][0] * (minor[1][1] * minor[2][2] - minor[1][2] * minor[2][1]) -
                         minor[0][1] * (minor[1][0] * minor[2][2] - minor[1][2] * minor[2][0]) +
                         minor[0][2] * (minor[1][0] * minor[2][1] - minor[1][1] * minor[2][0]);
      result->m[c][r] = (r + c) % 2 ? -det : det;
    }
  adjoint.reset(result);
}

// Row vectors: (x, y, z, 1) * m gives (x', y', z', w); the result is divided
// by w unless w is 0, and w goes out through `w_out`.
void OT_Matrix_Data::transform(const OT_Point_D& in, OT_Point_D& out, float* w_out, float) const {
  double v[4];
  for (int c = 0; c < 4; ++c) v[c] = in.x * m[0][c] + in.y * m[1][c] + in.z * m[2][c] + m[3][c];
  const double w = v[3];
  if (w != 0.0 && w != 1.0) {
    v[0] /= w;
    v[1] /= w;
    v[2] /= w;
  }
  out = {v[0], v[1], v[2]};
  if (w_out) *w_out = float(w);
}

OT_User_Pattern_Data::OT_User_Pattern_Data(int width_, int height_, const byte* rows, int source_row_bytes)
    : width(width_ > 0 ? width_ : 0), height(height_ > 0 ? height_ : 0) {
  row_bytes = (width + 7) / 8;
  storage_.assign(std::size_t(row_bytes) * std::size_t(height), 0);
  if (rows)
    for (int r = 0; r < height; ++r)
      for (int i = 0; i < row_bytes; ++i)
        storage_[std::size_t(r) * row_bytes + i] = rows[std::ptrdiff_t(r) * source_row_bytes + i];
  bits = storage_.empty() ? nullptr : storage_.data();
}

OT_User_Pattern_Data::OT_User_Pattern_Data(const OT_User_Pattern_Data& other)
    : OT_Clonable(other),
      width(other.width),
      height(other.height),
      row_bytes(other.row_bytes),
      storage_(other.storage_) {
  // A pattern over memory of its own keeps its own copy; one over the
  // caller's memory keeps pointing there.
  bits = other.bits == other.storage_.data() && !storage_.empty() ? storage_.data() : other.bits;
}

// Strictly convex: every corner turns the same way, none is straight, and the
// turns add up to one full revolution, which rules out a star that winds
// twice.
OT_Polygon_Rank OB_Rank_Polygon(int count, const OT_Point* points) {
  if (count < 3 || !points) return OT_Polygon_Rank_Complex;
  int sign = 0;
  double turning = 0.0;
  for (int i = 0; i < count; ++i) {
    const OT_Point& a = points[(i + count - 1) % count];
    const OT_Point& b = points[i];
    const OT_Point& c = points[(i + 1) % count];
    const double ex = double(b.x) - a.x, ey = double(b.y) - a.y;
    const double fx = double(c.x) - b.x, fy = double(c.y) - b.y;
    const double cross = ex * fy - ey * fx;
    if (!(cross != 0.0)) return OT_Polygon_Rank_Complex;
    const int s = cross > 0.0 ? 1 : -1;
    if (sign && s != sign) return OT_Polygon_Rank_Complex;
    sign = s;
    turning += std::atan2(cross, ex * fx + ey * fy);
  }
  const double full = 2.0 * std::numbers::pi;
  return std::fabs(std::fabs(turning) - full) < 1e-6 ? OT_Polygon_Rank_Convex : OT_Polygon_Rank_Complex;
}
