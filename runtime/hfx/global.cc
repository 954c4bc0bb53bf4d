#include <cstdarg>
#include <cstdio>
#include <utility>

#include "runtime/hfx/host.h"

namespace {

std::function<void(const std::string&)>& Console() {
  // Never destroyed: modules that a program unloads while it exits may still have something to say.
  static auto& sink = *new std::function<void(const std::string&)>;
  return sink;
}

int32_t& PlayMode() {
  static int32_t mode = hfxPlayModeRender;
  return mode;
}

}  // namespace

void hfxGlobal::ConsolePrintf(const char* format, ...) {
  if (format == nullptr) return;
  va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(nullptr, 0, format, arguments);
  va_end(arguments);
  std::string text(length > 0 ? static_cast<size_t>(length) : 0, '\0');
  va_start(arguments, format);
  std::vsnprintf(text.data(), text.size() + 1, format, arguments);
  va_end(arguments);

  // A copy: the sink may replace itself while it runs.
  if (const auto sink = Console()) {
    sink(text);
  } else {
    std::fwrite(text.data(), 1, text.size(), stderr);
  }
}

int32_t hfxGetPlayMode() { return PlayMode(); }

namespace hfx {

void SetPlayMode(int32_t mode) { PlayMode() = mode; }

void SetConsole(std::function<void(const std::string&)> sink) { Console() = std::move(sink); }

}  // namespace hfx
