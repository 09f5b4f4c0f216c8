#!/usr/bin/env bash
# Encodes a generated clip with morvane-encode and with the ffmpeg program given the equivalent
# options, and prints the stream properties of both side by side; "DIFF" marks a row that disagrees.
# usage: bench/encoder_conformance.sh path/to/morvane-encode [workdir]
set -u
ENC=$(realpath "${1:?path to morvane-encode}")
WORK=${2:-$(mktemp -d)}
cd "$WORK" || exit 1
ffmpeg -nostdin -loglevel error -y -f lavfi -i testsrc2=size=320x240:rate=30:duration=2 \
    -f lavfi -i sine=frequency=440:sample_rate=48000:duration=2 -ac 2 -c:v mpeg4 -q:v 2 -c:a pcm_s16le src.mkv

# Translates our dialect to the ffmpeg program's own spelling.
to_ffmpeg() {
    sed -e 's/-VideoOutputHook//' -e 's/-ab /-b:a /' -e 's/-vb /-b:v /' -e 's/-acodec /-c:a /' \
        -e 's/-vcodec /-c:v /' -e 's/-vtag /-tag:v /' -e 's/-deinterlace/-vf yadif/' <<<"$1"
}

props() {
    ffprobe -v error -show_entries \
        stream=codec_name,width,height,pix_fmt,avg_frame_rate,display_aspect_ratio,sample_rate,channels \
        -of compact=p=0:nk=1 "$1" | paste -sd' '
    ffprobe -v error -show_entries format=duration -of default=nw=1:nk=1 "$1"
}

run() { # name extension argument-text
    local name=$1 ext=$2 args=$3
    "$ENC" src.mkv "ours_$name.$ext" "$args" 2>"ours_$name.log" || { echo "$name: ours FAILED: $(tail -1 "ours_$name.log")"; return; }
    eval "ffmpeg -nostdin -loglevel error -y -i src.mkv $(to_ffmpeg "$args") theirs_$name.$ext" 2>"theirs_$name.log" ||
        { echo "$name: ffmpeg FAILED: $(tail -1 "theirs_$name.log")"; return; }
    local a b
    a=$(props "ours_$name.$ext" | paste -sd' ')
    b=$(props "theirs_$name.$ext" | paste -sd' ')
    # durations agree within one frame at 30 fps
    local da=${a##* } db=${b##* }
    local same=$([[ "${a% *}" == "${b% *}" ]] && awk -v x="$da" -v y="$db" 'BEGIN{d=x-y; if(d<0)d=-d; exit !(d<=0.034)}' && echo yes)
    if [[ $same == yes ]]; then echo "same  $name: $a"; else printf 'DIFF  %s\n  ours:   %s\n  ffmpeg: %s\n' "$name" "$a" "$b"; fi
}

A=' -ac 2 -ar 44100 -ab 128k'
V=' -r 25 -aspect 1.33 -vb 800k'
run mpeg1 mpg "-VideoOutputHook $A -acodec mp2 $V -vcodec mpeg1video"
run mpeg2 mpg "-VideoOutputHook $A -acodec mp2 $V -vcodec mpeg2video"
run mpeg4 avi "-VideoOutputHook $A -acodec libmp3lame $V -pix_fmt yuvj420p -vcodec mpeg4"
run flv flv "-VideoOutputHook $A -acodec libmp3lame $V -vcodec flv"
run h264 mp4 "-VideoOutputHook $A -acodec aac $V -vcodec libx264"
run mjpeg avi "-VideoOutputHook $A -acodec pcm_s16le $V -vcodec mjpeg"
run svq1 mov "-VideoOutputHook $A -acodec pcm_s16be $V -vcodec svq1"
run h263p avi "-VideoOutputHook $A -acodec adpcm_ima_wav $V -vcodec h263p"
run h263 3gp "-VideoOutputHook  -ac 1 -ar 8000 -ab 12k -acodec aac -r 15 -aspect 1.22 -vb 200k -vcodec h263 -vf \" scale=176:144\""
run vp8 webm "-VideoOutputHook $A -acodec libvorbis $V -vcodec libvpx"
run huffyuv avi "-VideoOutputHook $A -acodec pcm_u8 $V -vcodec huffyuv"
run msmpeg4v2 avi "-VideoOutputHook $A -acodec adpcm_ms $V -vcodec msmpeg4v2"
run msmpeg4v3 avi "-VideoOutputHook $A -acodec pcm_alaw $V -vcodec msmpeg4v3"
run xvid avi "-VideoOutputHook $A -acodec pcm_mulaw $V -vcodec mpeg4 -vtag xvid"
run rv20 rm "-VideoOutputHook $A -acodec ac3 $V -vcodec rv20"
run wmv1 wmv "-VideoOutputHook $A -acodec wmav2 $V -vcodec wmv1"
run wmv2 wmv "-VideoOutputHook $A -acodec wmav2 $V -vcodec wmv2"
run theora ogv "-VideoOutputHook $A -acodec libvorbis $V -vcodec libtheora"
run flac mkv "-VideoOutputHook $A -acodec flac $V -vcodec libx264"
run gsm avi "-VideoOutputHook  -ac 1 -ar 8000 -ab 13k -acodec libgsm_ms $V -vcodec mpeg4"
run ac3six mkv "-VideoOutputHook  -ac 6 -ar 48000 -ab 384k -acodec ac3 $V -vcodec mpeg4"
run trimcrop mp4 "-VideoOutputHook $A -acodec aac $V -vcodec libx264 -t 1.2 -vf \"crop=300:220:10:10,pad=320:240:10:10:black, scale=160:120\""
run deint avi "-VideoOutputHook $A -acodec libmp3lame $V -vcodec mpeg4 -deinterlace"
run noaudio mp4 "-VideoOutputHook  -an  $V -vcodec libx264"
run novideo mp3 "-VideoOutputHook $A -acodec libmp3lame -vn"
run ntscdv dv "-VideoOutputHook $A -r 30 -aspect 1.33 -vb 200k -target ntsc-dv -vcodec dvvideo"
run paldv dv "-VideoOutputHook $A -r 25 -aspect 1.33 -vb 200k -target pal-dv -vcodec dvvideo"
