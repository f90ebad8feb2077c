#!/usr/bin/env bash
# Installs the Debian packages that building, running and testing Tagwright need.
# Safe to run again: only packages that are missing are installed.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config
  qt6-base-dev qt6-base-dev-tools qt6-tools-dev qt6-tools-dev-tools qt6-l10n-tools qt6-translations-l10n
  qt6-webengine-dev qt6-webengine-dev-tools libqt6webenginecore6-bin
  libicu-dev qt6-qpa-plugins libgl-dev libvulkan-dev libxkbcommon-dev libxcb1-dev
  fonts-dejavu-core fonts-ipafont-gothic
  xvfb xauth xdotool x11-utils imagemagick time
  tidy nodejs node-css-tree
  libqt6svg6 desktop-file-utils appstream shared-mime-info xdg-utils libfile-mimeinfo-perl libxml2-utils
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

echo "Installing: ${missing[*]}"
sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then
  sudo_cmd=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -q
"${sudo_cmd[@]}" apt-get install -y -q --no-install-recommends "${missing[@]}"
