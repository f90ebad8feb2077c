#!/usr/bin/env bash
# The real app under Xvfb: save a project from the File menu's shortcut, start a new one,
# quit, and start again with the project on the command line: the page comes back; the next
# Save Project As proposes the project's name.
set -euo pipefail
APP=$(realpath "$1")
source "$(dirname "$0")/lib.sh"
e2e_setup
SHOTS="${E2E_SCREENSHOT_DIR:-$(dirname "$APP")/screenshots}"
project="$E2E_HOME/site.twproj"

e2e_start "$APP"
e2e_focus "$E2E_WINDOW"
xdotool key --clearmodifiers ctrl+End
xdotool type --delay 20 '<p>kept in the project</p>'
# Save Project As: the panel takes a name without its extension.
xdotool key --clearmodifiers ctrl+shift+p
PANEL=$(timeout 20 xdotool search --sync --onlyvisible --name 'Save' | head -n 1) || e2e_fail "no save panel"
e2e_focus "$PANEL"
xdotool type --delay 20 "$E2E_HOME/site"
xdotool key Return
for _ in $(seq 100); do [ -s "$project" ] && break; sleep 0.2; done
grep -qF '&lt;p&gt;kept in the project&lt;/p&gt;' "$project" || e2e_fail "the project does not hold the page"
grep -qF 'Template Window Save Data' "$project" || e2e_fail "the project does not hold the template"

# A new project empties the page; the quit keeps the empty page and the project's name.
e2e_focus "$E2E_WINDOW"
xdotool key --clearmodifiers ctrl+shift+n
sleep 0.5
e2e_quit
grep -qF 'kept in the project' <<<"$(e2e_store)" && e2e_fail "New Project left the page"
grep -qF "$project" <<<"$(e2e_store)" || e2e_fail "the project's name was not kept"

# The project on the command line puts the page back.
e2e_start "$APP" "$project"
e2e_focus "$E2E_WINDOW"
e2e_screenshot "$SHOTS/e2e_project-reopened.png"
xdotool key --clearmodifiers ctrl+shift+p
PANEL=$(timeout 20 xdotool search --sync --onlyvisible --name 'Save' | head -n 1) || e2e_fail "no save panel"
e2e_focus "$PANEL"
e2e_screenshot "$SHOTS/e2e_project-save-panel.png"
xdotool key Escape
e2e_quit
grep -qF '&lt;p&gt;kept in the project&lt;/p&gt;' <<<"$(e2e_store)" || e2e_fail "the project did not put the page back"
echo "PASS"
