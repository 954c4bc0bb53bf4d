#!/bin/sh
# native_names.sh KELTO FOLDER COUNT: makes COUNT different pictures in FOLDER, and the film of each by
# the command of this machine, to hold the Windows command's films of the same pictures against.
set -eu
kelto=$1 folder=$2 count=$3
[ -x "$kelto" ] || {
  echo "$kelto is missing; build the command for this machine first (./dev build)" >&2
  exit 1
}
rm -rf "$folder"
mkdir -p "$folder"
python3 - "$folder" "$count" <<'PYTHON'
import struct, sys
width, height = 64, 48
for number in range(int(sys.argv[2])):
    rows = b"".join(bytes(((x * 4 + number * 5) & 255, (y * 5 + number * 11) & 255,
                           (x * y + number * 23) & 255))
                    for y in range(height) for x in range(width))
    with open(f"{sys.argv[1]}/{number}.bmp", "wb") as file:
        file.write(b"BM" + struct.pack("<IIIIiiHHIIiiII", 54 + len(rows), 0, 54, 40, width, height,
                                       1, 24, 0, len(rows), 0, 0, 0, 0) + rows)
PYTHON
cd "$folder"
cat >options.txt <<'OPTIONS'
--size 64x48 --frames 2 --from 1 --to 2@0.1,0.1 --filter hiqual
OPTIONS
number=0
while [ $number -lt "$count" ]; do
  # shellcheck disable=SC2046  # one word an option
  "$kelto" render $number.bmp -o $number.yuyv $(cat options.txt)
  number=$((number + 1))
done
