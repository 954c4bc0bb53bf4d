#!/bin/sh
# The same move as run.sh's over the same photograph, in a TIFF of 16 bits: 25 frames of raw RGBA of 16
# bits by this project's command, and by FFmpeg's zoompan, whose own frames have eight. One core each,
# in turns; CPU seconds of user and system together, medians.
set -eu
here=$(dirname "$0")
exec sh "$here/../on-photo.sh" "$here/deep_job.py"
