#!/usr/bin/env bash
# Builds quorvex.exe and runs it under Wine, serving a simulated room:
#   scripts/desktop.sh [--speed N]
# or, with --client, as it runs on a machine with the chat client (under
# Wine there is none: a start keeps asking for the client's mailbox):
#   scripts/desktop.sh --client
# Needs a display (your desktop session, or: xvfb-run scripts/desktop.sh).
# Wine runs in a prefix of its own with its X11 driver (build/wine-x11).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake --preset windows >/dev/null
cmake --build --preset windows -j2 --target quorvex
export WINEPREFIX=$PWD/build/wine-x11 WINEDEBUG=-all WINEARCH=win64
export WINEDLLOVERRIDES="mscoree,mshtml="
if [[ ! -f $WINEPREFIX/.quorvex-ready ]]; then
  wine wineboot -u >/dev/null 2>&1 || true
  wineserver -w
  touch "$WINEPREFIX/.quorvex-ready"
fi
if [[ ${1:-} == --client ]]; then
  exec wine build/windows/quorvex.exe
fi
exec wine build/windows/quorvex.exe --simulate "$@"
