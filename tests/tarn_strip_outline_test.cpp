// The strip outline of the RGB32 depth modes: with advanced_options bit value
// 32 a triangle action draws the strip's edges as three polylines (all the
// points, the even ones, the odd ones) instead of its surface.
#include <vector>

#include "lines/clipped_polylines.h"
#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

using Pixels = std::set<std::pair<int, int>>;

constexpr const Mode_Case& kZRgb32Alpha = kAllModes[4];
constexpr const Mode_Case& kZRgb32 = kAllModes[5];

void ask_outline(Renderer_Harness& h) { h.rendition().writable_raster()->advanced_options |= OT_Advanced_Strip_Outline; }

std::vector<OT_Point> to_float(const std::vector<OT_DCI_Point>& points) {
  std::vector<OT_Point> out;
  for (const OT_DCI_Point& p : points) out.push_back({float(p.x), float(p.y), float(p.z)});
  return out;
}

// The triangle actions that outline a strip, flat and colorized, in the
// four forms.
enum class Action { dci, dc, d2i, d2, dci_colorized, dc_colorized, d2i_colorized, d2_colorized };
constexpr Action kActions[] = {Action::dci,           Action::dc,           Action::d2i,           Action::d2,
                               Action::dci_colorized, Action::dc_colorized, Action::d2i_colorized, Action::d2_colorized};

void draw(Renderer_Harness& h, Action action, const std::vector<OT_DCI_Point>& points) {
  static const OT_RGB32 green{0, 200, 0, 255};
  Software_Z_Buffer& r = h.renderer();
  const int n = static_cast<int>(points.size());
  const std::vector<OT_Point> f = to_float(points);
  switch (action) {
    case Action::dci: h.draw_dci(points); break;
    case Action::dc: h.draw_dc(f); break;
    case Action::d2i: h.draw_2di(points); break;
    case Action::d2: h.draw_2d(f); break;
    case Action::dci_colorized: r.draw_dci_colorized_polytriangle(h.rendition(), n, points.data(), &green, true); break;
    case Action::dc_colorized: r.draw_dc_colorized_polytriangle(h.rendition(), n, f.data(), &green, true); break;
    case Action::d2i_colorized: r.draw_2di_colorized_polytriangle(h.rendition(), n, points.data(), &green, true); break;
    case Action::d2_colorized: r.draw_2d_colorized_polytriangle(h.rendition(), n, f.data(), &green, true); break;
  }
}

// The strip p0 (10, 10), p1 (30, 10), p2 (10, 30), p3 (30, 30): its edges
// are the square's border and the diagonal from p1 to p2.
const std::vector<OT_DCI_Point> kSquareStrip{{10, 10, 100}, {30, 10, 100}, {10, 30, 100}, {30, 30, 100}};

Pixels square_strip_edges() {
  Pixels out;
  for (int k = 10; k <= 30; ++k) {
    out.insert({k, 10});
    out.insert({k, 30});
    out.insert({10, k});
    out.insert({30, k});
  }
  for (int k = 0; k <= 20; ++k) out.insert({30 - k, 10 + k});
  return out;
}

class Outline : public ::testing::TestWithParam<Mode_Case> {};

TEST_P(Outline, StripOfFourDrawsItsEdgesAndNotItsInside) {
  for (Action action : kActions) {
    Renderer_Harness h(GetParam());
    ask_outline(h);
    draw(h, action, kSquareStrip);
    EXPECT_EQ(h.drawn(), square_strip_edges()) << int(action);
    // The outline is drawn in the rendition's colour, at the points' depth.
    EXPECT_EQ(h.pixel(20, 10), h.drawn_value()) << int(action);
    EXPECT_EQ(h.pixel(20, 20), h.drawn_value()) << int(action);
    EXPECT_EQ(h.depth(20, 20), 100) << int(action);
    EXPECT_EQ(h.depth(10, 17), 100) << int(action);
    EXPECT_EQ(h.depth(14, 22), 0xFFFF) << int(action);
  }
}

