#include "adapters/openfx/deep_photos.h"

#include <algorithm>
#include <filesystem>
#include <mutex>
#include <system_error>
#include <vector>

#include "runtime/stills/deep_reader.h"

namespace kelto::openfx {
namespace {

constexpr size_t kBudget = size_t{512} << 20;

struct Kept {
  std::string file;
  std::filesystem::file_time_type written;  ///< when the file was, as it was read
  std::shared_ptr<const DeepPicture> photo;
};

struct Photos {
  std::mutex mutex;        ///< one decodes at a time, so that a photograph is not decoded twice
  std::vector<Kept> kept;  ///< the one asked for last at the end
};

Photos& ThePhotos() {
  static auto& photos = *new Photos;  // outlives render threads that outlive exit()
  return photos;
}

std::shared_ptr<const DeepPicture> Decoded(const std::string& file) {
  try {
    stills::DeepReader reader(file);
    const stills::DeepInfo& info = reader.info();
    const DeepSample sample = info.floats ? DeepSample::kFloat32 : DeepSample::kUnsigned16;
    auto photo = std::make_shared<DeepPicture>(
        static_cast<int32_t>(info.width), static_cast<int32_t>(info.height), sample, info.alpha);
    const DeepTarget rows = photo->view();
    // Files with alpha are often opaque throughout, which is drawn faster.
    photo->SetHasAlpha(reader.Read(rows.pixels, rows.rowBytes));
    return photo;
  } catch (const stills::StillError&) {
    return nullptr;
  }
}

}  // namespace

std::shared_ptr<const DeepPicture> DeepPhoto(const std::string& file) {
  Photos& photos = ThePhotos();
  const std::lock_guard lock(photos.mutex);
  std::vector<Kept>& kept = photos.kept;
  std::error_code unknown;
  const auto written = std::filesystem::last_write_time(file, unknown);
  const auto found = std::find_if(kept.begin(), kept.end(), [&](const Kept& entry) {
    return entry.file == file && entry.written == written;
  });
  if (found != kept.end()) {
    std::rotate(found, found + 1, kept.end());
    return kept.back().photo;
  }
  std::erase_if(kept, [&](const Kept& entry) { return entry.file == file; });
  std::shared_ptr<const DeepPicture> photo = Decoded(file);
  if (!photo) return nullptr;
  kept.push_back({file, written, photo});
  size_t bytes = 0;
  for (const Kept& entry : kept) bytes += entry.photo->bytes();
  while (kept.size() > 1 && bytes > kBudget) {
    bytes -= kept.front().photo->bytes();
    kept.erase(kept.begin());
  }
  return photo;
}

void ForgetDeepPhotos() {
  Photos& photos = ThePhotos();
  const std::lock_guard lock(photos.mutex);
  photos.kept.clear();
}

}  // namespace kelto::openfx
