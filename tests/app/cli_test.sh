#!/usr/bin/env bash
# The terminal front end as a script uses it: usage errors, preset lookup, a dry run, a real
# conversion of generated clips and the report of a file that does not decode.
set -u
cli="$1"
source "$(dirname "$0")/checks.sh"
preset="MP4 - MPEG-4 320 x 240 small"

for n in 1 2; do
    ffmpeg -nostdin -loglevel error -y -f lavfi -i testsrc2=size=160x120:rate=25:duration=1 \
        -f lavfi -i sine=frequency=440:sample_rate=44100:duration=1 -c:v mpeg4 -c:a aac -shortest \
        "$work/clip$n.mp4"
done
[ -s "$work/clip1.mp4" ] && [ -s "$work/clip2.mp4" ]; check "test clips generated" $?

"$cli" --version >"$work/out" 2>/dev/null; rc=$?
[ $rc -eq 0 ] && grep -Eq '^[^ ]+ [0-9]+\.[0-9]+' "$work/out"; check "--version prints name and version" $?
"$cli" --help >"$work/out" 2>/dev/null; rc=$?
[ $rc -eq 0 ] && grep -q -- "--preset" "$work/out" && grep -q -- "--dry-run" "$work/out"; check "--help lists the options" $?

"$cli" --frobnicate 2>"$work/err"; rc=$?
[ $rc -eq 2 ] && grep -q "frobnicate" "$work/err"; check "an unknown option is a usage error" $?
"$cli" --parallel zero --preset "$preset" "$work/clip1.mp4" 2>/dev/null; [ $? -eq 2 ]
check "a parallel count that is no number is a usage error" $?
"$cli" --preset "$preset" 2>/dev/null; [ $? -eq 2 ]; check "no input is a usage error" $?
"$cli" --preset "no such preset anywhere" "$work/clip1.mp4" 2>"$work/err"; rc=$?
[ $rc -eq 2 ] && grep -q "no preset" "$work/err"; check "an unknown preset is a usage error" $?
"$cli" --preset MP4 "$work/clip1.mp4" 2>"$work/err"; rc=$?
[ $rc -eq 2 ] && grep -q "^  MP4 - .* | " "$work/err"; check "an ambiguous preset lists its candidates" $?

"$cli" --list-presets "320 x 240" >"$work/out" 2>/dev/null; rc=$?
[ $rc -eq 0 ] && grep -qx "$preset | VideoFormat | MP4" "$work/out" && ! grep -v "320 x 240" "$work/out" | grep -q .
check "--list-presets QUERY lists only matching presets as Name | Maker | Keyword" $?
"$cli" --list-presets "no such preset anywhere" >"$work/out" 2>"$work/err"; rc=$?
[ $rc -eq 2 ] && [ ! -s "$work/out" ] && grep -qx 'No preset matches "no such preset anywhere".' "$work/err"
check "--list-presets QUERY without a match says so and exits 2" $?

# The preset test on the first file: without sound the audio preset of the two that "Portable" finds
# fails, with the reason; nothing converted is left anywhere.
ffmpeg -nostdin -loglevel error -y -f lavfi -i testsrc2=size=160x120:rate=25:duration=1 -c:v mpeg4 "$work/silent.mp4"
"$cli" --test-presets Portable "$work/silent.mp4" "$work/clip1.mp4" >"$work/out" 2>/dev/null; rc=$?
[ $rc -eq 1 ] && [ "$(wc -l <"$work/out")" -eq 2 ] && tail -n 1 "$work/out" | grep -qx "1 of 2 presets failed" &&
    grep -q "^WMA - Portable (64 kbps)   .*does not contain any stream" "$work/out" &&
    [ -z "$(find "$work" -iname '*.wmv' -o -iname '*.wma')" ]
check "--test-presets QUERY prints each failing preset with its reason and the count, and keeps no output" $?
"$cli" --test-presets Portable "$work/clip1.mp4" >"$work/out" 2>/dev/null; rc=$?
[ $rc -eq 0 ] && [ "$(cat "$work/out")" = "0 of 2 presets failed" ]; check "--test-presets with all passing exits 0" $?
"$cli" --test-presets Portable 2>"$work/err"; rc=$?
[ $rc -eq 1 ] && grep -q "Portable: No such file" "$work/err"; check "--test-presets WORD takes a lone word for the file" $?
"$cli" --test-presets 2>/dev/null; [ $? -eq 2 ]; check "--test-presets without a file is a usage error" $?

