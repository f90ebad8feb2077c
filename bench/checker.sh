#!/usr/bin/env bash
# The checker window while a checker floods it with 100 MB, and the shipped HTML checker on the
# 0.7 MB real page beside HTML Tidy run by hand on the same file (the yardstick).
set -euo pipefail
BUILD=$(realpath "${1:-build}")
PAGE=$(realpath "${PAGE:-$(dirname "$0")/../../shared/testdata/large/python-stdtypes.html}")
WORK=$(mktemp -d)
trap 'rm -rf "$WORK"' EXIT
export QT_QPA_PLATFORM=offscreen QT_LOGGING_RULES="qt.qpa.*=false" HOME="$WORK/home" XDG_CONFIG_HOME="$WORK/home/.config" XDG_RUNTIME_DIR="$WORK/run"
mkdir -p "$HOME" "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"
BENCH="$BUILD/bench/bench_checker"

echo "targets: no event-loop stall over 100 ms while output floods in; memory bounded"
"$BENCH" flood 100 2>/dev/null
"$BENCH" first "$PAGE" "$WORK/data" 2>/dev/null
start=$(date +%s%N)
tidy -q -e -utf8 "$PAGE" >/dev/null 2>&1 || true
end=$(date +%s%N)
echo "tidy -q -e by hand on the same page (yardstick): $(( (end - start) / 1000000 )) ms"
