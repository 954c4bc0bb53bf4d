#include "host/terminal/library_text.h"

namespace kelto::host {

struct LibraryText::Memory {};

std::FILE* ErrorStream() { return stderr; }
void HoldLibraryText() {}
void PrintLibraryText(const std::string&) {}

LibraryText::LibraryText() = default;
LibraryText::~LibraryText() = default;
void LibraryText::Attach() {}
std::vector<std::string> LibraryText::Take() { return {}; }

}  // namespace kelto::host
