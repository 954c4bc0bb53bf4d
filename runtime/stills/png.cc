// PNG through libpng.
#include <png.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "runtime/stills/decoder.h"
#include "runtime/stills/exif.h"
#include "runtime/stills/guarded.h"
#include "runtime/stills/limits.h"
#include "runtime/stills/row_writer.h"
#include "runtime/stills/scratch.h"
#include "runtime/stills/still_error.h"

namespace kelto::stills {
namespace {

/// A reader with its error handling, everything before the pixels read.
class PngSession {
 public:
  explicit PngSession(StillFile& file) : file_(file) {
    file.Rewind();
    Run([&] {
      library.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, OnError, OnWarning);
      if (library.png != nullptr) library.info = png_create_info_struct(library.png);
      if (library.info == nullptr) OutOfMemory();
      // Sizes are judged by CheckSize, whose message names them.
      png_set_user_limits(library.png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
      png_set_chunk_malloc_max(library.png, kMaxPngChunkBytes);
      png_set_chunk_cache_max(library.png, kMaxPngChunks);
      // Texts and palettes for other ends are not even unpacked.
      static const png_byte kUnused[] = "tEXt\0zTXt\0iTXt\0sPLT\0hIST\0pCAL\0sCAL\0tIME";
      png_set_keep_unknown_chunks(library.png, PNG_HANDLE_CHUNK_NEVER, kUnused, sizeof kUnused / 5);
      png_set_read_fn(library.png, &file, OnRead);
      png_read_info(library.png, library.info);
    });
    if (out_of_memory_) throw std::bad_alloc();
    if (over_limit_) throw StillError(codecBadDataErr, std::string("PNG: ") + message_);
  }
  PngSession(const PngSession&) = delete;
  PngSession& operator=(const PngSession&) = delete;

  template <typename Body>
  void Run(const Body& body) {
    if (!RunGuarded(jump_, body)) Fail();
  }

  struct Library {
    Library() = default;
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library() { png_destroy_read_struct(&png, &info, nullptr); }
    png_structp png = nullptr;
    png_infop info = nullptr;
  } library;

  /// Whether something is wrong with the embedded profile; the library may use it all the same.
  bool icc_damaged() const { return icc_damaged_; }

 private:
  static PngSession& From(png_structp png) {
    return *static_cast<PngSession*>(png_get_error_ptr(png));
  }

  [[noreturn]] void OutOfMemory() {
    out_of_memory_ = true;
    std::longjmp(jump_, 1);
  }

  void Remember(const char* message) {
    std::strncpy(message_, message, sizeof message_ - 1);
    out_of_memory_ |= std::strstr(message, "emory") != nullptr;
  }

  [[noreturn]] static void OnError(png_structp png, png_const_charp message) {
    From(png).Remember(message);
    std::longjmp(From(png).jump_, 1);
  }

  static void OnWarning(png_structp png, png_const_charp message) {
    // libpng drops a chunk over the limits, or that it has no memory for; drawn without its profile
    // the picture would be wrong.
    PngSession& session = From(png);
    if (std::strncmp(message, "iCCP: ", 6) == 0) session.icc_damaged_ = true;
    if (std::strstr(message, "emory") != nullptr) session.out_of_memory_ = true;
    if (std::strstr(message, "exceeds application limits") == nullptr) return;
    session.Remember(message);
    session.over_limit_ = true;
  }

  static void OnRead(png_structp png, png_bytep to, size_t count) {
    if (static_cast<StillFile*>(png_get_io_ptr(png))->Read(to, count) != count) {
      png_error(png, "the file ends too early");
    }
  }

  [[noreturn]] void Fail() const {
    if (out_of_memory_) throw std::bad_alloc();
    throw StillError(codecBadDataErr, std::string(file_.hit_end() ? "truncated" : "damaged") +
                                          " PNG (" + message_ + ")");
  }

  StillFile& file_;
  std::jmp_buf jump_;
  bool out_of_memory_ = false;
  bool over_limit_ = false;
  bool icc_damaged_ = false;
  char message_[160] = "";
};

bool IsNear(const Chromaticity& a, const Chromaticity& b) {
  return std::abs(a.x - b.x) < 0.002 && std::abs(a.y - b.y) < 0.002;
}

/// The profile that gAMA and cHRM describe, empty unless both are there and say something other
/// than sRGB. gAMA alone is ignored: too many programs wrote it without meaning it.
std::vector<uint8_t> ProfileFromChunks(png_structp png, png_infop info) {
  double gamma = 0;
  Chromaticity white, red, green, blue;
  if (!png_get_gAMA(png, info, &gamma) || gamma <= 0 ||
      !png_get_cHRM(png, info, &white.x, &white.y, &red.x, &red.y, &green.x, &green.y, &blue.x,
                    &blue.y)) {
    return {};
  }
  if (std::abs(gamma - 1 / 2.2) < 0.01 && IsNear(white, {0.3127, 0.3290}) &&
      IsNear(red, {0.64, 0.33}) && IsNear(green, {0.30, 0.60}) && IsNear(blue, {0.15, 0.06})) {
    return {};
  }
  return MakeRgbProfile(white, red, green, blue, 1 / gamma);
}

std::vector<uint8_t> FindProfile(png_structp png, png_infop info) {
  png_charp name;
  int compression, intent;
  png_bytep profile;
  png_uint_32 length;
  if (png_get_iCCP(png, info, &name, &compression, &profile, &length)) {
    return {profile, profile + length};
  }
  if (png_get_sRGB(png, info, &intent)) return {};
  return ProfileFromChunks(png, info);
}

ColorModel ModelOf(int type) {
  return (type & PNG_COLOR_MASK_COLOR) != 0 ? ColorModel::kRgb : ColorModel::kGrey;
}

class Png final : public Decoder {
 public:
  bool Knows(std::span<const uint8_t> head) const override {
    return head.size() >= 8 && png_sig_cmp(head.data(), 0, 8) == 0;
  }

