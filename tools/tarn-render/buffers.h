// Reaching the renderer's images from outside, as a client does: the colour
// image through the option "Color Buffer", depth through the slot
// read_depth_rectangle. And turning them into pictures.
#pragma once

#include "host/ombra.h"
#include "tools/tarn-render/png_writer.h"

namespace tarn_render {

// The colour image that the renderer published in its current option table,
// or null.
const OT_Shared_Image_Data* published_color_image(OT_Renderer_Data* renderer);

// True when the renderer's current options give it a depth buffer and its
// read_depth_rectangle slot holds one of its own functions. A renderer that
// left a depth mode keeps its old depth functions in the slots, and those
// must not be called without the depth image.
bool has_depth_buffer(OT_Renderer_Data* renderer);

// The depth values of the device rectangle from `first` (left, top) to `last`
// (right, bottom), read through the slot in the buffer's own format; null when
// the renderer answers with no image or not with depth.
OT_Shared_Image read_depth(OT_Renderer_Data* renderer, const OT_Rendition& rendition,
                           const OT_DCI_Point& first, const OT_DCI_Point& last);

// The whole colour image, top row first: RGB32 as RGB (RGBA with
// `keep_alpha`), an index image through `palette`.
Png_Picture color_picture(const OT_Shared_Image_Data& image, const OT_Palette& palette, bool keep_alpha);
// A depth image read back by read_depth, top row first, as 16-bit grey.
Png_Picture depth_picture(const OT_Shared_Image_Data& depth);

}  // namespace tarn_render
