// HEIF and AVIF through libheif. The library applies the file's own rotations and mirrorings,
// which by the standard (ISO/IEC 23008-12) are the ones that count; EXIF orientation is ignored.
#include <algorithm>
#include <bit>
#include <cstring>
#include <memory>
#include <new>
#include <optional>
#include <string>

#include "runtime/stills/color.h"
#include "runtime/stills/decoder.h"
#include "runtime/stills/heif_library.h"
#include "runtime/stills/limits.h"
#include "runtime/stills/row_writer.h"
#include "runtime/stills/scratch.h"
#include "runtime/stills/still_error.h"

namespace kelto::stills {
namespace {

void Check(const heif_error& error) {
  if (error.code == heif_error_Ok) return;
  if (error.code == heif_error_Memory_allocation_error) throw std::bad_alloc();
  const std::string reason = error.message != nullptr ? error.message : "unknown error";
  if (error.code == heif_error_Unsupported_feature ||
      error.code == heif_error_Unsupported_filetype) {
    throw StillError(noCodecErr, "unsupported HEIF (" + reason + ")");
  }
  throw StillError(codecBadDataErr, "damaged or truncated HEIF (" + reason + ")");
}

StillFile& FileOf(void* user) { return *static_cast<StillFile*>(user); }

const heif_reader& Reader() {
  static const heif_reader reader = {
      1, [](void* user) { return static_cast<int64_t>(FileOf(user).Position()); },
      [](void* to, size_t count, void* user) {
        return FileOf(user).Read(to, count) == count ? 0 : 1;
      },
      [](int64_t position, void* user) {
        return position >= 0 && FileOf(user).Seek(static_cast<uint64_t>(position)) ? 0 : 1;
      },
      [](int64_t target, void* user) {
        return target <= static_cast<int64_t>(FileOf(user).size())
                   ? heif_reader_grow_status_size_reached
                   : heif_reader_grow_status_size_beyond_eof;
      }};
  return reader;
}

/// The primary picture of a file.
class Picture {
 public:
  explicit Picture(StillFile& file)
      : heif_(Heif()), context_(heif_.context_alloc(), heif_.context_free) {
    if (!context_) throw std::bad_alloc();
    heif_.context_set_maximum_image_size_limit(context_.get(), static_cast<int>(kMaxSide));
    // No thread of ours in somebody else's process.
    heif_.context_set_max_decoding_threads(context_.get(), 0);
    file.Rewind();
    Check(heif_.context_read_from_reader(context_.get(), &Reader(), &file, nullptr));
    heif_image_handle* found = nullptr;
    Check(heif_.context_get_primary_image_handle(context_.get(), &found));
    handle_ = {found, heif_.image_handle_release};
  }

  uint32_t width() const { return static_cast<uint32_t>(heif_.image_handle_get_width(handle())); }
  uint32_t height() const { return static_cast<uint32_t>(heif_.image_handle_get_height(handle())); }

  int bits() const { return heif_.image_handle_get_luma_bits_per_pixel(handle()); }
  bool has_alpha() const { return heif_.image_handle_has_alpha_channel(handle()) != 0; }

  /// Bytes that Decode takes: the codec's planes and the library's copy of them, R, G and B apart
  /// and then together; and those of alpha, a picture of its own. As measured of 4:4:4, which takes
  /// most, since the library does not say.
  uint64_t Scratch() const {
    constexpr uint64_t kOfBytes = 12, kOfWords = 22;          // bytes a pixel
    constexpr uint64_t kAlphaOfBytes = 4, kAlphaOfWords = 8;  // and where there is alpha
    const bool words = bits() > 8;
    uint64_t bytes = words ? kOfWords : kOfBytes;
    if (has_alpha()) bytes += words ? kAlphaOfWords : kAlphaOfBytes;
    return uint64_t{width()} * height() * bytes;
  }

