// What the user sees while the command runs. Everything goes to the error stream; films may be on
// the standard output.
#pragma once

#include <cstdint>
#include <string>

namespace kelto::host {

/// Shows how far a film is, in one line that is written over, when the error stream is a terminal.
void ShowProgress(int32_t done, int32_t total);
/// Takes the line away.
void ClearProgress();

/// Prints "kelto: " and `text`, one line, clear of the progress line.
void PrintMessage(const std::string& text);

bool StandardOutputIsTerminal();

}  // namespace kelto::host
