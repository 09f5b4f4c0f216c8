# What the scripted tests share: a scratch folder removed at exit, a home of its own inside it, and
# check/finish that count and print the results. Sourced, never run.
work=$(mktemp -d)
trap 'kill $(jobs -p) 2>/dev/null; rm -rf "$work"' EXIT
export HOME="$work/home" XDG_CONFIG_HOME="$work/home/.config" XDG_DATA_HOME="$work/home/.local/share"
mkdir -p "$HOME"
failures=0
checks=0
check() { # description, condition result
    checks=$((checks + 1))
    if [ "$2" -eq 0 ]; then echo "ok: $1"; else echo "FAILED: $1"; failures=$((failures + 1)); fi
}
finish() {
    echo "$((checks - failures)) passed, $failures failed"
    [ "$failures" -eq 0 ]
}
