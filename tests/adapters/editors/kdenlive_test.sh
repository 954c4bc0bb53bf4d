#!/bin/sh
# kdenlive_test.sh BUILD: adds the effect in Kdenlive, chooses a photograph, keys the zoom and saves;
# renders the saved project with melt from another folder, as "Render to File" does.
set -eu
build=$1 editor=kdenlive
. "$(dirname "$0")/drive.sh"
needs_editor 22.12
start_display
mkdir -p "$XDG_DATA_HOME"
cp -r "$build/share/kdenlive" "$XDG_DATA_HOME/"

saved=$folder/films/saved.kdenlive
make() {
  dbus-run-session -- kdenlive -i "$folder/films/clip.avi" >"$folder/log" 2>&1 &
  running=$!
  wait_for_window 'Kdenlive$' 960 || return 1
  xdotool mousemove 200 100
  key v               # the clip into the time-line
  settle
  click 190 710       # select it there
  click 234 466       # the list of effects
  click 1350 913      # the effects of the clip
  click 240 78        # search
  enter kelto
  key Return
  settle              # its page
  click 1466 555      # the photograph's path
  enter "$folder/films/photo.png"
  key Return
  rest 1
  xdotool mousemove 1240 860 click --repeat 30 5
  rest 1
  twice 1473 718      # three quarters of the clip
  click 1248 752      # a keyframe there
  twice 1545 782      # the zoom
  key ctrl+a
  enter 200
  key Return
  save_as "$saved"
}
attempt make
renders "$saved"
say "added, keyed, saved"
