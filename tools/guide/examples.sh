#!/bin/sh
# examples.sh DOCUMENT...: the shell examples of Markdown documents, in their order.
set -eu
awk '/^```sh$/ { inside = 1; next } /^```$/ { inside = 0 } inside { print }' "$@"
