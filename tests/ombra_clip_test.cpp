// Outcodes and the preclip functions.
#include <gtest/gtest.h>

#include <cmath>

#include "host/ombra.h"

namespace {

constexpr OT_Int_Rectangle kRect{10, 20, 30, 40};
constexpr short L = OT_Outcode_Left, Rt = OT_Outcode_Right, A = OT_Outcode_Above, B = OT_Outcode_Below;

TEST(OmbraClip, CodesOnBothSidesOfEachEdgeForIntegersAndDoubles) {
  struct Case {
    double x, y;
    short code;
  };
  const Case cases[] = {{10, 35, 0},     {9, 35, L},     {20, 35, 0},    {21, 35, Rt},     {15, 40, 0},
                        {15, 41, A},     {15, 30, 0},    {15, 29, B},    {9, 41, L | A},   {21, 29, Rt | B},
                        {10, 40, 0},     {20, 30, 0},    {9.999, 35, L}, {20.001, 35, Rt}, {15, 40.001, A},
                        {15, 29.999, B}, {10.0, 30.0, 0}};
  for (const Case& c : cases) {
    const OT_Point_D d{c.x, c.y, 0};
    short code = -1;
    EXPECT_EQ(OB_Clip(kRect, 1, &d, &code), c.code ? 0 : 1);
    EXPECT_EQ(code, c.code) << c.x << "," << c.y;
    if (c.x != std::floor(c.x) || c.y != std::floor(c.y)) continue;
    const OT_DCI_Point i{int(c.x), int(c.y), 0};
    code = -1;
    OB_Clip(kRect, 1, &i, &code);
    EXPECT_EQ(code, c.code) << c.x << "," << c.y;
  }
}

TEST(OmbraClip, ResultTellsInsideNothingOrMaybe) {
  short codes[3];
  const OT_DCI_Point inside[3] = {{10, 30, 0}, {20, 40, 0}, {15, 35, 0}};
  EXPECT_EQ(OB_Clip(kRect, 3, inside, codes), 3);
  const OT_DCI_Point left[3] = {{0, 0, 0}, {9, 35, 0}, {5, 100, 0}};  // all left, on three sides
  EXPECT_EQ(OB_Clip(kRect, 3, left, codes), 0);
  EXPECT_EQ(codes[0], L | B);
  EXPECT_EQ(codes[2], L | A);
  const OT_DCI_Point across[2] = {{0, 35, 0}, {30, 35, 0}};
  EXPECT_EQ(OB_Clip(kRect, 2, across, codes), -1);
  const OT_DCI_Point half[2] = {{15, 35, 0}, {30, 35, 0}};
  EXPECT_EQ(OB_Clip(kRect, 2, half, codes), -1);
}

// The preclip functions: cuts in double precision, x and y rounded to
// nearest and clamped into the rectangle, z rounded, colours interpolated.
TEST(OmbraPreclip, HeadTailAndEnds) {
  const OT_RGB32 colors[2] = {OT_RGB32::rgba(0, 0, 0, 0), OT_RGB32::rgba(200, 100, 50, 255)};
  OT_DCI_Point out[2]{};
  OT_RGB32 out_colors[2]{};
  const OT_Point_D leaving[2] = {{15.0, 35.0, 100.0}, {25.0, 35.0, 200.0}};
  OB_Preclip_Tail(Rt, kRect, leaving, out, colors, out_colors);
  EXPECT_EQ((std::vector<int>{out[0].x, out[0].y, out[0].z}), (std::vector<int>{20, 35, 150}));
  EXPECT_EQ(out_colors[0], OT_RGB32::rgba(100, 50, 25, 128));
  const OT_Point_D entering[2] = {{15.0, 20.0, 0.0}, {15.0, 34.0, 0.0}};
  OB_Preclip_Head(B, kRect, entering, out, nullptr, nullptr);
  EXPECT_EQ((std::vector<int>{out[0].x, out[0].y}), (std::vector<int>{15, 30}));
  const OT_Point_D half[2] = {{15.0, 35.0, 0.0}, {25.0, 36.0, 0.0}};  // leaves at y 35.5
  OB_Preclip_Tail(Rt, kRect, half, out, nullptr, nullptr);
  EXPECT_EQ(out[0].y, 36);
  const OT_Point_D steep[2] = {{15.0, 35.0, 0.0}, {15.2, 45.0, 0.0}};  // 40.6 is clamped to 40
  OB_Preclip_Tail(A, kRect, steep, out, nullptr, nullptr);
  EXPECT_EQ((std::vector<int>{out[0].x, out[0].y}), (std::vector<int>{15, 40}));

  const OT_Point_D through[2] = {{0.0, 35.0, 0.0}, {30.0, 35.0, 30.0}};
  const short codes[2] = {L, Rt};
  const OT_RGB32 ramp[2] = {OT_RGB32::rgba(0, 0, 0), OT_RGB32::rgba(30, 60, 90)};
  ASSERT_TRUE(OB_Preclip_Ends(codes, kRect, through, out, ramp, out_colors));
  EXPECT_EQ((std::vector<int>{out[0].x, out[0].z, out[1].x, out[1].z}), (std::vector<int>{10, 10, 20, 20}));
  EXPECT_EQ(out_colors[0], OT_RGB32::rgba(10, 20, 30));
  EXPECT_EQ(out_colors[1], OT_RGB32::rgba(20, 40, 60));
  const OT_Point_D miss[2] = {{0.0, 35.0, 0.0}, {14.0, 49.0, 0.0}};
  const short miss_codes[2] = {L, A};
  EXPECT_FALSE(OB_Preclip_Ends(miss_codes, kRect, miss, out, nullptr, nullptr));
  const OT_Point_D touch[2] = {{5.0, 45.0, 0.0}, {15.0, 35.0, 0.0}};  // enters at the corner (10, 40)
  const short touch_codes[2] = {L | A, 0};
  ASSERT_TRUE(OB_Preclip_Ends(touch_codes, kRect, touch, out, nullptr, nullptr));
  EXPECT_EQ((std::vector<int>{out[0].x, out[0].y, out[1].x, out[1].y}), (std::vector<int>{10, 40, 15, 35}));
}

double area(const OT_DCI_Point* p, int count) {
  double total = 0.0;
  for (int k = 0; k + 2 < count; ++k)
    total += 0.5 * std::fabs((double(p[k + 1].x) - p[k].x) * (double(p[k + 2].y) - p[k].y) -
                             (double(p[k + 2].x) - p[k].x) * (double(p[k + 1].y) - p[k].y));
  return total;
}

TEST(OmbraPreclip, TrianglesComeBackAsStripsOfTheirPartInside) {
  int count = 99;
  OT_DCI_Point out[7];
  auto clip = [&](std::initializer_list<OT_Point_D> points) {
    return OB_Preclip_2D_Triangle(nullptr, nullptr, kRect, std::data(points), count, out, nullptr, nullptr,
                                  nullptr, 0, nullptr, nullptr, nullptr, nullptr, nullptr);
  };
  EXPECT_FALSE(clip({{0, 0, 0}, {5, 0, 0}, {0, 5, 0}}));
  EXPECT_EQ(count, 0);
  ASSERT_TRUE(clip({{11, 31, 5}, {19, 31, 6}, {15, 39, 7}}));
  ASSERT_EQ(count, 3);
  EXPECT_EQ((std::vector<int>{out[0].x, out[1].x, out[2].y, out[2].z}), (std::vector<int>{11, 19, 39, 7}));
  ASSERT_TRUE(clip({{-100, -100, 0}, {300, -100, 0}, {-100, 300, 0}}));
  ASSERT_EQ(count, 4);
  EXPECT_EQ(area(out, count), 100.0);
}

TEST(OmbraPreclip, TriangleCutOnAllSidesCarriesItsLists) {
  // What is left is the rectangle less its two lower corners: six corners,
  // (12,30) (18,30) (20,33) (20,40) (10,40) (10,33) once rounded.
  const OT_Point_D points[3] = {{15.0, 25.0, 0.0}, {26.0, 42.0, 0.0}, {4.0, 42.0, 0.0}};
  const OT_RGB32 colors[3] = {OT_RGB32::rgba(10, 0, 0), OT_RGB32::rgba(10, 0, 0), OT_RGB32::rgba(10, 0, 0)};
  // u equals x and v equals y: linear, so the cut corners keep that relation.
  const OT_Parameter params[6] = {{15, 25, 0}, {1, 1, 1}, {26, 42, 0}, {1, 1, 1}, {4, 42, 0}, {1, 1, 1}};
  const float w[3] = {1.0f, 2.0f, 3.0f};
  const OT_Vector normals[3] = {{0, 0, 2}, {0, 3, 0}, {4, 0, 0}};
  int count = 0;
  OT_DCI_Point out[7];
  OT_RGB32 out_colors[7];
  OT_Parameter out_params[14];
  float out_w[7];
  OT_Vector out_normals[7];
  ASSERT_TRUE(OB_Preclip_2D_Triangle(nullptr, nullptr, kRect, points, count, out, colors, out_colors, params,
                                     2, out_params, w, out_w, normals, out_normals));
  ASSERT_EQ(count, 6);
  EXPECT_EQ(area(out, count), 94.0);  // the strip's triangles don't overlap
  for (int k = 0; k < count; ++k) {
    SCOPED_TRACE(k);
    EXPECT_TRUE(out[k].x >= 10 && out[k].x <= 20 && out[k].y >= 30 && out[k].y <= 40);
    EXPECT_EQ(out_colors[k], OT_RGB32::rgba(10, 0, 0));
    EXPECT_NEAR(out_params[2 * k].u, out[k].x, 0.5);
    EXPECT_NEAR(out_params[2 * k].v, out[k].y, 0.5);
    EXPECT_EQ(out_params[2 * k + 1].u, 1.0f);
    EXPECT_TRUE(out_w[k] >= 1.0f && out_w[k] <= 3.0f);
    const OT_Vector& n = out_normals[k];
    EXPECT_NEAR(n.x * n.x + n.y * n.y + n.z * n.z, 1.0, 1e-5);
  }
}

}  // namespace
