// What photographs say of themselves.
#include "host/sources/metadata.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/sources/xmp.h"
#include "tests/support/photo.h"

namespace kelto::host {
namespace {

using testing::SizeIs;

std::string Packet(const std::string& inside) {
  return R"(<?xpacket begin="" id="W5M0MpCehiHzreSzNTczkc9d"?><x:xmpmeta xmlns:x="adobe:ns:meta/">)"
         R"(<rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#">)"
         R"(<rdf:Description xmlns:dc="http://purl.org/dc/elements/1.1/")"
         R"( xmlns:exif="http://ns.adobe.com/exif/1.0/")"
         R"( xmlns:mwg-rs="http://www.metadataworkinggroup.com/schemas/regions/")"
         R"( xmlns:stArea="http://ns.adobe.com/xmp/sType/Area#")"
         R"( xmlns:stDim="http://ns.adobe.com/xap/1.0/sType/Dimensions#")"
         R"( xmlns:Iptc4xmpExt="http://iptc.org/std/Iptc4xmpExt/2008-02-29/">)" +
         inside + "</rdf:Description></rdf:RDF></x:xmpmeta><?xpacket end=\"w\"?>";
}

std::string Regions(const std::string& items) {
  return R"(<mwg-rs:Regions rdf:parseType="Resource"><mwg-rs:AppliedToDimensions stDim:w="4000")"
         R"( stDim:h="3000" stDim:unit="pixel"/><mwg-rs:RegionList><rdf:Bag>)" +
         items + "</rdf:Bag></mwg-rs:RegionList></mwg-rs:Regions>";
}

XmpNotes Read(const std::string& inside) {
  return ReadXmp(XmpPacketIn("\xff\xd8" + Packet(inside)));
}

void ExpectNear(const FaceRegion& face, const FaceRegion& wanted) {
  EXPECT_NEAR(face.left, wanted.left, 1e-9);
  EXPECT_NEAR(face.top, wanted.top, 1e-9);
  EXPECT_NEAR(face.width, wanted.width, 1e-9);
  EXPECT_NEAR(face.height, wanted.height, 1e-9);
}

TEST(Xmp, HasFacesByTheirCentresAsAttributesOrElements) {
  const XmpNotes notes = Read(Regions(
      R"(<rdf:li><rdf:Description mwg-rs:Name="A" mwg-rs:Type="Face"><mwg-rs:Area stArea:x="0.5")"
      R"( stArea:y="0.4" stArea:w="0.2" stArea:h="0.1" stArea:unit="normalized"/></rdf:Description></rdf:li>)"
      R"(<rdf:li rdf:parseType="Resource"><mwg-rs:Type>Face</mwg-rs:Type><mwg-rs:Area rdf:parseType="Resource">)"
      R"(<stArea:x>0.95</stArea:x><stArea:y>0.2</stArea:y><stArea:w>0.2</stArea:w><stArea:h>0.2</stArea:h>)"
      R"(</mwg-rs:Area></rdf:li>)"
      R"(<rdf:li rdf:parseType="Resource"><mwg-rs:Type>Pet</mwg-rs:Type><mwg-rs:Area stArea:x="0.1")"
      R"( stArea:y="0.1" stArea:w="0.1" stArea:h="0.1"/></rdf:li>)"));
  ASSERT_THAT(notes.faces, SizeIs(2)) << "pets are not asked for";
  ExpectNear(notes.faces[0], {0.4, 0.35, 0.2, 0.1});
  ExpectNear(notes.faces[1], {0.85, 0.1, 0.15, 0.2});
  EXPECT_EQ(notes.appliedWidth, 4000);
  EXPECT_EQ(notes.appliedHeight, 3000);
}

TEST(Xmp, HasPeopleOfIptcsRegionsByTheirCorners) {
  const XmpNotes notes = Read(
      R"(<Iptc4xmpExt:ImageRegion><rdf:Bag><rdf:li rdf:parseType="Resource"><Iptc4xmpExt:RegionBoundary)"
      R"( rdf:parseType="Resource"><Iptc4xmpExt:rbShape>rectangle</Iptc4xmpExt:rbShape>)"
      R"(<Iptc4xmpExt:rbUnit>relative</Iptc4xmpExt:rbUnit><Iptc4xmpExt:rbX>0.1</Iptc4xmpExt:rbX>)"
      R"(<Iptc4xmpExt:rbY>0.2</Iptc4xmpExt:rbY><Iptc4xmpExt:rbW>0.3</Iptc4xmpExt:rbW>)"
      R"(<Iptc4xmpExt:rbH>0.4</Iptc4xmpExt:rbH></Iptc4xmpExt:RegionBoundary><Iptc4xmpExt:PersonInImage>)"
      R"(<rdf:Bag><rdf:li>Somebody</rdf:li></rdf:Bag></Iptc4xmpExt:PersonInImage></rdf:li></rdf:Bag>)"
      R"(</Iptc4xmpExt:ImageRegion>)");
  ASSERT_THAT(notes.faces, SizeIs(1));
  ExpectNear(notes.faces[0], {0.1, 0.2, 0.3, 0.4});
}

TEST(Xmp, HasADescriptionInTheLanguageThatCountsAndADate) {
  const XmpNotes notes =
      Read(R"(<dc:description><rdf:Alt><rdf:li xml:lang="de">Strand</rdf:li>)"
           R"(<rdf:li xml:lang="x-default">Beach &amp; dunes</rdf:li></rdf:Alt></dc:description>)"
           R"(<exif:DateTimeOriginal>2019-03-12T10:11:12</exif:DateTimeOriginal>)");
  EXPECT_EQ(notes.description, "Beach & dunes");
  EXPECT_EQ(notes.date, "2019-03-12T10:11:12");
}

TEST(Xmp, ThatIsDamagedCountsAsAbsent) {
  const std::string whole = Packet(Regions("<rdf:li/>") + "<dc:description>x</dc:description>");
  for (size_t cut = 0; cut < whole.size(); cut += 7) {
    ReadXmp(whole.substr(cut));
    ReadXmp(whole.substr(0, cut));
  }
  EXPECT_TRUE(XmpPacketIn("no packet").empty());
  EXPECT_THAT(Read(Regions(R"(<rdf:li><mwg-rs:Area stArea:x="a" stArea:y="0" stArea:w="1")"
                           R"( stArea:h="1"/></rdf:li>)"))
                  .faces,
              SizeIs(0));
  // An entity within an entity is not expanded.
  EXPECT_EQ(ReadXmp(R"(<!DOCTYPE x [<!ENTITY a SYSTEM "/etc/passwd">]><x:xmpmeta xmlns:x="a">)"
                    R"(<description><li>&a;</li></description></x:xmpmeta>)")
                .description,
            "");
}

TEST(PhotoDates, AreFoundInEveryKindOfFile) {
  // A directory of one entry, the date of change: 20 letters, 26 bytes from the beginning.
  const std::string head("II*\0\x08\0\0\0\x01\0\x32\x01\x02\0\x14\0\0\0\x1a\0\0\0\0\0\0\0", 26);
  const std::string tiff = head + std::string("2019:03:12 10:11:12\0", 20);
  const std::string mark("Exif\0\0", 6);
  const auto length = [](size_t bytes) {
    return std::string{static_cast<char>(bytes >> 8), static_cast<char>(bytes & 255)};
  };
  const std::string files[] = {
      tiff, "\x89PNG\r\n\x1a\n" + std::string(25, 'h') + "eXIf" + tiff,
      "RIFF....WEBPVP8X" + std::string(14, 'h') + "EXIF" + std::string("\x2e\0\0\0", 4) + tiff,
      "....ftypheic" + std::string(40, 'h') + mark + tiff,
      "\xff\xd8\xff\xe1" + length(2 + mark.size() + tiff.size()) + mark + tiff + "\xff\xd9"};
  const test::TempFolder folder;
  for (const std::string& file : files) {
    const std::string path = folder / "photo";
    std::ofstream(path, std::ios::binary) << file;
    EXPECT_EQ(ReadNotes(path).date, "2019-03-12") << file.substr(0, 12);
    std::filesystem::remove(path);
  }
}

TEST(FaceRegions, TurnWithThePhoto) {
  const FaceRegion stored{0.1, 0.2, 0.3, 0.4};
  ExpectNear(Upright(stored, 1), stored);
  ExpectNear(Upright(stored, 3), {0.6, 0.4, 0.3, 0.4});
  // 6: the stored top is the right side; 8: it is the left one.
  ExpectNear(Upright(stored, 6), {0.4, 0.1, 0.4, 0.3});
  ExpectNear(Upright(stored, 8), {0.2, 0.6, 0.4, 0.3});
  // 2 and 4 are mirrored, 5 and 7 as well as turned.
  ExpectNear(Upright(stored, 2), {0.6, 0.2, 0.3, 0.4});
  ExpectNear(Upright(stored, 4), {0.1, 0.4, 0.3, 0.4});
  ExpectNear(Upright(stored, 5), {0.2, 0.1, 0.4, 0.3});
  ExpectNear(Upright(stored, 7), {0.4, 0.6, 0.4, 0.3});
  for (int orientation = 1; orientation <= 8; ++orientation) {
    const bool swaps = orientation == 6 || orientation == 8;
    const int back = swaps ? 14 - orientation : orientation;
    ExpectNear(Upright(Upright(stored, orientation), back), stored);
  }
}

}  // namespace
}  // namespace kelto::host
