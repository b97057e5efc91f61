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

struct OMBRA_API OT_Line_Type_Set {
  static const OT_Line_Type_Set None;
  std::int32_t id;
};