TEST_P(Outline, DepthDisabledStillOutlines) {
  Renderer_Harness h(GetParam());
  ask_outline(h);
  h.rendition().writable_device()->depth_enabled = 0;
  h.draw_dci(kSquareStrip);
  EXPECT_EQ(h.drawn(), square_strip_edges());
  EXPECT_EQ(h.depth(20, 20), 0xFFFF);
}

// With "ZBuffer Test" 5 every pixel of a line fails against the cleared depth
// but the last one of each polyline, which follows its own rule: what shows
// is the ends of the three polylines.
TEST_P(Outline, ThePolylinesEndAtTheirLastPoints) {
  const std::vector<OT_DCI_Point> p{{5, 5, 50}, {20, 6, 50}, {8, 20, 50}, {25, 22, 50}, {10, 35, 50}, {30, 38, 50}};
  struct Case {
    int count;
    Pixels ends;
  };
  const Case cases[] = {
      {3, {{8, 20}}},             // all three points, then p0 p2: both end at p2
      {4, {{8, 20}, {25, 22}}},   // p0..p3, p0 p2, p1 p3
      {5, {{25, 22}, {10, 35}}},  // p0..p4, p0 p2 p4, p1 p3
      {6, {{10, 35}, {30, 38}}},  // p0..p5, p0 p2 p4, p1 p3 p5
  };
  for (Action action : {Action::dci, Action::d2i}) {
    for (const Case& c : cases) {
      Renderer_Harness h(GetParam());
      ask_outline(h);
      h.renderer().depth_test = 5;
      draw(h, action, std::vector<OT_DCI_Point>(p.begin(), p.begin() + c.count));
      EXPECT_EQ(h.drawn(), c.ends) << int(action) << " count " << c.count;
      for (const auto& [x, y] : c.ends) EXPECT_EQ(h.depth(x, y), 50);
    }
  }
}

TEST_P(Outline, EdgesAreTheThreePolylinesOfTheDepthRgb32Mode) {
  // A strip that reaches out of the hard clip: the polylines are clipped.
  const std::vector<OT_DCI_Point> p{{-20, 4, 10}, {30, -9, 20}, {12, 40, 30}, {70, 30, 40}, {40, 60, 50}};
  Renderer_Harness h(GetParam());
  h.set_hard_clip({3, 58, 2, 44});
  ask_outline(h);
  h.draw_2di(p);

  Renderer_Harness reference(GetParam());
  reference.set_hard_clip({3, 58, 2, 44});
  auto polyline = [&](std::vector<OT_DCI_Point> points) {
    z_rgb32_2di_polyline(&reference.renderer(), reference.rendition(), static_cast<int>(points.size()),
                         points.data());
  };
  polyline(p);
  polyline({p[0], p[2], p[4]});
  polyline({p[1], p[3]});
  ASSERT_GT(reference.drawn().size(), 100u);
  EXPECT_EQ(h.snapshot(), reference.snapshot());
  for (int y = 0; y < 48; ++y)
    for (int x = 0; x < 64; ++x) ASSERT_EQ(h.depth(x, y), reference.depth(x, y)) << x << "," << y;
}

TEST_P(Outline, LongStripUsesTheHeap) {
  // 70 points: the lists of even and odd points are 35 each.
  std::vector<OT_DCI_Point> p;
  for (int i = 0; i < 70; ++i) p.push_back({2 + (i / 2) % 30, i % 2 ? 30 : 10, 5});
  Renderer_Harness h(GetParam());
  ask_outline(h);
  h.renderer().depth_test = 5;
  h.draw_dci(p);
  // Ends: p69 (all), p68 (even), p69 (odd).
  EXPECT_EQ(h.drawn(), (Pixels{{p[68].x, p[68].y}, {p[69].x, p[69].y}}));
}

