#!/usr/bin/env bash
# The real app under Xvfb: a page holding control characters survives quit and restart whole;
# text typed before a crash comes back at the next start.
set -euo pipefail
APP=$(realpath "$1")
source "$(dirname "$0")/lib.sh"
e2e_setup
SHOTS="${E2E_SCREENSHOT_DIR:-$(dirname "$APP")/screenshots}"

# A form feed, an escape and a vertical tab: a file decodes with them, and the store keeps them.
page="$E2E_HOME/controls.html"
printf '<p>page\x0cbreak\x1b[0m\x0bend</p>\n' >"$page"
e2e_start "$APP" "$page"
e2e_quit
grep -qF '<?tw-char 000C?>break<?tw-char 001B?>[0m<?tw-char 000B?>end' <<<"$(e2e_store)" \
  || e2e_fail "the page's control characters were not saved at quit"
e2e_start "$APP"
e2e_quit
grep -qF '<?tw-char 000C?>break<?tw-char 001B?>[0m<?tw-char 000B?>end' <<<"$(e2e_store)" \
  || e2e_fail "the page's control characters did not survive a restart"

# Typing, then a kill: nothing reaches the store, the recovery copy brings it back.
e2e_start "$APP"
e2e_focus "$E2E_WINDOW"
xdotool key --clearmodifiers ctrl+End
xdotool type --delay 20 '<p>typed before the crash</p>'
sleep 3
kill -KILL "$E2E_APP"
wait "$E2E_APP" 2>/dev/null || true
E2E_APP=
grep -qF 'typed before the crash' <<<"$(e2e_store)" && e2e_fail "the store was written without a quit"
compgen -G "$XDG_DATA_HOME/Tagwright/Recovery/HTML.*" >/dev/null || e2e_fail "no recovery copy was written while typing"
e2e_start "$APP"
sleep 0.5
e2e_screenshot "$SHOTS/e2e_recovery-after-crash.png"
e2e_quit
store=$(e2e_store)
grep -qF '&lt;p&gt;typed before the crash&lt;/p&gt;' <<<"$store" || e2e_fail "the text typed before the crash was lost"
grep -qF '<?tw-char 000C?>break' <<<"$store" || e2e_fail "the recovered text lost the page it was typed into"
[ ! -e "$XDG_DATA_HOME/Tagwright/Recovery" ] || e2e_fail "a clean quit left the recovery copy behind"
echo "PASS"
