#include "adapters/frei0r/row_length.h"

#include <dlfcn.h>

#include <string_view>

namespace kelto::frei0r {
namespace {

/// FFmpeg's filter library pads rows so in this major version, FFmpeg 5. Another one may be entered
/// once the tests of odd widths pass with it.
constexpr unsigned kMeasuredMajor = 8;
constexpr uint32_t kPixelsOf64Bytes = 16;

constexpr std::string_view kFfmpegsFilters = "libavfilter", kGstreamersWrapper = "libgstfrei0r";

/// The file of the library, by a part of its name, when `code` lies in that; else null.
const char* FileOf(std::string_view library, const void* code) {
  Dl_info info{};
  if (dladdr(code, &info) == 0 || info.dli_fname == nullptr) return nullptr;
  return std::string_view(info.dli_fname).find(library) != std::string_view::npos ? info.dli_fname
                                                                                  : nullptr;
}

bool IsMeasuredFilterLibrary(const void* code) {
  const char* file = FileOf(kFfmpegsFilters, code);
  if (file == nullptr) return false;
  void* library = dlopen(file, RTLD_NOW | RTLD_NOLOAD);
  if (library == nullptr) return false;
  const auto version = reinterpret_cast<unsigned (*)()>(dlsym(library, "avfilter_version"));
  const bool measured = version != nullptr && version() >> 16 == kMeasuredMajor;
  dlclose(library);
  return measured;
}

}  // namespace

uint32_t RowLength(const void* caller, uint32_t width) {
  if (width % kPixelsOf64Bytes == 0 || !IsMeasuredFilterLibrary(caller)) return width;
  return width + kPixelsOf64Bytes - width % kPixelsOf64Bytes;
}

FrameClock ClockOf(const void* caller) {
  if (FileOf(kFfmpegsFilters, caller) != nullptr) return FrameClock::OfMilliseconds();
  if (FileOf(kGstreamersWrapper, caller) != nullptr) return FrameClock::OfSeconds();
  return {};
}

}  // namespace kelto::frei0r
