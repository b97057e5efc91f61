// Polygons: a triangle as it stands, a convex polygon of the float forms as
// one strip, anything else through the triangulator into the float slots;
// the edge depth bias of the float forms; the fill of a concave polygon.
#include <array>
#include <cmath>

#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

enum Slot { d2, dc, d2i, dci };

using Xyz = std::vector<std::array<float, 3>>;

Xyz xyz(const std::vector<OT_Point>& p) {
  Xyz out;
  for (const OT_Point& q : p) out.push_back({q.x, q.y, q.z});
  return out;
}

struct Call {
  Slot slot;
  Xyz points;
  const OT_RGB32* color;  // null for the plain polytriangle
  bool single;
  std::int32_t depth_bias;
  const OT_Rendition_Data* rendition;
  bool operator==(const Call&) const = default;
};
std::vector<Call> calls;

template <Slot kSlot, class Point>
void record(OT_Renderer_Data*, const OT_Rendition& r, int n, const Point* p) {
  Xyz points;
  for (int i = 0; i < n; ++i) points.push_back({float(p[i].x), float(p[i].y), float(p[i].z)});
  calls.push_back({kSlot, points, nullptr, false, r->face->depth_bias, r.get()});
}
template <Slot kSlot, class Point>
void record_colorized(OT_Renderer_Data* o, const OT_Rendition& r, int n, const Point* p, const OT_RGB32* c,
                      bool s) {
  record<kSlot>(o, r, n, p);
  calls.back().color = c;
  calls.back().single = s;
}

// The polytriangle slots of a z_rgb32 renderer, recorded.
struct Recording : Renderer_Harness {
  Recording() : Renderer_Harness(kZRgb32) {
#define TARN_RECORD(form, slot, Point)                                  \
  renderer().draw_##form##_polytriangle.function = record<slot, Point>; \
  renderer().draw_##form##_colorized_polytriangle.function = record_colorized<slot, Point>;
    TARN_RECORD(2d, d2, OT_Point)
    TARN_RECORD(dc, dc, OT_Point)
    TARN_RECORD(2di, d2i, OT_DCI_Point)
    TARN_RECORD(dci, dci, OT_DCI_Point)
#undef TARN_RECORD
    calls.clear();
  }
};

void polygon(Renderer_Harness& h, Slot form, const std::vector<OT_Point>& p, const OT_RGB32* color) {
  Points integer;
  for (const OT_Point& q : p) integer.push_back({int(q.x), int(q.y), int(q.z)});
  const int n = int(p.size());
  if (form == d2) h.renderer().draw_2d_polygon(h.rendition(), n, p.data(), color);
  if (form == dc) h.renderer().draw_dc_polygon(h.rendition(), n, p.data(), color);
  if (form == d2i) h.renderer().draw_2di_polygon(h.rendition(), n, integer.data(), color);
  if (form == dci) h.renderer().draw_dci_polygon(h.rendition(), n, integer.data(), color);
}

double area(const Xyz& p) {
  double twice = 0;
  for (std::size_t i = 0; i < p.size(); ++i)
    twice += double(p[i][0]) * p[(i + 1) % p.size()][1] - double(p[(i + 1) % p.size()][0]) * p[i][1];
  return std::abs(twice) / 2;
}

// The triangulator's pieces: all triangles to `slot`, covering the area.
void expect_triangulated(Slot slot, const OT_RGB32* color, double expected_area) {
  double sum = 0;
  for (const Call& c : calls) {
    EXPECT_EQ(std::tuple(c.slot, c.color, c.single, c.points.size()),
              std::tuple(slot, color, color != nullptr, 3u));
    sum += area(c.points);
  }
  EXPECT_NEAR(sum, expected_area, 1e-6 * expected_area);
}

const OT_RGB32 kGreen = OT_RGB32::rgba(0, 200, 0);
const std::vector<OT_Point> kTriangle{{3, 4, 5}, {40, 6, 7}, {20, 30, 9}};
const std::vector<OT_Point> kPentagon{{10, 5, 1}, {30, 4, 2}, {40, 20, 3}, {25, 35, 4}, {8, 25, 5}};
const std::vector<OT_Point> kSquare{{10, 10, 3}, {30, 10, 3}, {30, 30, 3}, {10, 30, 3}};
const std::vector<OT_Point> kArrow{{10, 10, 1}, {40, 20, 1}, {10, 30, 1}, {20, 20, 1}};

