// The renderer base class: action slots, callbacks to the window system, and
// the requested and current option tables.
#pragma once

#include "host/ot_actions.h"
#include "host/ot_image.h"
#include "host/ot_options.h"
#include "host/ot_rendition.h"

// Image factory: makes an image of width x height in *format and stores a
// handle to it in *image_out, releasing what stood there.
using OT_Image_Factory_Function = void (*)(void* context, int width, int height,
                                           const OT_Image_Format* format, OT_Shared_Image* image_out);
// Window update: the region from `first` (left, top) to `last` (right, bottom)
// of *image is finished; x, y place it in the window, whose y runs downwards.
using OT_Window_Update_Function = void (*)(void* context, const OT_DCI_Point* first, const OT_DCI_Point* last,
                                           const OT_Shared_Image* image, int x, int y);

struct OT_Image_Factory {
  void* context = nullptr;
  OT_Image_Factory_Function function = nullptr;
};

struct OT_Window_Update {
  void* context = nullptr;
  OT_Window_Update_Function function = nullptr;
};

// The host's own image factory: the OT_Shared_Image constructor with the
// host's row pitch.
OMBRA_API void OB_Standard_Image_Factory(void* context, int width, int height, const OT_Image_Format* format,
                                         OT_Shared_Image* image_out);

class OMBRA_API OT_Renderer_Data : public OT_Counted, public OT_Action_Slots {
 public:
  // `prototype` is what the host hands the module's factory: null, or a
  // renderer record whose callbacks, option tables and renderer options the
  // new renderer starts from. `root` is always the new object itself.
  explicit OT_Renderer_Data(const OT_Renderer_Data* prototype);
  OT_Renderer_Data(const OT_Renderer_Data&) = delete;
  OT_Renderer_Data& operator=(const OT_Renderer_Data&) = delete;
  ~OT_Renderer_Data() override;

  // Virtual operations, in the order of their slots (after the destructor
  // and clone, which OT_Counted declares).
  virtual OT_Renderer_Options* current_renderer_options();
  virtual const OT_Renderer_Options* current_renderer_options() const;
  virtual void optimize_current_options();
  virtual void optimize_current_renderer_options(OT_Renderer_Data& other);
  virtual OT_Option_Table* current_option_table();
  virtual int establish();
  virtual int establish_all();
  virtual void begin_picture(OT_Document_Info* info);
  virtual void begin_picture_all(OT_Document_Info* info);
  virtual void end_picture();
  virtual void end_picture_all();
  virtual void update(const OT_Int_Rectangle& region);
  virtual void update_all(const OT_Int_Rectangle& region);

  // Brings the requested options and renderer options into the current pair.
  // An option of the requested table is carried over when a client changed
  // it with OT_Option::set since the last update, or when the current table
  // lacks it; so values that the renderer stored directly in the current
  // table (the depth setters, say) stay where they are.
  void update_current_options();

  OT_Renderer_Data* root = nullptr;
  OT_Image_Factory image_factory;
  OT_Window_Update window_update;
  OT_Option_Table requested_options;
  OT_Option_Table current_options;
  OT_Renderer_Options requested_renderer_options;
  OT_Renderer_Options current_renderer_options_;

 protected:
  // Puts the host's standard routine into every slot.
  void set_standard_actions(bool keep_valid);
};
