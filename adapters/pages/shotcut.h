// The page in Shotcut: meta.qml, by which the editor lists the filter and its keyframes, and
// ui.qml, the page itself. Both choose English or German by the user's language.
#pragma once

#include <string>

namespace kelto::pages {

std::string ShotcutMeta();
std::string ShotcutPage();

}  // namespace kelto::pages
