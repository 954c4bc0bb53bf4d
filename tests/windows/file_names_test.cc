// Files of any name through the command: arguments, lists, projects, events, messages and output.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "host/base/windows_text.h"
#include "tests/support/photo.h"
#include "tests/windows/command.h"
#include "tests/windows/file_names.h"

namespace kelto::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using Json = nlohmann::json;

fs::path Wide(const std::string& text) { return *host::WideText(text); }

/// The form that takes names of any length, for the test's own calls.
fs::path AnyLength(const fs::path& path) {
  return L"\\\\?\\" + fs::absolute(path).make_preferred().native();
}

std::string BytesOf(const fs::path& path) {
  std::ifstream file(AnyLength(path), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> Options() {
  std::istringstream words(BytesOf(fs::path(KELTO_NATIVE_NAMES) / "options.txt"));
  return {std::istream_iterator<std::string>(words), {}};
}

std::string NativeFilm(size_t number) {
  return BytesOf(fs::path(KELTO_NATIVE_NAMES) / (std::to_string(number) + ".yuyv"));
}

size_t LinesOf(const std::string& text) {
  return static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
}

/// A name's stem, which films are named after.
std::string Stem(const std::string& name) { return name.substr(0, name.rfind('.')); }

/// The photographs under their names in a folder whose own name no code page has.
class FileNames : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder = MakeFolder() / Wide(kFolderName);
    fs::create_directories(folder);
    names = test::FileNames();
    for (size_t i = 0; i < names.size(); ++i) {
      fs::copy_file(fs::path(KELTO_NATIVE_NAMES) / (std::to_string(i) + ".bmp"),
                    AnyLength(folder / Wide(names[i])));
    }
  }
  static void TearDownTestSuite() {
    std::error_code ignored;
    fs::remove_all(AnyLength(folder.parent_path()), ignored);
  }

  static CommandResult Run(std::vector<std::string> words, bool asFilm = true) {
    if (asFilm) {
      for (const std::string& option : Options()) words.push_back(option);
    }
    return RunCommand(words, folder.native());
  }

  /// The names, one a line.
  static std::string AllNames() {
    std::string lines;
    // A name that begins with a blank takes quotation marks.
    for (const std::string& name : names) {
      lines += (name.front() == ' ' ? '"' + name + '"' : name) + "\r\n";
    }
    return lines;
  }

  static void WriteList(const std::string& name, const std::string& text) {
    std::ofstream(folder / Wide(name), std::ios::binary) << text;
  }

  static fs::path folder;
  static std::vector<std::string> names;
};

fs::path FileNames::folder;
std::vector<std::string> FileNames::names;

TEST_F(FileNames, AreForty) { EXPECT_EQ(names.size(), 40u); }

TEST_F(FileNames, InArgumentsAreThoseOfTheirOwnFilms) {
  for (size_t i = 0; i < names.size(); ++i) {
    SCOPED_TRACE(names[i]);
    // What begins like an option stands behind its folder.
    const std::string film = "out-" + Stem(names[i]).substr(0, 150) + ".yuyv";
    const CommandResult result = Run({"render", ".\\" + names[i], "-o", film, "--quiet"});
    EXPECT_EQ(result.code, 0u) << result.err;
    EXPECT_TRUE(BytesOf(folder / Wide(film)) == NativeFilm(i));
    fs::remove(AnyLength(folder / Wide(film)));
  }
}

TEST_F(FileNames, OfOutputAreWrittenAsGiven) {
  for (size_t i = 0; i < names.size(); ++i) {
    SCOPED_TRACE(names[i]);
    const std::string film = Stem(names[i]) + ".yuyv";
    const CommandResult result = Run({"render", ".\\" + names[0], "-o", ".\\" + film, "--quiet"});
    EXPECT_EQ(result.code, 0u) << result.err;
    EXPECT_TRUE(BytesOf(folder / Wide(film)) == NativeFilm(0));
    fs::remove(AnyLength(folder / Wide(film)));
  }
}

// With and without the mark that some editors begin a text with.
TEST_F(FileNames, InListsAndEventsAreThoseOfTheirOwnFilms) {
  for (const char* mark : {"", "\xEF\xBB\xBF"}) {
    WriteList("Список.txt", mark + AllNames());
    const CommandResult result =
        Run({"batch", "Список.txt", "-o", "Фильмы", "--format", "yuyv", "--json"});
    ASSERT_EQ(result.code, 0u) << result.err;
    std::map<std::string, std::string> films;
    std::istringstream lines(result.err);
    for (std::string line; std::getline(lines, line);) {
      const Json event = Json::parse(line);
      if (event["event"] == "film") films[event["picture"]] = event["output"];
    }
    ASSERT_EQ(films.size(), names.size());
    for (size_t i = 0; i < names.size(); ++i) {
      SCOPED_TRACE(names[i]);
      ASSERT_EQ(films.count(names[i]), 1u);
      EXPECT_TRUE(BytesOf(folder / Wide(films[names[i]])) == NativeFilm(i));
    }
    fs::remove_all(AnyLength(folder / Wide("Фильмы")));
  }
}

