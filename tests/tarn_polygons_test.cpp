// Polygons: a triangle as it stands, a convex polygon of the float forms as
// one strip, anything else through the triangulator into the float slots;
// the fill of a concave polygon; the outline depth bias of the float forms.
#include <cmath>
#include <numbers>
#include <vector>

#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

// ---- Recording the polytriangle slots ----------------------------------------

enum class Slot { d2, dc, d2i, dci };

struct Call {
  Slot slot;
  bool colorized;
  std::vector<OT_Point> points;
  const OT_RGB32* color;
  bool single;
  std::int32_t depth_bias;
  const OT_Rendition_Data* rendition;
};
std::vector<Call> calls;

template <Slot kSlot>
void record_float(OT_Renderer_Data*, const OT_Rendition& r, int count, const OT_Point* points) {
  calls.push_back({kSlot, false, {points, points + count}, nullptr, false, r->face->depth_bias, r.get()});
}
template <Slot kSlot>
void record_float_colorized(OT_Renderer_Data*, const OT_Rendition& r, int count, const OT_Point* points,
                            const OT_RGB32* color, bool single) {
  calls.push_back({kSlot, true, {points, points + count}, color, single, r->face->depth_bias, r.get()});
}
std::vector<OT_Point> to_float(int count, const OT_DCI_Point* points) {
  std::vector<OT_Point> out;
  for (int i = 0; i < count; ++i)
    out.push_back({float(points[i].x), float(points[i].y), float(points[i].z)});
  return out;
}
template <Slot kSlot>
void record_integer(OT_Renderer_Data*, const OT_Rendition& r, int count, const OT_DCI_Point* points) {
  calls.push_back({kSlot, false, to_float(count, points), nullptr, false, r->face->depth_bias, r.get()});
}
template <Slot kSlot>
void record_integer_colorized(OT_Renderer_Data*, const OT_Rendition& r, int count, const OT_DCI_Point* points,
                              const OT_RGB32* color, bool single) {
  calls.push_back({kSlot, true, to_float(count, points), color, single, r->face->depth_bias, r.get()});
}

void record_slots(Renderer_Harness& h) {
  Software_Z_Buffer& r = h.renderer();
  r.draw_2d_polytriangle.function = record_float<Slot::d2>;
  r.draw_dc_polytriangle.function = record_float<Slot::dc>;
  r.draw_2di_polytriangle.function = record_integer<Slot::d2i>;
  r.draw_dci_polytriangle.function = record_integer<Slot::dci>;
  r.draw_2d_colorized_polytriangle.function = record_float_colorized<Slot::d2>;
  r.draw_dc_colorized_polytriangle.function = record_float_colorized<Slot::dc>;
  r.draw_2di_colorized_polytriangle.function = record_integer_colorized<Slot::d2i>;
  r.draw_dci_colorized_polytriangle.function = record_integer_colorized<Slot::dci>;
  calls.clear();
}

bool same_points(const std::vector<OT_Point>& a, const std::vector<OT_Point>& b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i)
    if (a[i].x != b[i].x || a[i].y != b[i].y || a[i].z != b[i].z) return false;
  return true;
}

std::vector<OT_DCI_Point> to_integer(const std::vector<OT_Point>& points) {
  std::vector<OT_DCI_Point> out;
  for (const OT_Point& p : points) out.push_back({int(p.x), int(p.y), int(p.z)});
  return out;
}

void draw_polygon(Renderer_Harness& h, Slot form, const std::vector<OT_Point>& points, const OT_RGB32* color) {
  Software_Z_Buffer& r = h.renderer();
  const int n = static_cast<int>(points.size());
  const std::vector<OT_DCI_Point> integer = to_integer(points);
  switch (form) {
    case Slot::d2: r.draw_2d_polygon(h.rendition(), n, points.data(), color); break;
    case Slot::dc: r.draw_dc_polygon(h.rendition(), n, points.data(), color); break;
    case Slot::d2i: r.draw_2di_polygon(h.rendition(), n, integer.data(), color); break;
    case Slot::dci: r.draw_dci_polygon(h.rendition(), n, integer.data(), color); break;
  }
}

// The float slots that a form's triangulated triangles go to.
Slot float_slot_of(Slot form) { return form == Slot::d2 || form == Slot::d2i ? Slot::d2 : Slot::dc; }

