#include "adapters/frei0r/console.h"

#include <cstdio>
#include <mutex>
#include <set>

#include "host/base/shown_text.h"

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
  const std::string line = host::ShownText(text.substr(0, kMaxLine));
  std::fprintf(stderr, "kelto_pan_zoom: %s\n", line.c_str());
}

}  // namespace kelto::frei0r
