// Many photos looked at while the window goes on.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "editor/preview/photo_size.h"

class QWidget;

namespace kelto::editor {

/// What `find` finds of `photos`, in a thread of its own. Where that takes long, a dialog above
/// `parent` shows how far it is and cancels it. Throws what `find` throws.
FoundSizes FindWithDialog(
    const std::vector<std::string>& photos,
    const std::function<FoundSizes(const std::vector<std::string>&, const SizesProgress&)>& find,
    QWidget* parent);

}  // namespace kelto::editor
