#!/bin/sh
# The same move over the same 20-megapixel photograph, 150 frames of 1920 x 1080 from the whole picture
# to its middle half, as raw 4:2:2 without encoding and as H.264: this project's command, FFmpeg's
# zoompan, straight and with the upscale before it that is usual against its whole-pixel jumps, its
# perspective, and melt's affine. One core each, in turns; CPU seconds of user and system together,
# medians.
set -eu
here=$(dirname "$0")
exec sh "$here/../on-photo.sh" "$here/job.py"