  StillInfo ReadInfo(StillFile& file) const override {
    PngSession session(file);
    const png_structp png = session.library.png;
    const png_infop png_info = session.library.info;
    StillInfo info;
    info.width = png_get_image_width(png, png_info);
    info.height = png_get_image_height(png, png_info);
    info.icc = FindProfile(png, png_info);
    const bool named = png_get_valid(png, png_info, PNG_INFO_iCCP | PNG_INFO_sRGB) != 0;
    info.icc_lost = session.icc_damaged() && !named;
    info.model = ModelOf(png_get_color_type(png, png_info));
    png_bytep exif;
    png_uint_32 length;
    if (png_get_eXIf_1(png, png_info, &length, &exif)) {
      info.orientation = ExifOrientation({exif, length});
    }
    info.bits = std::max<int>(info.bits, png_get_bit_depth(png, png_info));
    info.alpha = HasAlpha(png, png_info);
    if (png_get_interlace_type(png, png_info) != PNG_INTERLACE_NONE) {
      info.scratch = InterlacedBytes(info, PixelFormat::kBgra8);
      info.deep_scratch = InterlacedBytes(info, PixelFormat::kRgba16);
    }
    return info;
  }

  void Decode(StillFile& file, const StillInfo& info, const PixelBuffer& target) const override {
    PngSession session(file);
    const png_structp png = session.library.png;
    const png_infop png_info = session.library.info;
    CheckUnchanged(info, png_get_image_width(png, png_info), png_get_image_height(png, png_info));

    const int type = png_get_color_type(png, png_info);
    CheckScratch(info.scratch_for(target.format));
    if (std::max<int>(8, png_get_bit_depth(png, png_info)) != info.bits) {
      throw StillError(codecBadDataErr, "the file changed after it was opened");
    }
    const PixelFormat format = FormatFor(info, target.format);
    const bool words = format == PixelFormat::kRgba16;
    const bool alpha = HasAlpha(png, png_info);
    int passes = 1;
    session.Run([&] {
      png_set_expand(png);
      png_set_gray_to_rgb(png);
      if (words) {
        if (std::endian::native == std::endian::little) png_set_swap(png);
        png_set_add_alpha(png, 0xffff, PNG_FILLER_AFTER);
      } else {
        png_set_scale_16(png);
        png_set_bgr(png);
        png_set_add_alpha(png, 0xff, PNG_FILLER_AFTER);
      }
      passes = png_set_interlace_handling(png);
      png_read_update_info(png, png_info);
    });

    const size_t row_bytes = info.width * BytesPerPixel(format);
    if (png_get_rowbytes(png, png_info) != row_bytes) {
      throw StillError(codecBadDataErr, "a PNG of unexpected form");
    }
    RowWriter writer(info, ModelOf(type), format, alpha ? Alpha::kStraight : Alpha::kOpaque,
                     target);
    if (passes > 1) {
      ReadInterlaced(session, info, passes, row_bytes, writer);
      return;
    }
    session.Run([&] {
      for (uint32_t y = 0; y < info.height; ++y) {
        png_read_row(png, writer.Row(y), nullptr);
        writer.Commit(y);
      }
      png_read_end(png, nullptr);
    });
  }

 private:
  static bool HasAlpha(png_structp png, png_infop png_info) {
    return (png_get_color_type(png, png_info) & PNG_COLOR_MASK_ALPHA) != 0 ||
           png_get_valid(png, png_info, PNG_INFO_tRNS) != 0;
  }

  /// The layout in which rows for a buffer are decoded. Profiles of 16-bit pictures are often
  /// linear: eight bits would lose their shadows.
  static PixelFormat FormatFor(const StillInfo& info, PixelFormat target) {
    const bool words = info.bits == 16 && (target != PixelFormat::kBgra8 || !info.icc.empty());
    return words ? PixelFormat::kRgba16 : PixelFormat::kBgra8;
  }

  /// Bytes that ReadInterlaced takes.
  static uint64_t InterlacedBytes(const StillInfo& info, PixelFormat target) {
    const PixelFormat format = FormatFor(info, target);
    const bool stay = format == target && !info.turned();
    return stay ? 0 : info.pixels() * BytesPerPixel(format);
  }

  /// Every pass adds pixels to all rows, so all of them wait, in the caller's buffer if they can.
  static void ReadInterlaced(PngSession& session, const StillInfo& info, int passes,
                             size_t row_bytes, RowWriter& writer) {
    const png_structp png = session.library.png;
    std::unique_ptr<uint8_t[]> all;
    if (!writer.RowsStay()) all = AllocateScratch(uint64_t{row_bytes} * info.height);
    session.Run([&] {
      for (int pass = 0; pass < passes; ++pass) {
        for (uint32_t y = 0; y < info.height; ++y) {
          png_read_row(png, all ? &all[y * row_bytes] : writer.Row(y), nullptr);
        }
      }
      png_read_end(png, nullptr);
    });
    for (uint32_t y = 0; y < info.height; ++y) {
      if (all) std::memcpy(writer.Row(y), &all[y * row_bytes], row_bytes);
      writer.Commit(y);
    }
  }
};

}  // namespace

const Decoder& PngDecoder() {
  static const Png decoder;
  return decoder;
}

}  // namespace kelto::stills
