// A tiny picture in each form that the effect reads, to try whether this machine can.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace kelto::host {

struct SampleStill {
  const char* form;    ///< as people call it
  const char* ending;  ///< of its files, without the dot
  const char* base64;
};

std::span<const SampleStill> SampleStills();

std::vector<uint8_t> BytesOf(const SampleStill& still);

}  // namespace kelto::host
