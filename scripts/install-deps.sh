#!/usr/bin/env bash
# Installs what the program, its tests and its tools need on Debian 12. Run as root.
set -euo pipefail
packages=(
  g++ cmake ninja-build pkg-config clang-format
  qt6-base-dev qt6-serialport-dev qt6-svg-dev qt6-charts-dev libqt6opengl6-dev libvterm-dev
  xvfb xauth socat fonts-dejavu-core poppler-utils libreoffice-writer-nogui
  dpkg-dev desktop-file-utils appstream man-db
)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if ((${#missing[@]})); then
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq
  apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
