#include "host/jobs/picture_list.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string_view>
#include <system_error>

#include "host/base/error.h"
#include "host/files/path_text.h"
#include "host/project/project_file.h"

namespace kelto::host {
namespace {

namespace fs = std::filesystem;

constexpr std::array kEndings = {".jpg", ".jpeg", ".jpe", ".png", ".tif",  ".tiff", ".webp",
                                 ".gif", ".bmp",  ".dib", ".tga", ".heic", ".heif"};

/// Of a list, which may come from a pipe without end.
constexpr size_t kMostPictures = 1000000;
/// Bytes of their paths altogether.
constexpr size_t kMostBytes = size_t{256} << 20;

std::string Lowered(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

bool EndsLikeAPicture(const fs::path& path) {
  const std::string ending = Lowered(TextOf(path.extension()));
  return std::find(kEndings.begin(), kEndings.end(), ending) != kEndings.end();
}

std::vector<std::string> InFolder(const std::string& folder) {
  std::error_code error;
  std::vector<std::string> pictures;
  for (const fs::path& path : EntriesOf(PathOf(folder), error)) {
    if (TextOf(path.filename()).starts_with('.') || !EndsLikeAPicture(path)) continue;
    if (!fs::is_directory(StatusOf(path))) pictures.push_back(TextOf(path));
  }
  if (error) throw Error(folder + ": cannot be read: " + ReasonOf(error));
  std::sort(pictures.begin(), pictures.end());
  if (pictures.empty()) throw Error(folder + ": there are no pictures in this folder");
  return pictures;
}

Error NoList(const std::string& list) {
  return Error(list + ": is no list; write a file with the path of a picture on each line");
}

/// The next line of a list into `line`; false at the end. What is no list may have no lines at all,
/// so that no line is read beyond what the longest path needs.
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

std::vector<std::string> InList(const std::string& list) {
  std::ifstream file(ForCalls(PathOf(list)));
  if (!file) throw Error(list + ": cannot be read as a list of pictures");
  const fs::path folder = PathOf(list).parent_path();
  std::vector<std::string> pictures;
  size_t bytes = 0;
  bool first = true;
  for (std::string line; ReadLine(file, list, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    // Some editors begin a text so.
    constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";
    if (first && line.starts_with(kByteOrderMark)) line.erase(0, kByteOrderMark.size());
    first = false;
    if (line.find('\0') != line.npos) throw NoList(list);
    if (pictures.size() == kMostPictures) {
      throw Error(list + ": names more than " + std::to_string(kMostPictures) +
                  " pictures; give them in several lists");
    }
    if (line.empty()) continue;
    pictures.push_back(TextOf(folder / PathOf(line)));
    bytes += pictures.back().size();
    if (bytes > kMostBytes) {
      throw Error(list + ": has paths of more than " + std::to_string(kMostBytes >> 20) +
                  " MiB; give them in several lists");
    }
  }
  if (pictures.empty()) throw Error(list + ": names no pictures");
  return pictures;
}

}  // namespace

std::vector<std::string> PicturesOf(const std::string& input) {
  const fs::file_status status = StatusOf(PathOf(input));
  if (!fs::exists(status)) throw Error(input + ": there is no such folder or list");
  if (fs::is_directory(status)) return InFolder(input);
  // Its lines would pass for names of pictures.
  if (IsProjectName(input)) {
    throw Error(input + ": is a project, not a list; render it, or write its path into a list");
  }
  return InList(input);
}

std::vector<std::string> FilmNames(const std::vector<std::string>& pictures,
                                   const std::string& ending) {
  const auto shortName = [&](const std::string& picture) {
    return TextOf(PathOf(picture).stem()) + "." + ending;
  };
  std::map<std::string, int> wanted;
  for (const std::string& picture : pictures) ++wanted[Lowered(shortName(picture))];
  std::set<std::string> taken;
  // The short names that are one picture's alone stay with it, whatever comes before.
  for (const auto& [name, count] : wanted) {
    if (count == 1) taken.insert(name);
  }
  std::vector<std::string> names;
  std::map<std::string, int> numbers;  // the next one to try; those before are taken
  for (const std::string& picture : pictures) {
    std::string name = shortName(picture);
    if (wanted[Lowered(name)] > 1) {
      const std::string base = NameOf(picture);
      const std::string last = "." + ending;
      name = base;
      name += last;
      int& number = numbers.try_emplace(Lowered(base), 2).first->second;
      while (!taken.insert(Lowered(name)).second) {
        name = base;
        name.append("-").append(std::to_string(number++)).append(last);
      }
    }
    names.push_back(name);
  }
  return names;
}

}  // namespace kelto::host
