// Projects of slideshows: shared settings and an ordered list of pictures in one JSON file, which
// keeps to the schema of all projects.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

#include "host/plan/render_plan.h"

namespace kelto::host {

/// A picture of a show.
struct ShowPicture {
  /// As long as the picture is seen, fades included; without sound. It holds still where the
  /// project says nothing of views.
  RenderPlan plan;
  bool hasViews = false;  ///< whether the project says where the film looks, by views or by keys
  /// A move by its name and how it goes, as the options of these names take them, where the
  /// project has no views; empty where it says nothing.
  std::string move{}, fit{}, amount{}, motion{};
  std::optional<double> each{};  ///< seconds for which it is seen, where the project says so
  std::optional<double> fade{};  ///< seconds of the fade to the next picture, where it says so
};

struct ShowProject {
  std::vector<ShowPicture> pictures;  ///< all of one film format
  std::string audio{};                ///< the show's sound; empty for none
  std::string title{};                ///< of the card at its beginning; empty for none
  std::string fadeKind{};             ///< as --fade-kind has it; empty where nothing is said
};

/// Whether the text of a project describes a show. Throws Error for a text that is not JSON.
bool IsShowText(const std::string& text, const std::string& path);

/// Reads a project's text as ReadProject does. Throws Error, also where it is not a show.
ShowProject ParseShow(const std::string& text, const std::string& path);

/// The show that the file at `path` describes; none where that is a project of one picture. Throws
/// Error.
std::optional<ShowProject> ReadShow(const std::string& path);

/// The text of a project file at `path` of which ParseShow makes the same show; see ProjectText.
/// What pictures have in common stands once. Throws Error.
std::string ShowText(const std::string& path, const ShowProject& show);

/// Writes it, as WriteProject does.
void WriteShow(const std::string& path, const ShowProject& show);

/// The film of picture `index` of a show's document, as a document of its own: with what the show
/// says of all pictures, but for moves and sound. It keeps to the schema if the show does.
nlohmann::json FilmOfPicture(const nlohmann::json& show, size_t index);
nlohmann::ordered_json FilmOfPicture(const nlohmann::ordered_json& show, size_t index);

/// The plan of a project's text: of a show, that of picture `index` or the last there is, with the
/// show's sound. One of
/// which nothing says where it looks holds still. Throws Error as ReadProject does.
RenderPlan ParsePicture(const std::string& text, const std::string& path, size_t index);

}  // namespace kelto::host
