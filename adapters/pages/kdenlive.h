// The page in Kdenlive: one XML file of effects/.
#pragma once

#include <string>

#include "adapters/pages/controls.h"

namespace kelto::pages {

/// The page's text, UTF-8. Kdenlive translates pages from its own catalogue alone, so that each
/// language is a file of its own.
std::string KdenlivePage(Language language);

}  // namespace kelto::pages
