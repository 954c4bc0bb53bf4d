#include "host/machine/checks.h"

#include <exception>
#include <filesystem>
#include <fstream>
#include <random>
#include <span>
#include <string>
#include <system_error>
#include <vector>

#include "host/base/error.h"
#include "host/effect/photo.h"
#include "host/files/path_text.h"
#include "host/film/codecs.h"
#include "host/film/coded_films.h"
#include "host/film/depth.h"
#include "host/film/formats.h"
#include "host/film/hardware.h"
#include "host/frames/effect_session.h"
#include "host/machine/sample_stills.h"
#include "host/plan/default_plan.h"

namespace kelto::host {
namespace {

namespace fs = std::filesystem;

/// Large enough for every encoder, and still small.
constexpr FrameSize kSize{128, 96};

/// A folder that goes with the object.
class WorkFolder {
 public:
  WorkFolder() {
    std::random_device random;
    path_ = fs::temp_directory_path() / ("kelto-doctor-" + std::to_string(random()));
    fs::create_directory(path_);
  }
  ~WorkFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;
  std::string operator/(const std::string& name) const { return TextOf(path_ / PathOf(name)); }

 private:
  fs::path path_;
};

template <typename Work>
Check Try(const std::string& name, Work work) {
  try {
    work();
    return {name, ""};
  } catch (const std::exception& error) {
    return {name, error.what()};
  }
}

std::string WriteSample(const WorkFolder& folder, const SampleStill& still) {
  std::string path = folder / (std::string("still.") + still.ending);
  const std::vector<uint8_t> bytes = BytesOf(still);
  std::ofstream file(ForCalls(PathOf(path)), std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  if (!file.flush()) throw Error(path + ": cannot be written");
  return path;
}

void WriteFilm(const FilmKind& kind, const std::string& path, const std::string& codec,
               const std::string& hardware = "") {
  FilmRequest request;
  request.output = path;
  request.format.size = kSize;
  request.frames = 2;
  request.codec = codec;
  request.hardware = hardware;
  CheckRequest(kind, request);
  const std::unique_ptr<FrameSink> film = kind.open(request);
  const size_t rowBytes =
      static_cast<size_t>(kSize.width) * BytesPerPixel(FrameLayout(kind, request));
  const std::vector<uint8_t> grey(rowBytes * kSize.height, 128);
  for (int32_t i = 0; i < request.frames; ++i) {
    film->Write({grey.data(), static_cast<ptrdiff_t>(rowBytes), kSize});
  }
  film->Finish();
}

/// A message without the path of a file that is gone by then.
Check WithoutPath(Check check, const std::string& path) {
  if (check.fault.starts_with(path + ": ")) check.fault.erase(0, path.size() + 2);
  return check;
}

}  // namespace

std::vector<Check> TryStills() {
  const WorkFolder folder;
  std::vector<Check> checks;
  for (const SampleStill& still : SampleStills()) {
    std::string path;
    const Check check = Try(still.form, [&] {
      path = WriteSample(folder, still);
      if (const auto fault = FindFault(OpenPhoto(path))) throw Error(*fault);
    });
    checks.push_back(WithoutPath(check, path));
  }
  return checks;
}

std::vector<Check> TryFilms() {
  const WorkFolder folder;
  std::vector<Check> checks;
  const auto codecs = CodedFilmKinds().empty() ? std::span<const FilmCodec>() : FilmCodecs();
  for (const FilmCodec& codec : codecs) {
    const char* kind = codec.kinds.front();
    const std::string path = folder / ("film." + std::string(kind));
    const std::string encoder = InstalledEncoder(codec, kSize);
    std::string name = std::string(codec.name) + " in " + kind;
    if (!encoder.empty()) name += ", by " + encoder;
    checks.push_back(
        WithoutPath(Try(name, [&] { WriteFilm(KindFor(path, ""), path, codec.name); }), path));
  }
  for (const FilmKind& kind : FilmKinds()) {
    if (IsContainer(kind.name)) continue;
    const std::string path = folder / ("film-%d." + std::string(kind.name));
    checks.push_back(WithoutPath(Try(kind.name, [&] { WriteFilm(kind, path, ""); }), path));
  }
  return checks;
}

std::vector<Check> TryHardware() {
  if (CodedFilmKinds().empty()) return {};
  const WorkFolder folder;
  std::vector<Check> checks;
  for (const char* hardware : HardwareWords()) {
    for (const FilmCodec& codec : FilmCodecs()) {
      if (EncodersOf(codec, hardware).empty()) continue;
      const std::string kind = codec.kinds.front(), path = folder / ("film." + kind);
      checks.push_back(
          WithoutPath(Try(std::string(codec.name) + " by " + hardware,
                          [&] { WriteFilm(KindFor(path, ""), path, codec.name, hardware); }),
                      path));
    }
  }
  return checks;
}

Check TryModule(const std::string& path) {
  const WorkFolder folder;
  return Try(path, [&] {
    RenderPlan plan = DefaultPlan(WriteSample(folder, SampleStills()[1]));
    plan.format.size = kSize;
    plan.frames = 1;
    EffectSession session(path, plan, OpenPhoto(PhotoName(plan)), PixelLayout::kBGRA);
    session.Render(0);
  });
}

}  // namespace kelto::host
