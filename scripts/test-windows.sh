#!/usr/bin/env bash
# The Windows leg. Builds the shipped 32-bit Hostkit3.dll with hostkit.exe (build-win32/,
# mingw-w64 i686, Win32 thread model) and the x86-64 build with the test program that runs under
# Wine (build-win/); checks that the 32-bit DLL and hostkit.exe import only what Windows 95
# already exports (scripts/check-imports.sh) and that the DLLs export the public interface and
# nothing of the implementation (scripts/check-exports.sh). Then runs the x86-64 test program
# under Wine once for each Windows release Wine emulates, in a Wine prefix of its own inside the
# build tree (Debian's 32-bit Wine cannot be relied on here). Prints one line per release:
#   win98: 212 passed, 0 failed, 9 skipped
# and fails when any release has a failing test. It also runs a program built against the
# installed headers and import library (scripts/check-consumer.sh), and the example program
# built against the installed package (scripts/check-package.sh --windows).
# HOSTKIT_JOBS sets the number of parallel build jobs (default 2).
set -euo pipefail
cd "$(dirname "$0")/.."
jobs="${HOSTKIT_JOBS:-2}"

bash scripts/install-deps.sh --windows
# GCC 12 at -O3 warns falsely inside std::string for i686, so the release builds use -O2.
release=(-DCMAKE_BUILD_TYPE=Release "-DCMAKE_CXX_FLAGS_RELEASE=-O2 -DNDEBUG")
cmake -S . -B build-win32 -G Ninja -DHOSTKIT_WERROR=ON -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64-i686.cmake \
  "${release[@]}"
# The DLL and the tool only: Debian's GoogleTest needs std::mutex on Windows, which the Win32
# thread model's runtime lacks, so the test program is built by the x86-64 leg alone.
cmake --build build-win32 -j "$jobs" --target Hostkit3 hostkit
cmake -S . -B build-win -G Ninja -DHOSTKIT_WERROR=ON -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64-x86_64.cmake
cmake --build build-win -j "$jobs"

# Every import of the shipped build present on all six releases. (The x86-64 build still uses
# the POSIX thread model for GoogleTest and imports winpthreads' Vista-era calls.)
bash scripts/check-imports.sh build-win32/Hostkit3.dll build-win32/tools/hostkit/hostkit.exe
# The DLLs export the public interface and nothing of the implementation.
bash scripts/check-exports.sh build-win32/Hostkit3.dll
bash scripts/check-exports.sh build-win/Hostkit3.dll

source scripts/wine-prefix.sh
use_wine_prefix "$PWD/build-win/wineprefix"

# This host's IPv4 addresses, loopback aside, for the tests that compare the live network Wine
# reports with the host's own (separated by blanks).
HOSTKIT_HOST_IPV4="$(ip -4 -o addr show | awk '{ split($4, a, "/"); if (a[1] !~ /^127\./) print a[1] }' | xargs)"
export HOSTKIT_HOST_IPV4

failed=0
summary=()
for release in win95 win98 winme nt40 win2k winxp; do
  wine reg add 'HKCU\Software\Wine' /v Version /d "$release" /f >/dev/null 2>&1
  # reg.exe started Wine's desktop without a display; a program starting before that desktop
  # closes joins it and can create no window at all. Let this Wine session end first.
  wineserver --wait
  log="build-win/tests/wine-$release.log"
  status=0
  # The window tests open real windows: Wine needs an X display, a virtual one here.
  xvfb-run -a wine build-win/tests/hostkit_tests.exe --gtest_color=no >"$log" 2>&1 || status=$?
  passed=$(sed -n 's/^\[  PASSED  \] \([0-9]*\) tests\?\..*/\1/p' "$log")
  failures=$(sed -n 's/^\[  FAILED  \] \([0-9]*\) tests\?, listed below:.*/\1/p' "$log")
  skipped=$(sed -n 's/^\[  SKIPPED \] \([0-9]*\) tests\?, listed below:.*/\1/p' "$log")
  line="$release: ${passed:-0} passed, ${failures:-0} failed, ${skipped:-0} skipped"
  if [[ $status -ne 0 || -z "$passed" ]]; then
    failed=1
    grep -E '^\[  FAILED  \]|Failure|error' "$log" | head -40 || true
    [[ -n "$failures" ]] || line="$release: the test program stopped with status $status (see $log)"
  fi
  summary+=("$line")
done
wine reg add 'HKCU\Software\Wine' /v Version /d winxp /f >/dev/null 2>&1

# A program outside the library, linked against the import library only.
bash scripts/check-consumer.sh || failed=1
# The installed package: the example built against it with CMake and pkg-config, run under Wine.
bash scripts/check-package.sh --windows || failed=1
wineserver --wait

printf '%s\n' "${summary[@]}"
exit "$failed"
