#!/usr/bin/env bash
# Builds the Windows release: dist/quorvex-VERSION-windows.zip with
# quorvex.exe (x86_64), x86/quorvex.exe (i686) and a short read-me for
# Windows users. Needs the mingw-w64 toolchains (scripts/setup.sh).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
version=$(sed -n 's/^project(quorvex VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
stage=build/release/quorvex-$version
rm -rf "$stage"
mkdir -p "$stage/x86" dist

cmake --preset windows >/dev/null
cmake --build --preset windows -j2 --target quorvex
x86_64-w64-mingw32-strip -o "$stage/quorvex.exe" build/windows/quorvex.exe
if command -v i686-w64-mingw32-g++-posix >/dev/null; then
  cmake --preset windows-i686 >/dev/null
  cmake --build --preset windows-i686 -j2 --target quorvex
  i686-w64-mingw32-strip -o "$stage/x86/quorvex.exe" build/windows-i686/quorvex.exe
else
  rmdir "$stage/x86"
fi
# Windows readers expect CR LF line ends.
sed 's/$/\r/' packaging/README-windows.txt >"$stage/README.txt"

zip_file=$PWD/dist/quorvex-$version-windows.zip
rm -f "$zip_file"
(cd build/release && zip -qr "$zip_file" "quorvex-$version")
echo "release: $zip_file"
unzip -l "$zip_file"
