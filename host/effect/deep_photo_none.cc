// Systems whose decoders give eight bits without transparency.
#include "host/base/error.h"
#include "host/effect/deep_photo.h"

namespace kelto::host {

void FindDepth(Photo&) {}
bool IsTransparent(const Photo&) { return false; }
DeepPicture ReadDeepPhoto(const Photo& photo) {
  throw Error(photo.given + ": this command reads eight bits of photographs");
}

}  // namespace kelto::host
