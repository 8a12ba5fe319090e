#!/usr/bin/env bash
# Installs the Debian packages that building, running and testing need, and only
# those that are missing. Runs apt-get through sudo when not root.
set -euo pipefail

packages=(
  build-essential cmake ninja-build ccache pkg-config
  qt6-base-dev qt6-serialport-dev qt6-charts-dev qt6-svg-dev
  libqcustomplot-dev
  libqt6sql6-sqlite libqt6sql6-psql libgl-dev qt6-translations-l10n
  clang libclang-rt-14-dev
  libbenchmark-dev
  postgresql sqlite3 socat xvfb xauth xdg-utils
  libmosquitto-dev mosquitto mosquitto-clients openssl
  libsystemd-dev systemd gcovr
)
# The Windows cross-build and wine, only where the Qt SDK for MinGW is at hand (some
# 700 MB that a machine without the SDK would never use).
if "$(dirname "$0")"/windows/sdk-at-hand.sh >/dev/null 2>&1; then
  packages+=(g++-mingw-w64-x86-64-posix mingw-w64-x86-64-dev binutils-mingw-w64-x86-64
             wine64 fonts-dejavu-core python3)
fi

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then
  sudo_cmd=(sudo)
fi

echo "Installing: ${missing[*]}"
"${sudo_cmd[@]}" apt-get update -qq
DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
