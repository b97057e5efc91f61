// Named options in option tables, and the fixed renderer options.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/ot_palette.h"

class OMBRA_API OT_String {
 public:
  OT_String() = default;
  OT_String(const wchar_t* text) : text_(text ? text : L"") {}
  explicit OT_String(std::wstring text) : text_(std::move(text)) {}
  ~OT_String();
  const std::wstring& text() const { return text_; }
  bool operator==(const OT_String& other) const { return text_ == other.text_; }

 private:
  std::wstring text_;
};

namespace OT_Option_Enum {
enum Scope : std::int32_t {
  Instance = 0,  // an option of one renderer instance
  Shared = 1,    // the scope of "Mask Cache"
};
}

enum class OT_Option_Type : std::int32_t { Bool, Int, Pointer, Color };

// The value record of an option, counted and shared between options. Readers
// take the value straight from storage: a bool as one byte, an int as a
// signed 32-bit word, a pointer, or a colour as three words red, green, blue.
class OMBRA_API OT_Option_Value_Data : public OT_Clonable<OT_Option_Value_Data> {
 public:
  OT_Option_Type type = OT_Option_Type::Pointer;
  union Storage {
    byte as_bool;
    std::int32_t as_int;
    const void* as_pointer;
    std::int32_t as_color[3];
  } storage{};
};

class OMBRA_API OT_Option_Value : public OT_Handle<OT_Option_Value_Data> {
 public:
  OT_Option_Value() = default;
  explicit OT_Option_Value(OT_Option_Value_Data* data) : OT_Handle(data) {}
  // Wraps a pointer as a value.
  explicit OT_Option_Value(const void* pointer);
  static OT_Option_Value of_bool(bool value);
  static OT_Option_Value of_int(int value);
  static OT_Option_Value of_color(int red, int green, int blue);
};

class OMBRA_API OT_Option {
 public:
  OT_Option(const OT_String& name, OT_Option_Enum::Scope scope, bool value);
  OT_Option(const OT_String& name, OT_Option_Enum::Scope scope, int value);
  OT_Option(const OT_String& name, OT_Option_Enum::Scope scope, int red, int green, int blue);
  OT_Option(const OT_String& name, OT_Option_Enum::Scope scope, const void* value);

  // Shares the given value record. Marks the option as changed, which is what
  // update_current_options() carries from the requested table.
  void set(const OT_Option_Value& value);

  const OT_String& name() const { return name_; }
  OT_Option_Enum::Scope scope() const { return scope_; }
  OT_Option_Type type() const { return value_->type; }
  OT_Option_Value& value() { return value_; }
  const OT_Option_Value& value() const { return value_; }
  bool changed() const { return changed_; }
  void clear_changed() { changed_ = false; }

  byte as_bool() const { return value_->storage.as_bool; }
  std::int32_t as_int() const { return value_->storage.as_int; }
  const void* as_pointer() const { return value_->storage.as_pointer; }
  const std::int32_t* as_color() const { return value_->storage.as_color; }

 private:
  OT_String name_;
  OT_Option_Enum::Scope scope_;
  OT_Option_Value value_;
  bool changed_ = false;
};

// Options by name. Pointers returned by add and find stay valid as long as the
// table does.
class OMBRA_API OT_Option_Table {
 public:
  OT_Option_Table() = default;
  OT_Option_Table(const OT_Option_Table& other);
  OT_Option_Table& operator=(const OT_Option_Table& other);

  // Stores a copy and returns it; an option of the same name is overwritten
  // in place, and keeps its address.
  OT_Option* add(const OT_Option& option);
  OT_Option* find(const OT_String& name) const;

  std::size_t size() const { return options_.size(); }
  OT_Option& at(std::size_t i) const { return *options_[i]; }

 private:
  std::vector<std::unique_ptr<OT_Option>> options_;
};

class OMBRA_API OT_Renderer_Options {
 public:
  OT_Renderer_Options();

  int buffer_depth() const { return buffer_depth_; }
  void set_buffer_depth(int depth) { buffer_depth_ = depth; }
  OT_Color_System color_system() const { return color_system_; }
  void set_color_system(OT_Color_System system) { color_system_ = system; }
  bool alpha_blending() const { return alpha_blending_; }
  void set_alpha_blending(bool on) { alpha_blending_ = on; }
  bool local_coordinates() const { return local_coordinates_; }
  void set_local_coordinates(bool on) { local_coordinates_ = on; }
  OT_Int_XY window_origin() const { return window_origin_; }
  void set_window_origin(OT_Int_XY origin) { window_origin_ = origin; }
  OT_Int_XY window_size() const { return window_size_; }
  void set_window_size(OT_Int_XY size) { window_size_ = size; }
  const OT_Palette& palette() const { return palette_; }
  void set_palette(const OT_Palette& palette) { palette_ = palette; }
  bool backing_store() const { return backing_store_; }
  void set_backing_store(bool on) { backing_store_ = on; }
  bool supports_complex_clip() const { return supports_complex_clip_; }
  void set_supports_complex_clip(bool on) { supports_complex_clip_ = on; }

 private:
  int buffer_depth_ = 0;
  OT_Color_System color_system_ = OT_Color_System_Direct;
  bool alpha_blending_ = false;
  bool local_coordinates_ = false;
  OT_Int_XY window_origin_{0, 0};
  OT_Int_XY window_size_{0, 0};
  OT_Palette palette_;  // the host's default palette
  bool backing_store_ = false;
  bool supports_complex_clip_ = false;
};
