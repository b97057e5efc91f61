// Complex clip masks: the cache of the last four masks, the question
// whether a mask is in force, and what a mask does to each primitive.
#include <functional>

#include "pixel/mask.h"
#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

class Mask_Cache : public ::testing::Test {
 protected:
  Mask_Cache() : h(kRgb32) { h.use_mask(OT_Contour_Set()); }

  Mask_Cache_Data& cache() { return *h.renderer().mask_cache; }
  Frame_Buffer_Mask* ask(const OT_Contour_Set& clip) {
    h.rendition().writable_device()->complex_clip = clip;
    EXPECT_TRUE(mask_in_force(h.renderer(), h.rendition()));
    return cache().head;
  }
  // The list from head along next, checked against previous and tail.
  std::vector<Frame_Buffer_Mask*> order() {
    std::vector<Frame_Buffer_Mask*> out;
    Frame_Buffer_Mask* before = nullptr;
    for (Frame_Buffer_Mask* m = cache().head; m && out.size() < 8; m = m->next) {
      EXPECT_EQ(m->previous, before);
      out.push_back(m);
      before = m;
    }
    EXPECT_EQ(cache().tail, before);
    EXPECT_EQ(cache().mask_count, int(out.size()));
    return out;
  }

  Renderer_Harness h;
  // Five regions, each a band of its own rows.
  OT_Contour_Set a = box(0, 0, 10, 8), b = box(0, 8, 10, 16), c = box(0, 16, 10, 24), d = box(0, 24, 10, 32),
                 e = box(0, 32, 10, 40);
};

TEST_F(Mask_Cache, FifthClipRebuildsTheLeastRecentlyUsedInPlace) {
  EXPECT_EQ(cache().limit, 4);
  Frame_Buffer_Mask *ma = ask(a), *mb = ask(b), *mc = ask(c), *md = ask(d);
  EXPECT_EQ(order(), (std::vector<Frame_Buffer_Mask*>{md, mc, mb, ma}));
  EXPECT_EQ(ma->key, a->serial);
  EXPECT_EQ((std::vector{masked_bit(*ma, 9, 7), masked_bit(*ma, 10, 7), masked_bit(*ma, 9, 8)}),
            (std::vector{false, true, true}));
  EXPECT_EQ(ask(e), ma);
  EXPECT_EQ(order(), (std::vector<Frame_Buffer_Mask*>{ma, md, mc, mb}));
  EXPECT_EQ(ma->key, e->serial);
  EXPECT_EQ(std::pair(masked_bit(*ma, 5, 4), masked_bit(*ma, 5, 35)), std::pair(true, false));
  EXPECT_EQ(ask(a), mb);  // now B is the oldest
  EXPECT_EQ(order(), (std::vector<Frame_Buffer_Mask*>{mb, ma, md, mc}));
}

TEST_F(Mask_Cache, OlderClipMovesToTheHeadWithoutRasterizingAndTheHeadStaysPut) {
  Frame_Buffer_Mask *ma = ask(a), *mb = ask(b), *mc = ask(c);
  // A mark that rasterizing would wipe out: (3, 3) lies inside A.
  ma->image->device_rows[3][0] |= 128 >> 3;
  EXPECT_EQ(ask(b), mb);  // from the middle
  EXPECT_EQ(order(), (std::vector<Frame_Buffer_Mask*>{mb, mc, ma}));
  EXPECT_EQ(ask(a), ma);  // from the tail
  EXPECT_EQ(order(), (std::vector<Frame_Buffer_Mask*>{ma, mb, mc}));
  EXPECT_EQ(ask(a), ma);  // the head shortcut
  EXPECT_EQ(order(), (std::vector<Frame_Buffer_Mask*>{ma, mb, mc}));
  EXPECT_TRUE(masked_bit(*ma, 3, 3));
  // A changed clip has a new stamp: another mask.
  make_unique(a)->points[1].x = 20;
  EXPECT_NE(ask(a), ma);
  EXPECT_EQ(cache().mask_count, 4);
  // Each establish empties the cache; no clip, no mask.
  h.renderer().establish();
  EXPECT_TRUE(cache().mask_count == 0 && cache().head == nullptr && cache().tail == nullptr);
  h.rendition().writable_device()->complex_clip = OT_Contour_Set();
  EXPECT_FALSE(mask_in_force(h.renderer(), h.rendition()));
}

