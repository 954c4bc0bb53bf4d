#!/bin/sh
# get-libraries.sh FOLDER: puts what the 32-bit Windows build links or includes into FOLDER: static
# Boost.Filesystem and Highway, built from Debian's source packages, and links to the headers (one by
# one, since the system's include folder would bring the wrong C library).
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
link_headers libhwy-dev hwy highway.h
link_headers nlohmann-json3-dev nlohmann json.hpp

echo "deb-src $(debian_mirror) $debian_release main" >"$work/sources.list"
cd "$work"
private_apt "$work" update
# get_source PACKAGE: the sources that the installed package, whose headers are used, was made from.
get_source() {
  source=$(dpkg-query -W -f '${source:Package}=${source:Version}' "$1")
  private_apt "$work" source --download-only "$source"
}
compile() {
  i686-w64-mingw32-g++-posix -std=c++17 -O2 -msse2 -mfpmath=sse -faligned-new=8 \
    -isystem "$to/include" "$@"
}

get_source libboost1.74-dev
tar -xJf boost1.74_*.orig.tar.xz --wildcards '*/libs/filesystem/src/*' '*/LICENSE_1_0.txt'
cp ./*/LICENSE_1_0.txt "$to/boost-licence.txt"
mkdir filesystem
for part in codecvt_error_category directory exception operations path path_traits portability \
  unique_path utf8_codecvt_facet windows_file_codecvt; do
  compile -DBOOST_FILESYSTEM_STATIC_LINK -DBOOST_ALL_NO_LIB \
    -c ./*/libs/filesystem/src/$part.cpp -o "filesystem/$part.o"
done
i686-w64-mingw32-ar rcs "$to/lib/libboost_filesystem.a" filesystem/*.o

get_source libhwy-dev
tar -xzf highway_*.orig.tar.gz
cp highway-*/LICENSE "$to/highway-licence.txt"
mkdir hwy
for part in aligned_allocator targets; do
  compile -c highway-*/hwy/$part.cc -o "hwy/$part.o"
done
i686-w64-mingw32-ar rcs "$to/lib/libhwy.a" hwy/*.o
