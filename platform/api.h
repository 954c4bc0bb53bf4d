// Marks what a platform library shows to its users. On Windows the linker's automatic export and
// import do the same without marks.
#pragma once

#if defined(_WIN32)
#define KELTO_PLATFORM_API
#else
#define KELTO_PLATFORM_API __attribute__((visibility("default")))
#endif
