#!/usr/bin/env bash
# The terminal front end never loses a file: outputs that would meet their source or each other take
# free names, runs side by side keep out of each other's way, and a stop or a kill leaves every older
# file as it was and nothing under an unfinished output's name.
set -u
cli="$1"
source "$(dirname "$0")/checks.sh"
preset="MP4 - MPEG-4 320 x 240 small"
clip() { # path, seconds, size
    ffmpeg -nostdin -loglevel error -y -f lavfi -i "testsrc2=size=${3:-160x120}:rate=25:duration=$2" \
        -f lavfi -i "sine=duration=$2" -c:v mpeg4 -c:a aac -shortest "$1"
}
plays() { ffprobe -v error -show_entries format=duration -of csv=p=0 "$1" 2>/dev/null | grep -q '[0-9]'; }
parts() { find "$1" -name '*.part' | wc -l; }
# Waits until a part file shows that a conversion into the folder is under way.
wait_part() { for _ in $(seq 1 200); do [ "$(parts "$1")" -gt 0 ] && return 0; sleep 0.05; done; return 1; }

clip "$work/short.mp4" 1
clip "$work/long.mp4" 60 640x360

# Same base names in one batch, under both naming rules: every file gets an output of its own.
mkdir -p "$work/in/a" "$work/in/b"
cp "$work/short.mp4" "$work/in/a/clip.mp4"
cp "$work/short.mp4" "$work/in/b/clip.mp4"
ffmpeg -nostdin -v error -y -i "$work/short.mp4" -c copy "$work/in/b/clip.mkv"
for mode in --overwrite --rename; do
    out="$work/same$mode"
    "$cli" --preset "$preset" --output "$out" $mode "$work/in" 2>/dev/null
    rc=$?
    n=0
    for f in "$out"/*; do plays "$f" && n=$((n + 1)); done
    [ $rc -eq 0 ] && [ $n -eq 3 ] && [ -e "$out/clip_(new_1).MP4" ]
    check "three sources of one base name make three outputs ($mode)" $?
done

# A camera file converted into its own folder: the source is never its own output.
mkdir -p "$work/cam"
cp "$work/short.mp4" "$work/cam/CAM_0001.MP4"
sum=$(md5sum <"$work/cam/CAM_0001.MP4")
for mode in --overwrite --rename; do
    "$cli" --preset "$preset" --output "$work/cam" $mode "$work/cam/CAM_0001.MP4" 2>/dev/null; rc=$?
    [ $rc -eq 0 ] && [ "$(md5sum <"$work/cam/CAM_0001.MP4")" = "$sum" ] && plays "$work/cam/CAM_0001_(new).MP4"
    check "a source named like its output stays untouched ($mode)" $?
    rm -f "$work/cam/CAM_0001_(new).MP4"
done

# Two runs into one folder at once, both overwriting: the second begins while the first converts, so
# neither output is a file the other was asked to replace, and both stay.
mkdir -p "$work/twice"
"$cli" --preset "$preset" --output "$work/twice" --overwrite "$work/long.mp4" 2>/dev/null &
wait_part "$work/twice"
"$cli" --preset "$preset" --output "$work/twice" --overwrite "$work/long.mp4" 2>/dev/null &
wait
plays "$work/twice/long.MP4" && plays "$work/twice/long_(new).MP4" && [ "$(parts "$work/twice")" -eq 0 ]
check "two runs into one folder at once keep both outputs" $?

# Four starts at once each load the whole catalogue, not a half-written or deleted one.
"$cli" --list-presets >"$work/presets.txt" 2>/dev/null
for n in 1 2 3 4; do "$cli" --list-presets >"$work/presets$n.txt" 2>/dev/null & done
wait
ok=0
for n in 1 2 3 4; do cmp -s "$work/presets.txt" "$work/presets$n.txt" || ok=1; done
[ $ok -eq 0 ] && [ "$(wc -l <"$work/presets.txt")" -gt 100 ]
check "four starts at once all load the whole catalogue" $?
[ -z "$(find "$XDG_DATA_HOME" -maxdepth 3 -name 'run-*')" ]
check "every run removes its working folder" $?

# A killed run leaves nothing under the output's name; the next run of that name clears its leftover.
mkdir -p "$work/killed"
"$cli" --preset "$preset" --output "$work/killed" "$work/long.mp4" 2>/dev/null &
pid=$!
wait_part "$work/killed"
kill -KILL $pid
wait $pid 2>/dev/null
[ ! -e "$work/killed/long.MP4" ] && [ "$(parts "$work/killed")" -eq 1 ]
check "SIGKILL mid-run leaves nothing under the final name" $?
mkdir -p "$work/again"
cp "$work/short.mp4" "$work/again/long.mp4"
"$cli" --preset "$preset" --output "$work/killed" "$work/again/long.mp4" 2>/dev/null
[ "$(parts "$work/killed")" -eq 0 ] && plays "$work/killed/long.MP4"
check "the next run of the name removes the killed run's leftover" $?

# Ctrl-C during two tasks at once, right after a third finished, over older files of those names:
# the finished output stays, the older files stay as they were, nothing unfinished is left.
mkdir -p "$work/stop"
cp "$work/long.mp4" "$work/long2.mp4"
for name in short long long2; do echo "older" >"$work/stop/$name.MP4"; done
"$cli" --preset "$preset" --output "$work/stop" --overwrite --parallel 2 \
    "$work/short.mp4" "$work/long.mp4" "$work/long2.mp4" 2>/dev/null &
pid=$!
for _ in $(seq 1 200); do plays "$work/stop/short.MP4" && break; sleep 0.05; done
wait_part "$work/stop"
kill -INT $pid
wait $pid; rc=$?
[ $rc -eq 1 ] && plays "$work/stop/short.MP4" && [ "$(cat "$work/stop/long.MP4")" = "older" ] &&
    [ "$(cat "$work/stop/long2.MP4")" = "older" ] && [ "$(parts "$work/stop")" -eq 0 ]
check "Ctrl-C keeps finished outputs and older files and leaves nothing unfinished" $?

finish
