// Image headers: checks of what is asked for, and the row and image sizes that follow from it.
#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

#include "platform/ipl.h"
#include "runtime/ipl/status.h"

namespace kelto::ipl {
namespace {

constexpr const char* kOperation = "iplCreateImageHeader";
constexpr int64_t kMaxImageBytes = std::numeric_limits<int32_t>::max();
constexpr size_t kNameSize = sizeof(IplImage::colorModel);

/// Status and cause of the first thing that is wrong, or IPL_StsOk.
struct Verdict {
  int32_t status;
  const char* cause;
};

Verdict CheckLayout(const IplImage& image) {
  if (image.nChannels < 1 || image.nChannels > 4) {
    return {IPL_BadNumChannels, "1 to 4 channels are supported"};
  }
  if (image.alphaChannel < 0 || image.alphaChannel > image.nChannels) {
    return {IPL_StsBadArg, "the alpha channel is none of the image's"};
  }
  if (image.depth != IPL_DEPTH_8U) return {IPL_StsBadArg, "only 8 bits a channel are supported"};
  if (image.dataOrder != IPL_DATA_ORDER_PIXEL) {
    return {IPL_BadOrder, "only pixel-interleaved data is supported"};
  }
  if (image.origin != IPL_ORIGIN_TL) return {IPL_StsBadArg, "only top-left origin is supported"};
  if (image.align != IPL_ALIGN_DWORD && image.align != IPL_ALIGN_QWORD) {
    return {IPL_StsBadArg, "rows are aligned to 4 or 8 bytes"};
  }
  return {IPL_StsOk, ""};
}

/// Fills in `widthStep` and `imageSize`; false for sizes below 1 or beyond kMaxImageBytes.
bool SetSizes(IplImage& image) {
  if (image.width < 1 || image.height < 1) return false;
  const int64_t rowBytes = int64_t{image.width} * image.nChannels;
  const int64_t widthStep = (rowBytes + image.align - 1) / image.align * image.align;
  // Divided, since the product of two 32-bit sizes and four channels can pass 64 bits.
  if (widthStep > kMaxImageBytes / image.height) return false;
  image.widthStep = static_cast<int32_t>(widthStep);
  image.imageSize = static_cast<uint32_t>(widthStep * image.height);
  return true;
}

bool CopyName(const char* name, char (&field)[kNameSize]) {
  const size_t length = std::strlen(name);
  if (length > kNameSize) return false;
  std::copy_n(name, length, field);
  return true;
}

}  // namespace
}  // namespace kelto::ipl

extern "C" IplImage* iplCreateImageHeader(int32_t nChannels, int32_t alphaChannel, int32_t depth,
                                          const char* colorModel, const char* channelSeq,
                                          int32_t dataOrder, int32_t origin, int32_t align,
                                          int32_t width, int32_t height, IplROI* roi,
                                          IplImage* maskROI, void* imageId, IplTileInfo* tileInfo) {
  using namespace kelto::ipl;
  IplImage image = {};
  image.nSize = sizeof(IplImage);
  image.nChannels = nChannels;
  image.alphaChannel = alphaChannel;
  image.depth = depth;
  image.dataOrder = dataOrder;
  image.origin = origin;
  image.align = align;
  image.width = width;
  image.height = height;
  image.roi = roi;
  image.maskROI = maskROI;
  image.imageId = imageId;
  image.tileInfo = tileInfo;

  if (colorModel == nullptr || channelSeq == nullptr) {
    Fail(IPL_StsNullPtr, kOperation, "no colour model or channel sequence");
    return nullptr;
  }
  if (!CopyName(colorModel, image.colorModel) || !CopyName(channelSeq, image.channelSeq)) {
    Fail(IPL_StsBadArg, kOperation, "a colour model or channel sequence of over four characters");
    return nullptr;
  }
  if (const Verdict verdict = CheckLayout(image); verdict.status != IPL_StsOk) {
    Fail(verdict.status, kOperation, verdict.cause);
    return nullptr;
  }
  if (!SetSizes(image)) {
    Fail(IPL_BadImageSize, kOperation, "a side below 1 or an image beyond 2^31 - 1 bytes");
    return nullptr;
  }
  IplImage* header = new (std::nothrow) IplImage(image);
  if (header == nullptr) Fail(IPL_StsNoMem, kOperation, "no memory for a header");
  return header;
}