"$cli" --preset "$preset" --output "$work/dry" --dry-run "$work/clip1.mp4" "$work/clip2.mp4" >"$work/out" 2>/dev/null
rc=$?
[ $rc -eq 0 ] && [ "$(grep -c '^arguments: .*-vcodec mpeg4' "$work/out")" -eq 2 ] &&
    grep -q "^output: *$work/dry/clip2\." "$work/out" && grep -q "^seek:" "$work/out" && [ ! -e "$work/dry" ]
check "--dry-run prints each item's arguments and creates nothing" $?

"$cli" --preset "$preset" --set frame-size="640 x 360" --set sample-rate=44100 --set quality=standard \
    --dry-run "$work/clip1.mp4" >"$work/out" 2>/dev/null; rc=$?
[ $rc -eq 0 ] && grep -q "scale=640:360" "$work/out" && grep -q -- "-ar 44100 " "$work/out"
check "--set changes values through the settings, with units optional" $?
"$cli" --preset "$preset" --set sample-rate=12345 --dry-run "$work/clip1.mp4" 2>"$work/err"; rc=$?
[ $rc -eq 2 ] && grep -q "choose one of: .*Hz" "$work/err"; check "--set with a value not offered lists the offered ones" $?
"$cli" --preset "$preset" --set colour=red --dry-run "$work/clip1.mp4" 2>"$work/err"; rc=$?
[ $rc -eq 2 ] && grep -q "unknown field" "$work/err"; check "--set with an unknown field is a usage error" $?
"$cli" --preset "$preset" --set width=400 --set height=300 --dry-run "$work/clip1.mp4" >"$work/out" 2>/dev/null
[ $? -eq 0 ] && grep -q "scale=400:300" "$work/out"; check "--set width and height type into the boxes" $?
"$cli" --preset "$preset" --set video-bitrate=400 --dry-run "$work/clip1.mp4" >"$work/out" 2>/dev/null
grep -q -- "-vb 400k" "$work/out"; check "--set video-bitrate is bounded by the preset's own frame size" $?
# A value beyond the preset's limits is clamped, and the clamp is told: field, asked value, value used.
for c in "MPEG-1 - 640 x 480|width|1000|640|scale=640:480" "$preset|video-bitrate|200|323|-vb 323k"; do
    IFS='|' read -r name field asked used part <<<"$c"
    "$cli" --preset "$name" --set "$field=$asked" --dry-run "$work/clip1.mp4" >"$work/out" 2>"$work/err"; rc=$?
    [ $rc -eq 0 ] && grep -q -- "$part" "$work/out" && grep -q "^--set $field: $asked .*, $used used" "$work/err"
    check "--set $field=$asked says that $used was used" $?
done

mkdir -p "$work/in/sub"
cp "$work/clip1.mp4" "$work/in/"
cp "$work/clip2.mp4" "$work/in/sub/"
echo "not media" >"$work/in/notes.txt"
"$cli" --preset "$preset" --output "$work/out1" --parallel 2 "$work/in" 2>"$work/err"; rc=$?
[ $rc -eq 0 ] && [ -s "$work/out1/clip1.MP4" ] && [ -s "$work/out1/clip2.MP4" ] && [ "$(ls "$work/out1" | wc -l)" -eq 2 ]
check "a folder of two clips converts to two outputs" $?
size=$(ffprobe -v error -select_streams v:0 -show_entries stream=width,height -of csv=p=0 "$work/out1/clip2.MP4")
[ "$size" = "320,240" ]; check "the outputs have the preset's frame size" $?

"$cli" --preset "$preset" --output "$work/out1" --rename "$work/clip1.mp4" 2>/dev/null; rc=$?
[ $rc -eq 0 ] && [ "$(ls "$work/out1" | wc -l)" -eq 3 ]; check "--rename keeps the existing output" $?

