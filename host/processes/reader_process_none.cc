// Systems where a process cannot begin as a copy of another: all work is done in this one.
#include "host/processes/reader_process.h"
#include "host/sandbox/sandbox.h"

namespace kelto::host {

std::string ReadApart(const std::string& file, const std::vector<std::string>& others,
                      const std::function<std::string()>& work) {
  std::vector<std::string> reads = others;
  reads.push_back(file);
  EnterSandbox({reads, {}});
  return work();
}

}  // namespace kelto::host
