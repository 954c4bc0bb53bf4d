// What the command says of a file that it refuses.
#pragma once

#include <string>

#include "fuzz/byte_source.h"
#include "host/base/error.h"

namespace kelto::fuzz {

/// Does `work`; an Error is one line that begins with the file's name.
template <typename Work>
void RunOrRefuse(const std::string& path, const Work& work) {
  try {
    work();
  } catch (const host::Error& error) {
    const std::string line = error.what();
    Require(line.starts_with(path + ": "), "a refusal names the file");
    Require(line.find('\n') == std::string::npos, "a refusal is one line");
  }
}

}  // namespace kelto::fuzz
