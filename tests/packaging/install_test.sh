#!/bin/sh
# install_test.sh BUILD SOURCE: installs the build into an empty folder, moves it, and uses all of it
# from there.
set -eu
build=$1 source=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
fail() { echo "install_test: $*" >&2; exit 1; }
unset KELTO_MODULE LD_LIBRARY_PATH

cmake --install "$build" --prefix "$folder/first" >"$folder/log" || { cat "$folder/log"; exit 1; }
mv "$folder/first" "$folder/tree"
tree=$folder/tree

for file in bin/kelto lib/kelto/KeltoPanAndZoom.hfx lib/frei0r-1/kelto_pan_zoom.so \
  share/man/man1/kelto.1 share/bash-completion/completions/kelto \
  share/zsh/vendor-completions/_kelto share/fish/vendor_completions.d/kelto.fish \
  share/kdenlive/effects/frei0r_kelto_pan_zoom.xml share/shotcut/qml/filters/kelto_pan_zoom/meta.qml \
  share/kelto/project.schema.json include/kelto/runtime/hfx/host.h; do
  [ -s "$tree/$file" ] || fail "$file is missing"
done

# Nothing of the machine that it was built on.
for path in "$build" "$source"; do
  if grep -rlF "$path" "$tree"; then fail "the files above hold the path $path"; fi
done
for file in "$tree"/bin/kelto "$tree"/lib/kelto/* "$tree"/lib/frei0r-1/*.so; do
  if ldd "$file" | grep "not found"; then fail "$file lacks the libraries above"; fi
  if ldd "$file" | grep -F "$build"; then fail "$file uses the build's libraries"; fi
done

"$tree/bin/kelto" doctor >"$folder/doctor" || { cat "$folder/doctor"; fail "the doctor says no"; }
grep -qF "module: $tree/lib/kelto/KeltoPanAndZoom.hfx, renders" "$folder/doctor" ||
  { cat "$folder/doctor"; fail "another module was found"; }

# Editors find the schema by a project's first line.
ffmpeg -nostdin -v error -f lavfi -i testsrc2=64x48 -frames:v 1 "$folder/photo.png"
"$tree/bin/kelto" new "$folder/photo.png" -o "$folder/move.json" >/dev/null
schema=$(sed -n 's|.*"$schema": "\([^"]*\)".*|\1|p' "$folder/move.json")
[ -f "$tree/share/kelto/$schema" ] || fail "a new project names the schema '$schema'"

# The example, as somebody else's program, by CMake and by pkg-config.
examples=$source/examples
cmake -S "$examples" -B "$folder/examples" -DCMAKE_PREFIX_PATH="$tree" >"$folder/log" 2>&1 &&
  cmake --build "$folder/examples" >>"$folder/log" 2>&1 || { cat "$folder/log"; fail "CMake"; }
module=$tree/lib/kelto/KeltoPanAndZoom.hfx
byCmake=$("$folder/examples/first_frame" "$module")
[ -n "$byCmake" ] || fail "the effect has no name"

pc=$(dirname "$(find "$tree" -name hfx.pc)")
libraries=$(PKG_CONFIG_PATH=$pc pkg-config --variable=libdir hfx)
# shellcheck disable=SC2046  # one word a flag
c++ -std=c++20 "$examples/first_frame.cc" -o "$folder/by-pkg-config" \
  $(PKG_CONFIG_PATH=$pc pkg-config --cflags --libs hfx)
[ "$(LD_LIBRARY_PATH=$libraries "$folder/by-pkg-config" "$module")" = "$byCmake" ] ||
  fail "pkg-config's program tells something else"
[ "$(PKG_CONFIG_PATH=$pc pkg-config --modversion hfx)" = \
  "$("$tree/bin/kelto" --version | sed -n '1s/kelto //p')" ] || fail "hfx.pc tells another version"
