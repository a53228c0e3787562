#!/usr/bin/env bash
# Builds the Windows release, both builds stripped, into dist/:
#   quorvex-VERSION-setup.exe    the installer (NSIS): per user, Start-menu
#                                entries, an uninstaller; it installs the
#                                build that fits the Windows it runs on
#   quorvex-VERSION-windows.zip  quorvex.exe (x86_64), x86\quorvex.exe
#                                (i686) and README.txt
# The version is the project's (CMakeLists.txt). A build that cannot be
# made stops the release: nothing is left out silently.
#   scripts/release.sh
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
version=$(sed -n 's/^project(quorvex VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
[[ -n $version ]] || { echo "release: no version in CMakeLists.txt" >&2; exit 1; }
stage=$PWD/build/release/quorvex-$version
rm -rf "$stage"
mkdir -p "$stage/x86" dist

# build PRESET TRIPLE OUT: the preset's quorvex.exe, stripped, as OUT.
build() {
  local preset=$1 triple=$2 out=$3
  for tool in "$triple-g++-posix" "$triple-strip"; do
    command -v "$tool" >/dev/null || {
      echo "release: $tool is missing (scripts/setup.sh installs it)" >&2
      exit 1
    }
  done
  echo "=== $preset"
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset" -j2 --target quorvex
  "$triple-strip" -o "$out" "build/$preset/quorvex.exe"
}
build windows x86_64-w64-mingw32 "$stage/quorvex.exe"
build windows-i686 i686-w64-mingw32 "$stage/x86/quorvex.exe"
# Windows readers expect CR LF line ends. (makensis reads paths from the
# script's folder: all of them are absolute here.)
sed 's/$/\r/' packaging/README-windows.txt >"$stage/README.txt"

zip_file=$PWD/dist/quorvex-$version-windows.zip
rm -f "$zip_file"
(cd build/release && zip -qr "$zip_file" "quorvex-$version")

setup_file=$PWD/dist/quorvex-$version-setup.exe
rm -f "$setup_file"
makensis -V2 -DVERSION="$version" -DEXE64="$stage/quorvex.exe" \
  -DEXE32="$stage/x86/quorvex.exe" -DREADME="$stage/README.txt" \
  -DOUTFILE="$setup_file" packaging/quorvex.nsi

echo "release: $zip_file"
unzip -l "$zip_file"
echo "release: $setup_file ($(stat -c %s "$setup_file") bytes)"
