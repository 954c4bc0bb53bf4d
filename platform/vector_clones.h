// Loops that the compiler turns into vectors, compiled for several instruction sets at once.
#pragma once

/// Before a function: one copy for each of a few instruction sets, chosen when the program starts.
/// The source stays the plain loop, and the results are the same. Nothing where the loader cannot
/// choose, or where a sanitizer is not ready so early.
#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__) && defined(__linux__) && \
    !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define KELTO_VECTOR_CLONES __attribute__((target_clones("default", "avx2", "arch=icelake-server")))
#else
#define KELTO_VECTOR_CLONES
#endif
