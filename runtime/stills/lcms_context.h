// A context of Little CMS whose memory is set aside beforehand.
//
// In some places the library reports out of memory as a damaged profile, without which a picture
// would come out in the wrong colours, and does not look at others. So it gets its memory from a
// reserve that is had whole or not at all.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace kelto::stills {

class LcmsContext {
 public:
  /// For work with a profile of `profile_bytes`. Throws std::bad_alloc.
  explicit LcmsContext(size_t profile_bytes);
  ~LcmsContext();
  LcmsContext(const LcmsContext&) = delete;
  LcmsContext& operator=(const LcmsContext&) = delete;

  /// The library's own context.
  void* get() const { return context_; }
  /// Throws std::bad_alloc when the library wanted memory beyond the reserve that was not there.
  void CheckMemory() const;

  // For the library.
  void* Allocate(uint32_t bytes);
  static void* Reallocate(LcmsContext* context, void* memory, uint32_t bytes);
  static void Free(void* memory);

 private:
  size_t size_, used_ = 0;
  std::unique_ptr<uint8_t[]> reserve_;
  bool ran_out_ = false;
  void* context_ = nullptr;
};

}  // namespace kelto::stills
