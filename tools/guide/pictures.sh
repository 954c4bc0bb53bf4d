#!/bin/sh
# Makes the pictures of docs/guide.md anew, by its own commands. Needs a build in build/.
set -eu
cd "$(dirname "$0")/../.."
guide=$PWD/docs/guide
tools=$PWD/tools/guide
PATH=$PWD/build/bin:$PATH
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
"$tools/prepare.sh" "$folder"
"$tools/examples.sh" docs/guide.md | grep -v "^kelto play" >"$folder/examples.sh"
cd "$folder"
sh -eu ./examples.sh >/dev/null

# frames FILM FRAMES PICTURE: these frames of a film side by side
frames() {
  ffmpeg -nostdin -v error -y -i "$1" -vf "select='$2',scale=480:-2,tile=${4}x1:padding=6" \
    -frames:v 1 -q:v 3 "$3"
}
for sheet in auto parts; do convert "$sheet.png" -resize 1000x -quality 80 "$guide/$sheet.jpg"; done
convert motion.png -resize 1000x -colors 64 "$guide/motion.png"
frames titled.mp4 'eq(n,24)+eq(n,30)+eq(n,45)' "$guide/over.jpg" 3
frames show.mp4 'eq(n,40)+eq(n,87)+eq(n,150)+eq(n,300)' "$guide/show.jpg" 4
# law NAME OPTION...: six frames of a film at even distances in time, side by side
law() {
  name=$1
  shift
  kelto render photo.jpg -o "$name-%d.png" --size 320x180 --frames 6 --in linear --out linear --quiet "$@"
  convert "$name"-[0-5].png -bordercolor white -border 2 +append "$name-row.png"
}
# To the white rock in the grass, which shows whether the view keeps it; on to the snow on the right.
law linear --from 1 --to 12@0,0.22 --motion linear
law steady --from 1 --to 12@0,0.22 --motion steady
law fly --from 12@0,0.22 --to 6@0.36,-0.1 --motion fly
convert linear-row.png steady-row.png fly-row.png -append -resize 1400x -quality 85 "$guide/laws.jpg"
# The moving picture of README.md.
kelto slideshow photos/sunset.jpg photos/friends.jpg photos/picosdeeuropa.jpg \
  -o "$guide/show.webp" --order given --size 320x180 --fps 8 --each 2 --fade 0.5 --beside blur \
  --move mixed --quiet
ls -l "$guide"
