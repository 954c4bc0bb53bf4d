// Frames' facts as text: a table for people, CSV or JSON for programs.
#pragma once

#include <functional>
#include <string>

#include "host/facts/frame_facts.h"

namespace kelto::host {

enum class ListForm { kTable, kCsv, kJson };

/// Writes every frame of the inspector's plan, both fields of an interlaced film's frames, a piece
/// of text at a time. Numbers in CSV and JSON read back as exactly what they were. Throws Error
/// when the command is interrupted, and what `write` throws.
void WriteFrameList(FrameInspector& inspector, const Photo& photo, ListForm form,
                    const std::function<void(const std::string&)>& write);

}  // namespace kelto::host
