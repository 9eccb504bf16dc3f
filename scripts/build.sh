#!/usr/bin/env bash
# Configures the native build in build/ (Ninja) and builds the library, the hostkit tool and
# the tests. Extra arguments go to the configure step, e.g. -DCMAKE_BUILD_TYPE=Debug.
# HOSTKIT_JOBS sets the number of parallel jobs (default 2).
set -euo pipefail
cd "$(dirname "$0")/.."

cmake -S . -B build -G Ninja -DHOSTKIT_WERROR=ON "$@"
cmake --build build -j "${HOSTKIT_JOBS:-2}"
