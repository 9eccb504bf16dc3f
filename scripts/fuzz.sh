#!/usr/bin/env bash
# Builds the libFuzzer targets of fuzz/ with clang, AddressSanitizer and
# UndefinedBehaviorSanitizer in build-fuzz/ and runs each one over its seeds (fuzz/corpus/NAME/)
# with its dictionary (fuzz/corpus/NAME.dict), then prints one line per target: executions,
# coverage and features.
#
#   scripts/fuzz.sh              every target for 60 seconds (what scripts/test.sh runs)
#   scripts/fuzz.sh 3600         every target for an hour
#   scripts/fuzz.sh 600 reg_file one target
#
# Inputs found on the way are kept in build-fuzz/corpus/NAME/ (the seeds stay as they are); an
# input that breaks a target is saved in build-fuzz/findings/ and fails the script.
# HOSTKIT_JOBS sets the number of parallel build jobs (default 2).
set -euo pipefail
cd "$(dirname "$0")/.."

seconds="${1:-60}"
only="${2:-}"

CXX=clang++ cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=None \
  -DCMAKE_CXX_FLAGS="-O1 -gline-tables-only" -DHOSTKIT_SANITIZE=ON -DHOSTKIT_BUILD_FUZZ=ON \
  -DHOSTKIT_BUILD_TESTS=OFF >/dev/null

names=()
for source in fuzz/*_fuzz.cpp; do
  name="$(basename "$source" _fuzz.cpp)"
  if [[ -z "$only" || "$only" == "$name" ]]; then
    names+=("$name")
  fi
done
if ((${#names[@]} == 0)); then
  echo "fuzz: no target named $only" >&2
  exit 2
fi
cmake --build build-fuzz -j "${HOSTKIT_JOBS:-2}" --target "${names[@]/%/_fuzz}"

mkdir -p build-fuzz/findings
failed=0
for name in "${names[@]}"; do
  mkdir -p "build-fuzz/corpus/$name"
  log="build-fuzz/$name.log"
  if ! "build-fuzz/fuzz/${name}_fuzz" -max_total_time="$seconds" -timeout=10 \
      -dict="fuzz/corpus/$name.dict" -artifact_prefix="build-fuzz/findings/$name-" \
      -print_final_stats=1 "build-fuzz/corpus/$name" "fuzz/corpus/$name" >"$log" 2>&1; then
    echo "fuzz: $name found a fault; see $log and build-fuzz/findings/" >&2
    failed=1
  fi
  runs="$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")"
  coverage="$(grep -o 'cov: [0-9]* ft: [0-9]*' "$log" | tail -n 1)"
  echo "fuzz: $name: ${runs:-?} executions in ${seconds} s, ${coverage:-no coverage line}"
done
exit "$failed"
