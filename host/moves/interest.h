// Where a picture catches the eye.
#pragma once

#include <opencv2/core.hpp>

#include "host/moves/auto_move.h"

namespace kelto::host {

/// How eye-catching each place of a picture is: one float for each of some 64 x 64 places, of the
/// picture's shape, none below 0, all 0 where nothing differs. It is what remains of lightness and
/// two axes of colour when what their spectrum has in common with those of all pictures is
/// subtracted (Hou and Zhang, Saliency Detection: A Spectral Residual Approach, 2007), of the
/// picture without the jumps between its opposite edges (Moisan, Periodic Plus Smooth Image
/// Decomposition, 2011), which would catch the eye otherwise. What is in focus counts more, up to
/// three times what is not, and the middle up to four times what a corner does: people focus on
/// what they mean and point the camera at it.
cv::Mat InterestOf(const PhotoPixels& pixels);

}  // namespace kelto::host
