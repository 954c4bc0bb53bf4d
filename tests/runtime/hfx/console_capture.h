// Collects console text while it lives.
#pragma once

#include <string>

#include "runtime/hfx/host.h"

namespace kelto {

class ConsoleCapture {
 public:
  ConsoleCapture() {
    hfx::SetConsole([this](const std::string& text) { text_ += text; });
  }
  ~ConsoleCapture() { hfx::SetConsole({}); }
  ConsoleCapture(const ConsoleCapture&) = delete;
  ConsoleCapture& operator=(const ConsoleCapture&) = delete;

  const std::string& text() const { return text_; }
  void Clear() { text_.clear(); }

 private:
  std::string text_;
};

}  // namespace kelto
