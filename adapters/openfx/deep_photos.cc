#include "adapters/openfx/deep_photos.h"

#include <algorithm>
#include <system_error>

#include "adapters/frei0r/adapter.h"
#include "runtime/stills/deep_reader.h"
#include "runtime/stills/turned_name.h"

namespace kelto::openfx {
namespace {

constexpr uint64_t kProcessBudget = uint64_t{512} << 20;

}  // namespace

void DeepPhotos::MakeRoom(uint64_t bytes) {
  const uint64_t taken = others_() + bytes;
  while (!kept_.empty() && bytes_ + taken > budget_) {
    bytes_ -= kept_.front().photo->bytes();
    kept_.erase(kept_.begin());
  }
}

/// Room is made before, so that the budget holds while it is decoded, too.
std::shared_ptr<const DeepPicture> DeepPhotos::Decode(const std::string& file,
                                                      std::string& reason) {
  try {
    stills::DeepReader reader(file);
    const stills::DeepInfo& info = reader.info();
    const DeepSample sample = info.floats ? DeepSample::kFloat32 : DeepSample::kUnsigned16;
    const auto width = static_cast<int32_t>(info.width), height = static_cast<int32_t>(info.height);
    MakeRoom(DeepPicture::BytesFor(width, height, sample));
    auto photo = std::make_shared<DeepPicture>(width, height, sample, info.alpha);
    const DeepTarget rows = photo->view();
    // Files with alpha are often opaque throughout, which is drawn faster.
    photo->SetHasAlpha(reader.Read(rows.pixels, rows.rowBytes));
    ++decoded_;
    return photo;
  } catch (const stills::StillError& error) {
    reason = file + ": drawn with 8 bits, since all of them cannot be read: " + error.reason;
    return nullptr;
  }
}

std::shared_ptr<const DeepPicture> DeepPhotos::Get(const std::string& file, std::string& reason) {
  const std::lock_guard lock(mutex_);
  std::error_code unknown;
  const auto written =
      std::filesystem::last_write_time(stills::SplitTurnedName(file).path, unknown);
  const auto found = std::find_if(kept_.begin(), kept_.end(),
                                  [&](const Kept& entry) { return entry.file == file; });
  if (found != kept_.end() && found->written == written) {
    std::rotate(found, found + 1, kept_.end());
    return kept_.back().photo;
  }
  if (found != kept_.end()) {
    bytes_ -= found->photo->bytes();
    kept_.erase(found);
  }
  std::shared_ptr<const DeepPicture> photo = Decode(file, reason);
  if (!photo) return nullptr;
  kept_.push_back({file, written, photo});
  bytes_ += photo->bytes();
  return photo;
}

void DeepPhotos::Forget() {
  const std::lock_guard lock(mutex_);
  kept_.clear();
  bytes_ = 0;
}

uint64_t DeepPhotos::Bytes() const {
  const std::lock_guard lock(mutex_);
  return bytes_;
}

uint64_t DeepPhotos::Decoded() const {
  const std::lock_guard lock(mutex_);
  return decoded_;
}

DeepPhotos& ProcessDeepPhotos() {
  // Outlives render threads that outlive exit().
  static auto& photos = *new DeepPhotos(kProcessBudget, frei0r::Adapter::PictureBytes);
  return photos;
}

}  // namespace kelto::openfx
