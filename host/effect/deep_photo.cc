#include "host/effect/deep_photo.h"

#include "host/base/error.h"
#include "runtime/stills/deep_reader.h"

namespace kelto::host {
namespace {

/// What a picture may take of a process's addresses, of which one of 32 bits has 2 to 4 GiB.
constexpr uint64_t kMostBytes = sizeof(void*) > 4 ? UINT64_MAX : uint64_t{3} << 29;

using stills::DeepInfo;
using stills::DeepReader;

DeepSample SampleOf(const DeepInfo& info) {
  return info.floats ? DeepSample::kFloat32 : DeepSample::kUnsigned16;
}

template <typename Work>
auto Reading(const Photo& photo, const Work& work) {
  try {
    DeepReader reader(photo.path);
    return work(reader);
  } catch (const stills::StillError& error) {
    throw Error(photo.given + ": cannot be read as a picture: " + error.reason);
  }
}

DeepPicture ReadFrom(DeepReader& reader) {
  const DeepInfo& info = reader.info();
  const auto width = static_cast<int32_t>(info.width), height = static_cast<int32_t>(info.height);
  DeepPicture picture(width, height, SampleOf(info), true);
  const DeepTarget rows = picture.view();
  const bool transparent = reader.Read(rows.pixels, rows.rowBytes);
  picture.SetHasAlpha(transparent);
  return picture;
}

}  // namespace

void FindDepth(Photo& photo) {
  try {
    DeepReader reader(photo.path);
    const DeepInfo& info = reader.info();
    photo.bits = info.bits;
    photo.deepMemory =
        DeepPicture::BytesFor(photo.width, photo.height, SampleOf(info)) + info.scratch;
    if (photo.deepMemory > kMostBytes) {
      photo.bits = 8;
      photo.deepMemory = 0;
    }
  } catch (const stills::StillError&) {
    // Too large for that, but not for the effect, which has opened it.
    photo.bits = 8;
    photo.deepMemory = 0;
  }
}

bool IsTransparent(const Photo& photo) {
  if (photo.deepMemory == 0) return false;
  return Reading(
      photo, [](DeepReader& reader) { return reader.info().alpha && ReadFrom(reader).hasAlpha(); });
}

DeepPicture ReadDeepPhoto(const Photo& photo) { return Reading(photo, ReadFrom); }

}  // namespace kelto::host
