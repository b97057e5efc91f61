// A complex clip turned into one bit a window pixel. The renderer owns the
// masks (in its mask cache); the host sizes them and scan-converts the region.
#pragma once

#include "host/ot_geometry.h"
#include "host/ot_image.h"

class OMBRA_API Frame_Buffer_Mask : public OT_Object {
 public:
  Frame_Buffer_Mask() = default;
  ~Frame_Buffer_Mask() override = default;

  // Sizes the mask for a window; the result isn't looked at.
  int establish_configuration(int width, int height, int origin_x, int origin_y);
  // Sets every bit outside the region and clears every bit inside it; `key`
  // becomes the contour set's serial.
  void clear_and_rasterize_mask(const OT_Contour_Set& contours);

  OT_Shared_Image image;                  // the bits, through device_rows
  OT_Shared_Image scratch;                // host only
  std::uint32_t key = 0;                  // serial of the contour set; 0 when empty
  OT_Contour_Set contours;                // host only
  Frame_Buffer_Mask* next = nullptr;      // towards older entries
  Frame_Buffer_Mask* previous = nullptr;  // towards newer entries
};
