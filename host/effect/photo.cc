#include "host/effect/photo.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>
#include <type_traits>
#include <vector>

#include "host/base/error.h"
#include "host/effect/effect_name.h"
#include "host/effect/small_photo.h"
#include "host/files/input_file.h"
#include "host/files/path_text.h"
#include "platform/still_importer.h"
#include "platform/still_reduction.h"
#include "runtime/stills/turned_name.h"

namespace kelto::host {
namespace {

constexpr const char* kSeparators = std::filesystem::path::preferred_separator == '/' ? "/" : "\\/";

struct Close {
  void operator()(GraphicsImportComponent importer) const { CloseComponent(importer); }
};
using Importer = std::unique_ptr<std::remove_pointer_t<GraphicsImportComponent>, Close>;

/// What a picture takes while the effect loads it: its pixels and what decoding them takes, then
/// the pixels and their conversion to Y, Cr and Cb.
uint64_t MemoryOf(const Photo& photo, uint64_t scratch) {
  constexpr uint64_t kDecoded = 4, kConverted = 3;  // bytes a pixel
  const uint64_t pixels = static_cast<uint64_t>(photo.width) * static_cast<uint64_t>(photo.height);
  return kDecoded * pixels + std::max(scratch, kConverted * pixels);
}

/// Why the importer failed, without the path that messages begin with anyway.
std::string Reason(const std::string& path) {
  std::string reason = StillImporterLastError();
  // By its length: the importer shows question marks for what would break its line.
  const size_t name = path.size() - (path.find_last_of(kSeparators) + 1);
  if (reason.size() > name && reason.compare(name, 2, ": ") == 0) reason.erase(0, name + 2);
  return reason.empty() ? "unknown form" : TextFromEffect(reason);
}

void CheckPicture(const std::string& path) {
  CheckFile(path, "a picture");
  std::FILE* file = OpenFile(PathOf(path), "rb");
  if (file == nullptr) {
    throw Error(path + ": cannot be read: " + std::generic_category().message(errno));
  }
  std::fclose(file);
}

Importer OpenImporter(const std::string& path) {
  FSSpec spec{};
  GraphicsImportComponent importer = nullptr;
  if (MakeFileSpecification(path.c_str(), &spec) != noErr) return nullptr;
  if (GetGraphicsImporterForFile(&spec, &importer) != noErr) return nullptr;
  return Importer(importer);
}

/// Decodes the whole picture into `pixels`; false when that fails.
bool Draw(GraphicsImportComponent importer, std::vector<uint8_t>& pixels) {
  StillRect bounds{};
  if (GraphicsImportGetNaturalBounds(importer, &bounds) != noErr) return false;
  const int32_t rowBytes = 4 * (bounds.right - bounds.left);
  pixels.resize(static_cast<size_t>(rowBytes) * (bounds.bottom - bounds.top));
  GWorldPtr world = nullptr;
  if (QTNewGWorldFromPtr(&world, k32BGRAPixelFormat, &bounds, nullptr, nullptr, 0, pixels.data(),
                         rowBytes) != noErr) {
    return false;
  }
  const bool drawn = GraphicsImportSetGWorld(importer, world, nullptr) == noErr &&
                     GraphicsImportDraw(importer) == noErr;
  DisposeGWorld(world);
  return drawn;
}

}  // namespace

std::string PhotoName(const RenderPlan& plan) {
  return stills::NameTurnedBy(plan.photo, plan.rotate);
}

PhotoNameParts PartsOfPhotoName(const std::string& name) {
  const stills::TurnedName turned = stills::SplitTurnedName(name);
  return {turned.path, turned.quarters * 90};
}

std::string NameAt(const std::string& path, const Photo& photo) {
  std::string name = stills::NameTurnedBy(path, photo.rotate);
  if (name.size() <= kEffectPathBytes) return name;
  throw Error(photo.given +
              ": its path is too long for a photo that is turned; change to the photo's folder or "
              "link to it");
}

Photo OpenPhoto(const std::string& name) {
  const auto [path, rotate] = PartsOfPhotoName(name);
  CheckPicture(path);
  const EffectName file = NameForEffect(path);
  Photo photo{path, file.text};
  photo.rotate = rotate;
  photo.path = NameAt(file.text, photo);
  photo.file = file.file;
  const Importer importer = OpenImporter(photo.path);
  if (!importer) throw Error(path + ": cannot be read as a picture: " + Reason(photo.path));
  StillRect bounds{};
  if (GraphicsImportGetNaturalBounds(importer.get(), &bounds) != noErr) {
    throw Error(path + ": cannot be read as a picture: " + Reason(photo.path));
  }
  photo.width = bounds.right - bounds.left;
  photo.height = bounds.bottom - bounds.top;
  photo.memory = MemoryOf(photo, StillImporterScratchBytes(importer.get()));
  return photo;
}

std::vector<uint8_t> DecodePhoto(const Photo& photo) {
  PixelSize size;
  return DecodePhoto(photo, 1, size);
}

std::vector<uint8_t> DecodePhoto(const Photo& photo, int32_t by, PixelSize& size) {
  const Importer importer = OpenImporter(photo.path);
  std::vector<uint8_t> pixels;
  StillRect bounds{};
  StillImporterReduce(importer.get(), by);
  if (importer && GraphicsImportGetNaturalBounds(importer.get(), &bounds) == noErr) {
    size = {bounds.right - bounds.left, bounds.bottom - bounds.top};
  }
  if (!importer || !Draw(importer.get(), pixels)) {
    throw Error(photo.given + ": cannot be read as a picture: " + Reason(photo.path));
  }
  return pixels;
}

std::optional<std::string> FindFault(const Photo& photo) {
  const Importer importer = OpenImporter(photo.path);
  std::vector<uint8_t> pixels;
  if (importer && Draw(importer.get(), pixels)) return std::nullopt;
  return Reason(photo.path);
}

std::optional<std::string> FindFlaw(const Photo& photo) {
  const Importer importer = OpenImporter(photo.path);
  const std::string flaw = importer ? StillImporterFlaw(importer.get()) : "";
  if (flaw.empty()) return std::nullopt;
  return photo.given + ": " + flaw + "; its colours are taken for sRGB";
}

}  // namespace kelto::host
