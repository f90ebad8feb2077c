#!/usr/bin/env bash
# Find Next and Replace All on the 8 MB real page in the HTML editor view, beside sed doing the
# same replacement on the same file, and Replace All on the first 1, 2, 4 and 8 MB of the page
# to show that its time grows with the text and no faster. Prints the median of 5 runs.
set -euo pipefail
BUILD=$(realpath "${1:-build}")
PAGE=$(realpath "${PAGE:-$(dirname "$0")/../../shared/testdata/large/python-library-concat.html}")
RUNS=${RUNS:-5}
WORK=$(mktemp -d)
trap 'rm -rf "$WORK"' EXIT
export QT_QPA_PLATFORM=offscreen QT_LOGGING_RULES="qt.qpa.*=false" HOME="$WORK/home" XDG_CONFIG_HOME="$WORK/home/.config" XDG_RUNTIME_DIR="$WORK/run"
mkdir -p "$HOME" "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"
BENCH="$BUILD/bench/bench_find"

median() { sort -n | awk '{a[NR]=$1} END {print (NR%2) ? a[(NR+1)/2] : (a[NR/2]+a[NR/2+1])/2}'; }
field() { sed -n "s/.*$1 \([0-9.]*\) ms.*/\1/p"; }

echo "file: $PAGE ($(stat -c %s "$PAGE") bytes), $(grep -o '<li>' "$PAGE" | wc -l) places of <li>"
echo "targets: Find Next < 10 ms; Replace All, its undo and its redo, each until the screen is painted, < 300 ms"
"$BENCH" find "$PAGE" 2>/dev/null

SED=()
for _ in $(seq "$RUNS"); do
  start=$(date +%s%N)
  sed 's/<li>/<LI>/g' "$PAGE" > "$WORK/sed.html"
  end=$(date +%s%N)
  SED+=("$(awk -v a="$start" -v b="$end" 'BEGIN {print (b - a) / 1e6}')")
done
SED_MEDIAN=$(printf '%s\n' "${SED[@]}" | median)
printf 'sed s/<li>/<LI>/g on the file (yardstick): median %.1f ms\n' "$SED_MEDIAN"

for megabytes in 1 2 4 8; do
  replace=() undo=() redo=()
  for _ in $(seq "$RUNS"); do
    out=$("$BENCH" replace "$PAGE" "$megabytes" 2>/dev/null)
    replace+=("$(echo "$out" | field 'replace all')")
    undo+=("$(echo "$out" | field 'undo')")
    redo+=("$(echo "$out" | field 'redo')")
  done
  r=$(printf '%s\n' "${replace[@]}" | median)
  printf 'Replace All, %s MB: median %7.1f ms (%5.1f ms per MB)   undo %6.1f ms   redo %6.1f ms' "$megabytes" "$r" \
    "$(awk -v a="$r" -v m="$megabytes" 'BEGIN {print a / m}')" \
    "$(printf '%s\n' "${undo[@]}" | median)" "$(printf '%s\n' "${redo[@]}" | median)"
  if [ "$megabytes" = 8 ]; then
    printf '   ratio to sed %.1f' "$(awk -v a="$r" -v b="$SED_MEDIAN" 'BEGIN {print a / b}')"
  fi
  echo
done
echo "bad input: a 50 MB text of lines of \"<\" only"
"$BENCH" repeat "$PAGE" 50 2>/dev/null
