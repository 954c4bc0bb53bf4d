#include "host/base/shown_text.h"

#include <cstdint>
#include <cstdio>

namespace kelto::host {
namespace {

/// A character of UTF-8 and the bytes that it takes; a byte that begins none has no code.
struct Character {
  int32_t code;
  size_t bytes;
};

constexpr int32_t kNone = -1;

Character CharacterAt(std::string_view text) {
  const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned first = byte(0);
  if (first < 0x80) return {static_cast<int32_t>(first), 1};
  const size_t bytes = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
  if (first < 0xc2 || first > 0xf4 || text.size() < bytes) return {kNone, 1};
  auto code = static_cast<int32_t>(first & (0x7fu >> bytes));
  for (size_t i = 1; i < bytes; ++i) {
    if ((byte(i) & 0xc0) != 0x80) return {kNone, 1};
    code = code << 6 | (byte(i) & 0x3f);
  }
  // Longer than need be, half of a pair of UTF-16, or beyond Unicode.
  constexpr int32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  if (code < kLeast[bytes] || (code >= 0xd800 && code < 0xe000) || code > 0x10ffff) {
    return {kNone, 1};
  }
  return {code, bytes};
}

/// Whether a terminal would do something else with a character than show it in its place.
bool IsObeyed(int32_t code) {
  return code < 0x20 || (code >= 0x7f && code < 0xa0) ||       // controls
         code == 0x61c || code == 0x200e || code == 0x200f ||  // marks of direction
         (code >= 0x2028 && code <= 0x202e) ||  // separators, embeddings and overrides
         (code >= 0x2066 && code <= 0x2069);    // isolates
}

/// "\x1b", or "\u202e" with four digits.
std::string Numbered(char letter, int digits, int32_t number) {
  char text[16];
  std::snprintf(text, sizeof text, "\\%c%0*x", letter, digits, static_cast<unsigned>(number));
  return text;
}

std::string Escaped(int32_t code) {
  if (code == '\n') return "\\n";
  if (code == '\r') return "\\r";
  if (code == '\t') return "\\t";
  return code < 0x80 ? Numbered('x', 2, code) : Numbered('u', 4, code);
}

/// The text with every character that is obeyed, or is none, replaced by `escape` of its code and
/// first byte.
template <typename Escape>
std::string Replaced(std::string_view text, const Escape& escape) {
  std::string shown;
  shown.reserve(text.size());
  while (!text.empty()) {
    const Character character = CharacterAt(text);
    if (character.code == kNone || IsObeyed(character.code)) {
      shown += escape(character.code, text.front());
    } else {
      shown += text.substr(0, character.bytes);
    }
    text.remove_prefix(character.bytes);
  }
  return shown;
}

}  // namespace

std::string ShownText(std::string_view text) {
  return Replaced(text, [](int32_t code, char byte) {
    if (code != kNone) return Escaped(code);
    return Numbered('x', 2, static_cast<unsigned char>(byte));
  });
}

std::string ShownJson(std::string_view json) {
  return Replaced(json, [](int32_t code, char byte) {
    // Below U+0020 there is only the layout between the texts.
    return code >= 0 && code < 0x20 ? std::string(1, byte)
                                    : Numbered('u', 4, code == kNone ? 0xfffd : code);
  });
}

}  // namespace kelto::host
