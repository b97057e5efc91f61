// The renderer's six modes as types, for the family templates: kIndex, 8-bit
// palette pixels (else RGB32); kDepth, the depth buffer; kAlpha, the alpha
// filler that blends. A mode names the siblings it hands a call to.
#pragma once

namespace tarn {

template <bool kIndexed, bool kDepthBuffer, bool kAlphaFiller>
struct Mode_Traits {
  static constexpr bool kIndex = kIndexed;
  static constexpr bool kDepth = kDepthBuffer;
  static constexpr bool kAlpha = kAlphaFiller;
  // When a rendition turns depth off.
  using Without_Depth = Mode_Traits<kIndexed, false, kAlphaFiller>;
  // When the alpha path bit or a translucent colour asks for blending.
  using Alpha_Path = Mode_Traits<kIndexed, kDepthBuffer, true>;
  // When an opaque colour needs no blending.
  using Opaque = Mode_Traits<kIndexed, kDepthBuffer, false>;
};

using Mapped = Mode_Traits<true, false, false>;
using Z_Mapped = Mode_Traits<true, true, false>;
// Textured triangles only: texel alpha as a one-bit key.
using Z_Mapped_Alpha = Mode_Traits<true, true, true>;
using Rgb32 = Mode_Traits<false, false, false>;
using Rgb32_Alpha = Mode_Traits<false, false, true>;
using Z_Rgb32 = Mode_Traits<false, true, false>;
using Z_Rgb32_Alpha = Mode_Traits<false, true, true>;

}  // namespace tarn
