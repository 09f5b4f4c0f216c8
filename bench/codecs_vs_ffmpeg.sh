#!/usr/bin/env bash
# Whole-process comparison of morvane-encode with the ffmpeg program on today's codecs: a 10 s 1920x1080
# 30 fps clip to H.265 in MP4, VP9 in WebM and AV1 in WebM, with the argument text the builder writes
# for a Full HD preset. The two programs run alternately, RUNS times each (default 2), on the same input;
# prints a Markdown table of the wall time of every run and the ratio of the fastest, the least CPU time
# (user + system: the work done, which outside load on a shared machine changes far less than the wall
# time), peak resident memory (from /usr/bin/time), SSIM of each output against the source (the ffmpeg
# program's ssim filter) and whether both outputs agree in codec, tag, size and frame count (ffprobe).
#
# The source, made once in the working folder: a Mandelbrot zoom (fine detail that keeps moving) with
# light temporal grain, as a camera's master file would be: H.264 at about 90 Mb/s with a stereo tone.
#
# The argument texts are what the builder writes for the presets "MP4 - H.265 Full HD 1080p", "WebM - VP9
# Full HD 1080p" and "WebM - AV1 Full HD 1080p" on this source, read from `morvane-cli --dry-run` when
# morvane-cli sits beside morvane-encode (or CLI names it), else the texts below, taken that way.
# H265_ARGS, VP9_ARGS and AV1_ARGS replace them; CODECS="h265 av1" runs a subset. For the ffmpeg program
# -deinterlace becomes yadif at the head of the -vf chain, as the engine's graph has it, and
# -VideoOutputHook goes (no hook is installed, so the engine skips it too).
# usage: [RUNS=n] [CODECS="h265 vp9 av1"] bench/codecs_vs_ffmpeg.sh path/to/morvane-encode [workdir]
set -eu
ENC=$(realpath "${1:?path to morvane-encode}")
WORK=${2:-$(mktemp -d)}
RUNS=${RUNS:-2}
CODECS=${CODECS:-h265 vp9 av1}
mkdir -p "$WORK" && cd "$WORK"
[[ -x /usr/bin/time ]] || { echo "needs /usr/bin/time (Debian package 'time')" >&2; exit 1; }

SOURCE='mandelbrot=size=1920x1080:rate=30,format=yuv420p,noise=alls=4:allf=t'
[[ -f src1080.mp4 ]] || ffmpeg -nostdin -loglevel error -y -f lavfi -i "$SOURCE" \
    -f lavfi -i sine=frequency=440:sample_rate=48000 -t 10 -ac 2 \
    -c:v libx264 -preset veryfast -crf 14 -c:a aac -b:a 160k src1080.mp4

declare -A PRESET=([h265]="MP4 - H.265 Full HD 1080p" [vp9]="WebM - VP9 Full HD 1080p"
    [av1]="WebM - AV1 Full HD 1080p")
V=' -r 30 -aspect 1.78 -vb 6967k'
T=' -deinterlace -t 10 -vf " scale=1920:1080"'
declare -A FALLBACK=(
    [h265]="-VideoOutputHook  -ac 2 -ar 48000 -ab 192k -acodec aac$V -vcodec libx265 -vtag hvc1$T"
    [vp9]="-VideoOutputHook  -ac 2 -ar 48000 -ab 128k -acodec libopus$V -vcodec libvpx-vp9 -deadline good \
-cpu-used 4 -row-mt 1$T"
    [av1]="-VideoOutputHook  -ac 2 -ar 48000 -ab 128k -acodec libopus$V -vcodec libsvtav1 -preset 8$T"
)
CLI=${CLI:-$(dirname "$ENC")/morvane-cli}
builder_text() { # codec
    local t=""
    [[ -x $CLI ]] &&
        t=$("$CLI" --preset "${PRESET[$1]}" --dry-run src1080.mp4 2>/dev/null | sed -n 's/^arguments: //p')
    echo "${t:-${FALLBACK[$1]}}"
}
declare -A ARGS=(
    [h265]=${H265_ARGS:-$(builder_text h265)}
    [vp9]=${VP9_ARGS:-$(builder_text vp9)}
    [av1]=${AV1_ARGS:-$(builder_text av1)}
)
declare -A EXT=([h265]=mp4 [vp9]=webm [av1]=webm)
declare -A LABEL=([h265]="H.265 (libx265, MP4)" [vp9]="VP9 (libvpx-vp9, WebM)" [av1]="AV1 (libsvtav1, WebM)")

