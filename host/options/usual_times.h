// How long parts of slideshows take when nothing says otherwise, in seconds.
#pragma once

namespace kelto::host {

/// Of a fade from one picture to the next.
inline constexpr double kUsualFadeSeconds = 1.0;

/// For which a title's card is seen: it has been read by then.
inline constexpr double kTitleSeconds = 4.0;

}  // namespace kelto::host
