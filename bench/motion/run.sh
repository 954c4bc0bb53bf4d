#!/bin/sh
# What the laws of motion cost: processor time per frame of a pan by each law, 250 frames of a
# short film and of a long one, in turns; the ratios to linear and of the long film to the short one.
set -eu
here=$(dirname "$0")
exec sh "$here/../on-photo.sh" "$here/motion.py"
