#!/bin/sh
# What a frame of 1920 x 1080 costs where the plug-ins are at work, over video that the photograph of
# 6000 x 3376 pixels covers: the filter in FFmpeg beside `zoompan` there, and in melt beside `affine`.
# CPU milliseconds a frame, without what a film costs before its first one; one core, in turns, medians.
set -eu
here=$(dirname "$0")
build=${KELTO_BUILD:-$here/../../build}
FREI0R_PATH=$(cd "$build/lib/frei0r-1" && pwd)
export FREI0R_PATH
exec sh "$here/../on-photo.sh" "$here/filters.py"
