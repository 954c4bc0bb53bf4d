// BMP and TGA through stb_image.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "runtime/stills/decoder.h"
#include "runtime/stills/limits.h"
#include "runtime/stills/row_writer.h"
#include "runtime/stills/scratch.h"
#include "runtime/stills/stb_image_config.h"
#include "runtime/stills/still_error.h"

namespace kelto::stills {
namespace {

/// Feeds stb_image from a file. The library takes bytes past the end of a file for zeros; that
/// they were wanted is noticed here.
class Reader {
 public:
  explicit Reader(StillFile& file) : file_(file) { file.Rewind(); }

  static const stbi_io_callbacks& Callbacks() {
    static const stbi_io_callbacks callbacks = {OnRead, OnSkip, OnEof};
    return callbacks;
  }

  bool wanted_more() const { return wanted_more_; }

 private:
  static int OnRead(void* user, char* to, int count) {
    Reader& reader = *static_cast<Reader*>(user);
    // The first call fills the library's own buffer ahead of need, and so does every later one to
    // the same place: short there is fine, nothing at all is not. Other calls want what they say.
    if (reader.ahead_buffer_ == nullptr) reader.ahead_buffer_ = to;
    const int got = static_cast<int>(reader.file_.Read(to, static_cast<size_t>(count)));
    if (to == reader.ahead_buffer_ ? got == 0 : got < count) reader.wanted_more_ = true;
    return got;
  }

  static void OnSkip(void* user, int count) {
    Reader& reader = *static_cast<Reader*>(user);
    const int64_t to = static_cast<int64_t>(reader.file_.Position()) + count;
    if (to < 0 || !reader.file_.Seek(static_cast<uint64_t>(to))) reader.wanted_more_ = true;
  }

  static int OnEof(void* user) {
    Reader& reader = *static_cast<Reader*>(user);
    return reader.file_.Position() >= reader.file_.size();
  }

  StillFile& file_;
  const char* ahead_buffer_ = nullptr;
  bool wanted_more_ = false;
};

struct StbDeleter {
  void operator()(stbi_uc* pixels) const { stbi_image_free(pixels); }
};

class StbFormat : public Decoder {
 public:
  explicit StbFormat(const char* name) : name_(name) {}

  StillInfo ReadInfo(StillFile& file) const override {
    Reader reader(file);
    int width = 0, height = 0, channels = 0;
    if (!stbi_info_from_callbacks(&Reader::Callbacks(), &reader, &width, &height, &channels)) {
      Fail(reader);
    }
    StillInfo info;
    info.width = static_cast<uint32_t>(width);
    // Negative in BMP files whose rows run downwards.
    info.height = static_cast<uint32_t>(std::abs(int64_t{height}));
    // The picture as it is stored, and in four channels: both, where they are not the same.
    constexpr int kWanted = 4;
    info.scratch =
        info.pixels() * static_cast<uint64_t>(channels == kWanted ? kWanted : channels + kWanted);
    info.deep_scratch = info.scratch;
    info.alpha = channels == kWanted;
    return info;
  }

