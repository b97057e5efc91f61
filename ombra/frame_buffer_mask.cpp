// Complex clip masks: one bit a window pixel, set where the pixel is masked
// away. Bits run from the high bit of a byte to the low bit as x grows, and
// rows are reached through the image's device_rows by window-relative y.
#include "host/frame_buffer_mask.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace {

// The bits, with the window they were sized for: the rasterizer needs the
// origin to turn the region's device coordinates into window positions.
class Mask_Bits : public OT_Shared_Image_Data {
 public:
  Mask_Bits(int width, int height, int origin_x, int origin_y)
      : OT_Shared_Image_Data((width > 0 ? width + 7 : 0) / 8, height, OT_Image_Format_Index8, 0, nullptr,
                             false),
        window_width(width > 0 ? width : 0),
        origin_x(origin_x),
        origin_y(origin_y) {}
  OT_Counted* clone() const override { return new Mask_Bits(*this); }

  int window_width;
  int origin_x, origin_y;
};

void set_bits(byte* row, int first, int last, bool on) {
  for (int x = first; x <= last; ++x) {
    const byte bit = byte(128 >> (x & 7));
    if (on)
      row[x >> 3] |= bit;
    else
      row[x >> 3] &= byte(~bit);
  }
}

}  // namespace

int Frame_Buffer_Mask::establish_configuration(int width, int height, int origin_x, int origin_y) {
  const auto* bits = dynamic_cast<const Mask_Bits*>(image.get());
  if (bits && bits->window_width == width && bits->height == height && bits->origin_x == origin_x &&
      bits->origin_y == origin_y)
    return 0;
  Mask_Bits* made = new Mask_Bits(width, height, origin_x, origin_y);
  if (made && !made->pixels) {
    made->destroy(1);
    made = nullptr;
  }
  image.reset(made);
  key = 0;
  contours.reset();
  return made ? 0 : -1;
}

// Inside is decided by the even-odd rule at each pixel's own integer
// position, with the fill conventions of the triangle walk: a row meets an
// edge when it lies in [lower y, upper y), and a pixel is inside between a
// crossing (inclusive) and the next one (exclusive).
void Frame_Buffer_Mask::clear_and_rasterize_mask(const OT_Contour_Set& region) {
  key = region ? region->serial : 0;
  contours = region;
  auto* bits = dynamic_cast<Mask_Bits*>(image.get());
  if (!bits || !bits->pixels) return;
  std::memset(bits->pixels, 0xFF, std::size_t(bits->row_bytes) * std::size_t(bits->height));
  if (!region || bits->window_width == 0) return;

  const OT_Contour_Set_Data& set = *region;
  const int total = int(set.points.size());
  std::vector<int> starts(set.contour_starts.begin(), set.contour_starts.end());
  if (starts.empty() && total) starts.push_back(0);
  std::vector<double> crossings;
  for (int row = 0; row < bits->height; ++row) {
    const double y = double(row) + bits->origin_y;
    crossings.clear();
    for (std::size_t c = 0; c < starts.size(); ++c) {
      const int begin = starts[c];
      const int end = c + 1 < starts.size() ? starts[c + 1] : total;
      if (begin < 0 || end > total || end - begin < 2) continue;
      for (int i = begin; i < end; ++i) {
        const OT_Point& a = set.points[std::size_t(i)];
        const OT_Point& b = set.points[std::size_t(i + 1 < end ? i + 1 : begin)];
        const double low = std::min(a.y, b.y), high = std::max(a.y, b.y);
        if (!(y >= low && y < high)) continue;
        const double x = a.x + (y - a.y) * (double(b.x) - a.x) / (double(b.y) - a.y);
        // An edge with a NaN end crosses nowhere: a NaN would neither sort nor
        // convert to a column.
        if (!std::isnan(x)) crossings.push_back(x);
      }
    }
    std::sort(crossings.begin(), crossings.end());
    byte* out = bits->device_rows[row];
    for (std::size_t k = 0; k + 1 < crossings.size(); k += 2) {
      const double from = std::ceil(crossings[k] - bits->origin_x);
      const double to = std::ceil(crossings[k + 1] - bits->origin_x) - 1.0;
      const int first = int(std::min(std::max(from, 0.0), double(bits->window_width)));
      const int last = int(std::max(std::min(to, double(bits->window_width - 1)), -1.0));
      if (first <= last) set_bits(out, first, last, false);
    }
  }
}
