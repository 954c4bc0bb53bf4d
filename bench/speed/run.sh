#!/bin/sh
# What --speed is worth: the same film by every codec that has speeds, in each of its words: CPU seconds of
# the whole command, user and system together, and the film's size. No sound, --quality high.
set -eu
here=$(dirname "$0")
exec sh "$here/../on-photo.sh" "$here/speed.py"
