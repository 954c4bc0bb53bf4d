#!/bin/sh
# prepare.sh FOLDER: the photographs, video and sound that the examples of the documents speak of.
set -eu
cd "$1"
photos=/usr/share/backgrounds
ln -sf "$photos/picosdeeuropa_by_Aitzol_Berasategi.jpg" photo.jpg
ln -sf "$photos/friends_by_Aitzol_Berasategi.jpg" portrait.jpg
mkdir -p photos
for name in picosdeeuropa sunset life friends; do
  ln -sf "$photos/${name}_by_Aitzol_Berasategi.jpg" "photos/$name.jpg"
done
[ -f clip.mp4 ] || ffmpeg -nostdin -v error -f lavfi -i testsrc2=size=1280x720:rate=25 -f lavfi \
  -i sine=frequency=440 -t 2 -pix_fmt yuv420p clip.mp4
ln -sf clip.mp4 video.mp4
[ -f music.wav ] || ffmpeg -nostdin -v error -f lavfi -i sine=frequency=330:duration=6 music.wav
# A sky of 16 bits, and a logo on nothing.
[ -f sky.png ] || ffmpeg -nostdin -v error -f lavfi -i \
  "nullsrc=size=960x540,format=gray16le,geq=lum='30000+15*Y'" -frames:v 1 -pix_fmt rgb48be sky.png
[ -f logo.png ] || ffmpeg -nostdin -v error -f lavfi -i \
  "nullsrc=size=640x640,format=rgba,geq=r=255:g=160:b=0:a='255*lte(hypot(X-320,Y-320),300)'" \
  -frames:v 1 logo.png
