#include "tests/faults/failing_calls.h"

#include <dlfcn.h>
#include <elf.h>
#include <fcntl.h>
#include <link.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <new>

namespace {

struct Plan {
  bool active = false;
  int64_t count = 0, failing = 0;
  bool fired = false;
};
Plan allocations, files;

bool Refuse(Plan& plan) {
  if (!plan.active || ++plan.count != plan.failing) return false;
  plan.fired = true;
  return true;
}

/// The calls as they were, looked up before any is replaced.
struct RealCalls {
  decltype(&std::malloc) malloc;
  decltype(&std::calloc) calloc;
  decltype(&std::realloc) realloc;
  decltype(&::posix_memalign) posix_memalign;
  decltype(&::aligned_alloc) aligned_alloc;
  int (*open)(const char*, int, ...);
  int (*fstat)(int, struct stat*);
  decltype(&::fdopen) fdopen;
  size_t (*fread)(void*, size_t, size_t, FILE*);
  decltype(&::fseeko) fseeko;
};

template <typename Function>
void Find(const char* name, Function& function) {
  function = reinterpret_cast<Function>(::dlsym(RTLD_DEFAULT, name));
}

const RealCalls& Real() {
  static const RealCalls real = [] {
    RealCalls calls;
    Find("malloc", calls.malloc);
    Find("calloc", calls.calloc);
    Find("realloc", calls.realloc);
    Find("posix_memalign", calls.posix_memalign);
    Find("aligned_alloc", calls.aligned_alloc);
    Find("open", calls.open);
    Find("fstat", calls.fstat);
    Find("fdopen", calls.fdopen);
    Find("fread", calls.fread);
    Find("fseeko", calls.fseeko);
    return calls;
  }();
  return real;
}

// What takes their places.

void* FailingMalloc(size_t size) {
  if (!Refuse(allocations)) return Real().malloc(size);
  errno = ENOMEM;
  return nullptr;
}

void* FailingCalloc(size_t count, size_t size) {
  if (!Refuse(allocations)) return Real().calloc(count, size);
  errno = ENOMEM;
  return nullptr;
}

void* FailingRealloc(void* block, size_t size) {
  if (!Refuse(allocations)) return Real().realloc(block, size);
  errno = ENOMEM;
  return nullptr;
}

int FailingPosixMemalign(void** block, size_t alignment, size_t size) {
  return Refuse(allocations) ? ENOMEM : Real().posix_memalign(block, alignment, size);
}

void* FailingAlignedAlloc(size_t alignment, size_t size) {
  return Refuse(allocations) ? nullptr : Real().aligned_alloc(alignment, size);
}

int FailingOpen(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): it is begun in the line above
  const unsigned mode = (flags & O_CREAT) ? va_arg(arguments, unsigned) : 0;
  va_end(arguments);
  if (!Refuse(files)) return Real().open(path, flags, mode);
  errno = EMFILE;
  return -1;
}

int FailingFstat(int file, struct stat* status) {
  if (!Refuse(files)) return Real().fstat(file, status);
  errno = EIO;
  return -1;
}

FILE* FailingFdopen(int file, const char* mode) {
  if (!Refuse(files)) return Real().fdopen(file, mode);
  errno = EMFILE;
  return nullptr;
}

size_t FailingFread(void* to, size_t size, size_t count, FILE* file) {
  if (!Refuse(files)) return Real().fread(to, size, count, file);
  errno = EIO;
  return 0;
}

int FailingFseeko(FILE* file, off_t offset, int whence) {
  if (!Refuse(files)) return Real().fseeko(file, offset, whence);
  errno = EIO;
  return -1;
}

struct Replacement {
  const char* name;
  void* address;
};
template <typename Function>
Replacement Replace(const char* name, Function* function) {
  return {name, reinterpret_cast<void*>(function)};
}
const Replacement replacements[] = {
    Replace("malloc", FailingMalloc),
    Replace("calloc", FailingCalloc),
    Replace("realloc", FailingRealloc),
    Replace("posix_memalign", FailingPosixMemalign),
    Replace("aligned_alloc", FailingAlignedAlloc),
    Replace("open", FailingOpen),
    Replace("open64", FailingOpen),
    Replace("fstat", FailingFstat),
    Replace("fstat64", FailingFstat),
    Replace("fdopen", FailingFdopen),
    Replace("fread", FailingFread),
    Replace("fseeko", FailingFseeko),
    Replace("fseeko64", FailingFseeko),
};

// Tables of a loaded object hold addresses as numbers.
// NOLINTBEGIN(performance-no-int-to-ptr)

/// Writes into an address table, which may have been made read-only after loading.
void WriteEntry(void** entry, void* address) {
  if (*entry == address) return;
  const auto page = static_cast<uintptr_t>(::sysconf(_SC_PAGESIZE));
  void* start = reinterpret_cast<void*>(reinterpret_cast<uintptr_t>(entry) & ~(page - 1));
  ::mprotect(start, page, PROT_READ | PROT_WRITE);
  *entry = address;
}

struct Tables {
  const ElfW(Rela) * jumps = nullptr, *others = nullptr;
  size_t jumpBytes = 0, otherBytes = 0;
  const ElfW(Sym) * symbols = nullptr;
  const char* names = nullptr;
};

