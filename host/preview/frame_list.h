// Frames' facts as text: a table for people, CSV or JSON for programs.
#pragma once

#include <cstdio>

#include "host/preview/frame_facts.h"

namespace kelto::host {

enum class ListForm { kTable, kCsv, kJson };

/// Writes every frame of the inspector's plan to `out`, both fields of an interlaced film's frames.
/// Numbers in CSV and JSON read back as exactly what they were. Throws Error when writing fails or
/// the command is interrupted.
void WriteFrameList(FrameInspector& inspector, const Photo& photo, ListForm form, std::FILE* out);

}  // namespace kelto::host
