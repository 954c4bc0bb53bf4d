// The three streams that a program expects to be open.
#pragma once

namespace kelto::host {

/// Opens those of the standard streams that whoever started the program closed. Their numbers would
/// go to the first files opened, and what is meant for a stream would end up in a film. To be
/// called before any file is opened.
void OpenStandardStreams();

}  // namespace kelto::host
