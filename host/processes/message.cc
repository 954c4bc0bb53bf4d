#include "host/processes/message.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <utility>

#include "host/terminal/interrupt.h"

namespace kelto::host {
namespace {

/// Storyboards are the longest, with all pictures in them.
constexpr uint32_t kMaxMessageBytes = 256 << 20;

struct Header {
  uint32_t kind;
  uint32_t size;
};

/// Waits until there is something to read. A signal that came just before the wait is seen when
/// this short time is over.
bool WaitReadable(int socket) {
  constexpr int kMilliseconds = 100;
  pollfd waiting{socket, POLLIN, 0};
  while (InterruptSignal() == 0) {
    const int count = poll(&waiting, 1, kMilliseconds);
    if (count > 0) return true;
    if (count < 0 && errno != EINTR) return false;
  }
  return false;
}

}  // namespace

Channel::~Channel() { close(socket_); }

bool Channel::Send(const Message& message) {
  const Header header{static_cast<uint32_t>(message.kind),
                      static_cast<uint32_t>(message.text.size())};
  std::string bytes(sizeof header, '\0');
  std::memcpy(bytes.data(), &header, sizeof header);
  bytes += message.text;
  const char* next = bytes.data();
  for (size_t left = bytes.size(); left > 0;) {
    const ssize_t sent = send(socket_, next, left, MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR && InterruptSignal() == 0) continue;
    if (sent < 0) return false;
    next += sent;
    left -= static_cast<size_t>(sent);
  }
  return true;
}

std::optional<Message> Channel::Receive() {
  Header header{};
  if (!Read(&header, sizeof header)) return std::nullopt;
  // A process that a file has taken over may send anything; its line is as good as closed.
  if (header.size > kMaxMessageBytes || header.kind > static_cast<uint32_t>(MessageKind::kResult)) {
    return std::nullopt;
  }
  Message message{static_cast<MessageKind>(header.kind), std::string(header.size, '\0')};
  if (!Read(message.text.data(), message.text.size())) return std::nullopt;
  return message;
}

bool Channel::Read(void* to, size_t size) {
  auto* next = static_cast<char*>(to);
  while (size > 0) {
    if (!WaitReadable(socket_)) return false;
    const ssize_t count = recv(socket_, next, size, 0);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    next += count;
    size -= static_cast<size_t>(count);
  }
  return true;
}

}  // namespace kelto::host
