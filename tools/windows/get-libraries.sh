#!/bin/sh
# get-libraries.sh FOLDER: puts what the 32-bit Windows build links or includes into FOLDER: a static
# Boost.Filesystem, built from Debian's source package, and links to the headers of header-only
# libraries (one by one, since the system's include folder would bring the wrong C library).
set -eu
# shellcheck source=tools/windows/cache.sh
. "$(dirname "$0")/cache.sh"
to=$(cd "$1" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

mkdir -p "$to/lib" "$to/include"
link_headers() {
  header=$(dpkg -L "$1" | grep -m 1 "/include/$2/$3\$")
  ln -s "$(dirname "$header")" "$to/include/$2"
}
link_headers libboost1.74-dev boost version.hpp
link_headers libcli11-dev CLI CLI.hpp
link_headers nlohmann-json3-dev nlohmann json.hpp

echo "deb-src $(debian_mirror) $debian_release main" >"$work/sources.list"
version=$(dpkg-query -W -f '${source:Version}' libboost1.74-dev)
cd "$work"
private_apt "$work" update
private_apt "$work" source --download-only "boost1.74=$version"
tar -xJf boost1.74_*.orig.tar.xz --wildcards '*/libs/filesystem/src/*' '*/LICENSE_1_0.txt'
source=$(echo "$work"/*/libs/filesystem/src)
cp "$work"/*/LICENSE_1_0.txt "$to/boost-licence.txt"

for part in codecvt_error_category directory exception operations path path_traits portability \
  unique_path utf8_codecvt_facet windows_file_codecvt; do
  i686-w64-mingw32-g++-posix -std=c++17 -O2 -msse2 -mfpmath=sse -faligned-new=8 \
    -isystem "$to/include" -I "$source" -DBOOST_FILESYSTEM_STATIC_LINK -DBOOST_ALL_NO_LIB \
    -c "$source/$part.cpp" -o "$part.o"
done
i686-w64-mingw32-ar rcs "$to/lib/libboost_filesystem.a" ./*.o