# Our dialect in the ffmpeg program's spelling; the deinterlacer joins the -vf chain, since a second -vf
# would replace the first.
to_ffmpeg() {
    local t=$1
    t=${t//-VideoOutputHook/}
    if [[ $t == *-deinterlace* ]]; then
        t=${t//-deinterlace/}
        if [[ $t == *'-vf "'* ]]; then t=${t/-vf \"/-vf \"yadif,}; else t+=' -vf yadif'; fi
    fi
    sed -e 's/-ab /-b:a /' -e 's/-vb /-b:v /' -e 's/-acodec /-c:a /' -e 's/-vcodec /-c:v /' \
        -e 's/-vtag /-tag:v /' <<<"$t"
}

# Runs one command under /usr/bin/time, which leaves "seconds kilobytes cpu% user system" in time.txt.
timed() {
    /usr/bin/time -f '%e %M %P %U %S' -o time.txt "$@" >/dev/null 2>run.log ||
        { tail -5 run.log >&2; exit 1; }
}

props() { # codec, tag, size and frame count of the video stream
    ffprobe -v error -select_streams v:0 -count_packets \
        -show_entries stream=codec_name,codec_tag_string,width,height,nb_read_packets -of csv=p=0 "$1"
}
ssim() { # the ssim filter's "All" figure for an output against the source
    ffmpeg -nostdin -hide_banner -i "$1" -i src1080.mp4 -lavfi '[0:v][1:v]ssim=shortest=1' -f null - 2>&1 |
        sed -n 's/.*SSIM .* All:\([0-9.]*\).*/\1/p' | tail -1
}
kbps() {
    ffprobe -v error -show_entries format=bit_rate -of default=nw=1:nk=1 "$1" | awk '{printf "%d", $1/1000}'
}
min() { tr ' ' '\n' | sort -g | head -1; }
max() { tr ' ' '\n' | sort -g | tail -1; }

echo "load average before: $(cut -d' ' -f1-3 /proc/loadavg)" >&2
rows=()
for c in $CODECS; do
    args=${ARGS[$c]}
    ours=ours_$c.${EXT[$c]} theirs=ffmpeg_$c.${EXT[$c]}
    ff="ffmpeg -nostdin -loglevel error -y -i src1080.mp4 $(to_ffmpeg "$args") $theirs"
    echo "$c: morvane-encode src1080.mp4 $ours \"$args\"" >&2
    echo "$c: $ff" >&2
    our_t="" our_m="" our_c="" ff_t="" ff_m="" ff_c=""
    for i in $(seq "$RUNS"); do
        # Alternate which program goes first, so that neither always meets the same outside load.
        for who in $( ((i % 2)) && echo "ours ffmpeg" || echo "ffmpeg ours"); do
            if [[ $who == ours ]]; then
                rm -f "$ours"
                timed "$ENC" src1080.mp4 "$ours" "$args"
            else
                eval "timed $ff"
            fi
            read -r t m p u s <time.txt
            cpu=$(awk -v u="$u" -v s="$s" 'BEGIN{printf "%.1f", u+s}')
            if [[ $who == ours ]]; then
                our_t+=" $t" our_m+=" $m" our_c+=" $cpu"
            else
                ff_t+=" $t" ff_m+=" $m" ff_c+=" $cpu"
            fi
            echo "$c run $i: $who ${t} s, ${m} kB, ${p} CPU (${cpu} s of CPU time)" >&2
        done
    done
    a=$(props "$ours") b=$(props "$theirs")
    same=$([[ $a == "$b" ]] && echo "same: ${a//,/ }" || echo "DIFF: ours ${a//,/ }, ffmpeg ${b//,/ }")
    best_ours=$(min <<<"${our_t# }") best_ff=$(min <<<"${ff_t# }")
    ratio=$(awk -v a="$best_ours" -v b="$best_ff" 'BEGIN{printf "%.2f", a/b}')
    cpu="$(min <<<"${our_c# }") / $(min <<<"${ff_c# }")"
    rows+=("| ${LABEL[$c]} | ${our_t# } | ${ff_t# } | $ratio | $cpu | $(max <<<"${our_m# }") | \
$(max <<<"${ff_m# }") | $(ssim "$ours") | $(ssim "$theirs") | $(kbps "$ours") / $(kbps "$theirs") | $same |")
done
echo "load average after: $(cut -d' ' -f1-3 /proc/loadavg)" >&2

echo "| Codec | morvane-encode, each run (s) | ffmpeg, each run (s) | Time ratio, fastest | CPU time, least (s) \
| Peak RSS morvane-encode (kB) | Peak RSS ffmpeg (kB) | SSIM morvane-encode | SSIM ffmpeg \
| Bit rate, ours / ffmpeg (kb/s) | Codec, tag, size, frames |"
echo "|---|---|---|---|---|---|---|---|---|---|---|"
printf '%s\n' "${rows[@]}"
