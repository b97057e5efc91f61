// Styled lines: line type sets cut into pieces (the runs handed back, and
// the pixels the actions of each mode draw from them), and the two-pass halo
// as the host's standard routine and the thin walker see it.
#include <deque>

#include "lines/line_types.h"
#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

// A line type set with the storage its pointers reach.
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

  // Moves keep the addresses that the set points to; copies would not.
  Test_Set() = default;
  Test_Set(Test_Set&&) = default;
  Test_Set(const Test_Set&) = delete;

  Test_Set&& add(const Type& t) && { return std::move(add(t)); }
  Test_Set&& add_none() && { return std::move(add_none()); }
  Test_Set&& per_segment(std::int32_t first, std::int32_t end, std::vector<std::uint32_t> skipped = {}) && {
    return std::move(per_segment(first, end, std::move(skipped)));
  }

  Test_Set& add(const Type& t) & {
    auto& [lengths, definition] = definitions.emplace_back(t.lengths, OT_Line_Type_Definition{});
    definition = {lengths.data(), std::int64_t(lengths.size()), t.end_style};
    OT_Line_Type type(new OT_Line_Type_Data);
    type->definition = &definition;
    type->length_scale = t.length_scale;
    type->start_length = t.start;
    type->end_length = t.end;
    type->phase = t.phase;
    set.line_types.push_back(type);
    set.end_type = std::int32_t(set.line_types.size());
    return *this;
  }
  Test_Set& add_none() & {
    set.line_types.push_back(OT_Line_Type::None);
    set.end_type = std::int32_t(set.line_types.size());
    return *this;
  }
  Test_Set& per_segment(std::int32_t first, std::int32_t end, std::vector<std::uint32_t> skipped = {}) & {
    set.per_segment = 1;
    set.first_type = first;
    set.end_type = end;
    skips = std::move(skipped);
    set.skip_count = std::uint32_t(skips.size());
    set.skips = skips.data();
    return *this;
  }
};

using Runs = std::vector<Points>;

std::string describe(const Runs& runs) {
  std::string out;
  for (const Points& run : runs) {
    out += "[";
    for (const OT_DCI_Point& p : run)
      out += " " + std::to_string(p.x) + "," + std::to_string(p.y) + "," + std::to_string(p.z);
    out += " ]";
  }
  return out;
}

// The runs that decompose_polyline hands back; each call's rendition has no
// line type, and the caller's rendition keeps its set.
Runs runs_of(const Test_Set& s, const Points& points) {
  OT_Rendition rendition = OT_Rendition::make_default(64, 48, OT_Palette());
  rendition.writable_line()->line_type_set = &s.set;
  Runs runs;
  decompose_polyline(rendition, int(points.size()), points.data(),
                     [&](const OT_Rendition& r, int n, const OT_DCI_Point* p) {
                       EXPECT_EQ(r->line->line_type_set, &OT_Line_Type_Set::None);
                       runs.emplace_back(p, p + n);
                     });
  EXPECT_EQ(rendition->line->line_type_set, &s.set);
  return runs;
}

const Test_Set::Type kDash{{10, -5}};

