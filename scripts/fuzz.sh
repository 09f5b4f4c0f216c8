#!/usr/bin/env bash
# Builds the libFuzzer targets (clang, AddressSanitizer, UndefinedBehaviorSanitizer) in build/fuzz and
# runs each for SECONDS (default 30). Fails when any target finds a crash, a leak, a time-out, a broken
# invariant or undefined behaviour; the input that did it is left in build/fuzz/artifacts/.
#
#   bash scripts/fuzz.sh [SECONDS]
#
# Seeds are made afresh on every run: slices of the shipped tables, plain and enciphered, the
# builder's argument texts for the shipped presets, and tiny clips from the ffmpeg program. What the
# fuzzers find worth keeping stays in build/fuzz/corpus/ for the next run.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-30}
build=build/fuzz
targets=(table_load_fuzz line_decipher_fuzz encoder_options_fuzz fill_item_fuzz effect_list_fuzz)

echo "== fuzz build"
CC=clang CXX=clang++ cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DMORVANE_FUZZ=ON -DMORVANE_BENCHMARKS=OFF >/dev/null
flock /tmp/morvane-build.lock cmake --build "$build" -j "$(nproc)" --target "${targets[@]}" fuzz_seeds

seeds=$build/seeds
rm -rf "$seeds"
mkdir -p "$seeds/media" "$build/artifacts"
"$build/tests/fuzz/fuzz_seeds" data "$seeds"

# Clips of a few KB; the first byte of a seed picks the extension as fill_item_fuzz reads it.
clip() {
    local index=$1 name=$2
    shift 2
    ffmpeg -v error -y -f lavfi -i testsrc2=size=32x24:rate=5:duration=1 -f lavfi -i sine=duration=1 \
        "$@" "$seeds/clip.$name"
    { printf "\\x$(printf %02x "$index")"; cat "$seeds/clip.$name"; } >"$seeds/media/$name"
    rm -f "$seeds/clip.$name"
}
clip 0 mp4 -c:v mpeg4 -c:a aac -b:a 16k -shortest
clip 1 mkv -c:v libx264 -preset ultrafast -c:a libvorbis -shortest
clip 2 ts -c:v mpeg2video -c:a mp2 -b:a 32k -shortest
clip 3 avi -c:v mjpeg -c:a pcm_s16le -ar 8000 -shortest
clip 4 mp3 -vn -c:a libmp3lame -b:a 8k -ar 8000
clip 5 wav -vn -c:a pcm_u8 -ar 8000
# Long enough for the thumbnail to be taken after a seek; read in the disc import's mode (top bit).
ffmpeg -v error -y -f lavfi -i testsrc2=size=32x24:rate=1:duration=8 -c:v mpeg4 "$seeds/clip.long.mp4"
{ printf '\x80'; cat "$seeds/clip.long.mp4"; } >"$seeds/media/long-mp4"
rm -f "$seeds/clip.long.mp4"

declare -A seedDir=([table_load_fuzz]=table [line_decipher_fuzz]=line [encoder_options_fuzz]=options
    [fill_item_fuzz]=media [effect_list_fuzz]=effects)

failed=()
for target in "${targets[@]}"; do
    echo "== fuzz $target for ${seconds}s"
    corpus=$build/corpus/$target
    mkdir -p "$corpus"
    log=$build/$target.log
    if ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
        "$build/tests/fuzz/$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
        -print_final_stats=1 -artifact_prefix="$build/artifacts/$target-" \
        "$corpus" "$seeds/${seedDir[$target]}" >"$log" 2>&1; then
        grep -E '^#[0-9]+.*(DONE|pulse)' "$log" | tail -1 || true
    else
        tail -n 60 "$log"
        failed+=("$target")
    fi
done

if [ ${#failed[@]} -gt 0 ]; then
    echo "fuzz: findings in ${failed[*]}; inputs in $build/artifacts/, logs in $build/*.log" >&2
    exit 1
fi
echo "fuzz: no findings"
