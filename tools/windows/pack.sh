#!/bin/sh
# pack.sh BUILD ZIP: packs the command, the module, the host library and the runtimes of a Windows
# build.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
build=$(cd "$1" && pwd)
zip=$(cd "$(dirname "$2")" && pwd)/$(basename "$2")
# shellcheck source=tools/windows/cache.sh
. "$here/cache.sh"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
name=kelto-windows-i686
to=$work/$name
mkdir -p "$to/licences"
cp "$build"/bin/kelto.exe "$build"/bin/hfx.dll "$build"/bin/kelto_ipl.dll \
  "$build"/bin/kelto_win32.dll "$build"/lib/KeltoPanAndZoom.hfx "$to"
for dll in libgcc_s_dw2-1.dll libstdc++-6.dll libwinpthread-1.dll; do
  cp "$build/bin/$dll" "$to"
done
i686-w64-mingw32-strip -s "$to"/*.exe "$to"/*.dll "$to"/*.hfx
sed 's/$/\r/' "$here/README.txt" >"$to/README.txt"
cp "$kelto_cache/libraries-i686/boost-licence.txt" "$to/licences/boost.txt"
cp "$kelto_cache/libraries-i686/highway-licence.txt" "$to/licences/highway.txt"
cp /usr/share/doc/gcc-mingw-w64-i686-posix-runtime/copyright "$to/licences/gcc-runtime.txt"
cp /usr/share/doc/mingw-w64-i686-dev/copyright "$to/licences/mingw-w64.txt"
for library in libcli11 nlohmann-json3 libvalijson; do
  cp "/usr/share/doc/$library-dev/copyright" "$to/licences/$library.txt"
done

cd "$work"
cmake -E tar cf "$name.zip" --format=zip "$name"
mv "$name.zip" "$zip"
