// Records without pointers as bytes, for a process of the same build.
#pragma once

#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

#include "host/base/error.h"

namespace kelto::editor {

template <typename Record>
std::string BytesOf(const Record& record) {
  static_assert(std::is_trivially_copyable_v<Record>);
  return {reinterpret_cast<const char*>(&record), sizeof record};
}

/// The record at the beginning of `bytes`. Throws Error where they are too few.
template <typename Record>
Record FromBytes(std::string_view bytes) {
  static_assert(std::is_trivially_copyable_v<Record>);
  if (bytes.size() < sizeof(Record)) throw host::Error("the preview sent what is no message");
  Record record;
  std::memcpy(&record, bytes.data(), sizeof record);
  return record;
}

}  // namespace kelto::editor