// A regular n-gon around (32, 24), convex.
std::vector<OT_Point> regular(int n, float radius) {
  std::vector<OT_Point> out;
  for (int i = 0; i < n; ++i) {
    const double a = 2.0 * std::numbers::pi * i / n;
    out.push_back({float(32 + radius * std::cos(a)), float(24 + radius * std::sin(a)), 7});
  }
  return out;
}

double triangle_area(const std::vector<OT_Point>& t) {
  return std::fabs((double(t[1].x) - t[0].x) * (double(t[2].y) - t[0].y) -
                   (double(t[2].x) - t[0].x) * (double(t[1].y) - t[0].y)) /
         2.0;
}
double polygon_area(const std::vector<OT_Point>& p) {
  double twice = 0;
  for (std::size_t i = 0; i < p.size(); ++i) {
    const OT_Point& a = p[i];
    const OT_Point& b = p[(i + 1) % p.size()];
    twice += double(a.x) * b.y - double(b.x) * a.y;
  }
  return std::fabs(twice) / 2.0;
}

const OT_RGB32 kGreen{0, 200, 0, 255};

class Polygons : public ::testing::TestWithParam<Mode_Case> {};

TEST_P(Polygons, FewerThanThreePointsDrawNothing) {
  for (Slot form : {Slot::d2, Slot::dc, Slot::d2i, Slot::dci})
    for (const OT_RGB32* color : {static_cast<const OT_RGB32*>(nullptr), &kGreen}) {
      Renderer_Harness h(GetParam());
      h.renderer().edge_depth_bias = 5;
      draw_polygon(h, form, {{3, 3, 1}, {40, 30, 1}}, color);
      draw_polygon(h, form, {{3, 3, 1}}, color);
      EXPECT_TRUE(h.drawn().empty()) << int(form);
      record_slots(h);
      draw_polygon(h, form, {{3, 3, 1}, {40, 30, 1}}, color);
      EXPECT_TRUE(calls.empty()) << int(form);
    }
}

TEST_P(Polygons, ConvexPentagonOfTheFloatFormsIsOneStrip) {
  const std::vector<OT_Point> p{{10, 5, 1}, {30, 4, 2}, {40, 20, 3}, {25, 35, 4}, {8, 25, 5}};
  const std::vector<OT_Point> strip{p[0], p[1], p[4], p[2], p[3]};
  for (Slot form : {Slot::d2, Slot::dc})
    for (const OT_RGB32* color : {static_cast<const OT_RGB32*>(nullptr), &kGreen}) {
      Renderer_Harness h(GetParam());
      record_slots(h);
      draw_polygon(h, form, p, color);
      ASSERT_EQ(calls.size(), 1u);
      EXPECT_EQ(calls[0].slot, form);
      EXPECT_EQ(calls[0].colorized, color != nullptr);
      EXPECT_TRUE(same_points(calls[0].points, strip));
      if (color) {
        EXPECT_EQ(calls[0].color, color);
        EXPECT_TRUE(calls[0].single);
      }
    }
}

TEST_P(Polygons, StripTakesAlternatelyFromTheStartAndTheEnd) {
  // A convex hexagon and heptagon: p0, p1, p5, p2, p4, p3 and p0, p1, p6, p2, p5, p3, p4.
  for (int n : {6, 7, 64}) {
    Renderer_Harness h(GetParam());
    record_slots(h);
    const std::vector<OT_Point> p = regular(n, n == 64 ? 200.0f : 20.0f);
    ASSERT_EQ(OB_Rank_Polygon(n, p.data()), OT_Polygon_Rank_Convex) << n;
    draw_polygon(h, Slot::d2, p, nullptr);
    std::vector<OT_Point> strip{p[0]};
    for (int front = 1, back = n - 1; front <= back;) {
      strip.push_back(p[front++]);
      if (front <= back) strip.push_back(p[back--]);
    }
    ASSERT_EQ(calls.size(), 1u) << n;
    EXPECT_TRUE(same_points(calls[0].points, strip)) << n;
  }
}

TEST_P(Polygons, SixtyFivePointsGoThroughTheTriangulator) {
  Renderer_Harness h(GetParam());
  record_slots(h);
  const std::vector<OT_Point> p = regular(65, 200.0f);
  ASSERT_EQ(OB_Rank_Polygon(65, p.data()), OT_Polygon_Rank_Convex);
  draw_polygon(h, Slot::d2, p, &kGreen);
  ASSERT_EQ(calls.size(), 63u);
  double area = 0;
  for (const Call& c : calls) {
    EXPECT_EQ(c.slot, Slot::d2);
    EXPECT_TRUE(c.colorized);
    EXPECT_EQ(c.color, &kGreen);
    EXPECT_TRUE(c.single);
    ASSERT_EQ(c.points.size(), 3u);
    area += triangle_area(c.points);
  }
  EXPECT_NEAR(area, polygon_area(p), 1e-6 * polygon_area(p));
}

