#!/bin/sh
# native_frames.sh KELTO FOLDER: renders the films of agreement_cases.txt into FOLDER, and makes the
# pictures that they show.
set -eu
kelto=$1
folder=$2
here=$(cd "$(dirname "$0")" && pwd)
[ -x "$kelto" ] || {
  echo "$kelto is missing; build the command for this machine first (./dev build)" >&2
  exit 1
}
rm -rf "$folder"
mkdir -p "$folder"
photo=/usr/share/backgrounds/picosdeeuropa_by_Aitzol_Berasategi.jpg
cp "$photo" "$folder/JPEG"
# Without loss, so that both builds start from the same pixels whatever their decoders do.
ffmpeg -loglevel error -i "$photo" -pix_fmt bgr24 "$folder/photo.bmp"
mv "$folder/photo.bmp" "$folder/PHOTO"
# Other files that decoders may not read in two ways: full-size chroma, deep colour, packed rows.
convert() {
  ffmpeg -loglevel error -i "$photo" -vf scale=1280:960 "$@" "$folder/photo.$form"
  mv "$folder/photo.$form" "$folder/$name"
}
name=JPEG444 form=jpg convert -pix_fmt yuvj444p -q:v 2
name=JPEG420 form=jpg convert -pix_fmt yuvj420p -q:v 2
name=PNG48 form=png convert -pix_fmt rgb48be
name=TIFF48 form=tif convert -pix_fmt rgb48le -compression_algo deflate
name=CLEAR form=png convert -pix_fmt rgba64be \
  -vf 'scale=1280:960,format=rgba64le,geq=r=r(X\,Y):g=g(X\,Y):b=b(X\,Y):a=32768+34*(H-Y)'
name=PNG24 form=png convert -pix_fmt rgb24
name=TIFF form=tif convert -pix_fmt rgb24 -compression_algo lzw
name=TGA form=tga convert -pix_fmt bgr24
name=WEBP form=webp convert -c:v libwebp -quality 80
env convert "png:$folder/PNG48" -depth 32 -define quantum:format=floating-point "tiff:$folder/FLOATS"
env convert "tga:$folder/TGA" -compress JPEG -quality 85 "tiff:$folder/JPEGTIFF"

# 256 x 192 pixels with each level of each colour.
python3 - "$folder/MADE" <<'PYTHON'
import struct, sys
width, height = 256, 192
rows = b"".join(bytes((x, (x * 3 + y) & 255, (255 - y) & 255)[c] for x in range(width)
                      for c in range(3)) for y in range(height))
with open(sys.argv[1], "wb") as file:
    file.write(b"BM" + struct.pack("<IIIIiiHHIIiiII", 54 + len(rows), 0, 54, 40, width, height,
                                   1, 24, 0, len(rows), 0, 0, 0, 0) + rows)
PYTHON

cd "$folder"
grep -v '^#' "$here/agreement_cases.txt" | while read -r name options; do
  # shellcheck disable=SC2086  # one word an option
  "$kelto" render $options -o "native-$name"
done
