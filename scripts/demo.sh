#!/bin/sh
# Builds Quaylight, writes a demo collection and starts the program on it. With no display it
# runs under Xvfb, writes a screenshot of the main form and ends. Safe to run twice.
set -eu
here=$(cd "$(dirname "$0")/.." && pwd)
"$here/scripts/build.sh"
build="${QUAYLIGHT_BUILD_DIR:-$here/build}"

demo="${1:-$here/demo}"
collection="$demo/collection"
# The demo keeps its own settings, so the user's own Quaylight settings are never touched.
export XDG_CONFIG_HOME="$demo/config" XDG_STATE_HOME="$demo/state"
# The mark is set before the collection is written, so that a run stopped half-way is cleaned up
# by the next one; a folder that has no mark is never deleted.
marker="$demo/.collection-is-a-demo"
if [ -e "$collection" ]; then
  if [ -e "$marker" ]; then
    rm -rf -- "$collection"
  else
    echo "demo: $collection exists and is not a demo collection; not touching it" >&2
    exit 1
  fi
fi
mkdir -p -- "$demo"
touch -- "$marker"
"$build/tools/cli/quaylight-cli" demo "$collection"
if [ -x "$here/scripts/write-demo-associations.sh" ]; then
  "$here/scripts/write-demo-associations.sh" "$build"
fi

cd "$collection"
if [ -n "${DISPLAY:-}" ]; then
  exec "$build/src/app/quaylight"
fi
shot="$demo/screenshot.png"
xvfb-run -a -s "-screen 0 1280x1024x24" sh -c '
  openbox >/dev/null 2>&1 &
  # A window mapped while the window manager is still starting can stay unmanaged and unseen,
  # so the program starts once openbox has announced itself on the root window.
  tries=0
  until xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q "window id"; do
    sleep 0.1
    tries=$((tries + 1))
    [ "$tries" -lt 300 ] || break
  done
  "$1" & app=$!
  # Wait (up to a minute) until the form has been drawn: a bare screen has a single colour.
  tries=0
  while :; do
    sleep 0.5
    import -window root "$2"
    colours=$(identify -format "%k" "$2" 2>/dev/null || echo 0)
    [ "$colours" -gt 200 ] && break
    tries=$((tries + 1))
    [ "$tries" -lt 120 ] || { echo "demo: the main form did not appear" >&2; break; }
  done
  # One more frame, so that the picture shows the form fully painted.
  sleep 1
  import -window root "$2"
  kill "$app" 2>/dev/null || true
' sh "$build/src/app/quaylight" "$shot"
echo "demo: no display; the main form's screenshot is $shot"