  void Decode(StillFile& file, const StillInfo& info, const PixelBuffer& target) const override {
    // The library allocates what the file says now, which need not be what it said when opened.
    const StillInfo now = ReadInfo(file);
    CheckUnchanged(info, now.width, now.height);
    CheckScratch(now.scratch);

    Reader reader(file);
    int width = 0, height = 0, channels = 0;
    const std::unique_ptr<stbi_uc, StbDeleter> pixels(stbi_load_from_callbacks(
        &Reader::Callbacks(), &reader, &width, &height, &channels, STBI_rgb_alpha));
    if (!pixels || reader.wanted_more()) Fail(reader);
    CheckUnchanged(info, static_cast<uint32_t>(width), static_cast<uint32_t>(height));

    // Alpha that is 0 throughout was never meant: the byte was left unused.
    RowWriter writer(info, ColorModel::kRgb, PixelFormat::kBgra8,
                     HasAlpha(pixels.get(), uint64_t{info.width} * info.height) ? Alpha::kStraight
                                                                                : Alpha::kIgnored,
                     target);
    const stbi_uc* from = pixels.get();
    for (uint32_t y = 0; y < info.height; ++y) {
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
  static bool HasAlpha(const stbi_uc* rgba, uint64_t pixels) {
    for (uint64_t i = 0; i < pixels; ++i) {
      if (rgba[i * 4 + 3] != 0) return true;
    }
    return false;
  }

  [[noreturn]] void Fail(const Reader& reader) const {
    if (reader.wanted_more()) {
      throw StillError(codecBadDataErr,
                       std::string("truncated ") + name_ + " (the file ends too early)");
    }
    const char* reason = stbi_failure_reason();
    if (reason == nullptr) reason = "unknown error";
    if (std::strcmp(reason, "outofmem") == 0) throw std::bad_alloc();
    throw StillError(codecBadDataErr,
                     std::string("damaged or unsupported ") + name_ + " (" + reason + ")");
  }

  const char* name_;
};

uint32_t Little16(const uint8_t* bytes) { return bytes[0] + bytes[1] * 256u; }

class Bmp final : public StbFormat {
 public:
  Bmp() : StbFormat("BMP") {}
  bool Knows(std::span<const uint8_t> head) const override {
    if (head.size() < 18 || head[0] != 'B' || head[1] != 'M') return false;
    // The sizes of the header's versions; the two letters alone begin many a text.
    constexpr uint32_t kSizes[] = {12, 40, 52, 56, 64, 108, 124};
    const uint32_t size = Little16(&head[14]);
    return head[16] == 0 && head[17] == 0 &&
           std::find(std::begin(kSizes), std::end(kSizes), size) != std::end(kSizes);
  }

  StillInfo ReadInfo(StillFile& file) const override {
    // stb_image refuses these without saying why. Compression follows the sizes and depths.
    uint8_t header[34];
    file.Rewind();
    if (file.Read(header, sizeof header) == sizeof header && Little16(&header[14]) >= 40 &&
        (header[30] == 1 || header[30] == 2)) {
      throw StillError(noCodecErr, "unsupported BMP (run-length compression)");
    }
    return StbFormat::ReadInfo(file);
  }
};

class Tga final : public StbFormat {
 public:
  Tga() : StbFormat("TGA") {}
  bool Knows(std::span<const uint8_t> head) const override {
    if (head.size() < 18 || head[1] > 1) return false;
    const uint32_t type = head[2], base = type & 7u, depth = head[16];
    if ((type & ~8u) != base || base < 1 || base > 3 || (head[1] == 1) != (base == 1)) return false;
    if (depth != 8 && depth != 15 && depth != 16 && depth != 24 && depth != 32) return false;
    // Without a colour map its fields are zero in all but odd files: one more way to recognise a
    // TGA from other bytes.
    if (head[1] == 0 && std::any_of(&head[3], &head[8], [](uint8_t b) { return b != 0; })) {
      return false;
    }
    return Little16(&head[12]) != 0 && Little16(&head[14]) != 0;
  }

  StillInfo ReadInfo(StillFile& file) const override {
    StillInfo info = StbFormat::ReadInfo(file);
    // Bit 4 of the descriptor: pixels run from right to left, which stb_image leaves as it is.
    uint8_t descriptor = 0;
    if (file.Seek(17) && file.Read(&descriptor, 1) == 1 && (descriptor & 0x10)) {
      info.orientation = 2;
    }
    return info;
  }
};

}  // namespace

const Decoder& BmpDecoder() {
  static const Bmp decoder;
  return decoder;
}

const Decoder& TgaDecoder() {
  static const Tga decoder;
  return decoder;
}

}  // namespace kelto::stills
