#include "editor/widgets/colours.h"

namespace kelto::editor {

QColor ViewColour(int view, int count) {
  if (view == 0) return {0x2f, 0xa8, 0x66};
  if (view == count - 1) return {0xe8, 0x6a, 0x33};
  return view % 2 == 1 ? QColor(0x3d, 0x8b, 0xe6) : QColor(0x8f, 0x6a, 0xe0);
}

QColor EnlargedColour() { return {0xf2, 0xb1, 0x34}; }

QColor TextOn(const QColor& colour) {
  // Weights of lightness as ITU-R BT.709 has them.
  const double light = 0.2126 * colour.redF() + 0.7152 * colour.greenF() + 0.0722 * colour.blueF();
  return light > 0.55 ? QColor(Qt::black) : QColor(Qt::white);
}

}  // namespace kelto::editor
