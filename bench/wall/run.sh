#!/bin/sh
# How long one waits for a film on two cores: this project's command with --jobs 2, beside FFmpeg's zoompan
# with the same encoder and as many threads. Raw frames, H.264 in its fastest preset, and H.264 as usual;
# wall-clock seconds, medians of runs in turns. The machine must be idle.
set -eu
here=$(dirname "$0")
exec sh "$here/../on-photo.sh" "$here/wall.py"
