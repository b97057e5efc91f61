// Styled lines: line type sets cut into pieces (the runs handed back, and
// the pixels the actions of each mode draw from them), and the two-pass halo
// as the host's standard routine and the thin walker see it.
#include <deque>

#include "lines/line_types.h"
#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

// A line type set with the storage its pointers reach. Moves keep those
// addresses; copies would not.
struct Test_Set {
  struct Type {
    std::vector<double> lengths;
    double start = 0, end = 0, phase = 0;
    int end_style = 0;
    double length_scale = 1;
  };
  std::deque<std::pair<std::vector<double>, OT_Line_Type_Definition>> definitions;
  std::vector<std::uint32_t> skips;
  OT_Line_Type_Set set;

  Test_Set() = default;
  Test_Set(Test_Set&&) = default;
  Test_Set(const Test_Set&) = delete;

  // Each type added adds a slot.
  Test_Set&& add(const Type& t) && {
    auto& [lengths, definition] = definitions.emplace_back(t.lengths, OT_Line_Type_Definition{});
    definition = {lengths.data(), std::int64_t(lengths.size()), t.end_style};
    OT_Line_Type type(new OT_Line_Type_Data);
    type->definition = &definition;
    std::tie(type->length_scale, type->start_length, type->end_length, type->phase) =
        std::tuple(t.length_scale, t.start, t.end, t.phase);
    return std::move(*this).add_type(type);
  }
  Test_Set&& add_none() && { return std::move(*this).add_type(OT_Line_Type::None); }
  Test_Set&& add_type(const OT_Line_Type& type) && {
    set.line_types.push_back(type);
    set.end_type = std::int32_t(set.line_types.size());
    return std::move(*this);
  }
  Test_Set&& slots(int per_segment, int first, int end, std::vector<std::uint32_t> skipped = {}) && {
    skips = std::move(skipped);
    set.per_segment = per_segment;
    set.first_type = first;
    set.end_type = end;
    set.skip_count = std::uint32_t(skips.size());
    set.skips = skips.data();
    return std::move(*this);
  }
  Test_Set&& scale(double s) && {
    set.scale = s;
    return std::move(*this);
  }
};

// Runs as text: "x,y,z x,y,z | x,y,z ...".
std::string describe(const std::vector<Points>& runs) {
  std::string out;
  for (const Points& run : runs) {
    out += out.empty() ? "" : " |";
    for (const OT_DCI_Point& p : run)
      out += " " + std::to_string(p.x) + "," + std::to_string(p.y) + "," + std::to_string(p.z);
  }
  return out;
}

// The runs that decompose_polyline hands back; each call's rendition has no
// line type, and the caller's rendition keeps its set.
std::string runs_of(const Test_Set& s, const Points& points) {
  OT_Rendition rendition = OT_Rendition::make_default(64, 48, OT_Palette());
  rendition.writable_line()->line_type_set = &s.set;
  std::vector<Points> runs;
  decompose_polyline(rendition, int(points.size()), points.data(),
                     [&](const OT_Rendition& r, int n, const OT_DCI_Point* p) {
                       EXPECT_EQ(r->line->line_type_set, &OT_Line_Type_Set::None);
                       runs.emplace_back(p, p + n);
                     });
  EXPECT_EQ(rendition->line->line_type_set, &s.set);
  return describe(runs);
}

const Test_Set::Type kDash{{10, -5}};
const Points kStraight{{0, 0, 0}, {30, 0, 0}};
const Points kCorner{{0, 0, 0}, {20, 0, 0}, {20, 10, 0}};

