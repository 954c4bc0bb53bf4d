// A picture's file as the imaging component reads it.
#pragma once

#include "runtime/stills/still_file.h"
#include "runtime/stills/wic/com.h"

#include <objidl.h>

namespace kelto::stills {

// Interfaces of COM have no virtual destructors: objects delete themselves.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// Read-only stream over a StillFile, which it does not own and which must outlive it.
class FileStream final : public IStream {
 public:
  explicit FileStream(StillFile& file) : file_(file) {}
  FileStream(const FileStream&) = delete;
  FileStream& operator=(const FileStream&) = delete;

  /// Whether somebody wanted bytes where the file had ended: which distinguishes truncated files
  /// from otherwise damaged ones, since decoders also read ahead of need.
  bool wanted_more() const { return wanted_more_; }

  HRESULT WINAPI QueryInterface(REFIID id, void** object) override;
  ULONG WINAPI AddRef() override;
  ULONG WINAPI Release() override;
  HRESULT WINAPI Read(void* to, ULONG count, ULONG* got) override;
  HRESULT WINAPI Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) override;
  HRESULT WINAPI Stat(STATSTG* status, DWORD flags) override;

  // A picture is only read.
  HRESULT WINAPI Write(const void*, ULONG, ULONG*) override { return STG_E_ACCESSDENIED; }
  HRESULT WINAPI SetSize(ULARGE_INTEGER) override { return STG_E_ACCESSDENIED; }
  HRESULT WINAPI CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override {
    return E_NOTIMPL;
  }
  HRESULT WINAPI Commit(DWORD) override { return S_OK; }
  HRESULT WINAPI Revert() override { return S_OK; }
  HRESULT WINAPI LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
  HRESULT WINAPI UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
  HRESULT WINAPI Clone(IStream**) override { return E_NOTIMPL; }

 private:
  ~FileStream() = default;

  StillFile& file_;
  LONG references_ = 1;
  bool wanted_more_ = false;
};

#pragma GCC diagnostic pop

}  // namespace kelto::stills
