#include "image/network_path.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/image/fake_network.h"

namespace kelto {
namespace {

class NetworkPath : public testing::Test {
 protected:
  ~NetworkPath() override { EXPECT_EQ(network.openBuffers, 0) << "every buffer is freed"; }

  /// The network form of `path`, or "unchanged".
  static std::string Resolve(const std::string& path) {
    char output[2048] = "unchanged";
    const bool converted = ResolveNetworkPath(path.c_str(), output, sizeof(output));
    EXPECT_EQ(converted, std::string(output) != "unchanged");
    return output;
  }

  test::FakeNetwork network;
};

TEST_F(NetworkPath, APathThatBeginsWithTwoBackslashesIsNeverRewritten) {
  network.universalNames["\\\\server\\share\\a.jpg"] = "\\\\other\\share\\a.jpg";
  network.shares = {{L"All", L""}};
  EXPECT_EQ(Resolve("\\\\server\\share\\a.jpg"), "unchanged");
  EXPECT_EQ(network.universalNameCalls, 0);
  EXPECT_EQ(network.shareCalls, 0);
}

TEST_F(NetworkPath, AMappedDriveGivesItsUniversalNameAndSharesAreNotConsulted) {
  network.universalNames["Z:\\pics\\a.jpg"] = "\\\\server\\media\\pics\\a.jpg";
  network.shares = {{L"Z", L"Z:\\"}};
  EXPECT_EQ(Resolve("Z:\\pics\\a.jpg"), "\\\\server\\media\\pics\\a.jpg");
  EXPECT_EQ(network.shareCalls, 0);
}

TEST_F(NetworkPath, AUniversalNameLongerThanTheFirstBufferIsAskedForAgain) {
  const std::string name = "\\\\server\\" + std::string(600, 'x') + "\\a.jpg";
  network.universalNames["Z:\\a.jpg"] = name;
  EXPECT_EQ(Resolve("Z:\\a.jpg"), name);
  EXPECT_EQ(network.universalNameCalls, 2);
}

TEST_F(NetworkPath, LetterCaseOfTheLocalPathDoesNotMatterAndTheSharesOwnIsUsed) {
  network.shares = {{L"Pics", L"D:\\Pics"}};
  EXPECT_EQ(Resolve("d:\\pics\\a.jpg"), "\\\\HOST\\Pics\\a.jpg");
}

TEST_F(NetworkPath, AShareMatchesAsAPlainPrefixEvenWithinAFolderName) {
  network.shares = {{L"Pics", L"D:\\Pic"}};
  EXPECT_EQ(Resolve("D:\\Pictures\\a.jpg"), "\\\\HOST\\Picstures\\a.jpg");
  EXPECT_EQ(Resolve("D:\\Pi"), "unchanged");
}

TEST_F(NetworkPath, ADriveRootsShareIsFollowedByTheRestWithoutASeparator) {
  network.shares = {{L"Data", L"D:\\"}};
  EXPECT_EQ(Resolve("D:\\a.jpg"), "\\\\HOST\\Dataa.jpg");
}

TEST_F(NetworkPath, HiddenSharesNeverMatch) {
  network.shares = {{L"D$", L"D:\\"}};
  EXPECT_EQ(Resolve("D:\\a.jpg"), "unchanged");
  network.shares.push_back({L"Later", L"D:\\"});
  EXPECT_EQ(Resolve("D:\\a.jpg"), "\\\\HOST\\Latera.jpg");
}

TEST_F(NetworkPath, OfTwoSharesOfAFolderTheFirstEnumeratedIsUsed) {
  network.shares = {{L"One", L"D:\\Pics"}, {L"Two", L"D:\\Pics"}, {L"Long", L"D:\\Pics\\deep"}};
  EXPECT_EQ(Resolve("D:\\Pics\\deep\\a.jpg"), "\\\\HOST\\One\\deep\\a.jpg");
}

TEST_F(NetworkPath, AnEnumerationInPartsKeepsItsOrder) {
  network.shares = {{L"A", L"A:\\x"}, {L"B", L"B:\\x"}, {L"C", L"D:\\x"}, {L"D", L"D:\\x"}};
  network.sharesPerCall = 1;
  EXPECT_EQ(Resolve("D:\\x\\a.jpg"), "\\\\HOST\\C\\a.jpg");
  EXPECT_EQ(network.shareCalls, 4);
}

TEST_F(NetworkPath, APathThatNoShareCoversStays) {
  network.shares = {{L"Pics", L"D:\\Pics\\of\\mine"}};
  EXPECT_EQ(Resolve("D:\\Pics"), "unchanged");
  EXPECT_EQ(Resolve("C:\\a.jpg"), "unchanged");
  EXPECT_EQ(Resolve(""), "unchanged");
}

TEST_F(NetworkPath, SharesWhoseNamesDoNotConvertAreLeftOut) {
  network.shares = {{L"\x20AC\x4E00", L"D:\\"}, {L"Odd", L"\x4E00"}, {L"Fine", L"D:\\"}};
  EXPECT_EQ(Resolve("D:\\a.jpg"), "\\\\HOST\\Finea.jpg");
}

TEST_F(NetworkPath, WithoutAnswersFromTheNetworkThePathStays) {
  network.shares = {{L"Pics", L"D:\\Pics"}};
  network.computerError = 50;
  EXPECT_EQ(Resolve("D:\\Pics\\a.jpg"), "unchanged");
  network.computerError = 0;
  network.shareError = 50;
  EXPECT_EQ(Resolve("D:\\Pics\\a.jpg"), "unchanged");
}

TEST_F(NetworkPath, AnEnumerationThatFailsHalfWayGivesNoShareAtAll) {
  network.shares = {{L"Pics", L"D:\\Pics"}, {L"Data", L"D:\\"}};
  network.sharesPerCall = 1;
  network.shareError = 5;
  network.shareCallsBeforeError = 1;
  EXPECT_EQ(Resolve("D:\\Pics\\a.jpg"), "unchanged");
  EXPECT_EQ(network.shareCalls, 2);
}

TEST_F(NetworkPath, InputAndOutputMayBeOneBuffer) {
  network.shares = {{L"A share of a longer name", L"D:\\"}};
  char buffer[2048] = "D:\\a.jpg";
  EXPECT_TRUE(ResolveNetworkPath(buffer, buffer, sizeof(buffer)));
  EXPECT_STREQ(buffer, "\\\\HOST\\A share of a longer namea.jpg");
}

TEST_F(NetworkPath, TheResultIsCutToTheCapacityAndTerminated) {
  network.shares = {{L"Pics", L"D:\\Pics"}};
  char output[16];
  std::fill_n(output, sizeof(output), '#');
  EXPECT_TRUE(ResolveNetworkPath("D:\\Pics\\a.jpg", output, 10));
  EXPECT_STREQ(output, "\\\\HOST\\Pi");
  EXPECT_EQ(output[10], '#') << "nothing is written past the capacity";
}

TEST_F(NetworkPath, WhatFollowsAShortResultIsZero) {
  network.universalNames["Z:\\a.jpg"] = "\\\\s\\a.jpg";
  char output[64];
  std::fill_n(output, sizeof(output), '#');
  EXPECT_TRUE(ResolveNetworkPath("Z:\\a.jpg", output, sizeof(output)));
  EXPECT_EQ(std::count(output + 9, output + 64, '\0'), 55);
}

}  // namespace
}  // namespace kelto
