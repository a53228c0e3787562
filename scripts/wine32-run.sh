#!/usr/bin/env bash
# wine-run.sh with a 32-bit Windows (its own prefix): runs the tests of the
# windows-i686 build.
export QUORVEX_WINEARCH=win32
exec "$(dirname "$0")/wine-run.sh" "$@"
