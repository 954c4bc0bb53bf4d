// A build that shows no pictures on terminals.
#include "host/live/live_picture.h"

namespace kelto::host {

class LivePicture::Screen {};

bool CanShowLive() { return false; }
Libraries LiveLibraries() { return {}; }
LivePicture::LivePicture(LiveUse) {}
LivePicture::~LivePicture() = default;
void LivePicture::Show(const FrameView&, PixelLayout, double) {}

}  // namespace kelto::host
