#include "runtime/ipl/status.h"

#include <cstdio>

#include "platform/ipl.h"

namespace kelto::ipl {
namespace {

int32_t errorMode = IPL_ErrModeLeaf;
int32_t errorStatus = IPL_StsOk;

}  // namespace

void Fail(int32_t status, const char* operation, const char* found) {
  errorStatus = status;
  if (errorMode != IPL_ErrModeSilent) {
    std::fprintf(stderr, "%s: %s (status %d)\n", operation, found, static_cast<int>(status));
  }
}

}  // namespace kelto::ipl

extern "C" {

void iplSetErrMode(int32_t mode) {
  if (mode < IPL_ErrModeLeaf || mode > IPL_ErrModeSilent) {
    kelto::ipl::Fail(IPL_StsBadArg, "iplSetErrMode", "unknown mode");
    return;
  }
  kelto::ipl::errorMode = mode;
}

int32_t iplGetErrMode() { return kelto::ipl::errorMode; }

int32_t iplGetErrStatus() { return kelto::ipl::errorStatus; }

void iplSetErrStatus(int32_t status) { kelto::ipl::errorStatus = status; }
}
