// Contour sets and their triangulation, the polygon rank, matrices, vectors,
// user patterns and complex clip masks.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <vector>

#include "host/ombra.h"

namespace {

struct Triangles {
  std::vector<std::array<const OT_Point*, 3>> list;
  static void collect(const OT_Point* a, const OT_Point* b, const OT_Point* c, void* context) {
    static_cast<Triangles*>(context)->list.push_back({a, b, c});
  }
};

double signed_area(const std::vector<OT_Point>& polygon) {
  double sum = 0.0;
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    const OT_Point& a = polygon[i];
    const OT_Point& b = polygon[(i + 1) % polygon.size()];
    sum += double(a.x) * b.y - double(b.x) * a.y;
  }
  return sum / 2.0;
}

double triangle_area(const OT_Point& a, const OT_Point& b, const OT_Point& c) {
  return 0.5 * ((double(b.x) - a.x) * (double(c.y) - a.y) - (double(c.x) - a.x) * (double(b.y) - a.y));
}

// Even-odd point in polygon.
bool contains(const std::vector<OT_Point>& polygon, double x, double y) {
  bool in = false;
  for (std::size_t i = 0, j = polygon.size() - 1; i < polygon.size(); j = i++) {
    const OT_Point& a = polygon[i];
    const OT_Point& b = polygon[j];
    if ((a.y > y) != (b.y > y) && x < (b.x - a.x) * (y - a.y) / (b.y - a.y) + a.x) in = !in;
  }
  return in;
}

void expect_exact_triangulation(const std::vector<OT_Point>& polygon) {
  OT_Contour_Set set(int(polygon.size()), polygon.data(), false);
  make_unique(set)->force_projection(OT_Vector{0, 0, 1});
  Triangles triangles;
  set->triangulate(Triangles::collect, &triangles);
  EXPECT_LE(triangles.list.size(), polygon.size() - 2);
  const double polygon_area = std::fabs(signed_area(polygon));
  const double orientation = signed_area(polygon) > 0 ? 1.0 : -1.0;
  double sum = 0.0;
  for (const auto& t : triangles.list) {
    for (const OT_Point* p : t) {
      // The callback gets the set's own points.
      ASSERT_GE(p, set->points.data());
      ASSERT_LT(p, set->points.data() + set->points.size());
    }
    const double a = triangle_area(*t[0], *t[1], *t[2]);
    EXPECT_GT(a * orientation, 0.0);  // same turn as the polygon: no flipped triangles
    sum += std::fabs(a);
    const double cx = (t[0]->x + t[1]->x + t[2]->x) / 3.0, cy = (t[0]->y + t[1]->y + t[2]->y) / 3.0;
    EXPECT_TRUE(contains(polygon, cx, cy)) << cx << "," << cy;
  }
  EXPECT_NEAR(sum, polygon_area, 1e-6 * polygon_area);
}

TEST(OmbraTriangulate, ConcaveArrow) {
  expect_exact_triangulation({{0, 0, 1}, {10, 0, 2}, {10, 10, 3}, {5, 4, 4}, {0, 10, 5}});
}

TEST(OmbraTriangulate, ConcaveLShapeClockwise) {
  expect_exact_triangulation({{0, 0, 0}, {0, 20, 0}, {5, 20, 0}, {5, 5, 0}, {20, 5, 0}, {20, 0, 0}});
}

TEST(OmbraTriangulate, StarWithTenCorners) {
  std::vector<OT_Point> star;
  for (int i = 0; i < 10; ++i) {
    const double angle = i * 3.14159265358979 / 5.0;
    const double radius = i % 2 ? 40.0 : 100.0;
    star.push_back({float(radius * std::cos(angle)), float(radius * std::sin(angle)), 0});
  }
  expect_exact_triangulation(star);
}

TEST(OmbraTriangulate, CombWithManyTeeth) {
  std::vector<OT_Point> comb;
  for (int i = 0; i < 20; ++i) {
    comb.push_back({float(i * 10), 50, 0});
    comb.push_back({float(i * 10 + 5), 10, 0});
  }
  comb.push_back({200, 50, 0});
  comb.push_back({200, 0, 0});
  comb.push_back({0, 0, 0});
  std::vector<OT_Point> reversed(comb.rbegin(), comb.rend());
  expect_exact_triangulation(reversed);
}

TEST(OmbraTriangulate, PointOnAStraightRunAddsNoTriangle) {
  expect_exact_triangulation({{0, 0, 0}, {5, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}});
}

