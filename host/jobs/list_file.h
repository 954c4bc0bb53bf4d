// Lists of pictures: text files that people write and programs print.
#pragma once

#include <string>
#include <vector>

namespace kelto::host {

/// A picture, and what a list says of it.
struct ListedPicture {
  std::string path;       ///< of a photograph or a project
  std::string options{};  ///< as a command line has them, "--move left"; empty for none
  std::string place{};    ///< of the options, "LIST: line N", for messages
};

/// Reads a list: on each line the path of a picture, relative to the list's folder, and behind it
/// options for that picture, such as --move left. Lines that begin with # are comments; a path with
/// " --" in it stands between quotation marks. Read once from begin to end, as pipes need it.
/// Throws Error for a file that is not a list or names no picture.
std::vector<ListedPicture> ReadList(const std::string& list);

}  // namespace kelto::host
