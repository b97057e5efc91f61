// Writing pictures as PNG files.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tarn_render {

enum class Png_Kind {
  Rgb8,    // three bytes a pixel: red, green, blue
  Rgba8,   // four bytes a pixel: red, green, blue, alpha
  Grey16,  // one 16-bit value a pixel, in the machine's byte order
};

struct Png_Picture {
  int width = 0;
  int height = 0;
  Png_Kind kind = Png_Kind::Rgb8;
  // Rows top first, each width pixels of the kind, without padding.
  std::vector<std::uint8_t> pixels;
};

// Writes the picture to `path`. On failure returns false and says why.
bool write_png(const std::string& path, const Png_Picture& picture, std::string& error);

}  // namespace tarn_render
