#!/usr/bin/env bash
# Whole-process comparison on the same 200 small files: bench_probe_files (probe, seek to 7 s when the
# file is that long, one decoded frame drawn into 160 x 120, all in one process) against running
# `ffprobe -show_format -show_streams` once per file. Prints both wall times and their ratio.
#
#   bash bench/probe_vs_ffprobe.sh [path/to/bench_probe_files] [file count] [rounds]
set -euo pipefail

prober=${1:-build-dec-rel/bench/bench_probe_files}
count=${2:-200}
rounds=${3:-3}
[[ -x $prober ]] || { echo "no executable at $prober" >&2; exit 1; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Twenty distinct clips (2 s to 9.5 s, with and without sound, MP4 and Matroska), each copied under
# ten names: 200 files that cover both the seeking and the staying branch.
variants=()
for i in $(seq 0 19); do
    seconds=$((2 + (i % 16) / 2))
    [[ $((i % 2)) -eq 1 ]] && seconds="$seconds.5"
    ext=mp4
    [[ $((i % 4)) -ge 2 ]] && ext=mkv
    audio=(-f lavfi -i "sine=frequency=$((300 + 20 * i)):sample_rate=44100" -c:a aac)
    [[ $((i % 3)) -eq 0 ]] && audio=()
    out="$work/v$i.$ext"
    ffmpeg -v error -y -f lavfi -i "testsrc2=size=160x120:rate=25" "${audio[@]}" \
        -c:v libx264 -preset veryfast -pix_fmt yuv420p -t "$seconds" "$out"
    variants+=("$out")
done
files=()
for n in $(seq 0 $((count - 1))); do
    src=${variants[$((n % 20))]}
    dst="$work/file$n.${src##*.}"
    cp "$src" "$dst"
    files+=("$dst")
done

now() { date +%s.%N; }
ours_loop() { "$prober" "${files[@]}" > "$work/ours.txt"; }
ffprobe_loop() {
    for f in "${files[@]}"; do
        ffprobe -v error -show_format -show_streams "$f" > /dev/null
    done
}

# Warm the page cache and the loader once, then keep the best of each over the rounds.
ours_loop
ffprobe_loop
best_ours=
best_ffprobe=
for _ in $(seq "$rounds"); do
    t0=$(now); ours_loop; t1=$(now)
    ffprobe_loop; t2=$(now)
    o=$(echo "$t1 - $t0" | bc -l)
    f=$(echo "$t2 - $t1" | bc -l)
    if [[ -z $best_ours ]] || (($(echo "$o < $best_ours" | bc -l))); then best_ours=$o; fi
    if [[ -z $best_ffprobe ]] || (($(echo "$f < $best_ffprobe" | bc -l))); then best_ffprobe=$f; fi
done

echo "files:               $count ($(cat "$work/ours.txt"))"
printf 'bench_probe_files:   %.3f s\n' "$best_ours"
printf 'ffprobe per file:    %.3f s\n' "$best_ffprobe"
printf 'ratio ours/ffprobe:  %.3f\n' "$(echo "$best_ours / $best_ffprobe" | bc -l)"
