#!/usr/bin/env bash
# Writes the release bundle dist/Hostkit3-VERSION-win32.zip from the 32-bit Windows build
# (build-win32/, made by scripts/test-windows.sh): Hostkit3.dll, its import library, the public
# headers, hostkit.exe and LINKING.txt on how a set-up program links the library. The imports
# are checked first, so a bundle never holds a DLL that some release cannot load.
set -euo pipefail
cd "$(dirname "$0")/.."
build=build-win32
version=$(sed -n 's/^project(Hostkit3 VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
name="Hostkit3-$version-win32"

for file in Hostkit3.dll tools/hostkit/hostkit.exe; do
  if [[ ! -f "$build/$file" ]]; then
    echo "package-windows: $build/$file is missing; build it with scripts/test-windows.sh" >&2
    exit 1
  fi
done
bash scripts/check-imports.sh "$build/Hostkit3.dll" "$build/tools/hostkit/hostkit.exe"

stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
cmake --install "$build" --prefix "$stage/$name" >/dev/null
cp "$build/tools/hostkit/hostkit.exe" "$stage/$name/bin/"
i686-w64-mingw32-strip --strip-unneeded "$stage/$name/bin/Hostkit3.dll" "$stage/$name/bin/hostkit.exe"
cat >"$stage/$name/LINKING.txt" <<TEXT
Hostkit3 $version for 32-bit Windows 95, 98, Me, NT 4.0, 2000 and XP

bin/Hostkit3.dll      the library; ship it beside the set-up program's .exe
bin/hostkit.exe       the library's queries from the command line (hostkit --help)
lib/libHostkit3.dll.a the import library
include/hostkit/      the public headers; every class and function is in namespace Hostkit

The interface is C++ and passes std::string and std::vector, so the set-up program must be built
with the same compiler as the DLL: mingw-w64 GCC 12 for i686 in the Win32 thread model
(Debian's i686-w64-mingw32-g++-win32), C++20, with libgcc and libstdc++ linked statically:

  i686-w64-mingw32-g++-win32 -std=c++20 -Iinclude setup.cpp lib/libHostkit3.dll.a \\
    -static -static-libgcc -static-libstdc++ -o setup.exe

The DLL imports from KERNEL32 only functions the first release of Windows 95 exports, and
from its other system DLLs (ADVAPI32, USER32, OLE32 and the C runtime MSVCRT) only functions
every release has; everything newer (IP Helper, SetupAPI, the SNMP agent, the DHCP client,
tokens and services of the NT family, ...) is looked up when it is needed, and its absence
takes the fall-back path. MSVCRT.DLL comes with Windows 98, Me, NT 4.0, 2000 and XP; on
Windows 95 it comes with OSR 2 or Internet Explorer 4 and later, and a set-up program for the
first release of Windows 95 must install it.
TEXT
mkdir -p dist
rm -f "dist/$name.zip"
(cd "$stage" && zip -qr -X "$OLDPWD/dist/$name.zip" "$name")
echo "package-windows: dist/$name.zip"
unzip -l "dist/$name.zip" | tail -n +4 | awk 'NF == 4 { print "  " $4 }'
