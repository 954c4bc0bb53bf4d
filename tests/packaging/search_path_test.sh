#!/bin/sh
# search_path_test.sh BUILD: where every program and library that was built, and those that are installed
# and packaged, have their own libraries looked for; and that none is taken from the current folder,
# which may be a folder of photographs that came from anywhere.
set -eu
build=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
fail() { echo "search_path_test: $*" >&2; exit 1; }
unset KELTO_MODULE LD_LIBRARY_PATH FREI0R_PATH

. "$(dirname "$0")/shipped_trees.sh"

count=0
for tree in "$build" "$folder/tree" "$folder/frei0r" "$folder/package"; do
  elf_files "$tree" >"$folder/files"
  while read -r file; do
    count=$((count + 1))
    path=$(readelf -d "$file" | sed -n 's/.*(\(RUNPATH\|RPATH\)).*\[\(.*\)\]$/\2/p')
    [ -n "$path" ] || continue
    case ":$path:" in *::*) fail "$file searches the current folder: '$path'" ;; esac
    for entry in $(echo "$path" | tr : ' '); do
      case $entry in
        "\$ORIGIN" | "\$ORIGIN"/*) ;;
        *) fail "$file searches '$entry', which does not begin where it lies" ;;
      esac
      from=$(dirname "$file")
      place=$(realpath -m "$from${entry#\$ORIGIN}")
      case $place/ in
        "$tree"/*) ;;
        *) fail "$file searches '$entry', which leads out of $tree" ;;
      esac
    done
  done <"$folder/files"
done
[ "$count" -ge 30 ] || fail "only $count programs and libraries were found"

# A stub under the name of every library that any of them needs, in the folder that the command and
# FFmpeg are started in. A stub that is loaded leaves a file, or lacks what it is to provide.
mkdir "$folder/photos"
echo '#include <stdio.h>
__attribute__((constructor)) static void Run(void) { fclose(fopen("planted", "w")); }' >"$folder/stub.c"
cc -shared -fPIC -o "$folder/stub.so" "$folder/stub.c"
for file in "$build/bin/kelto" "$build/lib/KeltoPanAndZoom.hfx" "$build"/lib/*.so "$build"/lib/frei0r-1/*.so; do
  ldd "$file" | sed -n 's/^[[:space:]]*\([^ /]*\.so[^ ]*\) =>.*/\1/p'
done | sort -u >"$folder/needed"
grep -q '^libexif\.so' "$folder/needed" || fail "the command no longer needs libexif"
while read -r name; do cp "$folder/stub.so" "$folder/photos/$name"; done <"$folder/needed"

cd "$folder/photos"
ffmpeg -nostdin -v error -f lavfi -i testsrc2=64x48 -frames:v 1 photo.png
for kelto in "$build/bin/kelto" "$folder/tree/bin/kelto" "$folder/package/usr/bin/kelto"; do
  rm -f film.yuyv
  "$kelto" render photo.png -o film.yuyv --size 64x48 --frames 2 >"$folder/log" 2>&1 ||
    { cat "$folder/log"; fail "$kelto among planted libraries"; }
done
for plugins in "$build/lib/frei0r-1" "$folder/frei0r" "$folder/package/usr/lib/frei0r-1"; do
  FREI0R_PATH=$plugins ffmpeg -nostdin -v error -f lavfi -i testsrc2=64x48 -frames:v 1 \
    -vf 'frei0r=kelto_pan_zoom:photo.png' -f null - >"$folder/log" 2>&1 ||
    { cat "$folder/log"; fail "FFmpeg among planted libraries, with $plugins"; }
done
[ ! -e planted ] || fail "a library of the current folder ran"
