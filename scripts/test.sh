#!/usr/bin/env bash
# Builds and runs every test, in the default preset and under
# AddressSanitizer + UndefinedBehaviorSanitizer. Pass preset names to run
# only some of them: scripts/test.sh default
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh

presets=("$@")
((${#presets[@]})) || presets=(default asan)
for preset in "${presets[@]}"; do
  echo "=== preset $preset"
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset" -j2
  ctest --preset "$preset"
done