TEST_F(Mask_Cache, NegativeExtentUsesTheShiftedClipAndItsStamp) {
  h.rendition().writable_device()->extent = {-10, 53, 0, 47};
  Frame_Buffer_Mask* mask = ask(a);
  const OT_Contour_Set& shifted = h.rendition().shifted_complex_clip();
  ASSERT_TRUE(shifted);
  EXPECT_EQ(mask->key, shifted->serial);
  // A's columns moved right by 10.
  EXPECT_EQ(std::pair(masked_bit(*mask, 9, 4), masked_bit(*mask, 10, 4)), std::pair(true, false));
  EXPECT_EQ(ask(a), mask);
  h.rendition().writable_device()->extent = {0, 63, -5, 42};
  Frame_Buffer_Mask* down = ask(a);
  EXPECT_EQ(down->key, h.rendition().shifted_complex_clip()->serial);
  EXPECT_EQ(std::pair(masked_bit(*down, 3, 4), masked_bit(*down, 3, 5)), std::pair(true, false));
  h.rendition().writable_device()->extent = {0, 63, 0, 47};
  EXPECT_EQ(ask(a)->key, a->serial);
}

TEST(Mask_Option, UseMaskOffMeansNoMaskWhateverTheRenditionSays) {
  for (const Mode_Case& mode : kAllModes) {
    Renderer_Harness h(mode), plain(mode);
    h.rendition().writable_device()->complex_clip = box(0, 0, 4, 4);
    EXPECT_FALSE(mask_in_force(h.renderer(), h.rendition())) << mode.name;
    for (Renderer_Harness* each : {&h, &plain}) {
      each->draw_dci({{0, 0, 10}, {40, 0, 10}, {0, 30, 10}});
      each->line({{0, 40, 10}, {60, 44, 10}});
    }
    EXPECT_EQ(h.snapshot(), plain.snapshot()) << mode.name;
  }
}

// ---- What a mask hides ---------------------------------------------------------------

// The region: an L of two rectangles.
bool in_l(int x, int y) {
  return (y >= 6 && y < 20 && x >= 10 && x < 50) || (y >= 20 && y < 38 && x >= 10 && x < 24);
}
OT_Contour_Set l_region() {
  const OT_Point p[6] = {{10, 6, 0}, {50, 6, 0}, {50, 20, 0}, {24, 20, 0}, {24, 38, 0}, {10, 38, 0}};
  return OT_Contour_Set(6, p, true);
}

struct Drawing {
  const char* name;
  std::function<void(Renderer_Harness&)> draw;
  std::function<bool(const Mode_Case&)> masked;  // false: draws through the mask
};

bool not_alpha_depth(const Mode_Case& m) { return !(m.alpha && m.depth()); }

