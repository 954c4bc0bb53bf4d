// The process-wide table of named filters: look one up, list them, add to them, window one by
// another. For diagnostics and tools: pictures are drawn by calling kernels directly.
//
// Nothing here is locked; use it from one thread at a time.
#pragma once

#include <cstdint>

#include "resample/kernels.h"

namespace kelto {

/// Sets a row's client data from as many parameters as its kernel has.
using FilterInit = void (*)(const float* parameters, void* clientData);

/// Prints a row's client data to the standard error stream.
using FilterPrint = void (*)(const void* clientData);

/// A named filter. The name and the client data are not owned by the row.
struct Filter {
  const char* name = nullptr;  ///< unique in the registry; null in an empty row
  KernelFunction kernel = nullptr;
  float support = 0.0f;           ///< half-width in source samples; the kernel counts as 0 beyond
  float blur = 1.0f;              ///< width factor, recorded for callers and never applied here
  uint8_t windowedByDefault = 0;  ///< meant to be used through FilterWindow
  uint8_t interpolating = 0;      ///< 1 at 0 and 0 at the other integers
  uint8_t unitRange = 0;          ///< the values stay within [0, 1]
  FilterInit init = nullptr;      ///< null when the kernel has no parameters to set
  FilterPrint print = nullptr;    ///< null when there is nothing to print
  void* clientData = nullptr;     ///< the kernel's second argument
};

constexpr int32_t kMostFilters = 30;

/// Rows in use come first. While `count` is 0 the registry is not in use yet: the next operation
/// counts the named rows and sets the "mitchell" and "kaiser" parameters to their defaults.
struct FilterRegistry {
  Filter rows[kMostFilters];
  int32_t count = 0;
};

/// A registry as at process start: the 14 built-in rows, not counted yet. The parameters of its
/// "mitchell" and "kaiser" rows are shared by the whole process.
FilterRegistry BuiltInFilters();

/// The registry that the operations below work on. Assigning BuiltInFilters() to it forgets every
/// inserted row and, at the next operation, every changed parameter.
FilterRegistry& ProcessFilters();

/// The row whose name equals `name` byte for byte, or null. The "sinc" row has no client data: copy
/// it and set a lobe count (see KernelSinc) before using its kernel.
const Filter* FilterFind(const char* name);

/// Adds a copy of `row` at the end. A name already taken, or a full registry, is reported on the
/// standard error stream and nothing is added. `row.name` and its client data must stay valid.
void filt_insert(const Filter& row);

/// `filter` windowed by the named filter: a row called "filter*window" (cut to 49 bytes), whose
/// value at x is filter(x) * window(x / filter.support) and whose other fields are `filter`'s. It
/// refers to both rows, so `filter` must outlive it; it lives until the process ends. Windowing by
/// "box" returns `filter` itself. Null when no filter has the window's name.
const Filter* FilterWindow(const Filter* filter, const char* windowName);

/// Prints every row to the standard error stream: name, support, whether it is windowed by default,
/// and its client data where the row can print it.
void FilterCatalog();

}  // namespace kelto
