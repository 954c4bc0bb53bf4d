#include "editor/messages/requests.h"

#include <algorithm>
#include <utility>

#include "editor/messages/plain_bytes.h"

namespace kelto::editor {

std::string BodyOf(const DrawRequest& request) { return BytesOf(request); }

DrawRequest DrawRequestOf(std::string_view body) { return FromBytes<DrawRequest>(body); }

std::string BodyOf(const PlanRequest& request) {
  return BytesOf(request.numbers) +
         BodyOf(Texts{request.film, request.before, request.after, request.title});
}

PlanRequest PlanRequestOf(std::string_view body) {
  PlanRequest request;
  request.numbers = FromBytes<PlanRequest::Numbers>(body);
  Texts texts = TextsOf(body.substr(sizeof request.numbers));
  if (texts.size() != 4) throw host::Error("the editor sent what is no message");
  request.film = std::move(texts[0]);
  request.before = std::move(texts[1]);
  request.after = std::move(texts[2]);
  request.title = std::move(texts[3]);
  return request;
}

std::string BodyOf(const ThumbnailRequest& request) {
  return BytesOf(request.size) + request.photo;
}

ThumbnailRequest ThumbnailRequestOf(std::string_view body) {
  const auto size = FromBytes<host::FrameSize>(body);
  return {size, std::string(body.substr(sizeof size))};
}

std::string BodyOf(const Texts& texts) {
  std::string body;
  for (const std::string& text : texts) body += text + '\0';
  return body;
}

Texts TextsOf(std::string_view body) {
  Texts texts;
  while (!body.empty()) {
    const size_t end = std::min(body.find('\0'), body.size());
    texts.emplace_back(body.substr(0, end));
    body.remove_prefix(std::min(end + 1, body.size()));
  }
  return texts;
}

}  // namespace kelto::editor
