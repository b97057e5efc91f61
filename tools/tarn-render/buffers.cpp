#include "tools/tarn-render/buffers.h"

#include <cstring>

namespace tarn_render {

const OT_Shared_Image_Data* published_color_image(OT_Renderer_Data* renderer) {
  const OT_Option* option = renderer->current_option_table()->find(L"Color Buffer");
  return option ? static_cast<const OT_Shared_Image_Data*>(option->as_pointer()) : nullptr;
}

bool has_depth_buffer(OT_Renderer_Data* renderer) {
  return renderer->current_renderer_options()->buffer_depth() >= 1 &&
         renderer->read_depth_rectangle.function && renderer->read_depth_rectangle.object == renderer;
}

OT_Shared_Image read_depth(OT_Renderer_Data* renderer, const OT_Rendition& rendition,
                           const OT_DCI_Point& first, const OT_DCI_Point& last) {
  OT_Shared_Image image;
  if (!has_depth_buffer(renderer)) return image;
  OT_Image_Format format = OT_Image_Format_Native;
  renderer->read_depth_rectangle(rendition, &first, &last, &format, image);
  if (image && image->format != OT_Image_Format_Depth16) image.reset();
  return image;
}

Png_Picture color_picture(const OT_Shared_Image_Data& image, const OT_Palette& palette, bool keep_alpha) {
  Png_Picture picture;
  picture.width = image.width;
  picture.height = image.height;
  const bool rgb32 = image.format == OT_Image_Format_RGB32;
  picture.kind = rgb32 && keep_alpha ? Png_Kind::Rgba8 : Png_Kind::Rgb8;
  const int channels = picture.kind == Png_Kind::Rgba8 ? 4 : 3;
  picture.pixels.reserve(std::size_t(image.width) * image.height * channels);
  // top_rows[0] is the top of the picture: the largest device y.
  for (int y = 0; y < image.height; ++y) {
    const byte* row = image.top_rows[y];
    for (int x = 0; x < image.width; ++x) {
      OT_RGB32 c;
      if (rgb32)
        std::memcpy(&c, row + 4 * x, 4);
      else
        c = palette ? palette.color(row[x]) : OT_RGB32::rgba(row[x], row[x], row[x]);
      picture.pixels.push_back(c.r);
      picture.pixels.push_back(c.g);
      picture.pixels.push_back(c.b);
      if (channels == 4) picture.pixels.push_back(c.a);
    }
  }
  return picture;
}

Png_Picture depth_picture(const OT_Shared_Image_Data& depth) {
  Png_Picture picture;
  picture.width = depth.width;
  picture.height = depth.height;
  picture.kind = Png_Kind::Grey16;
  picture.pixels.resize(std::size_t(depth.width) * depth.height * 2);
  // read_depth fills the image in storage order from the top row down.
  for (int y = 0; y < depth.height; ++y)
    std::memcpy(picture.pixels.data() + std::size_t(y) * depth.width * 2, depth.top_rows[y],
                std::size_t(depth.width) * 2);
  return picture;
}

}  // namespace tarn_render
