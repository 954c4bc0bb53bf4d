#!/bin/sh
# chroot-test.sh FOLDER: each of the Debian packages in FOLDER by itself: installed with apt into a fresh
# Debian 12 of nothing else, with what it depends on; its test of debian/tests run there; removed.
# Needs root and a Debian mirror.
set -eu
packages=$(realpath "$1")
here=$(cd "$(dirname "$0")/../.." && pwd)
[ "$(id -u)" -eq 0 ] || { echo "chroot-test: needs root, for debootstrap and chroot" >&2; exit 1; }
folder=$(mktemp -d)
root=
finish() {
  [ -z "$root" ] || umount "$root/proc" 2>/dev/null || true
  rm -rf --one-file-system "$folder"
}
trap finish EXIT
trap 'exit 1' INT TERM
quietly() { "$@" >"$folder/log" 2>&1 || { tail -n 20 "$folder/log" >&2; exit 1; }; }

echo "chroot-test: making a Debian 12"
quietly debootstrap --variant=minbase bookworm "$folder/fresh" ${KELTO_MIRROR:-}
# What reaches the mirror from here reaches it from there.
for file in /etc/resolv.conf /etc/hosts; do [ ! -e "$file" ] || cp "$file" "$folder/fresh$file"; done
[ ! -d /etc/apt/apt.conf.d ] || cp -r /etc/apt/apt.conf.d/. "$folder/fresh/etc/apt/apt.conf.d/"
mkdir "$folder/fresh/packages"
cp "$packages"/*.deb "$folder/fresh/packages/"
(cd "$folder/fresh/packages" && dpkg-scanpackages . >Packages 2>/dev/null)
echo "deb [trusted=yes] file:/packages ./" >"$folder/fresh/etc/apt/sources.list.d/built.list"
cp -r "$here/debian/tests" "$folder/fresh/tests"
quietly chroot "$folder/fresh" apt-get update

# needs TEST: what a test of debian/tests/control depends on
needs() { sed -n "/^Tests: $1\$/,/^\$/s/^Depends: //p" "$here/debian/tests/control" | tr -d ,; }

count=0
for test in $(sed -n 's/^Tests: //p' "$here/debian/tests/control"); do
  # The first that a test depends on is what it is about, the rest what it needs besides.
  package=$(needs "$test" | cut -d' ' -f1)
  root=$folder/root
  cp -a "$folder/fresh" "$root"
  mount -t proc proc "$root/proc"
  in_root() { chroot "$root" env DEBIAN_FRONTEND=noninteractive LANG=C.UTF-8 "$@"; }
  quietly in_root apt-get install -y --no-install-recommends "$package"
  # shellcheck disable=SC2046  # one word a package
  quietly in_root apt-get install -y --no-install-recommends $(needs "$test")
  # A fresh machine has none of this one's settings, such as a compiler launcher.
  in_root env -i PATH="$PATH" HOME=/root LANG=C.UTF-8 "/tests/$test" >"$folder/output" 2>&1 ||
    { cat "$folder/output" >&2; echo "chroot-test: $package: debian/tests/$test failed" >&2; exit 1; }
  in_root dpkg-query -L "$package" >"$folder/files"
  quietly in_root apt-get remove -y "$package"
  while read -r file; do
    [ -d "$root$file" ] || [ ! -e "$root$file" ] || { echo "chroot-test: $package leaves $file" >&2; exit 1; }
  done <"$folder/files"
  umount "$root/proc"
  rm -rf --one-file-system "$root"
  root=
  count=$((count + 1))
  echo "chroot-test: $package: installed, used, removed"
done
[ "$count" -eq "$(ls "$packages"/*.deb | wc -l)" ] ||
  { echo "chroot-test: $count packages were tried, of those in $packages" >&2; exit 1; }