TEST_F(FileNames, InAFolderAreAllFound) {
  const CommandResult result =
      Run({"batch", "..\\" + std::string(kFolderName), "-o", "films", "--format", "yuyv"});
  ASSERT_EQ(result.code, 0u) << result.err;
  size_t films = 0;
  for (const auto& entry : fs::directory_iterator(AnyLength(folder / "films"))) {
    films += entry.path().extension() == ".yuyv" ? 1 : 0;
  }
  EXPECT_EQ(films, names.size());
  fs::remove_all(AnyLength(folder / "films"));
}

TEST_F(FileNames, InProjectsAreTheRealOnes) {
  for (size_t i = 0; i < names.size(); ++i) {
    SCOPED_TRACE(names[i]);
    const std::string project = "p-" + Stem(names[i]).substr(0, 150) + ".json";
    std::vector<std::string> words = {"render",         ".\\" + names[i], "-o",     "direct.yuyv",
                                      "--save-project", project,          "--quiet"};
    ASSERT_EQ(Run(words).code, 0u);
    EXPECT_EQ(Json::parse(BytesOf(folder / Wide(project)))["image"], names[i]);
    EXPECT_EQ(Run({"render", project, "-o", "film.yuyv", "--quiet"}, false).code, 0u);
    EXPECT_TRUE(BytesOf(folder / "film.yuyv") == NativeFilm(i));
    fs::remove(AnyLength(folder / Wide(project)));
  }
}

TEST_F(FileNames, InMessagesAreWhole) {
  std::string missing;
  for (const std::string& name : names) missing += "no/" + name + "\n";
  WriteList("missing.txt", missing);
  const CommandResult result = Run({"batch", "missing.txt", "-o", "none", "--format", "yuyv"});
  EXPECT_EQ(result.code, 1u);
  for (const std::string& name : names) {
    EXPECT_THAT(result.err, HasSubstr(name + ": there is no such file"));
  }
  EXPECT_EQ(LinesOf(result.err), names.size());
}

TEST_F(FileNames, AreAsLongAsTheSystemHasThem) {
  const std::string longest(255 - 5, 'm'), photo = longest + ".bmpx", film = longest + ".yuyv";
  fs::copy_file(folder / Wide(names[0]), AnyLength(folder / Wide(photo)));
  const CommandResult result = Run({"render", photo, "-o", film, "--quiet"});
  EXPECT_EQ(result.code, 0u) << result.err;
  EXPECT_TRUE(BytesOf(folder / Wide(film)) == NativeFilm(0));
  std::error_code ignored;
  for (const std::string& name : {photo, film}) fs::remove(AnyLength(folder / Wide(name)), ignored);
}

TEST_F(FileNames, InASlideshowDoNotEndIt) {
  WriteList("show.txt", "Łódź.bmp\n写真.bmp\n📷🏞️.bmp\n");
  const CommandResult result = Run({"slideshow", "show.txt", "-o", "показ.yuyv", "--each", "1",
                                    "--fade", "0.2", "--size", "64x48", "--quiet"},
                                   false);
  EXPECT_EQ(result.code, 0u) << result.err;
  EXPECT_GT(BytesOf(folder / Wide("показ.yuyv")).size(), 64u * 48 * 2 * 50);
}

TEST_F(FileNames, OfAListThatIsNotUtf8AreRefused) {
  WriteList("ansi.txt", "F\xEAte.bmp\r\n");
  const CommandResult result = Run({"batch", "ansi.txt", "-o", "films", "--format", "yuyv"});
  EXPECT_NE(result.code, 0u);
  EXPECT_THAT(result.err, HasSubstr("is not UTF-8"));
  EXPECT_EQ(LinesOf(result.err), 1u);
}

// A name without its folder means the current folder of that drive.
TEST_F(FileNames, BehindADriveAloneAreOfItsCurrentFolder) {
  const std::string drive = host::Utf8Text(folder.root_name().native());
  const CommandResult result =
      Run({"render", drive + "Łódź.bmp", "-o", drive + "Łódź.yuyv", "--quiet"});
  EXPECT_EQ(result.code, 0u) << result.err;
  EXPECT_TRUE(BytesOf(folder / Wide("Łódź.yuyv")) == NativeFilm(0));
}

TEST_F(FileNames, WithTheMarkOfAnyLengthAreTakenAsTheyAre) {
  const std::string full = host::Utf8Text(AnyLength(folder / Wide("写真.bmp")).native());
  const std::string film = host::Utf8Text(AnyLength(folder / Wide("写真.yuyv")).native());
  const CommandResult result = Run({"render", full, "-o", film, "--quiet"});
  EXPECT_EQ(result.code, 0u) << result.err;
  const size_t number =
      static_cast<size_t>(std::find(names.begin(), names.end(), "写真.bmp") - names.begin());
  EXPECT_TRUE(BytesOf(folder / Wide("写真.yuyv")) == NativeFilm(number));
}

