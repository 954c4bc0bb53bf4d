// Names of files as the effect takes them: 255 bytes in the system's own 8-bit letters.
#pragma once

#include <memory>
#include <string>

namespace kelto::host {

/// What the effect's interface takes of a path, in bytes.
inline constexpr size_t kEffectPathBytes = 255;

/// A name that the effect can open. `file` is whatever has to stay for that, such as a link in the
/// folder for temporary files, which goes with the last copy of this record.
struct EffectName {
  std::string text;
  std::shared_ptr<const void> file = {};
};

/// A name by which the effect opens the file of `path`, which must be there: `path` itself, a
/// shorter form of it or, on Windows, one whose letters the code page has, or else a link or copy.
/// Throws Error when there is none.
EffectName NameForEffect(const std::string& path);

/// What the effect says, as the command's own messages are written.
std::string TextFromEffect(const std::string& text);

/// The shorter of `path` and its absolute or relative form. A network path stays as it is.
std::string ShortestForm(const std::string& path);

}  // namespace kelto::host
