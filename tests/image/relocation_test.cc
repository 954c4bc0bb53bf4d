// Loading a file that is no longer where its path says.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "state/module.h"
#include "tests/image/load_fixture.h"
#include "tests/image/temporary_folder.h"

namespace kelto {
namespace {

using test::FakePicture;
using testing::ElementsAre;

/// A picture in the folder "known", whose file also exists on the real disk, where it is looked
/// for.
class Relocation : public test::LoadingTest {
 protected:
  Relocation() {
    folder.Touch("known/a.jpg");
    disk.files[kFound] = FakePicture::Flat(4, 4, 1, 2, 3);
    instance.picture.imagePath = "/gone/for/ever/and/far/away/a.jpg";
  }

#if defined(_WIN32)
  const std::string kFound = "known\\a.jpg";
#else
  const std::string kFound = "known/a.jpg";
#endif
  test::TemporaryFolder folder;
};

TEST_F(Relocation, AMissingFileIsFoundInAKnownFolderWithoutAsking) {
  RememberImageFolder("known/other.jpg");
  EXPECT_TRUE(LoadImage(instance, false));
  EXPECT_EQ(instance.picture.imagePath, kFound);
  EXPECT_EQ(SavedPath(), kFound);
  EXPECT_TRUE(hfx::InstanceDataModified(instance));
  EXPECT_EQ(network.dialogs, 0);
}

TEST_F(Relocation, ARelocatedPathIsNotRememberedByTheLoad) {
  folder.Touch("known/deeper/b.jpg");
  // Spelled so that remembering the found file's folder would add a second spelling.
  Module().knownFolders = {"known/deeper/"};
  const std::string found = kFound.substr(0, 6) + "deeper" + kFound[5] + "b.jpg";
  disk.files[found] = FakePicture::Flat(4, 4, 1, 2, 3);
  instance.picture.imagePath = "/gone/b.jpg";
  const std::set<std::string> before = Module().knownFolders;
  EXPECT_TRUE(LoadImage(instance, false));
  EXPECT_EQ(instance.picture.imagePath, found);
  EXPECT_EQ(Module().knownFolders, before);
}

TEST_F(Relocation, NotInteractiveNeverOpensADialog) {
  network.pick = kFound;
  EXPECT_FALSE(LoadImage(instance, false));
  EXPECT_EQ(network.dialogs, 0);
  EXPECT_EQ(instance.picture.imagePath, "/gone/for/ever/and/far/away/a.jpg");
  EXPECT_EQ(SavedPath(), "nothing saved");
}

TEST_F(Relocation, InteractiveAsksAndRemembersTheFolderOfThePick) {
  network.pick = kFound;
  EXPECT_TRUE(LoadImage(instance, true));
  EXPECT_EQ(network.dialogs, 1);
  EXPECT_EQ(network.title, "Please locate the image: a.jpg");
  EXPECT_EQ(instance.picture.imagePath, kFound);
  EXPECT_EQ(SavedPath(), kFound);
  EXPECT_THAT(Module().knownFolders, ElementsAre("known"));
}

TEST_F(Relocation, ACancelledDialogFailsAndLeavesThePath) {
  EXPECT_FALSE(LoadImage(instance, true));
  EXPECT_EQ(network.dialogs, 1);
  EXPECT_EQ(instance.picture.imagePath, "/gone/for/ever/and/far/away/a.jpg");
  EXPECT_EQ(SavedPath(), "nothing saved");
}

TEST_F(Relocation, APickThatCannotBeOpenedEitherFailsAndIsNotSaved) {
  network.pick = "known/text.jpg";
  EXPECT_FALSE(LoadImage(instance, true));
  EXPECT_THAT(disk.triedToOpen, ElementsAre("/gone/for/ever/and/far/away/a.jpg", "known/text.jpg"));
  EXPECT_EQ(SavedPath(), "nothing saved");
}

TEST_F(Relocation, AnEmptyPathFailsWithoutAsking) {
  network.pick = kFound;
  instance.picture.imagePath.clear();
  EXPECT_FALSE(LoadImage(instance, true));
  EXPECT_EQ(network.dialogs, 0);
  EXPECT_TRUE(disk.triedToOpen.empty());
}

TEST_F(Relocation, APathOfMoreThan255CharactersCannotBeOpened) {
  const std::string path = "/" + std::string(255, 'p');
  disk.files[path] = FakePicture::Flat(4, 4, 1, 2, 3);
  instance.picture.imagePath = path;
  EXPECT_FALSE(LoadImage(instance, false));
  EXPECT_TRUE(disk.triedToOpen.empty());
  EXPECT_EQ(instance.picture.imagePath, path) << "kept, although it cannot be opened";

  PutPicture(path.substr(0, 255), FakePicture::Flat(4, 4, 1, 2, 3));
  EXPECT_TRUE(LoadImage(instance, false));
}

TEST_F(Relocation, APickOfMoreThan255CharactersFailsLikeMemoryRunningOut) {
  network.pick = "/" + std::string(255, 'p');
  EXPECT_FALSE(LoadImage(instance, true));
  EXPECT_EQ(SavedPath(), "nothing saved");
}

}  // namespace
}  // namespace kelto
