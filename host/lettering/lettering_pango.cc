#include <cairo/cairo.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <new>

#include "host/base/error.h"
#include "host/lettering/lettering.h"
#include "platform/ycrcb_weights.h"

namespace kelto::host {
namespace {

constexpr double kSafeMargin = 0.05;     ///< of the frame's sides
constexpr uint32_t kWholeLetters = 256;  ///< opacity 1
/// Heights of letters and of all lines together, in heights of the frame.
struct LetterSizes {
  double letters, lines;
};

LetterSizes SizesOf(LetterPlace place) {
  return place == LetterPlace::kCaption ? LetterSizes{0.044, 0.30} : LetterSizes{0.09, 0.80};
}

template <auto Release>
struct ReleaseBy {
  template <typename Object>
  void operator()(Object* object) const {
    Release(object);
  }
};
using LayoutOwner = std::unique_ptr<PangoLayout, ReleaseBy<g_object_unref>>;
using ContextOwner = std::unique_ptr<PangoContext, ReleaseBy<g_object_unref>>;
using FontOwner = std::unique_ptr<PangoFontDescription, ReleaseBy<pango_font_description_free>>;
using CairoOwner = std::unique_ptr<cairo_t, ReleaseBy<cairo_destroy>>;
using SurfaceOwner = std::unique_ptr<cairo_surface_t, ReleaseBy<cairo_surface_destroy>>;

/// The text in lines no longer than `width`, in units of the frame's rows.
LayoutOwner LaidOutText(const std::string& text, double width, double height, double size) {
  const ContextOwner context(pango_font_map_create_context(pango_cairo_font_map_get_default()));
  LayoutOwner layout(pango_layout_new(context.get()));
  const FontOwner font(pango_font_description_from_string("Sans Semi-Bold"));
  pango_font_description_set_absolute_size(font.get(), size * PANGO_SCALE);
  pango_layout_set_font_description(layout.get(), font.get());
  const std::unique_ptr<char, ReleaseBy<g_free>> valid(
      g_utf8_make_valid(text.data(), static_cast<gssize>(text.size())));
  pango_layout_set_text(layout.get(), valid.get(), -1);
  pango_layout_set_alignment(layout.get(), PANGO_ALIGN_CENTER);
  pango_layout_set_wrap(layout.get(), PANGO_WRAP_WORD_CHAR);
  pango_layout_set_width(layout.get(), static_cast<int>(width * PANGO_SCALE));
  pango_layout_set_height(layout.get(), static_cast<int>(height * PANGO_SCALE));
  pango_layout_set_ellipsize(layout.get(), PANGO_ELLIPSIZE_END);
  return layout;
}

void DrawLetters(cairo_t* cairo, PangoLayout* layout, double outline) {
  pango_cairo_layout_path(cairo, layout);
  cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
  cairo_set_line_width(cairo, 2 * outline);
  cairo_set_source_rgba(cairo, 0.0, 0.0, 0.0, 0.75);
  cairo_stroke_preserve(cairo);
  cairo_set_source_rgb(cairo, 1.0, 1.0, 1.0);
  cairo_fill(cairo);
}

/// Of a row of pixels.
size_t SamplesIn(int32_t pixels, PixelLayout layout) {
  const size_t sampleBytes = layout == PixelLayout::kRgba16 ? 2 : 1;
  return static_cast<size_t>(pixels) * BytesPerPixel(layout) / sampleBytes;
}

/// A component of studio range BT.601 of a colour that is multiplied with its alpha; all 0..255.
uint8_t StudioLevel(const ComponentWeights& weights, std::array<double, 4> bgra, double range,
                    double offset) {
  const double part = Weigh<double>(weights, bgra[2], bgra[1], bgra[0]) / kWeightUnit / 255.0;
  return static_cast<uint8_t>(std::lround(offset * bgra[3] / 255.0 + range * part));
}

}  // namespace

bool CanDrawLetters() { return true; }

Lettering::Lettering(const std::string& text, LetterPlace place, const FilmFormat& format,
                     PixelLayout layout)
    : format_(format), layout_(layout) {
  const double pixelAspect =
      static_cast<double>(format.sampleAspect.width) / format.sampleAspect.height;
  // Upright frames have lines as wide as they have room for: letters go by the shorter side.
  const double width = format.size.width * pixelAspect, height = format.size.height;
  const LetterSizes sizes = SizesOf(place);
  const double size = std::max(6.0, sizes.letters * std::min(height, width));
  const double outline = size * 0.09;
  const LayoutOwner letters =
      LaidOutText(text, width * (1 - 2 * kSafeMargin) - 2 * outline, height * sizes.lines, size);
  missing_ = pango_layout_get_unknown_glyphs_count(letters.get());
  PangoRectangle ink{}, line{};
  pango_layout_get_pixel_extents(letters.get(), &ink, &line);
  if (ink.width <= 0 || ink.height <= 0) return;
  const double down = place == LetterPlace::kTitle
                          ? (height - line.height) / 2 - line.y
                          : height * (1 - kSafeMargin) - outline - (line.y + line.height);
  const double across = width * kSafeMargin + outline;
  // The pixels of the ink with its outline, from an even column on, where pairs share a colour.
  const double border = std::ceil(outline) + 1;
  left_ = std::max(0, static_cast<int32_t>((across + ink.x - border) / pixelAspect) & ~1);
  top_ = std::max(0, static_cast<int32_t>(down + ink.y - border));
  const auto right = static_cast<int32_t>((across + ink.x + ink.width + border) / pixelAspect) + 2;
  const auto bottom = static_cast<int32_t>(down + ink.y + ink.height + border) + 1;
  width_ = (std::min(format.size.width, right) - left_) & ~1;
  height_ = std::min(format.size.height, bottom) - top_;
  if (width_ <= 0 || height_ <= 0) {
    width_ = height_ = 0;
    return;
  }
  const SurfaceOwner surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width_, height_));
  const CairoOwner cairo(cairo_create(surface.get()));
  cairo_translate(cairo.get(), -left_, -top_);
  cairo_scale(cairo.get(), 1 / pixelAspect, 1);
  cairo_move_to(cairo.get(), across, down);
  DrawLetters(cairo.get(), letters.get(), outline);
  cairo_surface_flush(surface.get());
  if (cairo_status(cairo.get()) != CAIRO_STATUS_SUCCESS) {
    throw Error(std::string("letters cannot be drawn: ") +
                cairo_status_to_string(cairo_status(cairo.get())));
  }
  Keep(cairo_image_surface_get_data(surface.get()), cairo_image_surface_get_stride(surface.get()));
}

