// Tiled actions: a picture drawn tile by tile through the tiled slots equals
// the same picture drawn in one window, and far coordinates land where a
// translated small picture puts them.
#include <algorithm>
#include <random>

#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

constexpr int kPictureWidth = 64, kPictureHeight = 48, kTile = 16;
constexpr OT_Int_Rectangle kPicture{0, kPictureWidth - 1, 0, kPictureHeight - 1};
// Translucent where the mode blends, so that a pixel drawn twice shows.
constexpr OT_RGB32 kTranslucent{40, 200, 90, 150};

void enable_tiling(Renderer_Harness& h) {
  h.renderer().requested_options.find(L"Enable Tiling")->set(OT_Option_Value::of_bool(true));
  h.renderer().update_current_options();
  h.renderer().establish();
  h.clear();
  h.set_color(kTranslucent, 9);
}

// A primitive as the tests give it: integer points (moved by the caller) and
// the colours of its kind.
enum class Kind {
  flat_strip,
  colorized_strip,
  gouraud_strip,
  polyline,
  colorized_polyline,
  gouraud_polyline
};

struct Primitive {
  Kind kind;
  Points points;
  std::vector<OT_RGB32> colors;
};

// Through the 2DI slots, for the picture in one window.
void draw_2di(Renderer_Harness& h, const Primitive& p) {
  Software_Z_Buffer& r = h.renderer();
  const int n = int(p.points.size());
  const OT_DCI_Point* q = p.points.data();
  const OT_RGB32* c = p.colors.data();
  switch (p.kind) {
    case Kind::flat_strip:
      return r.draw_2di_polytriangle(h.rendition(), n, q);
    case Kind::colorized_strip:
      return r.draw_2di_colorized_polytriangle(h.rendition(), n, q, c, false);
    case Kind::gouraud_strip:
      return r.draw_2di_gouraud_polytriangle(h.rendition(), n, q, c);
    case Kind::polyline:
      return r.draw_2di_polyline(h.rendition(), n, q);
    case Kind::colorized_polyline:
      return r.draw_2di_colorized_polyline(h.rendition(), n, q, c, false);
    case Kind::gouraud_polyline:
      return r.draw_2di_gouraud_polyline(h.rendition(), n, q, c);
  }
}

// Through the tiled slots, as doubles moved by (dx, dy) with fractions that
// round back to the integer points.
void draw_tiled(Renderer_Harness& h, const Primitive& p, double dx = 0, double dy = 0,
                const std::vector<OT_Point_D>* given = nullptr) {
  std::vector<OT_Point_D> d;
  for (const OT_DCI_Point& q : p.points) d.push_back({q.x + dx + 0.3, q.y + dy - 0.4, q.z + 0.2});
  if (given) d = *given;
  Software_Z_Buffer& r = h.renderer();
  const int n = int(d.size());
  const OT_RGB32* c = p.colors.data();
  switch (p.kind) {
    case Kind::flat_strip:
      return r.draw_tiled_polytriangle(h.rendition(), n, d.data());
    case Kind::colorized_strip:
      return r.draw_tiled_colorized_polytriangle(h.rendition(), n, d.data(), c, false);
    case Kind::gouraud_strip:
      return r.draw_tiled_gouraud_polytriangle(h.rendition(), n, d.data(), c);
    case Kind::polyline:
      return r.draw_tiled_polyline(h.rendition(), n, d.data());
    case Kind::colorized_polyline:
      return r.draw_tiled_colorized_polyline(h.rendition(), n, d.data(), c, false);
    case Kind::gouraud_polyline:
      return r.draw_tiled_gouraud_polyline(h.rendition(), n, d.data(), c);
  }
}

