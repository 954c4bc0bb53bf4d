#!/bin/sh
# on-photo.sh SCRIPT: runs a Python script on the command and a photograph of 6000 x 3376 pixels, in
# a folder that goes afterwards. KELTO_BUILD names another build.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
script=$(cd "$(dirname "$1")" && pwd)/$(basename "$1")
build=${KELTO_BUILD:-$here/../build}
kelto=$(cd "$build/bin" && pwd)/kelto
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
ffmpeg -nostdin -v error -f lavfi -i mandelbrot=size=6000x4000 -frames:v 1 -vf crop=6000:3376 \
  -q:v 3 photo.jpg
PYTHONPATH=$here PYTHONDONTWRITEBYTECODE=1 python3 "$script" "$kelto" photo.jpg
