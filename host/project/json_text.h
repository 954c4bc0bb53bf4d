// JSON read strictly: texts that come from anywhere.
#pragma once

#include <cstddef>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace kelto::host {

/// Bytes of a project file at most.
constexpr size_t kMaxJsonText = size_t{16} << 20;
/// Objects and arrays within each other at most.
constexpr int kMaxJsonDepth = 16;
/// Bytes of a text within it at most; no path is longer.
constexpr size_t kMaxJsonString = 4096;

/// Entries of an object or array at most; no list of a project may hold more.
constexpr size_t kMaxJsonEntries = 10000;
/// Values, objects and arrays of a file altogether: four parameters with as many keys as there may
/// be. Checking that many takes about a second.
constexpr size_t kMaxJsonValues = 250000;

/// Parses `text`. Throws Error where it is not JSON, says one thing twice or passes a limit; what
/// follows is not looked at.
nlohmann::json ParseJson(const std::string& text);

}  // namespace kelto::host
