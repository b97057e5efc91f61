// Complex clip masks: the host's rasterizer of a contour set into bits, the
// cache of the last four masks, the bit cursor, and what a mask does to the
// pixels of triangles, lines, dots and markers.
#include <vector>

#include "pixel/mask.h"
#include "tests/tarn_test_support.h"

namespace tarn::testing {
namespace {

using Pixels = std::set<std::pair<int, int>>;

// A closed polygon in device coordinates.
OT_Contour_Set contour(std::vector<OT_Point> points) {
  return OT_Contour_Set(static_cast<int>(points.size()), points.data(), true);
}

// The rectangle [left, right) x [bottom, top) of pixel positions.
OT_Contour_Set box(float left, float bottom, float right, float top) {
  return contour({{left, bottom, 0}, {right, bottom, 0}, {right, top, 0}, {left, top, 0}});
}

// The bit of window position (x, y), read straight from the mask's rows.
bool bit_at(const Frame_Buffer_Mask& mask, int x, int y) {
  return (mask.image->device_rows[y][x >> 3] & (128 >> (x & 7))) != 0;
}

// Window positions whose bit is clear.
Pixels clear_bits(const Frame_Buffer_Mask& mask, int width, int height) {
  Pixels out;
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x)
      if (!bit_at(mask, x, y)) out.insert({x, y});
  return out;
}

void use_mask(Renderer_Harness& h) {
  OT_Option* option = h.renderer().requested_options.find(L"Use Mask");
  ASSERT_NE(option, nullptr);
  option->set(OT_Option_Value::of_bool(true));
  h.renderer().update_current_options();
  h.renderer().establish();
  ASSERT_TRUE(h.renderer().mask_cache);
  h.clear();
}

void set_clip(Renderer_Harness& h, const OT_Contour_Set& clip) { h.rendition().writable_device()->complex_clip = clip; }

bool in_force(Renderer_Harness& h) { return mask_in_force(h.renderer(), h.rendition()); }

// ---- The host's rasterizer ---------------------------------------------------

TEST(Mask_Raster, RectangleClearsExactlyItsHalfOpenPixels) {
  Frame_Buffer_Mask mask;
  mask.establish_configuration(40, 30, 0, 0);
  const OT_Contour_Set clip = box(10, 5, 20, 12);
  mask.clear_and_rasterize_mask(clip);
  EXPECT_EQ(mask.key, clip->serial);
  // Columns 10..19 and rows 5..11: the right and top edges are left out.
  EXPECT_EQ(clear_bits(mask, 40, 30), rows_of({{5, {10, 19}},
                                               {6, {10, 19}},
                                               {7, {10, 19}},
                                               {8, {10, 19}},
                                               {9, {10, 19}},
                                               {10, {10, 19}},
                                               {11, {10, 19}}}));
}

TEST(Mask_Raster, FractionalEdgesSampleIntegerPositions) {
  Frame_Buffer_Mask mask;
  mask.establish_configuration(40, 30, 0, 0);
  mask.clear_and_rasterize_mask(box(10.5f, 5.5f, 14.5f, 8.5f));
  EXPECT_EQ(clear_bits(mask, 40, 30), rows_of({{6, {11, 14}}, {7, {11, 14}}, {8, {11, 14}}}));
  // An edge just short of an integer doesn't reach it.
  mask.clear_and_rasterize_mask(box(9.99f, 5.0f, 12.01f, 6.0f));
  EXPECT_EQ(clear_bits(mask, 40, 30), rows_of({{5, {10, 12}}}));
}

TEST(Mask_Raster, ConcaveContourFollowsItsNotch) {
  Frame_Buffer_Mask mask;
  mask.establish_configuration(32, 32, 0, 0);
  // An L: the lower band 2..21 wide, the upper part 2..9 only.
  mask.clear_and_rasterize_mask(contour({{2, 1, 0}, {22, 1, 0}, {22, 6, 0}, {10, 6, 0}, {10, 12, 0}, {2, 12, 0}}));
  std::vector<std::pair<int, std::pair<int, int>>> rows;
  for (int y = 1; y < 6; ++y) rows.push_back({y, {2, 21}});
  for (int y = 6; y < 12; ++y) rows.push_back({y, {2, 9}});
  EXPECT_EQ(clear_bits(mask, 32, 32), rows_of(rows));
}

TEST(Mask_Raster, EvenOddRuleMakesANestedContourAHole) {
  auto* data = new OT_Contour_Set_Data;
  data->points = {{0, 0, 0}, {20, 0, 0}, {20, 20, 0}, {0, 20, 0}, {5, 5, 0}, {15, 5, 0}, {15, 15, 0}, {5, 15, 0}};
  data->contour_starts = {0, 4};
  const OT_Contour_Set clip(data);
  Frame_Buffer_Mask mask;
  mask.establish_configuration(24, 24, 0, 0);
  mask.clear_and_rasterize_mask(clip);
  for (int y = 0; y < 24; ++y)
    for (int x = 0; x < 24; ++x) {
      const bool outer = x < 20 && y < 20;
      const bool hole = x >= 5 && x < 15 && y >= 5 && y < 15;
      ASSERT_EQ(bit_at(mask, x, y), !(outer && !hole)) << x << "," << y;
    }
}

TEST(Mask_Raster, BitsAreWindowRelativeAndTheRegionIsCutToTheWindow) {
  Frame_Buffer_Mask mask;
  // A window of 13 columns (not a whole number of bytes) at device (100, 200).
  mask.establish_configuration(13, 10, 100, 200);
  mask.clear_and_rasterize_mask(box(90, 195, 103, 202));
  EXPECT_EQ(clear_bits(mask, 13, 10), rows_of({{0, {0, 2}}, {1, {0, 2}}}));
  mask.clear_and_rasterize_mask(box(110, 208, 130, 230));
  EXPECT_EQ(clear_bits(mask, 13, 10), rows_of({{8, {10, 12}}, {9, {10, 12}}}));
}

TEST(Mask_Raster, RasterizingAgainStartsFromAllSet) {
  Frame_Buffer_Mask mask;
  mask.establish_configuration(16, 8, 0, 0);
  mask.clear_and_rasterize_mask(box(0, 0, 16, 8));
  EXPECT_EQ(clear_bits(mask, 16, 8).size(), 128u);
  const OT_Contour_Set second = box(4, 2, 6, 3);
  mask.clear_and_rasterize_mask(second);
  EXPECT_EQ(clear_bits(mask, 16, 8), (Pixels{{4, 2}, {5, 2}}));
  EXPECT_EQ(mask.key, second->serial);
  // No region at all: everything is masked away, and the key is 0.
  mask.clear_and_rasterize_mask(OT_Contour_Set());
  EXPECT_TRUE(clear_bits(mask, 16, 8).empty());
  EXPECT_EQ(mask.key, 0u);
}

// ---- The cursor ----------------------------------------------------------------

TEST(Mask_Cursor, BackOneFromBitZeroIsBitSevenOfTheByteBefore) {
  byte row[8] = {};
  Mask_Cursor cursor{row + 4, 0};
  advance(cursor, -1);
  EXPECT_EQ(cursor.address, row + 3);
  EXPECT_EQ(cursor.bit, 7);
}

TEST(Mask_Cursor, BitFivePlusTenIsBitSevenOfTheNextByte) {
  byte row[8] = {};
  Mask_Cursor cursor{row + 2, 5};
  advance(cursor, 10);
  EXPECT_EQ(cursor.address, row + 3);
  EXPECT_EQ(cursor.bit, 7);
}

TEST(Mask_Cursor, AnyMoveLandsWhereTheBitCountSays) {
  constexpr std::int64_t kBytes = 1 << 19;
  std::vector<byte> bits(kBytes);
  const byte* base = bits.data();
  const std::int64_t start_byte = kBytes / 2;
  std::vector<std::int32_t> moves;
  for (std::int32_t n = -40; n <= 40; ++n) moves.push_back(n);
  for (std::int32_t n : {255, 256, 257, 1000, 65535, 65536, 1000003, 2000000})
    for (std::int32_t sign : {1, -1}) moves.push_back(sign * n);
  for (int bit = 0; bit < 8; ++bit)
    for (std::int32_t n : moves) {
      Mask_Cursor cursor{base + start_byte, bit};
      advance(cursor, n);
      const std::int64_t target = start_byte * 8 + bit + n;
      ASSERT_EQ(cursor.address - base, target / 8) << "bit " << bit << " by " << n;
      ASSERT_EQ(cursor.bit, target % 8) << "bit " << bit << " by " << n;
    }
}

TEST(Mask_Cursor, BitNumberCountsFromTheHighBit) {
  for (int set = 0; set < 8; ++set) {
    const byte value = static_cast<byte>(128 >> set);
    for (int bit = 0; bit < 8; ++bit) EXPECT_EQ(mask_bit(Mask_Cursor{&value, bit}), bit == set) << set << "," << bit;
  }
  const byte all_but_one = static_cast<byte>(~(128 >> 6));
  for (int bit = 0; bit < 8; ++bit) EXPECT_EQ(mask_bit(Mask_Cursor{&all_but_one, bit}), bit != 6);
}

TEST(Mask_Cursor, RowCursorAndMaskedBitReadTheRasterizedMask) {
  Frame_Buffer_Mask mask;
  mask.establish_configuration(30, 20, 0, 0);
  mask.clear_and_rasterize_mask(box(9, 3, 17, 11));
  for (int y = 0; y < 20; ++y) {
    const Mask_Cursor start = row_cursor(mask, y);
    EXPECT_EQ(start.address, mask.image->device_rows[y]);
    EXPECT_EQ(start.bit, 0);
    for (int x = 0; x < 30; ++x) {
      const bool outside = !(x >= 9 && x < 17 && y >= 3 && y < 11);
      ASSERT_EQ(masked_bit(mask, x, y), outside) << x << "," << y;
    }
  }
}

// ---- The cache -------------------------------------------------------------------

class Mask_Cache : public ::testing::Test {
 protected:
  Mask_Cache() : h(kAllModes[1]) { use_mask(h); }  // rgb32

