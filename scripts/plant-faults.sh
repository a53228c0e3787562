#!/usr/bin/env bash
# Plants off-by-one faults in the core one at a time (each comparison of
# src/requests, src/server and src/settings, and each number or character
# it compares with, moved by one), rebuilds a copy of the checkout, runs
# the tests and lists the faults no test caught. The checkout is never
# written to: the faults go into build/faults/tree, whose file is put back
# after each fault, and the whole copy is made to match the checkout again
# on any exit or interrupt. Not part of scripts/test.sh: a full sweep takes
# about two hours on two cores.
#   scripts/plant-faults.sh [FOLDER|FILE...] [--only REGEX] [--lines A-B]
#                           [--max N] [--resume|--survivors] [--list]
#                           [--timeout S]
#   e.g. scripts/plant-faults.sh src/requests --max 20
# Exit status: 0 when every planted fault was caught, 1 when some survived.
set -euo pipefail
cd "$(dirname "$0")/.."
export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER:-ccache}
# The interpreter itself, not a version manager's wrapper around it, so
# that a signal sent to the child reaches the program.
py=$(python3 -c 'import sys; print(sys.executable)')
child=
restore() {
  [[ -n $child ]] && kill -TERM "$child" 2>/dev/null && wait "$child" || true
  "$py" scripts/plant_faults.py --restore
}
trap 'restore; exit 130' INT TERM HUP
trap restore EXIT
nice -n 10 "$py" scripts/plant_faults.py "$@" &
child=$!
status=0
wait "$child" || status=$?
child=
exit "$status"
