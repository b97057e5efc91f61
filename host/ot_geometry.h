// Counted geometry and appearance records that renditions point to:
// contour sets (complex clips), matrices, user patterns, line types.
#pragma once

#include <vector>

#include "host/ot_base.h"

// A set of closed contours in device coordinates; a complex clip region.
class OMBRA_API OT_Contour_Set_Data : public OT_Clonable<OT_Contour_Set_Data> {
 public:
  OT_Contour_Set_Data() = default;
  OT_Contour_Set_Data(int count, const OT_Point* points);

  // Fixes the direction of projection used by triangulate().
  void force_projection(const OT_Vector& direction);
  // Calls callback for each triangle of the region.
  using Triangle_Callback = void (*)(const OT_Point*, const OT_Point*, const OT_Point*, void* context);
  void triangulate(Triangle_Callback callback, void* context) const;

  // contours[i] is the index of the first point of contour i in points.
  std::vector<OT_Point> points;
  std::vector<int> contour_starts;
  OT_Vector projection{0.0f, 0.0f, 1.0f};
};

class OMBRA_API OT_Contour_Set : public OT_Handle<OT_Contour_Set_Data> {
 public:
  OT_Contour_Set() = default;
  explicit OT_Contour_Set(OT_Contour_Set_Data* data) : OT_Handle(data) {}
  // One contour from one polygon.
  OT_Contour_Set(int count, const OT_Point* points, bool closed);
};

// Device transformation. Renderers read it only in the tiled textured action.
class OMBRA_API OT_Matrix_Data : public OT_Clonable<OT_Matrix_Data> {
 public:
  OT_Matrix_Data();  // identity
  // Row-vector convention: out = (p, 1) * m; w through `w_out` when not null.
  void transform(const OT_Point_D& in, OT_Point_D& out, float* w_out, float) const;
  // Makes `adjoint` hold the adjugate of m (the inverse times the
  // determinant), which takes device points back to their source up to scale.
  void validate_adjoint() const;

  double m[4][4];
  mutable OT_Handle<OT_Matrix_Data> adjoint;
};

class OMBRA_API OT_Matrix : public OT_Handle<OT_Matrix_Data> {
 public:
  OT_Matrix() = default;
  explicit OT_Matrix(OT_Matrix_Data* data) : OT_Handle(data) {}
  void transform(const OT_Point_D& in, OT_Point_D& out, float* w_out, float unused) const {
    data_->transform(in, out, w_out, unused);
  }
};

// Face pattern 74: bits least significant first, rows `row_bytes` apart.
class OMBRA_API OT_User_Pattern_Data : public OT_Clonable<OT_User_Pattern_Data> {
 public:
  OT_User_Pattern_Data() = default;
  // Copies height rows of (width + 7) / 8 bytes from `rows`, `row_bytes` apart.
  OT_User_Pattern_Data(int width, int height, const byte* rows, int row_bytes);
  OT_User_Pattern_Data(const OT_User_Pattern_Data& other);

  const byte* bits = nullptr;
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::int32_t row_bytes = 0;

 private:
  std::vector<byte> storage_;
};

class OMBRA_API OT_User_Pattern : public OT_Handle<OT_User_Pattern_Data> {
 public:
  OT_User_Pattern() = default;
  explicit OT_User_Pattern(OT_User_Pattern_Data* data) : OT_Handle(data) {}
};

// The pattern of a line type: signed lengths, positive drawn, negative
// skipped, zero a dot. Its owner keeps `lengths` alive as long as a line type
// points to it.
struct OT_Line_Type_Definition {
  const double* lengths = nullptr;
  std::int64_t length_count = 0;
  std::int32_t end_style = 0;  // 2: the solid ends shrink to dots, end dots of the pattern go
};

class OMBRA_API OT_Line_Type_Data : public OT_Clonable<OT_Line_Type_Data> {
 public:
  const OT_Line_Type_Definition* definition = nullptr;
  double length_scale = 1.0;
  double start_length = 0.0;  // drawn solid at the start of the path
  double end_length = 0.0;    // drawn solid at its end
  double phase = 0.0;         // pattern length skipped at the start
};

// A counted line type; the null handle is None, no type: the line is solid.
class OMBRA_API OT_Line_Type : public OT_Handle<OT_Line_Type_Data> {
 public:
  static const OT_Line_Type None;

  OT_Line_Type() = default;
  explicit OT_Line_Type(OT_Line_Type_Data* data) : OT_Handle(data) {}
  OT_Line_Type(const OT_Line_Type& other);
  OT_Line_Type& operator=(const OT_Line_Type& other) = default;
};

// What a rendition's line section points to: line types for the whole path
// or one a segment. The owner keeps the set and `skips` alive as long as a
// rendition points to it; &None means no line type.
struct OMBRA_API OT_Line_Type_Set {
  static const OT_Line_Type_Set None;

  std::vector<OT_Line_Type> line_types;
  std::int32_t per_segment = 0;  // non-zero: each segment has a type of its own
  double scale = 1.0;            // multiplies all lengths of the types
  std::int32_t first_type = 0;   // index of the first type used
  std::int32_t end_type = 0;     // number of slots from first_type on
  std::uint32_t skip_count = 0;
  const std::uint32_t* skips = nullptr;  // ascending slots that take no segment
};
