#!/usr/bin/env bash
# Soak runs: RUNS seeded random rooms (default 1000) through the whole
# program with every fault kind, each checked for its invariants. Failing
# seeds are printed with the scenario that reproduces them (in
# build/PRESET/soak-failures). PRESET defaults to asan.
#   scripts/soak.sh [RUNS] [FIRST_SEED] [PRESET] [-- quorvex-soak options]
#   e.g. scripts/soak.sh 200 1 default -- --exclude lost-click
set -euo pipefail
cd "$(dirname "$0")/.."
runs=${1:-1000}
seed=${2:-1}
preset=${3:-asan}
shift $(($# < 3 ? $# : 3))
[[ ${1:-} == -- ]] && shift
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" -j2 --target quorvex-soak >/dev/null
exec "build/$preset/tools/quorvex-soak" --runs "$runs" --seed "$seed" \
  --fail-dir "build/$preset/soak-failures" "$@"
