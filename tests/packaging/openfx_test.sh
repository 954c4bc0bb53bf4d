#!/bin/sh
# openfx_test.sh BUILD: installs the plug-in for OpenFX hosts into an empty folder, moves it, and looks
# into it: a bundle that has all of its own, and draws the command's frames from wherever it lies.
set -eu
build=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
fail() { echo "openfx_test: $*" >&2; exit 1; }
unset KELTO_MODULE LD_LIBRARY_PATH

cmake --install "$build" --component openfx --prefix "$folder/first" >"$folder/log" ||
  { cat "$folder/log"; exit 1; }
mv "$folder/first" "$folder/plugins"
[ "$(ls "$folder/plugins")" = KeltoPanZoom.ofx.bundle ] ||
  fail "not the bundle alone: $(ls "$folder/plugins")"
contents=$folder/plugins/KeltoPanZoom.ofx.bundle/Contents
(cd "$contents" && find . -type f | sort) >"$folder/files"
for file in Linux-x86-64/KeltoPanZoom.ofx Linux-x86-64/kelto/KeltoPanAndZoom.hfx \
  Resources/org.kelto.PanZoom.png Resources/org.kelto.PanZoom.svg; do
  grep -Fqx "./$file" "$folder/files" || fail "$file is missing in $(cat "$folder/files")"
done
file "$contents/Resources/org.kelto.PanZoom.png" | grep -q 'PNG image data, 64 x 64' ||
  fail "the icon is none"

plugin=$contents/Linux-x86-64/KeltoPanZoom.ofx
for file in "$plugin" "$contents"/Linux-x86-64/kelto/*; do
  path=$(readelf -d "$file" | sed -n 's/.*(\(RUNPATH\|RPATH\)).*\[\(.*\)\]$/\2/p')
  for entry in $(echo "$path" | tr : ' '); do
    case $entry in
      "\$ORIGIN" | "\$ORIGIN"/*) ;;
      *) fail "$file searches '$entry', which does not begin where it lies" ;;
    esac
  done
  if ldd "$file" | grep "not found"; then fail "$file lacks the libraries above"; fi
  if ldd "$file" | grep -F "$build"; then fail "$file uses the build's libraries"; fi
done

KELTO_OPENFX_TESTED=$plugin "$build/bin/test_openfx" --gtest_filter='OpenFx.AFilmIs*' \
  >"$folder/log" 2>&1 || { cat "$folder/log"; fail "it does not draw the command's frames"; }
