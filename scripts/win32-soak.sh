#!/usr/bin/env bash
# Soak runs through the real Win32 binding, under Wine: RUNS of the soak's
# seeded random rooms (default 200) served by the program on the Win32
# ports against the stand-in client (real windows in processes of its
# own, killed, closed and started again for real), each checked with the
# soak's invariants. Both clocks run F times the wall clock (default 5).
# It runs in a Wine prefix of its own (build/wine-soak) and from a folder
# of its own (the program keeps its queue beside itself), so that the
# Windows tests can run beside it; failing seeds leave their scenario and
# the binding's transcript in build/windows/win32-soak/failures.
#   scripts/win32-soak.sh [RUNS] [FIRST_SEED] [-- qv_win32_soak options]
#   e.g. scripts/win32-soak.sh 20 100 -- --speed 4 --exclude lost-click
set -euo pipefail
cd "$(dirname "$0")/.."
here=$PWD
runs=${1:-200}
seed=${2:-1}
shift $(($# < 2 ? $# : 2))
[[ ${1:-} == -- ]] && shift
cmake --preset windows >/dev/null
cmake --build --preset windows -j2 --target qv_win32_soak >/dev/null
export QUORVEX_WINEPREFIX=${QUORVEX_WINEPREFIX:-$here/build/wine-soak}
scripts/wine-server.sh start
trap "\"$here/scripts/wine-server.sh\" stop" EXIT
mkdir -p build/windows/win32-soak
cp build/windows/tests/win32/qv_win32_soak.exe build/windows/win32-soak/
cd build/windows/win32-soak
"$here/scripts/wine-run.sh" qv_win32_soak.exe --runs "$runs" --seed "$seed" \
  --fail-dir failures "$@"
