#!/usr/bin/env bash
# Opening and saving the 8 MB real page, as UTF-8 and converted to Shift_JIS, beside iconv
# converting the same file. Prints the median of 5 runs of each.
set -euo pipefail
BUILD=$(realpath "${1:-build}")
# The large real pages live beside the repository (../shared/testdata); PAGE= picks another.
PAGE=$(realpath "${PAGE:-$(dirname "$0")/../../shared/testdata/large/python-library-concat.html}")
RUNS=${RUNS:-5}
WORK=$(mktemp -d)
trap 'rm -rf "$WORK"' EXIT
export QT_QPA_PLATFORM=offscreen QT_LOGGING_RULES="qt.qpa.*=false" HOME="$WORK/home" XDG_CONFIG_HOME="$WORK/home/.config" XDG_RUNTIME_DIR="$WORK/run"
mkdir -p "$HOME" "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"

cp "$PAGE" "$WORK/utf8.html"
# Characters Shift_JIS lacks (a few typographic ones in the page) are dropped by -c.
iconv -c -f UTF-8 -t SHIFT_JIS "$PAGE" > "$WORK/sjis.html"

median() { sort -n | awk '{a[NR]=$1} END {print (NR%2) ? a[(NR+1)/2] : (a[NR/2]+a[NR/2+1])/2}'; }

LAST_MEDIAN=0
measure() { # label, command... ; prints the median time and the largest peak
  local label=$1; shift
  local times=() peaks=() out
  for _ in $(seq "$RUNS"); do
    out=$("$@")
    times+=("$(echo "$out" | awk '{print $2}')")
    peaks+=("$(echo "$out" | awk '{print $5}')")
  done
  LAST_MEDIAN=$(printf '%s\n' "${times[@]}" | median)
  printf '%-34s median %7.1f ms   peak %5s MB\n' "$label" "$LAST_MEDIAN" \
    "$(printf '%s\n' "${peaks[@]}" | sort -n | tail -1)"
}

iconv_measure() { # label, from, to, file
  local label=$1 from=$2 to=$3 file=$4 times=() peaks=() out
  for _ in $(seq "$RUNS"); do
    local start end
    start=$(date +%s%N)
    out=$( { /usr/bin/time -f '%M' iconv -c -f "$from" -t "$to" "$file" > /dev/null; } 2>&1 | tail -1)
    end=$(date +%s%N)
    times+=("$(awk -v a="$start" -v b="$end" 'BEGIN {print (b - a) / 1e6}')")
    peaks+=("$(echo "$out" | awk '{printf "%.0f", $1 / 1024}')")
  done
  printf '%-34s median %7.1f ms   peak %5s MB\n' "$label" "$(printf '%s\n' "${times[@]}" | median)" \
    "$(printf '%s\n' "${peaks[@]}" | sort -n | tail -1)"
}

echo "file: $PAGE ($(stat -c %s "$PAGE") bytes; Shift_JIS copy $(stat -c %s "$WORK/sjis.html") bytes)"
echo "targets: open and save each < 250 ms; peak memory < 20x the file size ($(( $(stat -c %s "$PAGE") * 20 / 1048576 )) MB)"
measure "bare QPlainTextEdit open (yardstick)" "$BUILD/bench/bench_fileio" bare "$WORK/utf8.html" 3
BARE=$LAST_MEDIAN
measure "open UTF-8 (read, decode, view)" "$BUILD/bench/bench_fileio" open "$WORK/utf8.html" 3
echo "  ratio to the yardstick: $(awk -v a="$LAST_MEDIAN" -v b="$BARE" 'BEGIN {printf "%.2f", a / b}')"
measure "save UTF-8 (convert, encode, write)" "$BUILD/bench/bench_fileio" save "$WORK/utf8.html" 3 "$WORK/out.html"
measure "open Shift_JIS" "$BUILD/bench/bench_fileio" open "$WORK/sjis.html" 0
measure "save Shift_JIS" "$BUILD/bench/bench_fileio" save "$WORK/sjis.html" 0 "$WORK/out.html"
iconv_measure "iconv UTF-8 -> Shift_JIS" UTF-8 SHIFT_JIS "$WORK/utf8.html"
iconv_measure "iconv Shift_JIS -> UTF-8" SHIFT_JIS UTF-8 "$WORK/sjis.html"
