// The subset of an image-processing library that the effect uses: image headers, pixel allocation,
// RGB to YCrCb conversion, and an error status in place of return codes.
//
// Every operation that fails sets the error status, which stays until it is set again; in silent
// mode nothing else happens. Success never touches it. State is process-wide and not locked.
#pragma once

#include <cstdint>

#include "platform/api.h"

enum : int32_t {
  IPL_DEPTH_8U = 8,
  IPL_DATA_ORDER_PIXEL = 0,
  IPL_ORIGIN_TL = 0,  ///< row 0 is the top row
  IPL_ALIGN_DWORD = 4,
  IPL_ALIGN_QWORD = 8,
};

/// Flags of iplDeallocate; 31 is all of them.
enum : int32_t {
  IPL_IMAGE_HEADER = 1,
  IPL_IMAGE_DATA = 2,
  IPL_IMAGE_ROI = 4,
  IPL_IMAGE_TILE = 8,
  IPL_IMAGE_MASK = 16,
  IPL_IMAGE_ALL = 31,
};

enum : int32_t {
  IPL_ErrModeLeaf = 0,    ///< report each failure on the error stream
  IPL_ErrModeParent = 1,  ///< same here
  IPL_ErrModeSilent = 2,  ///< only record failures in the status
};

enum : int32_t {
  IPL_StsOk = 0,
  IPL_StsNoMem = -4,
  IPL_StsBadArg = -5,
  IPL_StsNullPtr = -27,
  IPL_BadImageSize = -10,
  IPL_BadNumChannels = -15,
  IPL_BadOrder = -16,
};

struct IplROI;
struct IplTileInfo;

/// Describes an image; pixels are attached by iplAllocateImage.
struct IplImage {
  int32_t nSize;         ///< size of this header in bytes
  int32_t nChannels;     ///< channels stored per pixel
  int32_t alphaChannel;  ///< number of the alpha channel, 0 for none
  int32_t depth;         ///< bits a channel: IPL_DEPTH_8U
  char colorModel[4];    ///< such as "RGBA"; short names are padded with zero bytes
  char channelSeq[4];    ///< order of the channels in memory, such as "BGRA"
  int32_t dataOrder;     ///< IPL_DATA_ORDER_PIXEL: the channels of a pixel lie together
  int32_t origin;        ///< IPL_ORIGIN_TL
  int32_t align;         ///< row alignment in bytes: 4 or 8
  int32_t width, height;
  IplROI* roi;
  IplImage* maskROI;
  void* imageId;  ///< the caller's own; the library never reads it
  IplTileInfo* tileInfo;
  uint32_t imageSize;     ///< bytes of pixel data: widthStep * height, set at creation
  char* imageData;        ///< first byte of the top row, aligned to 64 bytes; null at first
  int32_t widthStep;      ///< bytes from row to row, a multiple of `align`
  char* imageDataOrigin;  ///< what was really allocated
};

extern "C" {

KELTO_PLATFORM_API void iplSetErrMode(int32_t mode);
KELTO_PLATFORM_API int32_t iplGetErrMode();
KELTO_PLATFORM_API int32_t iplGetErrStatus();
KELTO_PLATFORM_API void iplSetErrStatus(int32_t status);

/// Makes a header without pixels, of 1 to 4 channels; `roi`, `maskROI`, `imageId` and `tileInfo`
/// are kept as given. Null with a status when memory runs out, a size is below 1, the channels or
/// the layout are not supported, a name is null or longer than four characters, or the pixel data
/// would exceed 2^31 - 1 bytes.
KELTO_PLATFORM_API IplImage* iplCreateImageHeader(int32_t nChannels, int32_t alphaChannel,
                                                  int32_t depth, const char* colorModel,
                                                  const char* channelSeq, int32_t dataOrder,
                                                  int32_t origin, int32_t align, int32_t width,
                                                  int32_t height, IplROI* roi, IplImage* maskROI,
                                                  void* imageId, IplTileInfo* tileInfo);
/// Attaches pixel memory, releasing what was attached before; `doFill` non-zero fills every byte
/// with `fillValue`, else the content is left to chance. The memory has room for the same pixels
/// with rows aligned to 8 bytes, which the account leaves out where the header's rows are not.
/// Images may exchange `imageData` together with `imageDataOrigin`: what they count for goes by
/// their headers. Sets IPL_StsNoMem and leaves `imageData` null when memory runs out or the limit
/// of iplxSetMemoryLimit would be passed; IPL_StsNullPtr without a header.
KELTO_PLATFORM_API void iplAllocateImage(IplImage* image, int32_t doFill, int32_t fillValue);
/// Frees the parts that `flags` names; freeing the header frees its pixels too. A mask is freed
/// with all its parts; regions of interest and tilings are never this library's and are only let
/// go. Null is allowed.
KELTO_PLATFORM_API void iplDeallocate(IplImage* image, int32_t flags);
/// Converts full-range RGB, read through the source's channel sequence, to Y, Cr, Cb (ITU-R BT.601
/// weights): Y = 0.2989 R + 0.5866 G + 0.1145 B, Cb = -0.1687 R - 0.3312 G + 0.5 B + 128,
/// Cr = 0.5 R - 0.4183 G - 0.0816 B + 128, each rounded to nearest (halves upwards) and saturated;
/// the result is exact. The destination's first three channels are written in the order Y, Cr, Cb;
/// a fourth is left alone. Nothing is written, and the status is set, when an image lacks pixels
/// (IPL_StsNullPtr), sizes differ (IPL_BadImageSize), an image has fewer than three channels
/// (IPL_BadNumChannels) or the source's sequence lacks R, G or B (IPL_BadOrder).
KELTO_PLATFORM_API void iplRGB2YCrCb(const IplImage* rgb, IplImage* ycrcb);

/// Extension: what iplAllocateImage does to the account, without memory: `imageData` stays null
/// until the image exchanges it with one that has memory. Fails as iplAllocateImage does.
KELTO_PLATFORM_API void iplxCountImage(IplImage* image);

/// Extension: caps the pixel bytes allocated at any time (0 lifts the cap), so that running out of
/// memory can be made to happen; iplxAllocatedBytes returns what is allocated now.
KELTO_PLATFORM_API void iplxSetMemoryLimit(uint64_t bytes);
KELTO_PLATFORM_API uint64_t iplxAllocatedBytes();
}
