// The root of the host's object tree: heap, destruction and serials.
#include <atomic>
#include <cstdlib>

#include "host/ob_functions.h"

OT_Object::~OT_Object() = default;

namespace {
// Objects on the host's heap, for leak checks.
std::atomic<std::int64_t> live_objects{0};

void* allocate_object(std::size_t size) {
  void* memory = std::malloc(size ? size : 1);
  if (memory) live_objects.fetch_add(1, std::memory_order_relaxed);
  return memory;
}
void free_object(void* memory) {
  if (memory) live_objects.fetch_sub(1, std::memory_order_relaxed);
  std::free(memory);
}
}  // namespace

std::int64_t OB_Live_Objects() { return live_objects.load(std::memory_order_relaxed); }

// The host's heap is the C heap: failure answers null rather than throwing,
// so that a new-expression on this tree yields null and runs no constructor.
void* OT_Object::operator new(std::size_t size) noexcept { return allocate_object(size); }

void OT_Object::operator delete(void* memory) noexcept { free_object(memory); }

void OT_Object::destroy(unsigned flags) {
  // The start of the whole object, taken before its destructor runs: with
  // several bases this need not be `this`.
  void* whole = dynamic_cast<void*>(this);
  this->~OT_Object();
  if (flags & 1) free_object(whole);
}

std::uint32_t OB_New_Serial() { return OMBRA.serial_counter.fetch_add(1, std::memory_order_relaxed) + 1; }

OT_Counted* OT_Counted::clone() const { return nullptr; }

void* OB_AllocateMemory(std::size_t size, OmbraHeap*) { return std::malloc(size ? size : 1); }

void OB_ReleaseMemory(void* memory) { std::free(memory); }
