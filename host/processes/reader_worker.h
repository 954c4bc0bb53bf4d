// A worker that reads files from strangers.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/processes/worker.h"

namespace kelto::host {

/// A process in the sandbox that reads `file` and `others`, writes nothing, and hands its results
/// to its owner one after the other.
class ReaderWorker {
 public:
  /// `work` sends each result as a message of MessageKind::kDone.
  ReaderWorker(const std::string& file, const std::vector<std::string>& others,
               const std::function<void(Channel&)>& work);

  /// Waits for the next result. Throws what `work` threw, as UsageError or Error; Error that names
  /// the file where the process has ended otherwise; and Error for an interrupt.
  std::string Next();

 private:
  std::string file_;
  Worker worker_;
};

}  // namespace kelto::host
