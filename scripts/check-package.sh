#!/usr/bin/env bash
# Installs a build into a fresh prefix and builds the example program (examples/) against the
# installed package alone, as a project using the library would: once with find_package and
# once with pkg-config. Then runs it.
#   check-package.sh            the native build (build/): the example switches the card of a
#                               simulated machine (saved by the installed hostkit tool) to DHCP
#   check-package.sh --windows  the mingw build (build-win/): the example runs under Wine
#                               (expects scripts/test-windows.sh's build and Wine prefix)
set -euo pipefail
cd "$(dirname "$0")/.."
root="$PWD"

fail() {
  echo "check-package: $*" >&2
  exit 1
}

expect_files() {
  local file
  for file in "$@"; do
    [[ -e "$prefix/$file" ]] || fail "the installation lacks $file"
  done
}

if [[ "${1:-}" == "--windows" ]]; then
  build=build-win
  cxx=x86_64-w64-mingw32-g++-posix
  toolchain=(-DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64-x86_64.cmake")
  # Not -static: -lHostkit3 from pkg-config must find the DLL's import library. The POSIX
  # thread runtime then comes as a DLL, copied beside the program below.
  static_runtime=(-static-libgcc -static-libstdc++)
  example_main=main_windows.cpp
else
  build=build
  cxx=g++
  toolchain=()
  static_runtime=()
  example_main=main_simulated.cpp
fi
work="$root/$build/package"
prefix="$work/prefix"
rm -rf "$work"
cmake --install "$build" --prefix "$prefix" >/dev/null

# Hostkit3_DIR as well as the prefix: a cross build's toolchain confines package searches to
# the target's root folder.
package=(-DCMAKE_PREFIX_PATH="$prefix" -DHostkit3_DIR="$prefix/lib/cmake/Hostkit3")
cmake -S examples -B "$work/cmake" -G Ninja "${toolchain[@]}" "${package[@]}" \
  -DCMAKE_CXX_FLAGS="-Wall -Wextra -Werror" >/dev/null
cmake --build "$work/cmake" >/dev/null

export PKG_CONFIG_PATH="$prefix/lib/pkgconfig"
read -r -a flags <<<"$(pkg-config --cflags --libs hostkit3)"
mkdir -p "$work/pkg-config"
"$cxx" -std=c++20 -Wall -Wextra -Werror examples/setup_dhcp.cpp "examples/$example_main" \
  "${flags[@]}" "${static_runtime[@]}" -o "$work/pkg-config/setup_dhcp"

if [[ "${1:-}" == "--windows" ]]; then
  expect_files bin/Hostkit3.dll bin/hostkit.exe lib/libHostkit3.dll.a \
    lib/cmake/Hostkit3/Hostkit3Config.cmake lib/cmake/Hostkit3/Hostkit3ConfigVersion.cmake
  cp "$prefix/bin/Hostkit3.dll" "$work/cmake/"
  cp "$prefix/bin/Hostkit3.dll" /usr/x86_64-w64-mingw32/lib/libwinpthread-1.dll "$work/pkg-config/"
  export WINEPREFIX="${WINEPREFIX:-$root/build-win/wineprefix}" WINEDEBUG=-all
  for program in "$work/cmake/setup_dhcp.exe" "$work/pkg-config/setup_dhcp.exe"; do
    # Wine's registry holds no network card the library counts as the one card (its device
    # set-up lists none present), so the run ends at that step; what matters here is that the
    # installed DLL loads and answers.
    output=$(wine "$program" 'C:\tcpip.reg' | tr -d '\r' || true)
    # The build number comes from the registry, where Wine keeps its own (7601) whatever
    # release it emulates.
    grep -q -E '^Windows 5\.10, build [0-9]+$' <<<"$output" ||
      fail "$program did not run on Wine's Windows XP: $output"
    grep -q -E '^(lease renewed: (yes|no)|failed: there is not exactly one network card)$' \
      <<<"$output" || fail "$program stopped early: $output"
  done
else
  expect_files lib/libHostkit3.so lib/libHostkit3.so.3 lib/libHostkit3.so.3.0.0 bin/hostkit \
    lib/cmake/Hostkit3/Hostkit3Config.cmake lib/cmake/Hostkit3/Hostkit3ConfigVersion.cmake
  soname=$(readelf -d "$prefix/lib/libHostkit3.so" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')
  [[ "$soname" == libHostkit3.so.3 ]] || fail "the library's SONAME is '$soname'"
  bash scripts/check-exports.sh "$prefix/lib/libHostkit3.so"

  # The built-in machine's one network card made static by the installed tool, then switched
  # back to DHCP by each build of the example.
  mkdir -p "$work/machine"

  "$prefix/bin/hostkit" adapter 0 static 192.168.1.50 255.255.255.0 192.168.1.1 \
    --save "$work/machine/static.json" >/dev/null
  for program in "$work/cmake/setup_dhcp" "$work/pkg-config/setup_dhcp"; do
    rm -rf "$work/drives" && mkdir -p "$work/drives/c"
    output=$(LD_LIBRARY_PATH="$prefix/lib" "$program" "$work/machine/static.json" \
      "$work/drives" 'C:\tcpip.reg') || fail "$program failed: $output"
    grep -q '^network card 00-0C-76-3A-5E-21, address 192\.168\.1\.50$' <<<"$output" ||
      fail "$program did not find the static card: $output"
    grep -q '^switched to DHCP$' <<<"$output" || fail "$program did not switch: $output"
    # Windows XP writes the 5.00 format, in UTF-16.
    iconv -f UTF-16 -t UTF-8 "$work/drives/c/tcpip.reg" | grep -q 'Tcpip\\Parameters\]' ||
      fail "$program wrote no backup of the TCP/IP settings"

  done
fi
echo "check-package: the installed package builds and runs the example (CMake and pkg-config)"
