// What renders frames, kept per process and not per instance: some hosts make an instance for every
// frame, and a photograph is decoded once all the same.
#pragma once

#include <cstdint>
#include <memory>

#include "adapters/frei0r/adapter.h"

namespace kelto::openfx {

using FrameMaker = frei0r::Adapter;

/// A maker of frames of one size, for one thread at a time; goes back to the store by itself.
class LentMaker {
 public:
  /// One that is not in use, the one that was used last first, or a new one. Throws std::bad_alloc.
  LentMaker(frei0r::Role role, uint32_t width, uint32_t height);
  ~LentMaker();
  LentMaker(const LentMaker&) = delete;
  LentMaker& operator=(const LentMaker&) = delete;
  FrameMaker* operator->() const { return maker_.get(); }

 private:
  frei0r::Role role_;
  uint32_t width_, height_;
  std::unique_ptr<FrameMaker> maker_;
};

/// Lets go of those that are not in use, and of their photographs.
void EmptyFrameStore();

}  // namespace kelto::openfx
