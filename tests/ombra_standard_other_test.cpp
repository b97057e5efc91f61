// The standard routines of rectangles, clears, images, dots and reads, and
// the promise that no chain of standard routines comes back on itself.
#include <gtest/gtest.h>

#include <map>

#include "tests/ombra_recording_renderer.h"

namespace {

using ombra_testing::Call;
using ombra_testing::Dot;
using ombra_testing::Recording_Renderer;
using ombra_testing::rectangle_pixels;

OT_Rendition window(int width, int height) { return OT_Rendition::make_default(width, height, OB_Default_Palette()); }

OT_Rendition coloured_window() {
  OT_Rendition rendition = window(32, 32);
  OT_Rendition_Colors* colors = rendition.writable_colors();
  colors->color = OT_RGB32::rgba(255, 0, 0);
  colors->color_index = 9;
  colors->window_color = OT_RGB32::rgba(0, 0, 128);
  colors->window_index = 4;
  set_face_pattern(rendition, 32);
  return rendition;
}

TEST(OmbraSpanRectangle, IsAHalfOpenStripInTheWindowColour) {
  Recording_Renderer r;
  r.record_dci_triangles();
  const OT_Rendition rendition = coloured_window();
  OB_Span_DC_Rectangle(&r, rendition, 3, 7, 2, 5);
  ASSERT_EQ(r.calls.size(), 1u);
  const Call& call = r.calls[0];
  EXPECT_EQ(call.slot, "dci_polytriangle");
  ASSERT_EQ(call.points.size(), 4u);
  const int expected[4][3] = {{3, 2, 0}, {8, 2, 0}, {3, 6, 0}, {8, 6, 0}};
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(call.points[i].x, expected[i][0]);
    EXPECT_EQ(call.points[i].y, expected[i][1]);
    EXPECT_EQ(call.points[i].z, expected[i][2]);
  }
  // Drawn with a copy: window colour in the main colour, pattern kept.
  EXPECT_EQ(call.rendition->colors->color, OT_RGB32::rgba(0, 0, 128));
  EXPECT_EQ(call.rendition->colors->color_index, 4u);
  EXPECT_EQ(call.rendition->face->pattern, 32);
  EXPECT_EQ(rendition->colors->color, OT_RGB32::rgba(255, 0, 0));
  EXPECT_EQ(rendition->colors->color_index, 9u);
}

TEST(OmbraSpanRectangle, FillsExactlyTheRectangle) {
  Recording_Renderer r;
  r.record_dots();
  const OT_Rendition rendition = coloured_window();
  OB_Span_DC_Rectangle(&r, rendition, -2, 4, 7, 7);
  EXPECT_EQ(r.dots.size(), 7u);
  EXPECT_EQ(r.dot_positions(), rectangle_pixels(-2, 4, 7, 7));
  r.dots.clear();
  OB_Span_DC_Rectangle(&r, rendition, 5, 4, 0, 3);  // empty
  EXPECT_TRUE(r.dots.empty());
}

TEST(OmbraClearColor, ClearsTheHardClip) {
  Recording_Renderer r;
  r.record_dci_triangles();
  OT_Rendition rendition = coloured_window();
  rendition.set_hard_clip_unrestricted(OT_Int_Rectangle{4, 9, 1, 3}, false);
  r.clear_color(rendition);
  ASSERT_EQ(r.calls.size(), 1u);
  EXPECT_EQ(r.calls[0].points[0].x, 4);
  EXPECT_EQ(r.calls[0].points[0].y, 1);
  EXPECT_EQ(r.calls[0].points[3].x, 10);
  EXPECT_EQ(r.calls[0].points[3].y, 4);
  Recording_Renderer q;
  q.record_dots();
  q.clear_color(rendition);
  EXPECT_EQ(q.dots.size(), 18u);
  EXPECT_EQ(q.dot_positions(), rectangle_pixels(4, 9, 1, 3));
}

