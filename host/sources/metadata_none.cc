// A build without the libraries that read metadata.
#include "host/sources/metadata.h"

namespace kelto::host {

PhotoNotes ReadNotes(const std::string&) { return {}; }

PhotoNotes LookAtNotes(const std::string&) { return {}; }

}  // namespace kelto::host