TEST(Line_Types, PiecesJoinIntoRunsAsThePatternSays) {
  const Test_Set::Type kShort{{2, -2}};
  const struct {
    const char* name;
    Test_Set set;
    Points points;
    const char* expected;
  } cases[] = {
      {"dash", Test_Set().add(kDash), kStraight, " 0,0,0 10,0,0 | 15,0,0 25,0,0"},
      // The pattern runs on round the corner: 5 of the dash is left for it.
      {"whole path", Test_Set().add(kDash), kCorner, " 0,0,0 10,0,0 | 15,0,0 20,0,0 20,5,0"},
      // Each segment starts afresh: a whole dash after the corner.
      {"per segment", Test_Set().add(kDash).add(kDash).slots(1, 0, 2), kCorner,
       " 0,0,0 10,0,0 | 15,0,0 20,0,0 20,10,0"},
      // Slot 1 is skipped, or slot 0 left out: the corner takes the short dash.
      {"skip", Test_Set().add(kDash).add_none().add(kShort).slots(1, 0, 3, {1}), kCorner,
       " 0,0,0 10,0,0 | 15,0,0 20,0,0 20,2,0 | 20,4,0 20,6,0 | 20,8,0 20,10,0"},
      {"first", Test_Set().add_none().add(kDash).add(kShort).slots(1, 1, 2), kCorner,
       " 0,0,0 10,0,0 | 15,0,0 20,0,0 20,2,0 | 20,4,0 20,6,0 | 20,8,0 20,10,0"},
      // Slots that don't fit the segments draw nothing; two points always go
      // slot by slot.
      {"too many slots", Test_Set().add(kDash).add_none().add(kShort).slots(1, 0, 3), kCorner, ""},
      {"too few slots", Test_Set().add(kDash).slots(1, 0, 1), kCorner, ""},
      {"two points, two slots", Test_Set().add(kDash).add(kDash).slots(0, 0, 2), kStraight, ""},
      {"two points, one slot", Test_Set().add(kDash).add_none().slots(0, 0, 1), kStraight,
       " 0,0,0 10,0,0 | 15,0,0 25,0,0"},
      // Solid ends of the whole path, the end after the corner.
      {"whole path, solid ends", Test_Set().add({{10, -5}, 3, 4}), kCorner,
       " 0,0,0 3,0,0 13,0,0 | 18,0,0 20,0,0 20,6,0 20,10,0"},
      {"phase 12", Test_Set().add({{10, -5}, 0, 0, 12}), kStraight, " 3,0,0 13,0,0 | 18,0,0 28,0,0"},
      {"set scale", Test_Set().add(kDash).scale(2), {{0, 0, 0}, {40, 0, 0}}, " 0,0,0 20,0,0 | 30,0,0 40,0,0"},
      {"length scale",
       Test_Set().add({{10, -5}, 0, 0, 0, 0, 0.5}),
       {{0, 0, 0}, {12, 0, 0}},
       " 0,0,0 5,0,0 | 7,0,0 12,0,0"},
      {"solid ends", Test_Set().add({{10, -5}, 5, 5}), kStraight,
       " 0,0,0 5,0,0 15,0,0 | 20,0,0 25,0,0 30,0,0"},
      // End style 2: each solid end a dot, at the first and the last point.
      {"dotted ends", Test_Set().add({{10, -5}, 5, 5, 0, 2}), kStraight,
       " 0,0,0 0,0,0 | 5,0,0 15,0,0 | 20,0,0 25,0,0 | 30,0,0 30,0,0"},
      // A zero entry is a dot where it stands; with end style 2 the dots
      // next to the solid ends go.
      {"dots",
       Test_Set().add({{0, -4}}),
       {{0, 0, 0}, {10, 0, 0}},
       " 0,0,0 0,0,0 | 4,0,0 4,0,0 | 8,0,0 8,0,0"},
      {"dotted ends without solid parts",
       Test_Set().add({{0, -4}, 0, 0, 0, 2}),
       {{0, 0, 0}, {10, 0, 0}},
       " 0,0,0 0,0,0 | 4,0,0 4,0,0 | 8,0,0 8,0,0"},
      {"dots by dotted ends",
       Test_Set().add({{0, -3}, 2, 2, 0, 2}),
       {{0, 0, 0}, {10, 0, 0}},
       " 0,0,0 0,0,0 | 5,0,0 5,0,0 | 10,0,0 10,0,0"},
      // A dot followed by a line from it: the dot's points become the line.
      {"dot then dash", Test_Set().add({{0, 10, -5}}), kStraight, " 0,0,0 10,0,0 | 15,0,0 25,0,0"},
      // Lengths count from Epsilon, 1e-12 by way of single precision: a
      // solid start of 1e-12 is a piece of one point, of Epsilon nothing.
      {"start 1e-12",
       Test_Set().add({{-5, 3}, 1e-12}),
       {{0, 0, 0}, {10, 0, 0}},
       " 0,0,0 0,0,0 | 5,0,0 8,0,0"},
      {"start Epsilon",
       Test_Set().add({{-5, 3}, 9.999999960041972e-13}),
       {{0, 0, 0}, {10, 0, 0}},
       " 5,0,0 8,0,0"},
      // Truncation toward zero: -3.98, -2.78, 1.19.
      {"truncation", Test_Set().add({{5, -20}}), {{0, 0, 0}, {-10, -7, 3}}, " 0,0,0 -3,-2,1"},
      {"None",
       Test_Set().add_none(),
       {{0, 0, 0}, {5, 0, 1}, {5, 5, 2}, {9, 9, 3}},
       " 0,0,0 5,0,1 5,5,2 9,9,3"},
  };
  for (const auto& c : cases) EXPECT_EQ(runs_of(c.set, c.points), c.expected) << c.name;
}

