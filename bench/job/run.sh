#!/bin/sh
# The same move over the same 20-megapixel photograph, 150 frames of 1920 x 1080 from the whole picture
# to its middle half, as raw 4:2:2 without encoding: this project's command, and FFmpeg's zoompan,
# straight and with the upscale before it that is usual against its whole-pixel jumps. One core each,
# in turns; CPU seconds of user and system together, medians.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
build=${KELTO_BUILD:-$here/../../build}
kelto=$(cd "$build/bin" && pwd)/kelto
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
ffmpeg -nostdin -v error -f lavfi -i mandelbrot=size=6000x4000 -frames:v 1 -vf crop=6000:3376 \
  -q:v 3 photo.jpg
exec python3 "$here/job.py" "$kelto" photo.jpg
