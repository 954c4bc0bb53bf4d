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

# With Wine there: of few failed tests, those that pass by themselves do not fail the run, and what
# they said is shown without the hundreds that passed.
unset KELTO_SKIP_WINDOWS
echo : >"$folder/tools/setup.sh"
echo : >"$folder/tools/windows/setup.sh"
cat >"$folder/bin/ctest" <<'STAND_IN'
#!/bin/sh
echo "ctest $*"
case "$*" in
  *--rerun-failed*) exit "$AGAIN" ;;
  *windows*--output-log*)
    mkdir -p build-windows/Testing/Temporary
    seq "$FAILED" >build-windows/Testing/Temporary/LastTestsFailed.log
    printf '%s\n' '      Start  7: Good.One' '  7/840 Test  #7: Good.One ....   Passed    0.05 sec' \
      '      Start  8: Bad.One' '  8/840 Test  #8: Bad.One ....***Failed    0.05 sec' \
      'Expected: 1, which is: 2' >build-windows/test.log
    [ "$FAILED" -eq 0 ]
    ;;
  *--output-log*) : >build-asan/test.log ;;
esac
STAND_IN
export FAILED=1 AGAIN=0
dev_test || fail "a test that passed when run again failed all"
said "Bad.One .*Failed" || fail "it does not say which test failed"
said "Expected: 1, which is: 2" || fail "it does not show what the failed test said"
said "Good.One" && fail "it shows the tests that passed"
export AGAIN=8
if dev_test; then fail "what failed twice passed"; fi
export FAILED=4 AGAIN=0
if dev_test; then fail "four failed tests were taken for Wine's fault"; fi
said "rerun-failed" && fail "four failed tests were run again"
export FAILED=0
dev_test || fail "tests that pass fail"