// Seeded primitives over the picture and a little beyond it; one of each
// kind has more than 64 points.
std::vector<Primitive> seeded_primitives(unsigned seed) {
  std::mt19937 random(seed);
  auto coordinate = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); };
  std::vector<Primitive> out;
  for (Kind kind : {Kind::flat_strip, Kind::colorized_strip, Kind::gouraud_strip, Kind::polyline,
                    Kind::colorized_polyline, Kind::gouraud_polyline})
    for (int count : {3, 5, 80}) {
      Primitive p{kind, {}, {}};
      for (int i = 0; i < count; ++i) {
        p.points.push_back({coordinate(-12, kPictureWidth + 12), coordinate(-12, kPictureHeight + 12),
                            coordinate(0, 60000)});
        p.colors.push_back({byte(coordinate(0, 255)), byte(coordinate(0, 255)), byte(coordinate(0, 255)),
                            byte(coordinate(60, 255))});
      }
      out.push_back(std::move(p));
    }
  return out;
}

std::vector<Primitive> of_kinds(const std::vector<Primitive>& all, std::initializer_list<Kind> kinds) {
  std::vector<Primitive> out;
  for (const Primitive& p : all)
    if (std::find(kinds.begin(), kinds.end(), p.kind) != kinds.end()) out.push_back(p);
  return out;
}

// The pictures of a tiled test: which kinds, in which colour, and how close
// a tile must come to the picture drawn whole. The 2DI clip path leaves
// clipped Gouraud channels within 1 of the unclipped ones, draws a polyline's
// last point twice where its segment crosses the clip, and is not exact for
// crossing Gouraud polylines: those are compared with the 2DI action below.
struct Tile_Case {
  const char* name;
  std::initializer_list<Kind> kinds;
  OT_RGB32 color;
  int tolerance;
};
const Tile_Case kTileCases[] = {
    {"strips", {Kind::flat_strip, Kind::colorized_strip}, kTranslucent, 0},
    {"gouraud_strips", {Kind::gouraud_strip}, kTranslucent, 1},
    {"polylines", {Kind::polyline, Kind::colorized_polyline}, {40, 200, 90, 255}, 0},
};

class Tiled_Mode : public ::testing::TestWithParam<Mode_Case> {};

// Every pixel and depth of every tile equals the picture drawn whole; with
// the translucent colour a pixel drawn twice or missed would differ.
TEST_P(Tiled_Mode, TilesEqualThePictureDrawnWhole) {
  const std::vector<Primitive> all = seeded_primitives(11);
  for (const Tile_Case& c : kTileCases) {
    SCOPED_TRACE(c.name);
    std::vector<Primitive> primitives = of_kinds(all, c.kinds);
    for (Primitive& p : primitives)
      for (OT_RGB32& color : p.colors) color.a = std::max(color.a, c.color.a);
    Renderer_Harness whole(GetParam(), kPictureWidth, kPictureHeight);
    whole.set_color(c.color, 9);
    for (const Primitive& p : primitives) draw_2di(whole, p);
    ASSERT_GT(whole.drawn().size(), 400u);

    int compared = 0;
    for (int oy = 0; oy < kPictureHeight; oy += kTile)
      for (int ox = 0; ox < kPictureWidth; ox += kTile) {
        Renderer_Harness tile(GetParam(), kTile, kTile, {ox, oy});
        enable_tiling(tile);
        tile.set_color(c.color, 9);
        tile.set_hard_clip(kPicture);  // beyond the window: cut to it on the copy
        for (const Primitive& p : primitives) draw_tiled(tile, p);
        ASSERT_EQ(tile.renderer().origin_x, ox);
        ASSERT_EQ(tile.renderer().origin_y, oy);
        ASSERT_EQ(tile.rendition()->device->hard_clip.right, kPicture.right);
        ASSERT_TRUE(matches_inside_clip(tile, whole, {ox, ox + kTile - 1, oy, oy + kTile - 1}, c.tolerance,
                                        &compared))
            << "tile " << ox << "," << oy;
      }
    EXPECT_EQ(compared, int(whole.drawn().size()));
  }
}

