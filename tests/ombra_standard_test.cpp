// The host's standard routines: what each sends down through the slots, and
// the pixels that whole chains of them end in.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <set>
#include <utility>

#include "tests/ombra_recording_renderer.h"

namespace {

using ombra_testing::Recorder;

// A 20 x 20 window: the hard clip is 0..19 both ways.
OT_Rendition window() { return OT_Rendition::make_default(20, 20, OB_Default_Palette()); }

// Standard routines called directly (calls separated by ';'), and the calls
// they send down through the slots.
const std::pair<const char*, std::vector<std::string>> kChains[] = {
    // Float and double forms round to nearest, halves upward, saturated.
    {"2d_polytriangle 0.5,-0.5,2.5 1.49,-1.5,-2.5 -0.51,7,0; dc_polytriangle 0.5,-0.5,2.5 -2.5,2.51,0 1,2,3",
     {"2di_polytriangle 1,0,3 1,-1,-2 -1,7,0", "dci_polytriangle 1,0,3 -2,3,0 1,2,3"}},
    {"tiled_colorized_polytriangle 0.25,-0.75,0.5 2.5,3.5,-0.5 -2.5,1,1 #405060 single",
     {"2di_colorized_polytriangle 0,-1,1 3,4,0 -2,1,1 #405060 single"}},
    {"tiled_polyline -1e12,5,0 1e12,5.5,nan", {"2di_polyline -2147483648,5,0 2147483647,6,0"}},
    {"dc_gouraud_polyline 1.5,2.49,0 3,4,9 #102030 #405060",
     {"dci_gouraud_polyline 2,2,0 3,4,9 #102030 #405060"}},
    {"2d_polymarker -0.5,19.5,1", {"2di_polymarker 0,20,1"}},

    // 2DI triangles: inside runs go whole, triangles beyond one side are
    // dropped, the others cut to left..right + 1, bottom..top + 1, in strip
    // order, with z and the lists interpolated.
    {"2di_polytriangle 0,0,1 19,0,2 0,19,3 19,19,4", {"dci_polytriangle 0,0,1 19,0,2 0,19,3 19,19,4"}},
    {"2di_polytriangle 20,0,0 30,0,0 20,10,0 40,50,0", {}},
    {"2di_polytriangle 30,5,0 20,10,0 10,5,0",
     {"dci_polytriangle 20,10,0 10,5,0 20,5,0"}},  // a corner on the cut
    {"2di_colorized_polytriangle 1,1,0 1,5,0 5,1,0 5,5,0 30,1,0 30,5,0 #102030 #405060 #708090 #a0b0c080",
     {"dci_colorized_polytriangle 1,1,0 1,5,0 5,1,0 5,5,0 #102030",
      "dci_colorized_polytriangle 5,1,0 5,5,0 20,1,0 20,3,0 #708090 single",
      "dci_colorized_polytriangle 5,5,0 20,3,0 20,5,0 #a0b0c080 single"}},
    {"2di_gouraud_polytriangle 0,0,0 40,0,400 0,40,0 #000000 #c80000 #000000",
     {"dci_gouraud_polytriangle 0,0,0 20,0,200 0,20,0 20,20,200 #000000 #640000 #000000 #640000"}},
    {"2di_textured_polytriangle 0,0,0 40,0,0 0,40,0 0/0/1 40/0/1 0/40/1 w1 w3 w1",
     {"dci_textured_polytriangle 0,0,0 20,0,0 0,20,0 20,20,0 - 0/0/1 20/0/1 0/20/1 20/20/1 w1 w2 w1 w2 -"}},

    // DCI triangles: a span a row, rows half open at the greatest y, spans
    // at the right (sent with their last pixel), edges rounded halves upward.
    {"dci_polytriangle 0,0,1000 4,0,1040 0,4,1400",
     {"dci_polyline 0,0,1000 3,0,1030", "dci_polyline 0,1,1100 2,1,1120", "dci_polyline 0,2,1200 1,2,1210",
      "dci_polyline 0,3,1300 0,3,1300"}},
    {"dci_polytriangle 0,0,0 3,2,0 0,4,0",
     {"dci_polyline 0,1,0 1,1,0", "dci_polyline 0,2,0 2,2,0", "dci_polyline 0,3,0 1,3,0"}},
    {"dci_polytriangle 0,5,0 10,5,0 4,5,0; dci_polytriangle 0,0,0 5,5,0 9,9,0", {}},
    {"dci_colorized_polytriangle 0,0,0 2,0,0 0,2,0 2,2,0 #102030 #405060",
     {"dci_colorized_polyline 0,0,0 1,0,0 #102030 single",
      "dci_colorized_polyline 0,1,0 0,1,0 #102030 single",
      "dci_colorized_polyline 1,1,0 1,1,0 #405060 single"}},
    {"dci_gouraud_polytriangle 0,0,0 4,0,0 0,4,0 #000007 #c80007 #006407",
     {"dci_gouraud_polyline 0,0,0 3,0,0 #000007 #960007", "dci_gouraud_polyline 0,1,0 2,1,0 #001907 #641907",
      "dci_gouraud_polyline 0,2,0 1,2,0 #003207 #323207",
      "dci_gouraud_polyline 0,3,0 0,3,0 #004b07 #004b07"}},
    {"dci_textured_polytriangle 0,0,0 2,0,0 0,2,0 0/0/0 0/0/0 0/0/0",
     {"dci_polyline 0,0,0 1,0,0", "dci_polyline 0,1,0 0,1,0"}},

    // 2DI polylines: inside runs go whole, crossing segments are cut to the
    // clip (inclusive) with z and colours interpolated.
    {"2di_polyline 0,0,0 19,19,0 19,0,0", {"dci_polyline 0,0,0 19,19,0 19,0,0"}},
    {"2di_colorized_polyline 2,2,0 10,2,0 30,2,200 30,30,0 10,10,0 #102030 #405060 #708090 #a0b0c080",
     {"dci_colorized_polyline 2,2,0 10,2,0 #102030", "dci_colorized_polyline 10,2,0 19,2,90 #405060",
      "dci_colorized_polyline 19,19,0 10,10,0 #a0b0c080"}},
    {"2di_gouraud_polyline -10,5,0 40,5,0 #000000 #fa0000",
     {"dci_gouraud_polyline 0,5,0 19,5,0 #320000 #910000"}},
    {"2di_polyline -10,5,0 5,-10,0; 2di_polyline -5,5,0 5,-5,0", {"dci_polyline 0,0,0 0,0,0"}},

    // DCI polylines step the longer axis into dots; a segment owns its first
    // point, and the last point comes once, in the last segment's colour.
    {"dci_polyline 0,0,0 4,-3,40",
     {"dci_dot 0,0,0 -", "dci_dot 1,-1,10 -", "dci_dot 2,-1,20 -", "dci_dot 3,-2,30 -", "dci_dot 4,-3,40 -"}},
    {"dci_polyline 3,4,0 1,-1,0",
     {"dci_dot 3,4,0 -", "dci_dot 3,3,0 -", "dci_dot 2,2,0 -", "dci_dot 2,1,0 -", "dci_dot 1,0,0 -",
      "dci_dot 1,-1,0 -"}},
    {"dci_polyline 0,0,0 2,0,0 2,1,0 2,1,0; dci_polyline 5,5,5",
     {"dci_dot 0,0,0 -", "dci_dot 1,0,0 -", "dci_dot 2,0,0 -", "dci_dot 2,1,0 -", "dci_dot 5,5,5 -"}},
    {"dci_colorized_polyline 0,0,0 1,0,0 1,1,0 #102030 #405060; dci_colorized_polyline 0,0,0 1,0,0 #708090 "
     "single",
     {"dci_dot 0,0,0 #102030", "dci_dot 1,0,0 #405060", "dci_dot 1,1,0 #405060", "dci_dot 0,0,0 #708090",
      "dci_dot 1,0,0 #708090"}},
    {"dci_gouraud_polyline 0,0,0 4,0,0 #006400 #64000037",
     {"dci_dot 0,0,0 #006400", "dci_dot 1,0,0 #194b00cd", "dci_dot 2,0,0 #3232009b",
      "dci_dot 3,0,0 #4b190069", "dci_dot 4,0,0 #64000037"}},

    // Markers, dots and images: the 2D, 2DI and tiled forms leave out what
    // lies outside the hard clip; DC and DCI points are trusted.
    {"2di_polymarker 0,0,5 20,0,0 19,19,0 0,-1,0; dci_polymarker 0,0,5 20,0,0",
     {"dci_dot 0,0,5 -", "dci_dot 19,19,0 -", "dci_dot 0,0,5 -", "dci_dot 20,0,0 -"}},
    {"2d_dot 19.49,0.4,1.5 #102030; 2d_dot 19.5,0,0 #102030; dc_dot 19.5,0,0; 2di_dot 3,-1,0 #102030; "
     "2di_dot 19,19,0 #405060; tiled_dot -0.6,3,0 #102030",
     {"dci_dot 19,0,2 #102030", "dci_dot 20,0,0 -", "dci_dot 19,19,0 #405060"}},
    // Rows from the top, 4 bytes apart; colours of the default palette.
    {"dci_index8_image 5,10,100 7,9,300 4 9 10 12 238 15 0 1 238",
     {"dci_dot 5,10,100 #ff0000", "dci_dot 6,10,200 #00ff00", "dci_dot 7,10,300 #0000ff",
      "dci_dot 5,9,100 #ffffff", "dci_dot 6,9,200 #000000", "dci_dot 7,9,300 #800000"}},
    {"2di_rgb32_image 19,1,0 20,0,0 8 #102030 #405060 #708090 #a0b0c080",
     {"dci_dot 19,1,0 #102030", "dci_dot 19,0,0 #708090"}},

    // Polygons: the triangulator's triangles, corners taken from the integer
    // list, to the 2DI slots (2D, 2DI) or the DCI slots (DC, DCI).
    {"dci_polygon 0,0,0 10,0,0 10,10,0 0,10,0 #405060",
     {"dci_colorized_polytriangle 0,10,0 0,0,0 10,0,0 #405060 single",
      "dci_colorized_polytriangle 0,10,0 10,0,0 10,10,0 #405060 single"}},
    {"2di_polygon 16777217,0,7 16777227,0,7 16777227,10,7 16777217,10,7",
     {"2di_polytriangle 16777217,10,7 16777217,0,7 16777227,0,7",
      "2di_polytriangle 16777217,10,7 16777227,0,7 16777227,10,7"}},
    {"2d_polygon 0,0,0 4,0,0 0,4,0; 2d_polygon 0,0,0 4,0,0", {"2di_polytriangle 0,4,0 0,0,0 4,0,0"}},

    // Rectangles: a strip whose right and top edges lie one beyond.
    {"clear_color", {"dci_polytriangle 0,0,0 20,0,0 0,20,0 20,20,0"}},
    {"span_dc_rectangle 4 4 7 7; span_dc_rectangle 5 4 0 3; span_dc_rectangle 0 3 4 3",
     {"dci_polytriangle 4,7,0 5,7,0 4,8,0 5,8,0"}},
};

TEST(OmbraStandardRoutines, SendWhatTheTableSays) {
  for (const auto& [play, expected] : kChains) {
    SCOPED_TRACE(play);
    Recorder r;
    r.play(play, window());
    EXPECT_EQ(r.calls, expected);
  }
}

// A wide line is a rectangle a segment, `weight` across and half of it on past
// both ends; a segment of no length is a square. Worked: weight 4 from
// (0, 0) to (10, 0) is (-2..12) x (-2..2); the diagonal (0, 0)-(3, 4) has
// unit (0.6, 0.8), so its corners lie (-1.2, -1.6) and (1.2, 1.6) along it
// and (-1.6, 1.2) across: (-2.8, -0.4), (0.4, -2.8), (2.6, 6.8), (5.8, 4.4).
TEST(OmbraStandardRoutines, WideLinesAreRectanglesThroughTheStripSlots) {
  OT_Rendition rd = window();
  rd.writable_line()->weight = 4;
  Recorder r;
  r.play("dci_polyline 0,0,5 10,0,5 10,0,7", rd);
  r.play("dci_gouraud_polyline 0,0,0 3,4,0 #102030 #405060; dci_colorized_polyline 5,5,1 #102030", rd);
  EXPECT_EQ(r.calls, (std::vector<std::string>{
                         "2di_polytriangle -2,2,5 -2,-2,5 12,2,5 12,-2,5",
                         "2di_polytriangle 8,2,5 8,-2,5 12,2,7 12,-2,7",
                         "2di_gouraud_polytriangle -3,0,0 0,-3,0 3,7,0 6,4,0 #102030 #102030 #405060 #405060",
                         "2di_colorized_polytriangle 3,7,1 3,3,1 7,7,1 7,3,1 #102030 single",
                     }));
}

TEST(OmbraStandardRoutines, RectangleIsDrawnWithAPrivateCopyInTheWindowColour) {
  Recorder r;
  OT_Rendition rd = window();
  OT_Rendition_Colors* colors = rd.writable_colors();
  colors->window_color = OT_RGB32::rgba(0, 0, 128);
  colors->window_index = 4;
  set_face_pattern(rd, 32);
  OB_Span_DC_Rectangle(&r, rd, 3, 7, 2, 5);
  ASSERT_EQ(r.renditions.size(), 1u);
  const OT_Rendition& used = r.renditions[0];
  EXPECT_EQ(used->colors->color, OT_RGB32::rgba(0, 0, 128));
  EXPECT_EQ(used->colors->color_index, 4u);
  EXPECT_EQ(used->face->pattern, 32);
  EXPECT_EQ(rd->colors->color, OT_RGB32::rgba(255, 255, 255));
  EXPECT_EQ(rd->colors->color_index, 15u);
}

using Pixels = std::set<std::pair<int, int>>;

// The pixels drawn; with `once`, none may come twice.
Pixels pixels_of(const Recorder& r, bool once = false) {
  Pixels out;
  for (const OT_DCI_Point& p : r.dots)
    EXPECT_TRUE(out.insert({p.x, p.y}).second || !once) << p.x << "," << p.y;
  return out;
}

// Whole chains from here on: only the dot slot records.
//
// Random ladders (strips of right isosceles triangles, and the same points
// as a polyline) against a clip inside the window. Their edges are level,
// upright or at 45 degrees, so every cut falls on whole pixels: unclipped,
// a ladder fills its rectangle, each pixel once, and the clipped forms draw
// exactly what the unclipped DCI forms draw inside the clip.
TEST(OmbraStandardChains, ClippedFormsDrawTheUnclippedPixelsInsideTheClip) {
  OT_Rendition rd = window();
  rd.set_hard_clip_unrestricted(OT_Int_Rectangle{5, 14, 3, 12}, false);
  unsigned seed = 12345;
  auto next = [&seed](int n) {
    seed = seed * 1103515245u + 12345u;
    return int((seed >> 8) % unsigned(n));
  };
  auto inside = [](const Recorder& r, int left, int right, int bottom, int top) {
    Pixels out;
    for (const OT_DCI_Point& p : r.dots)
      if (p.x >= left && p.x <= right && p.y >= bottom && p.y <= top) out.insert({p.x, p.y});
    return out;
  };
  std::size_t drawn = 0;
  for (int i = 0; i < 300; ++i) {
    SCOPED_TRACE(i);
    const int x = next(40) - 10, y = next(40) - 10, sx = (next(2) ? 1 : -1) * (1 + next(12)),
              sy = (next(2) ? 1 : -1) * std::abs(sx);
    OT_DCI_Point ladder[5];
    for (int k = 0; k < 5; ++k) ladder[k] = {x + sx * (k % 2), y + sy * (k / 2), k};
    Recorder clipped(true), whole(true), line(true), whole_line(true);
    clipped.draw_2di_polytriangle(rd, 5, ladder);
    whole.draw_dci_polytriangle(rd, 5, ladder);
    line.draw_2di_polyline(rd, 5, ladder);
    whole_line.draw_dci_polyline(rd, 5, ladder);
    const int left = std::min(x, x + sx), bottom = std::min(y, y + 2 * sy);
    const Pixels rectangle =
        inside(whole, left, left + std::abs(sx) - 1, bottom, bottom + 2 * std::abs(sy) - 1);
    EXPECT_EQ(pixels_of(whole, true), rectangle);
    EXPECT_EQ(pixels_of(clipped, true), inside(whole, 5, 14, 3, 12));
    EXPECT_EQ(inside(clipped, 5, 14, 3, 12).size(), clipped.dots.size());
    EXPECT_EQ(pixels_of(line), inside(whole_line, 5, 14, 3, 12));
    EXPECT_EQ(inside(line, 5, 14, 3, 12), pixels_of(line));
    drawn += clipped.dots.size();
  }
  EXPECT_GT(drawn, 1000u);
}

// Each family in each form ends in dots without coming back, whatever the
// routines in the other slots, and draws the same pixels from the same
// points in every form that takes them as given.
TEST(OmbraStandardChains, EveryRoutineEndsInDots) {
  const OT_Rendition rd = window();
  std::map<std::string, std::size_t> dots;
  for (const char* family :
       {"polytriangle", "colorized_polytriangle", "gouraud_polytriangle", "textured_polytriangle", "polyline",
        "colorized_polyline", "gouraud_polyline", "polymarker", "polygon"})
    for (const char* form : {"2d", "dc", "2di", "dci", "tiled"}) {
      Recorder r(true);
      const std::string name = std::string(form) + "_" + family;
      r.play(name + " -4,1,0 20,2,0 1,12,0 14,14,0 #0a0000 #140000 #1e0000 #280000 0/0/0 0/0/0 0/0/0 0/0/0",
             rd);
      EXPECT_GT(r.dots.size(), 0u) << name;
      dots[name] = r.dots.size();
    }
  for (const std::string family : {"polytriangle", "colorized_polytriangle", "gouraud_polytriangle",
                                   "textured_polytriangle", "polyline", "polymarker"}) {
    EXPECT_EQ(dots["2d_" + family], dots["2di_" + family]) << family;
    EXPECT_EQ(dots["tiled_" + family], dots["2di_" + family]) << family;
    EXPECT_EQ(dots["dc_" + family], dots["dci_" + family]) << family;
    if (family.ends_with("polytriangle")) {
      EXPECT_EQ(dots["2di_" + family], dots["2di_polytriangle"]) << family;
    }
  }
  EXPECT_EQ(dots["2di_polymarker"], 2u);
  EXPECT_EQ(dots["dci_polymarker"], 4u);
  Recorder clear(true);
  clear.play("clear_color", rd);
  EXPECT_EQ(pixels_of(clear, true).size(), 400u);
}

}  // namespace