TEST(Polygons, TwoPointsDrawNothingAndThreeGoToThePolytriangleOfTheForm) {
  for (Slot form : {d2, dc, d2i, dci})
    for (const OT_RGB32* color : {static_cast<const OT_RGB32*>(nullptr), &kGreen}) {
      Recording h;
      polygon(h, form, {{3, 3, 1}, {40, 30, 1}}, color);
      EXPECT_TRUE(calls.empty());
      polygon(h, form, kTriangle, color);
      // The float forms say single, the integer forms don't.
      const Call expected{form, xyz(kTriangle), color, color && form <= dc, 0, h.rendition().get()};
      EXPECT_EQ(calls, std::vector<Call>{expected}) << form;
    }
}

TEST(Polygons, ConvexFloatPolygonsUpToSixtyFourAreOneStripFromBothEnds) {
  for (int n : {5, 6, 64, 65}) {
    std::vector<OT_Point> p = kPentagon;
    if (n > 5) {
      p.clear();
      for (int i = 0; i < n; ++i)
        p.push_back({32 + 200 * std::cos(6.2831853f * i / n), 24 + 200 * std::sin(6.2831853f * i / n), 1});
    }
    ASSERT_EQ(OB_Rank_Polygon(n, p.data()), OT_Polygon_Rank_Convex);
    std::vector<OT_Point> strip{p[0]};  // p0, p1, p(n-1), p2, p(n-2), ...
    for (int front = 1, back = n - 1; front <= back;) {
      strip.push_back(p[front++]);
      if (front <= back) strip.push_back(p[back--]);
    }
    for (Slot form : {d2, dc}) {
      Recording h;
      polygon(h, form, p, &kGreen);
      if (n <= 64) {
        EXPECT_EQ(calls, (std::vector<Call>{{form, xyz(strip), &kGreen, true, 0, h.rendition().get()}})) << n;
      } else {
        EXPECT_EQ(calls.size(), 63u);
        expect_triangulated(form, &kGreen, area(xyz(p)));
      }
    }
  }
}

TEST(Polygons, ConcaveFloatAndAnyIntegerPolygonGoThroughTheTriangulatorToTheFloatSlots) {
  ASSERT_NE(OB_Rank_Polygon(4, kArrow.data()), OT_Polygon_Rank_Convex);
  for (Slot form : {d2, dc, d2i, dci}) {
    Recording h;
    const bool floats = form <= dc;
    polygon(h, form, floats ? kArrow : kSquare, floats ? nullptr : &kGreen);
    EXPECT_EQ(calls.size(), 2u);
    expect_triangulated(form == d2i   ? d2
                        : form == dci ? dc
                                      : form,
                        floats ? nullptr : &kGreen, floats ? 200 : 400);
  }
}

// A non-zero edge_depth_bias other than the face's goes into a private copy
// of the rendition in the float forms; the integer forms keep the face's.
TEST(Polygons, EdgeDepthBiasReachesTheTrianglesOfTheFloatFormsOnly) {
  Recording h;
  h.renderer().edge_depth_bias = 1000;
  const OT_Rendition_Data* caller = h.rendition().get();
  for (Slot form : {d2, dc, d2i, dci}) {
    calls.clear();
    polygon(h, form, kTriangle, nullptr);
    polygon(h, form, kPentagon, &kGreen);
    polygon(h, form, kArrow, nullptr);
    EXPECT_GE(calls.size(), 4u);
    for (const Call& c : calls) {
      EXPECT_EQ(c.depth_bias, form <= dc ? 1000 : 0) << form;
      EXPECT_EQ(c.rendition != caller, form <= dc) << form;
    }
  }
  EXPECT_EQ(h.rendition()->face->depth_bias, 0);
  for (std::int32_t edge : {0, 77}) {
    h.rendition().writable_face()->depth_bias = 77;
    h.renderer().edge_depth_bias = edge;
    calls.clear();
    polygon(h, d2, kTriangle, nullptr);
    EXPECT_EQ(calls, (std::vector<Call>{{d2, xyz(kTriangle), nullptr, false, 77, h.rendition().get()}}));
  }
  // Drawn for real: the depth of the float form's triangles carries it.
  for (const Mode_Case& mode : {kZMapped, kZRgb32}) {
    Renderer_Harness real(mode);
    real.renderer().edge_depth_bias = 1000;
    const std::vector<OT_Point> square{{10, 10, 500}, {30, 10, 500}, {30, 30, 500}, {10, 30, 500}};
    polygon(real, d2, square, nullptr);
    EXPECT_EQ(std::pair(real.depth(20, 20), real.depth(30, 20)),
              (std::pair<std::uint16_t, std::uint16_t>(1500, 0xFFFF)));
    polygon(real, d2i, square, nullptr);
    EXPECT_EQ(real.depth(10, 10), 500);
  }
}

}  // namespace
}  // namespace tarn::testing
