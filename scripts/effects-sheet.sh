#!/usr/bin/env bash
# Makes docs/effects.png: a generated test picture (a fractal over soft gradients, nested squares,
# colour bars) through every effect, with the tool built in build/release.
#   bash scripts/effects-sheet.sh [OUT.png]
set -euo pipefail
cd "$(dirname "$0")/.."
out=${1:-docs/effects.png}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
ffmpeg -nostdin -loglevel error -y \
    -f lavfi -i "gradients=s=640x480:c0=0x2060c0:c1=0xf0a030:c2=0xc02040:c3=0x30a060:n=4:seed=3" \
    -f lavfi -i "mandelbrot=size=640x480:start_scale=0.8:start_x=-0.75:outer=normalized_iteration_count" \
    -f lavfi -i "testsrc2=size=640x480" \
    -filter_complex "[0]format=rgb24[g];[1]format=rgb24[m];[g][m]blend=all_mode=softlight[a];
        [2]format=rgb24,crop=640:150:0:330[t];[a][t]overlay=0:330,
        drawbox=x=420:y=40:w=160:h=160:color=white:t=fill,drawbox=x=445:y=65:w=110:h=110:color=0x203040:t=fill,
        drawbox=x=470:y=90:w=60:h=60:color=0xffd040:t=fill" \
    -frames:v 1 "$work/picture.png"
build/release/app/morvane-effects-sheet --cell 220 --columns 8 "$work/picture.png" "$out"
echo "effects-sheet: $out"
