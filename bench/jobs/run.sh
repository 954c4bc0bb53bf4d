#!/bin/sh
# What `kelto render --jobs` gains and costs: seconds of a render that the filter bounds (Ultra,
# 3840 x 2160, raw frames thrown away) with one process and with more, in turns, medians; and the
# memory of all its processes together. Wants a machine that does nothing else.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
build=${KELTO_BUILD:-$here/../../build}
kelto=$(cd "$build/bin" && pwd)/kelto
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
ffmpeg -nostdin -v error -f lavfi -i mandelbrot=size=6000x4000 -frames:v 1 -vf crop=6000:3376 \
  -q:v 3 photo.jpg
exec python3 "$here/jobs.py" "$kelto" photo.jpg
