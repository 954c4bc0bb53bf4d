#!/bin/sh
# A slow pan of a Gaussian spot, 16 pixels in 60 frames, through the plug-ins in FFmpeg and melt,
# beside the same motion by FFmpeg's zoompan and MLT's affine: how evenly does the spot move? Then a
# slow steady zoom that carries the spot 10 pixels aside, beside the exact one in levels of 8 bits. The
# last columns are the standard deviation of the second difference of the spot's centre, and its
# largest distance from the mean.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
build=${KELTO_BUILD:-$here/../../build}
FREI0R_PATH=$(cd "$build/lib/frei0r-1" && pwd)
export FREI0R_PATH
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"

python3 "$here/tremble.py" blob blob.pgm 1000 562
ffmpeg -nostdin -v error -i blob.pgm blob.png
cat >profile <<END
description=smoothness
width=320
height=180
frame_rate_num=25
frame_rate_den=1
progressive=1
sample_aspect_num=1
sample_aspect_den=1
display_aspect_num=16
display_aspect_den=9
colorspace=601
END

row() { python3 "$here/tremble.py" row "$1" frames.gray 320 180; }
# by_ffmpeg TITLE OPTION ... : what FFmpeg makes with these inputs and filters
by_ffmpeg() {
  title=$1
  shift
  ffmpeg -nostdin -v error -y "$@" -frames:v 60 -f rawvideo -pix_fmt gray frames.gray
  row "$title"
}
# by_melt TITLE SERVICE ... : what melt makes of these services
by_melt() {
  title=$1
  shift
  melt -silent -profile "$folder/profile" "$@" -consumer avformat:frames.gray f=rawvideo \
    vcodec=rawvideo pix_fmt=gray mlt_image_format=rgba real_time=-2 2>melt.log || { cat melt.log; exit 1; }
  row "$title"
}

heading() {
  printf '\n| %-48s | moved px | backward | standing | px/frame^2  | largest |\n' "$1"
  echo "| ------------------------------------------------ | -------: | -------: | -------: | ----------: | ------: |"
}

heading "slow pan, 320x180"
for filter in hiqual gaussian triangle; do
  by_ffmpeg "FFmpeg, kelto_pan_zoom_src, $filter" -f lavfi -i "frei0r_src=size=320x180:framerate=25:\
filter_name=kelto_pan_zoom_src:filter_params=blob.png|1.25@0.02\\,0|1.25@-0.02\\,0|60|$filter||linear|linear"
  by_melt "melt, kelto_pan_zoom_src, keyframed x, $filter" frei0r.kelto_pan_zoom_src out=59 \
    image=blob.png zoom=1.25 "x=0=0.02;59=-0.02" filter="$filter"
done
# Its positions are whole pixels of the picture, even ones where chroma is halved: 4:4:4 suits it best.
pan="format=yuv444p,zoompan=z=1.25:x=(iw-iw/zoom)/2+iw*(0.02-0.04*on/59):y=(ih-ih/zoom)/2:d=60:s=320x180:fps=25"
by_ffmpeg "FFmpeg, zoompan" -i blob.png -vf "$pan"
by_ffmpeg "FFmpeg, scale to 8000 wide, zoompan" -i blob.png -vf "scale=8000:-2,$pan"
for interpolation in bilinear bicubic; do
  by_melt "melt, affine, $interpolation" blob.png out=59 -filter affine background=colour:black \
    "transition.rect=0=-48 -22.5 400 225;59=-32 -22.5 400 225" transition.fill=1 \
    transition.distort=1 "consumer.rescale=$interpolation" rescale="$interpolation"
done

heading "slow steady zoom, 320x180"
for filter in catmull hiqual ultra; do
  by_ffmpeg "FFmpeg, kelto_pan_zoom_src, $filter" -f lavfi -i "frei0r_src=size=320x180:framerate=25:\
filter_name=kelto_pan_zoom_src:filter_params=blob.png|1.25@-0.12\\,0|1.5@-0.12\\,0|60|$filter||linear|linear"
done
python3 "$here/tremble.py" zoom frames.gray 320 180
row "exact, rounded to 8 bits"
