// Frames in memory that several processes share.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/base/film_format.h"

namespace kelto::host {

/// Room for a number of frames, shared with the processes that begin as copies of this one. Memory
/// is taken up as frames are written.
class SharedFrames {
 public:
  /// Throws std::bad_alloc when there is no such room.
  SharedFrames(FrameSize size, PixelLayout layout, size_t count);
  ~SharedFrames();
  SharedFrames(const SharedFrames&) = delete;
  SharedFrames& operator=(const SharedFrames&) = delete;

  void Store(size_t place, const FrameView& frame);
  FrameView View(size_t place) const;
  /// A place's memory, RowBytes() from row to row.
  uint8_t* Start(size_t place) const;
  ptrdiff_t RowBytes() const { return static_cast<ptrdiff_t>(rowBytes_); }

 private:
  FrameSize size_;
  size_t rowBytes_, frameBytes_, allBytes_;
  void* memory_;
};

}  // namespace kelto::host
