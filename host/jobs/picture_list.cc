#include "host/jobs/picture_list.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <locale>
#include <map>
#include <set>
#include <stdexcept>
#include <system_error>

#include "host/base/error.h"
#include "host/base/natural_order.h"
#include "host/files/path_text.h"
#include "host/project/project_file.h"

namespace kelto::host {
namespace {

namespace fs = std::filesystem;

constexpr std::array kEndings = {".jpg", ".jpeg", ".jpe", ".png", ".tif",  ".tiff", ".webp",
                                 ".gif", ".bmp",  ".dib", ".tga", ".heic", ".heif"};

std::string Lowered(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

std::vector<std::string> InFolder(const std::string& folder) {
  std::error_code error;
  std::vector<std::string> pictures;
  for (const fs::path& path : EntriesOf(PathOf(folder), error)) {
    if (TextOf(path.filename()).starts_with('.') || !EndsLikeAPicture(TextOf(path))) continue;
    if (!fs::is_directory(StatusOf(path))) pictures.push_back(TextOf(path));
  }
  if (error) throw Error(folder + ": cannot be read: " + ReasonOf(error));
  std::sort(pictures.begin(), pictures.end(), &NaturallyBefore);
  if (pictures.empty()) throw Error(folder + ": there are no pictures in this folder");
  return pictures;
}

/// Whether a shell would put the operands in this order for a pattern such as "*.jpg": by their
/// bytes, or as the user's language orders them.
template <typename Operands>
bool AreInAShellsOrder(const Operands& operands) {
  if (std::is_sorted(operands.begin(), operands.end())) return true;
  try {
    return std::is_sorted(operands.begin(), operands.end(), std::locale(""));
  } catch (const std::runtime_error&) {
    return false;  // the environment names a language that the system does not have
  }
}

/// Puts runs of operands that a shell made of patterns in their natural order. A pattern's names
/// share their folder.
void OrderNaturally(std::vector<std::string>& inputs) {
  const auto folderOf = [](const std::string& input) { return PathOf(input).parent_path(); };
  for (auto first = inputs.begin(); first != inputs.end();) {
    const auto last = std::find_if(first, inputs.end(), [&](const std::string& input) {
      return folderOf(input) != folderOf(*first);
    });
    if (AreInAShellsOrder(std::vector<std::string>(first, last))) {
      std::stable_sort(first, last, &NaturallyBefore);
    }
    first = last;
  }
}

std::vector<ListedPicture> OfInput(const std::string& input, bool alone) {
  if (EndsLikeAPicture(input) && !fs::is_directory(StatusOf(PathOf(input)))) {
    return {{input}};
  }
  const fs::file_status status = StatusOf(PathOf(input));
  if (!fs::exists(status)) {
    throw Error(input + ": there is no such " + (alone ? "folder or list" : "picture or list"));
  }
  if (fs::is_directory(status)) {
    std::vector<ListedPicture> pictures;
    for (const std::string& path : InFolder(input)) pictures.push_back({path});
    return pictures;
  }
  if (!IsProjectName(input)) return ReadList(input);
  // Its lines would pass for names of pictures.
  if (alone) {
    throw Error(input + ": is a project, not a list; render it, or write its path into a list");
  }
  return {{input}};
}

}  // namespace

bool EndsLikeAPicture(const std::string& path) {
  const std::string ending = Lowered(TextOf(PathOf(path).extension()));
  return std::find(kEndings.begin(), kEndings.end(), ending) != kEndings.end();
}

std::vector<ListedPicture> PicturesOf(const std::vector<std::string>& inputs, PictureOrder order) {
  std::vector<std::string> ordered = inputs;
  if (order == PictureOrder::kNatural) OrderNaturally(ordered);
  std::vector<ListedPicture> pictures;
  for (const std::string& input : ordered) {
    for (ListedPicture& picture : OfInput(input, inputs.size() == 1)) {
      pictures.push_back(std::move(picture));
    }
  }
  return pictures;
}

std::vector<std::string> PathsOf(const std::vector<ListedPicture>& pictures) {
  std::vector<std::string> paths;
  paths.reserve(pictures.size());
  for (const ListedPicture& picture : pictures) paths.push_back(picture.path);
  return paths;
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
