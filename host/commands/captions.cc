#include "host/commands/captions.h"

#include <algorithm>
#include <optional>

#include "host/base/caption_length.h"
#include "host/base/error.h"
#include "host/files/path_text.h"
#include "host/sources/metadata.h"

namespace kelto::host {
namespace {

std::string Lines(std::string text) {
  for (size_t at = text.find("\\n"); at != std::string::npos; at = text.find("\\n", at)) {
    text.replace(at, 2, "\n");
  }
  return text;
}

std::string Trimmed(const std::string& text) {
  constexpr const char* kBlanks = " \t\r\n";
  const size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// The name of a photo's file without its ending, with spaces where names have none.
std::string NameToRead(const std::string& photo) {
  std::string name = TextOf(PathOf(photo).stem());
  std::replace(name.begin(), name.end(), '_', ' ');
  return name;
}

/// Checked for its length; of control characters only the ends of lines remain.
std::string Finished(std::string text) {
  for (char& c : text) {
    if (static_cast<unsigned char>(c) < 0x20 && c != '\n') c = ' ';
  }
  text = Trimmed(text);
  if (text.size() > kLongestCaption) {
    throw UsageError("is longer than the " + std::to_string(kLongestCaption) +
                     " bytes that a caption may have");
  }
  return text;
}

}  // namespace

std::string CaptionFor(const std::string& caption, const std::string& photo) {
  std::optional<PhotoNotes> notes;
  std::string text;
  const std::string given = Lines(caption);
  for (size_t at = 0; at < given.size();) {
    if (given[at] != '{') {
      text += given[at++];
      continue;
    }
    const size_t end = given.find('}', at);
    const std::string name =
        given.substr(at, end == std::string::npos ? std::string::npos : end + 1 - at);
    at += name.size();
    if (name == "{name}") {
      text += NameToRead(photo);
      continue;
    }
    if (name != "{date}" && name != "{description}") {
      throw UsageError(name + " stands for nothing; choose one of {name}, {date}, {description}");
    }
    if (!notes) notes = LookAtNotes(photo);
    text += name == "{date}" ? notes->date : notes->description;
  }
  return Finished(std::move(text));
}

std::string TitleText(const std::string& title) { return Finished(Lines(title)); }

}  // namespace kelto::host
