// One-line failure texts.
#pragma once

#include <string>

namespace hfx {

/// What the exception being handled says, such as "threw the integer 1". Call from a catch block.
std::string CurrentExceptionText();

/// `text` on one line: control characters become spaces, those at the end go.
std::string OneLine(std::string text);

/// Stores `text` as one line unless `error` is null. Returns false, for `return Fail(...)`.
bool Fail(std::string* error, const std::string& text);

/// Runs `call`, which takes nothing and gives a bool. An exception is a failure: false, with
/// "<what> threw ..." in `error`.
template <typename Call>
bool Guarded(const std::string& what, std::string* error, Call&& call) {
  try {
    return call();
  } catch (...) {
    return Fail(error, what + " " + CurrentExceptionText());
  }
}

}  // namespace hfx
