// All formats through the system's imaging component.
#include "runtime/stills/decoder.h"

#include <algorithm>
#include <cstring>

#include "runtime/stills/row_writer.h"
#include "runtime/stills/still_error.h"
#include "runtime/stills/wic/gif_screen.h"
#include "runtime/stills/wic/orientation.h"
#include "runtime/stills/wic/picture.h"
#include "runtime/stills/wic/png_header.h"

namespace kelto::stills {
namespace {

class Wic final : public Decoder {
 public:
  /// The component knows what it knows; ReadInfo asks it.
  bool Knows(std::span<const uint8_t>) const override { return true; }

  StillInfo ReadInfo(StillFile& file) const override {
    StillInfo info;
    info.orientation = OrientationOf(file);
    if (const auto png = ReadPngHeader(file)) {
      // Some versions of the component unpack such a picture when it is opened.
      info.width = png->width;
      info.height = png->height;
      CheckSize(info, file);
    }
    const auto screen = ReadGifScreen(file);
    const WicPicture picture(file);
    info.width = screen ? screen->width : picture.width();
    info.height = screen ? screen->height : picture.height();
    const WicForm form = picture.form();
    info.bits = form.bits;
    info.alpha = form.transparent || form.indexed;
    info.deep_scratch = picture.UnpackedBytes();
    return info;
  }

  void Decode(StillFile& file, const StillInfo& info, const PixelBuffer& target) const override {
    const auto screen = ReadGifScreen(file);
    const auto png = ReadPngHeader(file);
    WicPicture picture = OpenAgain(file);
    CheckUnchanged(info, screen ? screen->width : picture.width(),
                   screen ? screen->height : picture.height());
    if (target.deep() && info.bits > 8) {
      DrawWords(picture, png && png->grey, info, target);
      return;
    }
    picture.Convert();
    // An opaque picture's alpha is whatever the conversion has left.
    const Alpha alpha = picture.has_alpha() ? Alpha::kStraight : Alpha::kIgnored;
    RowWriter writer(info, ColorModel::kRgb, PixelFormat::kBgra8, alpha, target);
    if (screen) {
      DrawFrame(picture, *screen, writer);
    } else {
      DrawWhole(picture, writer);
    }
  }

 private:
  /// The component has known the file before.
  static WicPicture OpenAgain(StillFile& file) {
    try {
      return WicPicture(file);
    } catch (const StillError& error) {
      if (error.code != noCodecErr) throw;
      throw StillError(codecBadDataErr, "the file changed after it was opened");
    }
  }

  /// With all bits; colours by Little CMS, which every version of the component gives the profile.
  static void DrawWords(WicPicture& picture, bool grey, const StillInfo& info,
                        const PixelBuffer& target) {
    if (picture.form().bits != info.bits) {
      throw StillError(codecBadDataErr, "the file changed after it was opened");
    }
    picture.ConvertToWords();
    StillInfo own = info;
    own.icc = picture.ProfileBytes();
    const ColorModel model =
        grey || picture.has_grey_words() ? ColorModel::kGrey : ColorModel::kRgb;
    const Alpha alpha = picture.has_alpha() ? Alpha::kStraight : Alpha::kIgnored;
    RowWriter writer(own, model, PixelFormat::kRgba16, alpha, target);
    for (uint32_t y = 0; y < info.height; ++y) {
      void* const row = writer.Row(y);
      picture.ReadWords(y, static_cast<uint16_t*>(row));
      writer.Commit(y);
    }
  }

  static void DrawWhole(WicPicture& picture, RowWriter& writer) {
    const uint32_t width = picture.width(), height = picture.height();
    for (uint32_t y = 0; y < height;) {
      // Only rows that run downwards can be asked for together.
      const uint8_t* first = writer.Row(y);
      const uint32_t ahead = writer.RowsAhead(y);
      const ptrdiff_t step = ahead > 1 ? writer.Row(y + 1) - first : size_t{4} * width;
      const uint32_t rows = step > 0 ? ahead : 1;
      picture.Read(y, rows, width, writer.Row(y), static_cast<size_t>(step > 0 ? step : 4 * width));
      for (const uint32_t end = y + rows; y < end; ++y) writer.Commit(y);
    }
  }

  /// A frame that may be smaller than its screen, which is transparent elsewhere.
  static void DrawFrame(WicPicture& picture, const GifScreen& screen, RowWriter& writer) {
    std::vector<uint8_t> line(size_t{4} * picture.width());
    const uint32_t left = std::min(screen.left, screen.width);
    const uint32_t columns = std::min(picture.width(), screen.width - left);
    for (uint32_t y = 0; y < screen.height; ++y) {
      uint8_t* row = writer.Row(y);
      std::memset(row, 0, size_t{4} * screen.width);
      if (columns > 0 && y >= screen.top && y - screen.top < picture.height()) {
        picture.Read(y - screen.top, 1, picture.width(), line.data(), line.size());
        std::memcpy(row + size_t{4} * left, line.data(), size_t{4} * columns);
      }
      writer.Commit(y);
    }
  }
};

}  // namespace

const Decoder& WicDecoder() {
  static const Wic decoder;
  return decoder;
}

}  // namespace kelto::stills