TEST(Line_Types, PiecesJoinIntoRunsAsThePatternSays) {
  const Points straight{{0, 0, 0}, {30, 0, 0}};
  const Points corner{{0, 0, 0}, {20, 0, 0}, {20, 10, 0}};
  const struct {
    const char* name;
    Test_Set set;
    Points points;
    Runs expected;
  } cases[] = {
      {"dash on 30", Test_Set().add(kDash), straight, {{{0, 0, 0}, {10, 0, 0}}, {{15, 0, 0}, {25, 0, 0}}}},
      // The pattern runs on round the corner: 5 of the dash is left for it.
      {"whole path",
       Test_Set().add(kDash),
       corner,
       {{{0, 0, 0}, {10, 0, 0}}, {{15, 0, 0}, {20, 0, 0}, {20, 5, 0}}}},
      // Each segment starts the pattern afresh: a whole dash after the corner.
      {"per segment",
       Test_Set().add(kDash).add(kDash).per_segment(0, 2),
       corner,
       {{{0, 0, 0}, {10, 0, 0}}, {{15, 0, 0}, {20, 0, 0}, {20, 10, 0}}}},
      {"phase 12 skips into the gap",
       Test_Set().add({{10, -5}, 0, 0, 12}),
       straight,
       {{{3, 0, 0}, {13, 0, 0}}, {{18, 0, 0}, {28, 0, 0}}}},
      {"set scale doubles the lengths",
       [] {
         Test_Set s;
         s.add(kDash).set.scale = 2;
         return s;
       }(),
       {{0, 0, 0}, {40, 0, 0}},
       {{{0, 0, 0}, {20, 0, 0}}, {{30, 0, 0}, {40, 0, 0}}}},
      {"length scale",
       Test_Set().add({{10, -5}, 0, 0, 0, 0, 0.5}),
       {{0, 0, 0}, {12, 0, 0}},
       {{{0, 0, 0}, {5, 0, 0}}, {{7, 0, 0}, {12, 0, 0}}}},
      // Solid ends, with the pattern between them.
      {"solid start and end",
       Test_Set().add({{10, -5}, 5, 5}),
       straight,
       {{{0, 0, 0}, {5, 0, 0}, {15, 0, 0}}, {{20, 0, 0}, {25, 0, 0}, {30, 0, 0}}}},
      // End style 2: each solid end a dot, at the first and the last point.
      {"dotted ends",
       Test_Set().add({{10, -5}, 5, 5, 0, 2}),
       straight,
       {{{0, 0, 0}, {0, 0, 0}}, {{5, 0, 0}, {15, 0, 0}}, {{20, 0, 0}, {25, 0, 0}}, {{30, 0, 0}, {30, 0, 0}}}},
      // A zero entry: a dot, a run of two equal points, where it stands.
      {"zero entries are dots",
       Test_Set().add({{0, -4}}),
       {{0, 0, 0}, {10, 0, 0}},
       {{{0, 0, 0}, {0, 0, 0}}, {{4, 0, 0}, {4, 0, 0}}, {{8, 0, 0}, {8, 0, 0}}}},
      // A dot followed by a line from it: the dot's points become the line.
      {"dot then dash",
       Test_Set().add({{0, 10, -5}}),
       straight,
       {{{0, 0, 0}, {10, 0, 0}}, {{15, 0, 0}, {25, 0, 0}}}},
      // With end style 2 and solid ends, the pattern's dots at their ends go.
      {"dots next to dotted ends",
       Test_Set().add({{0, -3}, 2, 2, 0, 2}),
       {{0, 0, 0}, {10, 0, 0}},
       {{{0, 0, 0}, {0, 0, 0}}, {{5, 0, 0}, {5, 0, 0}}, {{10, 0, 0}, {10, 0, 0}}}},
      // Points truncate toward zero: -3.98, -2.78, 1.19 give -3, -2, 1.
      {"truncation", Test_Set().add({{5, -20}}), {{0, 0, 0}, {-10, -7, 3}}, {{{0, 0, 0}, {-3, -2, 1}}}},
      {"None type: uncut",
       Test_Set().add_none(),
       {{0, 0, 0}, {5, 0, 1}, {5, 5, 2}, {9, 9, 3}},
       {{{0, 0, 0}, {5, 0, 1}, {5, 5, 2}, {9, 9, 3}}}},
  };
  for (const auto& c : cases) {
    const Runs runs = runs_of(c.set, c.points);
    EXPECT_EQ(describe(runs), describe(c.expected)) << c.name;
  }
}

