// What several workers print alike, for the user once.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace kelto::host {

/// Separates new lines from those that another worker has printed already. A line that one
/// worker prints twice is news twice.
class SharedConsole {
 public:
  explicit SharedConsole(size_t workers) : counts_(workers) {}

  /// Whether `text`, printed by `worker`, is to be shown.
  bool IsNews(size_t worker, const std::string& text) {
    const int count = ++counts_[worker][text];
    int& shown = shown_[text];
    if (count <= shown) return false;
    shown = count;
    return true;
  }

 private:
  std::vector<std::map<std::string, int>> counts_;
  std::map<std::string, int> shown_;
};

}  // namespace kelto::host
