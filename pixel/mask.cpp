#include "pixel/mask.h"

namespace tarn {
namespace {

void move_to_head(Mask_Cache_Data& cache, Frame_Buffer_Mask* entry) {
  if (entry == cache.head) return;
  if (entry == cache.tail) {
    cache.tail = entry->previous;
    cache.tail->next = nullptr;
  } else {
    entry->previous->next = entry->next;
    entry->next->previous = entry->previous;
  }
  entry->next = cache.head;
  entry->previous = nullptr;
  cache.head->previous = entry;
  cache.head = entry;
}

}  // namespace

Frame_Buffer_Mask* find_or_make(Mask_Cache_Data& cache, const OT_Contour_Set& clip, int width, int height,
                                int origin_x, int origin_y) {
  const std::uint32_t key = clip ? clip->serial : 0;
  for (Frame_Buffer_Mask* mask = cache.head; mask; mask = mask->next)
    if (mask->key == key) {
      move_to_head(cache, mask);
      return mask;
    }
  if (cache.mask_count >= cache.limit) {
    // The least recently used mask is rebuilt in place.
    Frame_Buffer_Mask* mask = cache.tail;
    mask->establish_configuration(width, height, origin_x, origin_y);
    mask->clear_and_rasterize_mask(clip);
    move_to_head(cache, mask);
    return mask;
  }
  Frame_Buffer_Mask* mask = new Frame_Buffer_Mask;
  mask->establish_configuration(width, height, origin_x, origin_y);
  mask->clear_and_rasterize_mask(clip);
  mask->next = cache.head;
  if (cache.head) cache.head->previous = mask;
  cache.head = mask;
  if (!cache.tail) cache.tail = mask;
  ++cache.mask_count;
  return mask;
}

bool mask_in_force_with_cache(const Software_Z_Buffer& renderer, const OT_Rendition& rendition) {
  const OT_Rendition_Device& device = *rendition->device;
  const OT_Contour_Set* clip = &device.complex_clip;
  if (*clip && (device.extent.left < 0 || device.extent.bottom < 0)) clip = &rendition.shifted_complex_clip();
  if (!*clip) return false;
  Mask_Cache_Data& cache = *renderer.mask_cache;
  if (cache.head && cache.head->key == (*clip)->serial) return true;
  find_or_make(cache, *clip, renderer.width, renderer.height, renderer.origin_x, renderer.origin_y);
  return true;
}

}  // namespace tarn
