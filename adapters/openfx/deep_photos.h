// Photographs with all their bits, decoded once in a process.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "deep/picture.h"

namespace kelto::openfx {

/// Photographs that stay decoded between frames, whatever becomes of the instances that show them.
/// They keep to a budget together with what others hold, but for one that is larger itself; those
/// that were asked for longest ago go first. What is being drawn stays with who draws it.
class DeepPhotos {
 public:
  /// `others` returns the bytes that others take of the budget.
  DeepPhotos(uint64_t budget, uint64_t (*others)()) : budget_(budget), others_(others) {}

  /// The photograph of a file, read anew where the file has changed. Null, with the reason in a
  /// line, where it cannot be read with all its bits. Throws std::bad_alloc.
  std::shared_ptr<const DeepPicture> Get(const std::string& file, std::string& reason);
  /// Lets go of all that nobody is drawing.
  void Forget();

  uint64_t Bytes() const;    ///< of those that are kept
  uint64_t Decoded() const;  ///< how many were read from their files so far

 private:
  struct Kept {
    std::string file;
    std::filesystem::file_time_type written;  ///< when the file was, as it was read
    std::shared_ptr<const DeepPicture> photo;
  };
  std::shared_ptr<const DeepPicture> Decode(const std::string& file, std::string& reason);
  void MakeRoom(uint64_t bytes);

  const uint64_t budget_;
  uint64_t (*const others_)();
  mutable std::mutex mutex_;  ///< one decodes at a time, so that no photograph is decoded twice
  std::vector<Kept> kept_;    ///< the one asked for last at the end
  uint64_t bytes_ = 0, decoded_ = 0;
};

/// Those of the process: 512 MiB, of which the effect's own pictures of 8 bits take their part.
DeepPhotos& ProcessDeepPhotos();

}  // namespace kelto::openfx
