#!/usr/bin/env bash
# Starts (start) or stops (stop) the wineserver of the test prefix for a
# whole test run: kept alive in between, each Windows test program starts
# in a fraction of a second instead of bringing a server up and down.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
# The prefix wine-run.sh uses (QUORVEX_WINEARCH, QUORVEX_WINELANE,
# QUORVEX_WINEPREFIX).
prefix=$("$here/scripts/wine-run.sh" --prefix)
export WINEPREFIX=$prefix WINEDEBUG=-all
case ${1:-} in
  start)
    # Makes the prefix when needed (wine-run.sh does that on first use).
    "$here/scripts/wine-run.sh" cmd /c exit >/dev/null 2>&1 || true
    # A server left from before (only this prefix's) is replaced by one
    # that stays up until the stop.
    wineserver -k 2>/dev/null || true
    wineserver -w 2>/dev/null || true
    # Its output must not hold the test runner's pipe open.
    wineserver -p </dev/null >/dev/null 2>&1
    # Wine's own background processes start with the first program and
    # live as long as the server: start them here, on no output, or they
    # hold the pipe of whichever test came first.
    "$here/scripts/wine-run.sh" cmd /c exit </dev/null >/dev/null 2>&1 || true
    ;;
  stop)
    [[ -d $prefix ]] || exit 0
    wineserver -k 2>/dev/null || true
    wineserver -w 2>/dev/null || true
    ;;
  *)
    echo "usage: $0 start|stop" >&2
    exit 2
    ;;
esac