void ReplaceIn(const dl_phdr_info& object, const ElfW(Rela) * entries, size_t bytes,
               const Tables& tables) {
  for (size_t i = 0; i < bytes / sizeof(ElfW(Rela)); ++i) {
    const auto type = ELF64_R_TYPE(entries[i].r_info);
    if (type != R_X86_64_JUMP_SLOT && type != R_X86_64_GLOB_DAT) continue;
    const char* name = tables.names + tables.symbols[ELF64_R_SYM(entries[i].r_info)].st_name;
    for (const Replacement& replacement : replacements) {
      if (std::strcmp(name, replacement.name) != 0) continue;
      WriteEntry(reinterpret_cast<void**>(object.dlpi_addr + entries[i].r_offset),
                 replacement.address);
    }
  }
}

/// The sanitizers' runtime libraries and the loader need what they ask for. libtiff 4.5 itself
/// reads through a null pointer when there is no memory for a directory, and libwebp 1.2 frees what
/// it never allocated; their own calls are let through.
bool IsLeftAlone(const char* name) {
  for (const char* part :
       {"libasan", "libubsan", "liblsan", "ld-linux", "linux-vdso", "libtiff", "libwebp"}) {
    if (std::strstr(name, part) != nullptr) return true;
  }
  return false;
}

int ReplaceInObject(dl_phdr_info* object, size_t, void*) {
  if (IsLeftAlone(object->dlpi_name)) return 0;
  Tables tables;
  for (int i = 0; i < object->dlpi_phnum; ++i) {
    if (object->dlpi_phdr[i].p_type != PT_DYNAMIC) continue;
    const auto* entry =
        reinterpret_cast<const ElfW(Dyn)*>(object->dlpi_addr + object->dlpi_phdr[i].p_vaddr);
    for (; entry->d_tag != DT_NULL; ++entry) {
      const auto address = entry->d_un.d_ptr;
      if (entry->d_tag == DT_JMPREL) tables.jumps = reinterpret_cast<const ElfW(Rela)*>(address);
      if (entry->d_tag == DT_PLTRELSZ) tables.jumpBytes = entry->d_un.d_val;
      if (entry->d_tag == DT_RELA) tables.others = reinterpret_cast<const ElfW(Rela)*>(address);
      if (entry->d_tag == DT_RELASZ) tables.otherBytes = entry->d_un.d_val;
      if (entry->d_tag == DT_SYMTAB) tables.symbols = reinterpret_cast<const ElfW(Sym)*>(address);
      if (entry->d_tag == DT_STRTAB) tables.names = reinterpret_cast<const char*>(address);
    }
  }
  if (tables.symbols == nullptr || tables.names == nullptr) return 0;
  if (tables.jumps != nullptr) ReplaceIn(*object, tables.jumps, tables.jumpBytes, tables);
  if (tables.others != nullptr) ReplaceIn(*object, tables.others, tables.otherBytes, tables);
  return 0;
}

void* NewOrNull(size_t size) {
  return Refuse(allocations) ? nullptr : Real().malloc(size == 0 ? 1 : size);
}

// NOLINTEND(performance-no-int-to-ptr)

/// Lets who has memory to spare give some away, or throws.
void AskForMemory() {
  const std::new_handler handler = std::get_new_handler();
  if (handler == nullptr) throw std::bad_alloc();
  handler();
}

void* New(size_t size) {
  for (;; AskForMemory()) {
    if (void* memory = NewOrNull(size)) return memory;
  }
}

void* NewAligned(size_t size, std::align_val_t alignment) {
  for (;; AskForMemory()) {
    void* memory = nullptr;
    if (!Refuse(allocations) &&
        Real().posix_memalign(&memory, static_cast<size_t>(alignment), size == 0 ? 1 : size) == 0) {
      return memory;
    }
  }
}

}  // namespace

// The program's, and so everybody's.
void* operator new(size_t size) { return New(size); }
void* operator new[](size_t size) { return New(size); }
void* operator new(size_t size, const std::nothrow_t&) noexcept { return NewOrNull(size); }
void* operator new[](size_t size, const std::nothrow_t&) noexcept { return NewOrNull(size); }
void* operator new(size_t size, std::align_val_t alignment) { return NewAligned(size, alignment); }
void* operator new[](size_t size, std::align_val_t alignment) {
  return NewAligned(size, alignment);
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, size_t) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, size_t, std::align_val_t) noexcept { std::free(memory); }
void operator delete[](void* memory, size_t, std::align_val_t) noexcept { std::free(memory); }

namespace kelto::test {

FailNth::FailNth(FailingCall kind, int64_t n)
    : plan_(kind == FailingCall::kAllocation ? &allocations : &files) {
  // Each time: libraries may have been loaded since.
  Real();
  ::dl_iterate_phdr(ReplaceInObject, nullptr);
  *static_cast<Plan*>(plan_) = {.active = true, .count = 0, .failing = n, .fired = false};
}

FailNth::~FailNth() { Stop(); }

void FailNth::Stop() { static_cast<Plan*>(plan_)->active = false; }

void FailNth::Resume() { static_cast<Plan*>(plan_)->active = true; }

bool FailNth::Fired() const { return static_cast<Plan*>(plan_)->fired; }

int64_t FailNth::Count() const { return static_cast<Plan*>(plan_)->count; }

}  // namespace kelto::test
