#include "host/film/frame_pattern.h"

#include <algorithm>
#include <cctype>
#include <limits>
#include <string_view>

#include "host/base/error.h"
#include "host/files/path_text.h"
#include "host/options/number.h"

namespace kelto::host {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// Whether some file system may take the one for the other: all letters beyond ASCII pass for
/// alike.
bool MayBeTheSame(unsigned char a, unsigned char b) {
  return (a >= 0x80 && b >= 0x80) || std::tolower(a) == std::tolower(b);
}

bool MayBeTheSame(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return MayBeTheSame(uint8_t(x), uint8_t(y)); });
}

}  // namespace

FramePattern::FramePattern(const std::string& path) {
  nameStart_ = path.size() - NameOf(path).size();
  before_ = path.substr(0, nameStart_);
  std::string* text = &before_;
  for (size_t i = nameStart_; i < path.size(); ++i) {
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

std::string FramePattern::Folder() const {
  return nameStart_ == 0 ? "." : before_.substr(0, nameStart_);
}

std::optional<int32_t> FramePattern::NumberOf(const std::string& name) const {
  const std::string_view before = std::string_view(before_).substr(nameStart_), text = name;
  if (!numbered_ || text.size() <= before.size() + after_.size()) return std::nullopt;
  const std::string_view digits =
      text.substr(before.size(), text.size() - before.size() - after_.size());
  if (!std::all_of(digits.begin(), digits.end(), IsDigit)) return std::nullopt;
  if (!MayBeTheSame(before, text.substr(0, before.size()))) return std::nullopt;
  if (!MayBeTheSame(after_, text.substr(text.size() - after_.size()))) return std::nullopt;
  const auto number = ParseWhole(digits);
  if (!number || *number > std::numeric_limits<int32_t>::max()) return std::nullopt;
  return static_cast<int32_t>(*number);
}

}  // namespace kelto::host
