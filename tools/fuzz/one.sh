#!/bin/sh
# Runs one fuzz target in build-fuzz for some seconds and says in a line what came of it:
# one.sh SECONDS TARGET
set -eu
cd "$(dirname "$0")/../.."
seconds=$1 target=$2
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
  echo "$target: broke a promise; see $log and $found"
  grep -aE 'broken promise|ERROR|SUMMARY' "$log" | head -n 3 || true
  exit 1
fi
