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

# Packed again, it is the same file to the byte.
sh "$sources/tools/windows/pack.sh" "$build" "$folder/again.zip"
cmp "$folder/kelto.zip" "$folder/again.zip" || fail "two packings of one build differ"

# Every file of ours says what it is.
for file in kelto.exe hfx.dll KeltoPanAndZoom.hfx; do
  i686-w64-mingw32-objdump -h "$file" | grep -q '\.rsrc' || fail "$file has no version"
done
# What keeps a fault in a decoder from becoming more: no fixed place in memory, no code in data.
for file in kelto.exe ./*.dll KeltoPanAndZoom.hfx; do
  i686-w64-mingw32-objdump -p "$file" >../headers
  for mark in DYNAMIC_BASE NX_COMPAT; do
    grep -q "^[[:space:]]*$mark\$" ../headers || fail "$file has no $mark"
  done
  i686-w64-mingw32-objdump -h "$file" | grep -q '\.reloc' || fail "$file cannot be moved in memory"
done
# A function whose stack was written over ends the program; no library beside it sees to that. The
# smaller libraries have next to no function with an array.
for file in kelto.exe hfx.dll KeltoPanAndZoom.hfx; do
  grep -q 'stack smashing detected' "$file" || fail "$file has no stack protector"
  i686-w64-mingw32-objdump -p "$file" >../headers
  ! grep -qi 'libssp.*\.dll' ../headers || fail "$file needs a library for its stack protector"
  checks=$(i686-w64-mingw32-objdump -d "$build/bin/$file" | grep -c 'call .*<___stack_chk_fail>')
  [ "$checks" -ge 20 ] || fail "$file checks the stack of $checks functions"
done

for file in share/kelto/project.schema.json docs/guide.md docs/guide/motion.png licences/boost.txt \
  licences/libwebp.txt; do
  [ -s "$file" ] || fail "$file is not in the zip"
done

# The program runs from a folder whose name no code page has, and finds there what belongs to it.
named="$folder/Программа 写真 📷"
mv "$folder/kelto-windows-i686" "$named"
cd "$named"
kelto() { env -u WINEPATH -u KELTO_MODULE "$sources/tools/windows/run-wine" kelto.exe "$@"; }
small='--size 160x120 --frames 2'
# As much as one look-alike letter away from another photograph, which was rendered instead once.
mv photo.jpg 'Łódź.jpg'
printf 'no photograph' >'Lódz.jpg'
# shellcheck disable=SC2086
kelto render 'Łódź.jpg' -o 'été-%02d.png' $small || fail "no pictures under a name with accents"
[ -s 'été-01.png' ] || fail "the pictures with accents in their name lie elsewhere"
kelto new 'Łódź.jpg' -o 'Łódź.json' || fail "no project of a picture with accents in its name"
grep -q '"image": "Łódź.jpg"' 'Łódź.json' || fail "the project names another picture"
# shellcheck disable=SC2016  # the name of a field
grep -q '"$schema": "project.schema.json"' 'Łódź.json' ||
  fail "the project names no schema"
# shellcheck disable=SC2086
kelto render 'Łódź.json' -o 'Łódź.y4m' $small || fail "no film of a project with accents in its name"
[ -s 'Łódź.y4m' ] || fail "the film with accents in its name lies elsewhere"
mkdir photos
cp 'Łódź.jpg' photos
kelto batch photos -o later --format y4m --plan >plan || fail "no list of films to make"
grep -q 'Программа 写真 📷' plan || fail "the list spells the folder in another way"
# The folder for passing files lies below the user's, which bears a name.
printf 'set TMP=%%CD%%\r\nkelto.exe doctor\r\n' >doctor.bat
"$sources/tools/windows/run-wine" cmd /c doctor.bat >said
grep -q '^kelto can render on this machine' said || fail "the doctor is lost in such a folder"
