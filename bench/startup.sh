#!/usr/bin/env bash
# Start-up time under Xvfb, median of 10 launches each: from the moment the process is started
# to the HTML window painted, and to the first page rendered in the viewer. First launches
# start from an empty home; later ones find the state of the previous session.
set -euo pipefail
APP=$(realpath "${1:-build/tagwright}")
RUNS=${RUNS:-10}
source "$(dirname "$0")/../tests/e2e/lib.sh"
e2e_setup

median() { sort -n | awk '{a[NR]=$1} END {print (NR%2) ? a[(NR+1)/2] : (a[NR/2]+a[NR/2+1])/2}'; }

launch_once() { # wait for: window or preview
  local start
  start=$(date +%s%N)
  TAGWRIGHT_LAUNCH_WAIT=$1 TAGWRIGHT_LAUNCH_NS=$start "$APP" 2>/dev/null | awk '/^launch-to-/ {print $2}'
}

measure() { # label, wait-for, fresh (yes/no)
  local values=()
  for _ in $(seq "$RUNS"); do
    [ "$3" = yes ] && rm -rf "$XDG_CONFIG_HOME/Tagwright"
    values+=("$(launch_once "$2")")
  done
  echo "$1 (ms): ${values[*]}"
  echo "  median $(printf '%s\n' "${values[@]}" | median) ms"
}

measure "window shown, first launch" window yes
measure "window shown, later launch" window no
echo "(target: window shown < 400 ms)"
measure "preview rendered, first launch" preview yes
measure "preview rendered, later launch" preview no
echo "(target: preview rendered < 1000 ms)"
