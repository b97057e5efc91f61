// Depth-buffered solid triangles: the 17.15 arithmetic of edges and spans, the
// test and write rules of each filler, and the hand-over without depth.
#include "frame/renderer_options.h"
#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

const Mode_Case kDepthModes[] = {kAllModes[3], kAllModes[4], kAllModes[5]};
const Mode_Case& kZMapped = kAllModes[3];
const Mode_Case& kZRgb32Alpha = kAllModes[4];
const Mode_Case& kZRgb32 = kAllModes[5];

class Depth : public ::testing::TestWithParam<Mode_Case> {};

TEST_P(Depth, TwoPixelSpanTriesTheMiddleDepthOnItsRightPixel) {
  Renderer_Harness h(GetParam());
  h.draw_dci({{10, 10, 0}, {12, 10, 1000}, {10, 11, 0}});
  EXPECT_EQ(h.depth(10, 10), 0);
  EXPECT_EQ(h.depth(11, 10), 500);  // never the right end's 1000
  EXPECT_EQ(h.depth(12, 10), 0xFFFF);
}

TEST_P(Depth, LongerSpansStepFromTheLeftEndAndStopShortOfTheRight) {
  Renderer_Harness h(GetParam());
  h.draw_dci({{10, 10, 0}, {14, 10, 400}, {10, 11, 0}});  // width 4: a shift
  h.draw_dci({{10, 20, 0}, {13, 20, 300}, {10, 21, 0}});  // width 3: a division
  for (int i = 0; i < 4; ++i) EXPECT_EQ(h.depth(10 + i, 10), 100 * i);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(h.depth(10 + i, 20), 100 * i);
  EXPECT_EQ(h.depth(14, 10), 0xFFFF);
}

TEST_P(Depth, EdgeDepthFollowsTheLongEdgeRowByRow) {
  Renderer_Harness h(GetParam());
  // The left edge runs from depth 0 at row 10 to 800 at row 18: 100 a row.
  h.draw_dci({{10, 10, 0}, {30, 10, 0}, {10, 18, 800}});
  for (int row = 10; row < 18; ++row) EXPECT_EQ(h.depth(10, row), 100 * (row - 10)) << row;
}

TEST_P(Depth, NearerDrawsFartherDoesNot) {
  Renderer_Harness h(GetParam());
  h.draw_dci({{0, 0, 500}, {40, 0, 500}, {0, 40, 500}});
  OT_Rendition_Colors* colors = h.rendition().writable_colors();
  colors->color = OT_RGB32{255, 0, 0, 255};
  colors->color_index = 4;
  h.draw_dci({{0, 0, 600}, {40, 0, 600}, {0, 40, 600}});
  EXPECT_EQ(h.pixel(5, 5), h.drawn_value());
  EXPECT_EQ(h.depth(5, 5), 500);
  h.draw_dci({{0, 0, 400}, {40, 0, 400}, {0, 40, 400}});
  EXPECT_NE(h.pixel(5, 5), h.drawn_value());
  EXPECT_EQ(h.depth(5, 5), 400);
}

TEST_P(Depth, PositiveBiasMovesAFlatFaceAway) {
  Renderer_Harness h(GetParam());
  h.draw_dci({{0, 0, 500}, {40, 0, 500}, {0, 40, 500}});
  h.rendition().writable_face()->depth_bias = 150;
  OT_Rendition_Colors* colors = h.rendition().writable_colors();
  colors->color = OT_RGB32{255, 0, 0, 255};
  colors->color_index = 4;
  h.draw_dci({{0, 0, 400}, {40, 0, 400}, {0, 40, 400}});  // 550 once biased
  EXPECT_EQ(h.pixel(5, 5), h.drawn_value());
  EXPECT_EQ(h.depth(5, 5), 500);
}

TEST_P(Depth, DepthDisabledDrawsWithoutReadingOrWritingDepth) {
  Renderer_Harness h(GetParam());
  h.draw_dci({{0, 0, 100}, {40, 0, 100}, {0, 40, 100}});
  h.rendition().writable_device()->depth_enabled = 0;
  OT_Rendition_Colors* colors = h.rendition().writable_colors();
  colors->color = OT_RGB32{255, 0, 0, 255};
  colors->color_index = 4;
  h.draw_dci({{0, 0, 900}, {40, 0, 900}, {0, 40, 900}});
  EXPECT_NE(h.pixel(5, 5), h.drawn_value());
  EXPECT_EQ(h.depth(5, 5), 100);
  h.draw_dc({{20.f, 20.f, 900.f}, {60.f, 20.f, 900.f}, {20.f, 47.f, 900.f}});
  EXPECT_EQ(h.depth(30, 30), 0xFFFF);
}

TEST_P(Depth, FloatFormRoundsZ) {
  Renderer_Harness h(GetParam());
  h.draw_dc({{10.f, 10.f, 99.5f}, {14.f, 10.f, 99.5f}, {10.f, 14.f, 99.5f}});
  EXPECT_EQ(h.depth(10, 10), 100);
}

INSTANTIATE_TEST_SUITE_P(DepthModes, Depth, ::testing::ValuesIn(kDepthModes), mode_name);

