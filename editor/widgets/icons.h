// Icons of the player, drawn in the colours of the window.
#pragma once

#include <QIcon>
#include <QPalette>

namespace kelto::editor {

enum class IconShape { kPlay, kPause, kFirst, kLast, kBack, kOn, kLoop, kSafeArea, kFullScreen };

QIcon MakeIcon(IconShape shape, const QPalette& palette);

}  // namespace kelto::editor