echo "plain text" >"$work/broken.mp4"
"$cli" --preset "$preset" --output "$work/out2" "$work/broken.mp4" 2>"$work/err"; rc=$?
[ $rc -eq 1 ] && grep -q "^failed: broken.mp4: " "$work/err"; check "a file that does not decode fails with its report line" $?

# Unreadable inputs and unusable output folders are named with the reason.
"$cli" --preset "$preset" --dry-run "$work/clip1.mp4/inner.mp4" "$work/missing.mp4" 2>"$work/err"; rc=$?
[ $rc -eq 1 ] && grep -q "^failed: .*inner.mp4: Not a directory" "$work/err" &&
    grep -q "^failed: .*missing.mp4: No such file or directory" "$work/err"
check "inputs that cannot be read say why" $?
# Root reads every file: the check runs as nobody where the machine allows it.
mkdir -p "$work/locked" "$work/nobody" && cp "$work/clip1.mp4" "$work/locked/" && chmod 000 "$work/locked"
chmod 755 "$work" && chmod 777 "$work/nobody"
as_user=()
[ "$(id -u)" -eq 0 ] && as_user=(setpriv --reuid=65534 --regid=65534 --clear-groups)
if [ "$(id -u)" -ne 0 ] || command -v setpriv >/dev/null; then
    HOME="$work/nobody" XDG_CONFIG_HOME="$work/nobody/.config" XDG_DATA_HOME="$work/nobody/.local/share" \
        "${as_user[@]}" "$cli" --preset "$preset" --dry-run "$work/locked/clip1.mp4" 2>"$work/err"; rc=$?
    [ $rc -eq 1 ] && grep -q "^failed: .*clip1.mp4: Permission denied" "$work/err"
    check "a file in an unreadable folder is reported as Permission denied" $?
fi
touch "$work/a-file"
for out in "$work/a-file:is a file" "$work/none/deeper:does not exist"; do
    "$cli" --preset "$preset" --output "${out%%:*}" "$work/clip1.mp4" 2>"$work/err"; rc=$?
    [ $rc -eq 1 ] && grep -q "output folder '${out%%:*}'.* ${out#*:}" "$work/err"
    check "an output folder that ${out#*:} is named with the reason" $?
done

# The encoders' own log only with --verbose.
h264="MP4 - H.264 640 x 360"
"$cli" --preset "$h264" --output "$work/quiet" "$work/clip1.mp4" 2>"$work/err"; rc=$?
[ $rc -eq 0 ] && ! grep -Eq "libx264|kb/s:" "$work/err"; check "without --verbose no encoder log" $?
"$cli" --verbose --preset "$h264" --output "$work/loud" "$work/clip1.mp4" 2>"$work/err"; rc=$?
[ $rc -eq 0 ] && grep -q "libx264" "$work/err" && grep -q "kb/s:" "$work/err"; check "--verbose shows the encoder log" $?

# Effects reach every output frame: grey leaves the chroma planes flat, FlipH mirrors the picture.
"$cli" --preset "$h264" --output "$work/plain" "$work/clip1.mp4" 2>/dev/null
"$cli" --preset "$h264" --output "$work/grey" --effects "Nonsense,Gray Scale," "$work/clip1.mp4" 2>"$work/err"; rc=$?
chroma=$(ffprobe -v error -f lavfi "movie=$work/grey/clip1.MP4,signalstats" -show_entries \
    frame_tags=lavfi.signalstats.UMIN,lavfi.signalstats.UMAX,lavfi.signalstats.VMIN,lavfi.signalstats.VMAX \
    -of csv=p=0 | tr ',' '\n' | sort -n | sed -n '1p;$p' | tr '\n' ' ')
