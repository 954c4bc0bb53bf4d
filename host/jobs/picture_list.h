// Many pictures, as a folder or a list names them, and names for their films.
#pragma once

#include <string>
#include <vector>

namespace kelto::host {

/// The pictures of `input`: of a folder, the files directly in it that end as pictures do, hidden
/// ones aside, in the order of their names; of any other file, the paths that its lines hold, in
/// their order, relative ones from the list's folder. Reads a list once, as pipes need it. Throws
/// Error when there is none, and for a project.
std::vector<std::string> PicturesOf(const std::string& input);

/// A file name for the film of each picture, all different even where case makes no difference: the
/// picture's name with `ending` for its own ("a.mp4" of "a.jpg"); behind it ("a.jpg.mp4") where
/// that would be another's too; with a number where that is not enough.
std::vector<std::string> FilmNames(const std::vector<std::string>& pictures,
                                   const std::string& ending);

}  // namespace kelto::host
