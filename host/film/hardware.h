// Encoders that a machine has in hardware.
#pragma once

#include <span>
#include <string>
#include <vector>

namespace kelto::host {

/// Words for them, as --encoder takes them.
std::span<const char* const> HardwareWords();

/// What has to be there for one of HardwareWords to run.
const char* HardwareNeed(const std::string& word);

/// The files of the devices, and folders of them, that one of HardwareWords works through; none
/// where `word` is empty.
std::vector<std::string> DevicesOf(const std::string& word);

/// The word of --encoder: one of HardwareWords; empty for "software", which is usual. Throws
/// UsageError.
std::string ParseEncoder(const std::string& word);

}  // namespace kelto::host
