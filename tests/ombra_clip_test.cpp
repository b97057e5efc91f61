// Outcodes and the preclip functions.
#include <gtest/gtest.h>

#include <cmath>

#include "host/ombra.h"

namespace {

constexpr OT_Int_Rectangle kRect{10, 20, 30, 40};

short code_of(int x, int y) {
  const OT_DCI_Point p{x, y, 0};
  short code = -1;
  OB_Clip(kRect, 1, &p, &code);
  return code;
}

short code_of(double x, double y) {
  const OT_Point_D p{x, y, 0.0};
  short code = -1;
  OB_Clip(kRect, 1, &p, &code);
  return code;
}

TEST(OmbraClip, CodesOnBothSidesOfEachEdge) {
  EXPECT_EQ(code_of(10, 35), 0);
  EXPECT_EQ(code_of(9, 35), OT_Outcode_Left);
  EXPECT_EQ(code_of(20, 35), 0);
  EXPECT_EQ(code_of(21, 35), OT_Outcode_Right);
  EXPECT_EQ(code_of(15, 40), 0);
  EXPECT_EQ(code_of(15, 41), OT_Outcode_Above);
  EXPECT_EQ(code_of(15, 30), 0);
  EXPECT_EQ(code_of(15, 29), OT_Outcode_Below);
  EXPECT_EQ(code_of(9, 41), OT_Outcode_Left | OT_Outcode_Above);
  EXPECT_EQ(code_of(21, 29), OT_Outcode_Right | OT_Outcode_Below);
  EXPECT_EQ(code_of(10, 40), 0);
  EXPECT_EQ(code_of(20, 30), 0);
}

TEST(OmbraClip, DoubleCodesUseTheExactValues) {
  EXPECT_EQ(code_of(10.0, 35.0), 0);
  EXPECT_EQ(code_of(9.999, 35.0), OT_Outcode_Left);
  EXPECT_EQ(code_of(20.0, 35.0), 0);
  EXPECT_EQ(code_of(20.001, 35.0), OT_Outcode_Right);
  EXPECT_EQ(code_of(15.0, 40.001), OT_Outcode_Above);
  EXPECT_EQ(code_of(15.0, 29.999), OT_Outcode_Below);
}

TEST(OmbraClip, ResultTellsInsideNothingOrWalk) {
  short codes[4];
  const OT_DCI_Point inside[3] = {{10, 30, 0}, {20, 40, 0}, {15, 35, 0}};
  EXPECT_EQ(OB_Clip(kRect, 3, inside, codes), 3);
  const OT_DCI_Point left[3] = {{0, 0, 0}, {9, 35, 0}, {5, 100, 0}};
  EXPECT_EQ(OB_Clip(kRect, 3, left, codes), 0);
  EXPECT_EQ(codes[0], OT_Outcode_Left | OT_Outcode_Below);
  EXPECT_EQ(codes[2], OT_Outcode_Left | OT_Outcode_Above);
  // Out on two sides with nothing in common: may cross.
  const OT_DCI_Point across[2] = {{0, 35, 0}, {30, 35, 0}};
  EXPECT_EQ(OB_Clip(kRect, 2, across, codes), -1);
  const OT_DCI_Point mixed[2] = {{15, 35, 0}, {30, 35, 0}};
  EXPECT_EQ(OB_Clip(kRect, 2, mixed, codes), -1);
  const OT_DCI_Point above[2] = {{0, 50, 0}, {30, 50, 0}};
  EXPECT_EQ(OB_Clip(kRect, 2, above, codes), 0);
  const OT_Point_D d_inside[2] = {{10.0, 30.0, 0.0}, {20.0, 40.0, 0.0}};
  EXPECT_EQ(OB_Clip(kRect, 2, d_inside, codes), 2);
  const OT_Point_D d_across[2] = {{9.5, 35.0, 0.0}, {20.5, 35.0, 0.0}};
  EXPECT_EQ(OB_Clip(kRect, 2, d_across, codes), -1);
}

TEST(OmbraPreclip, TailIsWhereTheSegmentLeaves) {
  const OT_Point_D points[2] = {{15.0, 35.0, 100.0}, {25.0, 35.0, 200.0}};
  const OT_RGB32 colors[2] = {OT_RGB32::rgba(0, 0, 0, 0), OT_RGB32::rgba(200, 100, 50, 255)};
  OT_DCI_Point out{};
  OT_RGB32 color{};
  OB_Preclip_Tail(OT_Outcode_Right, kRect, points, &out, colors, &color);
  EXPECT_EQ(out.x, 20);
  EXPECT_EQ(out.y, 35);
  EXPECT_EQ(out.z, 150);
  EXPECT_EQ(color, OT_RGB32::rgba(100, 50, 25, 128));
}

TEST(OmbraPreclip, HeadIsWhereTheSegmentEnters) {
  const OT_Point_D points[2] = {{15.0, 20.0, 0.0}, {15.0, 34.0, 0.0}};
  OT_DCI_Point out{};
  OB_Preclip_Head(OT_Outcode_Below, kRect, points, &out, nullptr, nullptr);
  EXPECT_EQ(out.x, 15);
  EXPECT_EQ(out.y, 30);
}

TEST(OmbraPreclip, CutsRoundHalvesUpAndStayInside) {
  // Leaves at x = 20 where y = 35.5.
  const OT_Point_D points[2] = {{15.0, 35.0, 0.0}, {25.0, 36.0, 0.0}};
  OT_DCI_Point out{};
  OB_Preclip_Tail(OT_Outcode_Right, kRect, points, &out, nullptr, nullptr);
  EXPECT_EQ(out.x, 20);
  EXPECT_EQ(out.y, 36);
  // A cut at 40.6 would round to 41, beyond the top: it is clamped.
  const OT_Point_D steep[2] = {{15.0, 35.0, 0.0}, {15.2, 45.0, 0.0}};
  OB_Preclip_Tail(OT_Outcode_Above, kRect, steep, &out, nullptr, nullptr);
  EXPECT_EQ(out.y, 40);
  EXPECT_EQ(out.x, 15);
}

TEST(OmbraPreclip, EndsOfASegmentOutsideAtBothEnds) {
  const OT_Point_D points[2] = {{0.0, 35.0, 0.0}, {30.0, 35.0, 30.0}};
  const short codes[2] = {OT_Outcode_Left, OT_Outcode_Right};
  OT_DCI_Point out[2];
  const OT_RGB32 colors[2] = {OT_RGB32::rgba(0, 0, 0), OT_RGB32::rgba(30, 60, 90)};
  OT_RGB32 out_colors[2];
  ASSERT_TRUE(OB_Preclip_Ends(codes, kRect, points, out, colors, out_colors));
  EXPECT_EQ(out[0].x, 10);
  EXPECT_EQ(out[1].x, 20);
  EXPECT_EQ(out[0].z, 10);
  EXPECT_EQ(out[1].z, 20);
  EXPECT_EQ(out_colors[0], OT_RGB32::rgba(10, 20, 30));
  EXPECT_EQ(out_colors[1], OT_RGB32::rgba(20, 40, 60));
  // Passing by the corner.
  const OT_Point_D miss[2] = {{0.0, 35.0, 0.0}, {14.0, 49.0, 0.0}};
  const short miss_codes[2] = {OT_Outcode_Left, OT_Outcode_Above};
  EXPECT_FALSE(OB_Preclip_Ends(miss_codes, kRect, miss, out, nullptr, nullptr));
}

double area(const OT_DCI_Point& a, const OT_DCI_Point& b, const OT_DCI_Point& c) {
  return 0.5 * ((double(b.x) - a.x) * (double(c.y) - a.y) - (double(c.x) - a.x) * (double(b.y) - a.y));
}

TEST(OmbraPreclip, TriangleInsideComesBackAsItIs) {
  const OT_Point_D points[3] = {{11.0, 31.0, 5.0}, {19.0, 31.0, 6.0}, {15.0, 39.0, 7.0}};
  int count = 0;
  OT_DCI_Point out[7];
  ASSERT_TRUE(OB_Preclip_2D_Triangle(nullptr, nullptr, kRect, points, count, out, nullptr, nullptr, nullptr, 0,
                                     nullptr, nullptr, nullptr, nullptr, nullptr));
  ASSERT_EQ(count, 3);
  EXPECT_EQ(out[0].x, 11);
  EXPECT_EQ(out[1].x, 19);
  EXPECT_EQ(out[2].y, 39);
  EXPECT_EQ(out[2].z, 7);
}

TEST(OmbraPreclip, TriangleOverTheRectangleIsItsFourCornersAsAStrip) {
  const OT_Point_D points[3] = {{-100.0, -100.0, 0.0}, {300.0, -100.0, 0.0}, {-100.0, 300.0, 0.0}};
  int count = 0;
  OT_DCI_Point out[7];
  ASSERT_TRUE(OB_Preclip_2D_Triangle(nullptr, nullptr, kRect, points, count, out, nullptr, nullptr, nullptr, 0,
                                     nullptr, nullptr, nullptr, nullptr, nullptr));
  ASSERT_EQ(count, 4);
  double total = 0.0;
  for (int k = 0; k + 2 < count; ++k) total += std::fabs(area(out[k], out[k + 1], out[k + 2]));
  EXPECT_EQ(total, 100.0);
  for (int k = 0; k < count; ++k) {
    EXPECT_TRUE(out[k].x == 10 || out[k].x == 20);
    EXPECT_TRUE(out[k].y == 30 || out[k].y == 40);
  }
}

TEST(OmbraPreclip, TriangleCutOnAllSidesCarriesItsLists) {
  // The cut keeps the rectangle less its two lower corners: six corners,
  // (12,30) (18,30) (20,33) (20,40) (10,40) (10,33) once rounded.
  const OT_Point_D points[3] = {{15.0, 25.0, 0.0}, {26.0, 42.0, 0.0}, {4.0, 42.0, 0.0}};
  const OT_RGB32 colors[3] = {OT_RGB32::rgba(10, 10, 10), OT_RGB32::rgba(10, 10, 10), OT_RGB32::rgba(10, 10, 10)};
  // u equals x, v equals y: linear, so the cut corners keep that relation.
  const OT_Parameter params[6] = {{15, 25, 0}, {1, 1, 1}, {26, 42, 0}, {1, 1, 1}, {4, 42, 0}, {1, 1, 1}};
  const float w[3] = {1.0f, 2.0f, 3.0f};
  const OT_Vector normals[3] = {{0, 0, 2}, {0, 3, 0}, {4, 0, 0}};
  int count = 0;
  OT_DCI_Point out[7];
  OT_RGB32 out_colors[7];
  OT_Parameter out_params[14];
  float out_w[7];
  OT_Vector out_normals[7];
  ASSERT_TRUE(OB_Preclip_2D_Triangle(nullptr, nullptr, kRect, points, count, out, colors, out_colors, params, 2,
                                     out_params, w, out_w, normals, out_normals));
  ASSERT_EQ(count, 6);
  for (int k = 0; k < count; ++k) {
    EXPECT_GE(out[k].x, 10);
    EXPECT_LE(out[k].x, 20);
    EXPECT_GE(out[k].y, 30);
    EXPECT_LE(out[k].y, 40);
    EXPECT_EQ(out_colors[k], OT_RGB32::rgba(10, 10, 10));
    EXPECT_NEAR(out_params[2 * k].u, out[k].x, 0.5);
    EXPECT_NEAR(out_params[2 * k].v, out[k].y, 0.5);
    EXPECT_FLOAT_EQ(out_params[2 * k + 1].u, 1.0f);
    EXPECT_GE(out_w[k], 1.0f);
    EXPECT_LE(out_w[k], 3.0f);
    const OT_Vector& n = out_normals[k];
    EXPECT_NEAR(n.x * n.x + n.y * n.y + n.z * n.z, 1.0, 1e-5);
  }
  // The strip's triangles don't overlap: their areas add up to the cut.
  double total = 0.0;
  for (int k = 0; k + 2 < count; ++k) total += std::fabs(area(out[k], out[k + 1], out[k + 2]));
  EXPECT_EQ(total, 94.0);
}

TEST(OmbraPreclip, TriangleOutsideGivesNothing) {
  const OT_Point_D points[3] = {{0.0, 0.0, 0.0}, {5.0, 0.0, 0.0}, {0.0, 5.0, 0.0}};
  int count = 99;
  OT_DCI_Point out[7];
  EXPECT_FALSE(OB_Preclip_2D_Triangle(nullptr, nullptr, kRect, points, count, out, nullptr, nullptr, nullptr, 0,
                                      nullptr, nullptr, nullptr, nullptr, nullptr));
  EXPECT_EQ(count, 0);
}

}  // namespace
