#!/bin/sh
# Installs every Debian package that building, testing and the demo need. Safe to run twice.
set -eu
PKGS="cmake g++ ninja-build pkg-config qt6-base-dev libqt6sql6-sqlite qt6-qpa-plugins qt6-svg-dev \
  libgtest-dev googletest zlib1g-dev libarchive-dev xvfb xauth openbox libxdo-dev libxtst-dev \
  libx11-dev libgl-dev libegl-dev libmagick++-6.q16-dev imagemagick x11-utils clang-format \
  arc nomarch"
missing=""
for p in $PKGS; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing="$missing $p"
done
if [ -n "$missing" ]; then
  SUDO=""; [ "$(id -u)" -eq 0 ] || SUDO="sudo"
  export DEBIAN_FRONTEND=noninteractive
  $SUDO apt-get update -q
  # shellcheck disable=SC2086
  $SUDO apt-get install -y -q --no-install-recommends $missing
fi
