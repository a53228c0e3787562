#!/usr/bin/env bash
# Installs what the build needs on a fresh Debian 12 machine, only when
# something is missing, without questions. Needs root (or sudo) for
# apt-get.
set -euo pipefail

packages=(cmake ninja-build g++ libgtest-dev libgmock-dev libbenchmark-dev
          nlohmann-json3-dev libcli11-dev clang-format
          # the fuzz targets: clang with libFuzzer and the sanitizers
          clang libclang-rt-14-dev
          # the Windows builds, x86_64 and i686, and Wine to run them
          # headless: wine32 runs the 32-bit build (Debian's Wine 8 runs
          # 32-bit programs only through it, not through WoW64)
          g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix
          wine wine64 wine32:i386
          # the program's icon (scripts/draw-icon.sh): ImageMagick
          imagemagick
          # the release: the installer, the zip file
          nsis zip unzip
          # the screenshots: a virtual display, a window manager with a
          # task bar, and xwininfo to catch the splash's second
          # (scripts/screenshots.sh)
          xvfb icewm x11-utils
          # the test command compiles through it: a second run, or a
          # fresh clone on the same machine, recompiles only what changed
          ccache)

sudo=""
[[ $(id -u) != 0 ]] && sudo=sudo

# wine32 is an i386 package: the architecture must be known to dpkg and
# its package lists fetched first.
new_arch=""
if ! dpkg --print-foreign-architectures | grep -qx i386; then
  echo "setup: adding the i386 architecture (for wine32)"
  $sudo dpkg --add-architecture i386
  new_arch=yes
fi

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" ||
    missing+=("$p")
done

if ((${#missing[@]})) || [[ -n $new_arch ]]; then
  echo "setup: installing ${missing[*]}"
  # A mirror caught mid-sync fails one list and serves the others: the
  # install is tried with the lists there are, and says what it lacks.
  $sudo apt-get update -qq ||
    echo "setup: apt-get update reported errors; trying the install anyway" >&2
  $sudo env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq \
    --no-install-recommends "${missing[@]}"
fi
