// The host's global data: the serial counter, the face pattern stipples and
// the ordered dither thresholds. Everything here is built at compile time, so
// it is ready before any static constructor of a client runs.
#include <array>

#include "host/ob_functions.h"

namespace {

// The standard 8x8 ordered (Bayer) matrix: each value 0..63 once, arranged
// so that every prefix 0..k-1 is spread as evenly as 8x8 allows.
constexpr int kBayer[8][8] = {
    {0, 32, 8, 40, 2, 34, 10, 42},    {48, 16, 56, 24, 50, 18, 58, 26}, {12, 44, 4, 36, 14, 46, 6, 38},
    {60, 28, 52, 20, 62, 30, 54, 22}, {3, 35, 11, 43, 1, 33, 9, 41},    {51, 19, 59, 27, 49, 17, 57, 25},
    {15, 47, 7, 39, 13, 45, 5, 37},   {63, 31, 55, 23, 61, 29, 53, 21},
};

constexpr int kStippleCount = 74;
using Stipple = std::array<byte, 8>;

// A pattern from a predicate that says which pixels are drawn: a drawn pixel
// is a clear bit, a hole a set one; bit c of row r is column c.
template <class Drawn>
constexpr Stipple make_pattern(Drawn drawn) {
  Stipple s{};
  for (int r = 0; r < 8; ++r) {
    int row = 0;
    for (int c = 0; c < 8; ++c)
      if (!drawn(r, c)) row |= 1 << c;
    s[r] = byte(row);
  }
  return s;
}

constexpr std::array<Stipple, kStippleCount> make_stipples() {
  std::array<Stipple, kStippleCount> table{};
  // 0..64: grey levels. Pattern k draws the k pixels whose Bayer value is
  // below k, so 0 draws nothing, 64 everything, and each level adds one pixel
  // to the one before it.
  for (int k = 0; k <= 64; ++k) table[k] = make_pattern([k](int r, int c) { return kBayer[r][c] < k; });
  // 65..73: hatches, with a period of 4 unless said otherwise.
  table[65] = make_pattern([](int r, int) { return r % 4 == 0; });  // horizontal lines
  table[66] = make_pattern([](int, int c) { return c % 4 == 0; });  // vertical lines
  table[67] =
      make_pattern([](int r, int c) { return (c - r + 8) % 4 == 0; });      // diagonal, column grows with row
  table[68] = make_pattern([](int r, int c) { return (c + r) % 4 == 3; });  // diagonal, column falls with row
  table[69] = make_pattern([](int r, int c) { return r % 4 == 0 || c % 4 == 0; });  // square cross-hatch
  table[70] =
      make_pattern([](int r, int c) { return (c - r + 8) % 4 == 0 || (c + r) % 4 == 3; });  // diagonal cross
  table[71] = make_pattern([](int r, int) { return r % 2 == 0; });  // dense horizontal, period 2
  table[72] = make_pattern([](int, int c) { return c % 2 == 0; });  // dense vertical, period 2
  table[73] = make_pattern([](int r, int c) { return r % 4 == 0 && c % 4 == 0; });  // grid of single dots
  return table;
}

constexpr std::array<Stipple, kStippleCount> kStipples = make_stipples();

constexpr std::array<const byte*, kStippleCount> make_stipple_pointers() {
  std::array<const byte*, kStippleCount> pointers{};
  for (int k = 0; k < kStippleCount; ++k) pointers[k] = kStipples[k].data();
  return pointers;
}

constexpr std::array<const byte*, kStippleCount> kStipplePointers = make_stipple_pointers();

// Thresholds: Bayer value times 1024 plus 512, i.e. the centre of each of 64
// equal bins of 0..0xFFFF. The matrix is unbiased (mean 0x8000), and its
// largest value, 0xFE00, is below 0xFFFF: a channel whose fraction is 0 (a
// colour on a cube level) never steps up, so such a colour stays flat.
constexpr Ombra_Shared make_shared() {
  Ombra_Shared shared{};
  for (int r = 0; r < 8; ++r)
    for (int c = 0; c < 8; ++c) shared.dither[r * 8 + c] = std::uint16_t(kBayer[r][c] * 1024 + 512);
  return shared;
}

}  // namespace

constinit Ombra_Global OMBRA{{0u}, kStipplePointers.data()};

constinit const Ombra_Shared SHARED = make_shared();
