#!/bin/sh
# The engine's and the curves' tests under valgrind, which sees the use of what was never written.
# Its processor knows instruction sets up to AVX2: the engine chooses among them by itself. Tests
# that measure time, or that take minutes at a thirtieth of the speed, are left out.
set -eu
cd "$(dirname "$0")/.."
for test in test_curves test_kernels test_resample; do
  echo "$test"
  valgrind --quiet --error-exitcode=1 --leak-check=full --errors-for-leak-kinds=definite \
    "build/bin/$test" --gtest_brief=1 \
    --gtest_filter='-ZoomedFarOut.TakesMemory*:*RandomJobsComeWithin*:*ConstantPicturesStay*:*AnyJob.WritesNothing*:ALargeMinified*:*ResultsAreTheSame*:FixedFilters*'
done
