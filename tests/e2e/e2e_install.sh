#!/usr/bin/env bash
# Installs the built program into a private prefix: every file lands where the desktop looks
# for it and passes its validator, a project is known by its name and by its content, and
# opening a project from the desktop (xdg-open) starts the installed Tagwright with it, its
# windows showing the application icon and the window class that the menu entry names.
set -euo pipefail
APP=$(realpath "$1")
source "$(dirname "$0")/lib.sh"
e2e_setup
prefix="$E2E_HOME/prefix"
share="$prefix/share"
desktop="$share/applications/tagwright.desktop"
metainfo="$share/metainfo/io.github.tagwright.Tagwright.metainfo.xml"
mimepackage="$share/mime/packages/tagwright.xml"
project_type=application/x-tagwright-project
# The desktop tools below pick their way by the desktop that runs; the plain one is the same everywhere.
unset XDG_CURRENT_DESKTOP DESKTOP_SESSION KDE_FULL_SESSION GNOME_DESKTOP_SESSION_ID || true

cmake --install "$(dirname "$APP")" --prefix "$prefix" >/dev/null || e2e_fail "cmake --install failed"
for file in "$prefix/bin/tagwright" "$desktop" "$metainfo" "$mimepackage" "$share/icons/hicolor/scalable/apps/tagwright.svg"; do
  [ -s "$file" ] || e2e_fail "not installed: $file"
done
desktop-file-validate "$desktop" || e2e_fail "desktop-file-validate refuses the menu entry"
appstreamcli validate --no-net "$metainfo" || e2e_fail "appstreamcli refuses the metainfo"
xmllint --noout "$mimepackage" || e2e_fail "the file types are not well-formed XML"
update-mime-database "$share/mime" 2>/dev/null
update-desktop-database "$share/applications"

# By name, and by content without a name; another property list is not a project.
project="$E2E_HOME/site.twproj"
cat >"$project" <<'EOF'
<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
	<key>Editor Window Save Data</key>
	<dict>
		<key>HTML Text</key>
		<string>&lt;p&gt;opened from the desktop&lt;/p&gt;</string>
	</dict>
</dict>
</plist>
EOF
cp "$project" "$E2E_HOME/unnamed"
sed 's/Editor Window Save Data/Name/' "$project" >"$E2E_HOME/other-plist"
export XDG_DATA_DIRS="$share" PATH="$prefix/bin:$PATH"
for name in site.twproj unnamed; do
  found=$(xdg-mime query filetype "$E2E_HOME/$name")
  [ "$found" = "$project_type" ] || e2e_fail "$name is known as $found"
done
[ "$(xdg-mime query filetype "$E2E_HOME/other-plist")" != "$project_type" ] || e2e_fail "any property list is taken for a project"

xdg-open "$project" >"$E2E_HOME/app.log" 2>&1 &
opener=$!
E2E_PIDS+=("$opener")
window=$(e2e_wait_window '^HTML:') || e2e_fail "xdg-open did not start Tagwright"
app=$(e2e_app_pids "$APP")
[ "$(readlink "/proc/$app/exe")" = "$prefix/bin/tagwright" ] || e2e_fail "xdg-open started $(readlink "/proc/$app/exe")"
xprop -id "$window" -len 8 _NET_WM_ICON | grep -qF '_NET_WM_ICON(CARDINAL) =' || e2e_fail "the window has no icon"
wm_class=$(sed -n 's/^StartupWMClass=//p' "$desktop")
xprop -id "$window" WM_CLASS | grep -qF "\"$wm_class\"" || e2e_fail "the window's class is not $wm_class"
kill -TERM "$app"
status=0
wait "$opener" || status=$?
[ "$status" -eq 0 ] || e2e_fail "Tagwright exited with status $status"
grep -qF '&lt;p&gt;opened from the desktop&lt;/p&gt;' <<<"$(e2e_store)" || e2e_fail "the project was not opened"
echo "PASS"
