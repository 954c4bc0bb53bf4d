#include "state/module.h"

namespace kelto {

ModuleState& Module() {
  static ModuleState state;
  return state;
}

}  // namespace kelto
