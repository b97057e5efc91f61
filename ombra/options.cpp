// Named options, their shared value records, option tables and the fixed
// renderer options.
#include "host/ot_options.h"

OT_String::~OT_String() = default;

namespace {

OT_Option_Value make_value(OT_Option_Type type) {
  OT_Option_Value value(new OT_Option_Value_Data);
  if (value) value->type = type;
  return value;
}

}  // namespace

OT_Option_Value::OT_Option_Value(const void* pointer) {
  reset(new OT_Option_Value_Data);
  if (data_) {
    data_->type = OT_Option_Type::Pointer;
    data_->storage.as_pointer = pointer;
  }
}

OT_Option_Value OT_Option_Value::of_bool(bool value) {
  OT_Option_Value v = make_value(OT_Option_Type::Bool);
  if (v) v->storage.as_bool = value ? 1 : 0;
  return v;
}

OT_Option_Value OT_Option_Value::of_int(int value) {
  OT_Option_Value v = make_value(OT_Option_Type::Int);
  if (v) v->storage.as_int = value;
  return v;
}

OT_Option_Value OT_Option_Value::of_color(int red, int green, int blue) {
  OT_Option_Value v = make_value(OT_Option_Type::Color);
  if (v) {
    v->storage.as_color[0] = red;
    v->storage.as_color[1] = green;
    v->storage.as_color[2] = blue;
  }
  return v;
}

OT_Option::OT_Option(const OT_String& name, OT_Option_Enum::Scope scope, bool value)
    : name_(name), scope_(scope), value_(OT_Option_Value::of_bool(value)) {}

OT_Option::OT_Option(const OT_String& name, OT_Option_Enum::Scope scope, int value)
    : name_(name), scope_(scope), value_(OT_Option_Value::of_int(value)) {}

OT_Option::OT_Option(const OT_String& name, OT_Option_Enum::Scope scope, int red, int green, int blue)
    : name_(name), scope_(scope), value_(OT_Option_Value::of_color(red, green, blue)) {}

OT_Option::OT_Option(const OT_String& name, OT_Option_Enum::Scope scope, const void* value)
    : name_(name), scope_(scope), value_(value) {}

void OT_Option::set(const OT_Option_Value& value) {
  value_ = value;
  changed_ = true;
}

OT_Option_Table::OT_Option_Table(const OT_Option_Table& other) {
  options_.reserve(other.options_.size());
  for (const auto& option : other.options_) options_.push_back(std::make_unique<OT_Option>(*option));
}

// Options whose names both tables hold keep their addresses, so that pointers
// kept into this table stay good for them; the others go or come.
OT_Option_Table& OT_Option_Table::operator=(const OT_Option_Table& other) {
  if (this == &other) return *this;
  std::vector<std::unique_ptr<OT_Option>> options;
  options.reserve(other.options_.size());
  for (const auto& source : other.options_) {
    std::unique_ptr<OT_Option> kept;
    for (auto& mine : options_)
      if (mine && mine->name() == source->name()) {
        kept = std::move(mine);
        break;
      }
    if (kept)
      *kept = *source;
    else
      kept = std::make_unique<OT_Option>(*source);
    options.push_back(std::move(kept));
  }
  options_ = std::move(options);
  return *this;
}

OT_Option* OT_Option_Table::add(const OT_Option& option) {
  if (OT_Option* existing = find(option.name())) {
    *existing = option;
    return existing;
  }
  options_.push_back(std::make_unique<OT_Option>(option));
  return options_.back().get();
}

OT_Option* OT_Option_Table::find(const OT_String& name) const {
  for (const auto& option : options_)
    if (option->name() == name) return option.get();
  return nullptr;
}

OT_Renderer_Options::OT_Renderer_Options() : palette_(OB_Default_Palette()) {}
