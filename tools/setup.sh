#!/bin/sh
# setup.sh [LIST]: installs the Debian packages of a list; by default what building, testing and the
# demo need. Does nothing when all of them are there. Works as root, or through sudo.
set -eu
list=${1:-$(dirname "$0")/packages.txt}

if ! command -v dpkg-query >/dev/null 2>&1; then
  echo "setup: this script installs Debian packages; on other systems install what $list lists" >&2
  exit 1
fi

missing=""
for package in $(sed 's/#.*//' "$list"); do
  case "$(dpkg-query -W -f '${Status}' "$package" 2>/dev/null || true)" in
    "install ok installed") ;;
    *) missing="$missing $package" ;;
  esac
done
[ -n "$missing" ] || exit 0

root=""
if [ "$(id -u)" -ne 0 ]; then
  if ! command -v sudo >/dev/null 2>&1; then
    echo "setup: these packages are missing and need root to install:$missing" >&2
    exit 1
  fi
  root=sudo
fi
log=$(mktemp)
trap 'rm -f "$log"' EXIT
echo "setup: installing$missing"
run() {
  DEBIAN_FRONTEND=noninteractive $root "$@" >"$log" 2>&1 || {
    cat "$log" >&2
    echo "setup: '$*' failed; see above" >&2
    exit 1
  }
}
run apt-get update
# shellcheck disable=SC2086  # one word a package
run env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends $missing
