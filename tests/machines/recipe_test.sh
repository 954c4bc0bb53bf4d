#!/bin/sh
# recipe_test.sh KELTO DOCUMENT HEADING: runs the first example below a heading of the document, as it
# stands there, on a folder of pictures of which one is none; then looks at the films.
set -eu
kelto=$1 document=$2 heading=$3
fail() { echo "recipe_test: $*" >&2; exit 1; }
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
mkdir scans
for i in 1 2 3 4 5 6; do
  ffmpeg -nostdin -v error -f lavfi -i "testsrc=size=$((100 + i))x80" -frames:v 1 "scans/it's $i.png"
done
echo "no picture" >scans/bad.jpg

awk -v heading="## $heading" '
  $0 == heading { below = 1; next }
  below && /^```sh$/ { inside = 1; next }
  inside && /^```$/ { exit }
  inside { print }' "$document" >script
[ -s script ] || fail "there is no example below $heading"
code=0
PATH=$(dirname "$kelto"):$PATH sh -eu script 2>errors || code=$?
for i in 1 2 3 4 5 6; do
  [ "$(ffprobe -v error -count_frames -show_entries stream=nb_read_frames -of csv=p=0 \
    "films/it's $i.mp4")" = 10 ] || { cat errors; fail "films/it's $i.mp4 is not what it should be"; }
done
[ ! -e films/bad.mp4 ] || fail "a film of a text"
if [ -e left ]; then
  [ "$code" -eq 0 ] || { cat errors; fail "the example ended with code $code"; }
  [ "$(wc -l <left)" -eq 1 ] && grep -q "bad.jpg" left || { cat left; fail "that should be left over"; }
else
  [ "$code" -eq 1 ] || fail "kelto batch ended with code $code"
fi
