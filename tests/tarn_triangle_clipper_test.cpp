// The exact triangle clipper: clip_edge, the point-in-triangle test, the
// gradients and clip_triangle_to_rectangle with its attributes.
#include <gtest/gtest.h>

#include <ostream>

#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

#include "pixel/limits.h"
#include "triangles/triangle_clipper.h"

namespace tarn {
namespace {

constexpr OT_Int_Rectangle kBox{0, 100, 0, 100};
constexpr double e = 9.999999960041972e-13;

Clip_Vertex at(double x, double y, double z = 0.0) {
  Clip_Vertex v{};
  v.x = x;
  v.y = y;
  v.z = z;
  return v;
}

Clip_Vertex with_color(Clip_Vertex v, OT_RGB32 color) {
  v.color = color;
  return v;
}

Clip_Vertex with_params(Clip_Vertex v, OT_Parameter params, float w) {
  v.params = params;
  v.w = w;
  return v;
}

Edge_Clip clip(const Clip_Vertex& p, const Clip_Vertex& q, const OT_Int_Rectangle& r = kBox) {
  return clip_edge(p, q, false, false, false, r);
}

OT_Rendition rendition_with(std::uint32_t texture_flags) {
  OT_Rendition rendition(new OT_Rendition_Data);
  rendition.writable_raster()->texture_flags = texture_flags;
  return rendition;
}

using Xyz = std::array<int, 3>;

struct Triangle_Input {
  std::array<OT_DCI_Point, 3> points;
  const OT_RGB32* colors = nullptr;  // three, or none
  const OT_Parameter* params = nullptr;
  std::array<float, 3> w{1.0f, 1.0f, 1.0f};
};

struct Clip_Output {
  int count = -1;
  std::array<OT_DCI_Point, kMaxClipVertices> points{};
  std::array<OT_RGB32, kMaxClipVertices> colors{};
  std::array<OT_Parameter, kMaxClipVertices> params{};
  std::array<float, kMaxClipVertices> w{};

