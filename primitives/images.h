// Images: a rectangle of client pixels copied into the colour image, palette
// indices in the mapped modes and RGB32 words in the others. The left end and
// the rows are trusted; only the right edge of the window cuts an image.
#pragma once

#include "frame/software_z_buffer.h"

namespace tarn {

// `first` is the left end and the top row, `last` the right end and the
// bottom row (device y, so first.y >= last.y); rows of `data` lie row_bytes
// apart. The depth forms ramp z from first.z to last.z.
void mapped_dci_index8_image(OT_Renderer_Data* object, const OT_Rendition& rendition,
                             const OT_DCI_Point* first, const OT_DCI_Point* last, int row_bytes,
                             const byte* data);
void z_mapped_dci_index8_image(OT_Renderer_Data* object, const OT_Rendition& rendition,
                               const OT_DCI_Point* first, const OT_DCI_Point* last, int row_bytes,
                               const byte* data);

// The int and the packing record are the host's business: the data is always
// blue, green, red, alpha.
void rgb32_dci_rgb32_image(OT_Renderer_Data* object, const OT_Rendition& rendition, const OT_DCI_Point* first,
                           const OT_DCI_Point* last, int row_bytes, const OT_RGB32* data, int,
                           const OT_Packing*);
void rgb32_alpha_dci_rgb32_image(OT_Renderer_Data* object, const OT_Rendition& rendition,
                                 const OT_DCI_Point* first, const OT_DCI_Point* last, int row_bytes,
                                 const OT_RGB32* data, int, const OT_Packing*);
void z_rgb32_dci_rgb32_image(OT_Renderer_Data* object, const OT_Rendition& rendition,
                             const OT_DCI_Point* first, const OT_DCI_Point* last, int row_bytes,
                             const OT_RGB32* data, int, const OT_Packing*);
void z_rgb32_alpha_dci_rgb32_image(OT_Renderer_Data* object, const OT_Rendition& rendition,
                                   const OT_DCI_Point* first, const OT_DCI_Point* last, int row_bytes,
                                   const OT_RGB32* data, int, const OT_Packing*);

}  // namespace tarn
