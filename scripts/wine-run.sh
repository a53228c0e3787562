#!/usr/bin/env bash
# Runs a Windows program under Wine, headless (Wine's null graphics driver:
# real windows, menus and message boxes, no display). The prefix is made
# once per build folder; set QUORVEX_WINEPREFIX to use another one.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
prefix=${QUORVEX_WINEPREFIX:-$here/build/wine}
mkdir -p "$(dirname "$prefix")"
export WINEPREFIX=$prefix WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
export WINEARCH=win64
unset DISPLAY

exec 9>"$prefix.lock"
flock 9
if [[ ! -f $prefix/.quorvex-ready ]]; then
  rm -rf "$prefix"
  mkdir -p "$prefix"
  # The graphics driver must be chosen before the prefix first starts.
  printf 'WINE REGISTRY Version 2\n\n[Software\\\\Wine\\\\Drivers]\n"Graphics"="null"\n' \
    >"$prefix/user.reg"
  wine wineboot -u >/dev/null 2>&1 || true
  wineserver -w
  touch "$prefix/.quorvex-ready"
fi
flock -u 9
exec wine "$@"
