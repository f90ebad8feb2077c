#!/usr/bin/env bash
# The real app under Xvfb: one instance per settings store. A second launch hands its file to
# the running one and exits; a launch after a crash starts; another store is another app.
set -euo pipefail
APP=$(realpath "$1")
source "$(dirname "$0")/lib.sh"
e2e_setup

only_one_app() {
  [ "$(e2e_app_pids "$APP" | wc -l)" -eq 1 ] || e2e_fail "$1: processes $(e2e_app_pids "$APP" | xargs)"
}

e2e_start "$APP"
printf '<p>handed over</p>\n' >"$E2E_HOME/file.html"
# A relative path, as typed in a terminal; the hang guard is well below the wait for an answer.
(cd "$E2E_HOME" && timeout 20 "$APP" file.html) >"$E2E_HOME/second.log" 2>&1 \
  || e2e_fail "the second launch with a file failed: $(cat "$E2E_HOME/second.log")"
only_one_app "a second app runs after a launch with a file"
e2e_wait_title "$E2E_WINDOW" "HTML:file.html"
timeout 20 "$APP" >"$E2E_HOME/second.log" 2>&1 \
  || e2e_fail "the second launch without files failed: $(cat "$E2E_HOME/second.log")"
only_one_app "a second app runs after a launch without files"

# A crash leaves the socket and its lock behind; the next launch starts all the same.
kill -KILL "$E2E_APP"
wait "$E2E_APP" 2>/dev/null || true
compgen -G "$XDG_RUNTIME_DIR/tagwright-*" >/dev/null || e2e_fail "the crash left no socket to start over"
e2e_start "$APP"
only_one_app "two apps run after a start over a crashed one"

# Another store on the same display is an application of its own.
mkdir -p "$E2E_HOME/other-config"
XDG_CONFIG_HOME="$E2E_HOME/other-config" "$APP" >"$E2E_HOME/other.log" 2>&1 &
OTHER=$!
E2E_PIDS+=("$OTHER")
e2e_wait_window '^HTML:' "$OTHER" >/dev/null || e2e_fail "an app on another store did not start: $(cat "$E2E_HOME/other.log")"
e2e_running "$E2E_APP" || e2e_fail "the first app ended when one on another store started"
kill -TERM "$OTHER"
wait "$OTHER" || e2e_fail "the app on another store did not quit cleanly"
e2e_quit
echo "PASS"
