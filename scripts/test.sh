#!/usr/bin/env bash
# Builds and runs every test: the default preset, AddressSanitizer +
# UndefinedBehaviorSanitizer, and the Windows build under Wine (the desktop
# program's tests included). Pass preset names to run
# only some of them: scripts/test.sh default
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh

presets=("$@")
((${#presets[@]})) || presets=(default asan windows)
for preset in "${presets[@]}"; do
  echo "=== preset $preset"
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset" -j2
  ctest --preset "$preset"
done
