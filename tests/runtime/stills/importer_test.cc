// The importer's own contract, whatever the format and whoever decodes it.
#include <gmock/gmock.h>

#include <cstring>
#include <filesystem>

#include "tests/runtime/stills/drawing.h"
#include "tests/runtime/stills/still_test.h"

namespace kelto::stills {
namespace {

using testing::AnyOf;
using testing::StartsWith;

class Importer : public StillTest {
 protected:
  /// A BMP without loss, which every decoder reads.
  std::string Gradual(const std::string& name, int width, int height) const {
    test::WritePhoto(Path(name), width, height, [](int32_t x, int32_t y) {
      const Pixel p = Gradient(x, y);
      return test::Rgb{p.r, p.g, p.b};
    });
    return Path(name);
  }
  /// 6x4 pixels.
  std::string SmallPicture(const std::string& name = "small.bmp") const {
    return Gradual(name, 6, 4);
  }
};

TEST(FileSpecification, HoldsAPathOfUpTo255CharactersBehindItsLength) {
  FSSpec spec;
  const std::string longest(255, 'x');
  ASSERT_EQ(MakeFileSpecification(longest.c_str(), &spec), noErr);
  EXPECT_EQ(spec.name[0], 255);
  EXPECT_EQ(std::memcmp(spec.name + 1, longest.data(), 255), 0);
  ASSERT_EQ(MakeFileSpecification("a/b", &spec), noErr);
  EXPECT_EQ(spec.name[0], 3);
}

TEST(FileSpecification, MissingEmptyAndTooLongPathsAreFilesNotFound) {
  FSSpec spec;
  EXPECT_EQ(MakeFileSpecification(nullptr, &spec), fnfErr);
  EXPECT_EQ(MakeFileSpecification("", &spec), fnfErr);
  EXPECT_EQ(MakeFileSpecification(std::string(256, 'x').c_str(), &spec), fnfErr);
  EXPECT_STREQ(StillImporterLastError(), "a path of more than 255 characters");
  EXPECT_EQ(MakeFileSpecification("a", nullptr), paramErr);
}

TEST_F(Importer, APathOfMoreThan255CharactersCannotBeOpenedThoughTheFileIsThere) {
  const std::string folder = Path(std::string(180, 'd')) + "/";
  std::filesystem::create_directory(folder);
  // Windows opens up to 259.
  const std::string path = folder + std::string(257 - folder.size(), 'f');
  std::filesystem::copy(SmallPicture(), path);
  EXPECT_EQ(OpenStill(path).error, fnfErr);
}

TEST_F(Importer, SaysWhyAFileCannotBeRead) {
  EXPECT_EQ(LoadStill(Path("none.jpg")).error, fnfErr);
  EXPECT_EQ(LoadStill(Path("none.jpg")).text, "none.jpg: no such file");
  EXPECT_EQ(LoadStill(SmallPicture() + "/x.jpg").text, "x.jpg: no such file");
  std::filesystem::create_directory(Path("photos"));
  EXPECT_EQ(LoadStill(Path("photos")).error, fnfErr);
  EXPECT_EQ(LoadStill(Path("photos")).text, "photos: a folder, not a picture");
  EXPECT_EQ(LoadStill(Path("photos/")).error, fnfErr);
}

TEST_F(Importer, EmptyFilesAndTextsAreNoPictures) {
  EXPECT_EQ(Load({}, "empty.png").error, noCodecErr);
  EXPECT_EQ(Load({}, "empty.png").text, "empty.png: an empty file");
  const std::string text = "Dear diary, this is not a picture at all, whatever my name says.\n";
  const Loaded loaded = Load(Bytes(text.begin(), text.end()), "diary.jpg");
  EXPECT_EQ(loaded.error, noCodecErr);
  EXPECT_EQ(loaded.text, "diary.jpg: not a picture in a known format");
}

TEST_F(Importer, ShortFilesOfAnyFirstByteAreNoPictures) {
  for (int first = 0; first < 256; ++first) {
    EXPECT_EQ(Load({static_cast<uint8_t>(first)}).error, noCodecErr) << first;
  }
}

TEST_F(Importer, ContentCountsAndNotTheName) {
  const Loaded loaded = LoadStill(SmallPicture("really-a-bmp.jpg"));
  ASSERT_EQ(loaded.error, noErr) << loaded.text;
  EXPECT_EQ(LargestDifference(loaded.picture, GradientPicture(6, 4)), 0);
}

TEST_F(Importer, NaturalBoundsBeginAtTheOrigin) {
  const Opened opened = OpenStill(SmallPicture());
  StillRect bounds = {9, 9, 9, 9};
  ASSERT_EQ(GraphicsImportGetNaturalBounds(opened.importer, &bounds), noErr);
  EXPECT_EQ(bounds.left, 0);
  EXPECT_EQ(bounds.top, 0);
  EXPECT_EQ(bounds.right, 6);
  EXPECT_EQ(bounds.bottom, 4);
  CloseComponent(opened.importer);
}

TEST(OffscreenWorld, RefusesWhatIsNotABufferOfBgra) {
  uint8_t pixels[64];
  const StillRect four_by_four = {0, 0, 4, 4}, empty = {3, 3, 3, 7}, reversed = {4, 4, 0, 0};
  GWorldPtr world = nullptr;
  const auto make = [&](OSType format, const StillRect* bounds, void* to, int32_t row_bytes) {
    return QTNewGWorldFromPtr(&world, format, bounds, nullptr, nullptr, 0, to, row_bytes);
  };
  EXPECT_EQ(make(0x20, &four_by_four, pixels, 16), paramErr);
  EXPECT_EQ(make(k32BGRAPixelFormat, &empty, pixels, 16), paramErr);
  EXPECT_EQ(make(k32BGRAPixelFormat, &reversed, pixels, 16), paramErr);
  EXPECT_EQ(make(k32BGRAPixelFormat, nullptr, pixels, 16), paramErr);
  EXPECT_EQ(make(k32BGRAPixelFormat, &four_by_four, nullptr, 16), paramErr);
  EXPECT_EQ(make(k32BGRAPixelFormat, &four_by_four, pixels, 15), paramErr);
  EXPECT_EQ(make(k32BGRAPixelFormat, &four_by_four, pixels, -16), paramErr);
  EXPECT_EQ(world, nullptr);
  EXPECT_EQ(make(k32BGRAPixelFormat, &four_by_four, pixels, 16), noErr);
  EXPECT_NE(world, nullptr);
  DisposeGWorld(world);
}

TEST_F(Importer, DrawsAtTheWorldsOriginAndLeavesTheRestOfALargerWorld) {
  const Opened opened = OpenStill(SmallPicture());
  constexpr size_t kRow = 40;
  Bytes pixels(kRow * 7, 0x77);
  const StillRect bounds = {30, 20, 37, 29};  // 9x7, not at (0, 0)
  GWorldPtr world = nullptr;
  ASSERT_EQ(QTNewGWorldFromPtr(&world, k32BGRAPixelFormat, &bounds, nullptr, nullptr, 0,
                               pixels.data(), kRow),
            noErr);
  ASSERT_EQ(GraphicsImportSetGWorld(opened.importer, world, nullptr), noErr);
  ASSERT_EQ(GraphicsImportDraw(opened.importer), noErr);
  for (size_t at = 0; at < pixels.size(); ++at) {
    const size_t x = at % kRow / 4, y = at / kRow;
    if (x < 6 && y < 4) {
      const Pixel p = Gradient(static_cast<int>(x), static_cast<int>(y));
      EXPECT_EQ(pixels[at], (&p.b)[at % 4]) << x << "," << y;
    } else {
      EXPECT_EQ(pixels[at], 0x77) << x << "," << y;
    }
  }
  DisposeGWorld(world);
  CloseComponent(opened.importer);
}

TEST_F(Importer, RefusesToDrawIntoNoWorldOrOneSmallerThanThePicture) {
  const Opened opened = OpenStill(SmallPicture());
  EXPECT_EQ(GraphicsImportDraw(opened.importer), paramErr);
  const Bytes untouched(96, 0x77);
  Bytes pixels = untouched;
  for (const StillRect bounds : {StillRect{0, 0, 3, 6}, StillRect{0, 0, 4, 5}}) {
    GWorldPtr world = nullptr;
    ASSERT_EQ(QTNewGWorldFromPtr(&world, k32BGRAPixelFormat, &bounds, nullptr, nullptr, 0,
                                 pixels.data(), 24),
              noErr);
    ASSERT_EQ(GraphicsImportSetGWorld(opened.importer, world, nullptr), noErr);
    EXPECT_EQ(GraphicsImportDraw(opened.importer), paramErr);
    EXPECT_STREQ(StillImporterLastError(), "small.bmp: the world is smaller than the picture");
    DisposeGWorld(world);
  }
  EXPECT_EQ(pixels, untouched);
  CloseComponent(opened.importer);
}

TEST_F(Importer, DrawsTwiceAlike) {
  Drawing drawing(OpenStill(SmallPicture()));
  ASSERT_EQ(GraphicsImportDraw(drawing.importer), noErr);
  const Bytes first = drawing.pixels;
  std::fill(drawing.pixels.begin(), drawing.pixels.end(), uint8_t{1});
  ASSERT_EQ(GraphicsImportDraw(drawing.importer), noErr);
  EXPECT_EQ(drawing.pixels, first);
}

// Decoders that read a picture in one piece cannot tell a file's end from damage.
const auto kSaysThatCut = AnyOf(StartsWith("cut.bmp: truncated "), StartsWith("cut.bmp: damaged "),
                                StartsWith("cut.bmp: the file changed after it was opened"));

TEST_F(Importer, AFileCutShortAfterItWasOpenedIsAnError) {
  for (const uintmax_t left : {uintmax_t{60000}, uintmax_t{20}, uintmax_t{0}}) {
    const std::string path = Gradual("cut.bmp", 200, 150);
    Drawing drawing(OpenStill(path));
    std::filesystem::resize_file(path, left);
    EXPECT_EQ(GraphicsImportDraw(drawing.importer), codecBadDataErr) << left;
    EXPECT_THAT(StillImporterLastError(), kSaysThatCut);
  }
}

TEST_F(Importer, AFileThatBecameAnotherPictureAfterItWasOpenedIsAnError) {
  for (const int width : {190, 210}) {
    Drawing drawing(OpenStill(Gradual("large.bmp", 200, 150)));
    Gradual("large.bmp", width, 150);
    EXPECT_EQ(GraphicsImportDraw(drawing.importer), codecBadDataErr);
    EXPECT_STREQ(StillImporterLastError(), "large.bmp: the file changed after it was opened");
  }
}

TEST_F(Importer, TheLastErrorGoesWithTheNextSuccessButOutlivesCleaningUp) {
  const std::string path = SmallPicture("cut.bmp");
  std::filesystem::resize_file(path, 70);
  {
    Drawing drawing(OpenStill(path));
    ASSERT_EQ(GraphicsImportDraw(drawing.importer), codecBadDataErr);
  }
  EXPECT_THAT(StillImporterLastError(), kSaysThatCut);
  FSSpec spec;
  MakeFileSpecification("x", &spec);
  EXPECT_STREQ(StillImporterLastError(), "");
}

TEST_F(Importer, TextsStayOnOneLineWhateverTheFileIsCalled) {
  EXPECT_EQ(LoadStill(Path("two\nlines\x1b.jpg")).text, "two?lines?.jpg: no such file");
}

TEST_F(Importer, NullArgumentsAreRefused) {
  StillRect bounds;
  FSSpec spec = {};
  GraphicsImportComponent importer = nullptr;
  EXPECT_EQ(GetGraphicsImporterForFile(nullptr, &importer), fnfErr);
  EXPECT_EQ(GetGraphicsImporterForFile(&spec, &importer), fnfErr);
  EXPECT_EQ(GetGraphicsImporterForFile(&spec, nullptr), paramErr);
  EXPECT_EQ(GraphicsImportGetNaturalBounds(nullptr, &bounds), paramErr);
  EXPECT_EQ(GraphicsImportSetGWorld(nullptr, nullptr, nullptr), paramErr);
  EXPECT_EQ(GraphicsImportDraw(nullptr), paramErr);
  EXPECT_EQ(CloseComponent(nullptr), paramErr);
  DisposeGWorld(nullptr);
}

}  // namespace
}  // namespace kelto::stills