  Mask_Cache_Data& cache() { return *h.renderer().mask_cache; }

  // Makes clip the rendition's, asks for the mask and hands back the head.
  Frame_Buffer_Mask* ask(const OT_Contour_Set& clip) {
    set_clip(h, clip);
    EXPECT_TRUE(in_force(h));
    return cache().head;
  }

  // The list from head along next, checked against previous and tail.
  std::vector<Frame_Buffer_Mask*> order() {
    std::vector<Frame_Buffer_Mask*> out;
    Frame_Buffer_Mask* before = nullptr;
    for (Frame_Buffer_Mask* m = cache().head; m; m = m->next) {
      EXPECT_EQ(m->previous, before);
      out.push_back(m);
      before = m;
      if (out.size() > 8) break;
    }
    EXPECT_EQ(cache().tail, before);
    return out;
  }

  Renderer_Harness h;
  // Five distinct regions, each a band of its own rows.
  OT_Contour_Set a = box(0, 0, 10, 8), b = box(0, 8, 10, 16), c = box(0, 16, 10, 24), d = box(0, 24, 10, 32),
                 e = box(0, 32, 10, 40);
};

TEST_F(Mask_Cache, FirstClipMakesOneMaskOfItsRegion) {
  EXPECT_EQ(cache().limit, 4);
  Frame_Buffer_Mask* mask = ask(a);
  ASSERT_NE(mask, nullptr);
  EXPECT_EQ(cache().mask_count, 1);
  EXPECT_EQ(cache().tail, mask);
  EXPECT_EQ(mask->key, a->serial);
  EXPECT_FALSE(masked_bit(*mask, 0, 0));
  EXPECT_FALSE(masked_bit(*mask, 9, 7));
  EXPECT_TRUE(masked_bit(*mask, 10, 7));
  EXPECT_TRUE(masked_bit(*mask, 9, 8));
}

TEST_F(Mask_Cache, FifthClipRebuildsTheLeastRecentlyUsedMaskInPlace) {
  Frame_Buffer_Mask* ma = ask(a);
  Frame_Buffer_Mask* mb = ask(b);
  Frame_Buffer_Mask* mc = ask(c);
  Frame_Buffer_Mask* md = ask(d);
  EXPECT_EQ(cache().mask_count, 4);
  EXPECT_EQ(order(), (std::vector<Frame_Buffer_Mask*>{md, mc, mb, ma}));

  Frame_Buffer_Mask* me = ask(e);
  EXPECT_EQ(me, ma);  // the mask of A, reused
  EXPECT_EQ(cache().mask_count, 4);
  EXPECT_EQ(order(), (std::vector<Frame_Buffer_Mask*>{ma, md, mc, mb}));
  EXPECT_EQ(me->key, e->serial);
  // Its bits are E's now.
  EXPECT_TRUE(masked_bit(*me, 5, 4));
  EXPECT_FALSE(masked_bit(*me, 5, 35));
  // B, C, D keep theirs.
  EXPECT_EQ(mb->key, b->serial);
  EXPECT_EQ(mc->key, c->serial);
  EXPECT_EQ(md->key, d->serial);

  // A again: it is the one that is missing now, and B is the oldest.
  Frame_Buffer_Mask* again = ask(a);
  EXPECT_EQ(again, mb);
  EXPECT_EQ(again->key, a->serial);
  EXPECT_EQ(order(), (std::vector<Frame_Buffer_Mask*>{mb, ma, md, mc}));
  EXPECT_FALSE(masked_bit(*again, 5, 4));
  EXPECT_TRUE(masked_bit(*again, 5, 12));
}

TEST_F(Mask_Cache, OlderClipMovesToTheHeadWithoutBeingRasterizedAgain) {
  Frame_Buffer_Mask* ma = ask(a);
  Frame_Buffer_Mask* mb = ask(b);
  ASSERT_NE(ma, mb);
  // A mark that rasterizing would wipe out: pixel (3, 3) lies inside A.
  ASSERT_FALSE(masked_bit(*ma, 3, 3));
  ma->image->device_rows[3][0] |= 128 >> 3;

  EXPECT_EQ(ask(a), ma);
  EXPECT_EQ(ma->key, a->serial);
  EXPECT_EQ(cache().mask_count, 2);
  EXPECT_EQ(order(), (std::vector<Frame_Buffer_Mask*>{ma, mb}));
  EXPECT_TRUE(masked_bit(*ma, 3, 3));
  EXPECT_EQ(mb->key, b->serial);
}

TEST_F(Mask_Cache, MiddleEntryIsUnlinkedFromBothNeighbours) {
  Frame_Buffer_Mask* ma = ask(a);
  Frame_Buffer_Mask* mb = ask(b);
  Frame_Buffer_Mask* mc = ask(c);
  EXPECT_EQ(ask(b), mb);
  EXPECT_EQ(order(), (std::vector<Frame_Buffer_Mask*>{mb, mc, ma}));
  EXPECT_EQ(ask(a), ma);
  EXPECT_EQ(order(), (std::vector<Frame_Buffer_Mask*>{ma, mb, mc}));
  EXPECT_EQ(cache().mask_count, 3);
}

TEST_F(Mask_Cache, SameClipTwiceKeepsTheListAsItIs) {
  Frame_Buffer_Mask* ma = ask(a);
  Frame_Buffer_Mask* mb = ask(b);
  ma->image->device_rows[3][0] |= 128 >> 3;
  mb->image->device_rows[10][0] |= 128 >> 2;
  EXPECT_EQ(ask(b), mb);
  EXPECT_EQ(ask(b), mb);
  EXPECT_EQ(order(), (std::vector<Frame_Buffer_Mask*>{mb, ma}));
  EXPECT_EQ(cache().mask_count, 2);
  EXPECT_TRUE(masked_bit(*mb, 2, 10));
  EXPECT_TRUE(masked_bit(*ma, 3, 3));
}

TEST_F(Mask_Cache, ChangedClipIsANewKey) {
  Frame_Buffer_Mask* ma = ask(a);
  const std::uint32_t old_serial = a->serial;
  // The clip, changed: its serial is renewed, so it's another mask.
  OT_Contour_Set_Data* changed = make_unique(a);
  ASSERT_EQ(changed, a.get());  // a private copy: the rendition holds the old one
  ASSERT_NE(a->serial, old_serial);
  changed->points[1].x = 20;
  changed->points[2].x = 20;
  Frame_Buffer_Mask* again = ask(a);
  EXPECT_NE(again, ma);
  EXPECT_EQ(cache().mask_count, 2);
  EXPECT_EQ(again->key, a->serial);
  EXPECT_FALSE(masked_bit(*again, 15, 4));
  EXPECT_TRUE(masked_bit(*ma, 15, 4));
}

TEST_F(Mask_Cache, NoComplexClipMeansNoMask) {
  EXPECT_FALSE(in_force(h));
  EXPECT_EQ(cache().head, nullptr);
  EXPECT_EQ(cache().mask_count, 0);
}

TEST_F(Mask_Cache, NegativeExtentUsesTheShiftedClipAndItsSerial) {
  h.rendition().writable_device()->extent = {-10, 53, 0, 47};
  Frame_Buffer_Mask* mask = ask(a);
  const OT_Contour_Set& shifted = h.rendition().shifted_complex_clip();
  ASSERT_TRUE(shifted);
  ASSERT_NE(shifted->serial, a->serial);
  EXPECT_EQ(mask->key, shifted->serial);
  // A's columns 0..9 moved right by 10.
  EXPECT_TRUE(masked_bit(*mask, 9, 4));
  EXPECT_FALSE(masked_bit(*mask, 10, 4));
  EXPECT_FALSE(masked_bit(*mask, 19, 4));
  EXPECT_TRUE(masked_bit(*mask, 20, 4));
  // Asked again, the shifted clip's key is found at the head.
  EXPECT_EQ(ask(a), mask);
  EXPECT_EQ(cache().mask_count, 1);

  // A negative bottom shifts rows.
  h.rendition().writable_device()->extent = {0, 63, -5, 42};
  Frame_Buffer_Mask* down = ask(a);
  EXPECT_EQ(down->key, h.rendition().shifted_complex_clip()->serial);
  EXPECT_EQ(cache().mask_count, 2);
  EXPECT_TRUE(masked_bit(*down, 3, 4));
  EXPECT_FALSE(masked_bit(*down, 3, 5));
  EXPECT_FALSE(masked_bit(*down, 3, 12));
  EXPECT_TRUE(masked_bit(*down, 3, 13));

  // An extent at zero uses the clip itself.
  h.rendition().writable_device()->extent = {0, 63, 0, 47};
  EXPECT_EQ(ask(a)->key, a->serial);
}

TEST_F(Mask_Cache, EachEstablishEmptiesTheCache) {
  ask(a);
  ask(b);
  EXPECT_EQ(cache().mask_count, 2);
  Mask_Cache_Data* const same = h.renderer().mask_cache.get();
  h.renderer().establish();
  ASSERT_EQ(h.renderer().mask_cache.get(), same);
  EXPECT_EQ(cache().mask_count, 0);
  EXPECT_EQ(cache().head, nullptr);
  EXPECT_EQ(cache().tail, nullptr);
  Frame_Buffer_Mask* mask = ask(b);
  EXPECT_EQ(cache().mask_count, 1);
  EXPECT_EQ(mask->key, b->serial);
}

TEST(Mask_Option, UseMaskOffMeansNoMaskWhateverTheRenditionSays) {
  for (const Mode_Case& mode : kAllModes) {
    Renderer_Harness h(mode);
    set_clip(h, box(0, 0, 4, 4));
    EXPECT_FALSE(h.renderer().mask_cache) << mode.name;
    EXPECT_FALSE(in_force(h)) << mode.name;
    // The primitive draws as if there were only the rectangle.
    h.draw_dci({{0, 0, 10}, {40, 0, 10}, {0, 30, 10}});
    Renderer_Harness plain(mode);
    plain.draw_dci({{0, 0, 10}, {40, 0, 10}, {0, 30, 10}});
    EXPECT_EQ(h.snapshot(), plain.snapshot()) << mode.name;
  }
}

// ---- What a mask does to the pixels ------------------------------------------

class Masked_Drawing : public ::testing::TestWithParam<Mode_Case> {
 protected:
  // The RGB32 alpha depth mode draws triangles through the mask.
  bool triangles_masked() const { return !(GetParam().alpha && GetParam().depth()); }
};

void draw_line(Renderer_Harness& h, std::vector<OT_DCI_Point> points) {
  h.renderer().draw_dci_polyline(h.rendition(), static_cast<int>(points.size()), points.data());
}
void draw_clipped_line(Renderer_Harness& h, std::vector<OT_DCI_Point> points) {
  h.renderer().draw_2di_polyline(h.rendition(), static_cast<int>(points.size()), points.data());
}

// Triangles and lines, inside the window and crossing a smaller hard clip.
void draw_everything(Renderer_Harness& h) {
  h.draw_dci({{2, 1, 100}, {50, 4, 200}, {8, 40, 300}, {60, 44, 400}});
  h.draw_dc({{30.4f, 2.2f, 50}, {62.5f, 20.0f, 60}, {40.0f, 46.0f, 70}});
  // Lines at one depth: behind a mask the final pixel takes the walked depth.
  draw_line(h, {{1, 46, 30}, {63, 2, 30}, {20, 30, 30}, {5, 5, 30}});
  h.set_hard_clip({6, 57, 4, 41});
  h.draw_2di({{-30, 10, 150}, {80, 20, 150}, {30, 70, 150}});
  draw_clipped_line(h, {{-20, 0, 10}, {90, 47, 10}, {10, 60, 10}});
  h.set_hard_clip({0, 63, 0, 47});
}

void expect_same_images(const Renderer_Harness& a, const Renderer_Harness& b) {
  EXPECT_EQ(a.snapshot(), b.snapshot());
  if (!a.mode().depth()) return;
  for (int y = 0; y < 48; ++y)
    for (int x = 0; x < 64; ++x) ASSERT_EQ(a.depth(x, y), b.depth(x, y)) << x << "," << y;
}

TEST_P(Masked_Drawing, ClearMaskDrawsWhatThePlainFillersDraw) {
  Renderer_Harness masked(GetParam()), plain(GetParam());
  use_mask(masked);
  set_clip(masked, box(-5, -5, 100, 100));
  draw_everything(masked);
  draw_everything(plain);
  ASSERT_EQ(masked.renderer().mask_cache->mask_count, 1);  // the masked paths ran
  expect_same_images(masked, plain);
}

// The region: an L of two rectangles, in device coordinates.
OT_Contour_Set l_region() { return contour({{10, 6, 0}, {50, 6, 0}, {50, 20, 0}, {24, 20, 0}, {24, 38, 0}, {10, 38, 0}}); }
bool in_l_region(int x, int y) {
  return (y >= 6 && y < 20 && x >= 10 && x < 50) || (y >= 20 && y < 38 && x >= 10 && x < 24);
}

// Colour and depth: inside the region as drawn without a mask, outside as
// cleared.
void expect_region_of(const Renderer_Harness& masked, const Renderer_Harness& plain) {
  for (int y = 0; y < 48; ++y)
    for (int x = 0; x < 64; ++x) {
      const bool in = in_l_region(x, y);
      ASSERT_EQ(masked.pixel(x, y), in ? plain.pixel(x, y) : masked.clear_value()) << x << "," << y;
      if (masked.mode().depth()) {
        ASSERT_EQ(masked.depth(x, y), in ? plain.depth(x, y) : 0xFFFF) << x << "," << y;
      }
    }
}

TEST_P(Masked_Drawing, RegionHidesTrianglePixelsOutsideIt) {
  Renderer_Harness masked(GetParam()), plain(GetParam());
  use_mask(masked);
  set_clip(masked, l_region());
  const std::vector<OT_DCI_Point> strip{{0, 0, 500}, {63, 0, 600}, {0, 47, 700}, {63, 47, 800}};
  masked.draw_dci(strip);
  plain.draw_dci(strip);
  ASSERT_EQ(plain.drawn().size(), 64u * 48u - 64u - 47u);  // the plain strip covers nearly all
  if (triangles_masked())
    expect_region_of(masked, plain);
  else
    expect_same_images(masked, plain);
}

TEST_P(Masked_Drawing, RegionHidesPixelsOfCrossingTriangles) {
  Renderer_Harness masked(GetParam()), plain(GetParam());
  use_mask(masked);
  set_clip(masked, l_region());
  for (Renderer_Harness* h : {&masked, &plain}) {
    h->set_hard_clip({12, 45, 8, 33});
    h->draw_2di({{-40, -10, 300}, {120, 0, 300}, {-20, 90, 300}, {100, 80, 300}});
  }
  ASSERT_EQ(plain.drawn().size(), 34u * 26u);
  if (triangles_masked())
    expect_region_of(masked, plain);
  else
    expect_same_images(masked, plain);
}

TEST_P(Masked_Drawing, TranslucentTrianglesLeaveMaskedPixelsAlone) {
  Renderer_Harness masked(GetParam()), plain(GetParam());
  use_mask(masked);
  set_clip(masked, l_region());
  for (Renderer_Harness* h : {&masked, &plain}) {
    h->rendition().writable_colors()->color = OT_RGB32{200, 100, 50, 128};
    h->draw_dci({{0, 0, 10}, {63, 0, 10}, {0, 47, 10}, {63, 47, 10}});
  }
  if (triangles_masked())
    expect_region_of(masked, plain);
  else
    expect_same_images(masked, plain);
}

TEST_P(Masked_Drawing, RegionHidesLinePixelsOutsideIt) {
  Renderer_Harness masked(GetParam()), plain(GetParam());
  use_mask(masked);
  set_clip(masked, l_region());
  // A fan of lines through the region, crossing its notch and its edges.
  auto fan = [](Renderer_Harness& h) {
    for (int end = 0; end < 64; end += 3) {
      draw_line(h, {{30, 24, 100}, {end, 0, 100}});
      draw_line(h, {{30, 24, 100}, {63 - end, 47, 100}});
    }
    draw_line(h, {{0, 10, 100}, {63, 10, 100}, {20, 0, 100}, {20, 47, 100}});
  };
  fan(masked);
  fan(plain);
  ASSERT_GT(plain.drawn().size(), 500u);
  expect_region_of(masked, plain);
}

TEST_P(Masked_Drawing, RegionHidesPixelsOfClippedLinesOutsideIt) {
  Renderer_Harness masked(GetParam()), plain(GetParam());
  use_mask(masked);
  set_clip(masked, l_region());
  auto lines = [](Renderer_Harness& h) {
    h.set_hard_clip({12, 45, 8, 33});
    for (int end = -30; end < 100; end += 7) {
      draw_clipped_line(h, {{16, 25, 100}, {end, -20, 100}});
      draw_clipped_line(h, {{end, 70, 100}, {16, 25, 100}});
    }
    draw_clipped_line(h, {{-50, 15, 100}, {120, 15, 100}, {22, 90, 100}, {22, -40, 100}});
  };
  lines(masked);
  lines(plain);
  ASSERT_GT(plain.drawn().size(), 200u);
  if (GetParam().mapped() && GetParam().depth()) {
    // The mapped depth mode's crossing segments don't look at the mask:
    // every pixel here belongs to a crossing segment.
    expect_same_images(masked, plain);
  } else {
    expect_region_of(masked, plain);
  }
}

TEST_P(Masked_Drawing, MaskOverEverythingLeavesBothImagesAlone) {
  Renderer_Harness h(GetParam());
  use_mask(h);
  set_clip(h, box(200, 200, 210, 210));
  draw_line(h, {{1, 1, 10}, {60, 40, 10}, {3, 44, 10}});
  draw_clipped_line(h, {{20, 20, 10}, {30, 25, 10}, {40, 10, 10}});
  const OT_DCI_Point p{30, 30, 10};
  h.renderer().draw_2di_polymarker(h.rendition(), 1, &p);
  if (!GetParam().depth()) h.renderer().draw_dci_dot(h.rendition(), &p, nullptr);
  if (triangles_masked()) h.draw_dci({{0, 0, 10}, {63, 0, 10}, {0, 47, 10}});
  if (GetParam().depth()) {
    // Markers with depth draw through the mask (the mapped depth mode's are
    // the host's, made of its dots).
    EXPECT_EQ(h.drawn(), (Pixels{{30, 30}}));
  } else {
    EXPECT_TRUE(h.drawn().empty());
  }
  if (GetParam().depth()) {
    for (int y = 0; y < 48; ++y)
      for (int x = 0; x < 64; ++x)
        if (x != 30 || y != 30) {
          ASSERT_EQ(h.depth(x, y), 0xFFFF) << x << "," << y;
        }
  }
}

// Behind a mask the depth fillers and walkers test at or below and always
// write depth, whatever "ZBuffer Test" and "ZBuffer Write" say.
class Masked_Depth : public Masked_Drawing {};

TEST_P(Masked_Depth, DepthFormsBehindAMaskIgnoreTheDepthOptions) {
  Renderer_Harness masked(GetParam()), plain(GetParam());
  use_mask(masked);
  set_clip(masked, box(-5, -5, 100, 100));
  masked.renderer().depth_test = 5;
  masked.renderer().depth_write = 0;
  auto draw = [this](Renderer_Harness& h) {
    draw_line(h, {{1, 46, 300}, {63, 2, 300}, {20, 30, 300}});
    if (triangles_masked()) {
      h.draw_dci({{2, 1, 200}, {50, 4, 200}, {8, 40, 200}});
      h.draw_dci({{2, 1, 250}, {50, 4, 250}, {8, 40, 250}});
    }
  };
  draw(masked);
  draw(plain);
  ASSERT_EQ(masked.renderer().mask_cache->mask_count, 1);
  expect_same_images(masked, plain);
}

INSTANTIATE_TEST_SUITE_P(Mask, Masked_Drawing, ::testing::ValuesIn(kAllModes), mode_name);
INSTANTIATE_TEST_SUITE_P(Mask, Masked_Depth, ::testing::Values(kAllModes[3], kAllModes[4], kAllModes[5]), mode_name);

TEST(Masked_Lines, DepthAlphaLineBehindAMaskIsOpaque) {
  Renderer_Harness h(kAllModes[4]);  // z_rgb32_alpha
  use_mask(h);
  set_clip(h, box(0, 0, 64, 48));
  const OT_RGB32 translucent{200, 100, 50, 128};
  h.rendition().writable_colors()->color = translucent;
  draw_line(h, {{2, 3, 100}, {40, 3, 100}});
  EXPECT_EQ(h.pixel(10, 3), translucent.word());
  EXPECT_EQ(h.pixel(40, 3), translucent.word());
  EXPECT_EQ(h.depth(10, 3), 100);
  // The crossing segments of the clipped form hand the colour on as opaque.
  h.set_hard_clip({5, 50, 0, 47});
  draw_clipped_line(h, {{-10, 8, 100}, {60, 8, 100}});
  EXPECT_EQ(h.pixel(4, 8), h.clear_value());
  EXPECT_EQ(h.pixel(20, 8), translucent.word());
  EXPECT_EQ(h.depth(20, 8), 100);
}

TEST(Masked_Lines, JointUnderASetBitIsSkippedAndTheWalkGoesOn) {
  Renderer_Harness h(kAllModes[1]);  // rgb32
  use_mask(h);
  // Everything but column 20.
  auto* data = new OT_Contour_Set_Data;
  data->points = {{0, 0, 0}, {20, 0, 0}, {20, 48, 0}, {0, 48, 0}, {21, 0, 0}, {64, 0, 0}, {64, 48, 0}, {21, 48, 0}};
  data->contour_starts = {0, 4};
  set_clip(h, OT_Contour_Set(data));
  draw_line(h, {{10, 5, 0}, {20, 5, 0}, {20, 15, 0}, {30, 15, 0}});
  Pixels expected = rows_of({{5, {10, 19}}, {15, {21, 30}}});
  EXPECT_EQ(h.drawn(), expected);
}

}  // namespace
}  // namespace tarn::testing
