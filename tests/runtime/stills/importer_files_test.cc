// The importer's own contract where files have permissions, may be pipes and can be deleted while
// they are open, and in the words of our own decoders.
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "tests/runtime/stills/drawing.h"
#include "tests/runtime/stills/encode_jpeg.h"
#include "tests/runtime/stills/encode_png.h"
#include "tests/runtime/stills/still_test.h"

namespace kelto::stills {
namespace {

class ImporterFiles : public StillTest {
 protected:
  /// A 6x4 PNG.
  std::string SmallPicture(const std::string& name = "small.png") const {
    return Write(name, EncodePng(PngOf(GradientPicture(6, 4))));
  }
};

TEST_F(ImporterFiles, SaysThatAFileMayNotBeRead) {
  const std::string path = SmallPicture("secret.png");
  ASSERT_EQ(::chmod(path.c_str(), 0), 0);
  const bool privileged = ::geteuid() == 0;
  constexpr uid_t kNobody = 65534;
  if (privileged) {
    ASSERT_EQ(::seteuid(kNobody), 0);
  }
  const Loaded loaded = LoadStill(path);
  if (privileged) {
    ASSERT_EQ(::seteuid(0), 0);
  }
  EXPECT_EQ(loaded.error, fnfErr);
  EXPECT_EQ(loaded.text, "secret.png: no permission to read the file");
}

TEST_F(ImporterFiles, APipeIsRefusedWithoutWaitingForItsWriter) {
  ASSERT_EQ(::mkfifo(Path("pipe.jpg").c_str(), 0600), 0);
  EXPECT_EQ(LoadStill(Path("pipe.jpg")).text, "pipe.jpg: not a file");
}

TEST_F(ImporterFiles, KeepsTheFileOpenSoThatADeletedOneStillDraws) {
  const std::string path = SmallPicture();
  Drawing drawing(OpenStill(path));
  std::filesystem::remove(path);
  EXPECT_EQ(GraphicsImportDraw(drawing.importer), noErr);
}

/// A PNG without compression, larger than what a stream reads ahead.
Bytes LargePng(int width, int height) {
  PngSpec spec = PngOf(GradientPicture(width, height));
  spec.chunks = [](png_structp png, png_infop) { png_set_compression_level(png, 0); };
  return EncodePng(spec);
}

TEST_F(ImporterFiles, AFileCutShortAfterItWasOpenedIsAnError) {
  const Bytes whole = LargePng(200, 150);
  for (const uintmax_t left : {uintmax_t{60000}, uintmax_t{20}, uintmax_t{0}}) {
    const std::string path = Write("large.png", whole);
    Drawing drawing(OpenStill(path));
    std::filesystem::resize_file(path, left);
    EXPECT_EQ(GraphicsImportDraw(drawing.importer), codecBadDataErr) << left;
    EXPECT_STREQ(StillImporterLastError(), "large.png: truncated PNG (the file ends too early)");
  }
}

TEST_F(ImporterFiles, AFileThatBecameAnotherPictureAfterItWasOpenedIsAnError) {
  for (const int width : {190, 210}) {
    Drawing png(OpenStill(Write("large.png", LargePng(200, 150))));
    Write("large.png", LargePng(width, 150));
    EXPECT_EQ(GraphicsImportDraw(png.importer), codecBadDataErr);
    EXPECT_STREQ(StillImporterLastError(), "large.png: the file changed after it was opened");

    JpegSpec jpeg = JpegOf(GradientPicture(200, 150));
    jpeg.quality = 100;
    Drawing photo(OpenStill(Write("large.jpg", EncodeJpeg(jpeg))));
    jpeg = JpegOf(GradientPicture(width, 150));
    jpeg.quality = 100;
    Write("large.jpg", EncodeJpeg(jpeg));
    EXPECT_EQ(GraphicsImportDraw(photo.importer), codecBadDataErr);
    EXPECT_STREQ(StillImporterLastError(), "large.jpg: the file changed after it was opened");
  }
}

}  // namespace
}  // namespace kelto::stills
