// Project files of any text: read, or refused in one line; what is read is saved without loss.
#include "fuzz/byte_source.h"
#include "tests/host/project/check_project_text.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  return kelto::test::CheckProjectText(data, size);
}