const Drawing kDrawings[] = {
    {"strip",
     [](Renderer_Harness& h) {
       h.draw_dci({{0, 0, 500}, {63, 0, 600}, {0, 47, 700}, {63, 47, 800}});
     },
     not_alpha_depth},
    {"translucent_strip",
     [](Renderer_Harness& h) {
       h.set_color(OT_RGB32{200, 100, 50, 128}, 7);
       h.draw_dci(rectangle(0, 0, 63, 47, 10));
     },
     not_alpha_depth},
    {"crossing_strip",
     [](Renderer_Harness& h) {
       h.set_hard_clip({12, 45, 8, 33});
       h.draw_2di({{-40, -10, 300}, {120, 0, 300}, {-20, 90, 300}, {100, 80, 300}});
     },
     not_alpha_depth},
    {"lines",
     [](Renderer_Harness& h) {
       for (int end = 0; end < 64; end += 3) h.line({{30, 24, 100}, {end, 0, 100}, {63 - end, 47, 100}});
       h.line({{0, 10, 100}, {63, 10, 100}, {20, 0, 100}, {20, 47, 100}});
     },
     [](const Mode_Case&) { return true; }},
    {"crossing_lines",
     [](Renderer_Harness& h) {
       h.set_hard_clip({12, 45, 8, 33});
       for (int end = -30; end < 100; end += 7) h.line_2di({{end, 70, 100}, {16, -20, 100}});
       h.line_2di({{-50, 15, 100}, {120, 15, 100}, {22, 90, 100}, {22, -40, 100}});
     },
     [](const Mode_Case& m) { return !(m.mapped() && m.depth()); }},
    {"gouraud_strip",
     [](Renderer_Harness& h) {
       const Points p{{2, 1, 100}, {60, 3, 900}, {5, 46, 400}, {62, 44, 50}};
       const std::vector<OT_RGB32> c{
           {250, 10, 10, 255}, {10, 250, 10, 255}, {10, 10, 250, 255}, {90, 90, 90, 255}};
       h.renderer().draw_dci_gouraud_polytriangle(h.rendition(), 4, p.data(), c.data());
       h.set_hard_clip({12, 45, 8, 33});
       const Points q{{-30, 20, 50}, {90, 30, 60}, {20, 70, 70}};
       h.renderer().draw_2di_gouraud_polytriangle(h.rendition(), 3, q.data(), c.data());
     },
     not_alpha_depth},
    {"shaded_lines",
     [](Renderer_Harness& h) {
       const std::vector<OT_RGB32> c{{250, 10, 10, 255}, {10, 250, 10, 255}, {10, 10, 250, 255}};
       for (int end = 0; end < 64; end += 5) {
         const Points p{{30, 24, 100}, {end, 0, 300}, {63 - end, 47, 200}};
         h.renderer().draw_dci_gouraud_polyline(h.rendition(), 3, p.data(), c.data());
         h.renderer().draw_dci_colorized_polyline(h.rendition(), 3, p.data(), c.data(), false);
       }
     },
     [](const Mode_Case& m) { return !(m.mapped() && !m.depth()); }},
    {"dots_and_markers",
     [](Renderer_Harness& h) {
       Points points;
       for (int i = 0; i < 40; ++i) points.push_back({(i * 7) % 64, (i * 11) % 48, 9});
       h.markers(points);
       for (const OT_DCI_Point& p : points) h.dot(p.x, 47 - p.y, 9);
     },
     [](const Mode_Case& m) { return !m.depth(); }},
};

class Masked : public ::testing::TestWithParam<Mode_Case> {};

// Masked: inside the region what the plain drawing has, outside the clear
// values, depth too. Through the mask: the plain drawing everywhere.
TEST_P(Masked, RegionHidesEachPrimitiveOutsideIt) {
  for (const Drawing& d : kDrawings) {
    Renderer_Harness masked(GetParam()), plain(GetParam());
    masked.use_mask(l_region());
    d.draw(masked);
    d.draw(plain);
    const bool hides = d.masked(GetParam());
    int shown = 0;
    for (int y = 0; y < 48; ++y)
      for (int x = 0; x < 64; ++x) {
        const bool keep = !hides || in_l(x, y);
        shown += keep && plain.pixel(x, y) != plain.clear_value();
        ASSERT_EQ(masked.pixel(x, y), keep ? plain.pixel(x, y) : masked.clear_value())
            << d.name << " " << x << "," << y;
        if (GetParam().depth()) {
          ASSERT_EQ(masked.depth(x, y), keep ? plain.depth(x, y) : 0xFFFF) << d.name;
        }
      }
    EXPECT_GT(shown, 20) << d.name;
  }
}

// Behind a mask the depth fillers and walkers test at or below and always
// write depth, whatever "ZBuffer Test" and "ZBuffer Write" say.
class Masked_Depth : public ::testing::TestWithParam<Mode_Case> {};

TEST_P(Masked_Depth, DepthFormsBehindAMaskIgnoreTheDepthOptions) {
  Renderer_Harness masked(GetParam()), plain(GetParam());
  masked.use_mask(box(-5, -5, 100, 100));
  masked.set_depth_test(5);
  masked.set_depth_write(0);
  for (Renderer_Harness* h : {&masked, &plain}) {
    h->line({{1, 46, 300}, {63, 2, 300}, {20, 30, 300}});
    if (not_alpha_depth(GetParam())) {
      h->draw_dci({{2, 1, 200}, {50, 4, 200}, {8, 40, 200}});
      h->draw_dci({{2, 1, 250}, {50, 4, 250}, {8, 40, 250}});
    }
  }
  EXPECT_EQ(masked.renderer().mask_cache->mask_count, 1);
  EXPECT_EQ(masked.snapshot(), plain.snapshot());
}

INSTANTIATE_TEST_SUITE_P(AllModes, Masked, ::testing::ValuesIn(kAllModes), mode_name);
INSTANTIATE_TEST_SUITE_P(DepthModes, Masked_Depth, ::testing::ValuesIn(kDepthModes), mode_name);

