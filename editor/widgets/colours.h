// The colours of views, the same on the canvas and on the timeline.
#pragma once

#include <QColor>

namespace kelto::editor {

/// Of view `view` of `count`: the first green, the last orange, those between blue and violet in
/// turn. All are seen on light and on dark.
QColor ViewColour(int view, int count);

/// What enlarges the photo's pixels.
QColor EnlargedColour();
/// Black or white, whichever is read better on `colour`.
QColor TextOn(const QColor& colour);

}  // namespace kelto::editor