TEST_P(Polygons, ThreePointsGoStraightToThePolytriangleOfTheForm) {
  const std::vector<OT_Point> t{{3, 4, 5}, {40, 6, 7}, {20, 30, 9}};
  for (Slot form : {Slot::d2, Slot::dc, Slot::d2i, Slot::dci})
    for (const OT_RGB32* color : {static_cast<const OT_RGB32*>(nullptr), &kGreen}) {
      Renderer_Harness h(GetParam());
      record_slots(h);
      draw_polygon(h, form, t, color);
      ASSERT_EQ(calls.size(), 1u);
      EXPECT_EQ(calls[0].slot, form);
      EXPECT_EQ(calls[0].colorized, color != nullptr);
      EXPECT_TRUE(same_points(calls[0].points, t));
      if (color) {
        EXPECT_EQ(calls[0].color, color);
        // The float forms say single, the integer forms don't.
        EXPECT_EQ(calls[0].single, form == Slot::d2 || form == Slot::dc) << int(form);
      }
    }
}

TEST_P(Polygons, ColouredTriangleDrawsTheSameInEveryForm) {
  const std::vector<OT_Point> t{{3, 4, 5}, {40, 6, 5}, {20, 30, 5}};
  Renderer_Harness reference(GetParam());
  reference.renderer().draw_dci_colorized_polytriangle(reference.rendition(), 3, to_integer(t).data(), &kGreen,
                                                       true);
  ASSERT_FALSE(reference.drawn().empty());
  for (Slot form : {Slot::d2, Slot::dc, Slot::d2i, Slot::dci}) {
    Renderer_Harness h(GetParam());
    draw_polygon(h, form, t, &kGreen);
    EXPECT_EQ(h.snapshot(), reference.snapshot()) << int(form);
  }
}

TEST_P(Polygons, IntegerQuadrilateralGoesThroughTheTriangulatorToTheFloatSlots) {
  const std::vector<OT_Point> square{{10, 10, 3}, {30, 10, 3}, {30, 30, 3}, {10, 30, 3}};
  for (Slot form : {Slot::d2i, Slot::dci})
    for (const OT_RGB32* color : {static_cast<const OT_RGB32*>(nullptr), &kGreen}) {
      Renderer_Harness h(GetParam());
      record_slots(h);
      draw_polygon(h, form, square, color);
      ASSERT_EQ(calls.size(), 2u);
      double area = 0;
      for (const Call& c : calls) {
        EXPECT_EQ(c.slot, float_slot_of(form));
        EXPECT_EQ(c.colorized, color != nullptr);
        ASSERT_EQ(c.points.size(), 3u);
        if (color) {
          EXPECT_EQ(c.color, color);
          EXPECT_TRUE(c.single);
        }
        area += triangle_area(c.points);
      }
      EXPECT_EQ(area, 400.0);
    }
}

TEST_P(Polygons, ConcaveFloatPolygonGoesThroughTheTriangulator) {
  const std::vector<OT_Point> arrow{{10, 10, 1}, {40, 20, 1}, {10, 30, 1}, {20, 20, 1}};
  ASSERT_NE(OB_Rank_Polygon(4, arrow.data()), OT_Polygon_Rank_Convex);
  for (Slot form : {Slot::d2, Slot::dc}) {
    Renderer_Harness h(GetParam());
    record_slots(h);
    draw_polygon(h, form, arrow, nullptr);
    ASSERT_EQ(calls.size(), 2u);
    double area = 0;
    for (const Call& c : calls) {
      EXPECT_EQ(c.slot, form);
      EXPECT_FALSE(c.colorized);
      ASSERT_EQ(c.points.size(), 3u);
      area += triangle_area(c.points);
    }
    EXPECT_EQ(area, polygon_area(arrow));
  }
}

INSTANTIATE_TEST_SUITE_P(Polygon, Polygons, ::testing::ValuesIn(kAllModes), mode_name);

// ---- The fill of a concave polygon ----------------------------------------------

// One blend of the translucent colour over the cleared black.
constexpr OT_RGB32 kHalfRed{0, 0, 255, 128};

class Polygon_Fill : public ::testing::TestWithParam<int> {};

