#!/bin/sh
# Builds Quaylight and runs the whole test suite. Installs what it needs; safe to run twice.
set -eu
here=$(cd "$(dirname "$0")/.." && pwd)
"$here/scripts/build.sh"
build="${QUAYLIGHT_BUILD_DIR:-$here/build}"
cd "$build"
# Widget tests run offscreen; the X11 tests need a server, so the whole suite runs under one.
exec xvfb-run -a -s "-screen 0 1280x1024x24" ctest --output-on-failure -j2 --timeout 300
