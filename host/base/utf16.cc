#include "host/base/utf16.h"

#include <cstddef>
#include <cstdint>

namespace kelto::host {
namespace {

constexpr bool IsHigh(uint32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
constexpr bool IsLow(uint32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

/// How many bytes follow the first one of a character; -1 for a byte that begins none.
int BytesAfter(uint8_t first) {
  if (first < 0x80) return 0;
  if (first < 0xC2) return -1;
  if (first < 0xE0) return 1;
  if (first < 0xF0) return 2;
  return first < 0xF5 ? 3 : -1;
}

/// The character at `at`, which moves behind it; nothing for a damaged or needlessly long one.
std::optional<uint32_t> NextCharacter(std::string_view text, size_t& at) {
  const auto first = static_cast<uint8_t>(text[at]);
  const int after = BytesAfter(first);
  if (after < 0 || text.size() - at <= static_cast<size_t>(after)) return std::nullopt;
  uint32_t character = after == 0 ? first : first & (0x3Fu >> after);
  for (int i = 1; i <= after; ++i) {
    const auto byte = static_cast<uint8_t>(text[at + static_cast<size_t>(i)]);
    if ((byte & 0xC0) != 0x80) return std::nullopt;
    character = character << 6 | (byte & 0x3Fu);
  }
  constexpr uint32_t kFirstOfLength[] = {0, 0x80, 0x800, 0x10000};
  if (character < kFirstOfLength[after] || character > 0x10FFFF) return std::nullopt;
  at += static_cast<size_t>(after) + 1;
  return character;
}

void Append(uint32_t character, std::string& text) {
  const auto add = [&](uint32_t byte) { text += static_cast<char>(byte); };
  const auto follow = [&](int shift) { add(0x80 | (character >> shift & 0x3F)); };
  if (character < 0x80) {
    add(character);
  } else if (character < 0x800) {
    add(0xC0 | character >> 6);
    follow(0);
  } else if (character < 0x10000) {
    add(0xE0 | character >> 12);
    follow(6);
    follow(0);
  } else {
    add(0xF0 | character >> 18);
    follow(12);
    follow(6);
    follow(0);
  }
}

}  // namespace

std::optional<std::u16string> Utf16Of(std::string_view utf8) {
  std::u16string units;
  units.reserve(utf8.size());
  for (size_t at = 0; at < utf8.size();) {
    const auto character = NextCharacter(utf8, at);
    if (!character) return std::nullopt;
    if (*character < 0x10000) {
      units += static_cast<char16_t>(*character);
    } else {
      units += static_cast<char16_t>(0xD800 + ((*character - 0x10000) >> 10));
      units += static_cast<char16_t>(0xDC00 + (*character & 0x3FF));
    }
  }
  return units;
}

std::string Utf8Of(std::u16string_view utf16) {
  std::string text;
  text.reserve(utf16.size());
  for (size_t i = 0; i < utf16.size(); ++i) {
    const uint32_t unit = utf16[i];
    if (IsHigh(unit) && i + 1 < utf16.size() && IsLow(utf16[i + 1])) {
      Append(0x10000 + ((unit - 0xD800) << 10) + (utf16[++i] - 0xDC00u), text);
    } else {
      Append(unit, text);
    }
  }
  return text;
}

}  // namespace kelto::host
