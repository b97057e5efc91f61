#include "tools/tarn-render/png_reader.h"

#include <png.h>

#include <cerrno>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <filesystem>

namespace tarn_render {

namespace {

struct Png_Reader {
  png_structp png = nullptr;
  png_infop info = nullptr;
  char message[256] = "";
};

void on_error(png_structp png, png_const_charp message) {
  auto* reader = static_cast<Png_Reader*>(png_get_error_ptr(png));
  std::snprintf(reader->message, sizeof reader->message, "%s", message);
  png_longjmp(png, 1);
}

void on_warning(png_structp, png_const_charp) {}

// The libpng calls on their own, so that nothing with a destructor lives in
// a frame that longjmp leaves. Reads the header and sets the conversions to
// 8-bit b, g, r, a.
bool read_header(Png_Reader& reader, std::FILE* file, png_uint_32& width, png_uint_32& height) {
  if (setjmp(png_jmpbuf(reader.png))) return false;
  png_init_io(reader.png, file);
  png_read_info(reader.png, reader.info);
  int depth = 0, color_type = 0;
  png_get_IHDR(reader.png, reader.info, &width, &height, &depth, &color_type, nullptr, nullptr, nullptr);
  png_set_expand(reader.png);  // palette to RGB, small greys to 8 bits, tRNS to alpha
  png_set_strip_16(reader.png);
  png_set_gray_to_rgb(reader.png);
  png_set_bgr(reader.png);
  png_set_filler(reader.png, 0xFF, PNG_FILLER_AFTER);  // only where there is no alpha
  png_set_interlace_handling(reader.png);
  png_read_update_info(reader.png, reader.info);
  if (png_get_rowbytes(reader.png, reader.info) != png_size_t(width) * 4) {
    std::snprintf(reader.message, sizeof reader.message, "the file's pixels don't convert to RGBA");
    return false;
  }
  return true;
}

bool read_rows(Png_Reader& reader, png_bytepp rows) {
  if (setjmp(png_jmpbuf(reader.png))) return false;
  png_read_image(reader.png, rows);
  png_read_end(reader.png, nullptr);
  return true;
}

class Open_File {
 public:
  explicit Open_File(const std::string& path) : file_(std::fopen(path.c_str(), "rb")) {}
  ~Open_File() {
    if (file_) std::fclose(file_);
  }
  Open_File(const Open_File&) = delete;
  Open_File& operator=(const Open_File&) = delete;
  std::FILE* get() const { return file_; }

 private:
  std::FILE* file_;
};

class Reader_Owner {
 public:
  explicit Reader_Owner(Png_Reader& reader) : reader_(reader) {}
  ~Reader_Owner() { png_destroy_read_struct(&reader_.png, &reader_.info, nullptr); }
  Reader_Owner(const Reader_Owner&) = delete;
  Reader_Owner& operator=(const Reader_Owner&) = delete;

 private:
  Png_Reader& reader_;
};

}  // namespace

OT_Shared_Image read_png_texture(const std::string& path, std::string& error) {
  // A pipe or a device could block or never end.
  std::error_code status_error;
  if (!std::filesystem::is_regular_file(path, status_error)) {
    error = std::filesystem::exists(path, status_error) ? "not a regular file" : "no such file";
    return {};
  }
  Open_File file(path);
  if (!file.get()) {
    error = std::strerror(errno);
    return {};
  }
  png_byte signature[8] = {};
  if (std::fread(signature, 1, sizeof signature, file.get()) != sizeof signature ||
      png_sig_cmp(signature, 0, sizeof signature) != 0) {
    error = "not a PNG file";
    return {};
  }

  Png_Reader reader;
  reader.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &reader, on_error, on_warning);
  if (reader.png) reader.info = png_create_info_struct(reader.png);
  const Reader_Owner owner(reader);
  if (!reader.png || !reader.info) {
    error = "out of memory";
    return {};
  }
  png_set_sig_bytes(reader.png, sizeof signature);
  png_uint_32 width = 0, height = 0;
  if (!read_header(reader, file.get(), width, height)) {
    error = reader.message;
    return {};
  }
  if (width < 1 || height < 1 || width > largest_texture_side || height > largest_texture_side) {
    error = std::to_string(width) + " x " + std::to_string(height) + " is not a texture size (1.." +
            std::to_string(largest_texture_side) + " each)";
    return {};
  }
  OT_Shared_Image image(int(width), int(height), OT_Image_Format_RGB32, 0, nullptr, false);
  if (!image) {
    error = "out of memory";
    return {};
  }
  if (!read_rows(reader, reinterpret_cast<png_bytepp>(image->top_rows))) {
    error = reader.message;
    return {};
  }
  return image;
}

}  // namespace tarn_render
