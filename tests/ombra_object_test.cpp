// Counted objects, serials, handles, copy on write, and counted images with
// their two row tables.
#include <gtest/gtest.h>

#include <cstring>

#include "host/ombra.h"

namespace {

int destroyed = 0;

class Probe : public OT_Clonable<Probe> {
 public:
  Probe() = default;
  Probe(const Probe& other) : OT_Clonable(other), value(other.value) {}
  ~Probe() override { ++destroyed; }
  int value = 0;
};

// A first base outside the host's tree puts OT_Object at an offset.
struct Foreign {
  virtual ~Foreign() = default;
  long padding[3] = {1, 2, 3};
};
class Offset_Probe : public Foreign, public OT_Counted {
 public:
  ~Offset_Probe() override { ++destroyed; }
};

TEST(OmbraObject, SerialsCountsAndDestruction) {
  const std::uint32_t serial = OB_New_Serial();
  EXPECT_EQ(OMBRA.serial_counter.load(), serial);
  destroyed = 0;
  void* memory = OT_Object::operator new(sizeof(Probe));
  Probe* probe = new (memory) Probe;
  EXPECT_EQ(probe->serial, serial + 1);
  EXPECT_EQ(probe->count.load(), 0u);
  static_cast<OT_Object*>(probe)->destroy(0);  // bit 0 clear: the memory stays ours
  static_cast<OT_Object*>(new (memory) Probe)->destroy(1);
  OT_Object* root = new Offset_Probe;
  root->destroy(1);  // frees the whole object, not its OT_Object part
  EXPECT_EQ(destroyed, 3);
  OT_Counted* counted = new OT_Counted;
  EXPECT_EQ(counted->clone(), nullptr);
  counted->destroy(1);
}

TEST(OmbraHandle, CopiesCountAndMakeUniqueStampsOrClones) {
  destroyed = 0;
  OT_Handle<Probe> a(new Probe);
  a->value = 7;
  {
    OT_Handle<Probe> b = a;
    OT_Handle<Probe> c(std::move(b));
    EXPECT_FALSE(b);
    c = a;
    EXPECT_EQ(a->count.load(), 2u);
  }
  EXPECT_EQ(a->count.load(), 1u);
  Probe* sole = a.get();
  std::uint32_t serial = a->serial;
  EXPECT_EQ(make_unique(a), sole);
  EXPECT_NE(a->serial, serial);
  serial = a->serial;
  OT_Handle<Probe> b = a;
  Probe* copy = make_unique(b);
  ASSERT_NE(copy, sole);
  EXPECT_EQ(b.get(), copy);
  EXPECT_EQ((std::vector<std::uint32_t>{std::uint32_t(copy->value), copy->count.load(), a->count.load(),
                                        a->serial, std::uint32_t(destroyed)}),
            (std::vector<std::uint32_t>{7, 1, 1, serial, 0}));
  EXPECT_NE(copy->serial, serial);
  a.reset();
  EXPECT_EQ(destroyed, 1);
}

TEST(OmbraImage, PitchAndDeviceRowsRunningBackwardsOverOneZeroedBlock) {
  const std::tuple<int, OT_Image_Format, int, int> cases[] = {
      {8, OT_Image_Format_Index8, 0, 8},    {9, OT_Image_Format_Index8, 0, 16},
      {5, OT_Image_Format_RGB32, 0, 24},    {4, OT_Image_Format_Depth16, 0, 8},
      {5, OT_Image_Format_Depth16, -1, 16}, {10, OT_Image_Format_Index8, 13, 13}};
  for (const auto& [width, format, row_bytes, expected] : cases) {
    const OT_Shared_Image image(width, 3, format, row_bytes, nullptr, false);
    ASSERT_TRUE(image);
    EXPECT_EQ((std::vector<int>{image->row_bytes, image->width, image->format}),
              (std::vector<int>{expected, width, format}));
    for (int i = 0; i < 3; ++i) {
      EXPECT_EQ(image->top_rows[i], image->pixels + i * expected);
      EXPECT_EQ(image->device_rows[i], image->top_rows[2 - i]);
      for (int b = 0; b < expected; ++b) ASSERT_EQ(image->top_rows[i][b], 0);
    }
  }
}

TEST(OmbraImage, GivenMemoryIsNotOwnedAndAClonedImageIsDeep) {
  byte memory[4 * 8] = {};
  {
    OT_Shared_Image image(8, 4, OT_Image_Format_Index8, 8, memory, false);
    image->device_rows[0][3] = 42;  // the last row in memory
  }
  EXPECT_EQ(memory[3 * 8 + 3], 42);
  OT_Shared_Image image(4, 3, OT_Image_Format_Depth16, 0, nullptr, false);
  image->full_frame = 1;
  for (int y = 0; y < 3; ++y) std::memset(image->top_rows[y], 10 + y, 8);
  OT_Shared_Image copy = image;
  OT_Shared_Image_Data* writable = make_unique(copy);
  ASSERT_NE(writable, image.get());
  EXPECT_EQ(writable->full_frame, 1);
  EXPECT_NE(writable->serial, image->serial);
  for (int y = 0; y < 3; ++y) {
    EXPECT_EQ(writable->device_rows[y], writable->top_rows[2 - y]);
    EXPECT_EQ(std::memcmp(writable->top_rows[y], image->top_rows[y], 8), 0);
  }
  writable->top_rows[0][0] = 99;
  EXPECT_EQ(image->top_rows[0][0], 10);
}

}  // namespace
