// Many pictures, as operands, folders and lists name them, and names for their films.
#pragma once

#include <string>
#include <vector>

#include "host/jobs/list_file.h"

namespace kelto::host {

/// Which order pictures come in.
enum class PictureOrder {
  /// By the natural order of their names where it is a folder or a shell (for "*.jpg") that put
  /// them in order, else as they are given. See NaturallyBefore.
  kNatural,
  kGiven,  ///< operands as they are given
};

/// The pictures of `inputs`, of which there is one at least. Of a folder they are the files
/// directly in it that end as pictures do, hidden ones aside; a file that ends so, or a project
/// beside other inputs, is one itself; any other file is a list (see ReadList). Lists keep their
/// order. Throws Error when there is none, and for a project alone.
std::vector<ListedPicture> PicturesOf(const std::vector<std::string>& inputs,
                                      PictureOrder order = PictureOrder::kNatural);

/// Whether a path ends as pictures' do, such as in ".jpg".
bool EndsLikeAPicture(const std::string& path);

/// The paths alone.
std::vector<std::string> PathsOf(const std::vector<ListedPicture>& pictures);

/// A file name for the film of each picture, all different even where case makes no difference: the
/// picture's name with `ending` for its own ("a.mp4" of "a.jpg"); behind it ("a.jpg.mp4") where
/// that would be another's too; with a number where that is not enough.
std::vector<std::string> FilmNames(const std::vector<std::string>& pictures,
                                   const std::string& ending);

}  // namespace kelto::host
