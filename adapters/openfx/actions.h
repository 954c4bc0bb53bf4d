// The plug-in's record and its one entry, which hosts call with the name of an action.
#pragma once

#include "platform/openfx.h"

namespace kelto::openfx {

ofx::Plugin& ThePlugin();

}  // namespace kelto::openfx