TEST(OmbraTriangulate, TriangleKeepsItsPointsAndDepth) {
  const OT_Point points[3] = {{0, 0, 7}, {4, 0, 8}, {0, 4, 9}};
  OT_Contour_Set set(3, points, false);
  Triangles triangles;
  set->triangulate(Triangles::collect, &triangles);
  ASSERT_EQ(triangles.list.size(), 1u);
  float z = 0;
  for (const OT_Point* p : triangles.list[0]) z += p->z;
  EXPECT_EQ(z, 24.0f);
}

TEST(OmbraTriangulate, ProjectionDropsTheDominantAxis) {
  // A concave polygon standing in the y-z plane: along z it has no area.
  const std::vector<OT_Point> flat = {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {5, 4, 0}, {0, 10, 0}};
  std::vector<OT_Point> standing;
  for (const OT_Point& p : flat) standing.push_back({3.0f, p.x, p.y});
  OT_Contour_Set set(5, standing.data(), false);
  make_unique(set)->force_projection(OT_Vector{-2.0f, 0.5f, 0.0f});
  Triangles triangles;
  set->triangulate(Triangles::collect, &triangles);
  ASSERT_EQ(triangles.list.size(), 3u);
  double sum = 0.0;
  for (const auto& t : triangles.list) {
    const OT_Point a{t[0]->y, t[0]->z, 0}, b{t[1]->y, t[1]->z, 0}, c{t[2]->y, t[2]->z, 0};
    sum += std::fabs(triangle_area(a, b, c));
  }
  EXPECT_DOUBLE_EQ(sum, std::fabs(signed_area(flat)));
}

TEST(OmbraContourSet, ClosedListDropsItsRepeatedFirstPoint) {
  const OT_Point points[5] = {{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 4, 0}, {0, 0, 0}};
  EXPECT_EQ(OT_Contour_Set(5, points, true)->points.size(), 4u);
  EXPECT_EQ(OT_Contour_Set(5, points, false)->points.size(), 5u);
  EXPECT_EQ(OT_Contour_Set(4, points, true)->points.size(), 4u);
  ASSERT_EQ(OT_Contour_Set(4, points, true)->contour_starts.size(), 1u);
}

TEST(OmbraRankPolygon, StrictlyConvexAndSimpleIsZero) {
  const OT_Point square[4] = {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}};
  const OT_Point clockwise[4] = {{0, 0, 0}, {0, 10, 0}, {10, 10, 0}, {10, 0, 0}};
  const OT_Point triangle[3] = {{0, 0, 0}, {10, 0, 0}, {0, 10, 9}};
  EXPECT_EQ(OB_Rank_Polygon(4, square), OT_Polygon_Rank_Convex);
  EXPECT_EQ(OB_Rank_Polygon(4, clockwise), OT_Polygon_Rank_Convex);
  EXPECT_EQ(OB_Rank_Polygon(3, triangle), OT_Polygon_Rank_Convex);
}

TEST(OmbraRankPolygon, AnythingElseIsOne) {
  const OT_Point arrow[5] = {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {5, 4, 0}, {0, 10, 0}};
  const OT_Point straight[5] = {{0, 0, 0}, {5, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}};
  const OT_Point repeated[5] = {{0, 0, 0}, {10, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}};
  const OT_Point bowtie[4] = {{0, 0, 0}, {10, 10, 0}, {10, 0, 0}, {0, 10, 0}};
  // A pentagram turns the same way at every corner but winds twice.
  OT_Point pentagram[5];
  for (int i = 0; i < 5; ++i) {
    const double angle = i * 4.0 * 3.14159265358979 / 5.0;
    pentagram[i] = {float(10 * std::cos(angle)), float(10 * std::sin(angle)), 0};
  }
  EXPECT_EQ(OB_Rank_Polygon(5, arrow), OT_Polygon_Rank_Complex);
  EXPECT_EQ(OB_Rank_Polygon(5, straight), OT_Polygon_Rank_Complex);
  EXPECT_EQ(OB_Rank_Polygon(5, repeated), OT_Polygon_Rank_Complex);
  EXPECT_EQ(OB_Rank_Polygon(4, bowtie), OT_Polygon_Rank_Complex);
  EXPECT_EQ(OB_Rank_Polygon(5, pentagram), OT_Polygon_Rank_Complex);
  EXPECT_EQ(OB_Rank_Polygon(2, arrow), OT_Polygon_Rank_Complex);
}

