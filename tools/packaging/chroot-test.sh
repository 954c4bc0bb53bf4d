#!/bin/sh
# chroot-test.sh PACKAGE: installs a .deb with apt into a fresh Debian 12 of nothing else, in a folder
# that goes afterwards, and renders a film there. Needs root and a Debian mirror.
set -eu
package=$1
[ "$(id -u)" -eq 0 ] || { echo "chroot-test: needs root, for debootstrap and chroot" >&2; exit 1; }
root=$(mktemp -d)
trap 'umount "$root/proc" 2>/dev/null || true; rm -rf --one-file-system "$root" "$root.log"' EXIT
trap 'exit 1' INT TERM
echo "chroot-test: making a Debian 12"
debootstrap --variant=minbase bookworm "$root" ${KELTO_MIRROR:-} >"$root.log" 2>&1 ||
  { tail -n 20 "$root.log" >&2; exit 1; }
# What reaches the mirror from here reaches it from there.
for file in /etc/resolv.conf /etc/hosts; do [ ! -e "$file" ] || cp "$file" "$root$file"; done
[ ! -d /etc/apt/apt.conf.d ] || cp -r /etc/apt/apt.conf.d/. "$root/etc/apt/apt.conf.d/"
mount -t proc proc "$root/proc"
cp "$package" "$root/kelto.deb"
in_root() { chroot "$root" env DEBIAN_FRONTEND=noninteractive LANG=C.UTF-8 "$@"; }
in_root apt-get update >/dev/null
in_root apt-get install -y --no-install-recommends /kelto.deb >"$root/log" 2>&1 ||
  { tail -n 20 "$root/log" >&2; exit 1; }
in_root kelto doctor
# A picture by hand: 2 x 2 pixels of four colours.
printf 'BM\106\0\0\0\0\0\0\0\66\0\0\0\50\0\0\0\2\0\0\0\2\0\0\0\1\0\30\0\0\0\0\0\20\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\377\0\0\0\377\0\0\0\0\0\377\377\377\377\0\0' >"$root/photo.bmp"
in_root kelto render /photo.bmp -o /film.mp4 --size 320x180 --frames 25 --to 2
[ -s "$root/film.mp4" ]
in_root dpkg --remove kelto >/dev/null
[ ! -e "$root/usr/bin/kelto" ]
echo "chroot-test: installed, rendered, removed"
