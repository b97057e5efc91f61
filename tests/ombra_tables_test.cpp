// The stipple table and the dither thresholds.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <vector>

#include "host/ombra.h"

namespace {

int clear_bits(const byte* stipple) {
  int n = 0;
  for (int r = 0; r < 8; ++r) n += 8 - std::popcount(unsigned(stipple[r]));
  return n;
}

TEST(OmbraStipples, GreyLevelsDrawExactlyTheirNumberOfPixels) {
  ASSERT_NE(OMBRA.stipples, nullptr);
  for (int r = 0; r < 8; ++r) {
    EXPECT_EQ(OMBRA.stipples[0][r], 0xFF);
    EXPECT_EQ(OMBRA.stipples[64][r], 0x00);
  }
  for (int k = 0; k <= 64; ++k) EXPECT_EQ(clear_bits(OMBRA.stipples[k]), k) << k;
}

TEST(OmbraStipples, EachGreyLevelAddsToTheOneBefore) {
  for (int k = 0; k < 64; ++k)
    for (int r = 0; r < 8; ++r) {
      const unsigned drawn_before = ~unsigned(OMBRA.stipples[k][r]) & 0xFF;
      const unsigned drawn_after = ~unsigned(OMBRA.stipples[k + 1][r]) & 0xFF;
      ASSERT_EQ(drawn_before & ~drawn_after, 0u) << k << "," << r;
    }
}

TEST(OmbraStipples, LevelsFollowTheOrderedMatrix) {
  const byte one[8] = {0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
  for (int r = 0; r < 8; ++r) EXPECT_EQ(OMBRA.stipples[1][r], one[r]);
  // Half the pixels: a checkerboard.
  for (int r = 0; r < 8; ++r) EXPECT_EQ(OMBRA.stipples[32][r], r % 2 == 0 ? 0xAA : 0x55) << r;
}

TEST(OmbraStipples, Hatches) {
  for (int r = 0; r < 8; ++r) {
    EXPECT_EQ(OMBRA.stipples[65][r], r % 4 == 0 ? 0x00 : 0xFF) << r;
    EXPECT_EQ(OMBRA.stipples[66][r], 0xEE) << r;
    const byte diagonal[4] = {0xEE, 0xDD, 0xBB, 0x77};
    EXPECT_EQ(OMBRA.stipples[67][r], diagonal[r % 4]) << r;
    const byte other_diagonal[4] = {0x77, 0xBB, 0xDD, 0xEE};
    EXPECT_EQ(OMBRA.stipples[68][r], other_diagonal[r % 4]) << r;
    EXPECT_EQ(OMBRA.stipples[69][r], r % 4 == 0 ? 0x00 : 0xEE) << r;
    EXPECT_EQ(OMBRA.stipples[70][r], byte(diagonal[r % 4] & other_diagonal[r % 4])) << r;
    EXPECT_EQ(OMBRA.stipples[71][r], r % 2 == 0 ? 0x00 : 0xFF) << r;
    EXPECT_EQ(OMBRA.stipples[72][r], 0xAA) << r;
    EXPECT_EQ(OMBRA.stipples[73][r], r % 4 == 0 ? 0xEE : 0xFF) << r;
  }
}

TEST(OmbraDither, CentredBinsOfAnOrderedMatrix) {
  std::vector<int> values(SHARED.dither, SHARED.dither + 64);
  std::sort(values.begin(), values.end());
  for (int k = 0; k < 64; ++k) EXPECT_EQ(values[k], k * 1024 + 512);
  EXPECT_LT(values.back(), 0xFFFF);
  long sum = 0;
  for (int v : values) sum += v;
  EXPECT_EQ(sum / 64, 0x8000);
  EXPECT_EQ(SHARED.dither[0], 512);
  EXPECT_EQ(SHARED.dither[1], 32 * 1024 + 512);
  EXPECT_EQ(SHARED.dither[8], 48 * 1024 + 512);
  EXPECT_EQ(SHARED.dither[63], 21 * 1024 + 512);
}

TEST(OmbraDither, NeighboursAreFarApart) {
  // An ordered matrix spreads close values: horizontal neighbours differ by
  // at least a quarter of the range.
  for (int r = 0; r < 8; ++r)
    for (int c = 0; c < 8; ++c) {
      const int here = SHARED.dither[r * 8 + c], right = SHARED.dither[r * 8 + (c + 1) % 8];
      EXPECT_GE(std::abs(here - right), 16 * 1024) << r << "," << c;
    }
}

}  // namespace