TEST(Masked_Lines, DepthAlphaLineBehindAMaskIsOpaqueAndAJointUnderASetBitIsSkipped) {
  Renderer_Harness h(kZRgb32Alpha);
  h.use_mask(box(0, 0, 64, 48));
  const OT_RGB32 translucent{200, 100, 50, 128};
  h.set_color(translucent, 0);
  h.line({{2, 3, 100}, {40, 3, 100}});
  EXPECT_EQ(std::pair(h.pixel(10, 3), h.pixel(40, 3)), std::pair(translucent.word(), translucent.word()));
  EXPECT_EQ(h.depth(10, 3), 100);
  Renderer_Harness g(kRgb32);
  auto* data = new OT_Contour_Set_Data;  // everything but column 20
  data->points = {{0, 0, 0},  {20, 0, 0}, {20, 48, 0}, {0, 48, 0},
                  {21, 0, 0}, {64, 0, 0}, {64, 48, 0}, {21, 48, 0}};
  data->contour_starts = {0, 4};
  g.use_mask(OT_Contour_Set(data));
  g.line({{10, 5, 0}, {20, 5, 0}, {20, 15, 0}, {30, 15, 0}});
  EXPECT_EQ(g.drawn(), rows_of({{5, {10, 19}}, {15, {21, 30}}}));
}

// ---- Where a masked form is not the plain one behind a test -------------------------

OT_Contour_Set everything() { return box(-5, -5, 100, 100); }

// A translucent triangle behind the mask blends red, green and blue and
// leaves the pixel's alpha byte; alpha 0 leaves the pixel whole. Worked:
// (b, g, r) = (0x40, 0x30, 0x20) under (50, 100, 200) at 128 is
// ((64 * 127 + 50 * 128) / 255, ...) = (56, 74, 116).
TEST(Masked_Rules, TranslucentTrianglesKeepThePixelsAlphaByte) {
  for (const bool masked : {false, true}) {
    Renderer_Harness h(kRgb32Alpha);
    if (masked) h.use_mask(everything());
    for (int y = 0; y < 48; ++y)
      for (int x = 0; x < 64; ++x) h.poke(x, y, 0x10203040u);
    const std::vector<OT_RGB32> colors{{50, 100, 200, 128}, {50, 100, 200, 0}};
    h.colorized({{0, 0, 0}, {30, 0, 0}, {0, 20, 0}, {30, 20, 0}}, colors, false);
    const std::uint32_t alpha = masked ? 0x10000000u : 0xFF000000u;
    EXPECT_EQ(h.pixel(2, 2), alpha | 0x744A38u) << masked;
    if (masked) {
      EXPECT_EQ(h.pixel(28, 18), 0x10203040u) << "alpha 0";
    }
    // Gouraud: the same colours per pixel, the alpha byte kept.
    Renderer_Harness plain(kRgb32Alpha);
    for (Renderer_Harness* each : {&h, &plain}) {
      const Points p{{34, 2, 0}, {62, 4, 0}, {36, 44, 0}};
      const std::vector<OT_RGB32> c{{250, 10, 10, 40}, {10, 250, 10, 200}, {10, 10, 250, 120}};
      for (int y = 0; y < 48; ++y)
        for (int x = 34; x < 64; ++x) each->poke(x, y, 0x10203040u);
      each->renderer().draw_dci_gouraud_polytriangle(each->rendition(), 3, p.data(), c.data());
    }
    for (int y = 0; y < 48; ++y)
      for (int x = 34; x < 64; ++x) {
        const std::uint32_t drawn = plain.pixel(x, y);
        ASSERT_EQ(h.pixel(x, y), drawn == 0x10203040u ? drawn : (drawn & 0xFFFFFFu) | alpha) << x << "," << y;
      }
  }
}

