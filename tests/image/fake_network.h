// A network of mapped drives and shares in place of the system's.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/win32.h"

namespace kelto::test {

/// Replaces the network and dialog calls while it lives; one at a time.
class FakeNetwork {
 public:
  FakeNetwork();
  ~FakeNetwork();
  FakeNetwork(const FakeNetwork&) = delete;
  FakeNetwork& operator=(const FakeNetwork&) = delete;

  std::map<std::string, std::string> universalNames;          ///< by local path
  std::vector<std::pair<std::wstring, std::wstring>> shares;  ///< name, local path
  std::wstring computer = L"HOST";
  size_t sharesPerCall = 100;  ///< above it the enumeration goes on with another call
  NET_API_STATUS shareError = 0, computerError = 0;
  int shareCallsBeforeError = 0;  ///< enumeration calls that `shareError` spares

  int universalNameCalls = 0, shareCalls = 0;
  int openBuffers = 0;  ///< handed out and not yet freed

  /// What the user picks in the file dialog; empty cancels.
  std::string pick;
  int dialogs = 0;
  std::string offered, title;  ///< of the last dialog
  OPENFILENAMEA record = {};   ///< of the last dialog
};

}  // namespace kelto::test
