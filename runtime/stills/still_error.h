// Why a picture could not be opened or drawn, on its way from a decoder to the importer.
#pragma once

#include <string>
#include <utility>

#include "platform/still_importer.h"

namespace kelto::stills {

/// Thrown inside this folder and turned into a code and a line of text where it ends.
struct StillError {
  StillError(OSErr error_code, std::string error_reason)
      : code(error_code), reason(std::move(error_reason)) {}
  OSErr code;
  std::string reason;  ///< without the file's name; one line
};

}  // namespace kelto::stills