  Alpha alpha() const {
    if (!has_alpha()) return Alpha::kIgnored;
    return heif_.image_handle_is_premultiplied_alpha(handle()) ? Alpha::kPremultiplied
                                                               : Alpha::kStraight;
  }

  /// A profile goes ahead of it.
  StillInfo::HighRange high_range() const {
    constexpr int kPq = 16, kHlg = 18;
    if (heif_.image_handle_get_raw_color_profile_size(handle()) > 0) return {};
    const auto points = CodePoints();
    if (!points) return {};
    const int transfer = points->transfer_characteristics;
    return transfer == kPq    ? StillInfo::HighRange::kPq
           : transfer == kHlg ? StillInfo::HighRange::kHlg
                              : StillInfo::HighRange::kNone;
  }

  std::vector<uint8_t> Profile() const {
    const size_t size = heif_.image_handle_get_raw_color_profile_size(handle());
    if (size == 0) return ProfileOfCodePoints();
    CheckIccSize(size);
    std::vector<uint8_t> icc(size);
    Check(heif_.image_handle_get_raw_color_profile(handle(), icc.data()));
    return icc;
  }

  /// R, G, B, A rows of width() * height(): bytes, or words of `bits` bits.
  struct Pixels {
    std::shared_ptr<const heif_image> image;
    const uint8_t* rows;
    int row_bytes;
    int bits;
  };
  Pixels Decode(bool words) const {
    heif_image* decoded = nullptr;
    constexpr heif_chroma kWords = std::endian::native == std::endian::little
                                       ? heif_chroma_interleaved_RRGGBBAA_LE
                                       : heif_chroma_interleaved_RRGGBBAA_BE;
    Check(heif_.decode_image(handle(), &decoded, heif_colorspace_RGB,
                             words ? kWords : heif_chroma_interleaved_RGBA, nullptr));
    Pixels pixels = {{decoded, heif_.image_release}, nullptr, 0, 8};
    heif_error warning = {};
    if (heif_.image_get_decoding_warnings(decoded, 0, &warning, 1) > 0) {
      // Some versions hand over the text of a warning that is gone already.
      warning.message = "its decoder warns of damage";
      Check(warning);
    }
    pixels.rows =
        heif_.image_get_plane_readonly(decoded, heif_channel_interleaved, &pixels.row_bytes);
    if (pixels.rows == nullptr ||
        heif_.image_get_width(decoded, heif_channel_interleaved) != static_cast<int>(width()) ||
        heif_.image_get_height(decoded, heif_channel_interleaved) != static_cast<int>(height())) {
      throw StillError(codecBadDataErr, "damaged HEIF (its picture has another size than it says)");
    }
    if (words)
      pixels.bits = heif_.image_get_bits_per_pixel_range(decoded, heif_channel_interleaved);
    if (pixels.bits < 8 || pixels.bits > 16) {
      throw StillError(codecBadDataErr, "damaged HEIF (its samples have no depth)");
    }
    return pixels;
  }

 private:
  const heif_image_handle* handle() const { return handle_.get(); }

  /// Colours given by number (ITU-T H.273).
  std::optional<heif_color_profile_nclx> CodePoints() const {
    heif_color_profile_nclx* found = nullptr;
    const heif_error error = heif_.image_handle_get_nclx_color_profile(handle(), &found);
    if (found == nullptr) return {};
    // It may come with an error, too, and is ours even then.
    const heif_color_profile_nclx nclx = *found;
    heif_.nclx_color_profile_free(found);
    if (error.code != heif_error_Ok) return {};
    return nclx;
  }

