#!/bin/sh
# Runs the fuzz targets in build-fuzz, each for some seconds, one a core: run.sh [SECONDS] [TARGET ...]
#
# Starts from the seeds and from what earlier runs found, which stays in build-fuzz/corpus. An input
# that breaks a promise is left in build-fuzz/found, and the run fails: mend it, and keep the input
# under fuzz/regressions/TARGET.
set -eu
cd "$(dirname "$0")/../.."
seconds=${1:-60}
[ $# -eq 0 ] || shift
[ -d build-fuzz/bin ] || { echo "fuzz: nothing is built; run ./dev fuzz" >&2; exit 1; }
[ $# -gt 0 ] || set -- $(ls build-fuzz/bin | sed -n 's/^fuzz_//p')
printf '%s\n' "$@" | xargs -P "$(nproc)" -n 1 sh tools/fuzz/one.sh "$seconds"