// The triangles of an L meet without gaps and without overlaps: every pixel
// of its area is blended exactly once.
TEST_P(Polygon_Fill, ConcaveLIsFilledOnceEverywhere) {
  const Slot form = static_cast<Slot>(GetParam());
  Renderer_Harness h(kAllModes[0]);  // rgb32_alpha
  const std::uint32_t once = h.clear_value();
  h.rendition().writable_colors()->color = kHalfRed;
  const std::vector<OT_Point> l{{5, 3, 0}, {50, 3, 0}, {50, 15, 0}, {20, 15, 0}, {20, 40, 0}, {5, 40, 0}};
  draw_polygon(h, form, l, nullptr);
  std::uint32_t blended = 0;
  std::set<std::pair<int, int>> expected;
  for (int y = 3; y < 15; ++y)
    for (int x = 5; x < 50; ++x) expected.insert({x, y});
  for (int y = 15; y < 40; ++y)
    for (int x = 5; x < 20; ++x) expected.insert({x, y});
  ASSERT_EQ(double(expected.size()), polygon_area(l));
  EXPECT_EQ(h.drawn(), expected);
  for (const auto& [x, y] : expected) {
    if (!blended) blended = h.pixel(x, y);
    ASSERT_EQ(h.pixel(x, y), blended) << x << "," << y;
  }
  EXPECT_NE(blended, once);
  // A second blend would give another value.
  Renderer_Harness twice(kAllModes[0]);
  twice.rendition().writable_colors()->color = kHalfRed;
  twice.draw_dci({{0, 0, 0}, {4, 0, 0}, {0, 4, 0}});
  EXPECT_EQ(twice.pixel(1, 1), blended);
  twice.draw_dci({{0, 0, 0}, {4, 0, 0}, {0, 4, 0}});
  EXPECT_NE(twice.pixel(1, 1), blended);
}

// A five-pointed star: no pixel twice, no hole well inside it, nothing well
// outside it.
TEST_P(Polygon_Fill, StarIsFilledOnceWithoutHoles) {
  const Slot form = static_cast<Slot>(GetParam());
  Renderer_Harness h(kAllModes[0]);
  h.rendition().writable_colors()->color = kHalfRed;
  std::vector<OT_Point> star;
  for (int i = 0; i < 10; ++i) {
    const double a = std::numbers::pi / 2 + std::numbers::pi * i / 5;
    const double radius = i % 2 ? 9.0 : 22.0;
    star.push_back({float(std::round(32 + radius * std::cos(a))), float(std::round(24 + radius * std::sin(a))), 0});
  }
  draw_polygon(h, form, star, nullptr);
  Renderer_Harness one(kAllModes[0]);
  one.rendition().writable_colors()->color = kHalfRed;
  one.draw_dci({{0, 0, 0}, {4, 0, 0}, {0, 4, 0}});
  const std::uint32_t blended = one.pixel(1, 1);

  // Distance from (x, y) to the star's outline, and whether it is inside.
  auto inside = [&](double x, double y) {
    bool in = false;
    for (std::size_t i = 0, j = star.size() - 1; i < star.size(); j = i++) {
      const OT_Point &a = star[i], &b = star[j];
      if ((a.y > y) != (b.y > y) && x < a.x + (y - a.y) * (b.x - a.x) / (b.y - a.y)) in = !in;
    }
    return in;
  };
  auto distance = [&](double x, double y) {
    double best = 1e9;
    for (std::size_t i = 0, j = star.size() - 1; i < star.size(); j = i++) {
      const double ax = star[j].x, ay = star[j].y, bx = star[i].x, by = star[i].y;
      const double t = std::clamp(((x - ax) * (bx - ax) + (y - ay) * (by - ay)) /
                                      ((bx - ax) * (bx - ax) + (by - ay) * (by - ay)),
                                  0.0, 1.0);
      best = std::min(best, std::hypot(x - ax - t * (bx - ax), y - ay - t * (by - ay)));
    }
    return best;
  };
  int drawn = 0;
  for (int y = 0; y < 48; ++y)
    for (int x = 0; x < 64; ++x) {
      const std::uint32_t v = h.pixel(x, y);
      if (v == h.clear_value()) {
        ASSERT_FALSE(inside(x, y) && distance(x, y) > 1.5) << "hole at " << x << "," << y;
        continue;
      }
      ++drawn;
      ASSERT_EQ(v, blended) << "twice at " << x << "," << y;
      ASSERT_FALSE(!inside(x, y) && distance(x, y) > 1.5) << "outside at " << x << "," << y;
    }
  EXPECT_NEAR(drawn, polygon_area(star), 0.15 * polygon_area(star));
}

