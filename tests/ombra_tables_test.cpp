// The face pattern stipples and the dither thresholds.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <vector>

#include "host/ombra.h"

namespace {

unsigned drawn(int pattern, int row) { return ~unsigned(OMBRA.stipples[pattern][row]) & 0xFF; }

TEST(OmbraStipples, GreyLevelKDrawsKPixelsAndAddsToTheLevelBefore) {
  for (int k = 0; k <= 64; ++k) {
    int pixels = 0;
    for (int r = 0; r < 8; ++r) {
      pixels += std::popcount(drawn(k, r));
      if (k > 0) {
        ASSERT_EQ(drawn(k - 1, r) & ~drawn(k, r), 0u) << k << "," << r;
      }
    }
    EXPECT_EQ(pixels, k);
  }
  EXPECT_EQ(drawn(1, 0), 1u);  // the first column of the first row
  for (int r = 0; r < 8; ++r) EXPECT_EQ(OMBRA.stipples[32][r], r % 2 == 0 ? 0xAA : 0x55) << r;
}

TEST(OmbraStipples, Hatches) {
  const byte rising[4] = {0xEE, 0xDD, 0xBB, 0x77}, falling[4] = {0x77, 0xBB, 0xDD, 0xEE};
  for (int r = 0; r < 8; ++r) {
    const std::vector<int> row = {OMBRA.stipples[65][r], OMBRA.stipples[66][r], OMBRA.stipples[67][r],
                                  OMBRA.stipples[68][r], OMBRA.stipples[69][r], OMBRA.stipples[70][r],
                                  OMBRA.stipples[71][r], OMBRA.stipples[72][r], OMBRA.stipples[73][r]};
    const std::vector<int> expected = {r % 4 ? 0xFF : 0x00, 0xEE,
                                       rising[r % 4],       falling[r % 4],
                                       r % 4 ? 0xEE : 0x00, rising[r % 4] & falling[r % 4],
                                       r % 2 ? 0xFF : 0x00, 0xAA,
                                       r % 4 ? 0xFF : 0xEE};
    EXPECT_EQ(row, expected) << r;
  }
}

TEST(OmbraDither, CentredBinsOfAnOrderedMatrix) {
  std::vector<int> values(SHARED.dither, SHARED.dither + 64);
  EXPECT_EQ(values[0], 512);
  EXPECT_EQ(values[1], 32 * 1024 + 512);
  EXPECT_EQ(values[8], 48 * 1024 + 512);
  // Horizontal neighbours differ by at least a quarter of the range.
  for (int i = 0; i < 64; ++i)
    EXPECT_GE(std::abs(values[i] - values[i / 8 * 8 + (i + 1) % 8]), 16 * 1024) << i;
  std::sort(values.begin(), values.end());
  for (int k = 0; k < 64; ++k) EXPECT_EQ(values[k], k * 1024 + 512);
}

}  // namespace