// Within the tiled limits a tiled call is the 2DI action of its kind on the
// list moved to the window, with the window at (0, 0) and the hard clip cut
// to it: every kind, exactly, one primitive at a time in every tile.
TEST_P(Tiled_Mode, InsideTheLimitsItIsTheMoved2DIAction) {
  for (const Primitive& p : seeded_primitives(23))
    for (int oy = 0; oy < kPictureHeight; oy += kTile)
      for (int ox = 0; ox < kPictureWidth; ox += kTile) {
        Renderer_Harness tiled(GetParam(), kTile, kTile, {ox, oy}), moved(GetParam(), kTile, kTile, {ox, oy});
        enable_tiling(tiled);
        tiled.set_hard_clip(kPicture);
        draw_tiled(tiled, p);

        enable_tiling(moved);
        moved.renderer().origin_x = moved.renderer().origin_y = 0;
        moved.set_hard_clip({0, kTile - 1, 0, kTile - 1});
        Primitive q = p;
        for (OT_DCI_Point& point : q.points) point = {point.x - ox, point.y - oy, point.z};
        draw_2di(moved, q);
        moved.renderer().origin_x = ox;
        moved.renderer().origin_y = oy;
        ASSERT_EQ(tiled.snapshot(), moved.snapshot())
            << "kind " << int(p.kind) << ", " << p.points.size() << " points, tile " << ox << "," << oy;
      }
}

// Far pictures: the window at about +-1e9 and primitives reaching beyond
// the 32-bit range land where the small picture puts them. Only flat kinds
// with edges whose cuts are whole numbers, so that the preclip is exact.
struct Far_Case {
  const char* name;
  Kind kind;
  std::vector<OT_Point_D> far;  // relative to the window origin
  Points near;                  // the same primitive within a small picture
};

const double kBeyond = 1e12;
const Far_Case kFarCases[] = {
    {"band_across",
     Kind::flat_strip,
     {{-kBeyond, 5, 100}, {kBeyond, 5, 100}, {-kBeyond, 30, 100}, {kBeyond, 30, 100}},
     {{-100, 5, 100}, {200, 5, 100}, {-100, 30, 100}, {200, 30, 100}}},
    {"strip_in_and_out",
     Kind::colorized_strip,
     {{2, 2, 7}, {20, 2, 7}, {2, 20, 7}, {20, 20, 7}, {2, kBeyond, 7}, {20, kBeyond, 7}},
     {{2, 2, 7}, {20, 2, 7}, {2, 20, 7}, {20, 20, 7}, {2, 200, 7}, {20, 200, 7}}},
    {"line_out_and_back",
     Kind::polyline,
     {{10, 10, 0}, {kBeyond, 10, 0}, {kBeyond, 30, 0}, {10, 30, 0}, {10, 12, 0}},
     {{10, 10, 0}, {100, 10, 0}, {100, 30, 0}, {10, 30, 0}, {10, 12, 0}}},
    {"line_in_between",
     Kind::polyline,
     {{-kBeyond, 20, 0},
      {10, 20, 0},
      {10, 40, 0},
      {kBeyond, 40, 0},
      {kBeyond, 44, 0},
      {20, 44, 0},
      {-kBeyond, 44, 0}},
     {{-100, 20, 0}, {10, 20, 0}, {10, 40, 0}, {100, 40, 0}, {100, 44, 0}, {20, 44, 0}, {-100, 44, 0}}},
    {"line_both_ends_out",
     Kind::colorized_polyline,
     {{-kBeyond, 7, 0}, {kBeyond, 7, 0}, {kBeyond, 40, 0}, {-kBeyond, 40, 0}},
     {{-100, 7, 0}, {100, 7, 0}, {100, 40, 0}, {-100, 40, 0}}},
    {"diagonal_out",
     Kind::polyline,
     {{3, 1, 0}, {3 + kBeyond, 1 + kBeyond, 0}, {3 + kBeyond, 1 - kBeyond, 0}, {50, -46, 0}, {50, 20, 0}},
     {{3, 1, 0}, {103, 101, 0}, {150, -146, 0}, {50, -46, 0}, {50, 20, 0}}},
};

struct Far_Origin {
  int x, y;
};
const Far_Origin kFarOrigins[] = {{1000000000, -1000000000}, {-1000000000, 1000000000}, {0, 0}};

