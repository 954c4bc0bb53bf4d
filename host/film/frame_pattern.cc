#include "host/film/frame_pattern.h"

#include <filesystem>

#include "host/error.h"
#include "host/files/narrow_text.h"

namespace kelto::host {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

FramePattern::FramePattern(const std::string& path) {
  const size_t nameStart = path.size() - NarrowText(std::filesystem::path(path).filename()).size();
  before_ = path.substr(0, nameStart);
  std::string* text = &before_;
  for (size_t i = nameStart; i < path.size(); ++i) {
    if (path[i] != '%') {
      *text += path[i];
      continue;
    }
    const std::string rest = path.substr(i + 1, 3);
    if (rest.starts_with('%')) {
      *text += '%';
      ++i;
    } else if (!numbered_ && rest.starts_with('d')) {
      numbered_ = true;
      i += 1;
      text = &after_;
    } else if (!numbered_ && rest.size() == 3 && rest[0] == '0' && IsDigit(rest[1]) &&
               rest[1] != '0' && rest[2] == 'd') {
      numbered_ = true;
      digits_ = static_cast<size_t>(rest[1] - '0');
      i += 3;
      text = &after_;
    } else {
      throw UsageError(path +
                       ": the name takes one number, written %d or %04d (and %% for a percent "
                       "sign)");
    }
  }
}

std::string FramePattern::PathOf(int32_t number) const {
  if (!numbered_) return before_;
  std::string digits = std::to_string(number);
  if (digits.size() < digits_) digits.insert(0, digits_ - digits.size(), '0');
  return before_ + digits + after_;
}

}  // namespace kelto::host
