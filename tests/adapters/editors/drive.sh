# What the tests of the editors share: a display, hands, and a look at what was saved. Sourced by a test
# that has set `build`, the build folder, and `editor`, the editor's program.
#
# Editors are driven by clicks on the places where their controls lie in a window of a fixed size, so a
# test is for the version that Debian 12 has. A busy machine may swallow a click: attempt repeats the
# whole with longer pauses.

say() { echo "$editor: $*"; }
fail() { say "$*" >&2; exit 1; }
skip() { say "SKIPPED: $*"; exit 77; }

# needs_editor VERSION: skips the test where the editor, or that version of it, is not installed
needs_editor() {
  command -v "$editor" >/dev/null 2>&1 || skip "not installed; ./dev editors installs it"
  case $(dpkg-query -W -f '${Version}' "$editor") in
    "$1"*) ;;
    *) skip "its controls are known of version $1 only" ;;
  esac
}

# start_display: a screen of its own, in DISPLAY, and a folder of its own, in folder
start_display() {
  folder=$(mktemp -d)
  mkdir -m 700 "$folder/home" "$folder/films" "$folder/elsewhere"
  Xvfb -screen 0 1600x1000x24 -nolisten tcp -displayfd 5 5>"$folder/display" >/dev/null 2>&1 &
  screen=$!
  trap 'kill "$screen" 2>/dev/null; wait 2>/dev/null; rm -rf "$folder"' EXIT
  trap 'exit 1' INT TERM
  tries=0
  until [ -s "$folder/display" ]; do
    tries=$((tries + 1)); [ $tries -lt 100 ] || fail "no display"; sleep 0.2
  done
  DISPLAY=:$(cat "$folder/display")
  HOME=$folder/home XDG_RUNTIME_DIR=$folder/home XDG_CACHE_HOME=$folder/home/.cache
  XDG_CONFIG_HOME=$folder/home/.config XDG_DATA_HOME=$folder/home/.local/share
  FREI0R_PATH=$build/lib/frei0r-1:/usr/lib/frei0r-1 LANG=C.UTF-8 LC_ALL=C.UTF-8
  export DISPLAY HOME XDG_RUNTIME_DIR XDG_CACHE_HOME XDG_CONFIG_HOME XDG_DATA_HOME FREI0R_PATH LANG LC_ALL
  unset KELTO_MODULE WAYLAND_DISPLAY
  openbox >/dev/null 2>&1 &
  ffmpeg -nostdin -v error -f lavfi -i color=red:size=1920x1080:rate=25 -t 4 -c:v mpeg4 "$folder/films/clip.avi"
  ffmpeg -nostdin -v error -f lavfi -i testsrc2=size=2400x1500 -frames:v 1 "$folder/films/photo.png"
}

# settle: waits until nothing moves on the screen any more, a busy machine's too; a minute at most
settle() {
  last='' looks=0
  while [ $looks -lt 60 ]; do
    sleep 1
    now=$(import -window root -depth 8 rgb:- | cksum)
    [ "$now" != "$last" ] || return 0
    last=$now looks=$((looks + 1))
  done
}

rest() { sleep "$(awk "BEGIN { print $1 * $patience }")"; }
click() { xdotool mousemove "$1" "$2" click 1; rest 1; }
twice() { xdotool mousemove "$1" "$2" click --repeat 2 --delay 80 1; rest 1; }
key() { xdotool key "$@"; rest 1; }
enter() { xdotool type --delay 20 "$1"; rest 1; }

# wait_for_window TITLE HEIGHT: gives the editor's window, when it is there, its place and size
wait_for_window() {
  tries=0
  until window=$(xdotool getactivewindow 2>/dev/null) && xdotool getwindowname "$window" 2>/dev/null | grep -q "$1"; do
    tries=$((tries + 1)); [ $tries -lt 240 ] || return 1; sleep 0.5
  done
  settle
  xdotool windowmove "$window" 0 0 windowsize "$window" 1590 "$2"
  settle
}

# save_as FILE: saves under a new name, waits for the file, and closes the editor
save_as() {
  rest 1
  key ctrl+s
  rest 2
  enter "$1"
  xdotool key Return
  tries=0
  until grep -q '</mlt>' "$1" 2>/dev/null; do
    tries=$((tries + 1)); [ $tries -lt 60 ] || break; sleep 0.5
  done
  [ -z "${KELTO_EDITOR_PICTURES:-}" ] || import -window root "$KELTO_EDITOR_PICTURES/$editor.png"
  key ctrl+q
  rest 2
}

# property FILE NAME: a property of the effect in a saved project
property() {
  sed -n '/mlt_service">frei0r.kelto_pan_zoom</,/<\/filter>/s|.*<property name="'"$2"'">\(.*\)</property>.*|\1|p' "$1"
}

# holds_effect FILE: whether a saved project has the effect with the photograph and two keys of the zoom
holds_effect() {
  [ "$(property "$1" filename)" = photo.png ] || { say "photo: $(property "$1" filename)"; return 1; }
  case $(property "$1" zoom) in
    00:00:00.000=1\;00:00:0[123].*=2) ;;
    *) say "zoom: $(property "$1" zoom)"; return 1 ;;
  esac
}

# attempt STEPS: runs steps until what they saved in $saved holds the effect
attempt() {
  for patience in 1 2 4; do
    rm -f "$saved"
    if "$1" && [ -s "$saved" ] && holds_effect "$saved"; then return; fi
    [ -z "${running:-}" ] || kill "$running" 2>/dev/null || true
    say "once more, more slowly"
  done
  fail "the effect could not be added, keyed and saved"
}

# shows FILE NUMBER ZOOM: whether a frame of the saved project, rendered from another folder, shows the
# photograph at that zoom as the command does, to a level
shows() {
  rm -f "$folder"/elsewhere/*.png
  (cd "$folder/elsewhere" && melt -silent "$1" in="$2" out="$2" -consumer avformat:frame.png vcodec=png \
    f=image2 update=1 pix_fmt=rgb24 mlt_image_format=rgba real_time=-1 >/dev/null 2>&1)
  "$build/bin/kelto" render "$folder/films/photo.png" -o "$folder/elsewhere/still-%d.png" \
    --size 1920x1080 --frames 1 --from "$3" >/dev/null
  most=$(compare -metric PAE "$folder/elsewhere/frame.png" "$folder"/elsewhere/still-*.png null: 2>&1 |
    sed 's/.*(\(.*\))/\1/')
  say "frame $2 beside zoom $3: differs by $most of 1"
  awk "BEGIN { exit !($most <= 1.001 / 255) }" || fail "frame $2 does not show the photograph at zoom $3"
}

# renders FILE: both keys of the saved project show what they say
renders() {
  seconds=$(property "$1" zoom | sed 's/.*;00:00:0\([0-9.]*\)=2/\1/')
  shows "$1" 0 1
  shows "$1" "$(awk "BEGIN { printf \"%.0f\", $seconds * 25 }")" 2
}
