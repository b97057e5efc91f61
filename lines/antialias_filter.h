// The coverage weights of antialiased lines.
#pragma once

#include <array>
#include <cstdint>

namespace tarn {

// Coverage of a pixel by a thin line, by the distance along the minor axis
// between the pixel's centre and the ideal line, in 1/256 pixel: 256 on the
// line, falling nearly linearly to 0 at 313. Everything from 313 on is 0, so
// the far neighbour of a triple (up to 384) needs no range test.
inline constexpr std::array<std::int32_t, 512> kAntialiasFilter = {
    256, 255, 254, 254, 253, 252, 251, 250, 249, 249, 248, 247, 246, 245, 245, 244, 243, 242, 241, 240, 240,
    239, 238, 237, 236, 236, 235, 234, 233, 232, 231, 231, 230, 229, 228, 227, 227, 226, 225, 224, 223, 222,
    222, 221, 220, 219, 218, 218, 217, 216, 215, 214, 213, 213, 212, 211, 210, 209, 209, 208, 207, 206, 205,
    204, 204, 203, 202, 201, 200, 200, 199, 198, 197, 196, 195, 195, 194, 193, 192, 191, 191, 190, 189, 188,
    187, 186, 186, 185, 184, 183, 182, 182, 181, 180, 179, 178, 177, 177, 176, 175, 174, 173, 173, 172, 171,
    170, 169, 168, 168, 167, 166, 165, 164, 164, 163, 162, 161, 160, 159, 159, 158, 157, 156, 155, 155, 154,
    153, 152, 151, 150, 150, 149, 148, 147, 146, 146, 145, 144, 143, 142, 141, 141, 140, 139, 138, 137, 137,
    136, 135, 134, 133, 132, 132, 131, 130, 129, 128, 128, 127, 126, 125, 124, 123, 123, 122, 121, 120, 119,
    119, 118, 117, 116, 115, 114, 114, 113, 112, 111, 110, 110, 109, 108, 107, 106, 106, 105, 104, 103, 102,
    101, 101, 100, 99,  98,  97,  97,  96,  95,  94,  93,  92,  92,  91,  90,  89,  88,  88,  87,  86,  85,
    84,  83,  83,  82,  81,  80,  79,  79,  78,  77,  76,  75,  74,  74,  73,  72,  71,  70,  70,  69,  68,
    67,  66,  65,  65,  64,  63,  62,  61,  61,  60,  59,  58,  57,  56,  56,  55,  54,  53,  52,  52,  51,
    50,  49,  48,  47,  47,  46,  45,  44,  43,  43,  42,  41,  40,  39,  38,  38,  37,  36,  35,  34,  34,
    33,  32,  31,  30,  29,  29,  28,  27,  26,  25,  25,  24,  23,  22,  21,  20,  20,  19,  18,  17,  16,
    16,  15,  14,  13,  12,  11,  11,  10,  9,   8,   7,   7,   6,   5,   4,   3,   2,   2,   1,   0,
};

// The neighbours of horizontal, vertical and diagonal lines lie one whole
// pixel from the line.
inline constexpr std::int32_t kNeighbourWeight = 47;
static_assert(kAntialiasFilter[256] == kNeighbourWeight);
static_assert(kAntialiasFilter[0] == 256 && kAntialiasFilter[312] == 1 && kAntialiasFilter[313] == 0);

}  // namespace tarn
