// The plug-in's record and its one entry, which hosts call with the name of an action.
#pragma once

#include "platform/openfx.h"

namespace kelto::openfx {

ofx::Plugin& ThePlugin();

class Instance;
/// What the plug-in made of an effect's handle; null before it is made, or for none of its.
Instance* InstanceOf(ofx::Effect effect);

}  // namespace kelto::openfx
