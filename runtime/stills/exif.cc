#include "runtime/stills/exif.h"

#include <libexif/exif-data.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "runtime/stills/limits.h"

namespace kelto::stills {
namespace {

constexpr uint8_t kHeader[] = {'E', 'x', 'i', 'f', 0, 0};

struct ExifDataFreer {
  void operator()(ExifData* data) const { exif_data_unref(data); }
};

}  // namespace

int ExifOrientation(std::span<const uint8_t> exif) {
  if (exif.size() < sizeof kHeader) return 1;
  std::vector<uint8_t> block;
  if (!std::equal(std::begin(kHeader), std::end(kHeader), exif.begin())) {
    block.assign(std::begin(kHeader), std::end(kHeader));
  }
  const auto kept = exif.first(std::min<size_t>(exif.size(), kMaxExifBytes));
  block.insert(block.end(), kept.begin(), kept.end());

  const std::unique_ptr<ExifData, ExifDataFreer> data(
      exif_data_new_from_data(block.data(), static_cast<unsigned>(block.size())));
  if (!data) return 1;
  const ExifEntry* entry = exif_content_get_entry(data->ifd[EXIF_IFD_0], EXIF_TAG_ORIENTATION);
  if (entry == nullptr || entry->format != EXIF_FORMAT_SHORT || entry->components < 1 ||
      entry->size < 2) {
    return 1;
  }
  return ValidOrientation(exif_get_short(entry->data, exif_data_get_byte_order(data.get())));
}

}  // namespace kelto::stills
