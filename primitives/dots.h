// Dots (one pixel at a trusted integer point, optional colour of its own) and
// one-pixel polymarkers (clipped to the hard clip, the rendition's colour);
// one template by mode for each.
#pragma once

#include "host/ombra.h"
#include "pixel/point_writers.h"

namespace tarn {

template <class Mode>
void dci_dot(OT_Renderer_Data* object, const OT_Rendition& rendition, const OT_DCI_Point* point,
             const OT_RGB32* color);

// kAlphaTested: entered from a mode that has made the test of an opaque
// colour already.
template <class Mode, bool kAlphaTested = false>
void polymarker(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                const OT_DCI_Point* points);

inline constexpr auto mapped_dci_dot = &dci_dot<Mapped>;
inline constexpr auto z_mapped_dci_dot = &dci_dot<Z_Mapped>;
inline constexpr auto rgb32_dci_dot = &dci_dot<Rgb32>;
inline constexpr auto rgb32_alpha_dci_dot = &dci_dot<Rgb32_Alpha>;
inline constexpr auto z_rgb32_dci_dot = &dci_dot<Z_Rgb32>;
inline constexpr auto z_rgb32_alpha_dci_dot = &dci_dot<Z_Rgb32_Alpha>;

// The mapped depth mode has no marker of its own: the host's stays.
inline constexpr auto mapped_2di_polymarker = &polymarker<Mapped>;
inline constexpr auto rgb32_2di_polymarker = &polymarker<Rgb32>;
inline constexpr auto rgb32_alpha_2di_polymarker = &polymarker<Rgb32_Alpha>;
inline constexpr auto z_rgb32_2di_polymarker = &polymarker<Z_Rgb32>;
inline constexpr auto z_rgb32_alpha_2di_polymarker = &polymarker<Z_Rgb32_Alpha>;

}  // namespace tarn
