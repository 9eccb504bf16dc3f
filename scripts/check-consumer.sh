#!/usr/bin/env bash
# Installs the Windows build (build-win/) into a staging folder, builds a small program outside
# the library against the installed headers and the import library alone, and runs it under
# Wine with the DLL beside it: the exported interface is usable as shipped.
# Expects scripts/test-windows.sh's build and Wine prefix.
set -euo pipefail
cd "$(dirname "$0")/.."
stage="$PWD/build-win/install"
out="$PWD/build-win/consumer"

rm -rf "$stage" "$out"
cmake --install build-win --prefix "$stage" >/dev/null
mkdir -p "$out"
x86_64-w64-mingw32-g++-posix -std=c++20 -Wall -Wextra -Werror -I"$stage/include" \
  tests/consumer/consumer.cpp "$stage/lib/libHostkit3.dll.a" \
  -static -static-libgcc -static-libstdc++ -o "$out/consumer.exe"
cp "$stage/bin/Hostkit3.dll" "$out/"
# The program must need the DLL: it links nothing of the library statically.
imports=$(x86_64-w64-mingw32-objdump -p "$out/consumer.exe")
if ! grep -q 'DLL Name: Hostkit3.dll' <<<"$imports"; then
  echo "check-consumer: consumer.exe does not load Hostkit3.dll" >&2
  exit 1
fi

export WINEPREFIX="${WINEPREFIX:-$PWD/build-win/wineprefix}" WINEDEBUG=-all
wine "$out/consumer.exe"
