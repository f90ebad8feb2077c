#!/usr/bin/env bash
# Keystroke to rendered preview for a 20 KB page and the 0.7 MB and 2.5 MB real pages.
set -euo pipefail
BUILD=$(realpath "${1:-build}")
DATA=$(realpath "${DATA:-$(dirname "$0")/../../shared/testdata/large}")
WORK=$(mktemp -d)
trap 'rm -rf "$WORK"' EXIT
export QT_QPA_PLATFORM=offscreen QT_LOGGING_RULES="qt.qpa.*=false" HOME="$WORK" XDG_CONFIG_HOME="$WORK/.config" \
       XDG_DATA_HOME="$WORK/.local/share" XDG_RUNTIME_DIR="$WORK/run"
mkdir -p "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"
if [ "$(id -u)" -eq 0 ]; then export QTWEBENGINE_DISABLE_SANDBOX=1; fi
"$BUILD/bench/bench_render" "$DATA/python-stdtypes.html" "$DATA/python-contents.html" 2>/dev/null
