// File names of numbered pictures.
#pragma once

#include <cstdint>
#include <optional>
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
  /// Where the pictures are.
  std::string Folder() const;
  /// The number of the picture that may be the file `name` of that folder. Some file systems take
  /// other letters for the same, so that only PathOf of the number says whether it is. Without a
  /// place always nothing.
  std::optional<int32_t> NumberOf(const std::string& name) const;

 private:
  std::string before_, after_;
  size_t nameStart_ = 0;  ///< in `before_`, behind the folder
  bool numbered_ = false;
  size_t digits_ = 1;
};

}  // namespace kelto::host
