#include "host/sources/metadata.h"

#include <libexif/exif-data.h>
#include <libiptcdata/iptc-data.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <utility>

#include "host/base/error.h"
#include "host/effect/photo.h"
#include "host/processes/reader_process.h"
#include "host/sources/xmp.h"

namespace kelto::host {
namespace {

constexpr size_t kMostRead = size_t{16}
                             << 20;  // of a file, which has its metadata at its beginning
constexpr size_t kMostText = 8000;   // bytes of a description
constexpr size_t kMostFaces = 200;

struct FreeExif {
  void operator()(ExifData* data) const { exif_data_unref(data); }
};
struct FreeIptc {
  void operator()(IptcData* data) const { iptc_data_unref(data); }
};

std::string BeginningOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::string bytes(kMostRead, '\0');
  file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  bytes.resize(static_cast<size_t>(file.gcount()));
  return bytes;
}

/// "2019-03-12" of "2019:03:12 10:11:12" and of "2019-03-12T10:11:12"; empty for what is no date.
std::string DayOf(const std::string& text) {
  constexpr const char* kForm = "dddd-dd-dd";
  std::string day = text.substr(0, 10);
  if (day.size() < 10) return "";
  for (size_t i = 0; i < day.size(); ++i) {
    const bool digit = std::isdigit(static_cast<unsigned char>(day[i])) != 0;
    if (kForm[i] == 'd' ? !digit : day[i] != ':' && day[i] != '-') return "";
    if (kForm[i] == '-') day[i] = '-';
  }
  return day == "0000-00-00" ? "" : day;
}

/// What cameras write where nobody described anything.
bool IsOfTheCamera(const std::string& description) {
  std::string upper = description;
  std::transform(upper.begin(), upper.end(), upper.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return upper.find("DIGITAL CAMERA") != std::string::npos || upper == "SONY DSC" ||
         upper.find("DIGITAL STILL CAMERA") != std::string::npos;
}

std::string WithoutEnds(std::string text) {
  text = text.substr(0, std::min(text.find('\0'), kMostText));
  while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back())) != 0) {
    text.pop_back();
  }
  return IsOfTheCamera(text) ? "" : text;
}

std::string ExifText(ExifData& exif, ExifIfd folder, ExifTag tag) {
  const ExifEntry* entry = exif_content_get_entry(exif.ifd[folder], tag);
  if (entry == nullptr || entry->format != EXIF_FORMAT_ASCII || entry->data == nullptr) return "";
  return {reinterpret_cast<const char*>(entry->data), entry->size};
}

/// The block of EXIF in a file's beginning as libexif takes it, which finds it by itself in JPEG
/// alone.
std::string ExifBlockIn(const std::string& bytes) {
  constexpr size_t kLongest = 65534;  // it looks at no more
  if (bytes.starts_with("\xff\xd8")) return bytes;
  const std::string mark("Exif\0\0", 6);
  const auto isTiff = [&](size_t at) {
    return bytes.compare(at, 4, std::string("II*\0", 4)) == 0 ||
           bytes.compare(at, 4, std::string("MM\0*", 4)) == 0;
  };
  if (bytes.size() >= 4 && isTiff(0)) return mark + bytes.substr(0, kLongest);
  if (const size_t at = bytes.find(mark); at != std::string::npos) {
    return bytes.substr(at, kLongest);
  }
  // Chunks of PNG begin behind their names, those of WebP behind their lengths, too.
  for (const auto& [chunk, head] : {std::pair{"eXIf", size_t{4}}, std::pair{"EXIF", size_t{8}}}) {
    const size_t at = bytes.find(chunk);
    if (at != std::string::npos && at + head <= bytes.size() && isTiff(at + head)) {
      return mark + bytes.substr(at + head, kLongest);
    }
  }
  return "";
}

/// What EXIF says; the orientation too, 1..8.
int ReadExif(const std::string& bytes, PhotoNotes& notes) {
  const std::unique_ptr<ExifData, FreeExif> exif(
      exif_data_new_from_data(reinterpret_cast<const unsigned char*>(bytes.data()),
                              static_cast<unsigned int>(bytes.size())));
  if (!exif) return 1;
  notes.date = DayOf(ExifText(*exif, EXIF_IFD_EXIF, EXIF_TAG_DATE_TIME_ORIGINAL));
  if (notes.date.empty()) notes.date = DayOf(ExifText(*exif, EXIF_IFD_0, EXIF_TAG_DATE_TIME));
  notes.description = WithoutEnds(ExifText(*exif, EXIF_IFD_0, EXIF_TAG_IMAGE_DESCRIPTION));
  const ExifEntry* turn = exif_content_get_entry(exif->ifd[EXIF_IFD_0], EXIF_TAG_ORIENTATION);
  if (turn == nullptr || turn->format != EXIF_FORMAT_SHORT || turn->size < 2) return 1;
  const int orientation = exif_get_short(turn->data, exif_data_get_byte_order(exif.get()));
  return orientation >= 1 && orientation <= 8 ? orientation : 1;
}

