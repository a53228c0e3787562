#!/usr/bin/env bash
# Builds the program and runs the main job: the console demo of a lively
# simulated chat room (extra arguments go to quorvex-sim).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake --preset default >/dev/null
cmake --build --preset default -j2 --target quorvex-sim
if (($#)); then
  exec build/default/tools/quorvex-sim "$@"
fi
exec build/default/tools/quorvex-sim --demo --format text
