#include "runtime/stills/lcms_context.h"

#include <lcms2.h>
#include <lcms2_plugin.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace kelto::stills {
namespace {

/// What the transforms of one picture take, nothing being given back meanwhile; pages that are not
/// used cost nothing.
constexpr size_t kReserve = size_t{16} << 20;
constexpr size_t kReserveForEachProfileByte = 8;

/// The version of the library that first had the interfaces used here.
constexpr cmsUInt32Number kInterfaceVersion = 2060;
/// As with the library's own allocator.
constexpr uint32_t kMostBytes = 512u << 20;

/// Lies before every block, which is aligned as the heap's are.
struct alignas(__STDCPP_DEFAULT_NEW_ALIGNMENT__) Header {
  uint32_t bytes;
  bool reserved;
};

/// The one being made, which the library does not know yet.
thread_local LcmsContext* being_made;

LcmsContext* From(cmsContext context) {
  auto* known = static_cast<LcmsContext*>(cmsGetContextUserData(context));
  return known != nullptr ? known : being_made;
}

// Profiles stay in one thread.
void* MakeLock(cmsContext) {
  static char lock;
  return &lock;
}
void DestroyLock(cmsContext, void*) {}
cmsBool Lock(cmsContext, void*) { return TRUE; }
void Unlock(cmsContext, void*) {}

}  // namespace

LcmsContext::LcmsContext(size_t profile_bytes)
    : size_(kReserve + kReserveForEachProfileByte * profile_bytes),
      reserve_(std::make_unique_for_overwrite<uint8_t[]>(size_)) {
  cmsPluginMutex locks = {};
  locks.base.Magic = cmsPluginMagicNumber;
  locks.base.ExpectedVersion = kInterfaceVersion;
  locks.base.Type = cmsPluginMutexSig;
  locks.CreateMutexPtr = MakeLock;
  locks.DestroyMutexPtr = DestroyLock;
  locks.LockMutexPtr = Lock;
  locks.UnlockMutexPtr = Unlock;
  cmsPluginMemHandler memory = {};
  memory.base.Magic = cmsPluginMagicNumber;
  memory.base.ExpectedVersion = kInterfaceVersion;
  memory.base.Type = cmsPluginMemHandlerSig;
  memory.base.Next = &locks.base;
  memory.MallocPtr = [](cmsContext context, cmsUInt32Number bytes) {
    return From(context)->Allocate(bytes);
  };
  memory.FreePtr = [](cmsContext, void* block) { Free(block); };
  memory.ReallocPtr = [](cmsContext context, void* block, cmsUInt32Number bytes) {
    return Reallocate(From(context), block, bytes);
  };
  being_made = this;
  context_ = cmsCreateContext(&memory, this);
  being_made = nullptr;
  if (context_ == nullptr) throw std::bad_alloc();
}

LcmsContext::~LcmsContext() { cmsDeleteContext(static_cast<cmsContext>(context_)); }

void LcmsContext::CheckMemory() const {
  if (ran_out_) throw std::bad_alloc();
}

void* LcmsContext::Allocate(uint32_t bytes) {
  if (bytes == 0 || bytes > kMostBytes) return nullptr;
  const size_t whole = (sizeof(Header) + bytes + alignof(Header) - 1) & ~(alignof(Header) - 1);
  const bool reserved = whole <= size_ - used_;
  void* block = reserved ? &reserve_[used_] : std::malloc(whole);
  if (block == nullptr) {
    ran_out_ = true;
    return nullptr;
  }
  if (reserved) used_ += whole;
  return new (block) Header{bytes, reserved} + 1;
}

void* LcmsContext::Reallocate(LcmsContext* context, void* memory, uint32_t bytes) {
  void* moved = context->Allocate(bytes);
  if (moved == nullptr || memory == nullptr) return moved;
  const Header* before = static_cast<const Header*>(memory) - 1;
  std::memcpy(moved, memory, std::min(bytes, before->bytes));
  Free(memory);
  return moved;
}

void LcmsContext::Free(void* memory) {
  if (memory == nullptr) return;
  Header* block = static_cast<Header*>(memory) - 1;
  if (!block->reserved) std::free(block);
}

}  // namespace kelto::stills
