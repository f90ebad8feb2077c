#!/usr/bin/env bash
# The recovery copy with the 8 MB real page: the cost of one write, and typing with and without it.
set -euo pipefail
BUILD=$(realpath "${1:-build}")
PAGE=$(realpath "${PAGE:-$(dirname "$0")/../../shared/testdata/large/python-library-concat.html}")
WORK=$(mktemp -d)
trap 'rm -rf "$WORK"' EXIT
export QT_QPA_PLATFORM=offscreen QT_LOGGING_RULES="qt.qpa.*=false" HOME="$WORK" XDG_CONFIG_HOME="$WORK/.config" \
       XDG_DATA_HOME="$WORK/.local/share" XDG_RUNTIME_DIR="$WORK/run"
mkdir -p "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"
"$BUILD/bench/bench_recovery" "$PAGE"
