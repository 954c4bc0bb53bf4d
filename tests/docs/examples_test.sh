#!/bin/sh
# examples_test.sh KELTO DOCUMENT: runs the shell examples of a document as they stand there, on the
# photographs they speak of; the films are made small, where no example says how large.
set -eu
kelto=$1 document=$2
tools=$(cd "$(dirname "$0")/../../tools/guide" && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mkdir -p "$folder/build/bin"
ln -s "$(dirname "$kelto")/../lib" "$folder/build/lib"
cat >"$folder/build/bin/kelto" <<EOF
#!/bin/sh
# A film for the test need not be large; a window needs a screen and somebody who closes it.
case " \$* " in
  *" play "*)
    exec xvfb-run -a -s '-screen 0 1280x800x24 -noreset' sh -c '"\$0" "\$@" & player=\$!
      while kill -0 \$player; do xdotool search --name frame key q >&2; sleep 0.2; done 2>/dev/null
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
chmod +x "$folder/build/bin/kelto" "$folder/build/bin/melt"
"$tools/prepare.sh" "$folder"
# What ./dev does is a test of its own.
"$tools/examples.sh" "$document" | grep -v '^\./dev' >"$folder/examples"
[ -s "$folder/examples" ] || { echo "examples_test: $document has no examples" >&2; exit 1; }
cd "$folder"
PATH=$folder/build/bin:$PATH sh -eux ./examples 2>log >printed || { cat log >&2; exit 1; }
