// What a test's process holds at the most.
#pragma once

#include <cstdint>
#include <fstream>
#include <string>

namespace kelto::test {

#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool kMemoryIsMeasured = false;  // the sanitizer's own is in the same account
#else
inline constexpr bool kMemoryIsMeasured = true;
#endif

inline int64_t StatusKiB(const std::string& name) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.rfind(name, 0) == 0) return std::stoll(line.substr(name.size() + 1));
  }
  return 0;
}

/// How much more memory this process held at the most since the object was made.
class PeakMemory {
 public:
  PeakMemory() {
    std::ofstream("/proc/self/clear_refs") << "5";
    before_ = StatusKiB("VmRSS");
  }
  int64_t MiB() const { return kMemoryIsMeasured ? (StatusKiB("VmHWM") - before_) / 1024 : 0; }

 private:
  int64_t before_;
};

}  // namespace kelto::test
