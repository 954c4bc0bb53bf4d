// Ctrl-C and kill: noted, so that the command can clear up before it goes.
#pragma once

namespace kelto::host {

/// From now on an interrupt, termination or hang-up signal is only noted (the same one again, two
/// seconds later or more, ends the process at once), and a reader that went away or a file beyond
/// the size allowed is an ordinary write error.
void CatchInterrupts();

/// The signal noted, 0 when there was none.
int InterruptSignal();

/// Ends the process as `signal` would have, so that whoever started it sees that.
[[noreturn]] void DieOf(int signal);

}  // namespace kelto::host
