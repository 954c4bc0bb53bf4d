#include "host/jobs/film_record.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <system_error>
#include <utility>

#include "host/base/error.h"
#include "host/files/input_file.h"
#include "host/files/output_file.h"
#include "host/files/path_text.h"

namespace kelto::host {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

/// Bytes; a few paths and options are some hundreds.
constexpr uintmax_t kLargestRecord = 1 << 20;

constexpr const char* kRecords = ".kelto";

/// Paths are any bytes and JSON is UTF-8, so each byte is written as the character of its number.
std::string ToText(const std::string& bytes) {
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      text += c;
    } else {
      text += static_cast<char>(0xc0 | byte >> 6);
      text += static_cast<char>(0x80 | (byte & 0x3f));
    }
  }
  return text;
}

/// The bytes of which ToText made `text`.
std::string ToBytes(const std::string& text) {
  std::string bytes;
  for (size_t i = 0; i < text.size(); ++i) {
    const auto first = static_cast<unsigned char>(text[i]);
    if (first < 0x80 || i + 1 == text.size()) {
      bytes += text[i];
    } else {
      bytes += static_cast<char>(first << 6 | (static_cast<unsigned char>(text[++i]) & 0x3f));
    }
  }
  return bytes;
}

std::vector<std::string> ToTexts(const std::vector<std::string>& words) {
  std::vector<std::string> texts;
  texts.reserve(words.size());
  for (const std::string& word : words) texts.push_back(ToText(word));
  return texts;
}

Json ToJson(const FilmRecord::Source& source) {
  return {{"path", ToText(source.path)}, {"bytes", source.bytes}, {"time", source.time}};
}

FilmRecord::Source ToSource(const Json& json) {
  const auto number = [&](const char* field) {
    const Json& value = json.at(field);
    return value.is_number_integer() ? value.get<int64_t>() : -1;  // no file's
  };
  return {ToBytes(json.at("path").get<std::string>()), number("bytes"), number("time")};
}

Json ToJson(const FilmRecord& record) {
  Json sources = Json::array();
  for (const FilmRecord::Source& source : record.sources) sources.push_back(ToJson(source));
  Json json{{"sources", sources}, {"options", ToTexts(record.options)}};
  if (record.film) json["film"] = ToJson(*record.film);
  return json;
}

FilmRecord::Source StateOf(const std::string& path) {
  std::error_code error;
  const fs::path absolute = fs::absolute(PathOf(path), error).lexically_normal();
  FilmRecord::Source source{error ? path : TextOf(absolute)};
  const auto bytes = fs::file_size(ForCalls(PathOf(path)), error);
  if (!error) source.bytes = static_cast<int64_t>(bytes);
  const auto time = fs::last_write_time(ForCalls(PathOf(path)), error);
  if (!error) source.time = static_cast<int64_t>(time.time_since_epoch().count());
  return source;
}

}  // namespace

FilmRecord RecordOf(const std::vector<std::string>& sources, std::vector<std::string> options) {
  FilmRecord record{{}, std::move(options)};
  for (const std::string& source : sources) {
    if (!source.empty()) record.sources.push_back(StateOf(source));
  }
  return record;
}

bool IsOf(const FilmRecord& record, const std::string& input) {
  return !record.sources.empty() && record.sources.front().path == StateOf(input).path;
}

bool IsCurrent(const FilmRecord& record) {
  return std::all_of(record.sources.begin(), record.sources.end(),
                     [](const auto& source) { return StateOf(source.path) == source; });
}

bool IsTheFilm(const FilmRecord& record, const std::string& film) {
  // A folder of films may have been moved as a whole.
  const FilmRecord::Source now = StateOf(film);
  return record.film && record.film->bytes == now.bytes && record.film->time == now.time;
}

std::optional<FilmRecord> ReadRecord(const std::string& path) {
  // The folder may be shared: what lies there under a record's name need not be one.
  std::error_code error;
  if (!IsFile(path) || fs::file_size(ForCalls(PathOf(path)), error) > kLargestRecord || error)
    return std::nullopt;
  std::ifstream file(ForCalls(PathOf(path)), std::ios::binary);
  if (!file) return std::nullopt;
  try {
    const Json json = Json::parse(file);
    FilmRecord record;
    for (const Json& source : json.at("sources")) record.sources.push_back(ToSource(source));
    for (const Json& word : json.at("options")) {
      record.options.push_back(ToBytes(word.get<std::string>()));
    }
    if (json.contains("film")) record.film = ToSource(json.at("film"));
    return record;
  } catch (const Json::exception&) {
    return std::nullopt;
  }
}

void MakeOnRecord(const std::string& path, const FilmRecord& now, const std::string& film,
                  const std::function<void()>& make) {
  std::error_code error;
  if (fs::exists(fs::symlink_status(PathOf(path), error)) &&
      !fs::is_directory(StatusOf(PathOf(path))) && !ReadRecord(path)) {
    throw Error(path + ": already exists and is not a film's record; give the record another name");
  }
  const fs::path folder = PathOf(path).parent_path();
  MakeFolders(TextOf(folder));
  // Opened first, so that a place which cannot be written to is found before the work. Users may
  // have links to folders; a batch's own is never one.
  OutputFile file(path,
                  folder.filename() == kRecords ? FolderLink::kRefused : FolderLink::kFollowed);
  make();
  FilmRecord record = now;
  if (!film.empty()) record.film = StateOf(film);
  const std::string text = ToJson(record).dump(2) + "\n";
  file.Write(text.data(), text.size());
  file.Finish();
}

std::string RecordFolderOf(const std::string& folder) { return TextOf(PathOf(folder) / kRecords); }

}  // namespace kelto::host
