// Palette and colour cube of the mapped colour system.
#pragma once

#include "host/ot_base.h"

// A cube of r x g x b levels laid out from `base`, blue fastest. The renderer
// reads `base`, the three steps and the three scales: a channel byte times its
// scale, shifted left 8, is the cube level in 16.16 fixed point.
//
// Scales: a cube of n levels on a channel gets scale n - 1. Byte 255 then sits
// at (n - 1) * 65280 / 65536 levels, just below the top level, and the
// dither's one step up lands on the top level at most: no index leaves the
// cube for bytes 0..255 in either dither form (the addition form's 128 and
// largest threshold 0xFFFF still stay below the next level, since
// (n - 1) * 256 >= 128 for every cube of 2 levels or more).
struct OMBRA_API OT_Color_Cube {
  OT_Color_Cube() = default;
  // sizes: levels per channel (each 2..256); gamma: 1.0 is linear; base: the
  // first palette index of the cube.
  OT_Color_Cube(const OT_Int_RGB& sizes, float gamma, int base);

  // The byte value of level `level` of a channel with `levels` levels.
  byte level_value(int level, int levels) const;

  std::uint32_t base = 0;
  std::int32_t entries = 0;  // not read by renderers
  float gamma = 1.0f;        // not read by renderers
  std::uint32_t red_step = 0, green_step = 0, blue_step = 0;
  std::int32_t red_scale = 0, green_scale = 0, blue_scale = 0;
  OT_Int_RGB sizes{0, 0, 0};  // host bookkeeping
};

struct OT_Palette_Entry {
  OT_RGB32 color;
  std::uint32_t reserved;
};

class OMBRA_API OT_Palette_Data : public OT_Clonable<OT_Palette_Data> {
 public:
  OT_Palette_Data();  // all black, no cube
  OT_Palette_Data(const OT_Palette_Data& other);
  OT_Palette_Data& operator=(const OT_Palette_Data&) = delete;
  ~OT_Palette_Data() override;

  // Nearest colour: least squared distance in (r, g, b), alpha ignored; of
  // equal distances the lowest index wins.
  int closest_match(const OT_RGB32& color, bool include_alpha) const;

  OT_Palette_Entry entries[256];
  OT_Color_Cube* color_cube = nullptr;  // owned; null unless built on a cube
};

class OMBRA_API OT_Palette : public OT_Handle<OT_Palette_Data> {
 public:
  OT_Palette() = default;
  explicit OT_Palette(OT_Palette_Data* data) : OT_Handle(data) {}
  int closest_match(const OT_RGB32& color, bool include_alpha) const {
    return data_->closest_match(color, include_alpha);
  }
  const OT_RGB32& color(int index) const { return data_->entries[index & 255].color; }
};

// The host's default palette: entries 0..15 the sixteen classic colours,
// 16..231 a 6 x 6 x 6 cube (base 16), 232..255 a grey ramp.
OMBRA_API OT_Palette OB_Default_Palette();
// A palette of 256 entries holding the given cube from its base; the entries
// outside the cube are a grey ramp.
OMBRA_API OT_Palette OB_Cube_Palette(const OT_Int_RGB& sizes, int base);
