#!/usr/bin/env bash
# Launch and memory with big real pages, side by side with Geany (a fast editor from Debian,
# installed here as a yardstick only), under Xvfb, median of RUNS launches each:
#   launch to the HTML window shown (Tagwright's own probe; Geany: its window mapped),
#   and the peak resident memory of the main process with the page open, coloured and
#   rendered, with the preview processes' memory beside it.
set -euo pipefail
APP=$(realpath "${1:-build/tagwright}")
RUNS=${RUNS:-5}
DATA=$(realpath "$(dirname "$0")/../../shared/testdata/large")
PAGES=("$DATA/python-library-concat.html" "$DATA/python-contents.html")
if ! command -v geany >/dev/null; then
  SUDO=$([ "$(id -u)" -eq 0 ] || echo sudo)
  $SUDO apt-get install -y --no-install-recommends geany >/dev/null
fi
source "$(dirname "$0")/../tests/e2e/lib.sh"
e2e_setup

median() { sort -n | awk '{a[NR]=$1} END {print (NR%2) ? a[(NR+1)/2] : (a[NR/2]+a[NR/2+1])/2}'; }
now_ms() { echo $(($(date +%s%N) / 1000000)); }

# The pages are UTF-8: a fresh store that says so, so that they open.
fresh_store() {
  rm -rf "$XDG_CONFIG_HOME/Tagwright" "$XDG_CONFIG_HOME/geany"
  mkdir -p "$XDG_CONFIG_HOME/Tagwright"
  cat >"$XDG_CONFIG_HOME/Tagwright/Tagwright.plist" <<'PLIST'
<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0"><dict><key>Text Encoding</key><string>UTF-8</string></dict></plist>
PLIST
}

tagwright_window() { # page
  fresh_store
  TAGWRIGHT_LAUNCH_WAIT=window TAGWRIGHT_LAUNCH_NS=$(date +%s%N) "$APP" "$1" 2>/dev/null | awk '/^launch-to-/ {print $2}'
}

geany_window() { # page
  fresh_store
  local start pid
  start=$(now_ms)
  geany --new-instance --no-session --no-plugins --no-msgwin --no-terminal "$1" >/dev/null 2>&1 &
  pid=$!
  xdotool search --sync --onlyvisible --pid "$pid" >/dev/null 2>&1
  echo $(($(now_ms) - start))
  kill "$pid"; wait "$pid" 2>/dev/null || true
}

# Peak resident memory (MB) of a process, and the resident memory of its descendants.
memory() { # pid
  local peak children=0 child
  peak=$(awk '/VmHWM/ {print int($2 / 1024)}' "/proc/$1/status")
  for child in $(pgrep -P "$1" -d ' ' || true) $(pgrep -f QtWebEngineProcess -d ' ' || true); do
    [ -r "/proc/$child/status" ] && children=$((children + $(awk '/VmRSS/ {print int($2 / 1024)}' "/proc/$child/status")))
  done
  echo "$peak $children"
}

settle() { sleep "${SETTLE:-8}"; } # opened, coloured and rendered, and idle again

for page in "${PAGES[@]}"; do
  name=$(basename "$page")
  size=$(stat -c %s "$page" | awk '{printf "%.1f", $1 / 1e6}')
  ours=() theirs=()
  for _ in $(seq "$RUNS"); do
    ours+=("$(tagwright_window "$page")")
    theirs+=("$(geany_window "$page")")
  done
  o=$(printf '%s\n' "${ours[@]}" | median)
  g=$(printf '%s\n' "${theirs[@]}" | median)
  echo "$name ($size MB): launch to window shown, median of $RUNS"
  echo "  Tagwright ${o} ms   Geany ${g} ms   ratio $(awk -v a="$o" -v b="$g" 'BEGIN {printf "%.2f", a / b}')   (target <= 1)"

  fresh_store
  "$APP" "$page" >/dev/null 2>&1 &
  pid=$!
  settle
  read -r peak helpers < <(memory "$pid")
  kill "$pid"; wait "$pid" 2>/dev/null || true
  fresh_store
  geany --new-instance --no-session --no-plugins --no-msgwin --no-terminal "$page" >/dev/null 2>&1 &
  gpid=$!
  settle
  read -r gpeak _ < <(memory "$gpid")
  kill "$gpid"; wait "$gpid" 2>/dev/null || true
  echo "  peak memory of the main process: Tagwright ${peak} MB (preview processes ${helpers} MB more)   Geany ${gpeak} MB   ratio $(awk -v a="$peak" -v b="$gpeak" 'BEGIN {printf "%.2f", a / b}')"
done
