#!/bin/sh
# The lines that the fuzz targets reach with their seeds, regressions and what build-fuzz/corpus (or
# the folder KELTO_FUZZ_CORPUS) holds, by folder of the project: coverage.sh, after the preset
# "coverage" is built.
set -eu
cd "$(dirname "$0")/../.."
corpus=${KELTO_FUZZ_CORPUS:-build-fuzz/corpus}
build=build-coverage
objects= profiles=
for binary in "$build"/bin/fuzz_*; do
  target=${binary##*/fuzz_}
  folders=
  for folder in "fuzz/seeds/$target" "fuzz/regressions/$target" "$corpus/$target"; do
    [ ! -d "$folder" ] || folders="$folders $folder"
  done
  LLVM_PROFILE_FILE="$build/$target.profraw" "$binary" $folders >"$build/$target.log" 2>&1 ||
    echo "$target stopped early; see $build/$target.log" >&2
  profiles="$profiles $build/$target.profraw"
  objects="$objects -object $binary"
done
llvm-profdata-14 merge -sparse $profiles -o "$build/all.profdata"
for library in "$build"/lib/*.so; do
  objects="$objects -object $library"
done
set -- $objects
shift
first=$1
shift
echo "lines reached, of all in the folder"
for folder in framing curves keyframes resample image state plugin render runtime/stills runtime/ipl runtime/hfx \
  host/project; do
  report=$(llvm-cov-14 report "$first" "$@" -instr-profile="$build/all.profdata" "$PWD/$folder/" \
    2>/dev/null || true)
  # Of a folder that no target holds, the tool reports everything instead.
  case $(echo "$report" | sed -n 3p) in
    */*) continue ;;
  esac
  echo "$report" | awk -v folder="$folder" '$1 == "TOTAL" { printf "%-16s %s\n", folder, $(NF - 3) }'
done
