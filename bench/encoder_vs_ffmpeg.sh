#!/usr/bin/env bash
# Whole-process comparison of morvane-encode with the ffmpeg program on the standard job: a 10 s
# 1280x720 30 fps clip to H.264 + MP3. Prints wall time and peak memory (from /usr/bin/time -v) and the
# ratios. Runs each command RUNS times (default 3) and keeps the fastest, since the machine is shared.
# usage: bench/encoder_vs_ffmpeg.sh path/to/morvane-encode [workdir]
set -eu
ENC=$(realpath "${1:?path to morvane-encode}")
WORK=${2:-$(mktemp -d)}
RUNS=${RUNS:-3}
source "$(dirname "$(realpath "$0")")/standard_clip.sh"
mkdir -p "$WORK" && cd "$WORK"

standard_clip
for i in 1 2 3 4 5 6 7 8; do
    [[ -f short$i.mp4 ]] || ffmpeg -nostdin -loglevel error -y -f lavfi -i testsrc2=size=640x360:rate=30:duration=3 \
        -f lavfi -i sine=frequency=440:sample_rate=48000:duration=3 -ac 2 -c:v libx264 -preset veryfast \
        -c:a aac short$i.mp4
done

ARGS=" -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 30 -aspect 1.78 -vb 1500k -vcodec libx264"
SHORT=" -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 30 -vb 800k -vcodec libx264"

# Runs a command RUNS times; prints "seconds kilobytes cpu%" of the fastest run.
measure() {
    local best_t="" best_m="" best_c=""
    for _ in $(seq "$RUNS"); do
        /usr/bin/time -v "$@" 2>time.log >/dev/null || { tail -5 time.log >&2; exit 1; }
        local t m
        t=$(awk -F': ' '/Elapsed \(wall clock\)/ {n=split($2,a,":"); s=0; for(i=1;i<=n;i++) s=s*60+a[i]; print s}' time.log)
        m=$(awk -F': ' '/Maximum resident set size/ {print $2}' time.log)
        c=$(awk -F': ' '/Percent of CPU/ {sub("%","",$2); print $2}' time.log)
        if [[ -z $best_t ]] || awk -v a="$t" -v b="$best_t" 'BEGIN{exit !(a<b)}'; then
            best_t=$t best_m=$m best_c=$c
        fi
    done
    echo "$best_t $best_m $best_c"
}

read -r ff_t ff_m _ < <(measure ffmpeg -nostdin -loglevel error -y -i std.mp4 -ac 2 -ar 44100 -b:a 128k -c:a libmp3lame \
    -r 30 -aspect 1.78 -b:v 1500k -c:v libx264 ff.mp4)
read -r our_t our_m _ < <(measure "$ENC" std.mp4 ours.mp4 "$ARGS")
read -r hook_t hook_m _ < <(measure "$ENC" --empty-hook std.mp4 hook.mp4 "-VideoOutputHook $ARGS")
read -r idle_t idle_m _ < <(measure "$ENC" --idle-hook std.mp4 idle.mp4 "-VideoOutputHook $ARGS")

tasks=()
for i in 1 2 3 4 5 6 7 8; do tasks+=(short$i.mp4 "out$i.mp4" "$SHORT"); done
read -r p1_t _ p1_c < <(measure "$ENC" --parallel 1 "${tasks[@]}")
read -r p2_t _ _ < <(measure "$ENC" --parallel 2 "${tasks[@]}")

ratio() { awk -v a="$1" -v b="$2" 'BEGIN{printf "%.2f", a/b}'; }
echo "ffmpeg:                 ${ff_t} s, ${ff_m} kB"
echo "morvane-encode:         ${our_t} s, ${our_m} kB  (time $(ratio "$our_t" "$ff_t"), memory $(ratio "$our_m" "$ff_m") of ffmpeg)"
echo "  with an empty hook:   ${hook_t} s, ${hook_m} kB  (time $(ratio "$hook_t" "$our_t") of without)"
echo "  with an idle hook:    ${idle_t} s, ${idle_m} kB  (time $(ratio "$idle_t" "$our_t") of without)"
# One task at a time already keeps p1_c % of the machine busy through codec threads, so running tasks
# side by side can gain at most (cores * 100) / p1_c with the same total work.
cores=$(nproc)
echo "8 short, one at a time: ${p1_t} s, ${p1_c} % CPU (ceiling for running side by side on ${cores} cores: \
$(awk -v n="$cores" -v c="$p1_c" 'BEGIN{printf "%.2f", n*100/c}') times)"
echo "8 short, --parallel 2:  ${p2_t} s  (throughput $(ratio "$p1_t" "$p2_t") times)"
