#!/bin/sh
# Installs the packages and builds Quaylight into $QUAYLIGHT_BUILD_DIR (default ./build).
set -eu
here=$(cd "$(dirname "$0")/.." && pwd)
"$here/scripts/setup-deps.sh"
build="${QUAYLIGHT_BUILD_DIR:-$here/build}"
cmake -S "$here" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build "$build" -j2
