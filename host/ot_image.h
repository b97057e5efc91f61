// Counted images with two row tables.
#pragma once

#include "host/ot_base.h"

// `top_rows` runs forward through memory from the first row; `device_rows` is
// its reverse, indexed by device y less the window origin, so that device y
// grows upwards while memory grows downwards. Rows a..b (a <= b) of the
// device are therefore one contiguous run starting at device_rows[b].
class OMBRA_API OT_Shared_Image_Data : public OT_Counted {
 public:
  // Allocates width x height pixels of `format` with `row_bytes` between rows
  // (0 or less: the host's own pitch, a multiple of 8 bytes). With `data`
  // non-null the image uses that memory, which the caller keeps alive.
  OT_Shared_Image_Data(int width, int height, OT_Image_Format format, int row_bytes, const void* data,
                       bool adopt);
  OT_Shared_Image_Data(const OT_Shared_Image_Data& other);  // deep copy
  OT_Shared_Image_Data& operator=(const OT_Shared_Image_Data&) = delete;
  ~OT_Shared_Image_Data() override;
  OT_Counted* clone() const override;

  static int pixel_bytes(OT_Image_Format format);

  byte** top_rows = nullptr;
  byte** device_rows = nullptr;
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::int32_t row_bytes = 0;
  OT_Image_Format format = OT_Image_Format_Index8;
  byte full_frame = 0;

  // Host bookkeeping, not part of what renderers read.
  byte* pixels = nullptr;
  bool owns_pixels = false;

 private:
  void build_row_tables();
};

class OMBRA_API OT_Shared_Image : public OT_Handle<OT_Shared_Image_Data> {
 public:
  OT_Shared_Image() = default;
  explicit OT_Shared_Image(OT_Shared_Image_Data* data) : OT_Handle(data) {}
  // Allocates a new image (see OT_Shared_Image_Data). Leaves the handle null
  // if the memory can't be had.
  OT_Shared_Image(int width, int height, OT_Image_Format format, int row_bytes, const void* data, bool adopt);
};
