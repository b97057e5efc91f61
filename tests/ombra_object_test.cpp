// Counted objects, serials, handles and copy on write.
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

// A first base that isn't of the host's tree puts OT_Object at an offset.
struct Foreign {
  virtual ~Foreign() = default;
  long padding[3] = {1, 2, 3};
};

class Offset_Probe : public Foreign, public OT_Counted {
 public:
  ~Offset_Probe() override { ++destroyed; }
};

TEST(OmbraObject, SerialIsTheIncrementedCounter) {
  const std::uint32_t a = OB_New_Serial();
  const std::uint32_t b = OB_New_Serial();
  EXPECT_EQ(b, a + 1);
  EXPECT_EQ(OMBRA.serial_counter.load(), b);
}

TEST(OmbraObject, NewCountedObjectHasCountZeroAndAFreshSerial) {
  const std::uint32_t before = OMBRA.serial_counter.load();
  Probe* probe = new Probe;
  ASSERT_NE(probe, nullptr);
  EXPECT_EQ(probe->count.load(), 0u);
  EXPECT_EQ(probe->serial, before + 1);
  probe->destroy(1);
}

TEST(OmbraObject, DestroyRunsTheVirtualDestructorAndFreesOnlyWithBitZero) {
  destroyed = 0;
  void* memory = OT_Object::operator new(sizeof(Probe));
  ASSERT_NE(memory, nullptr);
  Probe* probe = new (memory) Probe;
  OT_Object* object = probe;
  object->destroy(0);
  EXPECT_EQ(destroyed, 1);
  // The memory is still ours: use it again and then let destroy free it.
  Probe* again = new (memory) Probe;
  again->destroy(1);
  EXPECT_EQ(destroyed, 2);
}

TEST(OmbraObject, DestroyFreesTheWholeObjectWhenTheRootIsNotFirst) {
  destroyed = 0;
  Offset_Probe* probe = new Offset_Probe;
  ASSERT_NE(probe, nullptr);
  OT_Object* root = probe;
  ASSERT_NE(static_cast<void*>(root), static_cast<void*>(probe));
  root->destroy(1);  // a wrong address would upset the allocator
  EXPECT_EQ(destroyed, 1);
}

TEST(OmbraObject, CountedCloneDefaultsToNull) {
  OT_Counted* counted = new OT_Counted;
  EXPECT_EQ(counted->clone(), nullptr);
  counted->destroy(1);
}

TEST(OmbraHandle, CopiesCountAndTheLastReleaseDestroys) {
  destroyed = 0;
  OT_Handle<Probe> a(new Probe);
  EXPECT_EQ(a->count.load(), 1u);
  {
    OT_Handle<Probe> b = a;
    EXPECT_EQ(a->count.load(), 2u);
    OT_Handle<Probe> c(std::move(b));
    EXPECT_FALSE(b);
    EXPECT_EQ(a->count.load(), 2u);
  }
  EXPECT_EQ(a->count.load(), 1u);
  EXPECT_EQ(destroyed, 0);
  a.reset();
  EXPECT_EQ(destroyed, 1);
}

TEST(OmbraHandle, MakeUniqueStampsASoleRecord) {
  OT_Handle<Probe> a(new Probe);
  Probe* before = a.get();
  const std::uint32_t serial = a->serial;
  Probe* writable = make_unique(a);
  EXPECT_EQ(writable, before);
  EXPECT_NE(writable->serial, serial);
  EXPECT_EQ(writable->count.load(), 1u);
}

TEST(OmbraHandle, MakeUniqueClonesASharedRecord) {
  OT_Handle<Probe> a(new Probe);
  a->value = 7;
  OT_Handle<Probe> b = a;
  const std::uint32_t serial = a->serial;
  Probe* writable = make_unique(b);
  ASSERT_NE(writable, nullptr);
  EXPECT_NE(writable, a.get());
  EXPECT_EQ(b.get(), writable);
  EXPECT_EQ(writable->value, 7);
  EXPECT_EQ(writable->count.load(), 1u);
  EXPECT_EQ(a->count.load(), 1u);
  EXPECT_NE(writable->serial, serial);
  EXPECT_EQ(a->serial, serial);
}

TEST(OmbraMemory, AllocateAndRelease) {
  void* block = OB_AllocateMemory(64, nullptr);
  ASSERT_NE(block, nullptr);
  std::memset(block, 0xAB, 64);
  OB_ReleaseMemory(block);
}

}  // namespace
