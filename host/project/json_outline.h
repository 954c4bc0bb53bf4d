// Where the values of a JSON text stand in it.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace kelto::host {

/// A value: the bytes from `begin` to `end`, and what it holds in the order of the text.
struct JsonSpan {
  size_t begin = 0, end = 0;
  /// Of the entries of an object or array. Those of objects begin at their name.
  struct Entry;
  std::vector<Entry> entries;
};
struct JsonSpan::Entry {
  size_t begin = 0;
  JsonSpan value;
};

/// `text` must be JSON: it is scanned, not checked.
JsonSpan OutlineOf(const std::string& text);

}  // namespace kelto::host
