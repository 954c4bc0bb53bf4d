#!/bin/sh
# get-wine.sh FOLDER: puts 32-bit Wine and its libraries into FOLDER, unpacked from Debian's
# packages. Needs no root, installs nothing. The folder can be moved until run-wine has used it.
set -eu
# shellcheck source=tools/windows/cache.sh
. "$(dirname "$0")/cache.sh"
to=$(cd "$1" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

echo "deb [arch=i386] $(debian_mirror) $debian_release main" >"$work/sources.list"
apt32() {
  private_apt "$work" -o APT::Architecture=i386 -o APT::Architectures::=i386 \
    -o APT::Install-Recommends=false "$@"
}
apt32 update
apt32 install --download-only -y wine32 wine

# Wine looks for its own parts beside the C library, by way of /lib.
mkdir -p "$to/usr/lib"
ln -s usr/lib "$to/lib"
for package in "$work"/cache/archives/*.deb; do
  dpkg-deb --fsys-tarfile "$package" |
    tar -x --keep-directory-symlink --no-same-owner -C "$to"
done

# The package's installation script would mark zlib as one of Wine's own libraries, which is done by
# sixteen bytes after the file's first header.
parts=$to/usr/lib/i386-linux-gnu/wine/i386-windows
zlib=$to/usr/i686-w64-mingw32/lib/zlib1.dll
{
  head -c 64 "$zlib"
  printf 'Wine builtin DLL'
  head -c 16 /dev/zero
  tail -c +97 "$zlib"
} >"$parts/zlib1.dll"
# Debian's wineserver is a script with absolute paths that has the server end with its last client;
# the real one lingers, so that the next program starts at once.
ln -sf wineserver32 "$to/usr/lib/wine/wineserver"

# Two thirds of the size are debug data.
find "$parts" -type f ! -name '*.tlb' ! -name '*.nls' ! -name '*.inf' -print0 |
  xargs -0 -n 50 i686-w64-mingw32-strip -S
rm -rf "$to/usr/share/doc" "$to/usr/share/man" "$to/usr/share/locale" \
  "$to/usr/x86_64-w64-mingw32" "$parts/../x86_64-windows"
