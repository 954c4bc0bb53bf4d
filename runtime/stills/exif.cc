#include "runtime/stills/exif.h"

#include <libexif/exif-data.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

#include "runtime/stills/limits.h"

namespace kelto::stills {
namespace {

constexpr uint8_t kHeader[] = {'E', 'x', 'i', 'f', 0, 0};

struct ExifDataFreer {
  void operator()(ExifData* data) const { exif_data_unref(data); }
};
struct ExifMemFreer {
  void operator()(ExifMem* memory) const { exif_mem_unref(memory); }
};

/// libexif leaves out what it has no memory for, and says so to nobody.
thread_local bool ran_out_of_memory;

void* Noted(void* memory, ExifLong bytes) {
  ran_out_of_memory |= memory == nullptr && bytes != 0;
  return memory;
}
void* Allocate(ExifLong bytes) { return Noted(std::calloc(bytes, 1), bytes); }
void* Reallocate(void* memory, ExifLong bytes) { return Noted(std::realloc(memory, bytes), bytes); }

}  // namespace

int ExifOrientation(std::span<const uint8_t> exif) {
  if (exif.size() < sizeof kHeader) return 1;
  std::vector<uint8_t> block;
  if (!std::equal(std::begin(kHeader), std::end(kHeader), exif.begin())) {
    block.assign(std::begin(kHeader), std::end(kHeader));
  }
  const auto kept = exif.first(std::min<size_t>(exif.size(), kMaxExifBytes));
  block.insert(block.end(), kept.begin(), kept.end());

  ran_out_of_memory = false;
  const std::unique_ptr<ExifMem, ExifMemFreer> memory(
      exif_mem_new(Allocate, Reallocate, std::free));
  if (!memory) throw std::bad_alloc();
  const std::unique_ptr<ExifData, ExifDataFreer> data(exif_data_new_mem(memory.get()));
  if (!data) throw std::bad_alloc();
  exif_data_load_data(data.get(), block.data(), static_cast<unsigned>(block.size()));
  if (ran_out_of_memory) throw std::bad_alloc();
  const ExifEntry* entry = exif_content_get_entry(data->ifd[EXIF_IFD_0], EXIF_TAG_ORIENTATION);
  if (entry == nullptr || entry->format != EXIF_FORMAT_SHORT || entry->components < 1 ||
      entry->size < 2) {
    return 1;
  }
  return ValidOrientation(exif_get_short(entry->data, exif_data_get_byte_order(data.get())));
}

}  // namespace kelto::stills
