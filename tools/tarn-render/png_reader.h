// Reading PNG files as textures.
#pragma once

#include <string>

#include "host/ombra.h"

namespace tarn_render {

// The largest texture side the tool reads.
constexpr int largest_texture_side = 4096;

// Reads the PNG at `path` into an RGB32 image of OT_RGB32 texels (bytes b,
// g, r, a), the file's top row first in memory (top_rows[0]). Palette, grey
// and 16-bit files are converted; a file without alpha gets alpha 255. On
// failure returns a null image and says why in `error`.
OT_Shared_Image read_png_texture(const std::string& path, std::string& error);

}  // namespace tarn_render
