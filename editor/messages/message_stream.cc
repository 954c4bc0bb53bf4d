#include "editor/messages/message_stream.h"

#include <cstring>

#include "host/base/error.h"

namespace kelto::editor {
namespace {

/// Both ends run on one machine, so its order of bytes serves.
struct Head {
  uint32_t kind;
  uint32_t unused;
  uint64_t size;
};

}  // namespace

std::string MessageHead(MessageKind kind, size_t bodySize) {
  const Head head{static_cast<uint32_t>(kind), 0, bodySize};
  std::string bytes(sizeof head, '\0');
  std::memcpy(bytes.data(), &head, sizeof head);
  return bytes;
}

void MessageReader::Add(std::string_view bytes) {
  if (begin_ == bytes_.size()) {
    bytes_.clear();
    begin_ = 0;
  }
  bytes_.append(bytes);
}

std::optional<StreamMessage> MessageReader::Next() {
  Head head;
  if (bytes_.size() - begin_ < sizeof head) return std::nullopt;
  std::memcpy(&head, bytes_.data() + begin_, sizeof head);
  const bool known = head.kind >= static_cast<uint32_t>(MessageKind::kPlan) &&
                     head.kind <= static_cast<uint32_t>(MessageKind::kFailed);
  if (!known || head.size > kMaxMessage) throw host::Error("the preview sent what is no message");
  if (bytes_.size() - begin_ - sizeof head < head.size) {
    bytes_.reserve(begin_ + sizeof head + head.size);
    return std::nullopt;
  }
  StreamMessage message{static_cast<MessageKind>(head.kind),
                        bytes_.substr(begin_ + sizeof head, head.size)};
  begin_ += sizeof head + head.size;
  return message;
}

}  // namespace kelto::editor
