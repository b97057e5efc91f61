// The face pattern stipples and the dither thresholds: the host's data,
// whose bytes are its own; what renderers rely on are their properties.
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

// Hatches repeat every four pixels both ways (the dense ones every two) and
// draw their number of pixels: lines, crosses, dots.
TEST(OmbraStipples, HatchesRepeatAndDrawTheirCounts) {
  const int counts[9] = {16, 16, 16, 16, 28, 32, 32, 32, 4};
  for (int k = 65; k <= 73; ++k) {
    int pixels = 0;
    for (int r = 0; r < 8; ++r) {
      pixels += std::popcount(drawn(k, r));
      EXPECT_EQ(drawn(k, r), drawn(k, r % 4)) << k;
      EXPECT_EQ(drawn(k, r) >> 4, drawn(k, r) & 15) << k;
    }
    EXPECT_EQ(pixels, counts[k - 65]) << k;
  }
}

TEST(OmbraDither, CentredBinsOfAnOrderedMatrix) {
  std::vector<int> values(SHARED.dither, SHARED.dither + 64);
  // Horizontal neighbours differ by at least a quarter of the range.
  for (int i = 0; i < 64; ++i)
    EXPECT_GE(std::abs(values[i] - values[i / 8 * 8 + (i + 1) % 8]), 16 * 1024) << i;
  std::sort(values.begin(), values.end());
  for (int k = 0; k < 64; ++k) EXPECT_EQ(values[k], k * 1024 + 512);
}

}  // namespace
