// Renditions: defaults, copy on write at both levels, face patterns and the
// shifted complex clip.
#include <gtest/gtest.h>

#include "host/ombra.h"

namespace {

OT_Rendition make() { return OT_Rendition::make_default(100, 50, OB_Default_Palette()); }

TEST(OmbraRendition, NewRecordHasAllSixSectionsWithDefaults) {
  OT_Rendition rendition(new OT_Rendition_Data);
  ASSERT_TRUE(rendition);
  ASSERT_TRUE(rendition->device && rendition->colors && rendition->line && rendition->face && rendition->marker &&
              rendition->raster);
  EXPECT_EQ(rendition->face->pattern, 64);
  EXPECT_EQ(rendition->line->pattern, 0);
  EXPECT_EQ(rendition->line->line_type_set, &OT_Line_Type_Set::None);
  EXPECT_EQ(rendition->device->depth_enabled, 1);
  EXPECT_FALSE(rendition->device->complex_clip);
  EXPECT_EQ(rendition->marker->symbol, 0);
  EXPECT_EQ(rendition->raster->write_mode, 0);
}

TEST(OmbraRendition, DefaultCoversTheWindowInWhite) {
  const OT_Rendition rendition = make();
  EXPECT_EQ(rendition->device->hard_clip, (OT_Int_Rectangle{0, 99, 0, 49}));
  EXPECT_EQ(rendition->device->extent, (OT_Int_Rectangle{0, 99, 0, 49}));
  EXPECT_EQ(rendition->colors->color, OT_RGB32::rgba(255, 255, 255));
  EXPECT_EQ(rendition->colors->color_index, 15u);
  EXPECT_EQ(rendition->palette.get(), OB_Default_Palette().get());
}

TEST(OmbraRendition, SetColorOnASharedRenditionLeavesTheOtherAlone) {
  OT_Rendition a = make();
  OT_Rendition b = a;
  b.set_color(OT_RGB32::rgba(255, 0, 0), false);
  EXPECT_NE(a.get(), b.get());
  EXPECT_NE(a->colors.get(), b->colors.get());
  EXPECT_EQ(a->device.get(), b->device.get());  // untouched sections stay shared
  EXPECT_EQ(a->face.get(), b->face.get());
  EXPECT_EQ(a->colors->color, OT_RGB32::rgba(255, 255, 255));
  EXPECT_EQ(a->colors->color_index, 15u);
  EXPECT_EQ(b->colors->color, OT_RGB32::rgba(255, 0, 0));
  EXPECT_EQ(b->colors->color_index, 9u);
  EXPECT_EQ(a->count.load(), 1u);
  EXPECT_EQ(b->count.load(), 1u);
}

TEST(OmbraRendition, SharedSectionIsClonedUnderAUniqueRecord) {
  OT_Rendition a = make();
  OT_Rendition b(static_cast<OT_Rendition_Data*>(a->clone()));
  ASSERT_EQ(a->colors.get(), b->colors.get());
  OT_Rendition_Data* record = b.get();
  const std::uint32_t record_serial = b->serial;
  b.set_color(OT_RGB32::rgba(0, 0, 255), false);
  EXPECT_EQ(b.get(), record);                 // already unique: kept
  EXPECT_NE(b->serial, record_serial);        // but stamped
  EXPECT_NE(b->colors.get(), a->colors.get());  // the section was shared: cloned
  EXPECT_EQ(a->colors->color, OT_RGB32::rgba(255, 255, 255));
  EXPECT_EQ(b->colors->color_index, 12u);
}

TEST(OmbraRendition, UniqueRecordAndSectionAreWrittenInPlaceWithNewSerials) {
  OT_Rendition a = make();
  OT_Rendition_Data* record = a.get();
  OT_Rendition_Colors* colors = a->colors.get();
  const std::uint32_t record_serial = a->serial, colors_serial = colors->serial;
  a.set_color(OT_RGB32::rgba(0, 255, 0), true);
  EXPECT_EQ(a.get(), record);
  EXPECT_EQ(a->colors.get(), colors);
  EXPECT_NE(a->serial, record_serial);
  EXPECT_NE(colors->serial, colors_serial);
  EXPECT_EQ(colors->color, OT_RGB32::rgba(0, 255, 0));
  EXPECT_EQ(colors->color_index, 15u);  // kept
}

TEST(OmbraRendition, OtherSettersCopyOnWrite) {
  OT_Rendition a = make();
  OT_Rendition b = a;
  b.set_contrast_color(OT_RGB32::rgba(255, 255, 0), false);
  b.set_advanced_options(OT_Advanced_Images | OT_Advanced_Alpha_Path, false);
  b.set_hard_clip_unrestricted(OT_Int_Rectangle{-5, 500, -7, 700}, false);
  EXPECT_EQ(b->colors->contrast_color, OT_RGB32::rgba(255, 255, 0));
  EXPECT_EQ(b->colors->contrast_index, 11);
  EXPECT_EQ(b->raster->advanced_options, 12u);
  EXPECT_EQ(b->device->hard_clip, (OT_Int_Rectangle{-5, 500, -7, 700}));
  EXPECT_EQ(a->raster->advanced_options, 0u);
  EXPECT_EQ(a->device->hard_clip, (OT_Int_Rectangle{0, 99, 0, 49}));
  EXPECT_EQ(a->colors->contrast_index, 0);
}

TEST(OmbraRendition, WritableSectionsAreUniqueAtBothLevels) {
  OT_Rendition a = make();
  OT_Rendition b = a;
  OT_Rendition_Line* line = b.writable_line();
  ASSERT_NE(line, nullptr);
  EXPECT_EQ(b->line.get(), line);
  EXPECT_NE(a->line.get(), line);
  EXPECT_EQ(line->count.load(), 1u);
  line->weight = 3;
  EXPECT_EQ(a->line->weight, 0);
  EXPECT_NE(b.writable_marker(), a->marker.get());
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
  EXPECT_FALSE(b->face->user_pattern);
  EXPECT_FALSE(b->face->back_pattern);
  EXPECT_FALSE(b->face->edge_pattern);
  EXPECT_EQ(a->face->pattern, 74);
  ASSERT_TRUE(a->face->user_pattern);
  EXPECT_EQ(a->face->user_pattern->bits[1], 0xF0);
}

OT_Contour_Set square_clip() {
  const OT_Point points[4] = {{1, 2, 0}, {11, 2, 0}, {11, 12, 0}, {1, 12, 0}};
  return OT_Contour_Set(4, points, false);
}

TEST(OmbraRendition, ComplexClipIsUnshiftedWhileTheExtentStartsAtZeroOrMore) {
  OT_Rendition a = make();
  a.writable_device()->complex_clip = square_clip();
  EXPECT_EQ(a.shifted_complex_clip().get(), a->device->complex_clip.get());
  a.writable_device()->extent = {0, 99, 0, 49};
  EXPECT_EQ(a.shifted_complex_clip().get(), a->device->complex_clip.get());
  a.writable_device()->complex_clip.reset();
  a.writable_device()->extent = {-3, 99, -4, 49};
  EXPECT_FALSE(a.shifted_complex_clip());
}

TEST(OmbraRendition, NegativeExtentShiftsTheClipOnceAndKeepsItsSerial) {
  OT_Rendition a = make();
  OT_Rendition_Device* device = a.writable_device();
  device->complex_clip = square_clip();
  device->extent = {-5, 94, 3, 52};
  const OT_Contour_Set& shifted = a.shifted_complex_clip();
  ASSERT_TRUE(shifted);
  EXPECT_NE(shifted.get(), a->device->complex_clip.get());
  ASSERT_EQ(shifted->points.size(), 4u);
  EXPECT_EQ(shifted->points[0].x, 6.0f);
  EXPECT_EQ(shifted->points[0].y, 2.0f);  // bottom isn't negative: y stays
  EXPECT_EQ(shifted->points[2].x, 16.0f);
  EXPECT_EQ(a->device->complex_clip->points[0].x, 1.0f);
  const OT_Contour_Set_Data* first = shifted.get();
  const std::uint32_t serial = first->serial;
  EXPECT_EQ(a.shifted_complex_clip().get(), first);
  EXPECT_EQ(a.shifted_complex_clip()->serial, serial);

  // Both negative.
  a.writable_device()->extent = {-5, 94, -8, 41};
  const OT_Contour_Set& both = a.shifted_complex_clip();
  EXPECT_EQ(both->points[0].x, 6.0f);
  EXPECT_EQ(both->points[0].y, 10.0f);
  EXPECT_NE(both->serial, serial);
}

TEST(OmbraRendition, ChangedClipGivesANewShiftedClip) {
  OT_Rendition a = make();
  OT_Rendition_Device* device = a.writable_device();
  device->complex_clip = square_clip();
  device->extent = {-5, 94, 0, 49};
  const std::uint32_t before = a.shifted_complex_clip()->serial;
  make_unique(a.writable_device()->complex_clip)->points[0].x = 3.0f;
  const OT_Contour_Set& after = a.shifted_complex_clip();
  EXPECT_NE(after->serial, before);
  EXPECT_EQ(after->points[0].x, 8.0f);
}

}  // namespace
