#include "tools/tarn-render/line_type_sets.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

namespace tarn_render {

namespace {

// Bounds that keep a walk short: a round of the pattern shorter than a pixel,
// or a phase of more rounds than this, would cut a line into millions of
// pieces.
constexpr double kShortestRound = 1.0;
constexpr double kMostPhaseRounds = 1e6;
constexpr std::size_t kMostLengths = 64;

// The values, one keyword or number after another.
class Reader {
 public:
  explicit Reader(const Arguments& v) : v_(v) {}

  bool done() const { return i_ >= v_.size(); }
  bool at(const char* keyword) const { return !done() && !v_.token(i_).quoted && v_.text(i_) == keyword; }
  bool at_number() const {
    double value;
    return !done() && parse_real(v_.text(i_), value);
  }
  const std::string& word() const { return v_.text(i_); }
  void skip() { ++i_; }

  // The number at hand.
  double number(const std::string& name) { return v_.real(i_++, name); }
  // The value after the keyword at hand.
  double real(const std::string& name) {
    need_value(name);
    return v_.real(i_++, name);
  }
  std::int64_t integer(const std::string& name, std::int64_t low, std::int64_t high) {
    need_value(name);
    return v_.integer(i_++, name, low, high);
  }
  const std::string& text(const std::string& name) {
    need_value(name);
    return v_.text(i_++);
  }

  [[noreturn]] void fail(const std::string& message) const { v_.fail(message); }

 private:
  void need_value(const std::string& name) {
    if (++i_ >= v_.size()) fail(name + ": expected a value after it");
  }

  const Arguments& v_;
  std::size_t i_ = 0;
};

// "1,3,4": ascending slot numbers.
std::vector<std::uint32_t> parse_skips(Reader& in) {
  const std::string list = in.text("skips");
  std::vector<std::uint32_t> skips;
  std::size_t from = 0;
  for (;;) {
    const std::size_t comma = list.find(',', from);
    const std::string item = list.substr(from, comma == std::string::npos ? std::string::npos : comma - from);
    std::int64_t value = 0;
    if (!parse_integer(item, value) || value < 0 || value > std::numeric_limits<std::int32_t>::max())
      in.fail("skips: expected slot numbers 0 or more separated by commas, got '" + list + "'");
    if (!skips.empty() && std::uint32_t(value) <= skips.back())
      in.fail("skips: slot numbers must ascend, got '" + list + "'");
    skips.push_back(std::uint32_t(value));
    if (comma == std::string::npos) return skips;
    from = comma + 1;
  }
}

// One `type ...` entry, the word `type` already read.
OT_Line_Type parse_type(Reader& in, Script_Line_Type_Set& owner, double scale, const std::string& name) {
  if (in.at("none")) {
    in.skip();
    return OT_Line_Type::None;
  }
  auto definition = std::make_unique<Script_Line_Type_Set::Definition>();
  while (in.at_number()) {
    if (definition->lengths.size() == kMostLengths)
      in.fail(name + ": at most " + std::to_string(kMostLengths) + " lengths");
    definition->lengths.push_back(in.number(name + " length"));
  }
  if (definition->lengths.empty()) in.fail(name + ": expected `none` or at least one LENGTH");
  OT_Line_Type type(new OT_Line_Type_Data);
  if (!type) throw Tool_Failure("out of memory for a line type");
  OT_Line_Type_Data& data = *type;
  while (!in.done() && !in.at("type")) {
    const std::string keyword = in.word();
    if (keyword == "length_scale")
      data.length_scale = in.real(name + " length_scale");
    else if (keyword == "start")
      data.start_length = in.real(name + " start");
    else if (keyword == "end_length")
      data.end_length = in.real(name + " end_length");
    else if (keyword == "phase")
      data.phase = in.real(name + " phase");
    else if (keyword == "end_style")
      definition->record.end_style = std::int32_t(in.integer(name + " end_style", 0, 255));
    else
      in.fail(name + ": unknown '" + keyword +
              "'; a type takes LENGTH..., length_scale, start, end_length, phase, end_style");
  }
  double round = 0.0;
  for (double length : definition->lengths) round += std::fabs(length);
  round *= std::fabs(data.length_scale * scale);
  if (!(round >= kShortestRound))
    in.fail(name + ": one round of the pattern is " + std::to_string(round) +
            " long after scaling; it must be at least 1");
  if (!(std::fabs(data.phase * scale) <= round * kMostPhaseRounds))
    in.fail(name + ": phase is more than a million rounds of the pattern");
  definition->record.lengths = definition->lengths.data();
  definition->record.length_count = std::int64_t(definition->lengths.size());
  data.definition = &definition->record;
  owner.definitions.push_back(std::move(definition));
  return type;
}

}  // namespace

std::unique_ptr<Script_Line_Type_Set> parse_line_type_set(const Arguments& values) {
  auto owner = std::make_unique<Script_Line_Type_Set>();
  OT_Line_Type_Set& set = owner->set;
  Reader in(values);
  bool end_given = false;
  while (!in.done() && !in.at("type")) {
    const std::string keyword = in.word();
    if (keyword == "per_segment") {
      set.per_segment = 1;
      in.skip();
    } else if (keyword == "scale") {
      set.scale = in.real("scale");
    } else if (keyword == "first") {
      set.first_type = std::int32_t(in.integer("first", 0, 1 << 16));
    } else if (keyword == "end") {
      set.end_type = std::int32_t(in.integer("end", 0, 1 << 16));
      end_given = true;
    } else if (keyword == "skips") {
      owner->skips = parse_skips(in);
    } else {
      in.fail("unknown '" + keyword +
              "'; expected `none`, or per_segment, scale, first, end, skips, then `type LENGTH...`");
    }
  }
  while (!in.done()) {
    in.skip();  // `type`
    set.line_types.push_back(
        parse_type(in, *owner, set.scale, "type " + std::to_string(set.line_types.size() + 1)));
  }
  if (set.line_types.empty()) in.fail("expected at least one `type LENGTH...` or `type none`");
  const auto types = std::int64_t(set.line_types.size());
  if (set.first_type >= types)
    in.fail("first: " + std::to_string(set.first_type) + " but there are only " + std::to_string(types) +
            " types");
  if (!end_given) set.end_type = std::int32_t(types - set.first_type);
  if (set.first_type + std::int64_t(set.end_type) > types)
    in.fail("end: first " + std::to_string(set.first_type) + " and end " + std::to_string(set.end_type) +
            " need " + std::to_string(set.first_type + std::int64_t(set.end_type)) + " types, there are " +
            std::to_string(types));
  if (!owner->skips.empty() && owner->skips.back() >= std::uint32_t(set.end_type))
    in.fail("skips: slot " + std::to_string(owner->skips.back()) + " is not below end " +
            std::to_string(set.end_type));
  set.skip_count = std::uint32_t(owner->skips.size());
  set.skips = owner->skips.empty() ? nullptr : owner->skips.data();
  return owner;
}

double most_line_type_pieces(const OT_Line_Type_Set& set, double length, std::size_t segments) {
  double per_length = 0.0;
  for (const OT_Line_Type& type : set.line_types) {
    if (type == OT_Line_Type::None) continue;
    const OT_Line_Type_Definition& definition = *type->definition;
    double round = 0.0;
    for (std::int64_t i = 0; i < definition.length_count; ++i) round += std::fabs(definition.lengths[i]);
    round *= std::fabs(type->length_scale * set.scale);
    per_length = std::max(per_length, double(definition.length_count) / round);
  }
  return length * per_length + 3.0 * double(segments);
}

}  // namespace tarn_render
