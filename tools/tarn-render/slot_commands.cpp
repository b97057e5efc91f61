// Each slot of the table becomes a command of the same name. The slot's
// argument types pick the parser (an overload of call_slot below); the name
// adds what the types don't say: whether the points are trusted to lie inside
// hard_clip (DC, DCI), how many colours a colorized list holds, and whether
// polygon colours may be left out.
#include "tools/tarn-render/slot_commands.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iostream>
#include <optional>
#include <type_traits>
#include <utility>

#include "tools/tarn-render/line_type_sets.h"

namespace tarn_render {

namespace {

enum class Form { Float_2D, DC, Int_2DI, DCI, Tiled, Other };

Form form_of(std::string_view name) {
  if (name.starts_with("draw_2di_")) return Form::Int_2DI;
  if (name.starts_with("draw_2d_")) return Form::Float_2D;
  if (name.starts_with("draw_dci_")) return Form::DCI;
  if (name.starts_with("draw_dc_")) return Form::DC;
  if (name.starts_with("draw_tiled_")) return Form::Tiled;
  return Form::Other;
}

bool contains(std::string_view name, std::string_view part) {
  return name.find(part) != std::string_view::npos;
}

struct Call {
  const Slot_Context& context;
  std::string_view name;
  const Arguments& args;
  Form form;

  const OT_Rendition& rendition() const { return *context.rendition; }
  const OT_Int_Rectangle& hard_clip() const { return context.rendition->get()->device->hard_clip; }
};

std::string rectangle_text(const OT_Int_Rectangle& r) {
  return std::to_string(r.left) + " " + std::to_string(r.right) + " " + std::to_string(r.bottom) + " " +
         std::to_string(r.top);
}

// What every call needs before it can go through a slot: a window, a function
// in the slot, and a hard clip that keeps the renderer inside its images.
template <class... A>
void prepare(const Call& call, const OT_Action<A...>& slot) {
  if (!call.context.has_window)
    call.args.fail("no window yet: the script must set one with `window W H` first");
  if (!slot.function) call.args.fail("the slot is empty in this renderer");
  const OT_Int_Rectangle& clip = call.hard_clip();
  const OT_Int_Rectangle& window = call.context.window;
  if (clip.left > clip.right || clip.bottom > clip.top || clip.left < window.left ||
      clip.right > window.right || clip.bottom < window.bottom || clip.top > window.top)
    call.args.fail("device.hard_clip " + rectangle_text(clip) + " must be a rectangle inside the window " +
                   rectangle_text(window));
}

// The words that end a list of numbers. Each may be given once.
constexpr std::string_view all_keywords[] = {"colors", "single", "pixels", "depths", "w", "normals"};

// The tokens of a call split at its keywords: the leading numbers, and the
// numbers after each keyword up to the next keyword.
class Keyword_Split {
 public:
  Keyword_Split(const Arguments& args, std::initializer_list<std::string_view> allowed) : args_(args) {
    for (std::size_t i = 0; i < args.size(); ++i) {
      if (args.token(i).quoted) continue;
      const std::string& word = args.text(i);
      if (std::find(std::begin(all_keywords), std::end(all_keywords), word) == std::end(all_keywords))
        continue;
      if (std::find(allowed.begin(), allowed.end(), word) == allowed.end())
        args.fail("`" + word + "` is not an argument of this slot");
      if (position(word)) args.fail("`" + word + "` is given twice");
      found_.emplace_back(i, word);
    }
  }

  Arguments lead() const { return args_.slice(0, end_of(0), args_.label()); }
  bool has(std::string_view keyword) const { return position(keyword).has_value(); }
  Arguments part(std::string_view keyword) const {
    const std::size_t start = *position(keyword) + 1;
    return args_.slice(start, end_of(start) - start, args_.label() + " " + std::string(keyword));
  }

