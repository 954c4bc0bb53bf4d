#!/bin/sh
# What the editor's canvas, timeline and preview take with a photo of 24 megapixels, and with 500
# stops: medians and 95th percentiles of wall time in milliseconds.
set -eu
here=$(dirname "$0")
root=$here/../..
cmake --preset bench -S "$root" >/dev/null
(cd "$root" && cmake --build --preset bench --target bench_editor >/dev/null)
photo=${1:-}
if [ -z "$photo" ]; then
  photo=$(mktemp -d)/photo.jpg
  trap 'rm -rf "$(dirname "$photo")"' EXIT
  ffmpeg -v error -f lavfi -i 'mandelbrot=size=6000x4000' -frames:v 1 -q:v 3 "$photo"
fi
QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen} "$root/build-bench/bin/bench_editor" "$photo"
