// Action slots: the calls through which every drawing operation reaches a
// renderer. A slot holds `object`, `function`, `adjustment` and `valid`, and
// is called as function(object, rendition, ...).
#pragma once

#include "host/ot_base.h"

class OT_Renderer_Data;
class OT_Rendition;
class OT_Shared_Image;

template <class... Args>
struct OT_Action {
  using Function = void (*)(OT_Renderer_Data* object, const OT_Rendition& rendition, Args... args);

  OT_Renderer_Data* object = nullptr;
  Function function = nullptr;
  std::int64_t adjustment = 0;
  std::int32_t valid = 0;

  void operator()(const OT_Rendition& rendition, Args... args) const { function(object, rendition, args...); }

  // A non-null function fills the slot; a null one only marks it invalid.
  void install(OT_Renderer_Data* owner, Function f) {
    if (f) {
      object = owner;
      function = f;
      adjustment = 0;
      valid = 1;
    } else {
      valid = 0;
    }
  }
};

// Argument lists of the families, by point type.
#define OT_PLAIN_ARGS(P) int, const P*
#define OT_COLORIZED_ARGS(P) int, const P*, const OT_RGB32*, bool
#define OT_GOURAUD_ARGS(P) int, const P*, const OT_RGB32*
#define OT_TEXTURED_ARGS(P) \
  int, const P*, const OT_RGB32*, const OT_Parameter*, int, const float*, const OT_Vector*
#define OT_DOT_ARGS(P) const P*, const OT_RGB32*
#define OT_INDEX8_IMAGE_ARGS(P) const P*, const P*, int, const byte*
#define OT_RGB32_IMAGE_ARGS(P) const P*, const P*, int, const OT_RGB32*, int, const OT_Packing*

// A family of five slots: 2D, DC, 2DI, DCI, tiled.
#define OT_ACTION_FAMILY(X, family, ARGS)  \
  X(draw_2d_##family, ARGS(OT_Point))      \
  X(draw_dc_##family, ARGS(OT_Point))      \
  X(draw_2di_##family, ARGS(OT_DCI_Point)) \
  X(draw_dci_##family, ARGS(OT_DCI_Point)) \
  X(draw_tiled_##family, ARGS(OT_Point_D))

#define OT_RECTANGLE_READ_ARGS const OT_DCI_Point*, const OT_DCI_Point*, OT_Image_Format*, OT_Shared_Image&
#define OT_RECTANGLE_WRITE_ARGS const OT_DCI_Point*, const OT_DCI_Point*, int, const byte*
#define OT_NO_ARGS

// Every slot of the table, in the table's order. X(name, argument types...).
#define OT_ACTION_SLOTS(X)                                       \
  OT_ACTION_FAMILY(X, polytriangle, OT_PLAIN_ARGS)               \
  OT_ACTION_FAMILY(X, colorized_polytriangle, OT_COLORIZED_ARGS) \
  OT_ACTION_FAMILY(X, gouraud_polytriangle, OT_GOURAUD_ARGS)     \
  OT_ACTION_FAMILY(X, textured_polytriangle, OT_TEXTURED_ARGS)   \
  OT_ACTION_FAMILY(X, polyline, OT_PLAIN_ARGS)                   \
  OT_ACTION_FAMILY(X, colorized_polyline, OT_COLORIZED_ARGS)     \
  OT_ACTION_FAMILY(X, gouraud_polyline, OT_GOURAUD_ARGS)         \
  OT_ACTION_FAMILY(X, polymarker, OT_PLAIN_ARGS)                 \
  OT_ACTION_FAMILY(X, polygon, OT_GOURAUD_ARGS)                  \
  OT_ACTION_FAMILY(X, dot, OT_DOT_ARGS)                          \
  OT_ACTION_FAMILY(X, rgb32_image, OT_RGB32_IMAGE_ARGS)          \
  OT_ACTION_FAMILY(X, index8_image, OT_INDEX8_IMAGE_ARGS)        \
  X(write_depth_rectangle, OT_RECTANGLE_WRITE_ARGS)              \
  X(read_color_rectangle, OT_RECTANGLE_READ_ARGS)                \
  X(read_depth_rectangle, OT_RECTANGLE_READ_ARGS)                \
  X(clear_color, OT_NO_ARGS)                                     \
  X(clear_depth, OT_NO_ARGS)

#define OT_DECLARE_ACTION_SLOT(name, ...) OT_Action<__VA_ARGS__> name;

// The slots as one record; OT_Renderer_Data derives from it.
struct OT_Action_Slots {
  OT_ACTION_SLOTS(OT_DECLARE_ACTION_SLOT)
};

// Function types of the slots, by slot name: OT_Action_Function<...>.
#define OT_DECLARE_ACTION_TYPE(name, ...) using name##_function = OT_Action<__VA_ARGS__>::Function;
namespace OT_Action_Types {
OT_ACTION_SLOTS(OT_DECLARE_ACTION_TYPE)
}
