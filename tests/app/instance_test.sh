#!/usr/bin/env bash
# One program per user: a second start hands its argument to the running one and ends with 0, the
# running one runs it (a path is imported, "@AddFile:" writes its done marker afterwards), and the
# socket a killed program leaves behind does not stop the next start from taking over.
#
#   bash tests/app/instance_test.sh MORVANE
set -uo pipefail
program=$1
source "$(dirname "$0")/checks.sh"
export QT_QPA_PLATFORM=offscreen XDG_RUNTIME_DIR="$work/run"
export MORVANE_UPDATE_URL="http://127.0.0.1:9/update?p=PRODUCTNAME&v=VERSION" # never the real endpoint
mkdir -m 700 -p "$XDG_RUNTIME_DIR"
clips="$work/clips"
mkdir -p "$clips"
for name in a.mp4 "b c.mkv"; do
    ffmpeg -nostdin -loglevel error -y -f lavfi -i testsrc2=size=64x48:rate=10:duration=1 "$clips/$name"
done

# Thumbnails of imported rows land in the running program's working folder: one file a row.
rows() { find "$HOME/.local/share" -path '*temp/run-*' -type f -name '*.bmp' 2>/dev/null | wc -l; }
wait_for() { # condition as a command, seconds
    local i
    for ((i = 0; i < $2 * 10; i++)); do eval "$1" && return 0; sleep 0.1; done
    return 1
}
# True once a program listens on the socket: a killed program's socket file refuses the connection.
listening() {
    local socket
    socket=$(find "$XDG_RUNTIME_DIR" -type s 2>/dev/null | head -1)
    [ -n "$socket" ] && python3 -c 'import socket, sys
s = socket.socket(socket.AF_UNIX)
s.connect(sys.argv[1])' "$socket" 2>/dev/null
}
start_first() {
    "$program" >"$work/first.log" 2>&1 &
    first=$!
    wait_for listening 30
}

start_first
check "the first start listens on an owner-only socket" \
    "$(mode=$(stat -c %a "$(find "$XDG_RUNTIME_DIR" -type s | head -1)") && [ $((8#$mode & 8#077)) -eq 0 ] && echo 0 || echo 1)"

timeout 30 "$program" "$clips/a.mp4"
check "a second start with a path ends with 0" $?
wait_for '[ "$(rows)" -ge 1 ]' 20
check "the first program imported the path" $?

timeout 30 "$program" "@ExportDonePath:$work/done"
rm -f "$work/done"
timeout 30 "$program" "@AddFile:\"$clips/b c.mkv\""
check "\"@AddFile:\" with a quoted path ends with 0" $?
check "the done marker is written once the file is in" \
    "$([ -f "$work/done" ] && [ "$(rows)" -ge 2 ] && echo 0 || echo 1)"
timeout 30 "$program"
check "a start without arguments only brings the first forward" $?
kill -0 "$first" 2>/dev/null
check "the first program still runs" $?

kill -9 "$first"
wait "$first" 2>/dev/null
start_first
check "after a crash the next start listens again, over the old socket" $?
second_first=$first
timeout 30 "$program" "$clips/a.mp4"
status=$?
check "and takes the next hand-over (exit $status)" $status
kill "$second_first" 2>/dev/null
finish
