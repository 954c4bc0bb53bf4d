// What a process and its workers send each other, through a socket.
#pragma once

#include <optional>
#include <string>

namespace kelto::host {

enum class MessageKind : unsigned char {
  kDone,     ///< worker: a piece of work is done; owner: its place is free again
  kConsole,  ///< worker: a line for the user
  kMemory,   ///< worker: bytes that it wants, in decimal; the owner answers kDone when it may
  kShare,    ///< worker: how much of its work is done, in percent
  kFailed,   ///< worker: the text of an Error; it ends
  kMisused,  ///< worker: the text of a UsageError; it ends
  kResult,   ///< worker: what came of its task, before it is done
};

struct Message {
  MessageKind kind = MessageKind::kDone;
  std::string text;
};

/// One end of a stream socket. The end is closed with the object.
class Channel {
 public:
  explicit Channel(int socket) : socket_(socket) {}
  ~Channel();
  Channel(const Channel&) = delete;
  Channel& operator=(const Channel&) = delete;

  /// False when the other side has gone.
  bool Send(const Message& message);
  /// Waits for a message; none when the other side has gone, or when a signal was noted (see
  /// InterruptSignal) while waiting.
  std::optional<Message> Receive();
  int Socket() const { return socket_; }

 private:
  bool Read(void* to, size_t size);

  int socket_;
};

}  // namespace kelto::host