 private:
  std::optional<std::size_t> position(std::string_view keyword) const {
    for (const auto& [index, word] : found_)
      if (word == keyword) return index;
    return std::nullopt;
  }
  // The first keyword at or after `start`, or the end.
  std::size_t end_of(std::size_t start) const {
    std::size_t end = args_.size();
    for (const auto& [index, word] : found_)
      if (index >= start) end = std::min(end, index);
    return end;
  }

  const Arguments& args_;
  std::vector<std::pair<std::size_t, std::string>> found_;
};

template <class P>
P parse_point(const Arguments& args, std::size_t first, std::size_t number) {
  auto name = [&](const char* axis) { return "point " + std::to_string(number) + " " + axis; };
  if constexpr (std::is_same_v<P, OT_DCI_Point>) {
    return {args.int32(first, name("x")), args.int32(first + 1, name("y")), args.int32(first + 2, name("z"))};
  } else if constexpr (std::is_same_v<P, OT_Point>) {
    return {args.real32(first, name("x")), args.real32(first + 1, name("y")),
            args.real32(first + 2, name("z"))};
  } else {
    static_assert(std::is_same_v<P, OT_Point_D>);
    return {args.real(first, name("x")), args.real(first + 1, name("y")), args.real(first + 2, name("z"))};
  }
}

std::string point_text(const OT_DCI_Point& p) {
  return "(" + std::to_string(p.x) + ", " + std::to_string(p.y) + ")";
}
std::string point_text(const OT_Point& p) {
  return "(" + std::to_string(p.x) + ", " + std::to_string(p.y) + ")";
}

// DC and DCI actions trust their points to lie inside hard_clip and don't
// test them, so the tool does. A float point must round to a pixel inside
// whichever way a half rounds.
bool inside(const OT_Int_Rectangle& r, const OT_DCI_Point& p) {
  return p.x >= r.left && p.x <= r.right && p.y >= r.bottom && p.y <= r.top;
}
bool inside(const OT_Int_Rectangle& r, const OT_Point& p) {
  return p.x > r.left - 0.5f && p.x < r.right + 0.5f && p.y > r.bottom - 0.5f && p.y < r.top + 0.5f;
}

template <class P>
void check_trusted(const Call& call, const std::vector<P>& points) {
  if constexpr (!std::is_same_v<P, OT_Point_D>) {
    if (call.form != Form::DC && call.form != Form::DCI) return;
    for (std::size_t i = 0; i < points.size(); ++i)
      if (!inside(call.hard_clip(), points[i]))
        call.args.fail("point " + std::to_string(i + 1) + " " + point_text(points[i]) +
                       " lies outside hard_clip " + rectangle_text(call.hard_clip()) +
                       "; DC and DCI slots take only points inside it (the 2D and 2DI forms clip)");
  }
}

// A line type cuts a polyline into pieces, each one call of the action: the
// tool refuses a polyline that could make more than a million of them.
template <class P>
void check_line_type_pieces(const Call& call, const std::vector<P>& points) {
  const OT_Line_Type_Set* set = call.rendition()->line->line_type_set;
  if (set == &OT_Line_Type_Set::None || !contains(call.name, "polyline")) return;
  double length = 0.0;
  for (std::size_t i = 0; i + 1 < points.size(); ++i)
    length += std::hypot(double(points[i + 1].x) - double(points[i].x),
                         double(points[i + 1].y) - double(points[i].y),
                         double(points[i + 1].z) - double(points[i].z));
  const double pieces = most_line_type_pieces(*set, length, points.size() - 1);
  if (!(pieces <= 1e6))
    call.args.fail(
        "the line type set could cut this polyline into more than a million pieces, the most the tool "
        "allows");
}

template <class P>
std::vector<P> parse_points(const Call& call, const Arguments& args, std::size_t minimum) {
  if (args.size() % 3 != 0)
    args.fail("expected points as x y z triples, got " + std::to_string(args.size()) + " numbers");
  if (args.size() / 3 < minimum)
    args.fail("expected at least " + std::to_string(minimum) + (minimum == 1 ? " point" : " points") +
              " (x y z each), got " + std::to_string(args.size() / 3));
  std::vector<P> points;
  for (std::size_t i = 0; i < args.size(); i += 3) points.push_back(parse_point<P>(args, i, i / 3 + 1));
  check_trusted(call, points);
  return points;
}

std::size_t minimum_points(std::string_view name) {
  if (contains(name, "polytriangle") || contains(name, "polygon")) return 3;
  if (contains(name, "polyline")) return 2;
  return 1;
}

std::vector<OT_RGB32> parse_colors(const Arguments& args) {
  if (args.size() % 4 != 0)
    args.fail("expected colours as R G B A quadruples, got " + std::to_string(args.size()) + " numbers");
  std::vector<OT_RGB32> colors;
  for (std::size_t i = 0; i < args.size(); i += 4) {
    const std::string n = "colour " + std::to_string(i / 4 + 1) + " ";
    colors.push_back(
        OT_RGB32::rgba(int(args.integer(i, n + "R", 0, 255)), int(args.integer(i + 1, n + "G", 0, 255)),
                       int(args.integer(i + 2, n + "B", 0, 255)), int(args.integer(i + 3, n + "A", 0, 255))));
  }
  return colors;
}

void expect_colors(const Arguments& args, const std::vector<OT_RGB32>& colors, std::size_t count,
                   std::string_view rule) {
  if (colors.size() != count)
    args.fail("expected " + std::to_string(count) + (count == 1 ? " colour" : " colours") + " (" +
              std::string(rule) + "), got " + std::to_string(colors.size()));
}

// ---- One overload per argument kind -----------------------------------------

// polytriangle, polyline, polymarker: SLOT x y z ...
template <class P>
void call_slot(const Call& call, const OT_Action<int, const P*>& slot) {
  prepare(call, slot);
  const Keyword_Split parts(call.args, {});
  const std::vector<P> points = parse_points<P>(call, parts.lead(), minimum_points(call.name));
  check_line_type_pieces(call, points);
  slot(call.rendition(), int(points.size()), points.data());
}

// colorized polytriangle and polyline: SLOT x y z ... colors R G B A ... [single]
template <class P>
void call_slot(const Call& call, const OT_Action<int, const P*, const OT_RGB32*, bool>& slot) {
  prepare(call, slot);
  const Keyword_Split parts(call.args, {"colors", "single"});
  const std::vector<P> points = parse_points<P>(call, parts.lead(), minimum_points(call.name));
  const bool single = parts.has("single");
  if (single && parts.part("single").size() != 0) parts.part("single").fail("takes no values");
  if (!parts.has("colors")) call.args.fail("expected `colors` and its R G B A quadruples");
  const Arguments color_args = parts.part("colors");
  const std::vector<OT_RGB32> colors = parse_colors(color_args);
  const bool lines = contains(call.name, "polyline");
  if (single)
    expect_colors(color_args, colors, 1, "`single`: one for all");
  else
    expect_colors(color_args, colors, points.size() - (lines ? 1 : 2),
                  lines ? "one a segment" : "one a triangle");
  slot(call.rendition(), int(points.size()), points.data(), colors.data(), single);
}

// Gouraud families and polygons: SLOT x y z ... colors R G B A ... (one a
// point; a polygon may leave the colours out and takes the rendition's).
template <class P>
void call_slot(const Call& call, const OT_Action<int, const P*, const OT_RGB32*>& slot) {
  prepare(call, slot);
  const Keyword_Split parts(call.args, {"colors"});
  const std::vector<P> points = parse_points<P>(call, parts.lead(), minimum_points(call.name));
  const bool optional = contains(call.name, "polygon");
  std::vector<OT_RGB32> colors;
  if (parts.has("colors")) {
    colors = parse_colors(parts.part("colors"));
    expect_colors(parts.part("colors"), colors, points.size(), "one a point");
  } else if (!optional) {
    call.args.fail("expected `colors` and one R G B A quadruple a point");
  }
  slot(call.rendition(), int(points.size()), points.data(), colors.empty() ? nullptr : colors.data());
}

// dot: SLOT x y z [colors R G B A]
template <class P>
void call_slot(const Call& call, const OT_Action<const P*, const OT_RGB32*>& slot) {
  prepare(call, slot);
  const Keyword_Split parts(call.args, {"colors"});
  const Arguments lead = parts.lead();
  lead.expect_count(3, "one point x y z");
  const std::vector<P> point = parse_points<P>(call, lead, 1);
  std::vector<OT_RGB32> color;
  if (parts.has("colors")) {
    color = parse_colors(parts.part("colors"));
    expect_colors(parts.part("colors"), color, 1, "the dot's own");
  }
  slot(call.rendition(), point.data(), color.empty() ? nullptr : color.data());
}

// Whether a slot holds the given routine; false for a slot of another type.
template <class F, class G>
bool is_function(F in_slot, G routine) {
  if constexpr (std::is_same_v<F, G>)
    return in_slot == routine;
  else
    return false;
}

// The rectangle of an image or a depth write: FIRST (left, top) and LAST
// (right, bottom) as x y z each.
template <class P>
struct Block {
  P first, last;
  std::int64_t width, height;
};

template <class P>
Block<P> parse_block(const Call& call, const Arguments& lead, bool uncut = false) {
  lead.expect_count(6, "FIRST (left, top) and LAST (right, bottom) as x y z each, 6 numbers");
  Block<P> block{parse_point<P>(lead, 0, 1), parse_point<P>(lead, 3, 2), 0, 0};
  // The host rounds real corners; whole ones keep the block's size plain, so
  // that the values given are the values read.
  if constexpr (!std::is_same_v<P, OT_DCI_Point>) {
    for (const double c :
         {double(block.first.x), double(block.first.y), double(block.last.x), double(block.last.y)})
      if (c != std::floor(c) || c < -2147483648.0 || c > 2147483647.0)
        lead.fail("the corners' x and y must be whole numbers of 32 bits in the 2D, DC and tiled forms");
  }
  const std::int64_t left = std::int64_t(block.first.x), top = std::int64_t(block.first.y);
  const std::int64_t right = std::int64_t(block.last.x), bottom = std::int64_t(block.last.y);
  block.width = right - left + 1;
  block.height = top - bottom + 1;
  if (block.width < 1 || block.height < 1)
    lead.fail(
        "FIRST must be the left top corner and LAST the right bottom one (first.x <= last.x, "
        "first.y >= last.y)");
  const OT_Int_Rectangle& window = call.context.window;
  if (call.form == Form::DCI || call.form == Form::Other) {
    // Only the right side is cut by the renderer; the other three must hold.
    if (left < window.left || top > window.top || bottom < window.bottom)
      lead.fail("the left, top and bottom of the block must lie inside the window " + rectangle_text(window));
    // Reads, and the host's DCI image (an image of the other colour system,
    // which goes out pixel by pixel), cut nothing.
    if (uncut && right > window.right)
      lead.fail("the block must lie inside the window " + rectangle_text(window) +
                ": nothing cuts its right side here");
  } else if (call.form == Form::DC) {
    // The host's DC image goes out pixel by pixel, uncut.
    const OT_Int_Rectangle& clip = call.hard_clip();
    if (left < clip.left || right > clip.right || bottom < clip.bottom || top > clip.top)
      lead.fail("the block must lie inside hard_clip " + rectangle_text(clip) +
                " in the DC form (the 2D and 2DI forms clip)");
  }
  return block;
}

template <class Value, class P>
std::vector<Value> parse_block_values(const Block<P>& block, const Arguments& values, std::int64_t per_value,
                                      std::int64_t high, std::string_view what) {
  if (std::int64_t(values.size()) != block.width * block.height * per_value)
    values.fail("expected " + std::to_string(block.width * block.height) + " " + std::string(what) + " (" +
                std::to_string(block.width) + " x " + std::to_string(block.height) + "), got " +
                std::to_string(values.size() / per_value) + (values.size() % per_value ? " and a part" : ""));
  std::vector<Value> result;
  for (std::size_t i = 0; i < values.size(); ++i)
    result.push_back(
        Value(values.integer(i, std::string(what) + " value " + std::to_string(i + 1), 0, high)));
  return result;
}

// index-8 image: SLOT FIRST LAST pixels I ...; write_depth_rectangle: SLOT
// FIRST LAST depths D ... . Rows top first, packed without padding.
template <class P>
void call_slot(const Call& call, const OT_Action<const P*, const P*, int, const byte*>& slot) {
  prepare(call, slot);
  const bool depth = call.name == "write_depth_rectangle";
  const std::string_view keyword = depth ? "depths" : "pixels";
  const Keyword_Split parts(call.args, {keyword});
  const Block<P> block = parse_block<P>(
      call, parts.lead(), !depth && is_function(slot.function, &OB_Standard_Draw_DCI_Index8_Image));
  if (!parts.has(keyword)) call.args.fail("expected `" + std::string(keyword) + "` and the block's values");
  if (depth) {
    const OT_Renderer_Data* renderer = call.context.renderer;
    if (renderer->current_renderer_options()->buffer_depth() < 1 || slot.object != renderer)
      call.args.fail("the renderer has no depth buffer in this mode");
    const std::vector<std::uint16_t> depths =
        parse_block_values<std::uint16_t>(block, parts.part(keyword), 1, 0xFFFF, "depths");
    slot(call.rendition(), &block.first, &block.last, int(block.width * 2),
         reinterpret_cast<const byte*>(depths.data()));
  } else {
    const std::vector<byte> pixels = parse_block_values<byte>(block, parts.part(keyword), 1, 255, "pixels");
    slot(call.rendition(), &block.first, &block.last, int(block.width), pixels.data());
  }
}

// RGB32 image: SLOT FIRST LAST pixels R G B A ...
template <class P>
void call_slot(const Call& call,
               const OT_Action<const P*, const P*, int, const OT_RGB32*, int, const OT_Packing*>& slot) {
  prepare(call, slot);
  const Keyword_Split parts(call.args, {"pixels"});
  const Block<P> block =
      parse_block<P>(call, parts.lead(), is_function(slot.function, &OB_Standard_Draw_DCI_RGB32_Image));
  if (!parts.has("pixels")) call.args.fail("expected `pixels` and the block's R G B A quadruples");
  const std::vector<byte> channels = parse_block_values<byte>(block, parts.part("pixels"), 4, 255, "pixels");
  std::vector<OT_RGB32> pixels;
  for (std::size_t i = 0; i < channels.size(); i += 4)
    pixels.push_back(OT_RGB32::rgba(channels[i], channels[i + 1], channels[i + 2], channels[i + 3]));
  const OT_Packing packing{0};
  slot(call.rendition(), &block.first, &block.last, int(block.width * 4), pixels.data(), 0, &packing);
}

// The textured actions exist only in the depth modes, and a mode without
// depth leaves the slots as they were: after a depth mode they hold its
// actions, which read the depth buffer that is gone. Each form of the host
// hands down to another slot, so all four must hold the host's routines.
void require_textured_slots_of_mode(const Call& call) {
  const OT_Renderer_Data& r = *call.context.renderer;
  if (r.current_renderer_options()->buffer_depth() >= 1) return;
  if (r.draw_2d_textured_polytriangle.function != &OB_Standard_Draw_2D_Textured_Polytriangle ||
      r.draw_dc_textured_polytriangle.function != &OB_Standard_Draw_DC_Textured_Polytriangle ||
      r.draw_2di_textured_polytriangle.function != &OB_Standard_Draw_2DI_Textured_Polytriangle ||
      r.draw_dci_textured_polytriangle.function != &OB_Standard_Draw_DCI_Textured_Polytriangle)
    call.args.fail(
        "the textured slots still hold the actions of an earlier depth mode, which need its depth buffer; in "
        "a mode without depth, textured strips need a renderer that has not been in a depth mode (give "
        "`mode` "
        "before the first `window`)");
}

// Textured polytriangle: SLOT x y z u v ... [colors R G B A ...] [w W ...]
// [normals X Y Z ...], the lists one entry a point. One parameter a point,
// its third float 0.
template <class P>
void call_slot(const Call& call, const OT_Action<int, const P*, const OT_RGB32*, const OT_Parameter*, int,
                                                 const float*, const OT_Vector*>& slot) {
  prepare(call, slot);
  require_textured_slots_of_mode(call);
  const Keyword_Split parts(call.args, {"colors", "w", "normals"});
  const Arguments lead = parts.lead();
  if (lead.size() % 5 != 0)
    lead.fail("expected points as x y z u v quintuples, got " + std::to_string(lead.size()) + " numbers");
  if (lead.size() / 5 < 3)
    lead.fail("expected at least 3 points (x y z u v each), got " + std::to_string(lead.size() / 5));
  std::vector<P> points;
  std::vector<OT_Parameter> parameters;
  for (std::size_t i = 0; i < lead.size(); i += 5) {
    const std::string n = "point " + std::to_string(i / 5 + 1);
    points.push_back(parse_point<P>(lead, i, i / 5 + 1));
    parameters.push_back({lead.real32(i + 3, n + " u"), lead.real32(i + 4, n + " v"), 0.0f});
  }
  check_trusted(call, points);
  const std::size_t count = points.size();

  std::vector<OT_RGB32> colors;
  if (parts.has("colors")) {
    colors = parse_colors(parts.part("colors"));
    expect_colors(parts.part("colors"), colors, count, "one a point");
  }
  std::vector<float> w;
  if (parts.has("w")) {
    const Arguments values = parts.part("w");
    if (values.size() != count)
      values.fail("expected " + std::to_string(count) + " numbers (one a point), got " +
                  std::to_string(values.size()));
    for (std::size_t i = 0; i < count; ++i) w.push_back(values.real32(i, "w " + std::to_string(i + 1)));
  }
  std::vector<OT_Vector> normals;
  if (parts.has("normals")) {
    const Arguments values = parts.part("normals");
    if (values.size() != 3 * count)
      values.fail("expected " + std::to_string(count) + " normals X Y Z (one a point), got " +
                  std::to_string(values.size()) + " numbers");
    for (std::size_t i = 0; i < values.size(); i += 3) {
      const std::string n = "normal " + std::to_string(i / 3 + 1);
      normals.push_back(
          {values.real32(i, n + " X"), values.real32(i + 1, n + " Y"), values.real32(i + 2, n + " Z")});
    }
  }
  slot(call.rendition(), int(count), points.data(), colors.empty() ? nullptr : colors.data(),
       parameters.data(), 1, w.empty() ? nullptr : w.data(), normals.empty() ? nullptr : normals.data());
}

// read_color_rectangle, read_depth_rectangle: SLOT FIRST LAST [format N].
// Prints the image that comes back, rows in storage order. The read is
// given a zeroed image of the size and format it is expected to answer in,
// so that rows it leaves alone print as 0.
void call_slot(
    const Call& call,
    const OT_Action<const OT_DCI_Point*, const OT_DCI_Point*, OT_Image_Format*, OT_Shared_Image&>& slot) {
  prepare(call, slot);
  const bool depth = call.name == "read_depth_rectangle";
  const OT_Renderer_Data* renderer = call.context.renderer;
  const OT_Renderer_Options& options = *renderer->current_renderer_options();
  if (depth && (options.buffer_depth() < 1 || slot.object != renderer))
    call.args.fail("the renderer has no depth buffer in this mode");
  const std::size_t format_at = call.args.find("format");
  const Block<OT_DCI_Point> block =
      parse_block<OT_DCI_Point>(call, call.args.slice(0, format_at, std::string(call.name)), true);
  OT_Image_Format format = OT_Image_Format_Native;
  if (format_at < call.args.size()) {
    const Arguments value = call.args.from(format_at + 1, std::string(call.name) + " format");
    value.expect_count(1, "1 integer");
    format = OT_Image_Format(value.int32(0, "format"));
  }
  const OT_Image_Format answer = depth                                              ? OT_Image_Format_Depth16
                                 : options.color_system() == OT_Color_System_Direct ? OT_Image_Format_RGB32
                                                                                    : OT_Image_Format_Index8;
  OT_Shared_Image image;
  if (format == answer || format == OT_Image_Format_Native) {
    const int bytes = OT_Shared_Image_Data::pixel_bytes(answer);
    image = OT_Shared_Image(int(block.width), int(block.height), answer, int(block.width) * bytes, nullptr,
                            false);
    if (!image)
      throw Tool_Failure("out of memory for a read of " + std::to_string(block.width) + " x " +
                         std::to_string(block.height));
    for (int y = 0; y < image->height; ++y)
      std::memset(image->top_rows[y], 0, std::size_t(block.width) * bytes);
  }
  slot(call.rendition(), &block.first, &block.last, &format, image);
  std::cout << call.name;
  if (!image) {
    std::cout << " none\n";
    return;
  }
  std::cout << " format=" << int(image->format) << " width=" << image->width << " height=" << image->height
            << '\n';
  for (int y = 0; y < image->height; ++y) {
    std::cout << "row " << y << ':';
    const byte* row = image->top_rows[y];
    for (int x = 0; x < image->width; ++x) {
      if (image->format == OT_Image_Format_RGB32) {
        const byte* p = row + 4 * x;  // b, g, r, a
        std::cout << ' ' << int(p[2]) << ',' << int(p[1]) << ',' << int(p[0]) << ',' << int(p[3]);
      } else if (image->format == OT_Image_Format_Depth16) {
        std::uint16_t d;
        std::memcpy(&d, row + 2 * x, 2);
        std::cout << ' ' << d;
      } else {
        std::cout << ' ' << int(row[x]);
      }
    }
    std::cout << '\n';
  }
}

// clear_color, clear_depth.
void call_slot(const Call& call, const OT_Action<>& slot) {
  prepare(call, slot);
  call.args.expect_count(0, "no arguments");
  slot(call.rendition());
}

// Anything else: not yet.
template <class... A>
void call_slot(const Call& call, const OT_Action<A...>&) {
  throw Script_Error("slot " + std::string(call.name) + ": argument kind not scriptable yet");
}

struct Slot_Entry {
  const char* name;
  void (*run)(const Call& call);
};

#define TARN_RENDER_SLOT_ENTRY(slot_name, ...) \
  {#slot_name, [](const Call& call) { call_slot(call, call.context.renderer->slot_name); }},

const Slot_Entry slot_table[] = {OT_ACTION_SLOTS(TARN_RENDER_SLOT_ENTRY)};

#undef TARN_RENDER_SLOT_ENTRY

}  // namespace

bool run_slot_command(const Slot_Context& context, const std::string& name, const Arguments& args) {
  for (const Slot_Entry& entry : slot_table) {
    if (name != entry.name) continue;
    entry.run(Call{context, entry.name, args, form_of(entry.name)});
    return true;
  }
  return false;
}

std::vector<std::string> slot_names() {
  std::vector<std::string> names;
  for (const Slot_Entry& entry : slot_table) names.emplace_back(entry.name);
  return names;
}

}  // namespace tarn_render
