#include "host/jobs/film_record.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/error.h"
#include "tests/support/photo.h"

namespace kelto::host {
namespace {

TEST(FilmRecord, SurvivesAFileWithNamesOfAnyBytes) {
  const test::TempFolder folder;
  const std::string photo = folder / "gr\xc3\xbc\xc3\x9f \xff\x80.jpg";
  std::ofstream(photo) << "12345";
  const FilmRecord record = RecordOf(photo, {"--size", "96x64", "\xfe\"\\\n"});
  EXPECT_EQ(record.bytes, 5);
  MakeOnRecord(folder / "records/film.mp4.json", record, [] {});
  EXPECT_EQ(ReadRecord(folder / "records/film.mp4.json"), record);
}

TEST(FilmRecord, IsThereOnlyOnceTheFilmIs) {
  const test::TempFolder folder;
  const std::string path = folder / "film.mp4.json";
  const FilmRecord older{"older.jpg", 1, 2, {}}, newer{"newer.jpg", 3, 4, {}};
  MakeOnRecord(path, older, [] {});
  MakeOnRecord(path, newer, [&] { EXPECT_EQ(ReadRecord(path), std::nullopt); });
  EXPECT_EQ(ReadRecord(path), newer);
  EXPECT_THROW(MakeOnRecord(path, older, [] { throw Error("no film"); }), Error);
  EXPECT_EQ(ReadRecord(path), std::nullopt);
}

TEST(FilmRecord, DiffersWhenThePictureOrTheOptionsDo) {
  const test::TempFolder folder;
  std::ofstream(folder / "a.jpg") << "12345";
  const FilmRecord record = RecordOf(folder / "a.jpg", {"--size", "96x64"});
  EXPECT_EQ(RecordOf(folder / "a.jpg", {"--size", "96x64"}), record);
  EXPECT_NE(RecordOf(folder / "a.jpg", {"--size", "96x66"}), record);
  std::filesystem::last_write_time(folder / "a.jpg", std::filesystem::file_time_type{});
  EXPECT_NE(RecordOf(folder / "a.jpg", {"--size", "96x64"}), record);
}

TEST(FilmRecord, IsNoneWhereTheFileIsNone) {
  const test::TempFolder folder;
  EXPECT_EQ(ReadRecord(folder / "none.json"), std::nullopt);
  for (const char* text :
       {"", "{}", "[1]", "{\"input\": 3}", "{\"input\": \"a\", \"bytes\": \"b\"}",
        "{\"input\":\"a\",\"bytes\":1,\"time\":2,\"options\":[3]}"}) {
    std::ofstream(folder / "bad.json") << text;
    EXPECT_EQ(ReadRecord(folder / "bad.json"), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace kelto::host
