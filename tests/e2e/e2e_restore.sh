#!/usr/bin/env bash
# The real app under Xvfb: type a line, quit with SIGTERM, start again, find the line
# restored (and the window titled by the file handed over on the command line).
set -euo pipefail
APP=$(realpath "$1")
source "$(dirname "$0")/lib.sh"
e2e_setup
SHOTS="${E2E_SCREENSHOT_DIR:-$(dirname "$APP")/screenshots}"

# First launch: the default page.
e2e_start "$APP"
title=$(xdotool getwindowname "$E2E_WINDOW")
[ "$title" = "HTML:> Untitled <" ] || e2e_fail "first-launch title was '$title'"
e2e_focus "$E2E_WINDOW"
xdotool key --clearmodifiers ctrl+End
xdotool type --delay 20 '<p>typed under Xvfb</p>'
xdotool key Return
# The template and style-sheet windows are open beside it on a first launch.
TEMPLATE=$(timeout 10 xdotool search --sync --onlyvisible --name '^Template:' | head -n 1) || e2e_fail "no template window"
CSS=$(timeout 10 xdotool search --sync --onlyvisible --name '^CSS:' | head -n 1) || e2e_fail "no style-sheet window"
e2e_focus "$TEMPLATE"
xdotool key --clearmodifiers ctrl+End
xdotool type --delay 20 '<!-- template edit -->'
e2e_focus "$CSS"
xdotool type --delay 20 'h1 { color: teal }'
sleep 0.5
e2e_screenshot "$SHOTS/e2e_restore-first-launch.png"
e2e_quit
store=$(e2e_store)
grep -qF -e '&lt;p&gt;typed under Xvfb&lt;/p&gt;' <<<"$store" || e2e_fail "the typed line was not saved at quit"
grep -qF -e '&lt;!-- template edit --&gt;' <<<"$store" || e2e_fail "the template edit was not saved at quit"
grep -qF -e 'h1 { color: teal }' <<<"$store" || e2e_fail "the style sheet was not saved at quit"

# Second launch: the line is back; type a second one, which must join it.
e2e_start "$APP"
xdotool search --onlyvisible --name '^Template:' >/dev/null || e2e_fail "the template window was not shown again"
xdotool search --onlyvisible --name '^CSS:' >/dev/null || e2e_fail "the style-sheet window was not shown again"
e2e_focus "$E2E_WINDOW"
xdotool key --clearmodifiers ctrl+End
xdotool type --delay 20 '<p>second session</p>'
# A tag shortcut of the shipped library wraps the next words in a paragraph.
xdotool key --clearmodifiers Return ctrl+alt+p
xdotool type --delay 20 'after a shortcut'
sleep 0.3
e2e_screenshot "$SHOTS/e2e_restore-second-launch.png"
# Quitting with a menu open quits cleanly all the same.
xdotool key --clearmodifiers alt+i
sleep 0.3
xdotool key Down Right
sleep 0.3
e2e_screenshot "$SHOTS/e2e_restore-insert-menu.png"
e2e_quit
store=$(e2e_store)
grep -qF -e '&lt;!-- template edit --&gt;' <<<"$store" || e2e_fail "the template edit was not restored"
grep -qF -e 'h1 { color: teal }' <<<"$store" || e2e_fail "the style sheet was not restored"
grep -qF -e '&lt;p&gt;typed under Xvfb&lt;/p&gt;' <<<"$store" || e2e_fail "the first line was not restored"
grep -qF -e '&lt;p&gt;second session&lt;/p&gt;' <<<"$store" || e2e_fail "the second line was not saved"
grep -qF -e '&lt;p&gt;&lt;/p&gt;after a shortcut' <<<"$store" || e2e_fail "the tag shortcut inserted nothing"

# A file handed over on the command line opens in the HTML window.
page="$E2E_HOME/handed over.html"
printf '<p>from the command line</p>\n' > "$page"
e2e_start "$APP" "$page"
title=$(xdotool getwindowname "$E2E_WINDOW")
[ "$title" = "HTML:handed over.html" ] || e2e_fail "title after opening a file was '$title'"
e2e_screenshot "$SHOTS/e2e_restore-opened-file.png"
# Quit from the keyboard this time: Ctrl+Q runs the same quit sequence.
e2e_focus "$E2E_WINDOW"
xdotool key --clearmodifiers ctrl+q
timeout 30 tail --pid="$E2E_APP" -f /dev/null || e2e_fail "Ctrl+Q did not quit"
wait "$E2E_APP" || e2e_fail "the app exited with an error after Ctrl+Q"
E2E_APP=
grep -qF 'from the command line' <<<"$(e2e_store)" || e2e_fail "the opened file's text was not kept"
echo "PASS"
