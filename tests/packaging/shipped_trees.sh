# Sourced by tests with $build and $folder set: what a build ships, laid out below $folder.
#   tree/      as `cmake --install` puts it
#   frei0r/    the plug-ins alone
#   packages/  the Debian packages
#   package/   those, unpacked into one tree
mkdir "$folder/packages"
cmake --install "$build" --prefix "$folder/tree" >"$folder/log" &&
  cmake --install "$build" --component frei0r --prefix "$folder/frei0r" >>"$folder/log" &&
  sh "$(dirname "$0")/../../tools/packaging/debs.sh" "$build" "$folder/packages" >>"$folder/log" 2>&1 ||
  { cat "$folder/log"; fail "installing and packing"; }
for package in "$folder"/packages/*.deb; do dpkg-deb -x "$package" "$folder/package"; done

# elf_files FOLDER: the programs and libraries below it, but for object files
elf_files() {
  find "$1" -type f ! -name '*.o' ! -name '*.a' ! -path '*/CMakeFiles/*' \
    -exec sh -c 'for f; do [ "$(head -c 4 "$f" | tail -c 3)" != ELF ] || echo "$f"; done' sh {} +
}
