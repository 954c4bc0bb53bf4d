#!/bin/sh
# deb_test.sh BUILD SOURCE: makes the Debian packages and looks into them.
set -eu
build=$1 source=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
fail() { echo "deb_test: $*" >&2; exit 1; }

sh "$source/tools/packaging/debs.sh" "$build" "$folder"
# has PACKAGE FILE ...: whether the package holds files whose paths end so
has() {
  package=$1
  shift
  [ -s "$folder/$package.contents" ] ||
    dpkg-deb -c "$folder/${package}"_*.deb >"$folder/$package.contents"
  for file; do grep -q "$file\$" "$folder/$package.contents" || fail "$package lacks $file"; done
}
has kelto usr/bin/kelto usr/lib/kelto/KeltoPanAndZoom.hfx usr/share/man/man1/kelto.1.gz \
  usr/share/man/man1/kelto-render.1.gz usr/share/metainfo/org.kelto.Kelto.metainfo.xml \
  usr/share/doc/kelto/copyright usr/share/kelto/project.schema.json
has kelto-frei0r usr/lib/frei0r-1/kelto_pan_zoom.so usr/lib/kelto/libkelto_frei0r.so.1 \
  usr/share/kdenlive/effects/frei0r_kelto_pan_zoom.xml usr/share/shotcut/qml/filters/kelto_pan_zoom/ui.qml
has kelto-openfx usr/OFX/Plugins/KeltoPanZoom.ofx.bundle/Contents/Linux-x86-64/KeltoPanZoom.ofx
has libhfx1 libhfx.so.1
has libhfx-dev hfx.pc hfx-config.cmake host.h examples/first_frame.cc
editor=kelto-editor
if [ -x "$build/bin/kelto-edit" ]; then
  has kelto-editor usr/bin/kelto-edit usr/lib/kelto/kelto-preview usr/share/man/man1/kelto-edit.1.gz
else
  editor=
fi

# Everything that a package needs from the archive is named, and of this source the same version.
version=$(sed -n 's/^project(kelto VERSION \([0-9.]*\).*/\1/p' "$source/CMakeLists.txt")
for package in kelto kelto-frei0r kelto-openfx libhfx1 libhfx-dev $editor; do
  [ "$(dpkg-deb -f "$folder/${package}"_*.deb Version)" = "$version" ] ||
    fail "$package has another version than $version"
done
depends_on() {
  depends=$(dpkg-deb -f "$folder/$1"_*.deb Depends)
  case ", $depends," in *", $2"*) ;; *) fail "$1 does not depend on $2 but on $depends" ;; esac
}
for library in libc6 libstdc++6 libavcodec59 libjpeg62-turbo libpng16-16 libtiff6 libhfx1; do
  depends_on kelto "$library"
done
for package in kelto-frei0r $editor; do depends_on "$package" "kelto (= $version)"; done
depends_on libhfx-dev "libhfx1 (= $version)"

# A build from nothing has what the set-up installs.
sed -n '/^Build-Depends:/,/^$/s/^ \([a-z0-9.+-]*\).*/\1/p' "$source/debian/control" |
  grep -v '^debhelper-compat$' >"$folder/needed"
[ "$(wc -l <"$folder/needed")" -ge 20 ] || fail "Build-Depends has only $(cat "$folder/needed")"
while read -r package; do
  grep -qx "$package" "$source/tools/packages.txt" || fail "the set-up does not install $package"
done <"$folder/needed"

for package in "$folder"/*.deb; do dpkg-deb -x "$package" "$folder/root"; done
LD_LIBRARY_PATH=$(dirname "$(find "$folder/root/usr/lib" -name libhfx.so.1)") \
  "$folder/root/usr/bin/kelto" doctor >"$folder/doctor" ||
  { cat "$folder/doctor"; fail "the doctor says no"; }
appstreamcli validate --no-net "$folder/root/usr/share/metainfo"/*.xml >"$folder/log" ||
  { cat "$folder/log"; fail "the descriptions for software centres have faults"; }

if command -v lintian >/dev/null 2>&1; then
  lintian --allow-root --fail-on error,warning "$folder"/*.deb >"$folder/log" 2>&1 ||
    { cat "$folder/log"; fail "lintian found faults"; }
else
  echo "deb_test: lintian is not installed: NOT TRIED; ./dev debtest installs it"
fi
