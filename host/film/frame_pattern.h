// File names of numbered pictures.
#pragma once

#include <cstdint>
#include <string>

namespace kelto::host {

/// A path whose file name may hold a place for a number: "%d", or "%04d" for at least four digits.
/// "%%" is a percent sign. Only these are understood: the pattern is the user's text and never
/// reaches a formatting function.
class FramePattern {
 public:
  /// Throws UsageError for any other percent sign in the file name, and for a second place.
  explicit FramePattern(const std::string& path);

  bool Numbered() const { return numbered_; }
  /// The path of picture `number`, 0 or more; without a place always the same.
  std::string PathOf(int32_t number) const;

 private:
  std::string before_, after_;
  bool numbered_ = false;
  size_t digits_ = 1;
};

}  // namespace kelto::host
