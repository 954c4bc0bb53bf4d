#!/bin/sh
# Runs the fuzz targets in build-fuzz, each for some seconds: run.sh [SECONDS] [TARGET ...]
#
# Starts from the seeds and from what earlier runs found, which stays in build-fuzz/corpus. An input
# that breaks a promise is left in build-fuzz/found, and the run fails: mend it, and keep the input
# under fuzz/regressions/TARGET.
set -eu
cd "$(dirname "$0")/../.."
seconds=${1:-60}
[ $# -eq 0 ] || shift
[ $# -gt 0 ] || set -- $(ls build-fuzz/bin | sed -n 's/^fuzz_//p')

failed=0
for target in "$@"; do
  corpus=build-fuzz/corpus/$target found=build-fuzz/found/$target
  log=build-fuzz/$target.log
  mkdir -p "$corpus" "$found"
  known=
  for folder in seeds regressions; do
    [ ! -d "fuzz/$folder/$target" ] || known="$known fuzz/$folder/$target"
  done
  # The inputs of the host and the engine say what they mean in few bytes.
  case $target in
    engine) options='-max_len=160 -len_control=0' ;;
    host) options='-max_len=1000 -len_control=0' ;;
    *) options='-max_len=4000' ;;
  esac
  if "build-fuzz/bin/fuzz_$target" -max_total_time="$seconds" -timeout=60 -rss_limit_mb=3000 \
    -artifact_prefix="$found/" -print_final_stats=1 $options "$corpus" $known >"$log" 2>&1; then
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    echo "$target: $runs inputs in $seconds s, nothing found"
  else
    failed=1
    echo "$target: broke a promise; see $log and $found"
    grep -aE 'broken promise|ERROR|SUMMARY' "$log" | head -n 3 || true
  fi
done
exit $failed
