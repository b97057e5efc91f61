// Renditions: defaults, copy on write at both levels, face patterns and the
// shifted complex clip.
#include <gtest/gtest.h>

#include "host/ombra.h"

namespace {

OT_Rendition make() { return OT_Rendition::make_default(100, 50, OB_Default_Palette()); }

TEST(OmbraRendition, SettersWriteAPrivateCopyAndLeaveUntouchedSectionsShared) {
  OT_Rendition a = make();
  OT_Rendition b = a;
  b.set_color(OT_RGB32::rgba(255, 0, 0), false);
  b.set_contrast_color(OT_RGB32::rgba(255, 255, 0), false);
  b.set_advanced_options(OT_Advanced_Images | OT_Advanced_Alpha_Path, false);
  b.set_hard_clip_unrestricted(OT_Int_Rectangle{-5, 500, -7, 700}, false);
  EXPECT_NE(a.get(), b.get());
  EXPECT_EQ(a->face.get(), b->face.get());
  EXPECT_EQ(a->count.load(), 1u);
  EXPECT_EQ(b->colors->color, OT_RGB32::rgba(255, 0, 0));
  // The defaults: white, index 15, the window as hard clip; the setters match indices.
  EXPECT_EQ((std::vector<unsigned>{b->colors->color_index, unsigned(b->colors->contrast_index),
                                   b->raster->advanced_options, a->colors->color_index,
                                   unsigned(a->colors->contrast_index), a->raster->advanced_options}),
            (std::vector<unsigned>{9, 11, 12, 15, 0, 0}));
  EXPECT_EQ(b->device->hard_clip, (OT_Int_Rectangle{-5, 500, -7, 700}));
  EXPECT_EQ(a->device->hard_clip, (OT_Int_Rectangle{0, 99, 0, 49}));
  EXPECT_EQ(a->device->extent, (OT_Int_Rectangle{0, 99, 0, 49}));
  EXPECT_EQ(std::pair(a->face->pattern, int(a->device->depth_enabled)), std::pair(64, 1));
  EXPECT_EQ(a->colors->color, OT_RGB32::rgba(255, 255, 255));
}

TEST(OmbraRendition, ASharedSectionIsClonedUnderAUniqueRecordAndAUniqueOneStamped) {
  OT_Rendition a = make();
  OT_Rendition b(static_cast<OT_Rendition_Data*>(a->clone()));
  ASSERT_EQ(a->colors.get(), b->colors.get());
  OT_Rendition_Data* record = b.get();
  const std::uint32_t record_serial = b->serial;
  b.set_color(OT_RGB32::rgba(0, 0, 255), false);
  EXPECT_EQ(b.get(), record);
  EXPECT_NE(b->serial, record_serial);
  EXPECT_NE(b->colors.get(), a->colors.get());
  EXPECT_EQ(b->colors->color_index, 12u);
  EXPECT_EQ(a->colors->color, OT_RGB32::rgba(255, 255, 255));
  OT_Rendition_Colors* colors = b->colors.get();
  const std::uint32_t colors_serial = colors->serial;
  b.set_color(OT_RGB32::rgba(0, 255, 0), true);  // index kept
  EXPECT_EQ(b->colors.get(), colors);
  EXPECT_NE(colors->serial, colors_serial);
  EXPECT_EQ(colors->color_index, 12u);
}

TEST(OmbraRendition, FacePatternChangeClearsTheUserPatterns) {
  OT_Rendition a = make();
  const byte bits[2] = {0x0F, 0xF0};
  OT_Rendition_Face* face = a.writable_face();
  face->pattern = 74;
  face->user_pattern.reset(new OT_User_Pattern_Data(8, 2, bits, 1));
  face->back_pattern = face->user_pattern;
  face->edge_pattern = face->user_pattern;
  OT_Rendition b = a;
  set_face_pattern(b, 74);  // the same value: nothing at all
  EXPECT_EQ(a.get(), b.get());
  set_face_pattern(b, 32);
  ASSERT_NE(a.get(), b.get());
  EXPECT_EQ(b->face->pattern, 32);
  EXPECT_FALSE(b->face->user_pattern || b->face->back_pattern || b->face->edge_pattern);
  EXPECT_EQ(a->face->pattern, 74);
  EXPECT_EQ(a->face->user_pattern->bits[1], 0xF0);
}

TEST(OmbraRendition, NegativeExtentShiftsTheClipOncePerClipAndOffset) {
  OT_Rendition a = make();
  const OT_Point square[4] = {{1, 2, 0}, {11, 2, 0}, {11, 12, 0}, {1, 12, 0}};
  a.writable_device()->complex_clip = OT_Contour_Set(4, square, false);
  EXPECT_EQ(a.shifted_complex_clip().get(), a->device->complex_clip.get());  // extent from 0, 0
  a.writable_device()->extent = {-5, 94, 0, 49};
  const OT_Contour_Set_Data* shifted = a.shifted_complex_clip().get();
  ASSERT_NE(shifted, a->device->complex_clip.get());
  EXPECT_EQ(shifted->points[0].x, 6.0f);
  EXPECT_EQ(shifted->points[0].y, 2.0f);
  EXPECT_EQ(shifted->points[2].x, 16.0f);
  EXPECT_EQ(a->device->complex_clip->points[0].x, 1.0f);
  const std::uint32_t serial = shifted->serial;
  EXPECT_EQ(a.shifted_complex_clip().get(), shifted);  // made once, serial kept
  EXPECT_EQ(a.shifted_complex_clip()->serial, serial);
  a.writable_device()->extent = {-5, 94, -8, 41};
  EXPECT_EQ(a.shifted_complex_clip()->points[0].y, 10.0f);
  EXPECT_NE(a.shifted_complex_clip()->serial, serial);
  const std::uint32_t both = a.shifted_complex_clip()->serial;
  make_unique(a.writable_device()->complex_clip)->points[0].x = 3.0f;  // a changed clip
  EXPECT_EQ(a.shifted_complex_clip()->points[0].x, 8.0f);
  EXPECT_NE(a.shifted_complex_clip()->serial, both);
  a.writable_device()->complex_clip.reset();
  EXPECT_FALSE(a.shifted_complex_clip());
}

}  // namespace