TEST(OmbraMatrix, IdentityTranslationAndPerspective) {
  OT_Matrix matrix(new OT_Matrix_Data);
  OT_Point_D out{};
  float w = 0;
  matrix.transform(OT_Point_D{1, 2, 3}, out, &w, 0);
  EXPECT_EQ(out.x, 1);
  EXPECT_EQ(out.y, 2);
  EXPECT_EQ(out.z, 3);
  EXPECT_EQ(w, 1.0f);
  matrix->m[3][0] = 10;  // translation in the row-vector form
  matrix.transform(OT_Point_D{1, 2, 3}, out, nullptr, 0);
  EXPECT_EQ(out.x, 11);
  matrix->m[3][0] = 0;
  matrix->m[2][3] = 0.5;  // w = z / 2 + 1
  matrix.transform(OT_Point_D{4, 6, 2}, out, &w, 0);
  EXPECT_EQ(w, 2.0f);
  EXPECT_EQ(out.x, 2);
  EXPECT_EQ(out.y, 3);
  EXPECT_EQ(out.z, 1);
}

TEST(OmbraVector, NormalizeToUnitLength) {
  OT_Vector v{3, 0, 4};
  v.normalize();
  EXPECT_FLOAT_EQ(v.x, 0.6f);
  EXPECT_FLOAT_EQ(v.z, 0.8f);
  OT_Vector_D d{0, -2, 0};
  d.normalize();
  EXPECT_EQ(d.y, -1.0);
  OT_Vector zero{0, 0, 0};
  zero.normalize();
  EXPECT_EQ(zero.x, 0.0f);
}

TEST(OmbraUserPattern, RowsAreCopiedTightly) {
  const byte source[3 * 4] = {0x01, 0x02, 0xEE, 0xEE, 0x03, 0x04, 0xEE, 0xEE, 0x05, 0x06, 0xEE, 0xEE};
  OT_User_Pattern pattern(new OT_User_Pattern_Data(12, 3, source, 4));
  EXPECT_EQ(pattern->width, 12);
  EXPECT_EQ(pattern->height, 3);
  EXPECT_EQ(pattern->row_bytes, 2);
  const byte expected[6] = {1, 2, 3, 4, 5, 6};
  for (int i = 0; i < 6; ++i) EXPECT_EQ(pattern->bits[i], expected[i]);
  OT_User_Pattern copy = pattern;
  OT_User_Pattern_Data* mine = make_unique(copy);
  EXPECT_NE(mine->bits, pattern->bits);
  EXPECT_EQ(mine->bits[5], 6);
}

bool masked(const Frame_Buffer_Mask& mask, int x, int y) {
  return (mask.image->device_rows[y][x >> 3] & (128 >> (x & 7))) != 0;
}

TEST(OmbraMask, RegionIsClearedAndTheRestSet) {
  Frame_Buffer_Mask mask;
  mask.establish_configuration(20, 10, 100, 200);
  ASSERT_TRUE(mask.image);
  EXPECT_GE(mask.image->row_bytes * 8, 20);
  EXPECT_EQ(mask.image->height, 10);
  // Device square 103..107 x 202..206: window pixels 3..6 x 2..5 (the right
  // and top edges own no pixels).
  const OT_Point square[4] = {{103, 202, 0}, {107, 202, 0}, {107, 206, 0}, {103, 206, 0}};
  OT_Contour_Set clip(4, square, false);
  mask.clear_and_rasterize_mask(clip);
  EXPECT_EQ(mask.key, clip->serial);
  for (int y = 0; y < 10; ++y)
    for (int x = 0; x < 20; ++x) {
      const bool inside = x >= 3 && x <= 6 && y >= 2 && y <= 5;
      ASSERT_EQ(masked(mask, x, y), !inside) << x << "," << y;
    }
}

TEST(OmbraMask, TwoContoursMakeAHole) {
  Frame_Buffer_Mask mask;
  mask.establish_configuration(16, 16, 0, 0);
  OT_Contour_Set clip(new OT_Contour_Set_Data);
  clip->points = {{0, 0, 0}, {16, 0, 0}, {16, 16, 0}, {0, 16, 0}, {4, 4, 0}, {12, 4, 0}, {12, 12, 0}, {4, 12, 0}};
  clip->contour_starts = {0, 4};
  mask.clear_and_rasterize_mask(clip);
  EXPECT_FALSE(masked(mask, 0, 0));
  EXPECT_FALSE(masked(mask, 15, 15));
  EXPECT_FALSE(masked(mask, 3, 8));
  EXPECT_TRUE(masked(mask, 4, 4));
  EXPECT_TRUE(masked(mask, 11, 11));
  EXPECT_FALSE(masked(mask, 12, 11));
}

TEST(OmbraMask, NoRegionMasksEverything) {
  Frame_Buffer_Mask mask;
  mask.establish_configuration(9, 2, 0, 0);
  mask.clear_and_rasterize_mask(OT_Contour_Set());
  EXPECT_EQ(mask.key, 0u);
  for (int x = 0; x < 9; ++x) EXPECT_TRUE(masked(mask, x, 1));
}

}  // namespace
