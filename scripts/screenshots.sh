#!/usr/bin/env bash
# Takes the README's screenshots: runs quorvex.exe --simulate under Wine on
# a virtual display (Xvfb, Wine's X11 driver, the icewm window manager for
# a task bar) in a Wine prefix of its own in a temporary folder, drives it
# with quorvex-remote.exe and grabs the screen with ImageMagick's `import`.
# Twice: with the screen at 100 % (96 DPI: every window, the task bar) and
# at 150 % (144 DPI). Needs the windows preset built (quorvex.exe,
# quorvex-remote.exe). Writes docs/*.png.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build=${QUORVEX_WINDOWS_BUILD:-$here/build/windows}
out=$here/docs
mkdir -p "$out"
for tool in Xvfb icewm import convert wine xwininfo; do
  command -v $tool >/dev/null || { echo "screenshots.sh: $tool is missing (scripts/setup.sh)" >&2; exit 1; }
done

work=$(mktemp -d)
export WINEPREFIX=$work/prefix WINEDEBUG=-all WINEARCH=win64
export WINEDLLOVERRIDES="mscoree,mshtml="
xvfb="" wm=""
stop_display() {
  wineserver -k 2>/dev/null || true
  wineserver -w 2>/dev/null || true
  [[ -n $wm ]] && kill "$wm" 2>/dev/null || true
  [[ -n $xvfb ]] && kill "$xvfb" 2>/dev/null || true
  wm="" xvfb=""
}
cleanup() {
  stop_display
  rm -rf "$work"
}
trap cleanup EXIT

# start_display DPI WIDTHxHEIGHT [plain]: a display with a task bar, the
# prefix's screen set to DPI, and the program serving its simulated room
# on it (with "plain": the program on its own, with no client).
start_display() {
  export DISPLAY=:$((50 + RANDOM % 40))
  Xvfb "$DISPLAY" -screen 0 "$2x24" -nolisten tcp >/dev/null 2>&1 &
  xvfb=$!
  sleep 1
  # The task bar, without the clock and monitors, so that a shot taken
  # again shows the same.
  ICEWM_PRIVCFG=$work/icewm icewm >/dev/null 2>&1 &
  wm=$!
  wine reg add 'HKCU\Control Panel\Desktop' /v LogPixels /t REG_DWORD \
    /d "$1" /f >/dev/null 2>&1
  # The setting is read as Wine starts.
  wineserver -k 2>/dev/null || true
  wineserver -w 2>/dev/null || true
  rm -rf "$WINEPREFIX/drive_c/quorvex-shots"
  if [[ ${3:-} == plain ]]; then
    mkdir -p "$work/plain"
    cp "$build/quorvex.exe" "$work/plain/"
    wine "$work/plain/quorvex.exe" &
  else
    wine "$build/quorvex.exe" --simulate --speed 3 --root 'C:\quorvex-shots' &
  fi
}
mkdir -p "$work/icewm"
printf 'TaskBarShowClock=0\nTaskBarShowCPUStatus=0\nTaskBarShowNetStatus=0\nTaskBarShowMEMStatus=0\nTaskBarShowWorkspaces=0\nTaskBarShowShowDesktopButton=0\nTaskBarShowWindowListMenu=0\n' \
  >"$work/icewm/preferences"

wine wineboot -u >/dev/null 2>&1 || true
wineserver -w

remote() { wine "$build/quorvex-remote.exe" "$@"; }
# grab NAME X Y W H: a part of the screen.
grab() { import -window root -crop "$4x$5+$2+$3" +repage "$out/$1.png"; }

# 100 %: every window of the program, and the task bar.
start_display 96 1024x768
# The splash stands for its second only: once the display has its window
# (named by its text), a burst of shots, and the last of them that shows
# its title band (blue, where the main window coming after it is not).
for _ in $(seq 1 200); do
  xwininfo -root -tree 2>/dev/null | grep -q '"quorvex": ' && break
  sleep 0.05
done
for i in $(seq 10 30); do
  import -window root -crop 260x130+200+160 +repage "$work/splash-$i.png"
done
for f in "$work"/splash-*.png; do
  rgb=$(convert "$f" -format '%[fx:int(255*p{130,5}.r)] %[fx:int(255*p{130,5}.b)]' info:)
  read -r r b <<<"$rgb"
  ((b > r + 60)) && cp "$f" "$out/splash.png"
done
remote show QuorvexMain wait 2
grab main-idle 80 60 320 280

# Serving: start, build the lists, let the room's requests come in.
remote click cmdStart yes "make lists" wait 25
grab main-serving 80 60 320 280
# The main window above its task-bar button, which shows the program's
# icon.
import -window root "$work/screen.png"
convert "$work/screen.png" \( -clone 0 -crop 420x300+40+50 +repage \) \
  \( -clone 0 -crop 420x26+0+742 +repage \) -delete 0 \
  -background '#000000' -splice 0x6 -append +repage "$out/taskbar.png"

remote menu mnuServeNChat show QuorvexChatroom wait 6 say "hello room" wait 3
grab serve-and-chat 408 60 320 236
# A second small window opens beside the first, not over it.
remote menu mnuRoomBuster show QuorvexRoomBuster wait 1
grab two-windows 400 52 594 252
remote close QuorvexRoomBuster
remote close QuorvexChatroom
remote menu mnuBanOpts show QuorvexBanning wait 1
grab banning-options 408 60 300 166
# The scaling pair: the main window and a small one, at 100 % here.
grab scale-100 76 56 640 290
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
stop_display

# The program without the simulated room, and no client running: a start
# says so.
start_display 96 1024x768 plain
remote show QuorvexMain wait 2 click cmdStart
read -r x y w h < <(remote where quorvex | tr -d '\r')
grab no-client $((x - 8)) $((y - 30)) $((w + 16)) $((h + 38))
stop_display

# 150 %: the windows and their fonts half as large again, nothing cut.
start_display 144 1280x960
remote show QuorvexMain wait 2
remote click cmdStart yes "make lists" wait 25
remote menu mnuBanOpts show QuorvexBanning wait 1
grab scale-150 76 56 950 430
remote close QuorvexBanning
remote menu mnuBMax wait 2
grab input-box-150 560 52 600 260
stop_display
echo "screenshots written to $out"