TEST(Line_Types, PerSegmentSlotsMustFitTheSegments) {
  const Points corner{{0, 0, 0}, {20, 0, 0}, {20, 10, 0}};
  const Test_Set::Type kShort{{2, -2}};
  const Runs kSkippedSlot = {{{0, 0, 0}, {10, 0, 0}},
                             {{15, 0, 0}, {20, 0, 0}, {20, 2, 0}},
                             {{20, 4, 0}, {20, 6, 0}},
                             {{20, 8, 0}, {20, 10, 0}}};
  const struct {
    const char* name;
    Test_Set set;
    Points points;
    Runs expected;
  } cases[] = {
      // Slot 1 (None) is skipped: the second segment takes slot 2.
      {"skip", Test_Set().add(kDash).add_none().add(kShort).per_segment(0, 3, {1}), corner, kSkippedSlot},
      {"first", Test_Set().add_none().add(kDash).add(kShort).per_segment(1, 2), corner, kSkippedSlot},
      // Two segments, three slots and no skip: nothing.
      {"too many slots", Test_Set().add(kDash).add_none().add(kShort).per_segment(0, 3), corner, {}},
      {"too few slots", Test_Set().add(kDash).per_segment(0, 1), corner, {}},
      {"no slot", Test_Set().add(kDash).per_segment(0, 0), {{0, 0, 0}, {30, 0, 0}}, {}},
      // Two points always go slot by slot, even in a whole-path set.
      {"two points",
       [] {
         Test_Set s;
         s.add(kDash).add(kDash).set.end_type = 2;
         return s;
       }(),
       {{0, 0, 0}, {30, 0, 0}},
       {}},
      {"two points fit",
       [] {
         Test_Set s;
         s.add(kDash).add_none().set.end_type = 1;
         return s;
       }(),
       {{0, 0, 0}, {30, 0, 0}},
       {{{0, 0, 0}, {10, 0, 0}}, {{15, 0, 0}, {25, 0, 0}}}},
  };
  for (const auto& c : cases) {
    const Runs runs = runs_of(c.set, c.points);
    EXPECT_EQ(describe(runs), describe(c.expected)) << c.name;
  }
}

TEST(Line_Types, TheSetsTypesAreScaledOnACopy) {
  Test_Set s;
  s.add(kDash).set.scale = 2;
  runs_of(s, {{0, 0, 0}, {30, 0, 0}});
  const OT_Line_Type& type = s.set.line_types[0];
  EXPECT_EQ(type->count.load(), 1u);
  EXPECT_EQ(type->length_scale, 1.0);
}

// The pieces through each mode's own action: only the RGB32 alpha and mapped
// modes take line types apart; the mapped depth mode with depth off is the
// mapped mode, and so is the RGB32 depth-alpha mode's 2DI action, but not its
// DCI action, which hands over to a walker.
class Styled_Lines : public ::testing::TestWithParam<Mode_Case> {};

TEST_P(Styled_Lines, DashedInTheModesThatTakeLineTypesApart) {
  const Mode_Case& mode = GetParam();
  Test_Set s;
  s.add(kDash);
  const Points line{{2, 5, 7}, {32, 5, 7}};
  const Pixels dashed = rows_of({{5, {2, 12}}, {5, {17, 27}}});
  const Pixels solid = rows_of({{5, {2, 32}}});
  const bool flat_mode = !mode.depth() && (mode.mapped() || mode.alpha);
  for (int depth_enabled = 0; depth_enabled < 2; ++depth_enabled)
    for (int form = 0; form < 2; ++form) {
      SCOPED_TRACE(std::string(form ? "2di" : "dci") + (depth_enabled ? " depth on" : " depth off"));
      Renderer_Harness h(mode);
      h.rendition().writable_line()->line_type_set = &s.set;
      h.rendition().writable_device()->depth_enabled = byte(depth_enabled);
      form ? h.line_2di(line) : h.line(line);
      const bool styled = flat_mode || (!depth_enabled && (mode.mapped() || (mode.alpha && form == 1)));
      EXPECT_EQ(h.drawn(), styled ? dashed : solid);
      for (const auto& [x, y] : h.drawn()) ASSERT_EQ(h.pixel(x, y), h.drawn_value());
    }
}

