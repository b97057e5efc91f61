#include "tools/tarn-render/png_writer.h"

#include <png.h>

#include <bit>
#include <cerrno>
#include <csetjmp>
#include <cstdio>
#include <cstring>

namespace tarn_render {

namespace {

struct Png_Errors {
  char message[256] = "";
};

void on_error(png_structp png, png_const_charp message) {
  auto* errors = static_cast<Png_Errors*>(png_get_error_ptr(png));
  std::snprintf(errors->message, sizeof errors->message, "%s", message);
  png_longjmp(png, 1);
}

void on_warning(png_structp, png_const_charp) {}

int bytes_per_pixel(Png_Kind kind) {
  switch (kind) {
    case Png_Kind::Rgb8:
      return 3;
    case Png_Kind::Rgba8:
      return 4;
    case Png_Kind::Grey16:
      return 2;
  }
  return 0;
}

// The libpng part on its own, so that nothing with a destructor lives in the
// frame that longjmp leaves.
bool encode(std::FILE* file, const Png_Picture& picture, png_bytep* rows, Png_Errors& errors) {
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &errors, on_error, on_warning);
  if (!png) {
    std::snprintf(errors.message, sizeof errors.message, "out of memory");
    return false;
  }
  png_infop info = png_create_info_struct(png);
  if (!info) {
    png_destroy_write_struct(&png, nullptr);
    std::snprintf(errors.message, sizeof errors.message, "out of memory");
    return false;
  }
  if (setjmp(png_jmpbuf(png))) {
    png_destroy_write_struct(&png, &info);
    return false;
  }
  png_init_io(png, file);
  const int color_type = picture.kind == Png_Kind::Rgb8    ? PNG_COLOR_TYPE_RGB
                         : picture.kind == Png_Kind::Rgba8 ? PNG_COLOR_TYPE_RGB_ALPHA
                                                           : PNG_COLOR_TYPE_GRAY;
  const int depth = picture.kind == Png_Kind::Grey16 ? 16 : 8;
  png_set_IHDR(png, info, png_uint_32(picture.width), png_uint_32(picture.height), depth, color_type,
               PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_write_info(png, info);
  // PNG stores 16-bit samples most significant byte first.
  if (depth == 16 && std::endian::native == std::endian::little) png_set_swap(png);
  png_write_image(png, rows);
  png_write_end(png, nullptr);
  png_destroy_write_struct(&png, &info);
  return true;
}

}  // namespace

bool write_png(const std::string& path, const Png_Picture& picture, std::string& error) {
  const std::size_t stride = std::size_t(picture.width) * bytes_per_pixel(picture.kind);
  if (picture.width < 1 || picture.height < 1 || picture.pixels.size() != stride * picture.height) {
    error = "empty or malformed picture";
    return false;
  }
  std::vector<png_bytep> rows(std::size_t(picture.height));
  for (int y = 0; y < picture.height; ++y)
    rows[y] = const_cast<png_bytep>(picture.pixels.data() + stride * std::size_t(y));

  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (!file) {
    error = std::strerror(errno);
    return false;
  }
  Png_Errors errors;
  bool written = encode(file, picture, rows.data(), errors);
  if (!written) error = errors.message;
  if (std::fclose(file) != 0 && written) {
    error = std::strerror(errno);
    written = false;
  }
  if (!written) std::remove(path.c_str());
  return written;
}

}  // namespace tarn_render
