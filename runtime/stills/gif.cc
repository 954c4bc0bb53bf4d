// GIF through giflib: the first frame, where it lies on the logical screen.
#include <gif_lib.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "runtime/stills/decoder.h"
#include "runtime/stills/row_writer.h"
#include "runtime/stills/still_error.h"

namespace kelto::stills {
namespace {

struct GifCloser {
  void operator()(GifFileType* gif) const { DGifCloseFile(gif, nullptr); }
};
using Gif = std::unique_ptr<GifFileType, GifCloser>;

int OnRead(GifFileType* gif, GifByteType* to, int count) {
  StillFile* file = static_cast<StillFile*>(gif->UserData);
  return static_cast<int>(file->Read(to, static_cast<size_t>(count)));
}

[[noreturn]] void Fail(const StillFile& file, int error) {
  const char* reason = GifErrorString(error);
  if (error == D_GIF_ERR_NOT_ENOUGH_MEM) throw std::bad_alloc();
  throw StillError(codecBadDataErr, std::string(file.hit_end() ? "truncated" : "damaged") +
                                        " GIF (" + (reason != nullptr ? reason : "unknown error") +
                                        ")");
}

Gif Open(StillFile& file) {
  file.Rewind();
  int error = 0;
  Gif gif(DGifOpen(&file, OnRead, &error));
  if (!gif) Fail(file, error);
  return gif;
}

/// Reads up to the pixels of the first frame; gives the palette index that is transparent, or -1.
int FindFirstFrame(StillFile& file, GifFileType* gif) {
  int transparent = -1;
  for (;;) {
    GifRecordType record;
    if (DGifGetRecordType(gif, &record) == GIF_ERROR) Fail(file, gif->Error);
    if (record == IMAGE_DESC_RECORD_TYPE) {
      if (DGifGetImageDesc(gif) == GIF_ERROR) Fail(file, gif->Error);
      return transparent;
    }
    if (record == TERMINATE_RECORD_TYPE) {
      throw StillError(codecBadDataErr, "damaged GIF (it holds no frame)");
    }
    int code = 0;
    GifByteType* block = nullptr;
    if (DGifGetExtension(gif, &code, &block) == GIF_ERROR) Fail(file, gif->Error);
    while (block != nullptr) {
      GraphicsControlBlock control;
      // Blocks carry their length in their first byte.
      if (code == GRAPHICS_EXT_FUNC_CODE &&
          DGifExtensionToGCB(block[0], block + 1, &control) == GIF_OK) {
        transparent = control.TransparentColor;
      }
      if (DGifGetExtensionNext(gif, &block) == GIF_ERROR) Fail(file, gif->Error);
    }
  }
}

/// The rows of a frame in the order of the file.
std::vector<uint32_t> RowOrder(uint32_t height, bool interlaced) {
  std::vector<uint32_t> order;
  order.reserve(height);
  constexpr uint32_t kFirst[] = {0, 4, 2, 1}, kStep[] = {8, 8, 4, 2};
  for (int pass = 0; pass < (interlaced ? 4 : 1); ++pass) {
    const uint32_t step = interlaced ? kStep[pass] : 1;
    for (uint32_t y = kFirst[pass]; y < height; y += step) order.push_back(y);
  }
  return order;
}

/// B, G, R, A of each of the 256 indexes; black for those without a colour.
std::vector<uint8_t> PaletteOf(const GifFileType* gif, int transparent) {
  const ColorMapObject* map = gif->Image.ColorMap ? gif->Image.ColorMap : gif->SColorMap;
  if (map == nullptr) throw StillError(codecBadDataErr, "damaged GIF (it has no palette)");
  std::vector<uint8_t> palette(size_t{256} * 4, 0);
  for (int i = 0; i < 256; ++i) {
    uint8_t* entry = &palette[static_cast<size_t>(i) * 4];
    if (i < map->ColorCount) {
      entry[0] = map->Colors[i].Blue;
      entry[1] = map->Colors[i].Green;
      entry[2] = map->Colors[i].Red;
    }
    entry[3] = i == transparent ? 0 : 255;
  }
  return palette;
}

class GifFormat final : public Decoder {
 public:
  bool Knows(std::span<const uint8_t> head) const override {
    return head.size() >= 6 && (std::memcmp(head.data(), "GIF87a", 6) == 0 ||
                                std::memcmp(head.data(), "GIF89a", 6) == 0);
  }

  StillInfo ReadInfo(StillFile& file) const override {
    const Gif gif = Open(file);
    StillInfo info;
    info.width = static_cast<uint32_t>(gif->SWidth);
    info.height = static_cast<uint32_t>(gif->SHeight);
    info.alpha = true;  // what is transparent stands beside each frame
    return info;
  }

  void Decode(StillFile& file, const StillInfo& info, const PixelBuffer& target) const override {
    const Gif gif = Open(file);
    CheckUnchanged(info, static_cast<uint32_t>(gif->SWidth), static_cast<uint32_t>(gif->SHeight));
    const int transparent = FindFirstFrame(file, gif.get());
    const std::vector<uint8_t> palette = PaletteOf(gif.get(), transparent);
    const uint32_t left = static_cast<uint32_t>(gif->Image.Left);
    const uint32_t top = static_cast<uint32_t>(gif->Image.Top);
    const uint32_t width = static_cast<uint32_t>(gif->Image.Width);
    const uint32_t height = static_cast<uint32_t>(gif->Image.Height);
    const uint32_t right = std::min(info.width, left + width);

    RowWriter writer(info, ColorModel::kRgb, PixelFormat::kBgra8, Alpha::kStraight, target);
    const auto start_row = [&](uint32_t y) {
      uint8_t* row = writer.Row(y);
      std::memset(row, 0, info.width * size_t{4});
      return row;
    };
    for (uint32_t y = 0; y < info.height; ++y) {
      if (y >= top && y - top < height) continue;
      start_row(y);
      writer.Commit(y);
    }
    std::vector<GifPixelType> line(width);
    for (const uint32_t frame_row : RowOrder(height, gif->Image.Interlace)) {
      if (DGifGetLine(gif.get(), line.data(), static_cast<int>(width)) == GIF_ERROR) {
        Fail(file, gif->Error);
      }
      // Frames may reach outside the screen; that part is read and dropped.
      if (top + frame_row >= info.height) continue;
      uint8_t* row = start_row(top + frame_row);
      for (uint32_t x = left; x < right; ++x) {
        std::memcpy(row + x * size_t{4}, &palette[line[x - left] * size_t{4}], 4);
      }
      writer.Commit(top + frame_row);
    }
  }
};

}  // namespace

const Decoder& GifDecoder() {
  static const GifFormat decoder;
  return decoder;
}

}  // namespace kelto::stills
