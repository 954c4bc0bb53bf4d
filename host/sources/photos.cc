#include "host/sources/photos.h"

#include <limits>
#include <optional>
#include <vector>

#include "host/base/error.h"
#include "host/effect/deep_photo.h"
#include "host/effect/effect_name.h"
#include "host/processes/reader_process.h"
#include "host/terminal/terminal.h"

namespace kelto::host {
namespace {

/// Each for what those before it look for, too.
enum class LookingFor { kSize, kTransparency, kFlaws, kFaults };

Photo Looked(const std::string& photoName, LookingFor what) {
  const auto [path, rotate] = PartsOfPhotoName(photoName);
  std::optional<Photo> opened;  // where the work is done in this process
  const std::vector<double> found = NumbersApart(path, 6, [&, path = path] {
    opened = OpenPhoto(photoName);
    FindDepth(*opened);
    if (what == LookingFor::kFaults) {
      if (const auto fault = FindFault(*opened)) {
        throw Error(path + ": cannot be read as a picture: " + *fault);
      }
    }
    if (what >= LookingFor::kFlaws) {
      if (const auto flaw = FindFlaw(*opened)) Warn(*flaw);
    }
    if (what != LookingFor::kSize) opened->transparent = IsTransparent(*opened);
    return std::vector<double>{
        static_cast<double>(opened->width),      static_cast<double>(opened->height),
        static_cast<double>(opened->memory),     static_cast<double>(opened->bits),
        static_cast<double>(opened->deepMemory), opened->transparent ? 1.0 : 0.0};
  });
  if (opened) return *opened;
  constexpr int64_t kMostSide = std::numeric_limits<int16_t>::max();  // as the importer has it
  constexpr int64_t kMostMemory = int64_t{1} << 50;
  const EffectName name = NameForEffect(path);
  Photo photo{path, name.text};
  photo.rotate = rotate;
  photo.path = NameAt(name.text, photo);
  photo.width = static_cast<int32_t>(IntegerFrom(found[0], 1, kMostSide, path));
  photo.height = static_cast<int32_t>(IntegerFrom(found[1], 1, kMostSide, path));
  photo.memory = static_cast<uint64_t>(IntegerFrom(found[2], 0, kMostMemory, path));
  photo.bits = static_cast<int32_t>(IntegerFrom(found[3], 8, 32, path));
  photo.deepMemory = static_cast<uint64_t>(IntegerFrom(found[4], 0, kMostMemory, path));
  photo.transparent = IntegerFrom(found[5], 0, 1, path) == 1;
  photo.file = name.file;
  return photo;
}

}  // namespace

Photo LookAtPhoto(const std::string& name) { return Looked(name, LookingFor::kSize); }

Photo LookThroughPhoto(const std::string& name) { return Looked(name, LookingFor::kTransparency); }

Photo CheckPhoto(const std::string& name) { return Looked(name, LookingFor::kFlaws); }

Photo CheckWholePhoto(const std::string& name) { return Looked(name, LookingFor::kFaults); }

}  // namespace kelto::host
