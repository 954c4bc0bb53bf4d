#!/bin/sh
# pack.sh BUILD ZIP: packs the command, the module, the host library and the runtimes of a Windows
# build.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
sources=$(cd "$here/../.." && pwd)
build=$(cd "$1" && pwd)
rm -f "$2"
zip=$(cd "$(dirname "$2")" && pwd)/$(basename "$2")
# shellcheck source=tools/windows/cache.sh
. "$here/cache.sh"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
name=kelto-windows-i686
to=$work/$name
mkdir -p "$to/licences"
cp "$build"/bin/kelto.exe "$build"/bin/hfx.dll "$build"/bin/kelto_ipl.dll \
  "$build"/bin/kelto_win32.dll "$build"/bin/KeltoPanAndZoom.hfx "$to"
for dll in libgcc_s_dw2-1.dll libstdc++-6.dll libwinpthread-1.dll; do
  cp "$build/bin/$dll" "$to"
done
# -p keeps the time in their headers, which is none; otherwise it would be that of packing.
i686-w64-mingw32-strip -p -s "$to"/*.exe "$to"/*.dll "$to"/*.hfx
sed 's/$/\r/' "$here/README.txt" >"$to/README.txt"
cp "$kelto_cache/libraries-i686/boost-licence.txt" "$to/licences/boost.txt"
cp "$kelto_cache/libraries-i686/highway-licence.txt" "$to/licences/highway.txt"
cp "$kelto_cache"/codecs-i686/licences/*.txt "$to/licences"
cp /usr/share/doc/gcc-mingw-w64-i686-posix-runtime/copyright "$to/licences/gcc-runtime.txt"
cp /usr/share/doc/mingw-w64-i686-dev/copyright "$to/licences/mingw-w64.txt"
for library in libcli11 nlohmann-json3; do
  cp "/usr/share/doc/$library-dev/copyright" "$to/licences/$library.txt"
done

# What a project's first line names, and what a reader of README.txt may want next.
mkdir -p "$to/share/kelto" "$to/docs"
cp "$build/bin/share/kelto/project.schema.json" "$to/share/kelto"
cp "$sources/docs/guide.md" "$to/docs"
cp -r "$sources/docs/guide" "$to/docs"
cp "$sources/SECURITY.md" "$to/docs"

# The same files make the same zip: in order of their names, and of the time of the last commit.
time=${SOURCE_DATE_EPOCH:-$(git -C "$sources" log -1 --format=%ct 2>/dev/null || echo 1700000000)}
cd "$work"
python3 - "$name" "$zip" "$time" <<'PYTHON'
import os, sys, time, zipfile
name, target, seconds = sys.argv[1:]
files = sorted(os.path.join(folder, file) for folder, _, files in os.walk(name) for file in files)
with zipfile.ZipFile(target, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as archive:
    for file in files:
        entry = zipfile.ZipInfo(file.replace(os.sep, "/"), time.gmtime(int(seconds))[:6])
        entry.compress_type = zipfile.ZIP_DEFLATED
        entry.external_attr = 0o100644 << 16
        with open(file, "rb") as source:
            archive.writestr(entry, source.read())
PYTHON
