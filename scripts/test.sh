#!/usr/bin/env bash
# The full check: installs what is missing, builds and runs every test, builds again with
# AddressSanitizer and UndefinedBehaviorSanitizer (build-asan/) and runs the tests there, then
# runs the Windows leg: the DLL and the same tests under Wine on each emulated release.
# HOSTKIT_JOBS sets the number of parallel jobs (default 2).
set -euo pipefail
cd "$(dirname "$0")/.."
jobs="${HOSTKIT_JOBS:-2}"

bash scripts/install-deps.sh
bash scripts/lint.sh
bash scripts/build.sh
ctest --test-dir build --output-on-failure -j "$jobs"

cmake -S . -B build-asan -G Ninja -DHOSTKIT_SANITIZE=ON
cmake --build build-asan -j "$jobs"
ctest --test-dir build-asan --output-on-failure -j "$jobs"

bash scripts/test-windows.sh
