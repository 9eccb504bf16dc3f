#!/usr/bin/env bash
# The full check: installs what is missing, checks the style, builds and runs every test
# natively, checks the installed package and the API reference, runs the benchmarks once, builds
# again with AddressSanitizer and UndefinedBehaviorSanitizer (build-asan/) and runs the tests
# there, runs the concurrency tests under ThreadSanitizer (build-tsan/), and then the Windows
# leg: the shipped 32-bit DLL checked for what it imports, and the same tests under Wine on each
# emulated release.
# HOSTKIT_JOBS sets the number of parallel jobs (default 2).
set -euo pipefail
cd "$(dirname "$0")/.."
jobs="${HOSTKIT_JOBS:-2}"

bash scripts/install-deps.sh
bash scripts/lint.sh
bash scripts/build.sh
ctest --test-dir build --output-on-failure -j "$jobs"
# The installed package: the example built against it with CMake and pkg-config, and run.
bash scripts/check-package.sh
# The API reference, with no public member undocumented.
cmake --build build --target docs

# The benchmarks build and run once, as a smoke test: they measure and never judge a time.
cmake -S . -B build -DHOSTKIT_BUILD_BENCH=ON >/dev/null
cmake --build build -j "$jobs" --target hostkit_bench
build/bench/hostkit_bench --benchmark_min_time=0.01

cmake -S . -B build-asan -G Ninja -DHOSTKIT_WERROR=ON -DHOSTKIT_SANITIZE=ON
cmake --build build-asan -j "$jobs"
ctest --test-dir build-asan --output-on-failure -j "$jobs"

bash scripts/test-tsan.sh

bash scripts/test-windows.sh
