#!/usr/bin/env bash
# Start-up time: from the moment the process is started to the HTML window painted, under
# Xvfb, median of 10 launches (a fresh home each time, as on a first launch, and a second set
# with the state of a previous session).
set -euo pipefail
APP=$(realpath "${1:-build/tagwright}")
RUNS=${RUNS:-10}
source "$(dirname "$0")/../tests/e2e/lib.sh"
e2e_setup

median() { sort -n | awk '{a[NR]=$1} END {print (NR%2) ? a[(NR+1)/2] : (a[NR/2]+a[NR/2+1])/2}'; }

launch_once() {
  local start
  start=$(date +%s%N)
  TAGWRIGHT_LAUNCH_NS=$start "$APP" 2>/dev/null | awk '/launch-to-window-shown-ms/ {print $2}'
}

first=()
for _ in $(seq "$RUNS"); do
  rm -rf "$XDG_CONFIG_HOME/Tagwright"
  first+=("$(launch_once)")
done
again=()
for _ in $(seq "$RUNS"); do
  again+=("$(launch_once)")
done
echo "start-up, first launch (ms):  ${first[*]}"
echo "start-up, later launch (ms):  ${again[*]}"
echo "median first launch: $(printf '%s\n' "${first[@]}" | median) ms   (target < 400 ms)"
echo "median later launch: $(printf '%s\n' "${again[@]}" | median) ms   (target < 400 ms)"