std::string form_name(const ::testing::TestParamInfo<int>& info) {
  static const char* const names[] = {"2d", "dc", "2di", "dci"};
  return names[info.param];
}

INSTANTIATE_TEST_SUITE_P(Polygon, Polygon_Fill,
                         ::testing::Values(int(Slot::d2), int(Slot::dc), int(Slot::d2i), int(Slot::dci)), form_name);

// ---- The outline's depth bias ---------------------------------------------------

TEST(Polygon_Depth_Bias, FloatFormsDrawWithTheEdgeBiasOnACopy) {
  Renderer_Harness h(kAllModes[5]);  // z_rgb32
  record_slots(h);
  h.renderer().edge_depth_bias = 1000;
  const OT_Rendition_Data* caller = h.rendition().get();
  const std::vector<OT_Point> t{{3, 4, 5}, {40, 6, 5}, {20, 30, 5}};
  const std::vector<OT_Point> pentagon{{10, 5, 1}, {30, 4, 2}, {40, 20, 3}, {25, 35, 4}, {8, 25, 5}};
  const std::vector<OT_Point> arrow{{10, 10, 1}, {40, 20, 1}, {10, 30, 1}, {20, 20, 1}};
  for (Slot form : {Slot::d2, Slot::dc}) {
    calls.clear();
    draw_polygon(h, form, t, nullptr);
    draw_polygon(h, form, pentagon, &kGreen);
    draw_polygon(h, form, arrow, nullptr);
    ASSERT_EQ(calls.size(), 4u);
    for (const Call& c : calls) {
      EXPECT_EQ(c.depth_bias, 1000);
      EXPECT_NE(c.rendition, caller);
    }
  }
  EXPECT_EQ(h.rendition().get(), caller);
  EXPECT_EQ(h.rendition()->face->depth_bias, 0);

  // Without an edge bias, or with the face's own, the caller's rendition.
  for (std::int32_t edge : {0, 77}) {
    h.rendition().writable_face()->depth_bias = 77;
    h.renderer().edge_depth_bias = edge;
    calls.clear();
    draw_polygon(h, Slot::d2, t, nullptr);
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].depth_bias, 77);
    EXPECT_EQ(calls[0].rendition, h.rendition().get());
  }
}

TEST(Polygon_Depth_Bias, IntegerFormsKeepTheFacesBias) {
  Renderer_Harness h(kAllModes[5]);
  record_slots(h);
  h.renderer().edge_depth_bias = 1000;
  const std::vector<OT_Point> t{{3, 4, 5}, {40, 6, 5}, {20, 30, 5}};
  const std::vector<OT_Point> square{{10, 10, 3}, {30, 10, 3}, {30, 30, 3}, {10, 30, 3}};
  for (Slot form : {Slot::d2i, Slot::dci}) {
    calls.clear();
    draw_polygon(h, form, t, nullptr);
    draw_polygon(h, form, square, &kGreen);
    ASSERT_EQ(calls.size(), 3u);
    for (const Call& c : calls) {
      EXPECT_EQ(c.depth_bias, 0);
      EXPECT_EQ(c.rendition, h.rendition().get());
    }
  }
}

TEST(Polygon_Depth_Bias, TrianglesOfAFloatPolygonTakeTheBiasIntoTheirDepth) {
  const std::vector<OT_Point> square{{10, 10, 500}, {30, 10, 500}, {30, 30, 500}, {10, 30, 500}};
  for (const Mode_Case* mode : {&kAllModes[3], &kAllModes[5]}) {
    Renderer_Harness h(*mode);
    h.renderer().edge_depth_bias = 1000;
    draw_polygon(h, Slot::d2, square, nullptr);
    EXPECT_EQ(h.depth(20, 20), 1500) << mode->name;
    EXPECT_EQ(h.depth(10, 10), 1500) << mode->name;
    EXPECT_EQ(h.depth(30, 20), 0xFFFF) << mode->name;
    h.clear();
    draw_polygon(h, Slot::d2i, square, nullptr);
    EXPECT_EQ(h.depth(20, 20), 500) << mode->name;
    EXPECT_EQ(h.depth(10, 10), 500) << mode->name;
    EXPECT_EQ(h.renderer().edge_depth_bias, 1000) << mode->name;
  }
}

}  // namespace
}  // namespace tarn::testing