// "ZBuffer Test" through its setter, with no establish in between.
void set_test(Renderer_Harness& h, int value) {
  auto setter = reinterpret_cast<Depth_Test_Setter>(
      const_cast<void*>(h.renderer().current_option_table()->find(L"ZBuffer Test")->as_pointer()));
  setter(&h.renderer(), &value);
}

void set_write(Renderer_Harness& h, byte value) {
  auto setter = reinterpret_cast<Depth_Write_Setter>(
      const_cast<void*>(h.renderer().current_option_table()->find(L"ZBuffer Write")->as_pointer()));
  setter(&h.renderer(), value);
}

// Draws a triangle at depth `first` under the default test, then a second,
// red-or-index-4 one at `second` under `test`; true when the second shows.
bool second_shows(Renderer_Harness& h, int test, int first, int second) {
  h.clear();
  set_test(h, 2);
  OT_Rendition_Colors* colors = h.rendition().writable_colors();
  colors->color = Renderer_Harness::kColor;
  colors->color_index = Renderer_Harness::kIndex;
  h.draw_dci({{0, 0, first}, {40, 0, first}, {0, 40, first}});
  EXPECT_EQ(h.pixel(5, 5), h.drawn_value());
  set_test(h, test);
  colors = h.rendition().writable_colors();
  colors->color = OT_RGB32{255, 0, 0, 255};
  colors->color_index = 4;
  h.draw_dci({{0, 0, second}, {40, 0, second}, {0, 40, second}});
  return h.pixel(5, 5) != h.drawn_value();
}

TEST(DepthTest, OpaqueFillerFollowsTheOption) {
  Renderer_Harness h(kZRgb32);
  EXPECT_TRUE(second_shows(h, 2, 500, 500));
  EXPECT_FALSE(second_shows(h, 1, 500, 500));
  EXPECT_TRUE(second_shows(h, 1, 500, 499));
  EXPECT_FALSE(second_shows(h, 5, 500, 500));
  EXPECT_TRUE(second_shows(h, 5, 500, 501));
  EXPECT_FALSE(second_shows(h, 5, 500, 499));
  for (int acts_as_two : {0, 3, 4, 6, -1}) {
    EXPECT_TRUE(second_shows(h, acts_as_two, 500, 500)) << acts_as_two;
    EXPECT_FALSE(second_shows(h, acts_as_two, 500, 501)) << acts_as_two;
  }
}

TEST(DepthTest, MappedAndAlphaFillersStayAtOrBelow) {
  for (const Mode_Case& mode : {kZMapped, kZRgb32Alpha}) {
    Renderer_Harness h(mode);
    EXPECT_TRUE(second_shows(h, 1, 500, 500)) << mode.name;
    EXPECT_FALSE(second_shows(h, 5, 500, 501)) << mode.name;
  }
}

TEST(DepthTest, ClearedDepthRefusesOnlyTheFarthestValueUnderTestOne) {
  Renderer_Harness h(kZRgb32);
  set_test(h, 1);
  h.draw_dci({{0, 0, 0xFFFF}, {40, 0, 0xFFFF}, {0, 40, 0xFFFF}});
  EXPECT_TRUE(h.drawn().empty());
  h.draw_dci({{0, 0, 0xFFFE}, {40, 0, 0xFFFE}, {0, 40, 0xFFFE}});
  EXPECT_EQ(h.pixel(5, 5), h.drawn_value());
}

TEST(DepthWrite, OffLeavesDepthInOpaqueAndAlphaButNotInMapped) {
  for (const Mode_Case& mode : kDepthModes) {
    Renderer_Harness h(mode);
    set_write(h, 0);
    h.draw_dci({{0, 0, 300}, {40, 0, 300}, {0, 40, 300}});
    EXPECT_EQ(h.pixel(5, 5), h.drawn_value()) << mode.name;
    EXPECT_EQ(h.depth(5, 5), mode.mapped() ? 300 : 0xFFFF) << mode.name;
  }
}

TEST(DepthWrite, OffLetsALaterFaceBehindOverwrite) {
  Renderer_Harness h(kZRgb32);
  set_write(h, 0);
  EXPECT_TRUE(second_shows(h, 2, 300, 600));
}

TEST(DepthAlpha, BlendsExactlyAndSetsAlphaByte) {
  Renderer_Harness h(kZRgb32Alpha);
  h.rendition().writable_colors()->color = OT_RGB32{255, 0, 0, 128};
  h.draw_dci({{0, 0, 10}, {40, 0, 10}, {0, 40, 10}});
  // (0 * 127 + 255 * 128) / 255 = 128 in blue; red and green stay 0.
  EXPECT_EQ(h.pixel(5, 5), (OT_RGB32{128, 0, 0, 255}.word()));
  EXPECT_EQ(h.depth(5, 5), 10);
}

TEST(DepthAlpha, AlphaPathBitSendsOpaqueModeToTheBlendingFiller) {
  Renderer_Harness h(kZRgb32);
  h.rendition().writable_colors()->color = OT_RGB32{255, 0, 0, 128};
  h.rendition().writable_raster()->advanced_options = OT_Advanced_Alpha_Path;
  h.draw_dci({{0, 0, 10}, {40, 0, 10}, {0, 40, 10}});
  EXPECT_EQ(h.pixel(5, 5), (OT_RGB32{128, 0, 0, 255}.word()));
}

}  // namespace
}  // namespace tarn::testing
