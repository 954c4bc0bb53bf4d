// The operands of commands that take many pictures.
#pragma once

#include <string>
#include <vector>

#include "host/jobs/picture_list.h"

namespace CLI {
class App;
}

namespace kelto::host {

/// Declares the pictures that `command` takes, to be parsed into `inputs`, and --order into
/// `order`.
void DeclarePictures(CLI::App& command, std::vector<std::string>& inputs, std::string& order);

/// What --order asks for; the usual order where it was not given. Throws UsageError.
PictureOrder OrderAsked(const std::string& order);

}  // namespace kelto::host