TEST(OmbraImages, IndexImageBecomesDotsInPaletteColours) {
  Recording_Renderer r;
  r.record_dots();
  const OT_Rendition rendition = window(32, 32);
  // Two rows of three, four bytes apart; the first row is the top one.
  const byte data[8] = {9, 10, 12, 0xEE, 15, 0, 1, 0xEE};
  const OT_DCI_Point first{5, 10, 100}, last{7, 9, 300};
  r.draw_dci_index8_image(rendition, &first, &last, 4, data);
  ASSERT_EQ(r.dots.size(), 6u);
  const OT_Palette palette = OB_Default_Palette();
  const int xs[6] = {5, 6, 7, 5, 6, 7}, ys[6] = {10, 10, 10, 9, 9, 9}, indices[6] = {9, 10, 12, 15, 0, 1};
  for (int k = 0; k < 6; ++k) {
    EXPECT_EQ(r.dots[k].point.x, xs[k]);
    EXPECT_EQ(r.dots[k].point.y, ys[k]);
    EXPECT_EQ(r.dots[k].point.z, 100 + 100 * (xs[k] - 5));
    ASSERT_TRUE(r.dots[k].has_color);
    EXPECT_EQ(r.dots[k].color, palette.color(indices[k]));
  }
}

TEST(OmbraImages, IndexImageUsesThePaletteOfTheCurrentOptions) {
  Recording_Renderer r;
  r.record_dots();
  r.current_renderer_options_.set_palette(OB_Cube_Palette(OT_Int_RGB{2, 2, 2}, 0));
  const OT_Rendition rendition = window(32, 32);
  const byte data[1] = {7};
  const OT_DCI_Point at{1, 1, 0};
  r.draw_dci_index8_image(rendition, &at, &at, 1, data);
  ASSERT_EQ(r.dots.size(), 1u);
  EXPECT_EQ(r.dots[0].color, OT_RGB32::rgba(255, 255, 255));
}

TEST(OmbraImages, RGB32ImageAndTheClipOfTheOtherForms) {
  Recording_Renderer r;
  r.record_dots();
  const OT_Rendition rendition = window(4, 4);
  const OT_RGB32 data[4] = {OT_RGB32::rgba(1, 2, 3, 4), OT_RGB32::rgba(5, 6, 7, 8), OT_RGB32::rgba(9, 9, 9, 9),
                            OT_RGB32::rgba(0, 0, 0, 0)};
  const OT_DCI_Point first{3, 1, 0}, last{4, 0, 0};
  // The DCI form trusts its points; the 2DI form leaves out column 4.
  r.draw_dci_rgb32_image(rendition, &first, &last, 8, data, 0, nullptr);
  ASSERT_EQ(r.dots.size(), 4u);
  EXPECT_EQ(r.dots[0].color, OT_RGB32::rgba(1, 2, 3, 4));
  EXPECT_EQ(r.dots[1].color, OT_RGB32::rgba(5, 6, 7, 8));
  EXPECT_EQ(r.dots[2].point.y, 0);
  EXPECT_EQ(r.dots[2].color, OT_RGB32::rgba(9, 9, 9, 9));
  r.dots.clear();
  OB_Standard_Draw_2DI_RGB32_Image(&r, rendition, &first, &last, 8, data, 0, nullptr);
  EXPECT_EQ(r.dots.size(), 2u);
  for (const Dot& d : r.dots) EXPECT_EQ(d.point.x, 3);
}

TEST(OmbraDots, FloatDotsAreRoundedAndClipped) {
  Recording_Renderer r;
  r.record_dots();
  const OT_Rendition rendition = window(4, 4);
  const OT_RGB32 color = OT_RGB32::rgba(1, 1, 1);
  const OT_Point inside{2.5f, 0.4f, 1.5f}, outside{3.5f, 0.0f, 0.0f};
  r.draw_2d_dot(rendition, &inside, &color);
  r.draw_2d_dot(rendition, &outside, &color);
  r.draw_dc_dot(rendition, &outside, nullptr);
  ASSERT_EQ(r.dots.size(), 2u);
  EXPECT_EQ(r.dots[0].point.x, 3);
  EXPECT_EQ(r.dots[0].point.y, 0);
  EXPECT_EQ(r.dots[0].point.z, 2);
  EXPECT_EQ(r.dots[0].color, color);
  EXPECT_EQ(r.dots[1].point.x, 4);  // DC points are trusted
  EXPECT_FALSE(r.dots[1].has_color);
}

