#!/usr/bin/env bash
# Takes the README's screenshots: runs quorvex.exe --simulate under Wine on
# a virtual display (Xvfb, Wine's X11 driver in a prefix of its own), drives
# it with quorvex-remote.exe and grabs each window with ImageMagick's
# `import`. Needs the windows preset built (quorvex.exe, quorvex-remote.exe).
# Writes docs/*.png.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build=${QUORVEX_WINDOWS_BUILD:-$here/build/windows}
out=$here/docs
mkdir -p "$out"
for tool in Xvfb import wine; do
  command -v $tool >/dev/null || { echo "screenshots.sh: $tool is missing" >&2; exit 1; }
done

export WINEPREFIX=$here/build/wine-x11 WINEDEBUG=-all WINEARCH=win64
export WINEDLLOVERRIDES="mscoree,mshtml="
display=:$((50 + RANDOM % 40))
Xvfb "$display" -screen 0 1024x768x24 -nolisten tcp >/dev/null 2>&1 &
xvfb=$!
export DISPLAY=$display
cleanup() {
  wineserver -k 2>/dev/null || true
  kill "$xvfb" 2>/dev/null || true
}
trap cleanup EXIT
sleep 1
if [[ ! -f $WINEPREFIX/.quorvex-ready ]]; then
  rm -rf "$WINEPREFIX"
  wine wineboot -u >/dev/null 2>&1 || true
  wineserver -w
  touch "$WINEPREFIX/.quorvex-ready"
fi
root_dir=$WINEPREFIX/drive_c/quorvex-shots
rm -rf "$root_dir"

remote() { wine "$build/quorvex-remote.exe" "$@"; }
# grab NAME X Y W H: a part of the screen.
grab() { import -window root -crop "$4x$5+$2+$3" +repage "$out/$1.png"; }

wine "$build/quorvex.exe" --simulate --speed 3 --root 'C:\quorvex-shots' &
remote show QuorvexSplash
grab splash 200 160 260 130
remote show QuorvexMain wait 2
grab main-idle 80 60 320 280

# Serving: start, build the lists, let the room's requests come in.
remote click cmdStart yes "make lists" wait 25
grab main-serving 80 60 320 280

remote menu mnuServeNChat show QuorvexChatroom wait 6 say "hello room" wait 3
grab serve-and-chat 408 60 320 236
remote close QuorvexChatroom
remote menu mnuBanOpts show QuorvexBanning wait 1
grab banning-options 408 60 300 166
remote close QuorvexBanning
remote rclick lstBanned show QuorvexRoom wait 1
grab room-people 408 60 240 220
remote close QuorvexRoom
remote menu mnuMessages show QuorvexMessages wait 1
grab message-editor 408 60 300 236
remote close QuorvexMessages
remote menu mnuRoomBuster show QuorvexRoomBuster wait 1
grab room-buster 408 60 250 104
remote close QuorvexRoomBuster
remote menu mnuAbout show QuorvexAbout wait 1
grab about 408 60 260 130
remote close QuorvexAbout
remote menu mnuCredits show QuorvexCredits wait 1
grab credits 408 60 260 130
remote close QuorvexCredits
remote menu mnuBMax wait 2
grab input-box 400 52 420 190
echo "screenshots written to $out"
