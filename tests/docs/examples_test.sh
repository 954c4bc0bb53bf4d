#!/bin/sh
# examples_test.sh KELTO DOCUMENT [HEADING]: runs the shell examples of a document, or of what stands
# below one heading of it, as they stand there, on the photographs they speak of; the films are made
# small, where no example says how large.
set -eu
kelto=$1 document=$2 heading=${3:-}
tools=$(cd "$(dirname "$0")/../../tools/guide" && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mkdir -p "$folder/build/bin"
ln -s "$(dirname "$kelto")/../lib" "$folder/build/lib"
cat >"$folder/build/bin/kelto" <<EOF
#!/bin/sh
# A film for the test need not be large; a window needs a screen and somebody who closes it, by force
# where no key does.
case " \$* " in
  *" play "*)
    exec xvfb-run -a -s '-screen 0 1280x800x24 -noreset' sh -c '"\$0" "\$@" & player=\$!
      for _ in \$(seq 300); do
        kill -0 \$player || break
        xdotool search --name frame key q >&2
        sleep 0.2
      done 2>/dev/null
      kill -9 \$player 2>/dev/null
      wait \$player' "$kelto" "\$@" ;;
  *" --size "* | *" doctor "* | *" completion "*) exec "$kelto" "\$@" ;;
esac
exec "$kelto" "\$@" --size 320x180
EOF
# melt hangs now and then before its first frame, with any filter.
cat >"$folder/build/bin/melt" <<EOF
#!/bin/sh
for _ in 1 2 3 4; do timeout 60 $(command -v melt) "\$@" && exit; done
exit 1
EOF
# Examples write the same film again.
cat >"$folder/build/bin/ffmpeg" <<EOF
#!/bin/sh
exec $(command -v ffmpeg) -nostdin -y "\$@"
EOF
# What GStreamer takes for a screen where there is none may crash.
cat >"$folder/build/bin/gst-launch-1.0" <<EOF
#!/bin/sh
for word; do
  shift
  [ "\$word" != autovideosink ] || word=fakesink
  set -- "\$@" "\$word"
done
exec $(command -v gst-launch-1.0) "\$@"
EOF
chmod +x "$folder"/build/bin/*
# The plug-ins of this build are no business of the user's programs.
export GST_REGISTRY="$folder/registry"
"$tools/prepare.sh" "$folder"
# What ./dev does is a test of its own.
awk -v heading="## $heading" '/^## / { below = $0 == heading } heading == "## " || below' \
  "$document" >"$folder/section"
"$tools/examples.sh" "$folder/section" | grep -v '^\./dev' >"$folder/examples"
[ -s "$folder/examples" ] || { echo "examples_test: $document has no examples" >&2; exit 1; }
cd "$folder"
PATH=$folder/build/bin:$PATH sh -eux ./examples 2>log >printed || { cat log >&2; exit 1; }
# The plug-ins tell of faults, but their hosts go on.
if grep -F "kelto_pan_zoom: " "$folder/log" >&2; then exit 1; fi
