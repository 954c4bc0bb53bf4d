#!/bin/sh
# zip_test.sh SOURCES BUILD: packs the zip, unpacks it into an empty folder and runs the command that
# its README shows, with nothing but Wine around.
set -eu
sources=$1
build=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
fail() {
  echo "zip_test: $1" >&2
  exit 1
}

sh "$sources/tools/windows/pack.sh" "$build" "$folder/kelto.zip"
cd "$folder"
cmake -E tar xf kelto.zip
cd kelto-windows-i686
for file in KeltoPanAndZoom.hfx hfx.dll kelto.exe libstdc++-6.dll README.txt; do
  [ -s "$file" ] || fail "$file is not in the zip"
done

cp /usr/share/backgrounds/picosdeeuropa_by_Aitzol_Berasategi.jpg photo.jpg
command=$(tr -d '\r' <README.txt | sed -n 's/^    wine kelto.exe /kelto.exe /p')
[ "$(echo "$command" | wc -l)" -eq 1 ] || fail "the README shows another number of commands"
set -f # the number's place in the pictures' name is for the command
# shellcheck disable=SC2086  # one word an option
env -u WINEPATH -u KELTO_MODULE "$sources/tools/windows/run-wine" $command

set +f
count=0
for picture in frame-*.png; do
  [ "$(head -c 4 "$picture" | tail -c 3)" = PNG ] || fail "$picture is no PNG"
  [ "$(wc -c <"$picture")" -gt 100000 ] || fail "$picture shows nothing"
  count=$((count + 1))
done
[ "$count" -eq 10 ] || fail "$count pictures instead of 10"
