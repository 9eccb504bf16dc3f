#!/usr/bin/env bash
# The full check: installs what is missing, builds and runs every test, builds again with
# AddressSanitizer and UndefinedBehaviorSanitizer (build-asan/) and in 32 bits (build-m32/) and
# runs the tests there, then runs the Windows leg: the shipped 32-bit DLL checked for what it
# imports, and the same tests under Wine on each emulated release.
# HOSTKIT_JOBS sets the number of parallel jobs (default 2).
set -euo pipefail
cd "$(dirname "$0")/.."
jobs="${HOSTKIT_JOBS:-2}"

bash scripts/install-deps.sh
bash scripts/lint.sh
bash scripts/build.sh
ctest --test-dir build --output-on-failure -j "$jobs"

# The benchmarks build and run once, as a smoke test: they measure and never judge a time.
cmake -S . -B build -DHOSTKIT_BUILD_BENCH=ON >/dev/null
cmake --build build -j "$jobs" --target hostkit_bench
build/bench/hostkit_bench --benchmark_min_time=0.01

cmake -S . -B build-asan -G Ninja -DHOSTKIT_SANITIZE=ON
cmake --build build-asan -j "$jobs"
ctest --test-dir build-asan --output-on-failure -j "$jobs"

# The same suite with 32-bit pointers, long and size_t, as on the Windows releases served.
cmake -S . -B build-m32 -G Ninja -DCMAKE_TOOLCHAIN_FILE=cmake/linux-i686.cmake
cmake --build build-m32 -j "$jobs"
ctest --test-dir build-m32 --output-on-failure -j "$jobs"

bash scripts/test-windows.sh