TEST(Line_Types, TheSetsTypesAreScaledOnACopy) {
  const Test_Set s = Test_Set().add(kDash).scale(2);
  runs_of(s, kStraight);
  const OT_Line_Type& type = s.set.line_types[0];
  EXPECT_EQ(std::tuple(type->count.load(), type->length_scale), std::tuple(1u, 1.0));
}

// The pieces through each mode's action: only the RGB32 alpha and mapped
// modes take line types apart. With depth off the mapped depth mode is the
// mapped mode, and so is the RGB32 depth-alpha mode's 2DI action, but not its
// DCI action, which hands over to a walker. The clipped 2DI line draws what
// the whole line draws inside the clip.
class Styled_Lines : public ::testing::TestWithParam<Mode_Case> {};

TEST_P(Styled_Lines, DashedInTheModesThatTakeLineTypesApart) {
  const Mode_Case& mode = GetParam();
  const Test_Set s = Test_Set().add(kDash);
  const Points line{{2, 5, 7}, {32, 5, 7}, {32, 30, 7}};
  const OT_Int_Rectangle clip{5, 20, 0, 47};
  const bool flat_mode = !mode.depth() && (mode.mapped() || mode.alpha);
  for (int depth_enabled = 0; depth_enabled < 2; ++depth_enabled)
    for (int form = 0; form < 3; ++form) {
      SCOPED_TRACE(std::string(form == 0   ? "dci"
                               : form == 1 ? "2di"
                                           : "clipped") +
                   " depth " + std::to_string(depth_enabled));
      Renderer_Harness h(mode), whole(mode);
      for (Renderer_Harness* each : {&h, &whole}) {
        each->rendition().writable_line()->line_type_set = &s.set;
        each->rendition().writable_device()->depth_enabled = byte(depth_enabled);
      }
      if (form == 2) h.set_hard_clip(clip);
      form == 0 ? h.line(line) : h.line_2di(line);
      whole.line_2di(line);
      const bool styled = flat_mode || (!depth_enabled && (mode.mapped() || (mode.alpha && form > 0)));
      const int right = form == 2 ? 20 : 32;
      const Pixels row =
          styled ? rows_of({{5, {2, 12}}, {5, {17, std::min(27, right)}}}) : rows_of({{5, {2, right}}});
      Pixels expected;
      for (const auto& [x, y] : row)
        if (form < 2 || x >= clip.left) expected.insert({x, y});
      if (form < 2)  // up the right side: (32, 5) to (32, 15) and (32, 20) to (32, 30), or all
        for (int y = 5; y <= 30; ++y)
          if (!styled || y <= 15 || y >= 20) expected.insert({32, y});
      EXPECT_EQ(h.drawn(), expected);
      for (const auto& [x, y] : expected) ASSERT_EQ(h.pixel(x, y), h.drawn_value());
      if (form == 2) {
        EXPECT_TRUE(matches_inside_clip(h, whole, clip));
      }
    }
}

// A dashed 2DI line from a billion pixels away draws what the same pattern
// draws from just outside the window: 1000000005 and 15 are whole rounds of
// (10, -5), so both put dashes at 0..10, 15..25, ... The far one's rounds
// beyond the clip's left edge are walked in one step and leave no pieces.
TEST_P(Styled_Lines, DashesFromFarAwayLandWhereNearOnesDo) {
  const Test_Set s = Test_Set().add(kDash);
  Renderer_Harness far(GetParam()), near(GetParam());
  for (Renderer_Harness* each : {&far, &near}) each->rendition().writable_line()->line_type_set = &s.set;
  far.line_2di({{-1000000005, 5, 7}, {63, 5, 7}, {63, 60, 7}});
  near.line_2di({{-15, 5, 7}, {63, 5, 7}, {63, 60, 7}});
  EXPECT_EQ(far.snapshot(), near.snapshot());
  EXPECT_GT(near.drawn().size(), 40u);
}

