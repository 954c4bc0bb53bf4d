// Icons of the player, drawn in the colours of the window.
#pragma once

#include <QIcon>
#include <QPalette>
#include <map>
#include <tuple>

namespace kelto::editor {

enum class IconShape { kPlay, kPause, kFirst, kLast, kBack, kOn, kLoop, kSafeArea, kFullScreen };

/// Draws an icon once for each colour: Qt 6.4 keeps the name of every pixmap that it has painted,
/// for as long as the program runs.
class Icons {
 public:
  const QIcon& Of(IconShape shape, const QPalette& palette);

 private:
  std::map<std::tuple<IconShape, QRgb, QRgb>, QIcon> drawn_;  ///< enabled, disabled
};

}  // namespace kelto::editor