TEST_P(Tiled_Mode, FarCoordinatesLandWhereTheSmallPictureDoes) {
  for (const Far_Case& c : kFarCases)
    for (const Far_Origin& o : kFarOrigins) {
      SCOPED_TRACE(::testing::Message() << c.name << " at " << o.x << "," << o.y);
      const std::vector<OT_RGB32> colors(c.near.size(), OT_RGB32{200, 30, 60, 170});
      Renderer_Harness near(GetParam(), kPictureWidth, kPictureHeight);
      near.set_color(kTranslucent, 9);
      draw_2di(near, {c.kind, c.near, colors});

      Renderer_Harness far(GetParam(), kPictureWidth, kPictureHeight, {o.x, o.y});
      enable_tiling(far);
      std::vector<OT_Point_D> moved;
      for (const OT_Point_D& p : c.far) moved.push_back({p.x + o.x, p.y + o.y, p.z});
      draw_tiled(far, {c.kind, {}, colors}, 0, 0, &moved);

      ASSERT_GT(near.drawn().size(), 20u);
      EXPECT_EQ(far.snapshot(), near.snapshot());
      EXPECT_EQ(far.renderer().origin_x, o.x);
    }
}

INSTANTIATE_TEST_SUITE_P(Modes, Tiled_Mode, ::testing::ValuesIn(kAllModes), mode_name);

// ---- What reaches the 2DI slots ---------------------------------------------

struct Recorded {
  Points points;
  std::vector<OT_RGB32> color_list;
  bool single;
  OT_Int_Rectangle clip;
  int origin_x, origin_y;
  std::vector<float> w;
  bool colors;
};
std::vector<Recorded> recorded;

void record(OT_Renderer_Data* object, const OT_Rendition& rendition, int count, const OT_DCI_Point* points,
            const float* w, bool colors) {
  const Software_Z_Buffer& r = renderer_of(object);
  recorded.push_back({Points(points, points + count),
                      {},
                      false,
                      rendition->device->hard_clip,
                      r.origin_x,
                      r.origin_y,
                      w ? std::vector<float>(w, w + count) : std::vector<float>{},
                      colors});
}
void record_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                     const OT_DCI_Point* points) {
  record(object, rendition, count, points, nullptr, false);
}
void record_gouraud_polyline(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                             const OT_DCI_Point* points, const OT_RGB32* colors) {
  record(object, rendition, count, points, nullptr, colors != nullptr);
}
void record_textured(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                     const OT_DCI_Point* points, const OT_RGB32*, const OT_Parameter*, int, const float* w,
                     const OT_Vector*) {
  record(object, rendition, count, points, w, false);
}

void record_colorized_strip(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                            const OT_DCI_Point* points, const OT_RGB32* colors, bool single) {
  record(object, rendition, count, points, nullptr, true);
  recorded.back().color_list.assign(colors, colors + 1);
  recorded.back().single = single;
}
void record_gouraud_strip(OT_Renderer_Data* object, const OT_Rendition& rendition, int count,
                          const OT_DCI_Point* points, const OT_RGB32* colors) {
  record(object, rendition, count, points, nullptr, true);
  recorded.back().color_list.assign(colors, colors + count);
}

class Tiled_Calls : public ::testing::Test {
 protected:
  Tiled_Calls() : h(kZRgb32, 32, 24, {1000, 2000}) {
    enable_tiling(h);
    h.renderer().draw_2di_polyline.function = record_polyline;
    h.renderer().draw_2di_gouraud_polyline.function = record_gouraud_polyline;
    h.renderer().draw_2di_textured_polytriangle.function = record_textured;
    h.renderer().draw_2di_colorized_polytriangle.function = record_colorized_strip;
    h.renderer().draw_2di_gouraud_polytriangle.function = record_gouraud_strip;
    recorded.clear();
  }
  Renderer_Harness h;
};

