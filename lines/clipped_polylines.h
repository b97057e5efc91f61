// The 2DI thin polylines of every mode: points anywhere, clipped to the hard
// clip on the way to the walker; one template by mode.
#pragma once

#include "frame/software_z_buffer.h"
#include "pixel/point_writers.h"

namespace tarn {

template <class Mode>
void clipped_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                      const OT_DCI_Point* points);

inline constexpr auto mapped_2di_polyline = &clipped_polyline<Mapped>;
inline constexpr auto z_mapped_2di_polyline = &clipped_polyline<Z_Mapped>;
inline constexpr auto rgb32_2di_polyline = &clipped_polyline<Rgb32>;
inline constexpr auto rgb32_alpha_2di_polyline = &clipped_polyline<Rgb32_Alpha>;
inline constexpr auto z_rgb32_2di_polyline = &clipped_polyline<Z_Rgb32>;
inline constexpr auto z_rgb32_alpha_2di_polyline = &clipped_polyline<Z_Rgb32_Alpha>;

}  // namespace tarn