TEST(OmbraReads, ReleaseTheImage) {
  Recording_Renderer r;
  const OT_Rendition rendition = window(4, 4);
  OT_Shared_Image image(2, 2, OT_Image_Format_RGB32, 0, nullptr, false);
  OT_Image_Format format = OT_Image_Format_Native;
  const OT_DCI_Point first{0, 1, 0}, last{1, 0, 0};
  r.read_color_rectangle(rendition, &first, &last, &format, image);
  EXPECT_FALSE(image);
  image = OT_Shared_Image(2, 2, OT_Image_Format_Depth16, 0, nullptr, false);
  r.read_depth_rectangle(rendition, &first, &last, &format, image);
  EXPECT_FALSE(image);
  EXPECT_EQ(format, OT_Image_Format_Native);
}

// Every slot holds the host's routine except the dot, which counts. Each
// family, in each form, must end in dots and come back.
TEST(OmbraStandardChains, EveryRoutineEndsWithoutComingBack) {
  Recording_Renderer r;
  r.record_dots();
  const OT_Rendition rendition = window(16, 16);
  const OT_Point f[4] = {{-4, 1, 0}, {20, 2, 0}, {1, 12, 0}, {14, 14, 0}};
  const OT_DCI_Point i[4] = {{-4, 1, 0}, {20, 2, 0}, {1, 12, 0}, {14, 14, 0}};
  const OT_Point_D d[4] = {{-4, 1, 0}, {20, 2, 0}, {1, 12, 0}, {14, 14, 0}};
  const OT_RGB32 c[4] = {OT_RGB32::rgba(10, 0, 0), OT_RGB32::rgba(20, 0, 0), OT_RGB32::rgba(30, 0, 0),
                         OT_RGB32::rgba(40, 0, 0)};
  const OT_Parameter p[4] = {};
  const float w[4] = {1, 1, 1, 1};
  std::map<std::string, std::size_t> dots;
  auto check = [&](const char* name, auto&& draw) {
    r.dots.clear();
    draw();
    dots[name] = r.dots.size();
  };
#define OMBRA_FORMS(family, ...)                                                      \
  check("2d " #family, [&] { r.draw_2d_##family(rendition, 4, f __VA_ARGS__); });     \
  check("dc " #family, [&] { r.draw_dc_##family(rendition, 4, f __VA_ARGS__); });     \
  check("2di " #family, [&] { r.draw_2di_##family(rendition, 4, i __VA_ARGS__); });   \
  check("dci " #family, [&] { r.draw_dci_##family(rendition, 4, i __VA_ARGS__); });   \
  check("tiled " #family, [&] { r.draw_tiled_##family(rendition, 4, d __VA_ARGS__); });
  OMBRA_FORMS(polytriangle)
  OMBRA_FORMS(colorized_polytriangle, , c, false)
  OMBRA_FORMS(gouraud_polytriangle, , c)
  OMBRA_FORMS(textured_polytriangle, , c, p, 1, w, nullptr)
  OMBRA_FORMS(polyline)
  OMBRA_FORMS(colorized_polyline, , c, false)
  OMBRA_FORMS(gouraud_polyline, , c)
  OMBRA_FORMS(polymarker)
  OMBRA_FORMS(polygon, , c)
#undef OMBRA_FORMS
  check("clear", [&] { r.clear_color(rendition); });
  for (const auto& [name, count] : dots) EXPECT_GT(count, 0u) << name;
  EXPECT_EQ(dots["clear"], 256u);
  // The same list in every form draws the same pixels once it is inside.
  EXPECT_EQ(dots["2d polytriangle"], dots["2di polytriangle"]);
  EXPECT_EQ(dots["tiled polytriangle"], dots["2di polytriangle"]);
  EXPECT_EQ(dots["2di gouraud_polytriangle"], dots["2di polytriangle"]);
  EXPECT_EQ(dots["2di polymarker"], 2u);
  EXPECT_EQ(dots["dci polymarker"], 4u);
}

}  // namespace