[ $rc -eq 0 ] && grep -q 'unknown effect "Nonsense" passed over' "$work/err" && [ "$chroma" = "128 128 " ]
check "--effects \"Gray Scale,\" gives grey output, an unknown name is reported and passed over ($chroma)" $?
"$cli" --preset "$h264" --output "$work/flip" --effects "FlipH," "$work/clip1.mp4" 2>/dev/null
psnr() { ffmpeg -nostdin -i "$1" -i "$2" -lavfi "[1]$3[b];[0][b]psnr" -f null - 2>&1 | sed -n 's/.*average:\([0-9.inf]*\).*/\1/p'; }
mirrored=$(psnr "$work/flip/clip1.MP4" "$work/plain/clip1.MP4" hflip)
as_is=$(psnr "$work/flip/clip1.MP4" "$work/plain/clip1.MP4" null)
awk -v m="$mirrored" -v a="$as_is" 'BEGIN{exit !(m == "inf" || (m > 35 && a < 25))}'
check "--effects \"FlipH,\" gives the mirrored picture (PSNR $mirrored dB to the mirror, $as_is dB as is)" $?
"$cli" --preset "$h264" --output "$work/bad" --effects "Invert:255,Mosaic:x," "$work/clip1.mp4" 2>"$work/err"; rc=$?
[ $rc -eq 2 ] && grep -q '"Mosaic:x"' "$work/err" && [ ! -e "$work/bad" ]; check "--effects with a value that is no number is refused" $?
"$cli" --preset "$h264" --effects "Mosaic:5," --dry-run "$work/clip1.mp4" >"$work/out" 2>/dev/null
grep -q "^effects: *Mosaic:5,$" "$work/out"; check "--dry-run shows the effect list" $?

# The contact sheet: every effect in a grid of labelled cells, and a clear word for a bad picture.
sheet="$(dirname "$cli")/morvane-effects-sheet"
ffmpeg -nostdin -v error -y -f lavfi -i testsrc2=size=64x48 -frames:v 1 "$work/small.png"
QT_QPA_PLATFORM=offscreen "$sheet" --cell 32 --columns 4 "$work/small.png" "$work/sheet.png" 2>/dev/null; rc=$?
size=$(ffprobe -v error -show_entries stream=width,height -of csv=p=0 "$work/sheet.png")
[ $rc -eq 0 ] && [ "$size" = "158,994" ]; check "morvane-effects-sheet draws the picture and every effect ($size)" $?
QT_QPA_PLATFORM=offscreen "$sheet" "$work/clip1.mp4" "$work/none.png" 2>"$work/err"; rc=$?
[ $rc -eq 1 ] && grep -q "cannot read a picture" "$work/err" && [ ! -e "$work/none.png" ]
check "morvane-effects-sheet names a file that is no picture" $?

# Stop signals end the run as the Stop button does: nothing under the output name, status 1.
ffmpeg -nostdin -v error -y -f lavfi -i testsrc2=size=640x360:rate=25:duration=60 -c:v mpeg4 "$work/long.mp4"
for sig in INT TERM HUP QUIT; do
    "$cli" --preset "$h264" --output "$work/sig$sig" "$work/long.mp4" 2>/dev/null &
    pid=$!
    for _ in $(seq 100); do [ -n "$(ls -A "$work/sig$sig" 2>/dev/null)" ] && break; sleep 0.05; done
    kill -"$sig" "$pid"
    wait "$pid"; rc=$?
    [ $rc -eq 1 ] && [ ! -e "$work/sig$sig/long.MP4" ]; check "SIG$sig stops the run and leaves no output" $?
done
# A signal during the merge ends it: the merge child here never finishes by itself.
mkdir -p "$work/bin"
printf '#!/bin/sh\necho $$ >"%s/merging"\nexec sleep 60\n' "$work" >"$work/bin/ffmpeg" && chmod +x "$work/bin/ffmpeg"
PATH="$work/bin:$PATH" "$cli" --merge --preset "$preset" --output "$work/merge" "$work/clip1.mp4" "$work/clip2.mp4" 2>/dev/null &
pid=$!
for _ in $(seq 200); do [ -e "$work/merging" ] && break; sleep 0.05; done
kill -TERM "$pid"
for _ in $(seq 100); do kill -0 "$pid" 2>/dev/null || break; sleep 0.05; done
kill -0 "$pid" 2>/dev/null && kill -KILL "$pid"
wait "$pid"; rc=$?
kill "$(cat "$work/merging")" 2>/dev/null # the child, should it outlive a failed cancel
[ $rc -eq 1 ]; check "SIGTERM cancels a merge in progress" $?

finish
