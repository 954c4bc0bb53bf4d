// Runs the command and the hosts of other makers, with the plug-ins of this build in their path.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/photo.h"

namespace kelto::test {

using Words = std::vector<std::string>;

struct Outcome {
  int code = -1;    ///< exit code, -1 when a signal ended the program
  std::string err;  ///< its standard error
  /// The plug-ins' own lines of `err`.
  std::vector<std::string> Lines() const;
};

/// Runs a program found in PATH to its end, or kills it after a long time; its standard output
/// thrown away. `pluginFolder` is what hosts search.
Outcome RunProgram(const Words& words, const std::string& pluginFolder = KELTO_FREI0R_FOLDER);

/// Frames B, G, R, A of one size, one behind the other.
struct Frames {
  int32_t width = 0, height = 0;
  std::vector<uint8_t> bytes;
  size_t Count() const { return bytes.size() / (size_t{4} * width * height); }
};

Frames ReadFrames(const std::string& path, int32_t width, int32_t height);

/// A size to render.
struct Size {
  int32_t width, height;
  std::string Text() const { return std::to_string(width) + "x" + std::to_string(height); }
};
inline constexpr Size kSizes[] = {{1920, 1080}, {854, 480}, {321, 237}};

/// What `kelto render` makes of a photograph in B, G, R, A frames.
Frames RenderByCommand(const std::string& photo, Size size, const Words& options);

/// Passes when both have the same number of frames and no colour of any pixel differs by more than
/// a level; the hosts hand B, G, R, A through without conversion.
void ExpectSameFrames(const Frames& host, const Frames& command, const std::string& what);

/// Runs melt with these words until it has written something to `out`, a few times at most. On a
/// busy machine melt 7.12 now and then ends without a frame, or never, with these plug-ins or
/// without.
Outcome RunMelt(const Words& words, const std::string& out);

/// A picture of gradients and edges, larger than the frames, in a file of this name.
void WriteTestPhoto(const std::string& path, int32_t width = 2400, int32_t height = 1500);

/// Writes a project of `photo`, which lies beside it, with several keys, another rate than usual
/// and a background: a size of 854x480, `frames` long.
void WriteTestProject(const std::string& path, const std::string& photo, int32_t frames);

inline constexpr Size kInterlacedSize{720, 576};
/// Writes a project of `photo`, which lies beside it: four interlaced frames of kInterlacedSize
/// with oblong pixels at 25 fps, a zoom and a pan by this law of motion, `fields` first.
void WriteInterlacedProject(const std::string& path, const std::string& photo,
                            const std::string& law, const std::string& fields = "top");

}  // namespace kelto::test
