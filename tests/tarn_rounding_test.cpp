// Float and double coordinates to pixels.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>

#include "pixel/rounding.h"

namespace tarn {
namespace {

TEST(RoundFloat, ExactHalvesRoundUpwardOnBothSides) {
  EXPECT_EQ(round_float(0.5f), 1);
  EXPECT_EQ(round_float(-0.5f), 0);
  EXPECT_EQ(round_float(1.5f), 2);
  EXPECT_EQ(round_float(-1.5f), -1);
  EXPECT_EQ(round_float(-0.50001f), -1);
  // The addition is in float: just below a half, x + 0.5 already rounds to 1.
  EXPECT_EQ(round_float(0.49999997f), 1);
  EXPECT_EQ(round_float(0.4999999f), 0);
  EXPECT_EQ(round_float(-2.4f), -2);
  EXPECT_EQ(round_float(0.0f), 0);
  EXPECT_EQ(round_float(-0.0f), 0);
}

TEST(RoundFloat, TheNegativeConstantIsJustBelowAHalf) {
  // x less 0.499999 in float: a value a hair beyond -0.5 still gives 0; it
  // takes about a millionth more to reach -1.
  EXPECT_EQ(round_float(std::nextafter(-0.5f, 0.0f)), 0);
  EXPECT_EQ(round_float(std::nextafter(-0.5f, -1.0f)), 0);
  EXPECT_EQ(round_float(-0.5000005f), 0);
  EXPECT_EQ(round_float(-0.5000015f), -1);
  EXPECT_LT(kFloatBelowHalf, 0.5f);
  EXPECT_EQ(std::bit_cast<std::uint32_t>(kFloatBelowHalf), 0x3EFFFFDEu);
}

TEST(RoundFloat, OutOfRangeAndNotANumberGiveTheIndefiniteInteger) {
  EXPECT_EQ(round_float(3e9f), INT32_MIN);
  EXPECT_EQ(round_float(-3e9f), INT32_MIN);
  EXPECT_EQ(round_float(std::numeric_limits<float>::quiet_NaN()), INT32_MIN);
  EXPECT_EQ(round_float(std::numeric_limits<float>::infinity()), INT32_MIN);
  EXPECT_EQ(round_float(2147483520.0f), 2147483520);
}

TEST(RoundDouble, HalvesAndItsOwnConstant) {
  EXPECT_EQ(round_double(0.5), 1);
  EXPECT_EQ(round_double(-0.5), 0);
  EXPECT_EQ(round_double(-0.49999999999), 0);
  EXPECT_EQ(round_double(-0.500000001), -1);
  EXPECT_EQ(round_double(-1.5), -1);
  EXPECT_EQ(round_double(2147483647.4), 2147483647);
  EXPECT_EQ(round_double(2147483647.6), INT32_MIN);
  EXPECT_EQ(std::bit_cast<std::uint64_t>(kDoubleBelowHalf), 0x3FDFFFFFFFFD4050ull);
}

TEST(RoundPoints, XYFormLeavesZAlone) {
  const OT_Point in[2] = {{1.5f, -1.5f, 7.7f}, {2.4f, 3.6f, -8.5f}};
  OT_DCI_Point out[2] = {{0, 0, 99}, {0, 0, 98}};
  round_points_xy(in, 2, out);
  EXPECT_EQ(out[0].x, 2);
  EXPECT_EQ(out[0].y, -1);
  EXPECT_EQ(out[0].z, 99);
  EXPECT_EQ(out[1].z, 98);
  round_points(in, 2, out);
  EXPECT_EQ(out[0].z, 8);
  EXPECT_EQ(out[1].z, -8);
}

}  // namespace
}  // namespace tarn
