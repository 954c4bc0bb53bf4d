// The form in which a terminal shows pictures.
#pragma once

namespace kelto::host {

enum class TerminalForm {
  kNone,   ///< it shows none, or nothing is known of it
  kSixel,  ///< as terminals of DEC did
  kKitty,  ///< by the graphics protocol of kitty
};

/// What is known of the terminal by the environment alone, "NAME=value" texts that end with null:
/// by the terminal's name, of which Chafa has a list. None behind screen and tmux, which pass
/// pictures on by rules of their own.
TerminalForm FormByEnvironment(char** environment);

/// Asks the terminal on the file `terminal`, which must be open for reading, what it can do
/// ("device attributes", which every terminal answers), and waits for the answer for a second at
/// the most. None where the process is not in the foreground or keys have been typed already, whose
/// letters would be taken for the answer's.
TerminalForm FormByAnswer(int terminal);

}  // namespace kelto::host