// Rounded first, then moved: 1000.5 is 1001, -0.5 rounds to 0. The 2DI action
// sees the window at (0, 0) and a hard clip cut to the window; afterwards the
// origin and the caller's rendition are as they were.
TEST_F(Tiled_Calls, InsidePolylineIsOneCallRoundedThenMoved) {
  h.set_hard_clip({990, 1040, 2005, 3000});
  const OT_Point_D points[] = {{1000.5, 2000.4, 2.5}, {999.5, 1999.5, -0.5}, {1031.49, 2023.5, 7}};
  h.renderer().draw_tiled_polyline(h.rendition(), 3, points);
  ASSERT_EQ(recorded.size(), 1u);
  const Recorded& call = recorded[0];
  EXPECT_EQ(call.points[0].x, 1);
  EXPECT_EQ(call.points[0].y, 0);
  EXPECT_EQ(call.points[0].z, 3);
  EXPECT_EQ(call.points[1].x, 0);
  EXPECT_EQ(call.points[1].y, 0);
  EXPECT_EQ(call.points[1].z, 0);
  EXPECT_EQ(call.points[2].x, 31);
  EXPECT_EQ(call.points[2].y, 24);
  EXPECT_EQ(call.origin_x, 0);
  EXPECT_EQ(call.origin_y, 0);
  EXPECT_EQ(call.clip.left, 0);
  EXPECT_EQ(call.clip.right, 31);
  EXPECT_EQ(call.clip.bottom, 5);
  EXPECT_EQ(call.clip.top, 23);
  EXPECT_EQ(h.renderer().origin_x, 1000);
  EXPECT_EQ(h.renderer().origin_y, 2000);
  EXPECT_EQ(h.rendition()->device->hard_clip.left, 990);
  EXPECT_EQ(h.rendition()->device->hard_clip.top, 3000);
}

// The tiled limits are the origin +- 2^30, inclusive: a polyline to the
// last point within them is one call; one step beyond is cut there.
TEST_F(Tiled_Calls, TiledLimitsAreInclusive) {
  const double reach = 1073741824.0;
  const OT_Point_D within[] = {{1000, 2000, 0}, {1000 + reach, 2000 - reach, 0}};
  h.renderer().draw_tiled_polyline(h.rendition(), 2, within);
  const OT_Point_D beyond[] = {{1000, 2000, 0}, {1000 + reach + 2, 2000, 0}};
  h.renderer().draw_tiled_polyline(h.rendition(), 2, beyond);
  ASSERT_EQ(recorded.size(), 2u);
  EXPECT_EQ(recorded[0].points[1].x, 1073741824);
  EXPECT_EQ(recorded[0].points[1].y, -1073741824);
  EXPECT_EQ(recorded[1].points[1].x, 1073741824);
  EXPECT_EQ(recorded[1].points[1].y, 0);
}

// Wholly beyond one side: no call. Both ends beyond on opposite sides: one
// piece of two points. More than 64 points go through the heap buffers, and
// the Gouraud pieces carry colours.
TEST_F(Tiled_Calls, OutsideSegmentsAndLongPolylines) {
  const OT_Point_D beyond_one_side[] = {{-5e11, 2005, 0}, {-4e11, 1e11, 0}, {-6e11, -1e11, 0}};
  h.renderer().draw_tiled_polyline(h.rendition(), 3, beyond_one_side);
  EXPECT_TRUE(recorded.empty());

  std::vector<OT_Point_D> zigzag;
  std::vector<OT_RGB32> colors;
  for (int i = 0; i < 90; ++i) {
    zigzag.push_back({i % 2 ? 1e11 : -1e11, 2000.0 + i, 0});
    colors.push_back({byte(i), 0, 0, 255});
  }
  h.renderer().draw_tiled_gouraud_polyline(h.rendition(), 90, zigzag.data(), colors.data());
  ASSERT_EQ(recorded.size(), 89u);
  for (const Recorded& piece : recorded) {
    ASSERT_EQ(piece.points.size(), 2u);
    EXPECT_TRUE(piece.colors);
    EXPECT_EQ(std::abs(std::int64_t(piece.points[0].x) - piece.points[1].x), 2 * 1073741824LL);
  }
}

