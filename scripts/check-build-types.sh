#!/usr/bin/env bash
# Builds the library and the hostkit tool (no tests) as a packager would, with warnings as
# errors: one build folder per compiler and build type, build-COMPILER-TYPE/.
#   check-build-types.sh                       g++ and clang++, Release
#   check-build-types.sh "g++ clang++" "Debug RelWithDebInfo Release MinSizeRel"
# HOSTKIT_JOBS sets the number of parallel jobs (default 2).
set -euo pipefail
cd "$(dirname "$0")/.."
jobs="${HOSTKIT_JOBS:-2}"
compilers="${1:-g++ clang++}"
types="${2:-Release}"

for compiler in $compilers; do
  for type in $types; do
    dir="build-${compiler//+/x}-$type"
    cmake -S . -B "$dir" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_BUILD_TYPE="$type" \
      -DHOSTKIT_WERROR=ON -DHOSTKIT_BUILD_TESTS=OFF >/dev/null
    cmake --build "$dir" -j "$jobs" --target Hostkit3 hostkit
    echo "check-build-types: $compiler $type builds"
  done
done
