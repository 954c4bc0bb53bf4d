#include "host/commands/film_report.h"

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "host/files/output_file.h"
#include "host/files/path_text.h"
#include "host/options/size.h"
#include "host/terminal/terminal.h"

namespace kelto::host {
namespace {

std::string Fixed(double value, const char* unit) {
  char text[64];
  std::snprintf(text, sizeof text, "%.1f %s", value, unit);
  return text;
}

/// In the powers of ten that file managers show.
std::string BytesText(uintmax_t bytes) {
  const auto count = static_cast<double>(bytes);
  if (bytes >= 1000000000) return Fixed(count / 1e9, "GB");
  if (bytes >= 1000000) return Fixed(count / 1e6, "MB");
  return Fixed(count / 1e3, "kB");
}

}  // namespace

std::string FilmReport(const FilmKind& kind, const FilmRequest& request, double seconds) {
  std::string text = request.output + ": ";
  const std::string size = ToString(request.format.size);
  if (kind.pictures) {
    text += std::to_string(request.frames) + (request.frames == 1 ? " picture, " : " pictures, ");
    text += size;
  } else {
    text += Fixed(request.frames / request.format.rate.PerSecond(), "s, ") + size;
    std::error_code error;
    const uintmax_t bytes = std::filesystem::file_size(ForCalls(PathOf(request.output)), error);
    if (!error) text += ", " + BytesText(bytes);
  }
  return text + ", in " + Fixed(seconds, "s");
}

void FilmClock::Report(const FilmKind& kind, const FilmRequest& request) const {
  if (request.output == kStandardOutput || CurrentReporting() != Reporting::kUsual ||
      !StandardErrorDraws()) {
    return;
  }
  const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start_;
  PrintMessage(FilmReport(kind, request, passed.count()));
}

}  // namespace kelto::host
