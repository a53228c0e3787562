#!/usr/bin/env bash
# Kills the saving program RUNS times (default 3000) at random moments and
# checks after each kill that the queue, the restart state and the settings
# file are whole and hold no older state than one already saved.
#   scripts/kill-test.sh [RUNS] [SEED]
set -euo pipefail
cd "$(dirname "$0")/.."
runs=${1:-3000}
seed=${2:-$RANDOM}
cmake --preset default >/dev/null
cmake --build --preset default -j2 --target quorvex-kill-test quorvex-kill-saver >/dev/null
tools=build/default/tools
"$tools/quorvex-kill-test" --saver "$tools/quorvex-kill-saver" \
  --folder "$tools/kill_test_long" --runs "$runs" --seed "$seed" \
  --max-delay-us 60000
