#!/bin/sh
# The engine and what surrounds it beside their peers: one core, all of it interleaved in one run,
# several times over; medians, or with KELTO_BENCH_LEAST=1 least times, for a machine with other
# work. Figures of different runs cannot be compared.
set -eu
cd "$(dirname "$0")/../.."
sh tools/setup.sh tools/packages-bench.txt
[ -f build-bench/build.ninja ] || cmake --preset bench >/dev/null
cmake --build --preset bench
core=$(($(nproc) - 1))
results=$(mktemp -d)
trap 'rm -rf "$results"' EXIT
for program in bench_engine bench_load bench_motion; do
  taskset -c "$core" "build-bench/bin/$program" \
    --benchmark_enable_random_interleaving=true \
    --benchmark_repetitions="${KELTO_BENCH_REPETITIONS:-7}" --benchmark_min_time=0.05 \
    --benchmark_filter="${KELTO_BENCH_FILTER:-.}" \
    --benchmark_out_format=json --benchmark_out="$results/$program.json" >/dev/null
done
# A filter may leave some of them nothing to do.
find "$results" -type f -empty -delete
python3 bench/report.py "$results"/*.json
