// How a film was made, kept beside it so that the work need not be done again.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kelto::host {

/// What a film was made from and how.
struct FilmRecord {
  /// The state of a file; one that is not there has no size and no time.
  struct Source {
    std::string path;   ///< absolute
    int64_t bytes = 0;  ///< its size
    int64_t time = 0;   ///< when it was last changed, in the file system's own count
    bool operator==(const Source&) const = default;
  };
  /// The photograph or project, and behind it what else the film was made of.
  std::vector<Source> sources;
  /// The options that settle what the film shows, as words of a command line.
  std::vector<std::string> options;
  /// The film as it was when it was made; none where it is not a single file.
  std::optional<Source> film{};
  bool operator==(const FilmRecord&) const = default;
};

/// The record of a film made now. Of `sources` the first is the photograph or project; empty names
/// are none.
FilmRecord RecordOf(const std::vector<std::string>& sources, std::vector<std::string> options);

/// Whether the film was made of `input`, a photograph or project.
bool IsOf(const FilmRecord& record, const std::string& input);

/// Whether all that the film was made of is still as it was.
bool IsCurrent(const FilmRecord& record);

/// The record in a file; nothing when there is none that can be read.
std::optional<FilmRecord> ReadRecord(const std::string& path);

/// Whether `film` is as it was when the record was written: not cut short, damaged or replaced
/// since.
bool IsTheFilm(const FilmRecord& record, const std::string& film);

/// Makes a film by `make` and then writes the record at `path`, making its folder. `now` is to be
/// taken before: a photograph that changes while its film is made must not pass for the one that
/// the film shows. `film` is the file that `make` writes; empty where it is not a single file.
/// What is at `path` stays as it is until the film is made. Throws Error, before anything is made
/// where `path` is something other than a record, or where the folder of records that a batch makes
/// is a link; and what `make` throws.
void MakeOnRecord(const std::string& path, const FilmRecord& now, const std::string& film,
                  const std::function<void()>& make);

/// The folder for the records of the films in `folder`.
std::string RecordFolderOf(const std::string& folder);

}  // namespace kelto::host
