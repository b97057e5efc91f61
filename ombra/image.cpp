// Counted images: one block of pixels and the two row tables over it.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "host/ot_image.h"

namespace {

std::size_t table_bytes(int height) { return sizeof(byte*) * std::size_t(height > 0 ? height : 1); }

}  // namespace

int OT_Shared_Image_Data::pixel_bytes(OT_Image_Format format) {
  switch (format) {
    case OT_Image_Format_Index8:
      return 1;
    case OT_Image_Format_RGB32:
      return 4;
    case OT_Image_Format_Depth16:
      return 2;
    default:
      return 0;
  }
}

OT_Shared_Image_Data::OT_Shared_Image_Data(int width_, int height_, OT_Image_Format format_, int row_bytes_,
                                           const void* data, bool)
    : width(width_ > 0 ? width_ : 0), height(height_ > 0 ? height_ : 0), format(format_) {
  if (row_bytes_ > 0) {
    row_bytes = row_bytes_;
  } else {
    // The host's own pitch keeps every row 8-byte aligned, so that a row can
    // be filled two RGB32 pixels at a time.
    const std::int64_t bytes = (std::int64_t(width) * pixel_bytes(format) + 7) & ~std::int64_t(7);
    if (bytes > INT32_MAX) return;  // leaves pixels null: the image can't be had
    row_bytes = std::int32_t(bytes);
  }
  if (data) {
    pixels = static_cast<byte*>(const_cast<void*>(data));
    owns_pixels = false;
  } else {
    const std::size_t size = std::size_t(row_bytes) * std::size_t(height);
    pixels = static_cast<byte*>(std::calloc(size ? size : 1, 1));
    owns_pixels = pixels != nullptr;
  }
  if (pixels) build_row_tables();
}

OT_Shared_Image_Data::OT_Shared_Image_Data(const OT_Shared_Image_Data& other)
    : OT_Counted(other),
      width(other.width),
      height(other.height),
      row_bytes(other.row_bytes),
      format(other.format),
      full_frame(other.full_frame) {
  const std::size_t size = std::size_t(row_bytes) * std::size_t(height);
  pixels = static_cast<byte*>(std::malloc(size ? size : 1));
  if (!pixels) return;
  owns_pixels = true;
  if (size && other.pixels) std::memcpy(pixels, other.pixels, size);
  build_row_tables();
}

OT_Shared_Image_Data::~OT_Shared_Image_Data() {
  std::free(top_rows);
  std::free(device_rows);
  if (owns_pixels) std::free(pixels);
}

OT_Counted* OT_Shared_Image_Data::clone() const {
  OT_Shared_Image_Data* copy = new OT_Shared_Image_Data(*this);
  if (copy && !copy->pixels) {
    copy->destroy(1);
    return nullptr;
  }
  return copy;
}

void OT_Shared_Image_Data::build_row_tables() {
  top_rows = static_cast<byte**>(std::malloc(table_bytes(height)));
  device_rows = static_cast<byte**>(std::malloc(table_bytes(height)));
  if (!top_rows || !device_rows) {
    std::free(top_rows);
    std::free(device_rows);
    top_rows = device_rows = nullptr;
    if (owns_pixels) std::free(pixels);
    pixels = nullptr;
    owns_pixels = false;
    return;
  }
  for (int i = 0; i < height; ++i) top_rows[i] = pixels + std::size_t(i) * std::size_t(row_bytes);
  for (int i = 0; i < height; ++i) device_rows[i] = top_rows[height - 1 - i];
}

OT_Shared_Image::OT_Shared_Image(int width, int height, OT_Image_Format format, int row_bytes,
                                 const void* data, bool adopt) {
  OT_Shared_Image_Data* image = new OT_Shared_Image_Data(width, height, format, row_bytes, data, adopt);
  if (!image) return;
  if (!image->pixels) {
    image->destroy(1);
    return;
  }
  reset(image);
}
