// The canvas's views as screen readers find them.
#pragma once

namespace kelto::editor {

/// Has every canvas made from now on report each of its views as a child of its own, with its
/// place, and as selected or not. May be called again.
void DescribeCanvasViews();

}  // namespace kelto::editor
