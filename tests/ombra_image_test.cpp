// Counted images and their two row tables.
#include <gtest/gtest.h>

#include <cstring>

#include "host/ombra.h"

namespace {

TEST(OmbraImage, PixelBytesByFormat) {
  EXPECT_EQ(OT_Shared_Image_Data::pixel_bytes(OT_Image_Format_Index8), 1);
  EXPECT_EQ(OT_Shared_Image_Data::pixel_bytes(OT_Image_Format_RGB32), 4);
  EXPECT_EQ(OT_Shared_Image_Data::pixel_bytes(OT_Image_Format_Depth16), 2);
}

TEST(OmbraImage, HostPitchIsTheRowRoundedUpToEightBytes) {
  EXPECT_EQ(OT_Shared_Image(8, 2, OT_Image_Format_Index8, 0, nullptr, false)->row_bytes, 8);
  EXPECT_EQ(OT_Shared_Image(9, 2, OT_Image_Format_Index8, 0, nullptr, false)->row_bytes, 16);
  EXPECT_EQ(OT_Shared_Image(5, 2, OT_Image_Format_RGB32, 0, nullptr, false)->row_bytes, 24);
  EXPECT_EQ(OT_Shared_Image(4, 2, OT_Image_Format_Depth16, 0, nullptr, false)->row_bytes, 8);
  EXPECT_EQ(OT_Shared_Image(3, 2, OT_Image_Format_Depth16, 0, nullptr, false)->row_bytes, 8);
  EXPECT_EQ(OT_Shared_Image(3, 2, OT_Image_Format_Depth16, -1, nullptr, false)->row_bytes, 8);
}

TEST(OmbraImage, GivenPitchIsKeptAsItIs) {
  OT_Shared_Image image(10, 3, OT_Image_Format_Index8, 13, nullptr, false);
  ASSERT_TRUE(image);
  EXPECT_EQ(image->row_bytes, 13);
  EXPECT_EQ(image->top_rows[2] - image->top_rows[0], 26);
}

TEST(OmbraImage, RowTablesAreReversedCopiesOverOneBlock) {
  OT_Shared_Image image(7, 5, OT_Image_Format_RGB32, 0, nullptr, false);
  ASSERT_TRUE(image);
  const OT_Shared_Image_Data& d = *image;
  EXPECT_EQ(d.width, 7);
  EXPECT_EQ(d.height, 5);
  EXPECT_EQ(d.format, OT_Image_Format_RGB32);
  EXPECT_EQ(d.row_bytes % 8, 0);
  EXPECT_EQ(d.top_rows[0], d.pixels);
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(d.top_rows[i], d.pixels + i * d.row_bytes);
    EXPECT_EQ(d.device_rows[i], d.top_rows[4 - i]);
  }
  // Device rows a..b are one run starting at device_rows[b].
  EXPECT_EQ(d.device_rows[1], d.device_rows[3] + 2 * d.row_bytes);
}

TEST(OmbraImage, NewPixelsAreZero) {
  OT_Shared_Image image(33, 9, OT_Image_Format_RGB32, 0, nullptr, false);
  ASSERT_TRUE(image);
  for (int y = 0; y < 9; ++y)
    for (int b = 0; b < image->row_bytes; ++b) ASSERT_EQ(image->top_rows[y][b], 0) << y << "," << b;
}

TEST(OmbraImage, GivenMemoryIsUsedAndNotOwned) {
  byte memory[4 * 8] = {};
  {
    OT_Shared_Image image(8, 4, OT_Image_Format_Index8, 8, memory, false);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->pixels, memory);
    EXPECT_FALSE(image->owns_pixels);
    image->device_rows[0][3] = 42;  // the last row in memory
  }
  EXPECT_EQ(memory[3 * 8 + 3], 42);
}

TEST(OmbraImage, CloneIsADeepCopy) {
  OT_Shared_Image image(4, 3, OT_Image_Format_Depth16, 0, nullptr, false);
  ASSERT_TRUE(image);
  image->full_frame = 1;
  for (int y = 0; y < 3; ++y) std::memset(image->top_rows[y], 10 + y, 8);
  OT_Shared_Image copy = image;
  OT_Shared_Image_Data* writable = make_unique(copy);
  ASSERT_NE(writable, image.get());
  EXPECT_NE(writable->pixels, image->pixels);
  EXPECT_EQ(writable->full_frame, 1);
  EXPECT_EQ(writable->row_bytes, image->row_bytes);
  EXPECT_NE(writable->serial, image->serial);
  for (int y = 0; y < 3; ++y) {
    EXPECT_EQ(writable->device_rows[y], writable->top_rows[2 - y]);
    EXPECT_EQ(std::memcmp(writable->top_rows[y], image->top_rows[y], 8), 0);
  }
  writable->top_rows[0][0] = 99;
  EXPECT_EQ(image->top_rows[0][0], 10);
}

TEST(OmbraImage, FactoryMakesAnImageAndReleasesTheOldOne) {
  OT_Shared_Image old(2, 2, OT_Image_Format_Index8, 0, nullptr, false);
  OT_Shared_Image slot = old;
  ASSERT_EQ(old->count.load(), 2u);
  const OT_Image_Format format = OT_Image_Format_RGB32;
  OB_Standard_Image_Factory(nullptr, 12, 6, &format, &slot);
  ASSERT_TRUE(slot);
  EXPECT_NE(slot.get(), old.get());
  EXPECT_EQ(old->count.load(), 1u);
  EXPECT_EQ(slot->width, 12);
  EXPECT_EQ(slot->height, 6);
  EXPECT_EQ(slot->format, OT_Image_Format_RGB32);
  EXPECT_EQ(slot->row_bytes, 48);
  EXPECT_EQ(slot->count.load(), 1u);
}

}  // namespace
