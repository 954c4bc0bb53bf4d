#!/bin/sh
# get-codecs.sh FOLDER: puts the codecs that the imaging component of Windows lacks into FOLDER, as
# static libraries with their headers and licences. They are built from Debian's source packages with
# Debian's patches, among which are fixes of faults that a picture can use.
set -eu
# shellcheck source=tools/windows/cache.sh
. "$(dirname "$0")/cache.sh"
mingw=$(cd "$(dirname "$0")/../../cmake" && pwd)/mingw-i686.cmake
to=$(cd "$1" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$to/lib" "$to/include" "$to/licences"
cd "$work"
# Fixes come by the security archive first, and by the release only with its next update.
# shellcheck disable=SC2016  # apt's own variable
security=$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Origin: Debian' \
  "Codename: $debian_release-security" | sort -u | head -n 1)
release="deb-src $(debian_mirror) $debian_release main"
printf '%s\n' "$release" ${security:+"deb-src $security $debian_release-security main"} >sources.list
private_apt "$work" update || {
  echo "get-codecs: the security archive has no sources here; those of the release are taken" >&2
  echo "$release" >sources.list
  private_apt "$work" update
}

# get_source PACKAGE FOLDER: the patched sources that the installed package was made from, as FOLDER
get_source() {
  source=$(dpkg-query -W -f '${source:Package}=${source:Version}' "$1")
  private_apt "$work" source "$source" >/dev/null || {
    echo "get-codecs: $source is in no archive; the newest there is taken, which may lack fixes" >&2
    private_apt "$work" source "${source%%=*}" >/dev/null
  }
  mv "${source%%=*}"-[0-9]*/ "$2"
}
flags="-O2 -DNDEBUG -msse2 -mfpmath=sse -fstack-protector-strong"
# archive NAME OPTION ...: compiles the C files that are named on standard input into libNAME.a
archive() {
  name=$1
  shift
  mkdir "objects-$name"
  # shellcheck disable=SC2086  # one word a flag
  sed "s,^,$work/," | (cd "objects-$name" &&
    xargs -P "$(nproc)" -n 8 i686-w64-mingw32-gcc-posix $flags -w "$@" -c)
  i686-w64-mingw32-ar rcs "$to/lib/lib$name.a" "objects-$name"/*.o
}

# Encoders and muxer, too: the tests make their pictures with them.
get_source libwebp-dev webp
ls webp/sharpyuv/*.c webp/src/dec/*.c webp/src/demux/demux.c webp/src/dsp/*.c webp/src/enc/*.c \
  webp/src/mux/*.c webp/src/utils/*.c | archive webp "-I$work/webp"
mkdir "$to/include/webp"
cp webp/src/webp/*.h "$to/include/webp"
cp webp/COPYING "$to/licences/libwebp.txt"

get_source liblcms2-dev lcms
ls lcms/src/*.c | archive lcms2 "-I$work/lcms/include"
cp lcms/include/lcms2.h lcms/include/lcms2_plugin.h "$to/include"
cp lcms/COPYING "$to/licences/lcms2.txt"

# configure NAME OPTION ...: as the Windows build itself, a static library
configure() {
  name=$1
  shift
  cmake -Wno-dev -S "$name" -B "build-$name" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$mingw" \
    -DCMAKE_BUILD_TYPE=None -DCMAKE_C_FLAGS="$flags -w" -DCMAKE_INSTALL_PREFIX="$to" "$@" >/dev/null
}
get_source libjpeg62-turbo-dev jpeg
configure jpeg -DENABLE_SHARED=OFF -DWITH_TURBOJPEG=OFF -DWITH_SIMD=OFF
cmake --build build-jpeg --target jpeg-static >/dev/null
cp build-jpeg/libjpeg.a "$to/lib"
cp build-jpeg/jconfig.h jpeg/jpeglib.h jpeg/jmorecfg.h jpeg/jerror.h "$to/include"
cp jpeg/LICENSE.md "$to/licences/libjpeg-turbo.txt"

get_source libtiff-dev tiff
# What cameras and scanners write; the rarer compressions would each take one more library.
for rare in cxx jbig lerc libdeflate lzma tiff-contrib tiff-docs tiff-tests tiff-tools webp zstd; do
  set -- "$@" "-D$rare=OFF"
done
shift
configure tiff -DBUILD_SHARED_LIBS=OFF -DJPEG_LIBRARY="$to/lib/libjpeg.a" \
  -DJPEG_INCLUDE_DIR="$to/include" "$@"
cmake --build build-tiff --target tiff >/dev/null
cp build-tiff/libtiff/libtiff.a "$to/lib"
cp tiff/libtiff/tiff.h tiff/libtiff/tiffio.h tiff/libtiff/tiffvers.h \
  build-tiff/libtiff/tiffconf.h "$to/include"
cp tiff/LICENSE.md "$to/licences/libtiff.txt"
cp /usr/share/doc/libz-mingw-w64-dev/copyright "$to/licences/zlib.txt"

# A header that is its own library.
mkdir "$to/include/stb"
cp /usr/include/stb/stb_image.h "$to/include/stb"
cp /usr/share/doc/libstb-dev/copyright "$to/licences/stb.txt"
