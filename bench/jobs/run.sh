#!/bin/sh
# What `kelto render --jobs` gains and costs: seconds of a render that the filter bounds (Ultra,
# 3840 x 2160, raw frames thrown away) with one process and with more, in turns, medians; and the
# memory of all its processes together. Wants a machine that does nothing else.
set -eu
here=$(dirname "$0")
exec sh "$here/../on-photo.sh" "$here/jobs.py"
