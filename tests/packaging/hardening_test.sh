#!/bin/sh
# hardening_test.sh BUILD: whether every program and library that is shipped, as built, installed and
# packaged, has what keeps a fault in a decoder from becoming more. Each is read from the file.
set -eu
build=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
fail() { echo "hardening_test: $*" >&2; exit 1; }
. "$(dirname "$0")/shipped_trees.sh"

# has WHAT FILE PATTERN: whether a line of what was read from FILE last matches
has() { grep -Eq -- "$3" "$folder/read" || fail "$2 has no $1"; }

check() {
  file=$1
  readelf -W -h -l -d -n --dyn-syms "$file" >"$folder/read"
  has "position-independent code" "$file" '^ *Type: +DYN'
  has "relocations that are read-only" "$file" '^ *GNU_RELRO'
  has "binding at the start" "$file" '(FLAGS\).*BIND_NOW|FLAGS_1\).*NOW)'
  has "stack without code" "$file" '^ *GNU_STACK .* RW +0x'
  ! grep -q TEXTREL "$folder/read" || fail "$file has code that the loader writes to"
  case $(uname -m) in
    x86_64)
      has "mark of a shadow stack" "$file" 'x86 feature:.*SHSTK'
      objdump -d --no-show-raw-insn "$file" >"$folder/code"
      # Each exported function, and each that is called through a pointer, begins with one.
      landing=$(grep -c endbr64 "$folder/code")
      exported=$(grep -Ec 'FUNC +GLOBAL +DEFAULT +[0-9]+ ' "$folder/read" || true)
      [ "$landing" -gt 0 ] && [ "$landing" -ge "$exported" ] ||
        fail "$file has $landing landing pads for $exported functions"
      ;;
  esac
}

# Those that a build ships, by their names in the package.
elf_files "$folder/package" >"$folder/packaged"
sed 's,.*/,,' "$folder/packaged" | sort -u >"$folder/names"
[ "$(wc -l <"$folder/names")" -ge 8 ] || fail "the package has only: $(cat "$folder/names")"
{
  cat "$folder/packaged"
  elf_files "$folder/tree"
  elf_files "$folder/frei0r"
  elf_files "$build/bin"
  elf_files "$build/lib"
} >"$folder/all"
while read -r file; do
  ! grep -Fqx "$(basename "$file")" "$folder/names" || echo "$file"
done <"$folder/all" >"$folder/shipped"
[ "$(wc -l <"$folder/shipped")" -ge $(($(wc -l <"$folder/names") * 3)) ] ||
  fail "only these were found: $(cat "$folder/shipped")"
while read -r file; do check "$file"; done <"$folder/shipped"

# What small libraries need not contain.
for file in "$folder/package/usr/bin/kelto" "$folder/package/usr/lib/kelto/KeltoPanAndZoom.hfx" \
  "$folder"/package/usr/lib/kelto/*frei0r*.so*; do
  readelf -W --dyn-syms "$file" >"$folder/read"
  has "stack protector" "$file" 'UND __stack_chk_fail'
  has "checked calls of the C library" "$file" 'UND __[a-z_]+_chk'
done
case $(uname -m) in
  x86_64)
    # A large frame is entered page by page, each touched.
    objdump -d --no-show-raw-insn "$folder/package/usr/bin/kelto" >"$folder/code"
    grep -Eq 'orq +\$0x0,' "$folder/code" || fail "the command has no stack-clash protection"
    ;;
esac