  std::vector<Xyz> xyz() const {
    std::vector<Xyz> out;
    for (int i = 0; i < count && i < kMaxClipVertices; ++i) out.push_back({points[i].x, points[i].y, points[i].z});
    return out;
  }
  std::vector<std::uint32_t> color_words() const {
    std::vector<std::uint32_t> out;
    for (int i = 0; i < count && i < kMaxClipVertices; ++i) out.push_back(colors[i].word());
    return out;
  }
};

Clip_Output clip_triangle(const Triangle_Input& in, const OT_Int_Rectangle& rect, std::uint32_t texture_flags = 0) {
  const OT_Rendition rendition = rendition_with(texture_flags);
  Clip_Output out;
  const OT_RGB32* c = in.colors;
  const OT_Parameter* p = in.params;
  clip_triangle_to_rectangle(rendition, in.points.data(), c, c ? c + 1 : nullptr, c ? c + 2 : nullptr, p,
                             p ? p + 1 : nullptr, p ? p + 2 : nullptr, in.w[0], in.w[1], in.w[2], rect, out.count,
                             out.points.data(), out.colors.data(), out.params.data(), out.w.data());
  return out;
}

std::uint32_t word(int r, int g, int b, int a) { return OT_RGB32::rgba(r, g, b, a).word(); }

// ---- clip_edge: sides, codes and points ----------------------------------

TEST(ClipEdge, BothEndsInsideKeepTheirPoints) {
  const Edge_Clip c = clip(at(10, 20, 5), at(30, 40, 7));
  ASSERT_TRUE(c.visible);
  EXPECT_EQ(c.enter.code, 0);
  EXPECT_EQ(c.enter.x, 10);
  EXPECT_EQ(c.enter.y, 20);
  EXPECT_EQ(c.enter.z, 5);
  EXPECT_EQ(c.exit.code, 0);
  EXPECT_EQ(c.exit.x, 30);
  EXPECT_EQ(c.exit.y, 40);
  EXPECT_EQ(c.exit.z, 7);
}

struct Side_Case {
  const char* name;
  Clip_Vertex p, q;
  int enter_code;
  double enter_x, enter_y, enter_z;
  int exit_code;
  double exit_x, exit_y, exit_z;
};

// Named in test listings by its name alone.
void PrintTo(const Side_Case& s, std::ostream* out) { *out << s.name; }

class ClipEdgeSides : public ::testing::TestWithParam<Side_Case> {};

TEST_P(ClipEdgeSides, CodeAndPointOnEachSide) {
  const Side_Case& s = GetParam();
  const Edge_Clip c = clip(s.p, s.q);
  ASSERT_TRUE(c.visible);
  EXPECT_EQ(c.enter.code, s.enter_code);
  EXPECT_EQ(c.enter.x, s.enter_x);
  EXPECT_EQ(c.enter.y, s.enter_y);
  EXPECT_EQ(c.enter.z, s.enter_z);
  EXPECT_EQ(c.exit.code, s.exit_code);
  EXPECT_EQ(c.exit.x, s.exit_x);
  EXPECT_EQ(c.exit.y, s.exit_y);
  EXPECT_EQ(c.exit.z, s.exit_z);
}

INSTANTIATE_TEST_SUITE_P(
    Sides, ClipEdgeSides,
    ::testing::Values(
        Side_Case{"enter_left", at(-50, 50, 0), at(50, 50, 100), 1, 0, 50, 50, 0, 50, 50, 100},
        Side_Case{"exit_right", at(50, 50, 0), at(150, 50, 100), 0, 50, 50, 0, 4, 100, 50, 50},
        Side_Case{"enter_right", at(150, 20, 0), at(50, 20, 100), 4, 100, 20, 50, 0, 50, 20, 100},
        Side_Case{"exit_left", at(50, 20, 0), at(-50, 20, 100), 0, 50, 20, 0, 1, 0, 20, 50},
        Side_Case{"enter_bottom", at(50, -50, 0), at(50, 50, 100), 8, 50, 0, 50, 0, 50, 50, 100},
        Side_Case{"exit_top", at(50, 50, 0), at(50, 150, 100), 0, 50, 50, 0, 2, 50, 100, 50},
        Side_Case{"enter_top", at(20, 150, 0), at(20, 50, 100), 2, 20, 100, 50, 0, 20, 50, 100},
        Side_Case{"exit_bottom", at(20, 50, 0), at(20, -50, 100), 0, 20, 50, 0, 8, 20, 0, 50},
        Side_Case{"through_left_right", at(-100, 50, 0), at(300, 50, 400), 1, 0, 50, 100, 4, 100, 50, 200},
        // Left then bottom: x = 0 at y = 16, y = 0 at x = 16.
        Side_Case{"corner_cut", at(-32, 48, 0), at(32, -16, 64), 1, 0, 16, 32, 8, 16, 0, 48}),
    [](const ::testing::TestParamInfo<Side_Case>& info) { return std::string(info.param.name); });

TEST(ClipEdge, InvisibleBeyondEachSideAndVisibleOnTheBoundary) {
  // Wholly beyond one side, in either direction.
  EXPECT_FALSE(clip(at(-10, 10), at(-5, 90)).visible);
  EXPECT_FALSE(clip(at(-5, 90), at(-10, 10)).visible);
  EXPECT_FALSE(clip(at(110, 10), at(105, 90)).visible);
  EXPECT_FALSE(clip(at(105, 90), at(110, 10)).visible);
  EXPECT_FALSE(clip(at(10, -10), at(90, -5)).visible);
  EXPECT_FALSE(clip(at(90, -5), at(10, -10)).visible);
  EXPECT_FALSE(clip(at(10, 110), at(90, 105)).visible);
  EXPECT_FALSE(clip(at(90, 105), at(10, 110)).visible);
  // The sides are inclusive: an end on the boundary is visible, one just
  // beyond it is not.
  EXPECT_TRUE(clip(at(-10, 10), at(0, 90)).visible);
  EXPECT_FALSE(clip(at(-10, 10), at(-0.001, 90)).visible);
  EXPECT_TRUE(clip(at(110, 10), at(100, 90)).visible);
  EXPECT_FALSE(clip(at(110, 10), at(100.001, 90)).visible);
  EXPECT_TRUE(clip(at(10, -10), at(90, 0)).visible);
  EXPECT_FALSE(clip(at(10, -10), at(90, -0.001)).visible);
  EXPECT_TRUE(clip(at(10, 110), at(90, 100)).visible);
  EXPECT_FALSE(clip(at(10, 110), at(90, 100.001)).visible);
  // Passing the corner outside: it enters on the left after it has left by
  // the bottom.
  EXPECT_FALSE(clip(at(-32, 16), at(32, -48)).visible);
  EXPECT_FALSE(clip(at(32, -48), at(-32, 16)).visible);
}

TEST(ClipEdge, ToleranceIsOneTrillionthAsFloat) { EXPECT_EQ(kClipTolerance, static_cast<double>(1e-12f)); }

// P = (-1, -1 + 2d), Q = (1, 1 + 2d): it crosses x = 0 at t 0.5 and y = 0 at
// t 0.5 - d, so the bottom is met a hair before the left side.
Edge_Clip enter_near_corner(double d) { return clip(at(-1, -1 + 2 * d), at(1, 1 + 2 * d)); }

TEST(ClipEdge, BottomOverrulesLeftEntryOnlyWithinTolerance) {
  Edge_Clip c = enter_near_corner(0.9 * e);
  ASSERT_TRUE(c.visible);
  EXPECT_EQ(c.enter.code, 8);
  EXPECT_EQ(c.enter.y, 0.0);
  EXPECT_EQ(c.enter.x, 0.0);  // -2d, clamped to the left side

  c = enter_near_corner(1.1 * e);
  ASSERT_TRUE(c.visible);
  EXPECT_EQ(c.enter.code, 1);
  EXPECT_EQ(c.enter.x, 0.0);
  EXPECT_NEAR(c.enter.y, 2.2 * e, 1e-15);

  // A later bottom crossing is an ordinary entry.
  c = enter_near_corner(-1.1 * e);
  ASSERT_TRUE(c.visible);
  EXPECT_EQ(c.enter.code, 8);
  EXPECT_EQ(c.enter.y, 0.0);
}

// In the box (-100..0)^2: P = (-1, -1 - 2d), Q = (1, 1 - 2d) leaves by the
// right side at t 0.5 and by the top at t 0.5 + d.
Edge_Clip exit_near_corner(double d) {
  return clip(at(-1, -1 - 2 * d), at(1, 1 - 2 * d), OT_Int_Rectangle{-100, 0, -100, 0});
}

TEST(ClipEdge, TopOverrulesRightExitOnlyWithinTolerance) {
  Edge_Clip c = exit_near_corner(0.9 * e);
  ASSERT_TRUE(c.visible);
  EXPECT_EQ(c.exit.code, 2);
  EXPECT_EQ(c.exit.y, 0.0);
  EXPECT_EQ(c.exit.x, 0.0);  // 2d, clamped to the right side

  c = exit_near_corner(1.1 * e);
  ASSERT_TRUE(c.visible);
  EXPECT_EQ(c.exit.code, 4);
  EXPECT_EQ(c.exit.x, 0.0);
  EXPECT_NEAR(c.exit.y, -2.2 * e, 1e-15);

  // An earlier top crossing is an ordinary exit.
  c = exit_near_corner(-1.1 * e);
  ASSERT_TRUE(c.visible);
  EXPECT_EQ(c.exit.code, 2);
}

TEST(ClipEdge, LateEntryIsComputedFromTheFarEnd) {
  // Enters at x = 0, t = 1999/2000 = 0.9995. Depth -20 .. 0 is -0.01 there:
  // from the near end that is exact in doubles, from P it is not.
  const Edge_Clip c = clip(at(-1999, 50, -20), at(1, 50, 0));
  ASSERT_TRUE(c.visible);
  EXPECT_EQ(c.enter.code, 1);
  EXPECT_EQ(c.enter.x, 0);
  EXPECT_EQ(c.enter.y, 50);
  EXPECT_EQ(c.enter.z, -0.01);
  EXPECT_NE(-20.0 + 20.0 * (1999.0 / 2000.0), -0.01);  // what P's side would give
  EXPECT_EQ(c.exit.code, 0);
  EXPECT_EQ(c.exit.x, 1);
  EXPECT_EQ(c.exit.y, 50);
}

TEST(ClipEdge, LateEntryParametersComeFromTheFarEnd) {
  // u from -20 to 0 is -0.01 at t 0.9995. The 32-bit t near 1 is too coarse
  // for that; near 0 it is not.
  const Clip_Vertex p = with_params(at(-1999, 50), {-20.0f, 0.0f, 0.0f}, 1.0f);
  const Clip_Vertex q = with_params(at(1, 50), {0.0f, 0.0f, 0.0f}, 1.0f);
  const Edge_Clip c = clip_edge(p, q, false, true, false, kBox);
  ASSERT_TRUE(c.visible);
  EXPECT_NEAR(c.enter.params.u, -0.01, 2e-9);
  EXPECT_EQ(c.enter.w, 1.0f);
}

TEST(ClipEdge, ReversalStartsAbove0999) {
  // The exit at Q, z from -20 to 0.1: computed from P it is
  // -20 + (0.1 + 20), which is not 0.1 in doubles; from Q it is Q's own z.
  const double from_p = -20.0 + (0.1 + 20.0) * 1.0;
  ASSERT_NE(from_p, 0.1);
  // t0 = 999/1000: not above 0.999, computed from P.
  Edge_Clip c = clip(at(-999, 50, -20), at(1, 50, 0.1));
  ASSERT_TRUE(c.visible);
  EXPECT_EQ(c.enter.code, 1);
  EXPECT_EQ(c.exit.z, from_p);
  // t0 = 9991/10000: above it, computed from Q.
  c = clip(at(-9991, 50, -20), at(9, 50, 0.1));
  ASSERT_TRUE(c.visible);
  EXPECT_EQ(c.enter.code, 1);
  EXPECT_EQ(c.enter.x, 0);
  EXPECT_EQ(c.exit.code, 0);
  EXPECT_EQ(c.exit.x, 9);
  EXPECT_EQ(c.exit.z, 0.1);
}

TEST(ClipEdge, ReversedEdgeKeepsTheCallersDirection) {
  // Both ends outside, the piece inside in the last 0.02% of the edge.
  const Edge_Clip c = clip(at(-1000000, 50, -1000000), at(150, 50, 150));
  ASSERT_TRUE(c.visible);
  EXPECT_EQ(c.enter.code, 1);
  EXPECT_EQ(c.enter.x, 0);
  EXPECT_EQ(c.enter.y, 50);
  EXPECT_NEAR(c.enter.z, 0, 1e-9);
  EXPECT_EQ(c.exit.code, 4);
  EXPECT_EQ(c.exit.x, 100);
  EXPECT_EQ(c.exit.y, 50);
  EXPECT_NEAR(c.exit.z, 100, 1e-9);
}

TEST(ClipEdge, ColoursInterpolateAndTruncate) {
  // t 0.25 into the box from the left; t 0.75 leaving it on the right.
  const Clip_Vertex p = with_color(at(-25, 50), OT_RGB32::rgba(255, 0, 10, 3));
  const Clip_Vertex q = with_color(at(75, 50), OT_RGB32::rgba(0, 255, 11, 200));
  Edge_Clip c = clip_edge(p, q, true, false, false, kBox);
  ASSERT_TRUE(c.visible);
  // 191.25, 63.75, 10.25, 52.25
  EXPECT_EQ(c.enter.color, OT_RGB32::rgba(191, 63, 10, 52));
  EXPECT_EQ(c.exit.color, q.color);

  const Clip_Vertex r = with_color(at(25, 50), OT_RGB32::rgba(0, 255, 11, 200));
  const Clip_Vertex s = with_color(at(125, 50), OT_RGB32::rgba(255, 0, 10, 3));
  c = clip_edge(r, s, true, false, false, kBox);
  ASSERT_TRUE(c.visible);
  EXPECT_EQ(c.enter.color, r.color);
  // 191.25, 63.75, 10.25, 52.25 again, from the other side
  EXPECT_EQ(c.exit.color, OT_RGB32::rgba(191, 63, 10, 52));

  // Without colours nothing is carried.
  c = clip_edge(p, q, false, false, false, kBox);
  EXPECT_EQ(c.enter.color, OT_RGB32{});
}

TEST(ClipEdge, ParametersWithAndWithoutPerspective) {
  // In the box 0..50 x 0..100: entering half way along, at x = 0.
  // w 1 -> 3: r = 3, t' = 0.5 / ((1 - 3) 0.5 + 3) = 0.25.
  const OT_Int_Rectangle box{0, 50, 0, 100};
  const Clip_Vertex p = with_params(at(-100, 50), {0.0f, 10.0f, -4.0f}, 1.0f);
  const Clip_Vertex q = with_params(at(100, 50), {8.0f, 2.0f, 4.0f}, 3.0f);
  Edge_Clip c = clip_edge(p, q, false, true, true, box);
  ASSERT_TRUE(c.visible);
  EXPECT_EQ(c.enter.params.u, 2.0f);
  EXPECT_EQ(c.enter.params.v, 8.0f);
  EXPECT_EQ(c.enter.params.r, -2.0f);
  EXPECT_EQ(c.enter.w, 1.5f);
  // Leaving at x = 50, t = 0.75: t' = 0.75 / (-1.5 + 3) = 0.5.
  EXPECT_EQ(c.exit.params.u, 4.0f);
  EXPECT_EQ(c.exit.params.v, 6.0f);
  EXPECT_EQ(c.exit.params.r, 0.0f);
  EXPECT_EQ(c.exit.w, 2.0f);

  c = clip_edge(p, q, false, true, false, box);
  ASSERT_TRUE(c.visible);
  EXPECT_EQ(c.enter.params.u, 4.0f);
  EXPECT_EQ(c.enter.params.v, 6.0f);
  EXPECT_EQ(c.enter.params.r, 0.0f);
  EXPECT_EQ(c.enter.w, 2.0f);
  EXPECT_EQ(c.exit.params.u, 6.0f);
  EXPECT_EQ(c.exit.w, 2.5f);
}

// ---- point_in_triangle ------------------------------------------------------

TEST(ClipPointInTriangle, EachEdgeFromBothSides) {
  const Clip_Vertex p0 = at(0, 0), p1 = at(10, 0), p2 = at(0, 10);
  EXPECT_TRUE(point_in_triangle(2, 2, p0, p1, p2));
  // Edge p0-p1 (y = 0) is in.
  EXPECT_TRUE(point_in_triangle(5, 0, p0, p1, p2));
  EXPECT_FALSE(point_in_triangle(5, -0.001, p0, p1, p2));
  // Edge p1-p2 (x + y = 10) is in.
  EXPECT_TRUE(point_in_triangle(5, 5, p0, p1, p2));
  EXPECT_FALSE(point_in_triangle(5, 5.001, p0, p1, p2));
  // Edge p0-p2 (x = 0) is out.
  EXPECT_FALSE(point_in_triangle(0, 5, p0, p1, p2));
  EXPECT_TRUE(point_in_triangle(0.001, 5, p0, p1, p2));
  EXPECT_FALSE(point_in_triangle(-0.001, 5, p0, p1, p2));
  // Of the corners only p1 lies off the edge p0-p2.
  EXPECT_FALSE(point_in_triangle(0, 0, p0, p1, p2));
  EXPECT_TRUE(point_in_triangle(10, 0, p0, p1, p2));
  EXPECT_FALSE(point_in_triangle(0, 10, p0, p1, p2));
}

TEST(ClipPointInTriangle, VerticalFirstEdge) {
  // dx1 = 0: the other branch. Edge p0-p2 is now y = 0.
  const Clip_Vertex p0 = at(0, 0), p1 = at(0, 10), p2 = at(10, 0);
  EXPECT_TRUE(point_in_triangle(2, 2, p0, p1, p2));
  EXPECT_FALSE(point_in_triangle(5, 0, p0, p1, p2));
  EXPECT_TRUE(point_in_triangle(5, 0.001, p0, p1, p2));
  EXPECT_TRUE(point_in_triangle(0, 5, p0, p1, p2));
  EXPECT_FALSE(point_in_triangle(-0.001, 5, p0, p1, p2));
  EXPECT_TRUE(point_in_triangle(5, 5, p0, p1, p2));
  EXPECT_FALSE(point_in_triangle(5, 5.001, p0, p1, p2));
  EXPECT_FALSE(point_in_triangle(0, 0, p0, p1, p2));
  EXPECT_TRUE(point_in_triangle(0, 10, p0, p1, p2));
  EXPECT_FALSE(point_in_triangle(10, 0, p0, p1, p2));
}

TEST(ClipPointInTriangle, OtherWindingAndDegenerateTriangles) {
  // Clockwise: the same point set, the same answers.
  EXPECT_TRUE(point_in_triangle(8, 3, at(0, 0), at(10, 10), at(10, 0)));
  EXPECT_FALSE(point_in_triangle(8, 9, at(0, 0), at(10, 10), at(10, 0)));
  EXPECT_FALSE(point_in_triangle(5, 0, at(0, 0), at(10, 10), at(10, 0)));  // on p0-p2
  // No area: nothing is inside.
  EXPECT_FALSE(point_in_triangle(5, 5, at(0, 0), at(10, 10), at(20, 20)));
  EXPECT_FALSE(point_in_triangle(0, 5, at(0, 0), at(0, 0), at(0, 10)));
  EXPECT_FALSE(point_in_triangle(0, 5, at(0, 0), at(0, 10), at(0, 20)));
}

// ---- Gradients --------------------------------------------------------------

TEST(ClipGradient, PlaneOfATriangle) {
  // a = 2x - 3y + 7, in both windings.
  const auto a = [](const Clip_Vertex& v) { return 2 * v.x - 3 * v.y + 7; };
  const Clip_Vertex p0 = at(1, 2), p1 = at(17, 5), p2 = at(4, 13);
  Plane_Gradient g = plane_gradient(p0, p1, p2, a(p0), a(p1), a(p2));
  EXPECT_DOUBLE_EQ(g.x, 2.0);
  EXPECT_DOUBLE_EQ(g.y, -3.0);
  g = plane_gradient(p0, p2, p1, a(p0), a(p2), a(p1));
  EXPECT_DOUBLE_EQ(g.x, 2.0);
  EXPECT_DOUBLE_EQ(g.y, -3.0);
}

TEST(ClipGradient, FlatTrianglesTakeTheSlopeOfAnEdge) {
  // Collinear: slopes along the first edge, even where the second edge
  // would give others (100 / 20, 100 / 40).
  Plane_Gradient g = plane_gradient(at(0, 0), at(10, 20), at(20, 40), 0, 30, 100);
  EXPECT_EQ(g.x, 3.0);
  EXPECT_EQ(g.y, 1.5);
  // p1 on p0: the second edge.
  g = plane_gradient(at(0, 0), at(0, 0), at(4, 8), 0, 5, 12);
  EXPECT_EQ(g.x, 3.0);
  EXPECT_EQ(g.y, 1.5);
  // Vertical: no x slope.
  g = plane_gradient(at(5, 0), at(5, 10), at(5, 30), 0, 20, 60);
  EXPECT_EQ(g.x, 0.0);
  EXPECT_EQ(g.y, 2.0);
  // Horizontal: no y slope.
  g = plane_gradient(at(0, 7), at(4, 7), at(9, 7), 1, 9, 19);
  EXPECT_EQ(g.x, 2.0);
  EXPECT_EQ(g.y, 0.0);
  // One point: nothing.
  g = plane_gradient(at(3, 3), at(3, 3), at(3, 3), 1, 2, 3);
  EXPECT_EQ(g.x, 0.0);
  EXPECT_EQ(g.y, 0.0);
}

// ---- clip_triangle_to_rectangle -----------------------------------------------

double area2(double ax, double ay, double bx, double by, double cx, double cy) {
  return (bx - ax) * (cy - ay) - (cx - ax) * (by - ay);
}

// The triangle cut to the rectangle by half planes, independently of the
// clipper.
std::vector<std::array<double, 2>> reference_polygon(const std::array<OT_DCI_Point, 3>& t,
                                                     const OT_Int_Rectangle& r) {
  std::vector<std::array<double, 2>> poly;
  for (const OT_DCI_Point& p : t) poly.push_back({double(p.x), double(p.y)});
  const auto cut = [&](auto inside, auto cross) {
    std::vector<std::array<double, 2>> out;
    for (std::size_t i = 0; i < poly.size(); ++i) {
      const auto& a = poly[i];
      const auto& b = poly[(i + 1) % poly.size()];
      if (inside(a)) {
        out.push_back(a);
        if (!inside(b)) out.push_back(cross(a, b));
      } else if (inside(b)) {
        out.push_back(cross(a, b));
      }
    }
    poly = out;
  };
  const auto at_x = [](double x) {
    return [x](const std::array<double, 2>& a, const std::array<double, 2>& b) {
      const double t = (x - a[0]) / (b[0] - a[0]);
      return std::array<double, 2>{x, a[1] + (b[1] - a[1]) * t};
    };
  };
  const auto at_y = [](double y) {
    return [y](const std::array<double, 2>& a, const std::array<double, 2>& b) {
      const double t = (y - a[1]) / (b[1] - a[1]);
      return std::array<double, 2>{a[0] + (b[0] - a[0]) * t, y};
    };
  };
  cut([&](const auto& a) { return a[0] >= r.left; }, at_x(r.left));
  cut([&](const auto& a) { return a[0] <= r.right; }, at_x(r.right));
  cut([&](const auto& a) { return a[1] >= r.bottom; }, at_y(r.bottom));
  cut([&](const auto& a) { return a[1] <= r.top; }, at_y(r.top));
  return poly;
}

class ClipFarTriangle : public ::testing::TestWithParam<std::array<OT_DCI_Point, 3>> {};

TEST_P(ClipFarTriangle, StripCoversTheClippedPolygonOnce) {
  const std::array<OT_DCI_Point, 3> t = GetParam();
  const OT_Int_Rectangle r = kWalkLimits;
  const Clip_Output out = clip_triangle({t}, r);
  ASSERT_GE(out.count, 3);
  ASSERT_LE(out.count, 8);

  const auto poly = reference_polygon(t, r);
  ASSERT_GE(poly.size(), 3u);
  double poly_area = 0, perimeter = 0;
  for (std::size_t i = 0; i < poly.size(); ++i) {
    const auto& a = poly[i];
    const auto& b = poly[(i + 1) % poly.size()];
    poly_area += a[0] * b[1] - b[0] * a[1];
    perimeter += std::hypot(b[0] - a[0], b[1] - a[1]);
  }
  poly_area /= 2;
  const double sign = poly_area > 0 ? 1 : -1;

  for (int i = 0; i < out.count; ++i) {
    const OT_DCI_Point& p = out.points[i];
    EXPECT_GE(p.x, r.left);
    EXPECT_LE(p.x, r.right);
    EXPECT_GE(p.y, r.bottom);
    EXPECT_LE(p.y, r.top);
    // On or in the polygon, up to the rounding of the point.
    for (std::size_t k = 0; k < poly.size(); ++k) {
      const auto& a = poly[k];
      const auto& b = poly[(k + 1) % poly.size()];
      const double d = sign * area2(a[0], a[1], b[0], b[1], p.x, p.y) / std::hypot(b[0] - a[0], b[1] - a[1]);
      EXPECT_GE(d, -1.0) << "point " << i;
    }
  }
  // The strip's triangles turn alternately, and their areas add up to the
  // polygon's: no overlap, no gap.
  ASSERT_GT(out.count, 2);
  const double first = area2(out.points[0].x, out.points[0].y, out.points[1].x, out.points[1].y, out.points[2].x,
                             out.points[2].y);
  ASSERT_NE(first, 0.0);
  const double turn = first > 0 ? 1 : -1;
  double strip_area = 0;
  for (int i = 0; i + 2 < out.count; ++i) {
    const OT_DCI_Point &a = out.points[i], &b = out.points[i + 1], &c = out.points[i + 2];
    const double s = area2(a.x, a.y, b.x, b.y, c.x, c.y) / 2 * ((i & 1) ? -1 : 1) * turn;
    EXPECT_GE(s, 0.0) << "triangle " << i;
    strip_area += s;
  }
  EXPECT_NEAR(strip_area, std::fabs(poly_area), perimeter);
}

INSTANTIATE_TEST_SUITE_P(
    Far, ClipFarTriangle,
    ::testing::Values(std::array<OT_DCI_Point, 3>{{{1000, 2000, 0}, {1000000, 15000, 0}, {-3000, 26000, 0}}},
                      std::array<OT_DCI_Point, 3>{{{1000, 2000, 0}, {-3000, 26000, 0}, {1000000, 15000, 0}}},
                      std::array<OT_DCI_Point, 3>{{{-1000000, -500000, 0}, {1000000, 10000, 0}, {10000, 2000000, 0}}},
                      std::array<OT_DCI_Point, 3>{{{1000000, 40000, 0}, {-30000, 20000, 0}, {14000, -9000, 0}}},
                      std::array<OT_DCI_Point, 3>{{{0, 0, 0}, {1000000, 0, 0}, {0, 20000, 0}}}));

TEST(ClipTriangle, FarPointExactStrip) {
  // z = x on the bottom edge. The long edge meets x = 28760 at
  // y = 20000 (1 - 28760 / 1000000) = 19424.8.
  const Clip_Output out = clip_triangle({{{{0, 0, 0}, {1000000, 0, 1000000}, {0, 20000, 0}}}}, kWalkLimits);
  ASSERT_EQ(out.count, 4);
  EXPECT_EQ(out.xyz(), (std::vector<Xyz>{{28760, 0, 28760}, {28760, 19425, 28760}, {0, 0, 0}, {0, 20000, 0}}));
}

TEST(ClipTriangle, SevenPointsInStripOrder) {
  // Three corners cut off, the top right one kept; z = x + 2y.
  const Clip_Output ccw = clip_triangle({{{{56, -36, -16}, {380, 450, 1280}, {-25, 45, 65}}}}, kBox);
  ASSERT_EQ(ccw.count, 7);
  // Around the polygon from where the first edge enters: (80,0), (100,30),
  // the corner (100,100), (30,100), (0,70), (0,20), (20,0).
  EXPECT_EQ(ccw.xyz(), (std::vector<Xyz>{{80, 0, 80},
                                         {100, 30, 160},
                                         {20, 0, 20},
                                         {100, 100, 300},
                                         {0, 20, 40},
                                         {30, 100, 230},
                                         {0, 70, 140}}));

  const Clip_Output cw = clip_triangle({{{{56, -36, -16}, {-25, 45, 65}, {380, 450, 1280}}}}, kBox);
  ASSERT_EQ(cw.count, 7);
  // (20,0), (0,20), (0,70), (30,100), (100,100), (100,30), (80,0).
  EXPECT_EQ(cw.xyz(), (std::vector<Xyz>{{20, 0, 20},
                                        {0, 20, 40},
                                        {80, 0, 80},
                                        {0, 70, 140},
                                        {100, 30, 160},
                                        {30, 100, 230},
                                        {100, 100, 300}}));
}

TEST(ClipTriangle, StripOrderOfFourAndThreePoints) {
  // p0 inside; the outline leaves by the bottom at (50,0), the far edge
  // misses the box, the corner (100,0) is passed, and it comes back by the
  // right side at (100,50): list (50,0) (100,0) (100,50) p0, strip 0 1 3 2.
  Clip_Output out = clip_triangle({{{{50, 50, 0}, {50, -50, 0}, {200, 50, 0}}}}, kBox);
  ASSERT_EQ(out.count, 4);
  EXPECT_EQ(out.xyz(), (std::vector<Xyz>{{50, 0, 0}, {100, 0, 0}, {50, 50, 0}, {100, 50, 0}}));

  // All inside: the triangle itself, p0 last in the list.
  out = clip_triangle({{{{10, 10, 1}, {90, 10, 2}, {50, 90, 3}}}}, kBox);
  ASSERT_EQ(out.count, 3);
  EXPECT_EQ(out.xyz(), (std::vector<Xyz>{{90, 10, 2}, {50, 90, 3}, {10, 10, 1}}));
}

TEST(ClipTriangle, EdgeThroughACornerLeavesAPointTwice) {
  // The edge p1-p2 only touches the corner (100,100): it is visible, and
  // its entry and exit are both kept.
  const Clip_Output out = clip_triangle({{{{50, 50, 0}, {150, 50, 0}, {50, 150, 0}}}}, kBox);
  ASSERT_EQ(out.count, 5);
  EXPECT_EQ(out.xyz(), (std::vector<Xyz>{{100, 50, 0}, {100, 100, 0}, {50, 50, 0}, {100, 100, 0}, {50, 100, 0}}));
}

TEST(ClipTriangle, TwoCornersInOneWalk) {
  // p0 inside; the outline leaves on the left, the far edge passes above,
  // and it comes back on the right: the walk passes the two top corners.
  static const OT_RGB32 colors[3] = {OT_RGB32::rgba(0, 200, 10, 255), OT_RGB32::rgba(255, 7, 91, 255),
                                     OT_RGB32::rgba(255, 101, 249, 0)};
  Triangle_Input in{{{{50, 50, 0}, {-950, 150, 0}, {1050, 150, 0}}}};
  in.colors = colors;
  const Clip_Output out = clip_triangle(in, kBox);
  ASSERT_EQ(out.count, 5);
  // List (0,55), (0,100), (100,100), (100,55), (50,50).
  EXPECT_EQ(out.xyz(), (std::vector<Xyz>{{0, 55, 0}, {0, 100, 0}, {50, 50, 0}, {100, 100, 0}, {100, 55, 0}}));
  // Edges: 12.75 190.35 14.05 255 and 12.75 195.05 21.95 242.25, truncated.
  // Corners from the plane: 127.5 124.65 86.05 197.625 and 127.5 129.35
  // 93.95 184.875, truncated.
  EXPECT_EQ(out.color_words(), (std::vector<std::uint32_t>{word(12, 190, 14, 255), word(127, 124, 86, 197),
                                                           word(0, 200, 10, 255), word(127, 129, 93, 184),
                                                           word(12, 195, 21, 242)}));
}

TEST(ClipTriangle, WhollyOutsideGivesNothing) {
  // Beyond the right side, around a corner, and around the box but with
  // the box outside the triangle.
  EXPECT_LT(clip_triangle({{{{200, 10, 0}, {300, 50, 0}, {250, 90, 0}}}}, kBox).count, 3);
  EXPECT_LT(clip_triangle({{{{-50, 10, 0}, {10, -50, 0}, {-50, -50, 0}}}}, kBox).count, 3);
  EXPECT_LT(clip_triangle({{{{-1000, 150, 0}, {1000, 150, 0}, {0, 2000, 0}}}}, kBox).count, 3);
  EXPECT_LT(clip_triangle({{{{-100000, 200000, 0}, {300000, 200000, 0}, {0, 300000, 0}}}}, kWalkLimits).count, 3);
}

TEST(ClipTriangle, CoveringTriangleGivesTheFourCorners) {
  // z = 0.5x + 0.25y + 1000, both windings.
  const std::vector<Xyz> corners{
      {-4000, -4000, -2000}, {-4000, 28760, 6190}, {28760, -4000, 14380}, {28760, 28760, 22570}};
  Clip_Output out =
      clip_triangle({{{{-100000, -100000, -74000}, {300000, -100000, 126000}, {-100000, 300000, 26000}}}},
                    kWalkLimits);
  ASSERT_EQ(out.count, 4);
  EXPECT_EQ(out.xyz(), corners);
  out = clip_triangle({{{{-100000, -100000, -74000}, {-100000, 300000, 26000}, {300000, -100000, 126000}}}},
                      kWalkLimits);
  ASSERT_EQ(out.count, 4);
  EXPECT_EQ(out.xyz(), corners);
}

TEST(ClipTriangle, CornerColoursAreClamped) {
  // A sliver 1e8 long around the point (0, 0), red 255 along the edge
  // p0-p1 a pixel away. With the gradients held in 32 bits the plane gives
  // about 275 for red and -20 for green there, which must not wrap.
  static const OT_RGB32 colors[3] = {OT_RGB32::rgba(255, 0, 100, 255), OT_RGB32::rgba(255, 0, 100, 255),
                                     OT_RGB32::rgba(0, 255, 100, 255)};
  Triangle_Input in{{{{-100000000, -100000039, 0}, {100000000, 100000040, 0}, {100000000, 99999979, 0}}}};
  in.colors = colors;
  const Clip_Output out = clip_triangle(in, OT_Int_Rectangle{0, 0, 0, 0});
  ASSERT_EQ(out.count, 4);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(out.colors[i].r, 255) << i;
    EXPECT_EQ(out.colors[i].g, 0) << i;
    EXPECT_EQ(out.colors[i].b, 100) << i;
    EXPECT_EQ(out.colors[i].a, 255) << i;
  }
}

TEST(ClipTriangle, PerspectiveParametersAtCorners) {
  // 1/w and u/w, v/w are linear on the screen: 1/w = 1 - 0.01 (x + 10),
  // u/w = 0.01 (x + 10), v/w = 0.02 (y + 10). At the box corners:
  // (0,0): w 10/9, u 1/9, v 2/9; (0,10): v 4/9; (10,0): w 5/4, u 1/4, v 1/4;
  // (10,10): v 1/2.
  static const OT_Parameter params[3] = {{0, 0, 3}, {1, 0, 3}, {0, 1, 3}};
  Triangle_Input in{{{{-10, -10, 0}, {40, -10, 0}, {-10, 40, 0}}}};
  in.params = params;
  in.w = {1.0f, 2.0f, 1.0f};
  const OT_Int_Rectangle box{0, 10, 0, 10};

  Clip_Output out = clip_triangle(in, box, 1);
  ASSERT_EQ(out.count, 4);
  const double w[4] = {10.0 / 9, 10.0 / 9, 1.25, 1.25};
  const double u[4] = {1.0 / 9, 1.0 / 9, 0.25, 0.25};
  const double v[4] = {2.0 / 9, 4.0 / 9, 0.25, 0.5};
  for (int i = 0; i < 4; ++i) {
    EXPECT_NEAR(out.w[i], w[i], 1e-6) << i;
    EXPECT_NEAR(out.params[i].u, u[i], 1e-6) << i;
    EXPECT_NEAR(out.params[i].v, v[i], 1e-6) << i;
    EXPECT_NEAR(out.params[i].r, 3.0, 1e-6) << i;
  }

  // Without the flag (bit 1 alone does not ask for it): linear, u = 0.02
  // (x + 10), v = 0.02 (y + 10), w = 1 + 0.02 (x + 10).
  for (std::uint32_t flags : {0u, 2u}) {
    out = clip_triangle(in, box, flags);
    ASSERT_EQ(out.count, 4);
    const double lw[4] = {1.2, 1.2, 1.4, 1.4};
    const double lu[4] = {0.2, 0.2, 0.4, 0.4};
    const double lv[4] = {0.2, 0.4, 0.2, 0.4};
    for (int i = 0; i < 4; ++i) {
      EXPECT_NEAR(out.w[i], lw[i], 1e-6) << i;
      EXPECT_NEAR(out.params[i].u, lu[i], 1e-6) << i;
      EXPECT_NEAR(out.params[i].v, lv[i], 1e-6) << i;
    }
  }
}

// p0 inside; the outline leaves on the right at (100,50), t 0.5 of p0-p1,
// passes the corner (100,100) and comes back at (50,100), t 6/11 of p2-p0.
// List (100,50) (100,100) (50,100) p0, strip 0 1 3 2.
const Triangle_Input kCornerTriangle{{{{50, 50, 0}, {150, 50, 0}, {50, 160, 0}}}};
const std::vector<Xyz> kCornerStrip{{100, 50, 0}, {100, 100, 0}, {50, 50, 0}, {50, 100, 0}};

TEST(ClipTriangle, PerspectiveParametersOnEdgesAndCorner) {
  static const OT_Parameter params[3] = {{0, 0, 1}, {8, 0, 1}, {0, 11, 1}};
  Triangle_Input in = kCornerTriangle;
  in.params = params;
  in.w = {1.0f, 3.0f, 1.0f};

  Clip_Output out = clip_triangle(in, kBox, 1);
  ASSERT_EQ(out.count, 4);
  EXPECT_EQ(out.xyz(), kCornerStrip);
  // (100,50): w 1 -> 3 at t 0.5 gives t' 0.25.
  EXPECT_EQ(out.params[0].u, 2.0f);
  EXPECT_EQ(out.params[0].v, 0.0f);
  EXPECT_EQ(out.params[0].r, 1.0f);
  EXPECT_EQ(out.w[0], 1.5f);
  // (100,100): 1/w = 1 - (x - 50) / 150, u/w = 8 (x - 50) / 300,
  // v/w = (y - 50) / 10 are linear on the screen: w 1.5, u 2, v 7.5.
  EXPECT_NEAR(out.params[1].u, 2.0, 1e-5);
  EXPECT_NEAR(out.params[1].v, 7.5, 1e-5);
  EXPECT_NEAR(out.params[1].r, 1.0, 1e-5);
  EXPECT_NEAR(out.w[1], 1.5, 1e-6);
  // p0 itself.
  EXPECT_EQ(out.params[2].u, 0.0f);
  EXPECT_EQ(out.params[2].v, 0.0f);
  EXPECT_EQ(out.w[2], 1.0f);
  // (50,100): equal w, so t' = t: v = 11 (1 - 6/11) = 5.
  EXPECT_EQ(out.params[3].u, 0.0f);
  EXPECT_FLOAT_EQ(out.params[3].v, 5.0f);
  EXPECT_EQ(out.w[3], 1.0f);

  // Without the flag, all linear.
  out = clip_triangle(in, kBox, 0);
  ASSERT_EQ(out.count, 4);
  EXPECT_EQ(out.params[0].u, 4.0f);
  EXPECT_EQ(out.w[0], 2.0f);
  EXPECT_NEAR(out.params[1].u, 4.0, 1e-5);
  EXPECT_NEAR(out.params[1].v, 5.0, 1e-5);
  EXPECT_NEAR(out.w[1], 2.0, 1e-6);
  EXPECT_FLOAT_EQ(out.params[3].v, 5.0f);
}

TEST(ClipTriangle, AbsentAttributesAreLeftAlone) {
  const Triangle_Input in = kCornerTriangle;
  const OT_Rendition rendition = rendition_with(1);
  int count = -1;
  OT_DCI_Point points[kMaxClipVertices];
  OT_RGB32 colors[kMaxClipVertices];
  OT_Parameter params[kMaxClipVertices];
  float w[kMaxClipVertices];
  for (int i = 0; i < kMaxClipVertices; ++i) {
    colors[i] = OT_RGB32::rgba(1, 2, 3, 4);
    params[i] = {7, 7, 7};
    w[i] = 7;
  }
  clip_triangle_to_rectangle(rendition, in.points.data(), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 0,
                             0, 0, kBox, count, points, colors, params, w);
  ASSERT_EQ(count, 4);
  for (int i = 0; i < kMaxClipVertices; ++i) {
    EXPECT_EQ(colors[i], OT_RGB32::rgba(1, 2, 3, 4));
    EXPECT_EQ(params[i].u, 7);
    EXPECT_EQ(w[i], 7);
  }
  // And null output arrays for them are not written.
  clip_triangle_to_rectangle(rendition, in.points.data(), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 0,
                             0, 0, kBox, count, points, nullptr, nullptr, nullptr);
  EXPECT_EQ(count, 4);
}

TEST(ClipTriangle, DegenerateTriangle) {
  // All three points on y = 50, crossing the box: D = 0. The outline runs
  // out and back along the line; every value stays finite.
  static const OT_RGB32 colors[3] = {OT_RGB32::rgba(0, 0, 0, 0), OT_RGB32::rgba(200, 200, 200, 200),
                                     OT_RGB32::rgba(100, 100, 100, 100)};
  static const OT_Parameter params[3] = {{0, 0, 0}, {300, 0, 0}, {150, 0, 0}};
  Triangle_Input in{{{{-100, 50, -100}, {200, 50, 200}, {50, 50, 50}}}};
  in.colors = colors;
  in.params = params;
  in.w = {1.0f, 1.0f, 1.0f};
  for (std::uint32_t flags : {0u, 1u}) {
    const Clip_Output out = clip_triangle(in, kBox, flags);
    // (0,50) (100,50) in, (100,50) back, p2, (0,50) out.
    ASSERT_EQ(out.count, 5);
    for (int i = 0; i < out.count; ++i) {
      EXPECT_EQ(out.points[i].y, 50);
      EXPECT_GE(out.points[i].x, 0);
      EXPECT_LE(out.points[i].x, 100);
      EXPECT_EQ(out.points[i].z, out.points[i].x);
      EXPECT_TRUE(std::isfinite(out.params[i].u)) << i;
      EXPECT_NEAR(out.params[i].u, out.points[i].x + 100, 1e-3) << i;
      EXPECT_TRUE(std::isfinite(out.w[i])) << i;
    }
  }
}

TEST(ClipTriangle, OutputRoundsHalvesUpward) {
  // The first edge enters x = -10 at y = z = -2.5 (and +2.5 mirrored),
  // and the bottom at x = -2.5.
  const OT_Int_Rectangle box{-10, 10, -10, 10};
  Clip_Output out = clip_triangle({{{{-20, -5, -5}, {0, 0, 0}, {-20, 0, 0}}}}, box);
  ASSERT_EQ(out.count, 3);
  EXPECT_EQ(out.xyz(), (std::vector<Xyz>{{-10, -2, -2}, {0, 0, 0}, {-10, 0, 0}}));

  out = clip_triangle({{{{-20, 5, 5}, {0, 0, 0}, {-20, 0, 0}}}}, box);
  ASSERT_EQ(out.count, 3);
  EXPECT_EQ(out.xyz(), (std::vector<Xyz>{{-10, 3, 3}, {0, 0, 0}, {-10, 0, 0}}));

  out = clip_triangle({{{{-5, -20, -5}, {0, 0, 0}, {0, -20, 0}}}}, box);
  ASSERT_EQ(out.count, 3);
  EXPECT_EQ(out.points[0].x, -2);
  EXPECT_EQ(out.points[0].y, -10);
  EXPECT_EQ(out.points[0].z, -2);
}

}  // namespace
}  // namespace tarn
