#!/bin/sh
# Memory of 1, 2 and 8 instances that show one photograph of 24 megapixels at 1920x1080, on a thread
# each, as a host with as many render threads has them.
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
build=$(cd "${KELTO_BUILD:-$root/build}" && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

c++ -std=c++20 -O1 -I"$root" "$root/bench/sharing/memory.cc" -o "$folder/memory" -ldl -pthread
ffmpeg -nostdin -v error -f lavfi -i testsrc2=size=6000x4000,noise=alls=10 -frames:v 1 -q:v 3 \
  "$folder/photo.jpg"
echo
echo "| instances | resident after, MiB | peak MiB |"
echo "| --------: | ------------------: | -------: |"
for instances in 1 2 8; do
  "$folder/memory" "$build/lib/frei0r-1" "$folder/photo.jpg" "$instances"
done