// A textured strip without w and with texture flags gets the w of each point
// back from the device matrix: here w = 1 + z / 2 of the source point. With
// the flags clear, or with the whole strip inside, none is made.
TEST_F(Tiled_Calls, MissingWIsRecoveredFromTheMatrix) {
  auto* matrix = new OT_Matrix_Data;
  matrix->m[2][3] = 0.5;
  h.rendition().writable_device()->matrix = OT_Matrix(matrix);
  // A device z of d comes from a source z of 2d / (2 - d), whose w is
  // 2 / (2 - d): 2 for d = 1, 1 for d = 0. The last point crosses.
  const std::vector<OT_Point_D> device = {{1002, 2004, 1}, {1010, 2002, 1}, {1004, 2020, 0}, {3e11, 2e11, 0}};
  h.rendition().writable_raster()->texture_flags = 1;
  h.renderer().draw_tiled_textured_polytriangle(h.rendition(), 4, device.data(), nullptr, nullptr, 1, nullptr,
                                                nullptr);
  ASSERT_GE(recorded.size(), 2u);
  ASSERT_EQ(recorded[0].w.size(), 3u);
  EXPECT_NEAR(recorded[0].w[0], 2.0f, 1e-5);
  EXPECT_NEAR(recorded[0].w[1], 2.0f, 1e-5);
  EXPECT_NEAR(recorded[0].w[2], 1.0f, 1e-5);
  EXPECT_FALSE(recorded[1].w.empty());

  // The crossing triangle first: the run then takes w from its first point.
  recorded.clear();
  const std::vector<OT_Point_D> later = {{3e11, 2e11, 0}, {1002, 2004, 1}, {1010, 2002, 1}, {1004, 2020, 0}};
  h.renderer().draw_tiled_textured_polytriangle(h.rendition(), 4, later.data(), nullptr, nullptr, 1, nullptr,
                                                nullptr);
  ASSERT_EQ(recorded.size(), 2u);
  ASSERT_EQ(recorded[1].w.size(), 3u);
  EXPECT_NEAR(recorded[1].w[0], 2.0f, 1e-5);
  EXPECT_NEAR(recorded[1].w[2], 1.0f, 1e-5);

  recorded.clear();
  h.rendition().writable_raster()->texture_flags = 0;
  h.renderer().draw_tiled_textured_polytriangle(h.rendition(), 4, device.data(), nullptr, nullptr, 1, nullptr,
                                                nullptr);
  ASSERT_GE(recorded.size(), 2u);
  EXPECT_TRUE(recorded[0].w.empty());

  recorded.clear();
  h.rendition().writable_raster()->texture_flags = 1;
  h.renderer().draw_tiled_textured_polytriangle(h.rendition(), 3, device.data(), nullptr, nullptr, 1, nullptr,
                                                nullptr);
  ASSERT_EQ(recorded.size(), 1u);
  EXPECT_TRUE(recorded[0].w.empty());
}

// Each list steps one entry a triangle: a crossing triangle takes its own
// colour alone (single), a run its first triangle's colour, or the caller's
// one colour with `single`; a Gouraud run the colours of its points.
TEST_F(Tiled_Calls, ListsStepByTriangle) {
  const OT_Point_D strip[] = {
      {1e12, 2001, 0}, {1001, 2002, 0}, {1002, 2010, 0}, {1010, 2003, 0}, {1012, 2012, 0}};
  const OT_RGB32 colors[] = {{1, 0, 0, 255}, {2, 0, 0, 255}, {3, 0, 0, 255}, {4, 0, 0, 255}, {5, 0, 0, 255}};
  for (bool single : {false, true}) {
    recorded.clear();
    h.renderer().draw_tiled_colorized_polytriangle(h.rendition(), 5, strip, colors, single);
    ASSERT_EQ(recorded.size(), 2u);
    EXPECT_EQ(recorded[0].color_list[0].b, 1);
    EXPECT_TRUE(recorded[0].single);
    EXPECT_EQ(recorded[1].points.size(), 4u);
    EXPECT_EQ(recorded[1].points[0].x, 1);
    EXPECT_EQ(recorded[1].color_list[0].b, single ? 1 : 2);
    EXPECT_EQ(recorded[1].single, single);
  }
  recorded.clear();
  h.renderer().draw_tiled_gouraud_polytriangle(h.rendition(), 5, strip, colors);
  ASSERT_EQ(recorded.size(), 2u);
  ASSERT_EQ(recorded[1].color_list.size(), 4u);
  for (int k = 0; k < 4; ++k) EXPECT_EQ(recorded[1].color_list[k].b, k + 2);
}

}  // namespace
}  // namespace tarn::testing
