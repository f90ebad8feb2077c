#!/usr/bin/env bash
# The real app under Xvfb: what the user types into the HTML window appears in the viewer,
# read back from the page itself through the engine's debugging port.
set -euo pipefail
APP=$(realpath "$1")
HERE=$(dirname "$(realpath "$0")")
source "$HERE/lib.sh"
e2e_setup
SHOTS="${E2E_SCREENSHOT_DIR:-$(dirname "$APP")/screenshots}"
PORT=$(python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
export QTWEBENGINE_REMOTE_DEBUGGING="127.0.0.1:$PORT"

page_text() { python3 "$HERE/pagetext.py" "$PORT" "${1:-document.body.innerText}"; }
# Whether the page (or the expression's value) holds the text. The page is read whole first:
# a reader cut short by a pipe closed early must not count as a page without the text.
page_has() {
  local text
  text=$(page_text "${2:-document.body.innerText}" 2>/dev/null) || return 1
  [[ "$text" == *"$1"* ]]
}

e2e_start "$APP"
# The one render at the end of the launch shows the default page.
for _ in $(seq 100); do page_has 'Welcome to Tagwright' && break; sleep 0.2; done
page_has 'Welcome to Tagwright' || e2e_fail "the viewer did not show the default page"

e2e_focus "$E2E_WINDOW"
xdotool key --clearmodifiers ctrl+End
xdotool type --delay 20 '<p id="typed">Typed into the editor</p>'
found=
for _ in $(seq 100); do
  if page_has 'Typed into the editor' \
       'document.getElementById("typed") ? document.getElementById("typed").textContent : ""'; then
    found=1
    break
  fi
  sleep 0.2
done
[ -n "$found" ] || e2e_fail "the typed paragraph did not reach the viewer"
# The template wraps it: its title names the window.
VIEWER=$(xdotool search --onlyvisible --name 'Tagwright" Sample' | head -n 1) || e2e_fail "the viewer window is not titled by the page"
sleep 0.5
e2e_screenshot "$SHOTS/e2e_preview.png"
e2e_quit
[ ! -e "$XDG_DATA_HOME/Tagwright/Tagwright_tmp.html" ] || e2e_fail "the temporary page file was left behind"
echo "PASS"
