// The command, run as other programs run it.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace kelto::test {

struct CommandResult {
  unsigned long code = 0;
  std::string out, err;  ///< the bytes on the two streams
};

/// Runs `program` with `words` (UTF-8, as everything here) in `folder`, with `variables` set in its
/// environment, and waits for its end.
CommandResult RunProgram(const std::wstring& program, const std::vector<std::string>& words,
                         const std::wstring& folder,
                         const std::map<std::string, std::string>& variables = {});

/// The same of the command that was built.
CommandResult RunCommand(const std::vector<std::string>& words, const std::wstring& folder,
                         const std::map<std::string, std::string>& variables = {});

}  // namespace kelto::test
