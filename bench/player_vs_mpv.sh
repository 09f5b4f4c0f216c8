#!/usr/bin/env bash
# Playback of a 1080p30 H.264 clip (60 s, made here) through our playing layer into a 1920x1080
# window, beside the mpv program on the same clip with no video output and with its X11 output:
# frames dropped, frames drawn, CPU share of the run. Needs an X server for the window runs: under
# no display it starts Xvfb on :97. Audio goes nowhere in every run.
#
#   bash bench/player_vs_mpv.sh BUILD_DIR [WORK_DIR]     (RUNS=2 by default)
set -euo pipefail
build=$(realpath "$1")
work=${2:-/tmp/morvane-player-bench}
runs=${RUNS:-2}
mkdir -p "$work"
cd "$work"

if [[ ! -f p1080.mp4 ]]; then
    ffmpeg -nostdin -loglevel error -y -f lavfi -i testsrc2=size=1920x1080:rate=30:duration=60 \
        -f lavfi -i sine=frequency=440:sample_rate=48000:duration=60 -ac 2 \
        -c:v libx264 -preset fast -b:v 8000k -pix_fmt yuv420p -c:a aac -b:a 160k p1080.mp4
fi
if [[ -z "${DISPLAY:-}" ]]; then
    Xvfb :97 -screen 0 1920x1080x24 >/dev/null 2>&1 &
    xvfb=$!
    trap 'kill $xvfb' EXIT
    export DISPLAY=:97
    sleep 1
fi

# mpv shows its counters only on a terminal: a small script reads them twice a second and prints the
# last reading when the file ends.
cat > stat.lua <<'EOF'
local last = "STAT 0 0 0"
mp.add_periodic_timer(0.5, function()
    local frame = mp.get_property_number("estimated-frame-number")
    if frame then
        last = string.format("STAT %d %d %d", mp.get_property_number("frame-drop-count", 0),
            mp.get_property_number("decoder-frame-drop-count", 0), frame)
    end
end)
mp.register_event("end-file", function() io.stdout:write(last .. "\n") end)
EOF

mpv_run() {
    local vo=$1 out
    out=$( { /usr/bin/time -f "TIME %U %S %e" mpv --no-config --msg-level=all=no --ao=null --vo="$vo" \
        --geometry=1920x1080 --no-osc --script=stat.lua p1080.mp4 ; } 2>&1)
    local stat time
    stat=$(grep '^STAT' <<<"$out" | tail -1)
    time=$(grep '^TIME' <<<"$out" | tail -1)
    read -r _ dropped decdropped frames <<<"$stat"
    read -r _ user sys wall <<<"$time"
    printf '%-22s dropped %3s  frames %5s  cpu %.2f of one core\n' "mpv --vo=$vo" \
        "$(( ${dropped:-0} + ${decdropped:-0} ))" "${frames:-?}" "$(echo "($user + $sys) / $wall" | bc -l)"
}

for ((i = 1; i <= runs; i++)); do
    echo "== run $i"
    out=$("$build/bench/bench_player" p1080.mp4 --size 1920x1080)
    get() { awk -v k="$1" '$1 == k { print $2 }' <<<"$out"; }
    printf '%-22s dropped %3s  frames %5s  cpu %.2f of one core  first frame %s ms\n' "morvane (window)" \
        "$(get dropped)" "$(get frames_painted)" "$(get cpu_share)" "$(get open_to_first_frame_ms)"
    mpv_run null
    mpv_run x11
done
