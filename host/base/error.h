// How the command fails: an exception whose text is the one line that the user reads.
#pragma once

#include <stdexcept>

namespace kelto::host {

/// Something could not be done. The text names the file or option, says what was found and, where
/// it helps, what to do; it has no "kelto:" in front and no full stop behind.
class Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The command line asks for something that cannot be.
class UsageError : public Error {
 public:
  using Error::Error;
};

/// Something could not be done, and the user knows already.
class ToldError : public Error {
 public:
  ToldError() : Error("some films could not be made") {}
};

}  // namespace kelto::host
