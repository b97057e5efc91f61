// Clearing, reading back and writing the buffers. All of it works on whole
// rows through the row tables and block memory operations. Which of these
// clip, and against what, differs on purpose from one to the next.
#pragma once

#include "host/ombra.h"

namespace tarn {

void mapped_clear_color(OT_Renderer_Data* object, const OT_Rendition& rendition);
void rgb32_clear_color(OT_Renderer_Data* object, const OT_Rendition& rendition);
void z_clear_depth(OT_Renderer_Data* object, const OT_Rendition& rendition);
void no_clear_depth(OT_Renderer_Data* object, const OT_Rendition& rendition);

void mapped_read_color_rectangle(OT_Renderer_Data* object, const OT_Rendition& rendition,
                                 const OT_DCI_Point* first, const OT_DCI_Point* last, OT_Image_Format* format,
                                 OT_Shared_Image& image);
void rgb32_read_color_rectangle(OT_Renderer_Data* object, const OT_Rendition& rendition,
                                const OT_DCI_Point* first, const OT_DCI_Point* last, OT_Image_Format* format,
                                OT_Shared_Image& image);
void z_read_depth_rectangle(OT_Renderer_Data* object, const OT_Rendition& rendition,
                            const OT_DCI_Point* first, const OT_DCI_Point* last, OT_Image_Format* format,
                            OT_Shared_Image& image);
void z_write_depth_rectangle(OT_Renderer_Data* object, const OT_Rendition& rendition,
                             const OT_DCI_Point* first, const OT_DCI_Point* last, int row_bytes,
                             const byte* data);

// Fills n 32-bit words: one word to reach 8-byte alignment, then pairs as
// 64-bit stores, then a last word if one remains.
void fill_words(std::uint32_t* p, std::int64_t n, std::uint32_t value);

}  // namespace tarn