// The pieces of a 2DI line go through the clip path: the same pixels as the
// whole line inside the clip, none outside.
TEST_P(Styled_Lines, ClippedPiecesMatchTheWholeLine) {
  const Mode_Case& mode = GetParam();
  Test_Set s;
  s.add(kDash);
  const OT_Int_Rectangle clip{5, 20, 0, 47};
  const Points line{{2, 5, 7}, {32, 5, 7}, {32, 30, 7}};
  Renderer_Harness whole(mode), cut(mode);
  for (Renderer_Harness* h : {&whole, &cut}) h->rendition().writable_line()->line_type_set = &s.set;
  cut.set_hard_clip(clip);
  whole.line_2di(line);
  cut.line_2di(line);
  const bool styled = !mode.depth() && (mode.mapped() || mode.alpha);
  EXPECT_EQ(cut.drawn(), styled ? rows_of({{5, {5, 12}}, {5, {17, 20}}}) : rows_of({{5, {5, 20}}}));
  EXPECT_TRUE(matches_inside_clip(cut, whole, clip));
}

INSTANTIATE_TEST_SUITE_P(AllModes, Styled_Lines, ::testing::ValuesIn(kAllModes), mode_name);

// ---- The halo ---------------------------------------------------------------

// What the host's dots saw of their rendition, one entry a dot.
struct Dot_Seen {
  std::int32_t weight;
  std::uint32_t color;
  std::uint32_t contrast;
  std::int32_t face_pattern, depth_bias, join_style, first_end, last_end;
  std::uint32_t stipple_flags, advanced_options;
  byte flag_a, flag_b;
  bool line_drawn;  // the line's first pixel already differed from the clear value
};

struct Dot_Recorder {
  static inline std::vector<Dot_Seen> seen;
  static inline const Renderer_Harness* harness = nullptr;
  static inline OT_DCI_Point first{0, 0, 0};

