// What the plug-in is and which clips and parameters it has. The parameters are those of its pages
// in video editors, under the same names.
#pragma once

#include "platform/openfx.h"

namespace kelto::openfx {

ofx::Status Describe(ofx::Effect effect);
ofx::Status DescribeInContext(ofx::Effect effect, ofx::Properties inArgs);

}  // namespace kelto::openfx
