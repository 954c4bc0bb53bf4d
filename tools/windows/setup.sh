#!/bin/sh
# Sets up what the 32-bit Windows build and its tests need: Debian packages, then Wine and libraries
# in a cache folder of the user's, which KELTO_CACHE moves. Does next to nothing when all is there.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
# shellcheck source=tools/windows/cache.sh
. "$here/cache.sh"

sh "$here/../setup.sh" "$here/../packages-windows.txt"
make_once wine32 "$here/get-wine.sh"
# shellcheck disable=SC2046  # one word a package
make_once libraries-i686 "$here/get-libraries.sh" \
  $(sed -n 's/^link_headers \([^ ]*\) .*/\1/p' "$here/get-libraries.sh")
make_once codecs-i686 "$here/get-codecs.sh" \
  libwebp-dev liblcms2-dev libjpeg62-turbo-dev libtiff-dev libz-mingw-w64-dev libstb-dev
# Made now, so that no test has to wait for it.
"$here/run-wine" cmd /c exit