  static void record(OT_Renderer_Data*, const OT_Rendition& r, const OT_DCI_Point*, const OT_RGB32*) {
    seen.push_back({r->line->weight, r->colors->color.word(), r->colors->contrast_color.word(),
                    r->face->pattern, r->face->depth_bias, r->line->join_style, r->line->first_end_style,
                    r->line->last_end_style, r->raster->stipple_flags, r->raster->advanced_options,
                    r->line->halo_flag_a, r->line->halo_flag_b,
                    harness->pixel(first.x, first.y) != harness->clear_value()});
  }
  static void install(Renderer_Harness& h, OT_DCI_Point line_start) {
    seen.clear();
    harness = &h;
    first = line_start;
    h.renderer().draw_dci_dot.function = record;
  }
  // Consecutive dots of one weight and colour: the passes.
  static std::vector<std::pair<std::int32_t, std::uint32_t>> passes(std::vector<int>* dots = nullptr) {
    std::vector<std::pair<std::int32_t, std::uint32_t>> out;
    for (const Dot_Seen& d : seen) {
      if (out.empty() || out.back() != std::pair(d.weight, d.color)) {
        out.emplace_back(d.weight, d.color);
        if (dots) dots->push_back(0);
      }
      if (dots) ++dots->back();
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

// Thin lines: a wide halo pass to the host, then the line by the walker.
// Wide lines: both passes to the host, the second in the inner colour and
// one wider. The mapped modes draw the line once, as it is.
TEST_P(Halo, HaloPassFirstThenTheLine) {
  const Mode_Case& mode = GetParam();
  const struct {
    std::int32_t weight, halo_weight, first, second;  // second 0: thin
  } cases[] = {{0, 1, 4, 0}, {1, 3, 8, 0}, {2, 1, 7, 3}, {3, 5, 8, 4}};
  const Points line{{4, 6, 9}, {24, 6, 9}};
  const std::uint32_t kLineColor = Renderer_Harness::kColor.word();
  for (const auto& c : cases)
    for (int form = 0; form < 2; ++form) {
      SCOPED_TRACE(std::string(form ? "2di" : "dci") + " weight " + std::to_string(c.weight));
      Renderer_Harness h(mode);
      h.rendition().set_material(halo_material(c.halo_weight));
      h.rendition().writable_line()->weight = c.weight;
      Dot_Recorder::install(h, line[0]);
      form ? h.line_2di(line) : h.line(line);
      std::vector<int> dots;
      const auto passes = Dot_Recorder::passes(&dots);
      const bool thin = c.weight <= 1;
      decltype(Dot_Recorder::passes()) expected;
      if (mode.mapped()) {
        if (!thin) expected = {{c.weight, kLineColor}};
      } else {
        expected = {{c.first, kHaloColor.word()}};
        if (!thin) expected.emplace_back(c.second, kInnerColor.word());
      }
      EXPECT_EQ(passes, expected);
      for (int n : dots) EXPECT_EQ(n, 21);  // the host steps one dot a pixel
      for (const Dot_Seen& d : Dot_Recorder::seen) EXPECT_FALSE(d.line_drawn);
      EXPECT_EQ(h.drawn(), thin ? rows_of({{6, {4, 24}}}) : Pixels());
      if (thin) {
        EXPECT_EQ(h.pixel(14, 6), h.drawn_value());
      }
    }
}

INSTANTIATE_TEST_SUITE_P(AllModes, Halo, ::testing::ValuesIn(kAllModes), mode_name);

TEST(Halo_Passes, TheRenditionsOfTheTwoPasses) {
  const struct {
    const char* name;
    OT_RGB32 halo_color;
    std::int32_t face_pattern;
    std::uint32_t first_options;  // from 0x820
    std::uint32_t second_color, second_contrast;
    std::int32_t second_face, second_bias;
    std::uint32_t second_stipple;
  } cases[] = {
      // The halo pass's solid face stays.
      {"opaque halo", kHaloColor, 0, 0x820, kInnerColor.word(), OT_RGB32::rgba(200, 100, 0, 50).word(), 64,
       10, 2},
      {"translucent halo", OT_RGB32::rgba(0, 200, 0, 254), 0, 0x828, kInnerColor.word(),
       OT_RGB32::rgba(200, 100, 0, 50).word(), 64, 10, 2},
      // Stipple 24: the holes take the contrast colour over the line's by
      // its alpha 50: red (255 * 205 + 200 * 50) / 255 = 244.2, green
      // 100 * 50 / 255 = 19.6, both truncated.
      {"stipple 24", kHaloColor, 24, 0x820, Renderer_Harness::kColor.word(),
       OT_RGB32::rgba(244, 19, 0, 255).word(), 24, 6, 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Renderer_Harness h(kRgb32);
    OT_Rendition& r = h.rendition();
    r.set_material(halo_material(2, c.halo_color));
    r.writable_line()->weight = 3;
    r.writable_face()->pattern = c.face_pattern;
    r.writable_face()->depth_bias = 10;
    r.writable_raster()->stipple_flags = 2;
    r.writable_raster()->advanced_options = 0x820;
    r.set_contrast_color(OT_RGB32::rgba(200, 100, 0, 50), true);
    Dot_Recorder::install(h, {4, 6, 9});
    h.line({{4, 6, 9}, {24, 6, 9}});
    ASSERT_EQ(Dot_Recorder::seen.size(), 42u);
    const Dot_Seen& first = Dot_Recorder::seen.front();
    EXPECT_EQ(first.weight, 8);
    EXPECT_EQ(first.color, c.halo_color.word());
    EXPECT_EQ(first.face_pattern, 64);
    EXPECT_EQ(first.advanced_options, c.first_options);
    EXPECT_EQ(std::tuple(first.join_style, first.first_end, first.last_end), std::tuple(2, 2, 2));
    EXPECT_EQ(std::tuple(first.flag_a, first.flag_b), std::tuple(byte(1), byte(1)));
    const Dot_Seen& second = Dot_Recorder::seen.back();
    EXPECT_EQ(second.weight, 4);
    EXPECT_EQ(second.color, c.second_color);
    EXPECT_EQ(second.contrast, c.second_contrast);
    EXPECT_EQ(second.face_pattern, c.second_face);
    EXPECT_EQ(second.depth_bias, c.second_bias);
    EXPECT_EQ(second.stipple_flags, c.second_stipple);
    EXPECT_EQ(second.advanced_options, 0x20u);
    // The caller's rendition is untouched.
    EXPECT_EQ(r->line->weight, 3);
    EXPECT_EQ(*r->colors->material->type_code(), 7);
  }
}

}  // namespace
}  // namespace tarn::testing
