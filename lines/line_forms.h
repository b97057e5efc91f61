// The writers of a line call, chosen once per call by mode, merge, mask and
// depth options, and the polyline walk over them. A form gives the plot of a
// segment in its colour and the plot of the polyline's last point.
#pragma once

#include <type_traits>

#include "lines/line_walker.h"
#include "pixel/mask.h"
#include "pixel/point_writers.h"

namespace tarn {

// A segment's colour: the rendition's index for all segments, or colors[i]
// (colors[0] for all when single).
struct Index_Paint {
  byte index;
  byte operator()(int) const { return index; }
};
struct Color_Paint {
  const OT_RGB32* colors;
  bool single;
  OT_RGB32 operator()(int i) const { return colors[single ? 0 : i]; }
  // The paint of the run that starts at segment i.
  Color_Paint from(int i) const { return {single ? colors : colors + i, single}; }
};

template <class Stores, class Wrap>
struct Color_Line_Form {
  static constexpr bool kDepth = false;
  static constexpr bool kMasked = !std::is_same_v<Wrap, No_Masking>;
  const Software_Z_Buffer* r;
  Stores stores;
  Wrap wrap;
  template <class C>
  auto plot(C c) const {
    return color_plot(*r, wrap(stores(c)));
  }
  template <class C>
  auto last(C c) const {
    return plot(c);
  }
};

// The last point of a depth polyline tests its z as a signed number against
// the stored word, greater skips; otherwise colour and the low 16 bits of z,
// whatever the depth options say. Behind the mask that z is the one the walk
// accumulated, not the point's.
template <class Test, bool kWriteDepth, class Stores, class Wrap>
struct Depth_Line_Form {
  static constexpr bool kDepth = true;
  static constexpr bool kMasked = !std::is_same_v<Wrap, No_Masking>;
  const Software_Z_Buffer* r;
  Stores stores;
  Wrap wrap;
  template <class C>
  auto plot(C c) const {
    return depth_plot<Test, kWriteDepth>(*r, wrap(stores(c)));
  }
  template <class C>
  auto last(C c) const {
    return depth_plot<Depth_At_Or_Below, true>(*r, wrap(stores(c)));
  }
};

// Runs body(form) with the form of a line call in Mode, behind the mask when
// masked. The mapped depth form tests at or below and always writes depth,
// whatever the options. Behind a mask the RGB32 depth forms do the same and
// store the colour whole: the depth-alpha mode ignores alpha there.
template <class Mode, class Body>
inline void with_line_form(const Software_Z_Buffer& r, const OT_Rendition& rendition, bool masked,
                           Body&& body) {
  auto wrapped = [&]<class Make>(Make&& make) {
    if (masked)
      body(make(Masking(r)));
    else
      body(make(No_Masking{}));
  };
  if constexpr (!Mode::kDepth) {
    with_color_stores<Mode>(r, rendition, [&]<class Stores>(const Stores& stores) {
      wrapped([&]<class Wrap>(const Wrap& wrap) { return Color_Line_Form<Stores, Wrap>{&r, stores, wrap}; });
    });
  } else if constexpr (Mode::kIndex) {
    wrapped([&]<class Wrap>(const Wrap& wrap) {
      return Depth_Line_Form<Depth_At_Or_Below, true, Index_Stores, Wrap>{&r, {}, wrap};
    });
  } else if (masked) {
    body(Depth_Line_Form<Depth_At_Or_Below, true, Word_Stores, Masking>{&r, {}, Masking(r)});
  } else {
    with_depth_options(r, [&]<class Test, bool kWriteDepth>() {
      body(Depth_Line_Form<Test, kWriteDepth, Depth_Color_Stores<Mode>, No_Masking>{&r, {}, {}});
    });
  }
}

// The colorized form of the mapped modes: each colour sorted once into its
// dither thresholds, no merge; with depth, the test at or below and depth
// always written, and the mask when one is in force. Without depth the mask
// is not looked at.
struct Dither_Stores {
  const OT_Color_Cube* cube;
  Dither_Compare_Store operator()(OT_RGB32 c) const {
    return Dither_Compare_Store(dither_thresholds(*cube, c));
  }
};

template <class Mode, class Body>
inline void with_dither_line_form(const Software_Z_Buffer& r, bool masked, Body&& body) {
  const Dither_Stores stores{&r.cube};
  if constexpr (!Mode::kDepth)
    body(Color_Line_Form<Dither_Stores, No_Masking>{&r, stores, {}});
  else if (masked)
    body(Depth_Line_Form<Depth_At_Or_Below, true, Dither_Stores, Masking>{&r, stores, Masking(r)});
  else
    body(Depth_Line_Form<Depth_At_Or_Below, true, Dither_Stores, No_Masking>{&r, stores, {}});
}

// Segments in order, then the last point once, in the last segment's colour.
template <class Form, class Paint>
inline void walk_polyline(const Software_Z_Buffer& r, const Form& form, int count, const OT_DCI_Point* points,
                          const Paint& paint) {
  auto window = [&r](const OT_DCI_Point& p) { return OT_DCI_Point{p.x - r.origin_x, p.y - r.origin_y, p.z}; };
  OT_DCI_Point a = window(points[0]);
  [[maybe_unused]] std::int32_t walked_z = a.z;
  for (int i = 0; i + 1 < count; ++i) {
    const OT_DCI_Point b = window(points[i + 1]);
    const auto end = walk_segment(form.plot(paint(i)), Whole_Segment{}, a, b);
    if constexpr (Form::kDepth && Form::kMasked) walked_z = accumulated_z(end, a, b);
    a = b;
  }
  if constexpr (Form::kDepth && Form::kMasked)
    form.last(paint(count - 2))(a.x, a.y, walked_z);
  else
    form.last(paint(count - 2))(a.x, a.y, a.z);
}

}  // namespace tarn
