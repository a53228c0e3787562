#!/usr/bin/env bash
# Installs what the build needs on a fresh Debian 12 machine, only when
# something is missing. Needs root (or sudo) for apt-get.
set -euo pipefail

packages=(cmake ninja-build g++ libgtest-dev libgmock-dev libbenchmark-dev
          nlohmann-json3-dev libcli11-dev clang-format
          # the fuzz targets: clang with libFuzzer and the sanitizers
          clang libclang-rt-14-dev
          # the Windows build and Wine to run it headless
          g++-mingw-w64-x86-64-posix wine wine64)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" ||
    missing+=("$p")
done

if ((${#missing[@]})); then
  echo "setup: installing ${missing[*]}"
  sudo=""
  [[ $(id -u) != 0 ]] && sudo=sudo
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
