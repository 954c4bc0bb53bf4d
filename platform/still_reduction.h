// Drawing a still image smaller than it is.
#pragma once

#include "platform/still_importer.h"

/// Has an open picture drawn smaller from now on, where its form is decoded in less time so, with
/// sides divided by a power of two, `by` at the most, and rounded up. Returns the divisor, 1 for
/// forms that are always decoded whole. The bounds are those of the smaller picture then. To be
/// called once.
int32_t StillImporterReduce(GraphicsImportComponent importer, int32_t by);