  /// Wide primaries may be given so instead of by a profile. Only the transfer curves near sRGB's
  /// are honoured: those of high dynamic range would need tone mapping.
  std::vector<uint8_t> ProfileOfCodePoints() const {
    const auto points = CodePoints();
    if (!points) return {};
    const heif_color_profile_nclx& nclx = *points;
    constexpr int kNearSrgb[] = {1, 6, 13, 14, 15};
    const int transfer = nclx.transfer_characteristics;
    if (std::find(std::begin(kNearSrgb), std::end(kNearSrgb), transfer) == std::end(kNearSrgb) ||
        nclx.color_primary_white_y <= 0) {
      return {};
    }
    return MakeRgbProfile({nclx.color_primary_white_x, nclx.color_primary_white_y},
                          {nclx.color_primary_red_x, nclx.color_primary_red_y},
                          {nclx.color_primary_green_x, nclx.color_primary_green_y},
                          {nclx.color_primary_blue_x, nclx.color_primary_blue_y}, 0);
  }

  const HeifLibrary& heif_;
  std::shared_ptr<heif_context> context_;
  std::shared_ptr<const heif_image_handle> handle_;
};

class HeifFormat final : public Decoder {
 public:
  bool Knows(std::span<const uint8_t> head) const override {
    if (head.size() < 16 || std::memcmp(&head[4], "ftyp", 4) != 0) return false;
    // The major brand, a version, then compatible brands up to the end of the box.
    const size_t box = std::min<size_t>(head.size(), head[2] * 256u + head[3]);
    for (size_t at = 8; at + 4 <= box; at += at == 8 ? 8 : 4) {
      for (const char* brand : {"heic", "heix", "heim", "heis", "mif1", "avif"}) {
        if (std::memcmp(&head[at], brand, 4) == 0) return true;
      }
    }
    return false;
  }

  StillInfo ReadInfo(StillFile& file) const override {
    const Picture picture(file);
    StillInfo info;
    info.width = picture.width();
    info.height = picture.height();
    info.icc = picture.Profile();
    info.high_range = picture.high_range();
    info.bits = std::max(info.bits, picture.bits());
    info.alpha = picture.has_alpha();
    info.scratch = info.deep_scratch = picture.Scratch();
    return info;
  }

  void Decode(StillFile& file, const StillInfo& info, const PixelBuffer& target) const override {
    const Picture picture(file);
    CheckUnchanged(info, picture.width(), picture.height());
    CheckScratch(picture.Scratch());
    if (target.deep() && picture.bits() > 8) {
      DecodeWords(picture, info, target);
      return;
    }
    const Picture::Pixels pixels = picture.Decode(false);
    RowWriter writer(info, ColorModel::kRgb, PixelFormat::kBgra8, picture.alpha(), target);
    for (uint32_t y = 0; y < info.height; ++y) {
      const uint8_t* from = pixels.rows + static_cast<ptrdiff_t>(y) * pixels.row_bytes;
      uint8_t* to = writer.Row(y);
      for (uint32_t x = 0; x < info.width; ++x, from += 4, to += 4) {
        to[0] = from[2];
        to[1] = from[1];
        to[2] = from[0];
        to[3] = from[3];
      }
      writer.Commit(y);
    }
  }

 private:
  static void DecodeWords(const Picture& picture, const StillInfo& info,
                          const PixelBuffer& target) {
    const Picture::Pixels pixels = picture.Decode(true);
    RowWriter writer(info, ColorModel::kRgb, PixelFormat::kRgba16, picture.alpha(), target);
    const uint32_t full = (1u << pixels.bits) - 1;
    for (uint32_t y = 0; y < info.height; ++y) {
      const void* row = pixels.rows + static_cast<ptrdiff_t>(y) * pixels.row_bytes;
      const uint16_t* from = static_cast<const uint16_t*>(row);
      void* place = writer.Row(y);
      uint16_t* to = static_cast<uint16_t*>(place);
      for (size_t i = 0; i < size_t{4} * info.width; ++i) {
        to[i] =
            static_cast<uint16_t>((std::min<uint32_t>(from[i], full) * 65535u + full / 2) / full);
      }
      writer.Commit(y);
    }
  }
};

}  // namespace

const Decoder& HeifDecoder() {
  static const HeifFormat decoder;
  return decoder;
}

}  // namespace kelto::stills