std::string IptcText(IptcData& iptc, IptcTag tag) {
  for (unsigned int i = 0; i < iptc.count; ++i) {
    const IptcDataSet& set = *iptc.datasets[i];
    if (set.record != IPTC_RECORD_APP_2 || set.tag != tag || set.data == nullptr) continue;
    return {reinterpret_cast<const char*>(set.data), set.size};
  }
  return "";
}

void ReadIptc(const std::string& path, PhotoNotes& notes) {
  const std::unique_ptr<IptcData, FreeIptc> iptc(iptc_data_new_from_jpeg(path.c_str()));
  if (!iptc) return;
  if (notes.description.empty()) {
    notes.description = WithoutEnds(IptcText(*iptc, IPTC_TAG_CAPTION));
  }
  if (!notes.date.empty()) return;
  std::string day;
  for (const char c : IptcText(*iptc, IPTC_TAG_DATE_CREATED)) {  // YYYYMMDD
    if (day.size() == 4 || day.size() == 7) day.push_back('-');
    day.push_back(c);
  }
  notes.date = DayOf(day);
}

/// Whether the regions were drawn on the photo as it is seen, though it is stored on its side.
/// Programs should count from the stored photo; the size that they note says what they did.
bool AreUpright(const std::string& path, const XmpNotes& xmp, int orientation) {
  constexpr int kFirstOnItsSide = 5;
  if (xmp.faces.empty() || orientation < kFirstOnItsSide) return false;
  if (!(xmp.appliedWidth > 0) || !(xmp.appliedHeight > 0)) return false;
  try {
    const Photo photo = OpenPhoto(path);
    return photo.width != photo.height &&
           (photo.width > photo.height) == (xmp.appliedWidth > xmp.appliedHeight);
  } catch (const Error&) {
    return false;
  }
}

}  // namespace

FaceRegion Upright(const FaceRegion& region, int orientation) {
  const auto [x, y, w, h] = region;
  const double right = 1 - x - w, below = 1 - y - h;
  switch (orientation) {
    case 2:
      return {right, y, w, h};
    case 3:
      return {right, below, w, h};
    case 4:
      return {x, below, w, h};
    case 5:
      return {y, x, h, w};
    case 6:
      return {below, x, h, w};
    case 7:
      return {below, right, h, w};
    case 8:
      return {y, right, h, w};
    default:
      return region;
  }
}

PhotoNotes ReadNotes(const std::string& path) {
  PhotoNotes notes;
  const std::string bytes = BeginningOf(path);
  int orientation = ReadExif(ExifBlockIn(bytes), notes);
  const XmpNotes xmp = ReadXmp(XmpPacketIn(bytes));
  if (AreUpright(path, xmp, orientation)) orientation = 1;
  // Descriptions of XMP are UTF-8, and edited more often than those of EXIF.
  if (const std::string text = WithoutEnds(xmp.description); !text.empty()) {
    notes.description = text;
  }
  if (notes.date.empty()) notes.date = DayOf(xmp.date);
  ReadIptc(path, notes);
  for (const FaceRegion& face : xmp.faces) {
    if (notes.faces.size() < kMostFaces) notes.faces.push_back(Upright(face, orientation));
  }
  return notes;
}

PhotoNotes LookAtNotes(const std::string& path) {
  const std::string read = ReadApart(path, {}, [&] {
    const PhotoNotes notes = ReadNotes(path);
    std::string text = notes.date + '\0' + notes.description + '\0';
    for (const FaceRegion& face : notes.faces) {
      const std::array numbers{face.left, face.top, face.width, face.height};
      text.append(reinterpret_cast<const char*>(numbers.data()), sizeof numbers);
    }
    return text;
  });
  const size_t dateEnd = read.find('\0');
  const size_t textEnd = dateEnd == std::string::npos ? dateEnd : read.find('\0', dateEnd + 1);
  if (textEnd == std::string::npos) throw Error(path + ": its metadata cannot be read");
  PhotoNotes notes;
  notes.date = DayOf(read.substr(0, dateEnd));
  notes.description = read.substr(dateEnd + 1, std::min(textEnd - dateEnd - 1, kMostText));
  std::array<double, 4> numbers{};
  for (size_t at = textEnd + 1; at + sizeof numbers <= read.size(); at += sizeof numbers) {
    std::memcpy(numbers.data(), &read[at], sizeof numbers);
    const FaceRegion face{numbers[0], numbers[1], numbers[2], numbers[3]};
    const bool inside = face.width > 0 && face.height > 0 && face.left >= 0 && face.top >= 0 &&
                        face.left + face.width <= 1 && face.top + face.height <= 1;
    if (inside && notes.faces.size() < kMostFaces) notes.faces.push_back(face);
  }
  return notes;
}

}  // namespace kelto::host
