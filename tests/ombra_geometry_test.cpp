// The triangulator, the polygon rank, contour sets, matrices, user patterns
// and the complex clip mask rasterizer.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <tuple>
#include <vector>

#include "host/ombra.h"

namespace {

using Polygon = std::vector<OT_Point>;

double cross(double ax, double ay, double bx, double by, double cx, double cy) {
  return (bx - ax) * (cy - ay) - (cx - ax) * (by - ay);
}

double signed_area(const Polygon& polygon) {
  double sum = 0.0;
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    const OT_Point &a = polygon[i], &b = polygon[(i + 1) % polygon.size()];
    sum += double(a.x) * b.y - double(b.x) * a.y;
  }
  return sum / 2.0;
}

// Even-odd point in polygon.
bool contains(const Polygon& polygon, double x, double y) {
  bool in = false;
  for (std::size_t i = 0, j = polygon.size() - 1; i < polygon.size(); j = i++) {
    const OT_Point &a = polygon[i], &b = polygon[j];
    if ((a.y > y) != (b.y > y) && x < (b.x - a.x) * (y - a.y) / (b.y - a.y) + a.x) in = !in;
  }
  return in;
}

Polygon star(int corners, double outer, double inner, double turns = 1) {
  Polygon out;
  for (int i = 0; i < corners; ++i) {
    const double angle = i * 2 * turns * std::numbers::pi / corners, radius = i % 2 ? inner : outer;
    out.push_back({float(radius * std::cos(angle)), float(radius * std::sin(angle)), 0});
  }
  return out;
}

// Twenty teeth, clockwise.
Polygon comb() {
  Polygon out = {{0, 0, 0}, {200, 0, 0}, {200, 50, 0}};
  for (int i = 19; i >= 0; --i) {
    out.push_back({float(i * 10 + 5), 10, 0});
    out.push_back({float(i * 10), 50, 0});
  }
  return {out.rbegin(), out.rend()};
}

// A simple polygon, convex or not, comes out as at most n - 2 triangles of
// the set's own points, turning as the polygon does, inside it, whose areas
// add up to its area. Points on a straight run add no triangle.
TEST(OmbraTriangulate, SimplePolygonsComeOutExactly) {
  const std::pair<const char*, Polygon> cases[] = {
      {"arrow", {{0, 0, 1}, {10, 0, 2}, {10, 10, 3}, {5, 4, 4}, {0, 10, 5}}},
      {"clockwise L", {{0, 0, 0}, {0, 20, 0}, {5, 20, 0}, {5, 5, 0}, {20, 5, 0}, {20, 0, 0}}},
      {"star", star(10, 100, 40)},
      {"comb", comb()},
      {"straight run", {{0, 0, 0}, {5, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}}},
  };
  for (const auto& [what, polygon] : cases) {
    SCOPED_TRACE(what);
    OT_Contour_Set set(int(polygon.size()), polygon.data(), false);
    std::vector<std::array<const OT_Point*, 3>> triangles;
    set->triangulate(
        [](const OT_Point* a, const OT_Point* b, const OT_Point* c, void* context) {
          static_cast<std::vector<std::array<const OT_Point*, 3>>*>(context)->push_back({a, b, c});
        },
        &triangles);
    EXPECT_LE(triangles.size(), polygon.size() - 2);
    const double total = signed_area(polygon);
    double sum = 0.0;
    for (const auto& t : triangles) {
      for (const OT_Point* p : t)
        ASSERT_TRUE(p >= set->points.data() && p < set->points.data() + set->points.size());
      const double a = cross(t[0]->x, t[0]->y, t[1]->x, t[1]->y, t[2]->x, t[2]->y) / 2.0;
      EXPECT_GT(a * total, 0.0);
      sum += a;
      EXPECT_TRUE(
          contains(polygon, (t[0]->x + t[1]->x + t[2]->x) / 3.0, (t[0]->y + t[1]->y + t[2]->y) / 3.0));
    }
    EXPECT_NEAR(sum, total, 1e-6 * std::fabs(total));
  }
}