void Lettering::Keep(const uint8_t* drawn, ptrdiff_t rowBytes) {
  const size_t samples = SamplesIn(width_, layout_);
  colour_.reserve(samples * height_);
  cover_.reserve(samples * height_);
  const auto put = [&](uint8_t colour, uint8_t cover) {
    colour_.push_back(colour);
    cover_.push_back(cover);
  };
  for (int32_t y = 0; y < height_; ++y) {
    for (int32_t x = 0; x < width_; x += 2) {
      const uint8_t* pair = drawn + y * rowBytes + 4 * static_cast<ptrdiff_t>(x);
      if (layout_ == PixelLayout::kRgba16) {
        for (int i = 0; i < 8; ++i) {
          constexpr int kFromBgra[] = {2, 1, 0, 3};
          put(pair[i / 4 * 4 + kFromBgra[i % 4]], pair[i / 4 * 4 + 3]);
        }
        continue;
      }
      if (layout_ == PixelLayout::kBGRA) {
        for (int i = 0; i < 8; ++i) {
          // A frame's own alpha stays as it is.
          const bool alpha = i % 4 == 3;
          put(alpha ? 0 : pair[i], alpha ? 0 : pair[i / 4 * 4 + 3]);
        }
        continue;
      }
      std::array<double, 4> one{}, other{}, both{};
      for (int i = 0; i < 4; ++i) {
        one[i] = pair[i];
        other[i] = pair[i + 4];
        both[i] = (one[i] + other[i]) / 2;
      }
      const auto shared = static_cast<uint8_t>(std::lround(both[3]));
      put(StudioLevel(kLumaWeights, one, 219.0, 16.0), pair[3]);
      put(StudioLevel(kCbWeights, both, 224.0, kChromaOffset), shared);
      put(StudioLevel(kLumaWeights, other, 219.0, 16.0), pair[7]);
      put(StudioLevel(kCrWeights, both, 224.0, kChromaOffset), shared);
    }
  }
}

template <typename Sample>
void Lettering::OverRow(uint8_t* row, int32_t y, uint32_t part) const {
  constexpr uint32_t kUnit = 255 * kWholeLetters;
  constexpr uint32_t kFull = std::numeric_limits<Sample>::max();
  const size_t samples = SamplesIn(width_, layout_);
  const uint8_t *colour = &colour_[y * samples], *cover = &cover_[y * samples];
  void* const first = row;
  auto* const out = static_cast<Sample*>(first);
  for (size_t i = 0; i < samples; ++i) {
    if (cover[i] == 0) continue;
    // At most full scale times the unit, which 32 bits hold.
    const uint32_t mixed = out[i] * (kUnit - cover[i] * part) + colour[i] * kFull * part;
    out[i] = static_cast<Sample>((mixed + kUnit / 2) / kUnit);
  }
}

void Lettering::Over(uint8_t* pixels, ptrdiff_t rowBytes, double opacity, double later) const {
  for (int32_t y = 0; y < height_; ++y) {
    const int32_t row = top_ + y;
    const bool first =
        !format_.Interlaced() || (row % 2 == 0) == (format_.fields == FieldOrder::kTopFirst);
    const auto part = static_cast<uint32_t>(std::lround((first ? opacity : later) * kWholeLetters));
    if (part == 0) continue;
    uint8_t* const out = pixels + row * rowBytes + ptrdiff_t{left_} * BytesPerPixel(layout_);
    if (layout_ == PixelLayout::kRgba16) {
      OverRow<uint16_t>(out, y, part);
    } else {
      OverRow<uint8_t>(out, y, part);
    }
  }
}

}  // namespace kelto::host
