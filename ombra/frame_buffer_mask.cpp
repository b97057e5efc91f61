// Scan conversion of a contour set into a window mask: one bit a pixel, the
// high bit of a byte first, a set bit outside the region.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "host/frame_buffer_mask.h"

namespace {

// The even-odd rule over all contours, sampled at pixel centres: device
// point (X, Y) is the centre of pixel X of row Y. A scan line at y crosses an
// edge whose ends lie on different sides of it, counting an end at exactly y
// as above (half open), so shared vertices count once.
void inside_spans(const OT_Contour_Set_Data& contours, double y, std::vector<double>& crossings) {
  crossings.clear();
  const std::size_t contour_count = contours.contour_starts.size();
  for (std::size_t c = 0; c < contour_count; ++c) {
    const std::size_t first = static_cast<std::size_t>(contours.contour_starts[c]);
    const std::size_t end = c + 1 < contour_count ? static_cast<std::size_t>(contours.contour_starts[c + 1])
                                                  : contours.points.size();
    for (std::size_t i = first; i < end; ++i) {
      const OT_Point& a = contours.points[i];
      const OT_Point& b = contours.points[i + 1 < end ? i + 1 : first];
      if ((a.y <= y) == (b.y <= y)) continue;
      crossings.push_back(a.x + (y - a.y) * (double(b.x) - a.x) / (double(b.y) - a.y));
    }
  }
  std::sort(crossings.begin(), crossings.end());
}

}  // namespace

int Frame_Buffer_Mask::establish_configuration(int width, int height, int origin_x, int origin_y) {
  const int row_bytes = (std::max(width, 0) + 7) / 8;
  if (!image || image->width != row_bytes || image->height != height)
    image = OT_Shared_Image(row_bytes, height, OT_Image_Format_Index8, row_bytes, nullptr, false);
  // The origin lives beside the bits, in the host's own record.
  scratch = OT_Shared_Image(2, 1, OT_Image_Format_Depth16, 0, nullptr, false);
  if (scratch) {
    std::memcpy(scratch->top_rows[0], &origin_x, sizeof origin_x);
    std::memcpy(scratch->top_rows[0] + sizeof origin_x, &origin_y, sizeof origin_y);
  }
  return 0;
}

void Frame_Buffer_Mask::clear_and_rasterize_mask(const OT_Contour_Set& clip) {
  contours = clip;
  key = clip ? clip->serial : 0;
  if (!image) return;
  int origin_x = 0, origin_y = 0;
  if (scratch) {
    std::memcpy(&origin_x, scratch->top_rows[0], sizeof origin_x);
    std::memcpy(&origin_y, scratch->top_rows[0] + sizeof origin_x, sizeof origin_y);
  }
  const int row_bytes = image->width;
  const int pixels = row_bytes * 8;
  std::vector<double> crossings;
  for (int row = 0; row < image->height; ++row) {
    byte* bits = image->device_rows[row];
    std::memset(bits, 0xFF, static_cast<std::size_t>(row_bytes));
    if (!clip) continue;
    inside_spans(*clip, double(row) + origin_y, crossings);
    for (std::size_t i = 0; i + 1 < crossings.size(); i += 2) {
      // Pixels whose centre lies in [left, right): a half-open span.
      const int first = static_cast<int>(std::clamp(std::ceil(crossings[i] - origin_x), 0.0, double(pixels)));
      const int last = static_cast<int>(std::clamp(std::ceil(crossings[i + 1] - origin_x), 0.0, double(pixels)));
      for (int x = first; x < last; ++x) bits[x >> 3] &= static_cast<byte>(~(128 >> (x & 7)));
    }
  }
}
