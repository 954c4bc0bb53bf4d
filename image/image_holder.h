// Ownership of image-library images inside one operation.
#pragma once

#include <utility>

#include "image/pool.h"
#include "platform/ipl.h"

namespace kelto {

/// Owns an image until it is taken: released, account included, on every way out.
class ImageHolder {
 public:
  explicit ImageHolder(IplImage* image = nullptr) : image_(image) {}
  ImageHolder(const ImageHolder&) = delete;
  ImageHolder& operator=(const ImageHolder&) = delete;
  ~ImageHolder() { ReleaseImage(image_); }

  IplImage* get() const { return image_; }
  IplImage* operator->() const { return image_; }
  IplImage& operator*() const { return *image_; }
  IplImage* Take() { return std::exchange(image_, nullptr); }
  void Release() { ReleaseImage(Take()); }

 private:
  IplImage* image_;
};

/// Clears the image library's error status at the end of a load or reduction, however it ends, so
/// that one failure does not make the next operation fail.
struct StatusReset {
  StatusReset() = default;
  StatusReset(const StatusReset&) = delete;
  StatusReset& operator=(const StatusReset&) = delete;
  ~StatusReset() { iplSetErrStatus(IPL_StsOk); }
};

}  // namespace kelto
