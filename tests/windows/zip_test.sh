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

# Folders and pictures are named after people and places, in letters of the system's code page.
# Wine takes this side's names for what the locale says.
export LC_ALL=C.UTF-8
named="$folder/José und Zoë"
mv "$folder/kelto-windows-i686" "$named"
cd "$named"
mv photo.jpg 'Fête.jpg'
kelto() { env -u WINEPATH -u KELTO_MODULE "$sources/tools/windows/run-wine" kelto.exe "$@"; }
small='--size 160x120 --frames 2'
# shellcheck disable=SC2086
kelto render 'Fête.jpg' -o 'été-%02d.png' $small || fail "no pictures under a name with accents"
[ -s 'été-01.png' ] || fail "the pictures with accents in their name lie elsewhere"
kelto new 'Fête.jpg' -o 'Fête.json' || fail "no project of a picture with accents in its name"
grep -q '"image": "Fête.jpg"' 'Fête.json' || fail "the project names another picture"
# shellcheck disable=SC2086
kelto render 'Fête.json' -o 'Fête.y4m' $small || fail "no film of a project with accents in its name"
[ -s 'Fête.y4m' ] || fail "the film with accents in its name lies elsewhere"
mkdir photos
cp 'Fête.jpg' photos
# shellcheck disable=SC2086
kelto batch photos -o films --format y4m $small || fail "no films of a folder of such pictures"
[ -s films/Fête.y4m ] || fail "the film of a folder lies elsewhere"
kelto batch photos -o later --format y4m --plan >plan || fail "no list of films to make"
folders=$(LC_ALL=C grep -ao 'Jos[^a-z]* und Zo' plan | sort -u | wc -l)
[ "$folders" -eq 1 ] || fail "the list spells the folder in $folders ways"
# The folder for passing files lies below the user's, which bears a name.
printf 'set TMP=%%CD%%\r\nkelto.exe doctor\r\n' >doctor.bat
"$sources/tools/windows/run-wine" cmd /c doctor.bat >said
grep -q '^kelto can render on this machine' said || fail "the doctor is lost in such a folder"
