// Memory and files that fail on request, for this program and every library that it has loaded:
// operator new, the C library's allocations, and the opening and reading of files.
//
// Calls between shared objects go through tables of addresses; those of the calls below are
// replaced once. The C library's own inner calls and the sanitizers' are not reached.
#pragma once

#include <cstdint>

namespace kelto::test {

enum class FailingCall { kAllocation, kFile };

/// Counts the calls of a kind while it lives, and has the n-th one (from 1) fail; with n = 0 none
/// fails. One at a time.
class FailNth {
 public:
  FailNth(FailingCall kind, int64_t n);
  ~FailNth();
  FailNth(const FailNth&) = delete;
  FailNth& operator=(const FailNth&) = delete;

  /// Lets every call through from now on.
  void Stop();
  /// Lets calls through, uncounted, until Resume: for what is not to be tried.
  void Pause() { Stop(); }
  void Resume();
  /// Whether a call has failed already; otherwise there were fewer than n.
  bool Fired() const;
  /// Calls met so far.
  int64_t Count() const;

 private:
  void* plan_;
};

}  // namespace kelto::test
