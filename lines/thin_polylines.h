// Thin polylines at trusted integer points: the one-colour form and the
// colorized form of every mode, each one template by mode.
#pragma once

#include "frame/software_z_buffer.h"
#include "pixel/point_writers.h"

namespace tarn {

template <class Mode>
void dci_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                  const OT_DCI_Point* points);

// One colour a segment, or colors[0] for all.
template <class Mode>
void dci_colorized_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                            const OT_DCI_Point* points, const OT_RGB32* colors, bool single_color);

inline constexpr auto mapped_dci_polyline = &dci_polyline<Mapped>;
inline constexpr auto z_mapped_dci_polyline = &dci_polyline<Z_Mapped>;
inline constexpr auto rgb32_dci_polyline = &dci_polyline<Rgb32>;
inline constexpr auto rgb32_alpha_dci_polyline = &dci_polyline<Rgb32_Alpha>;
inline constexpr auto z_rgb32_dci_polyline = &dci_polyline<Z_Rgb32>;
inline constexpr auto z_rgb32_alpha_dci_polyline = &dci_polyline<Z_Rgb32_Alpha>;

inline constexpr auto mapped_dci_colorized_polyline = &dci_colorized_polyline<Mapped>;
inline constexpr auto z_mapped_dci_colorized_polyline = &dci_colorized_polyline<Z_Mapped>;
inline constexpr auto rgb32_dci_colorized_polyline = &dci_colorized_polyline<Rgb32>;
inline constexpr auto rgb32_alpha_dci_colorized_polyline = &dci_colorized_polyline<Rgb32_Alpha>;
inline constexpr auto z_rgb32_dci_colorized_polyline = &dci_colorized_polyline<Z_Rgb32>;
inline constexpr auto z_rgb32_alpha_dci_colorized_polyline = &dci_colorized_polyline<Z_Rgb32_Alpha>;

}  // namespace tarn
