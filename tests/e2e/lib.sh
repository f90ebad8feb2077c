#!/usr/bin/env bash
# Helpers for end-to-end tests: a private X server and home for the real binary.
set -euo pipefail

# How long a window may take to appear, take the focus or change its title, on a busy machine.
E2E_WAIT=${E2E_WAIT:-60}
# Every app process a test started, ended at teardown.
E2E_PIDS=()

e2e_fail() {
  echo "FAIL: $*" >&2
  if [ -n "${E2E_HOME:-}" ] && [ -f "$E2E_HOME/app.log" ]; then
    echo "--- application log (last lines) ---" >&2
    grep -v '^  \*\|^$' "$E2E_HOME/app.log" | tail -n 30 >&2
  fi
  if [ -n "${DISPLAY:-}" ]; then
    echo "--- windows ---" >&2
    xdotool search --onlyvisible --name '.' getwindowname %@ 2>/dev/null >&2 || true
  fi
  exit 1
}

# Starts Xvfb on a free display and a private home; sets DISPLAY, HOME, XDG_*.
e2e_setup() {
  E2E_HOME=$(mktemp -d /tmp/tagwright-e2e-XXXXXX)
  export HOME="$E2E_HOME" XDG_CONFIG_HOME="$E2E_HOME/.config" XDG_DATA_HOME="$E2E_HOME/.local/share" \
         XDG_CACHE_HOME="$E2E_HOME/.cache" XDG_RUNTIME_DIR="$E2E_HOME/runtime"
  mkdir -p "$XDG_CONFIG_HOME" "$XDG_DATA_HOME" "$XDG_CACHE_HOME" "$XDG_RUNTIME_DIR"
  chmod 700 "$XDG_RUNTIME_DIR"
  export QT_QPA_PLATFORM=xcb
  unset QT_QPA_PLATFORMTHEME || true
  if [ "$(id -u)" -eq 0 ]; then export QTWEBENGINE_DISABLE_SANDBOX=1; fi
  # The server picks a free display itself and names it when it is ready: a display chosen
  # here could be taken by another test's server in the meantime, which would then be ours.
  local displayfile="$E2E_HOME/display"
  Xvfb -displayfd 3 -screen 0 1600x1000x24 -nolisten tcp 3>"$displayfile" >/dev/null 2>&1 &
  E2E_XVFB=$!
  trap e2e_teardown EXIT
  local deadline=$((SECONDS + E2E_WAIT))
  until [ -s "$displayfile" ] || [ "$SECONDS" -ge "$deadline" ]; do sleep 0.1; done
  [ -s "$displayfile" ] || e2e_fail "Xvfb did not start"
  export DISPLAY=":$(head -n 1 "$displayfile")"
  xdpyinfo >/dev/null 2>&1 || e2e_fail "Xvfb does not answer on $DISPLAY"
}

e2e_teardown() {
  local pid running
  running=$(jobs -p)
  for pid in "${E2E_PIDS[@]}"; do
    if grep -qxF "$pid" <<<"$running"; then kill "$pid" 2>/dev/null || true; wait "$pid" 2>/dev/null || true; fi
  done
  if [ -n "${E2E_XVFB:-}" ]; then kill "$E2E_XVFB" 2>/dev/null || true; wait "$E2E_XVFB" 2>/dev/null || true; fi
  rm -rf "${E2E_HOME:?}"
}

# Starts the app (arguments: binary, files...) and waits for its HTML window. A server that
# has just started has been seen to refuse the very first client on a busy machine: an app that
# could not reach the display is started once more.
e2e_start() {
  local attempt
  for attempt in 1 2; do
    "$@" >"$E2E_HOME/app.log" 2>&1 &
    E2E_APP=$!
    E2E_PIDS+=("$E2E_APP")
    if E2E_WINDOW=$(e2e_wait_window '^HTML:' "$E2E_APP"); then return 0; fi
    grep -q 'could not connect to display' "$E2E_HOME/app.log" && [ "$attempt" = 1 ] || break
    sleep 1
  done
  cat "$E2E_HOME/app.log" >&2
  e2e_fail "the HTML window did not appear"
}

# Prints the id of a visible window whose title matches the regular expression, waiting up to
# E2E_WAIT seconds; with a process id, only that process's windows count, and the wait ends
# when it exits. Each look is a new search: xdotool exits on the X error (BadWindow) of a
# window that is created or destroyed while it looks, and that must not end the wait.
e2e_wait_window() {
  local pattern="$1" pid="${2:-}" deadline=$((SECONDS + E2E_WAIT)) ids
  local criteria=(--onlyvisible --name "$pattern")
  [ -z "$pid" ] || criteria=(--all --pid "$pid" "${criteria[@]}")
  until ids=$(timeout 10 xdotool search "${criteria[@]}" 2>/dev/null) && [ -n "$ids" ]; do
    if [ -n "$pid" ] && ! e2e_running "$pid"; then return 1; fi
    [ "$SECONDS" -lt "$deadline" ] || return 1
    sleep 0.2
  done
  head -n 1 <<<"$ids"
}

# Whether a process runs (an exited one that is not yet waited for does not).
e2e_running() { [[ "$(ps -o stat= -p "$1" 2>/dev/null)" =~ ^[^Z] ]]; }

# Waits until a window's title is the given text.
e2e_wait_title() {
  local window="$1" expected="$2" deadline=$((SECONDS + E2E_WAIT)) title=
  until title=$(timeout 10 xdotool getwindowname "$window" 2>/dev/null) && [ "$title" = "$expected" ]; do
    [ "$SECONDS" -lt "$deadline" ] || e2e_fail "the window is titled '$title', not '$expected'"
    sleep 0.2
  done
}

# The ids of the processes of a binary that run with this test's home.
e2e_app_pids() {
  local pid
  for pid in $(pgrep -x "$(basename "$1")"); do
    if tr '\0' '\n' <"/proc/$pid/environ" 2>/dev/null | grep -qxF "HOME=$E2E_HOME"; then echo "$pid"; fi
  done
}

# Quits the running app with SIGTERM and waits until it has gone.
e2e_quit() {
  kill -TERM "$E2E_APP"
  local status=0
  timeout 30 tail --pid="$E2E_APP" -f /dev/null || e2e_fail "the app did not quit on SIGTERM"
  wait "$E2E_APP" || status=$?
  E2E_APP=
  [ "$status" -eq 0 ] || { cat "$E2E_HOME/app.log" >&2; e2e_fail "the app exited with status $status"; }
}

# Gives the keyboard focus to a window (a bare Xvfb has no window manager).
e2e_focus() {
  local deadline=$((SECONDS + E2E_WAIT))
  until timeout 10 xdotool windowfocus --sync "$1" 2>/dev/null; do
    [ "$SECONDS" -lt "$deadline" ] || e2e_fail "window $1 did not take the focus"
    sleep 0.2
  done
  sleep 0.3
}

e2e_store() { cat "$XDG_CONFIG_HOME/Tagwright/Tagwright.plist"; }

# Saves a screenshot of the whole screen where a person can look at it.
e2e_screenshot() {
  local target="$1"
  mkdir -p "$(dirname "$target")"
  import -window root "$target" 2>/dev/null || xwd -root -silent | convert xwd:- "$target"
  echo "screenshot: $target"
}
