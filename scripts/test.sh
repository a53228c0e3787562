#!/usr/bin/env bash
# Builds and runs every test (unit, scenario, kill test, short soak, fuzz
# corpora replayed): the default preset, AddressSanitizer +
# UndefinedBehaviorSanitizer, and the two Windows builds under Wine, the
# x86_64 one and the i686 one in a 32-bit Wine (the desktop program's,
# the import-table, resource and installer tests included). Warnings are
# errors in all of them. Pass preset names to run only some of them:
# scripts/test.sh default
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh

# Compile through ccache, keyed on paths relative to the checkout, so a
# fresh clone on a machine that built before reuses what it compiled.
if [[ -z ${CMAKE_CXX_COMPILER_LAUNCHER:-} ]] && command -v ccache >/dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=ccache CCACHE_BASEDIR=$PWD
fi

presets=("$@")
((${#presets[@]})) || presets=(default asan windows windows-i686)
for preset in "${presets[@]}"; do
  echo "=== preset $preset"
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset" -j2
  ctest --preset "$preset"
done
# The kill test and a short soak run in ctest above, and every fuzz
# target's corpus is replayed there. Fuzzing itself is a separate command
# (scripts/fuzz.sh all 600), as are scripts/kill-test.sh 3000 and
# scripts/soak.sh 1000.