TEST_P(Outline, CallersRenditionKeepsItsOptionsAndTheEdgeBiasIsZeroAgain) {
  Renderer_Harness h(GetParam());
  ask_outline(h);
  h.rendition().writable_raster()->advanced_options |= 0x800;
  h.rendition().writable_face()->depth_bias = 7;
  const OT_Rendition_Data* data = h.rendition().get();
  const OT_Rendition_Raster* raster = h.rendition()->raster.get();
  const std::uint32_t serial = h.rendition()->raster->serial;
  h.renderer().edge_depth_bias = 55;
  h.draw_dci(kSquareStrip);
  EXPECT_EQ(h.renderer().edge_depth_bias, 0);
  EXPECT_EQ(h.rendition().get(), data);
  EXPECT_EQ(h.rendition()->raster.get(), raster);
  EXPECT_EQ(h.rendition()->raster->serial, serial);
  EXPECT_EQ(h.rendition()->raster->advanced_options, OT_Advanced_Strip_Outline | 0x800u);
  EXPECT_EQ(h.rendition()->face->depth_bias, 7);
  // The lines take no bias.
  EXPECT_EQ(h.depth(20, 20), 100);
}

std::vector<std::int32_t> bias_during_dots;

void record_bias(OT_Renderer_Data* object, const OT_Rendition&, const OT_DCI_Point*, const OT_RGB32*) {
  bias_during_dots.push_back(renderer_of(object).edge_depth_bias);
}

// While the polylines are drawn the renderer's edge bias is the face's depth
// bias. A polyline whose last point alone is inside the hard clip ends in a
// call of the dot slot, which sees it.
TEST_P(Outline, EdgeBiasIsTheFacesWhileThePolylinesAreDrawn) {
  Renderer_Harness h(GetParam());
  ask_outline(h);
  h.rendition().writable_face()->depth_bias = 7;
  h.set_hard_clip({0, 40, 0, 47});
  bias_during_dots.clear();
  h.renderer().draw_dci_dot.function = record_bias;
  h.renderer().edge_depth_bias = 0;
  h.draw_2di({{5, 5, 10}, {60, 20, 10}, {10, 30, 10}});
  EXPECT_EQ(bias_during_dots, (std::vector<std::int32_t>{7}));
  EXPECT_EQ(h.renderer().edge_depth_bias, 0);
}

INSTANTIATE_TEST_SUITE_P(Outline, Outline, ::testing::Values(kZRgb32Alpha, kZRgb32), mode_name);

TEST(Outline_Alpha, TranslucentOutlineIsStoredOpaque) {
  Renderer_Harness h(kZRgb32Alpha);
  ask_outline(h);
  const OT_RGB32 translucent{200, 100, 50, 128};
  h.rendition().writable_colors()->color = translucent;
  h.draw_dci(kSquareStrip);
  EXPECT_EQ(h.pixel(20, 10), translucent.word());
  EXPECT_EQ(h.pixel(20, 20), translucent.word());
  EXPECT_EQ(h.pixel(30, 30), translucent.word());
}

class Outline_Other_Modes : public ::testing::TestWithParam<Mode_Case> {};

TEST_P(Outline_Other_Modes, BitHasNoEffectOutsideTheRgb32DepthModes) {
  for (Action action : kActions) {
    Renderer_Harness h(GetParam()), plain(GetParam());
    ask_outline(h);
    draw(h, action, kSquareStrip);
    draw(plain, action, kSquareStrip);
    EXPECT_EQ(h.drawn().size(), 400u) << int(action);
    EXPECT_EQ(h.snapshot(), plain.snapshot()) << int(action);
  }
}

INSTANTIATE_TEST_SUITE_P(Outline, Outline_Other_Modes,
                         ::testing::Values(kAllModes[0], kAllModes[1], kAllModes[2], kAllModes[3]), mode_name);

}  // namespace
}  // namespace tarn::testing
