// The 2D and 2DI triangle forms against the hard clip, through the slots,
// and the exact triangle-against-rectangle clipper for far points.
#include <array>
#include <cmath>

#include "pixel/merge.h"
#include "tests/tarn_test_support.h"
#include "triangles/triangle_clipper.h"

namespace tarn::testing {
namespace {

constexpr int kWidth = 128, kHeight = 96;
constexpr OT_Int_Rectangle kClip{24, 100, 16, 80};

bool inside(int x, int y) {
  return x >= kClip.left && x <= kClip.right && y >= kClip.bottom && y <= kClip.top;
}

// Draws `points` whole through DCI in one harness and clipped through 2DI
// in another: inside the clip colour and depth agree, outside nothing.
void expect_clipped_like_whole(const Mode_Case& mode, const Points& points) {
  Renderer_Harness whole(mode, kWidth, kHeight), clipped(mode, kWidth, kHeight);
  clipped.set_hard_clip(kClip);
  whole.draw_dci(points);
  clipped.draw_2di(points);
  int shown = 0;
  for (int y = 0; y < kHeight; ++y)
    for (int x = 0; x < kWidth; ++x) {
      ASSERT_EQ(clipped.pixel(x, y), inside(x, y) ? whole.pixel(x, y) : clipped.clear_value())
          << x << "," << y;
      if (mode.depth()) {
        ASSERT_EQ(clipped.depth(x, y), inside(x, y) ? whole.depth(x, y) : 0xFFFF) << x << "," << y;
      }
      shown += inside(x, y) && whole.pixel(x, y) != whole.clear_value();
    }
  EXPECT_GT(shown, 0);
}

class Clip_Path : public ::testing::TestWithParam<Mode_Case> {};

TEST_P(Clip_Path, StripsCrossingEachSideAgreeWithTheUnclippedWalk) {
  // Inside, then a middle point beyond the left, the right, the bottom,
  // the top. One depth a strip: crossing spans step depth by their own rule.
  expect_clipped_like_whole(GetParam(), {{30, 20, 900}, {90, 25, 900}, {40, 70, 900}, {95, 75, 900}});
  expect_clipped_like_whole(GetParam(),
                            {{30, 20, 3000}, {5, 40, 3000}, {60, 60, 3000}, {70, 30, 3000}, {2, 90, 3000}});
  expect_clipped_like_whole(GetParam(),
                            {{40, 30, 65534}, {120, 45, 65534}, {60, 60, 65534}, {127, 2, 65534}});
  expect_clipped_like_whole(GetParam(), {{1, 1, 7}, {126, 3, 7}, {3, 94, 7}, {125, 93, 7}});
  // A triangle that reaches only the clip's last row: that row is drawn.
  expect_clipped_like_whole(GetParam(), {{30, 80, 0}, {60, 80, 0}, {45, 95, 0}});
  expect_clipped_like_whole(GetParam(), {{33, 5, 0}, {64, 20, 0}, {90, 3, 0}});
}

TEST_P(Clip_Path, FloatFormRoundsAllThreeCoordinatesThenClips) {
  Renderer_Harness a(GetParam(), kWidth, kHeight), b(GetParam(), kWidth, kHeight);
  a.set_hard_clip(kClip);
  b.set_hard_clip(kClip);
  a.draw_2d({{10.5f, 5.4f, 99.5f}, {110.49f, 30.f, 99.5f}, {40.f, 90.5f, 99.5f}, {120.f, 85.f, 99.5f}});
  b.draw_2di({{11, 5, 100}, {110, 30, 100}, {40, 91, 100}, {120, 85, 100}});
  EXPECT_EQ(a.snapshot(), b.snapshot());
  EXPECT_FALSE(a.drawn().empty());
}

TEST_P(Clip_Path, ListsWhollyOutsideDrawNothing) {
  Renderer_Harness h(GetParam(), kWidth, kHeight);
  h.set_hard_clip(kClip);
  h.draw_2di({{0, 0, 0}, {20, 0, 0}, {0, 15, 0}, {20, 15, 0}});
  h.draw_2di({{110, 10, 0}, {127, 10, 0}, {115, 95, 0}});
  h.draw_2di({{30, 81, 0}, {90, 81, 0}, {60, 95, 0}});
  EXPECT_TRUE(h.drawn().empty());
}

// Images with guard bytes on both sides, to catch a write outside.
struct Guarded_Images {
  static constexpr std::size_t kGuard = 4096;
  std::vector<std::unique_ptr<std::vector<byte>>> blocks;
  static void make(void* context, int width, int height, const OT_Image_Format* format,
                   OT_Shared_Image* out) {
    const int row_bytes = width * OT_Shared_Image_Data::pixel_bytes(*format);
    auto block = std::make_unique<std::vector<byte>>(kGuard * 2 + std::size_t(row_bytes) * height, 0xA5);
    *out = OT_Shared_Image(width, height, *format, row_bytes, block->data() + kGuard, false);
    static_cast<Guarded_Images*>(context)->blocks.push_back(std::move(block));
  }
  bool intact() const {
    for (const auto& b : blocks)
      for (std::size_t i = 0; i < kGuard; ++i)
        if ((*b)[i] != 0xA5 || (*b)[b->size() - 1 - i] != 0xA5) return false;
    return true;
  }
};

TEST_P(Clip_Path, FarPointsFillExactlyTheClipAndWriteNothingOutside) {
  Guarded_Images images;
  Renderer_Harness h(GetParam(), kWidth, kHeight, {0, 0}, {&images, &Guarded_Images::make});
  h.set_hard_clip(kClip);
  const int far = 1000000;
  h.draw_2di({{-far, -far, 10}, {far, -far / 2, 10}, {0, far, 10}});
  h.draw_2di({{INT32_MIN, 5, 3}, {INT32_MAX, 7, 3}, {40, INT32_MAX, 3}, {-far, -far, 3}});
  h.draw_2d({{-3e9f, 50.f, 3}, {3e9f, 52.f, 3}, {40.f, 60.f, 3}});
  for (int y = 0; y < kHeight; ++y)
    for (int x = 0; x < kWidth; ++x)
      ASSERT_EQ(h.pixel(x, y), inside(x, y) ? h.drawn_value() : h.clear_value()) << x << "," << y;
  if (GetParam().depth()) {
    EXPECT_EQ(h.depth(50, 50), 3);
  }
  EXPECT_TRUE(images.intact());
}

INSTANTIATE_TEST_SUITE_P(AllModes, Clip_Path, ::testing::ValuesIn(kAllModes), mode_name);

TEST(Clip_Path_Colorized, CrossingTrianglesTakeTheirOwnColoursFromTheList) {
  const Points strip{{30, 20, 100}, {90, 25, 100}, {5, 60, 100}, {95, 75, 100}, {40, 90, 100}};
  const std::vector<OT_RGB32> colors{OT_RGB32::rgba(255, 0, 0), OT_RGB32::rgba(0, 255, 0),
                                     OT_RGB32::rgba(0, 0, 255)};
  for (const Mode_Case& mode : {kRgb32Alpha, kRgb32, kZRgb32Alpha, kZRgb32}) {
    Renderer_Harness whole(mode, kWidth, kHeight), clipped(mode, kWidth, kHeight);
    clipped.set_hard_clip(kClip);
    whole.colorized(strip, colors, false);
    clipped.renderer().draw_2di_colorized_polytriangle(clipped.rendition(), 5, strip.data(), colors.data(),
                                                       false);
    for (int y = kClip.bottom; y <= kClip.top; ++y)
      for (int x = kClip.left; x <= kClip.right; ++x)
        ASSERT_EQ(clipped.pixel(x, y), whole.pixel(x, y)) << mode.name << " " << x << "," << y;
  }
}

// In the mapped mode under merge with a pattern, crossing triangles merge
// while inside runs store plainly.
TEST(Clip_Path_Merge, MappedPatternMergesOnlyInCrossingTriangles) {
  Renderer_Harness h(kMapped, kWidth, kHeight);
  const byte solid[1] = {0};
  h.rendition().writable_face()->pattern = 74;
  h.rendition().writable_face()->user_pattern = OT_User_Pattern(new OT_User_Pattern_Data(8, 1, solid, 1));
  h.rendition().writable_raster()->write_mode = 20;
  h.set_hard_clip(kClip);
  byte merged = 0;
  for (byte index : {byte(5), byte(3)}) {
    h.set_color({}, index);
    h.draw_2di({{30, 20, 0}, {60, 20, 0}, {30, 40, 0}});   // inside
    h.draw_2di({{70, 20, 0}, {120, 20, 0}, {70, 40, 0}});  // crossing the right side
    merge_mapped(h.renderer(), &merged, index);
  }
  EXPECT_EQ(h.pixel(32, 22), 3u);
  EXPECT_NE(merged, 3);
  EXPECT_EQ(h.pixel(72, 22), merged);
}

// ---- The exact clipper -----------------------------------------------------

using Xyz = std::array<int, 3>;
constexpr OT_Int_Rectangle kBox{0, 100, 0, 100};
constexpr OT_Int_Rectangle kWalkLimits{-4000, 28760, -4000, 28760};

struct Clipped {
  int count = -1;
  OT_DCI_Point points[kMaxClipVertices];
  OT_RGB32 colors[kMaxClipVertices];
  OT_Parameter params[kMaxClipVertices];
  float w[kMaxClipVertices];
  std::vector<Xyz> xyz() const {
    std::vector<Xyz> out;
    for (int i = 0; i < count; ++i) out.push_back({points[i].x, points[i].y, points[i].z});
    return out;
  }
};

Clipped clip(const Points& p, const OT_Int_Rectangle& rect, const OT_RGB32* c = nullptr,
             const OT_Parameter* t = nullptr, std::array<float, 3> w = {1, 1, 1},
             std::uint32_t texture_flags = 0) {
  OT_Rendition rendition(new OT_Rendition_Data);
  rendition.writable_raster()->texture_flags = texture_flags;
  Clipped out;
  clip_triangle_to_rectangle(rendition, p.data(), c, c ? c + 1 : nullptr, c ? c + 2 : nullptr, t,
                             t ? t + 1 : nullptr, t ? t + 2 : nullptr, w[0], w[1], w[2], rect, out.count,
                             out.points, out.colors, out.params, out.w);
  return out;
}

TEST(Triangle_Clipper, StripsOfTheClippedPolygon) {
  // z = x on the bottom edge; the long edge meets x = 28760 at y 19424.8.
  EXPECT_EQ(clip({{0, 0, 0}, {1000000, 0, 1000000}, {0, 20000, 0}}, kWalkLimits).xyz(),
            (std::vector<Xyz>{{28760, 0, 28760}, {28760, 19425, 28760}, {0, 0, 0}, {0, 20000, 0}}));
  // Three corners cut off, z = x + 2y: seven points in strip order.
  EXPECT_EQ(clip({{56, -36, -16}, {380, 450, 1280}, {-25, 45, 65}}, kBox).xyz(),
            (std::vector<Xyz>{{80, 0, 80},
                              {100, 30, 160},
                              {20, 0, 20},
                              {100, 100, 300},
                              {0, 20, 40},
                              {30, 100, 230},
                              {0, 70, 140}}));
  // Out by the bottom, round the corner (100,0), back by the right.
  EXPECT_EQ(clip({{50, 50, 0}, {50, -50, 0}, {200, 50, 0}}, kBox).xyz(),
            (std::vector<Xyz>{{50, 0, 0}, {100, 0, 0}, {50, 50, 0}, {100, 50, 0}}));
  // All inside: the triangle, p0 last.
  EXPECT_EQ(clip({{10, 10, 1}, {90, 10, 2}, {50, 90, 3}}, kBox).xyz(),
            (std::vector<Xyz>{{90, 10, 2}, {50, 90, 3}, {10, 10, 1}}));
  // Points on the sides are inside.
  EXPECT_EQ(clip({{100, 50, 0}, {50, 20, 0}, {50, 80, 0}}, kBox).xyz(),
            (std::vector<Xyz>{{50, 20, 0}, {50, 80, 0}, {100, 50, 0}}));
  EXPECT_EQ(clip({{0, 50, 0}, {50, 80, 0}, {50, 100, 0}}, kBox).xyz(),
            (std::vector<Xyz>{{50, 80, 0}, {50, 100, 0}, {0, 50, 0}}));
  // An edge that leaves from a point on the side keeps that point, twice.
  EXPECT_EQ(clip({{100, 50, 0}, {150, 90, 0}, {50, 20, 0}}, kBox).xyz(),
            (std::vector<Xyz>{{100, 50, 0}, {100, 55, 0}, {100, 50, 0}, {50, 20, 0}}));
  // An edge touching a corner leaves the corner twice.
  EXPECT_EQ(clip({{50, 50, 0}, {150, 50, 0}, {50, 150, 0}}, kBox).xyz(),
            (std::vector<Xyz>{{100, 50, 0}, {100, 100, 0}, {50, 50, 0}, {100, 100, 0}, {50, 100, 0}}));
  // Halves round upward: y = z = -2.5 gives -2, 2.5 gives 3.
  const OT_Int_Rectangle box{-10, 10, -10, 10};
  EXPECT_EQ(clip({{-20, -5, -5}, {0, 0, 0}, {-20, 0, 0}}, box).xyz(),
            (std::vector<Xyz>{{-10, -2, -2}, {0, 0, 0}, {-10, 0, 0}}));
  EXPECT_EQ(clip({{-20, 5, 5}, {0, 0, 0}, {-20, 0, 0}}, box).xyz(),
            (std::vector<Xyz>{{-10, 3, 3}, {0, 0, 0}, {-10, 0, 0}}));
}

TEST(Triangle_Clipper, CoveringTriangleGivesTheFourCornersOnItsPlaneAndOutsideGivesNothing) {
  // z = 0.5x + 0.25y + 1000, in both windings.
  const std::vector<Xyz> corners{
      {-4000, -4000, -2000}, {-4000, 28760, 6190}, {28760, -4000, 14380}, {28760, 28760, 22570}};
  EXPECT_EQ(
      clip({{-100000, -100000, -74000}, {300000, -100000, 126000}, {-100000, 300000, 26000}}, kWalkLimits)
          .xyz(),
      corners);
  EXPECT_EQ(
      clip({{-100000, -100000, -74000}, {-100000, 300000, 26000}, {300000, -100000, 126000}}, kWalkLimits)
          .xyz(),
      corners);
  EXPECT_LT(clip({{200, 10, 0}, {300, 50, 0}, {250, 90, 0}}, kBox).count, 3);
  EXPECT_LT(clip({{-50, 10, 0}, {10, -50, 0}, {-50, -50, 0}}, kBox).count, 3);
  EXPECT_LT(clip({{-1000, 150, 0}, {1000, 150, 0}, {0, 2000, 0}}, kBox).count, 3);
}

TEST(Triangle_Clipper, ColoursOnEdgesAndCornersTruncateAndClamp) {
  // Out on the left, over the two top corners, back on the right.
  const OT_RGB32 colors[3] = {OT_RGB32::rgba(0, 200, 10, 255), OT_RGB32::rgba(255, 7, 91, 255),
                              OT_RGB32::rgba(255, 101, 249, 0)};
  const Clipped out = clip({{50, 50, 0}, {-950, 150, 0}, {1050, 150, 0}}, kBox, colors);
  ASSERT_EQ(out.count, 5);
  EXPECT_EQ(out.xyz(), (std::vector<Xyz>{{0, 55, 0}, {0, 100, 0}, {50, 50, 0}, {100, 100, 0}, {100, 55, 0}}));
  const std::uint32_t expected[5] = {
      OT_RGB32::rgba(12, 190, 14, 255).word(), OT_RGB32::rgba(127, 124, 86, 197).word(),
      OT_RGB32::rgba(0, 200, 10, 255).word(), OT_RGB32::rgba(127, 129, 93, 184).word(),
      OT_RGB32::rgba(12, 195, 21, 242).word()};
  for (int i = 0; i < 5; ++i) EXPECT_EQ(out.colors[i].word(), expected[i]) << i;
  // A sliver where the plane gives about 275 red and -20 green: clamped.
  const OT_RGB32 sliver[3] = {OT_RGB32::rgba(255, 0, 100, 255), OT_RGB32::rgba(255, 0, 100, 255),
                              OT_RGB32::rgba(0, 255, 100, 255)};
  const Clipped s = clip({{-100000000, -100000039, 0}, {100000000, 100000040, 0}, {100000000, 99999979, 0}},
                         OT_Int_Rectangle{0, 0, 0, 0}, sliver);
  ASSERT_EQ(s.count, 4);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(s.colors[i].word(), OT_RGB32::rgba(255, 0, 100, 255).word()) << i;
}

TEST(Triangle_Clipper, ParametersWithAndWithoutPerspective) {
  // Leaves on the right at (100,50), t 0.5 of p0-p1; the corner (100,100);
  // back at (50,100), t 6/11 of p2-p0.
  const OT_Parameter params[3] = {{0, 0, 1}, {8, 0, 1}, {0, 11, 1}};
  const Points p{{50, 50, 0}, {150, 50, 0}, {50, 160, 0}};
  Clipped out = clip(p, kBox, nullptr, params, {1, 3, 1}, 1);
  ASSERT_EQ(out.count, 4);
  // w 1 -> 3 at t 0.5 gives t' 0.25; at the corner 1/w, u/w, v/w are
  // linear on the screen: w 1.5, u 2, v 7.5; equal w leaves t' = t.
  EXPECT_EQ(out.params[0].u, 2.0f);
  EXPECT_EQ(out.w[0], 1.5f);
  EXPECT_NEAR(out.params[1].u, 2.0, 1e-5);
  EXPECT_NEAR(out.params[1].v, 7.5, 1e-5);
  EXPECT_NEAR(out.w[1], 1.5, 1e-6);
  EXPECT_FLOAT_EQ(out.params[3].v, 5.0f);
  out = clip(p, kBox, nullptr, params, {1, 3, 1}, 2);  // bit 1 alone: linear
  EXPECT_EQ(out.params[0].u, 4.0f);
  EXPECT_EQ(out.w[0], 2.0f);
  EXPECT_NEAR(out.params[1].v, 5.0, 1e-5);
  // Zero area: the outline runs out and back along y = 50, all finite.
  const OT_Parameter line[3] = {{0, 0, 0}, {300, 0, 0}, {150, 0, 0}};
  out = clip({{-100, 50, -100}, {200, 50, 200}, {50, 50, 50}}, kBox, nullptr, line, {1, 1, 1}, 1);
  ASSERT_EQ(out.count, 5);
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(out.points[i].y, 50);
    EXPECT_EQ(out.points[i].z, out.points[i].x);
    EXPECT_NEAR(out.params[i].u, out.points[i].x + 100, 1e-3) << i;
  }
}

}  // namespace
}  // namespace tarn::testing
