// Changes to JSON texts that people lay out by hand.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace kelto::host {

/// `text`, which ParseJson reads, changed so that it parses to `wanted`. Only values that differ
/// are written anew: the order of fields, indentation, line ends and the way numbers are written
/// stay as they are everywhere else. New fields come last in their object; entries of an array are
/// kept from both its ends. Throws Error where `text` is not JSON, or `wanted` holds a text that is
/// not UTF-8.
std::string PatchedJson(const std::string& text, const nlohmann::ordered_json& wanted);

/// The same where `text` has been parsed already, as `current`; reading a long text takes longer
/// than changing it.
std::string PatchedJson(const std::string& text, const nlohmann::ordered_json& current,
                        const nlohmann::ordered_json& wanted);

}  // namespace kelto::host
