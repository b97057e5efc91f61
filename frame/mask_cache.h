// The cache of complex clip masks: the last few masks, most recently used
// first, shared between renderers through the option "Mask Cache".
#pragma once

#include "host/frame_buffer_mask.h"

class Mask_Cache_Data : public OT_Counted {
 public:
  Mask_Cache_Data() = default;
  // A new counted record over the same list: the masks are not copied.
  Mask_Cache_Data(const Mask_Cache_Data& other)
      : OT_Counted(other),
        head(other.head),
        tail(other.tail),
        mask_count(other.mask_count),
        limit(other.limit) {}
  Mask_Cache_Data& operator=(const Mask_Cache_Data&) = delete;
  ~Mask_Cache_Data() override { empty(); }
  OT_Counted* clone() const override { return new Mask_Cache_Data(*this); }

  // Destroys every mask of the list.
  void empty() {
    for (Frame_Buffer_Mask* mask = head; mask;) {
      Frame_Buffer_Mask* next = mask->next;
      delete mask;
      mask = next;
    }
    head = tail = nullptr;
    mask_count = 0;
  }

  Frame_Buffer_Mask* head = nullptr;  // most recently used
  Frame_Buffer_Mask* tail = nullptr;  // least recently used
  std::int32_t mask_count = 0;
  std::int32_t limit = 4;
};
