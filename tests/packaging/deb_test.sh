#!/bin/sh
# deb_test.sh BUILD: makes the Debian package and looks into it.
set -eu
build=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
fail() { echo "deb_test: $*" >&2; exit 1; }

(cd "$build" && cpack -G DEB -B "$folder") >"$folder/log" 2>&1 || { cat "$folder/log"; exit 1; }
package=$(echo "$folder"/kelto_*.deb)
dpkg-deb -c "$package" >"$folder/contents"
for file in usr/bin/kelto usr/lib/kelto/KeltoPanAndZoom.hfx usr/lib/frei0r-1/kelto_pan_zoom.so \
  usr/share/kdenlive/effects/frei0r_kelto_pan_zoom.xml usr/share/shotcut/qml/filters/kelto_pan_zoom/ui.qml \
  usr/share/man/man1/kelto.1 libhfx.so.1 hfx.pc hfx-config.cmake; do
  grep -q "$file" "$folder/contents" || fail "$file is missing"
done
depends=$(dpkg-deb -f "$package" Depends)
for library in libc6 libstdc++6 libavcodec59 libjpeg62-turbo libpng16-16 libtiff6; do
  case $depends in
    *"$library"*) ;;
    *) fail "does not depend on $library but on $depends" ;;
  esac
done
mkdir "$folder/root"
dpkg-deb -x "$package" "$folder/root"
LD_LIBRARY_PATH='' "$folder/root/usr/bin/kelto" doctor >"$folder/doctor" ||
  { cat "$folder/doctor"; fail "the doctor says no"; }