INSTANTIATE_TEST_SUITE_P(AllModes, Styled_Lines, ::testing::ValuesIn(kAllModes), mode_name);

// ---- The halo ---------------------------------------------------------------

// The host's dots, each with a counted copy of its rendition (the action's
// later changes go to clones) and whether the line's first pixel was drawn.
struct Dot_Recorder {
  static inline std::vector<std::pair<OT_Rendition, bool>> seen;
  static inline const Renderer_Harness* harness = nullptr;
  static inline OT_DCI_Point first{0, 0, 0};

  static void record(OT_Renderer_Data*, const OT_Rendition& r, const OT_DCI_Point*, const OT_RGB32*) {
    seen.emplace_back(r, harness->pixel(first.x, first.y) != harness->clear_value());
  }
  // A wide line comes back as the host's triangles, one strip a segment.
  static void strip(OT_Renderer_Data* r, const OT_Rendition& rendition, int, const OT_DCI_Point* p) {
    record(r, rendition, p, nullptr);
  }
  static void colorized(OT_Renderer_Data* r, const OT_Rendition& rendition, int, const OT_DCI_Point* p,
                        const OT_RGB32* c, bool) {
    record(r, rendition, p, c);
  }
  static void install(Renderer_Harness& h, OT_DCI_Point line_start) {
    seen.clear();
    harness = &h;
    first = line_start;
    h.renderer().draw_dci_dot.function = record;
    h.renderer().draw_2di_polytriangle.function = strip;
    h.renderer().draw_2di_colorized_polytriangle.function = colorized;
  }
  // Consecutive dots of one weight and colour, and how many dots each.
  static std::vector<std::tuple<std::int32_t, std::uint32_t, int>> passes() {
    std::vector<std::tuple<std::int32_t, std::uint32_t, int>> out;
    for (const auto& [r, drawn] : seen) {
      const std::int32_t weight = r->line->weight;
      const std::uint32_t color = r->colors->color.word();
      if (out.empty() || std::get<0>(out.back()) != weight || std::get<1>(out.back()) != color)
        out.emplace_back(weight, color, 0);
      ++std::get<2>(out.back());
    }
    return out;
  }
};

constexpr OT_RGB32 kHaloColor{0, 200, 0, 255};
constexpr OT_RGB32 kInnerColor{90, 0, 0, 255};

OT_Material halo_material(std::int32_t halo_weight, OT_RGB32 halo_color = kHaloColor) {
  OT_Material material(new OT_Material_Data);
  material->code = 7;
  material->halo_weight = halo_weight;
  material->halo_color = halo_color;
  material->halo_inner_color = kInnerColor;
  return material;
}

class Halo : public ::testing::TestWithParam<Mode_Case> {};

// Thin lines: a wide halo pass to the host (one strip of two triangles), then the
// line by the walker. Wide lines: both passes to the host, the second in the
// inner colour and one wider. The mapped modes draw the line once.
TEST_P(Halo, HaloPassFirstThenTheLine) {
  const Mode_Case& mode = GetParam();
  const struct {
    std::int32_t weight, halo_weight, first, second;  // second 0: thin
  } cases[] = {{0, 1, 4, 0}, {1, 3, 8, 0}, {2, 1, 7, 3}, {3, 5, 8, 4}};
  const Points line{{4, 6, 9}, {24, 6, 9}};
  for (const auto& c : cases)
    for (int form = 0; form < 2; ++form) {
      SCOPED_TRACE(std::string(form ? "2di" : "dci") + " weight " + std::to_string(c.weight));
      Renderer_Harness h(mode);
      h.rendition().set_material(halo_material(c.halo_weight));
      h.rendition().writable_line()->weight = c.weight;
      Dot_Recorder::install(h, line[0]);
      form ? h.line_2di(line) : h.line(line);
      const bool thin = c.weight <= 1;
      decltype(Dot_Recorder::passes()) expected;
      if (mode.mapped() && !thin) expected = {{c.weight, Renderer_Harness::kColor.word(), 1}};
      if (!mode.mapped()) expected = {{c.first, kHaloColor.word(), 1}};
      if (!mode.mapped() && !thin) expected.emplace_back(c.second, kInnerColor.word(), 1);
      EXPECT_EQ(Dot_Recorder::passes(), expected);
      for (const auto& [r, line_drawn] : Dot_Recorder::seen) EXPECT_FALSE(line_drawn);
      EXPECT_EQ(h.drawn(), thin ? rows_of({{6, {4, 24}}}) : Pixels());
      EXPECT_EQ(h.pixel(14, 6), thin ? h.drawn_value() : h.clear_value());
    }
}

