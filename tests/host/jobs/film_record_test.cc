#include "host/jobs/film_record.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>

#include "host/base/error.h"
#include "host/files/path_text.h"
#include "tests/support/photo.h"

namespace kelto::host {
namespace {

TEST(FilmRecord, SurvivesAFileWithNamesOfAnyBytes) {
  const test::TempFolder folder;
#if defined(_WIN32)
  const std::string photo = folder / "gr\xc3\xbc\xc3\x9f \xd0\xa4.jpg";  // names are UTF-16 there
#else
  const std::string photo = folder / "gr\xc3\xbc\xc3\x9f \xff\x80.jpg";
#endif
  std::ofstream(PathOf(photo)) << "12345";
  const FilmRecord record = RecordOf({photo}, {"--size", "96x64", "\xfe\"\\\n"});
  EXPECT_EQ(record.sources.at(0).bytes, 5);
  MakeOnRecord(folder / "records/film.mp4.json", record, "", [] {});
  EXPECT_EQ(ReadRecord(folder / "records/film.mp4.json"), record);
}

TEST(FilmRecord, StaysUntilTheNextFilmIsMade) {
  const test::TempFolder folder;
  const std::string path = folder / "film.mp4.json";
  const FilmRecord older{{{"older.jpg", 1, 2}}, {}}, newer{{{"newer.jpg", 3, 4}}, {}};
  EXPECT_THROW(MakeOnRecord(path, older, "", [] { throw Error("no film"); }), Error);
  EXPECT_EQ(ReadRecord(path), std::nullopt);
  MakeOnRecord(path, older, "", [] {});
  EXPECT_THROW(MakeOnRecord(path, newer, "", [] { throw Error("no film"); }), Error);
  EXPECT_EQ(ReadRecord(path), older) << "the older film is still there";
  MakeOnRecord(path, newer, "", [&] { EXPECT_EQ(ReadRecord(path), older); });
  EXPECT_EQ(ReadRecord(path), newer);
}

TEST(FilmRecord, KnowsAFilmThatIsNoLongerAsItWasMade) {
  const test::TempFolder folder;
  const std::string path = folder / "film.mp4.json", film = folder / "film.mp4";
  MakeOnRecord(path, {}, film, [&] { std::ofstream(film) << "film"; });
  const auto record = ReadRecord(path);
  ASSERT_TRUE(record.has_value());
  EXPECT_TRUE(IsTheFilm(*record, film));
  const auto time = std::filesystem::last_write_time(film);
  std::ofstream(film) << "FILM";
  std::filesystem::last_write_time(film, time + std::chrono::seconds(1));
  EXPECT_FALSE(IsTheFilm(*record, film)) << "of the same size";
  std::ofstream(film) << "fil";
  std::filesystem::last_write_time(film, time);
  EXPECT_FALSE(IsTheFilm(*record, film)) << "of the same time";
  std::filesystem::remove(film);
  EXPECT_FALSE(IsTheFilm(*record, film)) << "gone";
  EXPECT_FALSE(IsTheFilm({}, film)) << "one that the record says nothing of";
}

TEST(FilmRecord, ReplacesNothingButARecord) {
  const test::TempFolder folder;
  const auto make = [] { FAIL() << "a film was made for a record that cannot be written"; };
  std::ofstream(folder / "letter.txt") << "Dear diary";
  EXPECT_THROW(MakeOnRecord(folder / "letter.txt", {}, "", make), Error);
  EXPECT_EQ(std::filesystem::file_size(folder / "letter.txt"), 10u);
  std::filesystem::create_directory(folder / "empty");
  EXPECT_THROW(MakeOnRecord(folder / "empty", {}, "", make), Error);
  EXPECT_TRUE(std::filesystem::is_directory(folder / "empty"));
}

TEST(FilmRecord, IsOutOfDateWhenAnythingChangesThatWentIntoTheFilm) {
  const test::TempFolder folder;
  const std::string project = folder / "p.json", photo = folder / "a.jpg", sound = folder / "a.wav";
  for (const std::string& source : {project, photo, sound}) std::ofstream(source) << "12345";
  for (const std::string& source : {project, photo, sound}) {
    const FilmRecord record = RecordOf({project, photo, "", sound}, {});
    EXPECT_TRUE(IsCurrent(record));
    std::filesystem::last_write_time(source, std::filesystem::file_time_type{});
    EXPECT_FALSE(IsCurrent(record)) << source;
  }
  const FilmRecord record = RecordOf({project, photo, "", sound}, {});
  EXPECT_TRUE(IsOf(record, project));
  EXPECT_FALSE(IsOf(record, photo));
  std::filesystem::remove(sound);
  EXPECT_FALSE(IsCurrent(record));
}

TEST(FilmRecord, IsNoneWhereTheFileIsNone) {
  const test::TempFolder folder;
  EXPECT_EQ(ReadRecord(folder / "none.json"), std::nullopt);
  for (const char* text :
       {"", "{}", "[1]", "{\"sources\": 3}", "{\"sources\": [{\"path\": \"a\", \"bytes\": \"b\"}]}",
        "{\"sources\":[{\"path\":\"a\",\"bytes\":1,\"time\":2}],\"options\":[3]}"}) {
    std::ofstream(folder / "bad.json") << text;
    EXPECT_EQ(ReadRecord(folder / "bad.json"), std::nullopt) << text;
  }
  std::ofstream(folder / "long.json") << std::string(2 << 20, ' ') << "{}";
  EXPECT_EQ(ReadRecord(folder / "long.json"), std::nullopt);
  std::filesystem::create_directory(folder / "folder.json");
  EXPECT_EQ(ReadRecord(folder / "folder.json"), std::nullopt);
}

TEST(FilmRecord, OfNumbersThatNoFileHasIsOutOfDate) {
  const test::TempFolder folder;
  std::ofstream(folder / "odd.json")
      << R"({"sources": [{"path": "a", "bytes": 1e300, "time": 2.5}], "options": []})";
  const auto record = ReadRecord(folder / "odd.json");
  ASSERT_TRUE(record.has_value());
  EXPECT_FALSE(IsCurrent(*record));
}

}  // namespace
}  // namespace kelto::host