// A patterned mapped strip with merge on, behind the mask, merges in each
// triangle's first part (rows below its middle point) as a crossing triangle
// does, and stores plain below as the unmasked strip does.
TEST(Masked_Rules, MappedPatternMergesDownToTheMiddlePointOnly) {
  for (const std::uint32_t contrast : {0u, 1u}) {
    Renderer_Harness masked(kMapped), plain(kMapped), crossing(kMapped);
    masked.use_mask(everything());
    for (Renderer_Harness* h : {&masked, &plain, &crossing}) {
      set_face_pattern(h->rendition(), 3);
      h->rendition().writable_raster()->write_mode = 20;
      h->rendition().writable_raster()->stipple_flags = contrast;
      h->rendition().writable_colors()->contrast_index = 5;
      for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 64; ++x) h->poke(x, y, (x * 7 + y) % 11);
    }
    const Points triangle{{4, 3, 0}, {60, 21, 0}, {6, 44, 0}};
    masked.draw_dci(triangle);
    plain.draw_dci(triangle);
    crossing.set_hard_clip({5, 63, 0, 47});
    crossing.draw_2di(triangle);
    int merged_differs = 0;
    for (int y = 0; y < 48; ++y)
      for (int x = 5; x < 64; ++x) {
        const Renderer_Harness& expected = y < 21 ? crossing : plain;
        ASSERT_EQ(masked.pixel(x, y), expected.pixel(x, y)) << x << "," << y << " contrast " << contrast;
        merged_differs += y < 21 && crossing.pixel(x, y) != plain.pixel(x, y);
      }
    EXPECT_GT(merged_differs, 10);
  }
}

// A line's last point behind the mask is tested and written with the depth
// the walk accumulated: z 70000 wraps to -61072 in 17.15, which passes at or
// below and stores 4464, where the unmasked form compares 70000 and skips.
class Masked_Depth_Lines : public ::testing::TestWithParam<Mode_Case> {};

TEST_P(Masked_Depth_Lines, LastPointTakesTheAccumulatedDepth) {
  const Points p{{0, 5, 70000}, {3, 5, 70000}};
  const std::vector<OT_RGB32> c{{10, 20, 30, 255}, {200, 20, 30, 255}};
  using Draw = std::function<void(Renderer_Harness&)>;
  const Draw draws[] = {
      [&](Renderer_Harness& h) { h.line(p); },
      [&](Renderer_Harness& h) {
        h.renderer().draw_dci_colorized_polyline(h.rendition(), 2, p.data(), c.data(), true);
      },
      [&](Renderer_Harness& h) {
        h.renderer().draw_dci_gouraud_polyline(h.rendition(), 2, p.data(), c.data());
      },
  };
  for (const Draw& draw : draws) {
    Renderer_Harness masked(GetParam()), plain(GetParam());
    masked.use_mask(everything());
    draw(masked);
    draw(plain);
    EXPECT_EQ(masked.depth(2, 5), 4464);
    EXPECT_EQ(plain.depth(2, 5), 4464);
    EXPECT_EQ(masked.depth(3, 5), 4464);
    EXPECT_EQ(plain.depth(3, 5), 0xFFFF);
    EXPECT_NE(masked.pixel(3, 5), masked.clear_value());
    EXPECT_EQ(plain.pixel(3, 5), plain.clear_value());
  }
}
INSTANTIATE_TEST_SUITE_P(DepthModes, Masked_Depth_Lines, ::testing::ValuesIn(kDepthModes), mode_name);

// Behind the mask a Gouraud line has no nearly flat case and writes opaque
// pixels in the alpha modes; a 2DI line in the depth-alpha mode is opaque,
// alpha byte 255, where its DCI form stores the colour whole.
TEST(Masked_Rules, MaskedLinesInTheAlphaModesAreOpaque) {
  const OT_RGB32 translucent{30, 20, 10, 128};
  const std::uint32_t opaque = OT_RGB32{30, 20, 10, 255}.word();
  for (const Mode_Case* mode : {&kRgb32Alpha, &kZRgb32Alpha}) {
    Renderer_Harness h(*mode);
    h.use_mask(everything());
    const Points p{{2, 3, 100}, {40, 3, 100}};
    const std::vector<OT_RGB32> c{translucent, translucent};
    h.renderer().draw_dci_gouraud_polyline(h.rendition(), 2, p.data(), c.data());
    EXPECT_EQ(h.pixel(10, 3), opaque) << mode->name;
  }
  Renderer_Harness h(kZRgb32Alpha);
  h.use_mask(everything());
  h.set_color(translucent, 0);
  h.line_2di({{2, 8, 100}, {40, 8, 100}});
  h.line({{2, 9, 100}, {40, 9, 100}});
  EXPECT_EQ(std::pair(h.pixel(10, 8), h.pixel(10, 9)), std::pair(opaque, translucent.word()));
}

}  // namespace
}  // namespace tarn::testing
