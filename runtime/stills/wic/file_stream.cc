#include "runtime/stills/wic/file_stream.h"

namespace kelto::stills {

HRESULT FileStream::QueryInterface(REFIID id, void** object) {
  if (object == nullptr) return E_POINTER;
  const bool known =
      id == __uuidof(IUnknown) || id == __uuidof(ISequentialStream) || id == __uuidof(IStream);
  *object = known ? static_cast<IStream*>(this) : nullptr;
  if (!known) return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

// The component's own threads may hold references.
ULONG FileStream::AddRef() { return static_cast<ULONG>(InterlockedIncrement(&references_)); }

ULONG FileStream::Release() {
  const LONG left = InterlockedDecrement(&references_);
  if (left == 0) delete this;
  return static_cast<ULONG>(left);
}

HRESULT FileStream::Read(void* to, ULONG count, ULONG* got) {
  const size_t read = file_.Read(to, count);
  if (read == 0 && count > 0) wanted_more_ = true;
  if (got != nullptr) *got = static_cast<ULONG>(read);
  return read == count ? S_OK : S_FALSE;
}

HRESULT FileStream::Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) {
  int64_t from = 0;
  if (origin == STREAM_SEEK_CUR) from = static_cast<int64_t>(file_.Position());
  if (origin == STREAM_SEEK_END) from = static_cast<int64_t>(file_.size());
  const int64_t to = from + move.QuadPart;
  if (to < 0 || !file_.Seek(static_cast<uint64_t>(to))) return STG_E_INVALIDFUNCTION;
  if (static_cast<uint64_t>(to) > file_.size()) wanted_more_ = true;
  if (position != nullptr) position->QuadPart = static_cast<uint64_t>(to);
  return S_OK;
}

HRESULT FileStream::Stat(STATSTG* status, DWORD) {
  if (status == nullptr) return STG_E_INVALIDPOINTER;
  *status = {};
  status->type = STGTY_STREAM;
  status->cbSize.QuadPart = file_.size();
  return S_OK;
}

}  // namespace kelto::stills
