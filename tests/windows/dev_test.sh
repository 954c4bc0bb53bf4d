#!/bin/sh
# dev_test.sh SOURCES: what ./dev test does about the Windows tests where they cannot run: stand-ins
# take the place of the builders, of the package archive, of fuzzing and of valgrind.
set -eu
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
fail() {
  echo "dev_test: $1" >&2
  cat "$folder/output" >&2
  exit 1
}

mkdir -p "$folder/bin" "$folder/build-asan"
cp -r "$1/dev" "$1/tools" "$folder"
printf '#!/bin/sh\necho "cmake $*"\n' >"$folder/bin/cmake"
printf '#!/bin/sh\necho "ctest $*"; : >build-asan/test.log\n' >"$folder/bin/ctest"
printf '#!/bin/sh\necho "E: no network" >&2\nexit 100\n' >"$folder/bin/apt-get"
printf 'echo "fuzz $*"\n' >"$folder/tools/fuzz/run.sh"
printf 'echo memcheck\n' >"$folder/tools/memcheck.sh"
chmod +x "$folder"/bin/*
export PATH="$folder/bin:$PATH" KELTO_CACHE="$folder/cache"
dev_test() { "$folder/dev" test >"$folder/output" 2>&1; }
said() { grep -q "$1" "$folder/output"; }

unset KELTO_SKIP_WINDOWS
if dev_test; then fail "without Wine the tests passed"; fi
said "Windows tests cannot run" || fail "it does not say why it failed"
said "ctest --preset release" && fail "it went on without Wine"

export KELTO_SKIP_WINDOWS=1
dev_test || fail "without the Windows tests the others failed"
said "KELTO_SKIP_WINDOWS=1: .* SKIPPED" || fail "it does not say that tests are skipped"
said "preset windows" && fail "it built for Windows all the same"
said "^fuzz 60" || fail "it fuzzes nothing"
said "^memcheck" || fail "valgrind looks at nothing"
tail -n 1 "$folder/output" | grep -q "^ctest --preset release" || fail "the last tests are others"
