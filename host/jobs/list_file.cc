#include "host/jobs/list_file.h"

#include <cctype>
#include <filesystem>
#include <fstream>
#include <string_view>

#include "host/base/error.h"
#include "host/files/path_text.h"

namespace kelto::host {
namespace {

namespace fs = std::filesystem;

/// Of a list, which may come from a pipe without end.
constexpr size_t kMostPictures = 1000000;
/// Bytes of their paths and options altogether.
constexpr size_t kMostBytes = size_t{256} << 20;

Error NoList(const std::string& list) {
  return Error(list + ": is not a list; write a file with the path of a picture on each line");
}

/// The next line of a list into `line`; false at the end. What is not a list may have no lines at
/// all, so that no line is read beyond what the longest path needs.
bool ReadLine(std::istream& file, const std::string& list, std::string& line) {
  constexpr size_t kLongest = 65536;
  line.resize(kLongest);
  file.getline(line.data(), static_cast<std::streamsize>(kLongest));
  if (file.bad()) throw Error(list + ": cannot be read to its end");
  const auto count = static_cast<size_t>(file.gcount());
  if (file.eof()) {
    line.resize(count);
    return count > 0;
  }
  if (file.fail()) throw NoList(list);
  line.resize(count - 1);
  return true;
}

/// A line of a list without the blanks around it.
std::string_view Trimmed(std::string_view line) {
  constexpr std::string_view kBlanks = " \t\r";
  const size_t first = line.find_first_not_of(kBlanks);
  if (first == line.npos) return {};
  return line.substr(first, line.find_last_not_of(kBlanks) - first + 1);
}

/// Where the options of a line begin, behind the path: at its end where there are none.
size_t OptionsIn(std::string_view line) {
  for (size_t at = line.find("--"); at != line.npos; at = line.find("--", at + 1)) {
    const bool apart = at > 0 && (line[at - 1] == ' ' || line[at - 1] == '\t');
    if (apart && at + 2 < line.size() && std::islower(static_cast<unsigned char>(line[at + 2]))) {
      return at;
    }
  }
  return line.size();
}

/// What a line says; `place` is the line's.
ListedPicture InLine(std::string_view line, const fs::path& folder, const std::string& place) {
  std::string_view path = line, options;
  if (line.front() == '"' || line.front() == '\'') {
    const size_t end = line.find(line.front(), 1);
    if (end == line.npos) {
      throw Error(place + ": the quotation mark before the path has no other behind it");
    }
    path = line.substr(1, end - 1);
    options = Trimmed(line.substr(end + 1));
  } else {
    const size_t begin = OptionsIn(line);
    path = Trimmed(line.substr(0, begin));
    options = line.substr(begin);
  }
  if (!options.empty() && !options.starts_with("--")) {
    throw Error(place + ": behind the path are options, such as --move left, or nothing");
  }
  if (path.empty()) throw Error(place + ": names no picture");
  return {TextOf(folder / PathOf(std::string(path))), std::string(options),
          options.empty() ? "" : place};
}

}  // namespace

std::vector<ListedPicture> ReadList(const std::string& list) {
  std::ifstream file(ForCalls(PathOf(list)));
  if (!file) throw Error(list + ": cannot be read as a list of pictures");
  const fs::path folder = PathOf(list).parent_path();
  std::vector<ListedPicture> pictures;
  size_t bytes = 0, number = 0;
  for (std::string text; ReadLine(file, list, text);) {
    ++number;
    std::string_view line = text;
    // Some editors begin a text so.
    constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";
    if (number == 1 && line.starts_with(kByteOrderMark)) line.remove_prefix(kByteOrderMark.size());
    if (line.find('\0') != line.npos) throw NoList(list);
    if (pictures.size() == kMostPictures) {
      throw Error(list + ": names more than " + std::to_string(kMostPictures) +
                  " pictures; give them in several lists");
    }
    line = Trimmed(line);
    if (line.empty() || line.front() == '#') continue;
    pictures.push_back(InLine(line, folder, list + ": line " + std::to_string(number)));
    const ListedPicture& picture = pictures.back();
    bytes += picture.path.size() + picture.options.size() + picture.place.size();
    if (bytes > kMostBytes) {
      throw Error(list + ": has paths of more than " + std::to_string(kMostBytes >> 20) +
                  " MiB; give them in several lists");
    }
  }
  if (pictures.empty()) throw Error(list + ": names no pictures");
  return pictures;
}

}  // namespace kelto::host
