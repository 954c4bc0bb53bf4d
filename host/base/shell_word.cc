#include "host/base/shell_word.h"

#include <algorithm>
#include <cctype>
#include <cstring>

#include "host/base/shown_text.h"

namespace kelto::host {

namespace {

/// A word for which the shell is to run printf, in letters that a terminal shows.
std::string Printed(const std::string& word) {
  std::string format;
  for (const char c : word) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80 && (std::isalnum(byte) != 0 || std::strchr(" ,./:=@_", c) != nullptr)) {
      format += c;
    } else {
      for (const int shift : {6, 3, 0}) {
        if (shift == 6) format += '\\';
        format += static_cast<char>('0' + (byte >> shift & 7));
      }
    }
  }
  return "\"$(printf '" + format + "')\"";
}

}  // namespace

std::string ShellQuoted(const std::string& word) {
  // The list may be read on a terminal before it is run.
  if (ShownText(word) != word) return Printed(word);
  const bool plain = !word.empty() && std::all_of(word.begin(), word.end(), [](unsigned char c) {
    return c < 0x80 && (std::isalnum(c) != 0 || std::strchr("%+,-./:=@_", c) != nullptr);
  });
  if (plain) return word;
  std::string quoted = "'";
  for (const char c : word) {
    if (c == '\'') {
      quoted += "'\\''";
    } else {
      quoted += c;
    }
  }
  return quoted + "'";
}

}  // namespace kelto::host
