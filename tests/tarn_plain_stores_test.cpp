// The plain stores write a run with a few wide stores that may overlap,
// chosen by width: every width up to past the widest threshold, at every
// start alignment, writes exactly its own pixels and nothing on either side.
#include <algorithm>
#include <cstdint>
#include <iterator>

#include "pixel/pixel_writers.h"
#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

TEST(Plain_Stores, RunsOfEveryWidthWriteExactlyTheirPixels) {
  for (int start = 0; start < 8; ++start)
    for (int n = 0; n <= 70; ++n) {
      byte bytes[96];
      std::uint32_t words[96];
      std::fill(std::begin(bytes), std::end(bytes), byte{0xEE});
      std::fill(std::begin(words), std::end(words), 0xEEEEEEEEu);
      Index_Store(0x5A).span(bytes + 8 + start, n, 0);
      Word_Store(0x01020304u).span(words + 8 + start, n, 0);
      for (int i = 0; i < 96; ++i) {
        const bool inside = i >= 8 + start && i < 8 + start + n;
        ASSERT_EQ(bytes[i], inside ? 0x5A : 0xEE) << start << " " << n << " " << i;
        ASSERT_EQ(words[i], inside ? 0x01020304u : 0xEEEEEEEEu) << start << " " << n << " " << i;
      }
    }
}

}  // namespace
}  // namespace tarn::testing
