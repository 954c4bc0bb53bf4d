#!/bin/sh
# Every source file has the project's layout: format_test.sh CLANG_FORMAT SOURCES
set -eu
cd "$2"
# A package's sources come without the repository, and are those that were checked in it.
[ -e .git ] || exit 0
bad=$(git ls-files -z '*.h' '*.cc' '*.cpp' | xargs -0 -n 50 -P "$(nproc)" "$1" --dry-run 2>&1 |
  sed -n 's/^\([^:]*\):.*code should be clang-formatted.*/\1/p' | sort -u)
[ -z "$bad" ] || { printf '%s\n' "not in the project's layout; ./dev format does it:" "$bad"; exit 1; }