TEST_F(FileNames, OnAMachineThatIsNotThereAreNamedInOneLine) {
  const std::string photo = "\\\\нет-такой\\фото\\写真.bmp";
  const CommandResult result = Run({"render", photo, "-o", "film.yuyv"});
  EXPECT_EQ(result.code, 1u);
  EXPECT_THAT(result.err, HasSubstr(photo + ": "));
  EXPECT_EQ(LinesOf(result.err), 1u);
}

// As for every program here; what the names end in must not find another picture, though.
TEST_F(FileNames, AreTheSameWithDotsAndBlanksBehindThem) {
  for (const std::string behind : {".", " ", ". ."}) {
    SCOPED_TRACE(behind);
    const CommandResult result = Run({"render", "Łódź.bmp" + behind, "-o", "film.yuyv", "--quiet"});
    EXPECT_EQ(result.code, 0u) << result.err;
    EXPECT_TRUE(BytesOf(folder / "film.yuyv") == NativeFilm(0));
    EXPECT_EQ(Run({"render", "Łódź.bmp", "-o", "other.yuyv" + behind}).code, 2u)
        << "the kind of film that the name ends in is not certain";
  }
}

TEST_F(FileNames, OfDevicesAreNoFiles) {
  for (const std::string device : {"NUL", "CON", "AUX", "COM1", "LPT1"}) {
    SCOPED_TRACE(device);
    const CommandResult read = Run({"render", device, "-o", "film.yuyv"});
    EXPECT_EQ(read.code, 1u);
    EXPECT_EQ(LinesOf(read.err), 1u) << read.err;
    const CommandResult written =
        Run({"render", "Łódź.bmp", "-o", device + ".yuyv", "--format", "yuyv", "--json"});
    EXPECT_EQ(written.code, 1u);
    EXPECT_THAT(written.err, HasSubstr("is the name of a device"));
    EXPECT_THAT(written.err, testing::Not(HasSubstr("\"progress\"")));
  }
}

/// The number of processes' frames is not asked: a film that would take minutes is refused at once.
TEST_F(FileNames, ThatAnotherProgramHoldsAreToldOfBeforeRendering) {
  const fs::path film = folder / Wide("занят.yuyv");
  const HANDLE held =
      CreateFileW(film.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, 0, nullptr);
  ASSERT_NE(held, INVALID_HANDLE_VALUE);
  const std::vector<std::string> endless = {"render", "Łódź.bmp",  "-o",       "занят.yuyv",
                                            "--size", "1920x1080", "--frames", "1000000"};
  const CommandResult result = Run(endless, false);
  CloseHandle(held);
  EXPECT_EQ(result.code, 1u);
  EXPECT_THAT(result.err, HasSubstr("занят.yuyv: is in use by another program"));
  ASSERT_TRUE(SetFileAttributesW(film.c_str(), FILE_ATTRIBUTE_READONLY));
  EXPECT_THAT(Run(endless, false).err, HasSubstr("занят.yuyv: is marked read-only"));
  SetFileAttributesW(film.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(FileNames, OfFilmsThatThisSystemCannotWriteAreAnsweredSo) {
  const CommandResult result = Run({"render", "Łódź.bmp", "-o", "film.mp4"});
  EXPECT_EQ(result.code, 2u);
  EXPECT_THAT(result.err, HasSubstr("film.mp4: "));
  EXPECT_THAT(result.err, HasSubstr("only on Linux"));
}

// Longer than the system's usual calls take, all of it and by a single part.
TEST_F(FileNames, InFoldersBeyond260LettersAreFound) {
  fs::path deep = folder;
  for (int i = 0; i < 6; ++i) deep /= Wide("глубокая папка с длинным именем, одна в другой");
  fs::create_directories(AnyLength(deep));
  ASSERT_GT(deep.native().size(), 300u);
  fs::copy_file(folder / Wide("写真.bmp"), AnyLength(deep / Wide("写真.bmp")));
  const std::string deepText = host::Utf8Text(deep.native());
  const CommandResult batch =
      Run({"batch", deepText, "-o", deepText + "\\films", "--format", "yuyv"});
  EXPECT_EQ(batch.code, 0u) << batch.err;
  const size_t number =
      static_cast<size_t>(std::find(names.begin(), names.end(), "写真.bmp") - names.begin());
  EXPECT_TRUE(BytesOf(deep / "films" / Wide("写真.yuyv")) == NativeFilm(number));
  std::error_code ignored;
  for (fs::path at = deep; at != folder; at = at.parent_path()) {
    fs::remove_all(AnyLength(at), ignored);
  }
}

TEST_F(FileNames, OfTheFolderForTemporaryFilesMayBeAny) {
  const fs::path temporary = folder / Wide("Временное 写真");
  fs::create_directories(temporary);
  const std::map<std::string, std::string> variables = {
      {"TMP", host::Utf8Text(temporary.native())}, {"TEMP", host::Utf8Text(temporary.native())}};
  const CommandResult result = RunCommand({"doctor"}, folder.native(), variables);
  EXPECT_EQ(result.code, 0u) << result.out << result.err;
  EXPECT_THAT(result.out, HasSubstr("kelto can render on this machine"));
  EXPECT_TRUE(fs::is_empty(temporary));
}

}  // namespace
}  // namespace kelto::test
