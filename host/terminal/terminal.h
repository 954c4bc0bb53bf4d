// What the user sees while the command runs. Everything goes to the error stream; films may be on
// the standard output.
#pragma once

#include <functional>
#include <string>

namespace kelto::host {

/// How the command reports what it does.
enum class Reporting {
  kUsual,  ///< progress and messages as lines
  kQuiet,  ///< failures only
  kJson,   ///< events, see events.h
};
void SetReporting(Reporting reporting);
Reporting CurrentReporting();

/// Writes `line` over the progress line that stands there, if any.
void DrawProgress(const std::string& line);
/// Draws a picture above the progress line, or a new one in its place. `text` has the terminal draw
/// it from the cursor's place to the right and down, over less than `rows` rows; `remove`, with the
/// cursor on it, has it forget the picture where erasing the rows is not enough. For terminals that
/// obey sequences.
void DrawPicture(const std::string& text, int rows, const std::string& remove);
/// Takes the progress line away, and the picture above it.
void ClearProgress();

/// Prints "kelto: " and `text`, one line (see ShownText), clear of the progress line. Not when
/// quiet.
void PrintMessage(const std::string& text);
/// The same for what went wrong; always.
void PrintFailure(const std::string& text);

/// Prints, like a message, what makes a film other than was meant but does not keep it from being
/// made. Throws it as Error instead after SetStrict(true).
void Warn(const std::string& text);
void SetStrict(bool strict);
bool IsStrict();

/// Where PrintMessage sends its texts instead; an empty function restores it.
void SetMessageSink(std::function<void(const std::string&)> sink);

bool StandardOutputIsTerminal();
/// Whether the error stream is a terminal that can draw over a line; one of kind "dumb" cannot.
bool StandardErrorDraws();
/// The width of that terminal in characters, 80 where it does not say.
int StandardErrorColumns();

}  // namespace kelto::host
