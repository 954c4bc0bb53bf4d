#include "adapters/frei0r/console.h"

#include <algorithm>
#include <cstdio>
#include <mutex>
#include <set>

namespace kelto::frei0r {
namespace {

constexpr size_t kMaxLine = 600;
/// When so many have been said, what was said is forgotten.
constexpr size_t kMaxRemembered = 1000;

}  // namespace

void SayOnce(const std::string& text, const std::string& topic) {
  static std::mutex mutex;
  static auto& said = *new std::set<std::string>;  // outlives render threads that outlive exit()
  const std::lock_guard lock(mutex);
  if (said.size() >= kMaxRemembered) said.clear();
  if (!said.insert(topic.empty() ? text : topic).second) return;
  std::string line = text.substr(0, kMaxLine);
  std::replace_if(
      line.begin(), line.end(), [](unsigned char c) { return c < 32 || c == 127; }, '?');
  std::fprintf(stderr, "kelto_pan_zoom: %s\n", line.c_str());
}

}  // namespace kelto::frei0r
