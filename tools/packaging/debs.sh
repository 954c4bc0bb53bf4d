#!/bin/sh
# debs.sh BUILD FOLDER: makes the Debian packages of what BUILD holds, in FOLDER, by debian/rules. Writes
# nowhere else, so that several may run at once.
set -eu
build=$(realpath "$1") packages=$(realpath "$2")
here=$(cd "$(dirname "$0")/../.." && pwd)
staging=$(mktemp -d)
trap 'rm -rf "$staging"' EXIT
cp -r "$here/debian" "$here/examples" "$here/CHANGELOG.md" "$staging/"
cd "$staging"
KELTO_BUILT=$build KELTO_PACKAGES=$packages DEB_RULES_REQUIRES_ROOT=no DH_QUIET=1 \
  debian/rules binary >"$staging/log" 2>&1 || { tail -n 40 "$staging/log" >&2; exit 1; }
