#!/bin/sh
# translations_test.sh LUPDATE SOURCES: every string of the editor has its translation.
set -eu
lupdate=$1 sources=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
status=0
for file in "$sources"/editor/data/translations/*.ts; do
  name=$(basename "$file")
  cp "$file" "$folder/$name"
  "$lupdate" -silent -no-obsolete -locations none -I "$sources" "$sources/editor" -ts "$folder/$name"
  if grep -n -B4 'type="unfinished"' "$folder/$name"; then
    echo "$name: these have no translation; run lupdate and translate them" >&2
    status=1
  fi
  # Fewer than the sources have would mean that the strings were not found.
  [ "$(grep -c '<source>' "$folder/$name")" -ge 100 ] || { echo "$name: strings are missing" >&2; status=1; }
done
exit $status
