// RGB to YCrCb conversion.
#include "platform/ycrcb_weights.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "platform/ipl.h"
#include "platform/vector_clones.h"
#include "runtime/ipl/status.h"

namespace kelto::ipl {
namespace {

constexpr const char* kOperation = "iplRGB2YCrCb";

/// Pixels taken at a time.
constexpr int kBlock = 512;

/// Nearest level to an integer number of ten-thousandths, which is not negative.
inline uint32_t NearestLevel(float value) {
  // Integers below 2^22: the half added last keeps quotients 0.5 / 10000 away from the next
  // level, farther than float errs. Multiplied, not divided, and in float throughout, since vectors
  // of 32-bit integers have neither a product nor a quotient everywhere.
  const float level = (value + (0.5f * kWeightUnit + 0.5f)) * (1.0f / kWeightUnit);
  // Pure red and pure blue come to 255.5, that is 256.
  return static_cast<uint32_t>(static_cast<int32_t>(std::min(level, 255.0f)));
}

inline float Byte(uint32_t word, int shift) {
  return static_cast<float>(static_cast<int32_t>(word >> shift & 255));
}

/// Byte positions of red, green and blue in a pixel; false when the sequence lacks one.
struct ColorPositions {
  int r, g, b;

  bool Find(const IplImage& image) {
    const char* begin = image.channelSeq;
    const char* end = begin + image.nChannels;
    const auto position = [&](char name) {
      return static_cast<int>(std::find(begin, end, name) - begin);
    };
    r = position('R');
    g = position('G');
    b = position('B');
    return std::max({r, g, b}) < image.nChannels;
  }
};

/// Turns pixels, as words whose lowest byte comes first in memory, into words of Y, Cr, Cb.
KELTO_VECTOR_CLONES
void Convert(uint32_t (&pixels)[kBlock], const ColorPositions& at, int count) {
  constexpr float kOffset = kChromaOffset * kWeightUnit;
  const int red = 8 * at.r, green = 8 * at.g, blue = 8 * at.b;
  for (int i = 0; i < count; ++i) {
    const float r = Byte(pixels[i], red), g = Byte(pixels[i], green), b = Byte(pixels[i], blue);
    pixels[i] = NearestLevel(Weigh(kLumaWeights, r, g, b)) |
                NearestLevel(Weigh(kCrWeights, r, g, b) + kOffset) << 8 |
                NearestLevel(Weigh(kCbWeights, r, g, b) + kOffset) << 16;
  }
}

void Gather(const char* source, int channels, int count, uint32_t (&pixels)[kBlock]) {
  if (channels == 4) {
    std::memcpy(pixels, source, size_t{4} * static_cast<size_t>(count));
  } else {
    for (int i = 0; i < count; ++i) std::memcpy(&pixels[i], source + ptrdiff_t{3} * i, 3);
  }
}

/// Writes the first three bytes of pixels of four.
KELTO_VECTOR_CLONES
void ScatterIntoFour(const uint32_t (&pixels)[kBlock], int count, char* dest) {
  for (int i = 0; i < count; ++i, dest += 4) {
    uint32_t pixel;
    std::memcpy(&pixel, dest, 4);
    pixel = (pixel & 0xFF000000) | pixels[i];
    std::memcpy(dest, &pixel, 4);
  }
}

/// Writes three bytes of every pixel.
void Scatter(const uint32_t (&pixels)[kBlock], int count, int channels, char* dest) {
  if (channels == 4) {
    ScatterIntoFour(pixels, count, dest);
    return;
  }
  int i = 0;
  if (channels == 3) {
    // Four bytes at a time, of which the next pixel overwrites the last.
    for (; i + 1 < count; ++i) std::memcpy(dest + ptrdiff_t{3} * i, &pixels[i], 4);
  }
  for (; i < count; ++i) std::memcpy(dest + ptrdiff_t{i} * channels, &pixels[i], 3);
}

/// Null for a pair of images that can be converted, else what is wrong, with its status.
const char* Refusal(const IplImage* rgb, const IplImage* ycrcb, int32_t* status) {
  if (rgb == nullptr || ycrcb == nullptr || rgb->imageData == nullptr ||
      ycrcb->imageData == nullptr) {
    *status = IPL_StsNullPtr;
    return "an image without header or pixels";
  }
  if (rgb->width != ycrcb->width || rgb->height != ycrcb->height) {
    *status = IPL_BadImageSize;
    return "images of different sizes";
  }
  if (rgb->nChannels < 3 || ycrcb->nChannels < 3) {
    *status = IPL_BadNumChannels;
    return "an image of fewer than three channels";
  }
  return nullptr;
}

}  // namespace
}  // namespace kelto::ipl

extern "C" void iplRGB2YCrCb(const IplImage* rgb, IplImage* ycrcb) {
  using namespace kelto::ipl;
  int32_t status = IPL_StsOk;
  if (const char* refusal = Refusal(rgb, ycrcb, &status)) {
    Fail(status, kOperation, refusal);
    return;
  }
  ColorPositions at;
  if (!at.Find(*rgb)) {
    Fail(IPL_BadOrder, kOperation, "a channel sequence without R, G and B");
    return;
  }
  uint32_t pixels[kBlock] = {};
  for (int32_t row = 0; row < rgb->height; ++row) {
    const char* sourceRow = rgb->imageData + ptrdiff_t{row} * rgb->widthStep;
    char* destRow = ycrcb->imageData + ptrdiff_t{row} * ycrcb->widthStep;
    for (int32_t column = 0; column < rgb->width; column += kBlock) {
      const int count = std::min(kBlock, rgb->width - column);
      Gather(sourceRow + ptrdiff_t{column} * rgb->nChannels, rgb->nChannels, count, pixels);
      Convert(pixels, at, count);
      Scatter(pixels, count, ycrcb->nChannels, destRow + ptrdiff_t{column} * ycrcb->nChannels);
    }
  }
}
