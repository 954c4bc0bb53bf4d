#include "tests/image/fake_network.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace kelto::test {
namespace {

FakeNetwork* network = nullptr;

HWND KELTO_WINAPI Desktop() { return static_cast<HWND>(static_cast<void*>(network)); }

BOOL KELTO_WINAPI OpenFileName(OPENFILENAMEA* dialog) {
  ++network->dialogs;
  network->record = *dialog;
  network->offered = dialog->lpstrFile;
  network->title = dialog->lpstrTitle;
  if (network->pick.empty()) return 0;
  std::strncpy(dialog->lpstrFile, network->pick.c_str(), dialog->nMaxFile - 1);
  return 1;
}

DWORD KELTO_WINAPI UniversalName(const char* path, DWORD level, void* buffer, DWORD* size) {
  ++network->universalNameCalls;
  const auto found = network->universalNames.find(path);
  if (level != UNIVERSAL_NAME_INFO_LEVEL || found == network->universalNames.end()) return 2250;
  const std::string& name = found->second;
  const size_t needed = sizeof(UNIVERSAL_NAME_INFOA) + name.size() + 1;
  if (*size < needed) {
    *size = static_cast<DWORD>(needed);
    return ERROR_MORE_DATA;
  }
  auto* info = static_cast<UNIVERSAL_NAME_INFOA*>(buffer);
  char* text = static_cast<char*>(buffer) + sizeof(UNIVERSAL_NAME_INFOA);
  std::memcpy(text, name.c_str(), name.size() + 1);
  info->lpUniversalName = text;
  return NO_ERROR;
}

uint8_t* Bytes(void* buffer) {
  ++network->openBuffers;
  return static_cast<uint8_t*>(buffer);
}

NET_API_STATUS KELTO_WINAPI ShareEnum(wchar_t* server, DWORD level, uint8_t** buffer, DWORD length,
                                      DWORD* count, DWORD* total, DWORD* resume) {
  ++network->shareCalls;
  if (server != nullptr || level != 2 || length != MAX_PREFERRED_LENGTH) return 87;
  const bool spared = network->shareCalls <= network->shareCallsBeforeError;
  if (network->shareError != NO_ERROR && !spared) return network->shareError;  // nothing is written
  const size_t left = network->shares.size() - *resume;
  const size_t given = std::min(left, network->sharesPerCall);
  auto* entries = static_cast<SHARE_INFO_2*>(::operator new(sizeof(SHARE_INFO_2) * (given + 1)));
  for (size_t i = 0; i < given; ++i) {
    auto& [name, path] = network->shares[*resume + i];
    entries[i] = {};
    entries[i].shi2_netname = name.data();
    entries[i].shi2_path = path.data();
  }
  *buffer = Bytes(entries);
  *count = static_cast<DWORD>(given);
  *total = static_cast<DWORD>(left);
  *resume += static_cast<DWORD>(given);
  return given < left ? static_cast<NET_API_STATUS>(ERROR_MORE_DATA) : NO_ERROR;
}

NET_API_STATUS KELTO_WINAPI Workstation(wchar_t* server, DWORD level, uint8_t** buffer) {
  if (server != nullptr || level != 100) return 124;
  if (network->computerError != NO_ERROR) return network->computerError;
  auto* info = static_cast<WKSTA_INFO_100*>(::operator new(sizeof(WKSTA_INFO_100)));
  *info = {};
  info->wki100_computername = network->computer.data();
  *buffer = Bytes(info);
  return NO_ERROR;
}

NET_API_STATUS KELTO_WINAPI FreeBuffer(void* buffer) {
  --network->openBuffers;
  ::operator delete(buffer);
  return NO_ERROR;
}

}  // namespace

FakeNetwork::FakeNetwork() {
  network = this;
  win32().GetDesktopWindow = Desktop;
  win32().GetOpenFileNameA = OpenFileName;
  win32().WNetGetUniversalNameA = UniversalName;
  win32().NetShareEnum = ShareEnum;
  win32().NetWkstaGetInfo = Workstation;
  win32().NetApiBufferFree = FreeBuffer;
}

FakeNetwork::~FakeNetwork() {
  win32() = DefaultWin32Calls();
  network = nullptr;
}

}  // namespace kelto::test
