// Root of the host boundary: counted objects, handles, copy on write and the
// plain records that travel between the host and a renderer module.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#define OMBRA_API __attribute__((visibility("default")))

using byte = std::uint8_t;

// Everything the host allocates. Objects draw on the host's heap; operator new
// answers null on failure (it never throws), so a new-expression on a class
// of this tree yields null and runs no constructor when memory runs out.
class OMBRA_API OT_Object {
 public:
  OT_Object() = default;
  OT_Object(const OT_Object&) = default;
  OT_Object& operator=(const OT_Object&) = default;
  virtual ~OT_Object();

  static void* operator new(std::size_t size) noexcept;
  static void operator delete(void* memory) noexcept;
  static void* operator new(std::size_t, void* place) noexcept { return place; }
  static void operator delete(void*, void*) noexcept {}

  // The host's destructor operation: bit 0 of flags frees the memory too.
  void destroy(unsigned flags);
};

// New serial: atomic increment of the host's counter, the incremented value.
OMBRA_API std::uint32_t OB_New_Serial();

// Objects of the tree now on the host's heap: made by operator new and not
// yet freed. A leak check compares it before and after.
OMBRA_API std::int64_t OB_Live_Objects();

// Counted record. A new object has count 0 and a fresh serial; a clone is a
// new object too. Two objects with one serial have the same contents.
class OMBRA_API OT_Counted : public OT_Object {
 public:
  OT_Counted() : count(0), serial(OB_New_Serial()) {}
  OT_Counted(const OT_Counted&) : OT_Object(), count(0), serial(OB_New_Serial()) {}
  OT_Counted& operator=(const OT_Counted&) { return *this; }

  // A copy of the object with count 0, or null when the class can't be copied.
  virtual OT_Counted* clone() const;

  void add_reference() { count.fetch_add(1, std::memory_order_relaxed); }
  void release() {
    if (count.fetch_sub(1, std::memory_order_acq_rel) == 1) destroy(1);
  }

  std::atomic<std::uint32_t> count;
  std::uint32_t serial;
};

// Single-pointer handle on a counted record. Null means "none".
template <class T>
class OT_Handle {
 public:
  using Data = T;

  OT_Handle() = default;
  explicit OT_Handle(T* data) : data_(data) {
    if (data_) data_->add_reference();
  }
  OT_Handle(const OT_Handle& other) : OT_Handle(other.data_) {}
  OT_Handle(OT_Handle&& other) noexcept : data_(other.data_) { other.data_ = nullptr; }
  OT_Handle& operator=(const OT_Handle& other) {
    reset(other.data_);
    return *this;
  }
  OT_Handle& operator=(OT_Handle&& other) noexcept {
    if (this != &other) {
      T* old = data_;
      data_ = other.data_;
      other.data_ = nullptr;
      if (old) old->release();
    }
    return *this;
  }
  ~OT_Handle() {
    if (data_) data_->release();
  }

  // Takes a reference on `data` (may be null) and drops the one held.
  void reset(T* data = nullptr) {
    if (data) data->add_reference();
    T* old = data_;
    data_ = data;
    if (old) old->release();
  }

  T* get() const { return data_; }
  T* operator->() const { return data_; }
  T& operator*() const { return *data_; }
  explicit operator bool() const { return data_ != nullptr; }
  bool operator==(const OT_Handle& other) const { return data_ == other.data_; }

 protected:
  T* data_ = nullptr;
};

// Copy on write: with two or more references the handle gets a private clone
// (count 1, serial of its own); otherwise the record is stamped with a new
// serial, since the caller is about to change it. Returns the writable record.
template <class T>
T* make_unique(OT_Handle<T>& handle) {
  T* data = handle.get();
  if (!data) return nullptr;
  if (data->count.load(std::memory_order_acquire) >= 2) {
    T* copy = static_cast<T*>(data->clone());
    handle.reset(copy);
    return copy;
  }
  data->serial = OB_New_Serial();
  return data;
}

// Clone helper for records whose copy constructor says it all.
template <class Derived, class Base = OT_Counted>
class OT_Clonable : public Base {
 public:
  using Base::Base;
  OT_Counted* clone() const override { return new Derived(static_cast<const Derived&>(*this)); }
};

// ---- Plain records -------------------------------------------------------

struct OT_Point {
  float x, y, z;
};

struct OT_DCI_Point {
  std::int32_t x, y, z;
};

struct OT_Point_D {
  double x, y, z;
};

struct OMBRA_API OT_Vector {
  float x, y, z;
  void normalize();
};

struct OMBRA_API OT_Vector_D {
  double x, y, z;
  void normalize();
};

struct OT_Int_XY {
  std::int32_t x, y;
};

struct OT_Int_RGB {
  std::int32_t r, g, b;
};

// Inclusive on all four sides; y grows upwards, so top is the largest y.
struct OT_Int_Rectangle {
  std::int32_t left, right, bottom, top;
  bool operator==(const OT_Int_Rectangle&) const = default;
};

// Bytes in memory order b, g, r, a: read as a little-endian word, blue is the
// low byte and alpha the high byte. Alpha 255 is opaque.
struct OT_RGB32 {
  byte b, g, r, a;

  constexpr std::uint32_t word() const {
    return std::uint32_t(b) | std::uint32_t(g) << 8 | std::uint32_t(r) << 16 | std::uint32_t(a) << 24;
  }
  static constexpr OT_RGB32 from_word(std::uint32_t w) {
    return {byte(w), byte(w >> 8), byte(w >> 16), byte(w >> 24)};
  }
  static constexpr OT_RGB32 rgba(int r, int g, int b, int a = 255) {
    return {byte(b), byte(g), byte(r), byte(a)};
  }
  bool operator==(const OT_RGB32&) const = default;
};
static_assert(sizeof(OT_RGB32) == 4);

// Texture parameters of a vertex: u, v and a third value.
struct OT_Parameter {
  float u, v, r;
};

enum OT_Image_Format : std::int32_t {
  OT_Image_Format_Index8 = 1,
  OT_Image_Format_RGB32 = 2,
  OT_Image_Format_Depth16 = 3,
  OT_Image_Format_Native = 7,  // reads answer in the buffer's own format
};

// 1 direct (RGB32), 0 mapped; any other value selects mapped actions.
enum OT_Color_System : std::int32_t {
  OT_Color_System_Mapped = 0,
  OT_Color_System_Direct = 1,
};

using OT_Advanced_Options = std::uint32_t;

// Bits of OT_Advanced_Options.
enum : std::uint32_t {
  OT_Advanced_Antialiased_Lines = 2,
  OT_Advanced_Images = 4,
  OT_Advanced_Alpha_Path = 8,
  OT_Advanced_Strip_Outline = 32,
};

struct OT_Document_Info {
  const wchar_t* title;
};

// Packing of an RGB32 image's source rows; opaque to renderers.
struct OT_Packing {
  std::int32_t flags;
};

// Result of OB_Rank_Polygon, read as a 32-bit word: 0 may be drawn as a strip.
enum OT_Polygon_Rank : std::int32_t {
  OT_Polygon_Rank_Convex = 0,
  OT_Polygon_Rank_Complex = 1,
};
