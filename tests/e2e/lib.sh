#!/usr/bin/env bash
# Helpers for end-to-end tests: a private X server and home for the real binary.
set -euo pipefail

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
  local display
  for display in $(seq 90 140); do
    if [ ! -e "/tmp/.X${display}-lock" ] && [ ! -e "/tmp/.X11-unix/X${display}" ]; then
      Xvfb ":$display" -screen 0 1600x1000x24 -nolisten tcp >/dev/null 2>&1 &
      E2E_XVFB=$!
      export DISPLAY=":$display"
      for _ in $(seq 50); do xdpyinfo >/dev/null 2>&1 && break; sleep 0.1; done
      xdpyinfo >/dev/null 2>&1 || e2e_fail "Xvfb did not start"
      trap e2e_teardown EXIT
      return
    fi
  done
  e2e_fail "no free X display"
}

e2e_teardown() {
  if [ -n "${E2E_APP:-}" ]; then kill "$E2E_APP" 2>/dev/null || true; wait "$E2E_APP" 2>/dev/null || true; fi
  if [ -n "${E2E_XVFB:-}" ]; then kill "$E2E_XVFB" 2>/dev/null || true; wait "$E2E_XVFB" 2>/dev/null || true; fi
  rm -rf "${E2E_HOME:?}"
}

# Starts the app (arguments: binary, files...) and waits for its HTML window.
e2e_start() {
  "$@" >"$E2E_HOME/app.log" 2>&1 &
  E2E_APP=$!
  E2E_WINDOW=$(timeout 30 xdotool search --sync --onlyvisible --name '^HTML:' | head -n 1) \
    || { cat "$E2E_HOME/app.log" >&2; e2e_fail "the HTML window did not appear"; }
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
  xdotool windowfocus --sync "$1"
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
