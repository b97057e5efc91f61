// Palettes and colour cubes of the mapped colour system.
#include <algorithm>
#include <cmath>
#include <new>

#include "host/ot_palette.h"

OT_Color_Cube::OT_Color_Cube(const OT_Int_RGB& sizes_, float gamma_, int base_)
    : base(std::uint32_t(base_)), gamma(gamma_), sizes(sizes_) {
  entries = sizes.r * sizes.g * sizes.b;
  red_step = std::uint32_t(sizes.g * sizes.b);
  green_step = std::uint32_t(sizes.b);
  blue_step = 1;
  // See the header: levels - 1 keeps every byte and every dither threshold
  // inside the cube.
  red_scale = sizes.r - 1;
  green_scale = sizes.g - 1;
  blue_scale = sizes.b - 1;
}

byte OT_Color_Cube::level_value(int level, int levels) const {
  if (levels < 2 || level <= 0) return 0;
  if (level >= levels - 1) return 255;
  const double exponent = gamma > 0.0f ? 1.0 / double(gamma) : 1.0;
  const double value = 255.0 * std::pow(double(level) / double(levels - 1), exponent);
  return byte(std::lround(value));
}

OT_Palette_Data::OT_Palette_Data() {
  for (OT_Palette_Entry& entry : entries) entry = {OT_RGB32{0, 0, 0, 255}, 0};
}

OT_Palette_Data::OT_Palette_Data(const OT_Palette_Data& other) : OT_Clonable(other) {
  for (int i = 0; i < 256; ++i) entries[i] = other.entries[i];
  if (other.color_cube) color_cube = new (std::nothrow) OT_Color_Cube(*other.color_cube);
}

OT_Palette_Data::~OT_Palette_Data() { delete color_cube; }

int OT_Palette_Data::closest_match(const OT_RGB32& color, bool) const {
  int best = 0;
  long best_distance = -1;
  for (int i = 0; i < 256; ++i) {
    const OT_RGB32& c = entries[i].color;
    const long dr = long(c.r) - color.r, dg = long(c.g) - color.g, db = long(c.b) - color.b;
    const long distance = dr * dr + dg * dg + db * db;
    if (best_distance < 0 || distance < best_distance) {
      best = i;
      best_distance = distance;
      if (distance == 0) break;
    }
  }
  return best;
}

namespace {

// Fills the cube's entries from its base; entries past 255 are dropped.
void fill_cube(OT_Palette_Data& palette, const OT_Color_Cube& cube) {
  const OT_Int_RGB& n = cube.sizes;
  for (int r = 0; r < n.r; ++r)
    for (int g = 0; g < n.g; ++g)
      for (int b = 0; b < n.b; ++b) {
        const long index = long(cube.base) + r * long(cube.red_step) + g * long(cube.green_step) + b;
        if (index < 0 || index > 255) continue;
        palette.entries[index].color =
            OT_RGB32::rgba(cube.level_value(r, n.r), cube.level_value(g, n.g), cube.level_value(b, n.b));
      }
}

OT_Palette make_default_palette() {
  static constexpr OT_RGB32 kClassic[16] = {
      OT_RGB32::rgba(0, 0, 0),       OT_RGB32::rgba(128, 0, 0),     OT_RGB32::rgba(0, 128, 0),
      OT_RGB32::rgba(128, 128, 0),   OT_RGB32::rgba(0, 0, 128),     OT_RGB32::rgba(128, 0, 128),
      OT_RGB32::rgba(0, 128, 128),   OT_RGB32::rgba(192, 192, 192), OT_RGB32::rgba(128, 128, 128),
      OT_RGB32::rgba(255, 0, 0),     OT_RGB32::rgba(0, 255, 0),     OT_RGB32::rgba(255, 255, 0),
      OT_RGB32::rgba(0, 0, 255),     OT_RGB32::rgba(255, 0, 255),   OT_RGB32::rgba(0, 255, 255),
      OT_RGB32::rgba(255, 255, 255),
  };
  OT_Palette palette(new OT_Palette_Data);
  if (!palette) return palette;
  OT_Palette_Data& data = *palette;
  for (int i = 0; i < 16; ++i) data.entries[i].color = kClassic[i];
  data.color_cube = new (std::nothrow) OT_Color_Cube(OT_Int_RGB{6, 6, 6}, 1.0f, 16);
  if (data.color_cube) fill_cube(data, *data.color_cube);
  // 24 greys between black and white, neither of them, as the cube has both.
  for (int i = 0; i < 24; ++i) {
    const int v = 8 + 10 * i;
    data.entries[232 + i].color = OT_RGB32::rgba(v, v, v);
  }
  return palette;
}

}  // namespace

OT_Palette OB_Default_Palette() {
  // One shared record: every copy starts as a reference to it, and a writer
  // gets its own copy through make_unique.
  static const OT_Palette palette = make_default_palette();
  return palette;
}

OT_Palette OB_Cube_Palette(const OT_Int_RGB& sizes, int base) {
  OT_Palette palette(new OT_Palette_Data);
  if (!palette) return palette;
  OT_Palette_Data& data = *palette;
  data.color_cube = new (std::nothrow) OT_Color_Cube(sizes, 1.0f, base);
  if (!data.color_cube) return palette;
  const OT_Color_Cube& cube = *data.color_cube;
  const long first = cube.base, last = long(cube.base) + cube.entries - 1;
  // The entries around the cube: a ramp from black to white in index order.
  const int others = 256 - int(std::max(0L, std::min(255L, last) - std::max(0L, first) + 1));
  int k = 0;
  for (int i = 0; i < 256; ++i) {
    if (i >= first && i <= last) continue;
    const int v = others > 1 ? (k * 255 + (others - 1) / 2) / (others - 1) : 0;
    data.entries[i].color = OT_RGB32::rgba(v, v, v);
    ++k;
  }
  fill_cube(data, cube);
  return palette;
}
