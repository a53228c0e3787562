#!/usr/bin/env bash
# Runs a Windows program under Wine, headless (Wine's null graphics driver:
# real windows, menus and message boxes, no display). QUORVEX_WINEARCH
# chooses the Wine: win64 (the default; 64-bit programs, and 32-bit ones
# where a 32-bit Wine is installed) or win32 (a 32-bit Windows, as XP
# was). The prefix is made once per architecture in build/wine (win64) or
# build/wine-win32; QUORVEX_WINELANE=b chooses a second prefix beside it
# (build/wine-b, build/wine-win32-b: a Wine desktop of its own, so that two
# tests that look for windows by class run side by side); set
# QUORVEX_WINEPREFIX to use any other one.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
arch=${QUORVEX_WINEARCH:-win64}
case $arch in
  win64) default_prefix=$here/build/wine ;;
  win32) default_prefix=$here/build/wine-win32 ;;
  *) echo "wine-run.sh: QUORVEX_WINEARCH must be win64 or win32" >&2; exit 2 ;;
esac
lane=${QUORVEX_WINELANE:-}
case $lane in
  '') ;;
  b) default_prefix=$default_prefix-b ;;
  *) echo "wine-run.sh: QUORVEX_WINELANE must be empty or b" >&2; exit 2 ;;
esac
prefix=${QUORVEX_WINEPREFIX:-$default_prefix}
# wine-run.sh --prefix: only says which prefix it uses.
if [[ ${1:-} == --prefix ]]; then
  echo "$prefix"
  exit 0
fi
mkdir -p "$(dirname "$prefix")"
export WINEPREFIX=$prefix WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
export WINEARCH=$arch
unset DISPLAY

# The Wine the prefix was made or last updated with: the version, and
# whether a 32-bit Wine is installed beside the 64-bit one.
installed="$(wine --version 2>/dev/null) wine32=$([[ -x /usr/lib/wine/wine ]] && echo yes || echo no)"

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
  echo "$installed" >"$prefix/.quorvex-ready"
elif [[ $(cat "$prefix/.quorvex-ready") != "$installed" ]]; then
  # A 32-bit Wine installed after the prefix was made starts every
  # program, 64-bit ones too, and needs the prefix's 32-bit system files:
  # Wine brings the prefix up to date at its next start when it finds no
  # record of the last update.
  rm -f "$prefix/.update-timestamp"
  wine cmd /c exit >/dev/null 2>&1 || true
  echo "$installed" >"$prefix/.quorvex-ready"
fi
flock -u 9
exec wine "$@"
