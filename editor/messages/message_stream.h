// Messages between the editor and the process that draws, as bytes in a pipe.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kelto::editor {

enum class MessageKind : uint32_t {
  kPlan = 1,   ///< editor: the film from now on, which is not answered
  kDraw,       ///< editor: a frame is wanted
  kWay,        ///< editor: samples of the film's way that are wanted at the most; process: the way
  kPhoto,      ///< editor: the photo is wanted, quickly or with all its pixels; process: those
  kFrame,      ///< process: a frame
  kSize,       ///< editor: the sizes of the photos of these paths are wanted; process: a size, or
               ///< kFailed, for each of them in order
  kThumbnail,  ///< editor: a photo, which becomes the film's, as a small picture that it fills
  kSound,      ///< editor: the sound of the file named, asked of a run of its own; process: peaks
  kDepth,   ///< editor: what of the photos of these paths settles whether films are drawn deep is
            ///< wanted; process: a PhotoDepth, or kFailed, for each of them in order
  kFailed,  ///< process: the sentence that says why a request cannot be met
};

struct StreamMessage {
  MessageKind kind = MessageKind::kFailed;
  std::string body;
};

/// A message's length at the most; what asks for more is no message.
inline constexpr uint64_t kMaxMessage = uint64_t{1} << 31;

/// The bytes ahead of a message's body.
std::string MessageHead(MessageKind kind, size_t bodySize);

/// Takes bytes as they come and gives messages.
class MessageReader {
 public:
  void Add(std::string_view bytes);
  /// The next message that is there as a whole. Throws Error for bytes that are none.
  std::optional<StreamMessage> Next();

 private:
  std::string bytes_;
  size_t begin_ = 0;  ///< of what has not been given
};

}  // namespace kelto::editor