// An outline that crosses itself has corners but no ears; the clipping
// still cuts a corner with its two neighbours each time, and ends.
TEST(OmbraTriangulate, SelfCrossingOutlineIsCutCornerByCorner) {
  const Polygon pentagram = star(5, 10, 10, 2);
  OT_Contour_Set set(5, pentagram.data(), false);
  struct Ring {
    const OT_Point* first;
    std::vector<int> corners = {0, 1, 2, 3, 4};
    int triangles = 0;
  } ring{set->points.data()};
  set->triangulate(
      [](const OT_Point* a, const OT_Point* b, const OT_Point* c, void* context) {
        Ring& r = *static_cast<Ring*>(context);
        const auto at = std::find(r.corners.begin(), r.corners.end(), int(b - r.first));
        ASSERT_NE(at, r.corners.end());
        const std::size_t i = std::size_t(at - r.corners.begin()), n = r.corners.size();
        EXPECT_EQ(a - r.first, r.corners[(i + n - 1) % n]);
        EXPECT_EQ(c - r.first, r.corners[(i + 1) % n]);
        r.corners.erase(at);
        ++r.triangles;
      },
      &ring);
  EXPECT_EQ(ring.triangles, 3);
}

TEST(OmbraTriangulate, ProjectionDropsTheDominantAxis) {
  // The arrow standing in the y-z plane: seen along z it has no area.
  const Polygon arrow = {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {5, 4, 0}, {0, 10, 0}};
  Polygon standing;
  for (const OT_Point& p : arrow) standing.push_back({3.0f, p.x, p.y});
  OT_Contour_Set set(5, standing.data(), false);
  make_unique(set)->force_projection(OT_Vector{-2.0f, 0.5f, 0.0f});
  double sum = 0.0;
  set->triangulate(
      [](const OT_Point* a, const OT_Point* b, const OT_Point* c, void* context) {
        *static_cast<double*>(context) += std::fabs(cross(a->y, a->z, b->y, b->z, c->y, c->z)) / 2.0;
      },
      &sum);
  EXPECT_EQ(sum, 70.0);
}

