// An instance to load into, a fake disk and a fake network.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "image/load.h"
#include "image/paths.h"
#include "state/module.h"
#include "tests/image/fake_importer.h"
#include "tests/image/fake_network.h"
#include "tests/image/instance.h"

namespace kelto::test {

class LoadingTest : public ImageTest {
 protected:
  LoadingTest() { Module().knownFolders.clear(); }
  ~LoadingTest() override {
    Module().knownFolders.clear();
    EXPECT_EQ(disk.openImporters, 0);
    EXPECT_EQ(disk.openWorlds, 0);
    ReleaseWorkImages(instance);
  }

  /// Puts a flat picture at `path` and makes it the instance's.
  void PutPicture(const std::string& path, FakePicture picture) {
    disk.files[path] = std::move(picture);
    instance.picture.imagePath = path;
  }
  /// Bytes Y, Cr, Cb of a pixel of working image 0.
  std::array<uint8_t, 3> PixelAt(int32_t x, int32_t y) const {
    const IplImage& image = *instance.picture.workImages[0];
    const char* pixel = image.imageData + ptrdiff_t{y} * image.widthStep + ptrdiff_t{4} * x;
    return {static_cast<uint8_t>(pixel[0]), static_cast<uint8_t>(pixel[1]),
            static_cast<uint8_t>(pixel[2])};
  }
  /// The path saved in the instance data; checks that it is a zero-padded record.
  std::string SavedPath() const {
    int32_t length = 0;
    const void* record = instance.GetInstanceData(&length);
    if (record == nullptr) return "nothing saved";
    EXPECT_EQ(length, kPathRecordSize);
    const std::string all(static_cast<const char*>(record), static_cast<size_t>(length));
    std::string path = PathOfRecord(record);
    EXPECT_EQ(all.find_first_not_of('\0', path.size()), std::string::npos) << "not zero-padded";
    return path;
  }

  FakeImporter disk;
  FakeNetwork network;
  Instance instance;
};

}  // namespace kelto::test
