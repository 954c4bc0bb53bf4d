#include "host/files/part_name.h"

#include <algorithm>
#include <cstdint>
#include <random>
#include <string_view>

#if defined(_WIN32)
#include <cstdlib>
#else
#include <sys/utsname.h>
#endif

namespace kelto::host {
namespace {

constexpr std::string_view kLetters = "0123456789abcdefghijklmnopqrstuv";
constexpr std::string_view kMark = ".kelto-", kEnding = ".part";
constexpr size_t kMachineLetters = 4, kRandomLetters = 8;
/// Of the file's own name; the rest is cut, since a name has 255 bytes at most.
constexpr size_t kStem = 200;

std::string MachineName() {
#if defined(_WIN32)
  const char* name = std::getenv("COMPUTERNAME");
  return name == nullptr ? "" : name;
#else
  utsname machine{};
  return uname(&machine) == 0 ? machine.nodename : "";
#endif
}

/// Letters of the machine's name, hashed (FNV-1a), so that any name fits.
std::string MachineLetters() {
  uint32_t hash = 2166136261u;
  for (const char c : MachineName()) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
  std::string letters;
  for (size_t i = 0; i < kMachineLetters; ++i) letters += kLetters[hash >> 5 * i & 31];
  return letters;
}

/// The letters between mark and ending; empty for other names.
std::string_view LettersOf(std::string_view name) {
  constexpr size_t kCount = kMachineLetters + kRandomLetters;
  constexpr size_t kTail = kMark.size() + kCount + kEnding.size();
  if (name.size() < kTail + 2 || !name.starts_with('.') || !name.ends_with(kEnding)) return {};
  const std::string_view tail = name.substr(name.size() - kTail);
  const std::string_view letters = tail.substr(kMark.size(), kCount);
  const bool ours =
      tail.starts_with(kMark) && letters.find_first_not_of(kLetters) == std::string_view::npos;
  return ours ? letters : std::string_view{};
}

}  // namespace

std::string NewPartName(const std::string& name) {
  std::random_device random;
  std::string letters = MachineLetters();
  for (size_t i = 0; i < kRandomLetters; ++i) letters += kLetters[random() % kLetters.size()];
  // Cut between letters of UTF-8, or Windows would not take it.
  size_t stem = std::min(name.size(), kStem);
  while (stem > 0 && stem < name.size() && (static_cast<uint8_t>(name[stem]) & 0xC0) == 0x80)
    --stem;
  std::string part(1, '.');
  return part.append(name, 0, stem).append(kMark).append(letters).append(kEnding);
}

bool IsPartName(const std::string& name) { return !LettersOf(name).empty(); }

bool IsPartOfThisMachine(const std::string& name) {
  return LettersOf(name).starts_with(MachineLetters()) && IsPartName(name);
}

}  // namespace kelto::host
