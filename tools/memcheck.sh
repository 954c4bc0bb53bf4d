#!/bin/sh
# The engine's and the curves' tests under valgrind, one a core; it sees the use of what was never
# written. Its processor knows instruction sets up to AVX2: the engine chooses among them by itself.
# Tests that measure time, or that take minutes at a thirtieth of the speed, are left out.
set -eu
cd "$(dirname "$0")/.."
printf '%s\n' test_resample test_curves test_kernels | xargs -P "$(nproc)" -I '{}' \
  valgrind --quiet --error-exitcode=1 --leak-check=full --errors-for-leak-kinds=definite \
  'build/bin/{}' --gtest_brief=1 \
  --gtest_filter='-ZoomedFarOut.TakesMemory*:*RandomJobsComeWithin*:*ConstantPicturesStay*:*AnyJob.WritesNothing*:ALargeMinified*:*ResultsAreTheSame*:FixedFilters*'