TEST(OmbraRankPolygon, OnlyStrictlyConvexSimplePolygonsAreZero) {
  const std::pair<Polygon, OT_Polygon_Rank> cases[] = {
      {{{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}}, OT_Polygon_Rank_Convex},
      {{{0, 0, 0}, {0, 10, 0}, {10, 10, 0}, {10, 0, 0}}, OT_Polygon_Rank_Convex},
      {{{0, 0, 0}, {10, 0, 0}, {0, 10, 9}}, OT_Polygon_Rank_Convex},
      {star(6, 10, 10), OT_Polygon_Rank_Convex},
      {{{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {5, 4, 0}, {0, 10, 0}}, OT_Polygon_Rank_Complex},
      {{{0, 0, 0}, {5, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}}, OT_Polygon_Rank_Complex},
      {{{0, 0, 0}, {10, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}}, OT_Polygon_Rank_Complex},
      {{{0, 0, 0}, {10, 10, 0}, {10, 0, 0}, {0, 10, 0}}, OT_Polygon_Rank_Complex},
      {star(5, 10, 10, 2), OT_Polygon_Rank_Complex},  // a pentagram turns one way, but winds twice
      {{{0, 0, 0}, {10, 0, 0}}, OT_Polygon_Rank_Complex},
  };
  for (const auto& [polygon, rank] : cases)
    EXPECT_EQ(OB_Rank_Polygon(int(polygon.size()), polygon.data()), rank)
        << polygon.size() << " " << polygon[1].x;
}

TEST(OmbraGeometry, ContourSetsMatricesAndUserPatterns) {
  const OT_Point square[5] = {{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 4, 0}, {0, 0, 0}};
  EXPECT_EQ(OT_Contour_Set(5, square, true)->points.size(), 4u);  // the repeated first point goes
  EXPECT_EQ(OT_Contour_Set(5, square, false)->points.size(), 5u);
  EXPECT_EQ(OT_Contour_Set(4, square, true)->contour_starts, std::vector<int>{0});

  OT_Matrix matrix(new OT_Matrix_Data);
  OT_Point_D out{};
  float w = 0;
  matrix->m[3][0] = 10;   // translation, row-vector form
  matrix->m[2][3] = 0.5;  // w = z / 2 + 1
  matrix.transform(OT_Point_D{4, 6, 2}, out, &w, 0);
  EXPECT_EQ(w, 2.0f);
  EXPECT_EQ((std::vector<double>{out.x, out.y, out.z}), (std::vector<double>{7, 3, 1}));

  const byte source[3 * 4] = {1, 2, 0xEE, 0xEE, 3, 4, 0xEE, 0xEE, 5, 6, 0xEE, 0xEE};
  OT_User_Pattern pattern(new OT_User_Pattern_Data(12, 3, source, 4));
  EXPECT_EQ(pattern->row_bytes, 2);
  EXPECT_EQ(std::vector<byte>(pattern->bits, pattern->bits + 6), (std::vector<byte>{1, 2, 3, 4, 5, 6}));
  OT_User_Pattern copy = pattern;
  OT_User_Pattern_Data* mine = make_unique(copy);
  EXPECT_NE(mine->bits, pattern->bits);
  EXPECT_EQ(mine->bits[5], 6);
}

// A line type is a counted handle: the copy shares the record, a writer
// gets a clone that keeps the definition; None is the null handle.
TEST(OmbraGeometry, LineTypesCopyOnWrite) {
  const double lengths[2] = {10, -5};
  const OT_Line_Type_Definition definition{lengths, 2, 2};
  OT_Line_Type type(new OT_Line_Type_Data);
  type->definition = &definition;
  type->phase = 3;
  OT_Line_Type copy(type);
  EXPECT_EQ(copy.get(), type.get());
  EXPECT_EQ(type->count.load(), 2u);
  const std::uint32_t serial = type->serial;
  OT_Line_Type_Data* mine = make_unique(copy);
  ASSERT_NE(mine, type.get());
  EXPECT_NE(mine->serial, serial);
  EXPECT_EQ(std::tuple(mine->count.load(), type->count.load()), std::tuple(1u, 1u));
  EXPECT_EQ(mine->definition, &definition);
  mine->phase = 6;
  EXPECT_EQ(type->phase, 3);
  EXPECT_FALSE(OT_Line_Type::None);
  EXPECT_TRUE(OT_Line_Type() == OT_Line_Type::None);
  EXPECT_FALSE(type == OT_Line_Type::None);
  EXPECT_TRUE(OT_Line_Type_Set::None.line_types.empty());
}

// Mask bits are set outside the region; a pixel is inside by the even-odd
// rule at its own integer position, with the walk's half-open edges.
TEST(OmbraMask, RasterizesTheRegionInWindowPixels) {
  Frame_Buffer_Mask mask;
  mask.establish_configuration(20, 10, 100, 200);
  ASSERT_TRUE(mask.image);
  EXPECT_EQ(mask.image->height, 10);
  auto masked = [&](int x, int y) { return (mask.image->device_rows[y][x >> 3] & (128 >> (x & 7))) != 0; };
  OT_Contour_Set clip(new OT_Contour_Set_Data);
  // A device square 103..117 x 202..208 with a hole 106..109 x 204..206, and
  // a triangle whose slanted edge crosses row 201 at x 111.5.
  clip->points = {{103, 202, 0}, {117, 202, 0}, {117, 208, 0}, {103, 208, 0}, {106, 204, 0}, {109, 204, 0},
                  {109, 206, 0}, {106, 206, 0}, {110, 200, 0}, {113, 200, 0}, {110, 202, 0}};
  clip->contour_starts = {0, 4, 8};
  mask.clear_and_rasterize_mask(clip);
  EXPECT_EQ(mask.key, clip->serial);
  for (int y = 0; y < 10; ++y)
    for (int x = 0; x < 20; ++x) {
      const bool square = x >= 3 && x < 17 && y >= 2 && y < 8, hole = x >= 6 && x < 9 && y >= 4 && y < 6;
      const bool triangle = (y == 0 && x >= 10 && x < 13) || (y == 1 && x >= 10 && x < 12);
      ASSERT_EQ(masked(x, y), !((square && !hole) || triangle)) << x << "," << y;
    }
  mask.clear_and_rasterize_mask(OT_Contour_Set());
  EXPECT_EQ(mask.key, 0u);
  for (int x = 0; x < 20; ++x) EXPECT_TRUE(masked(x, 3));
  // Sizing again for another window forgets the region.
  mask.clear_and_rasterize_mask(clip);
  mask.establish_configuration(9, 2, 0, 0);
  EXPECT_EQ(mask.key, 0u);
  EXPECT_EQ(mask.image->height, 2);
}

}  // namespace