INSTANTIATE_TEST_SUITE_P(AllModes, Halo, ::testing::ValuesIn(kAllModes), mode_name);

TEST(Halo_Passes, TheRenditionsOfTheTwoPasses) {
  const OT_RGB32 kContrast = OT_RGB32::rgba(200, 100, 0, 50);
  const struct {
    const char* name;
    OT_RGB32 halo_color;
    std::int32_t face_pattern;
    std::uint32_t first_options;  // from 0x820
    OT_RGB32 second_color, second_contrast;
    std::int32_t second_face, second_bias;
    std::uint32_t second_stipple;
  } cases[] = {
      // The halo pass's solid face stays.
      {"opaque halo", kHaloColor, 0, 0x820, kInnerColor, kContrast, 64, 10, 2},
      {"translucent halo", OT_RGB32::rgba(0, 200, 0, 254), 0, 0x828, kInnerColor, kContrast, 64, 10, 2},
      // Stipple 24: the holes take the contrast colour over the line's by
      // its alpha 50: red (255 * 205 + 200 * 50) / 255 = 244.2, green
      // 100 * 50 / 255 = 19.6, both truncated.
      {"stipple 24", kHaloColor, 24, 0x820, Renderer_Harness::kColor, OT_RGB32::rgba(244, 19, 0, 255), 24, 6,
       1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Renderer_Harness h(kRgb32);
    OT_Rendition& r = h.rendition();
    r.set_material(halo_material(2, c.halo_color));
    r.writable_line()->weight = 3;
    std::tie(r.writable_face()->pattern, r.writable_face()->depth_bias) = std::tuple(c.face_pattern, 10);
    std::tie(r.writable_raster()->stipple_flags, r.writable_raster()->advanced_options) =
        std::tuple(2u, 0x820u);
    r.set_contrast_color(kContrast, true);
    Dot_Recorder::install(h, {4, 6, 9});
    h.line({{4, 6, 9}, {24, 6, 9}});
    ASSERT_EQ(Dot_Recorder::seen.size(), 2u);
    const OT_Rendition& first = Dot_Recorder::seen.front().first;
    EXPECT_EQ(std::tuple(first->line->weight, first->colors->color, first->face->pattern),
              std::tuple(8, c.halo_color, 64));
    EXPECT_EQ(first->raster->advanced_options, c.first_options);
    EXPECT_EQ(std::tuple(first->line->join_style, first->line->first_end_style, first->line->last_end_style),
              std::tuple(2, 2, 2));
    EXPECT_EQ(std::tuple(first->line->halo_flag_a, first->line->halo_flag_b), std::tuple(byte(1), byte(1)));
    EXPECT_NE(*first->colors->material->type_code(), 7);
    const OT_Rendition& second = Dot_Recorder::seen.back().first;
    EXPECT_EQ(std::tuple(second->line->weight, second->colors->color, second->colors->contrast_color),
              std::tuple(4, c.second_color, c.second_contrast));
    EXPECT_EQ(std::tuple(second->face->pattern, second->face->depth_bias, second->raster->stipple_flags),
              std::tuple(c.second_face, c.second_bias, c.second_stipple));
    EXPECT_EQ(second->raster->advanced_options, 0x20u);
    // The caller's rendition is untouched.
    EXPECT_EQ(std::tuple(r->line->weight, *r->colors->material->type_code()), std::tuple(3, 7));
  }
}

}  // namespace
}  // namespace tarn::testing
