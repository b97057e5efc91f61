// The root of the host's object tree: heap, destruction and serials.
#include <cstdlib>

#include "host/ob_functions.h"

OT_Object::~OT_Object() = default;

// The host's heap is the C heap: failure answers null rather than throwing,
// so that a new-expression on this tree yields null and runs no constructor.
void* OT_Object::operator new(std::size_t size) noexcept { return std::malloc(size ? size : 1); }

void OT_Object::operator delete(void* memory) noexcept { std::free(memory); }

void OT_Object::destroy(unsigned flags) {
  // The start of the whole object, taken before its destructor runs: with
  // several bases this need not be `this`.
  void* whole = dynamic_cast<void*>(this);
  this->~OT_Object();
  if (flags & 1) std::free(whole);
}

std::uint32_t OB_New_Serial() { return OMBRA.serial_counter.fetch_add(1, std::memory_order_relaxed) + 1; }

OT_Counted* OT_Counted::clone() const { return nullptr; }

void* OB_AllocateMemory(std::size_t size, OmbraHeap*) { return std::malloc(size ? size : 1); }

void OB_ReleaseMemory(void* memory) { std::free(memory); }
