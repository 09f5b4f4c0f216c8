#!/usr/bin/env bash
# Whole-process cost of effects on the standard job (a 10 s 1280x720 30 fps clip to H.264 + MP3):
# the job with an empty effect list against the same job with one effect, in one run, as ratios.
# Runs each command RUNS times (default 3) and keeps the fastest, since the machine is shared.
# usage: [RUNS=n] [LISTS="A,|B,"] bench/effects_job.sh path/to/morvane-encode [workdir]
set -eu
ENC=$(realpath "${1:?path to morvane-encode}")
WORK=${2:-$(mktemp -d)}
RUNS=${RUNS:-3}
source "$(dirname "$(realpath "$0")")/standard_clip.sh"
mkdir -p "$WORK" && cd "$WORK"

standard_clip
ARGS="-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 30 -aspect 1.78 -vb 1500k -vcodec libx264"

# The fastest wall time of RUNS runs, in seconds.
measure() {
    local best=""
    for _ in $(seq "$RUNS"); do
        local start end t
        start=$(date +%s.%N)
        "$@" >/dev/null 2>err.log || { tail -5 err.log >&2; exit 1; }
        end=$(date +%s.%N)
        t=$(awk -v a="$start" -v b="$end" 'BEGIN{printf "%.3f", b-a}')
        if [[ -z $best ]] || awk -v a="$t" -v b="$best" 'BEGIN{exit !(a<b)}'; then best=$t; fi
    done
    echo "$best"
}

ratio() { awk -v a="$1" -v b="$2" 'BEGIN{printf "%.3f", a/b}'; }
base=$(measure "$ENC" --effects "" std.mp4 none.mp4 "$ARGS")
echo "empty effect list:   ${base} s"
IFS='|' read -r -a lists <<<"${LISTS:-Brightness:40,|Gray Scale,|Noise:50,|Blur,|Twirl:50,|Emboss:128,}"
for list in "${lists[@]}"; do
    t=$(measure "$ENC" --effects "$list" std.mp4 fx.mp4 "$ARGS")
    printf "%-20s %s s  (%s of the empty list)\n" "$list" "$t" "$(ratio "$t" "$base")"
done
