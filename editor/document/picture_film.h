// A picture of a show, changed as if it were a film of its own.
#pragma once

#include <functional>
#include <nlohmann/json_fwd.hpp>

namespace kelto::editor {

/// Applies `change` to the film of picture `index`, or the last there is, and writes what has
/// become different back into `show`: the film's shape, its sound and parameters that the picture
/// does not have of its own are the show's, everything else is the picture's. Throws Error for what
/// a picture of a show cannot have.
void ChangePicture(nlohmann::ordered_json& show, size_t index,
                   const std::function<void(nlohmann::ordered_json& film)>& change);

}  // namespace kelto::editor
