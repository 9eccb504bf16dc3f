#!/usr/bin/env bash
# The concurrency tests under ThreadSanitizer (build-tsan/): only the test program is built, and
# only the tests that run the library from several threads at once are run: the first
# classification queries from 8 threads, RegExpMatch from 8 threads, CSNMPQuery walks from 4
# threads, and processor faults handled on several threads. Any data race fails the run.
# HOSTKIT_JOBS sets the number of parallel jobs (default 2).
set -euo pipefail
cd "$(dirname "$0")/.."

cmake -S . -B build-tsan -G Ninja -DHOSTKIT_SANITIZE_THREAD=ON >/dev/null
cmake --build build-tsan -j "${HOSTKIT_JOBS:-2}" --target hostkit_tests

tests='AdapterClassification.FirstQueriesFromManyThreadsAgree'
tests+=':RegExpMatch.ConcurrentCallersGetTheSerialAnswers'
tests+=':AllReleases/SnmpOnSim.WalksFromFourThreadsAtOnceStayWhole/*'
tests+=':FaultHandler.ThreadsFaultIndependently'
TSAN_OPTIONS="halt_on_error=1 ${TSAN_OPTIONS:-}" \
  build-tsan/tests/hostkit_tests --gtest_filter="$tests" --gtest_brief=1
