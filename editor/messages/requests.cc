#include "editor/messages/requests.h"

#include "editor/messages/plain_bytes.h"

namespace kelto::editor {

std::string BodyOf(const DrawRequest& request) { return BytesOf(request); }

DrawRequest DrawRequestOf(std::string_view body) { return FromBytes<DrawRequest>(body); }

}  // namespace kelto::editor
