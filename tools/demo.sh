#!/bin/sh
# Renders a photograph from a Debian package into a film, and stills of its first, middle and last
# frame beside it.
set -eu
cd "$(dirname "$0")/.."
photo=/usr/share/backgrounds/picosdeeuropa_by_Aitzol_Berasategi.jpg
out=out/demo
frames=180
mkdir -p "$out"

move="--size 1920x1080 --fps 30 --frames $frames --from 1.05@-0.02,0 --to 2.6@0.1,-0.1
      --in ease --out ease --filter hiqual"
# shellcheck disable=SC2086  # one word an option
build/bin/kelto render "$photo" -o "$out/film.mp4" $move
for at in first:0 middle:$((frames / 2)) last:$((frames - 1)); do
  ffmpeg -loglevel error -y -i "$out/film.mp4" -vf "select=eq(n\,${at#*:})" -frames:v 1 \
    "$out/${at%:*}.png"
done
echo "film:   $PWD/$out/film.mp4"
echo "stills: $PWD/$out/first.png, middle.png, last.png"
echo "photo:  \"Picos de Europa\" by Aitzol Berasategi, CC BY 4.0 (Debian package lomiri-wallpapers-16.04)"
