#!/bin/sh
# shotcut_test.sh BUILD: adds the effect in Shotcut, chooses a photograph, keys the zoom and saves; opens
# what was saved and saves it again; renders both with melt from another folder.
set -eu
build=$1 editor=shotcut
. "$(dirname "$0")/drive.sh"
needs_editor 22.12
start_display

# Shotcut looks for pages beside its program only: a copy of that, among links to all else.
mkdir -p "$folder/tree/bin" "$folder/tree/share/shotcut/qml/filters"
cp "$(command -v shotcut)" "$folder/tree/bin/"
link_all() {  # link_all FROM TO EXCEPT
  for file in "$1"/*; do [ "${file##*/}" = "$3" ] || ln -s "$file" "$2/"; done
}
installed=/usr/share/shotcut tree=$folder/tree/share/shotcut
link_all $installed "$tree" qml
link_all $installed/qml "$tree/qml" filters
link_all $installed/qml/filters "$tree/qml/filters" kelto_pan_zoom
ln -s "$build/share/shotcut/qml/filters/kelto_pan_zoom" "$tree/qml/filters/"

start() {
  "$folder/tree/bin/shotcut" "$1" >"$folder/log" 2>&1 &
  running=$!
  wait_for_window 'Shotcut$' 970
}

saved=$folder/films/saved.mlt
make() {
  start "$folder/films/clip.avi" || return 1
  key Home
  click 795 53        # Filters
  key f               # add one
  enter kelto
  key Down
  key Return
  rest 2
  click 300 343       # the photograph's path
  enter "$folder/films/photo.png"
  key Return
  rest 1
  click 540 393       # keyframes of the zoom
  twice 690 646       # the place in the clip
  key ctrl+a
  enter 00:00:03:00
  key Return
  twice 415 393       # the zoom
  key ctrl+a
  enter 200
  key Return
  save_as "$saved"
}
attempt make
renders "$saved"
wait "$running" || true

# What it opens it saves as it was: the page reads all that it wrote.
keys=$(property "$saved" zoom)
cp "$saved" "$folder/films/first.mlt"
again() {
  start "$folder/films/first.mlt" || return 1
  click 795 53
  rest 2
  key ctrl+shift+s
  rest 2
  enter "$saved"
  xdotool key Return
  rest 4
  key ctrl+q
  rest 2
}
attempt again
[ "$(property "$saved" zoom)" = "$keys" ] || fail "keys were $keys and are $(property "$saved" zoom)"
if grep -q 'kelto_pan_zoom/.*\.qml:' "$folder/log"; then
  grep 'kelto_pan_zoom/.*\.qml:' "$folder/log" >&2
  fail "the page has the faults above"
fi
say "added, keyed, saved, opened again"
