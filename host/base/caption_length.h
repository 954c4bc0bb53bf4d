// How long captions and titles are at the most.
#pragma once

#include <cstddef>

namespace kelto::host {

/// In bytes of UTF-8: more than a frame has room for.
constexpr size_t kLongestCaption = 2000;

}  // namespace kelto::host
