#!/usr/bin/env bash
# Compares RegistryBackup::SaveRegistry with the registry editor under Wine, and measures its
# throughput on the simulated machine.
#
# Builds the native benchmarks (build-bench/) and save_registry.exe (build-win-bench/), both with
# -DHOSTKIT_BUILD_BENCH=ON; imports a tree of 100,000 values (HKCU\Software\HostkitBench) into a
# Wine prefix of its own with "regedit /s"; then, for each round, saves the tree with
# save_registry.exe (which prints the milliseconds spent in SaveRegistry) and exports it with
# "regedit /E", timing both processes from here. Prints every round, the best of each and the
# ratios, then runs hostkit_bench for the simulated machine's MB/s. Nothing is asserted of the
# times. HOSTKIT_JOBS sets the build jobs (default 2), HOSTKIT_BENCH_ROUNDS the rounds (3).
set -euo pipefail
cd "$(dirname "$0")/.."
jobs="${HOSTKIT_JOBS:-2}"
rounds="${HOSTKIT_BENCH_ROUNDS:-3}"
key='HKEY_CURRENT_USER\Software\HostkitBench'

bash scripts/install-deps.sh --windows >/dev/null
cmake -S . -B build-bench -G Ninja -DHOSTKIT_BUILD_BENCH=ON -DHOSTKIT_BUILD_TESTS=OFF >/dev/null
cmake --build build-bench -j "$jobs" --target hostkit_bench write_bench_tree
toolchain=()
[[ -f build-win-bench/CMakeCache.txt ]] || toolchain=(-DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64-x86_64.cmake)
cmake -S . -B build-win-bench -G Ninja "${toolchain[@]}" -DHOSTKIT_BUILD_BENCH=ON \
  -DHOSTKIT_BUILD_TESTS=OFF >/dev/null
cmake --build build-win-bench -j "$jobs" --target save_registry

work="$PWD/build-win-bench/compare"
mkdir -p "$work"
source scripts/wine-prefix.sh
use_wine_prefix "$PWD/build-win-bench/bench-prefix"
# Keep one wineserver for the whole run, so no process below pays for starting it.
wineserver --persistent=60
trap 'wineserver --kill >/dev/null 2>&1 || true' EXIT
# Windows XP, the release whose format the simulated benchmark writes too (5.00, UTF-16).
wine reg add 'HKCU\Software\Wine' /v Version /d winxp /f >/dev/null 2>&1

now_ns() { date +%s%N; }
ms_since() { echo $((($(now_ns) - $1) / 1000000)); }
winpath() { winepath -w "$1" 2>/dev/null; }

build-bench/bench/write_bench_tree "$work/tree.reg"
wine reg delete "$key" /f >/dev/null 2>&1 || true
start=$(now_ns)
wine regedit /s "$(winpath "$work/tree.reg")"
echo "imported the tree ($(stat -c %s "$work/tree.reg") bytes) with regedit /s in $(ms_since "$start") ms"

best_save=""
best_save_process=""
best_regedit=""
smaller() { [[ -z "$1" ]] || awk -v a="$2" -v b="$1" 'BEGIN { exit !(a < b) }'; }
for ((round = 1; round <= rounds; round++)); do
  rm -f "$work/save.reg" "$work/regedit.reg"
  start=$(now_ns)
  save_ms=$(wine build-win-bench/save_registry.exe "$key" "$(winpath "$work/save.reg")" | tr -d '\r')
  save_process_ms=$(ms_since "$start")
  start=$(now_ns)
  wine regedit /E "$(winpath "$work/regedit.reg")" "$key"
  regedit_ms=$(ms_since "$start")
  if [[ ! -s "$work/regedit.reg" ]]; then
    echo "compare-regedit: regedit /E wrote nothing" >&2
    exit 1
  fi
  echo "round $round: SaveRegistry ${save_ms} ms (save_registry.exe process ${save_process_ms} ms)," \
    "regedit /E process ${regedit_ms} ms"
  if smaller "$best_save" "$save_ms"; then best_save=$save_ms; fi
  if smaller "$best_save_process" "$save_process_ms"; then best_save_process=$save_process_ms; fi
  if smaller "$best_regedit" "$regedit_ms"; then best_regedit=$regedit_ms; fi
done

save_bytes=$(stat -c %s "$work/save.reg")
regedit_bytes=$(stat -c %s "$work/regedit.reg")
if cmp -s "$work/save.reg" "$work/regedit.reg"; then same="identical"; else same="different"; fi
echo
echo "Under Wine (winxp), best of $rounds rounds, key $key:"
echo "  SaveRegistry:                 $best_save ms (in the call), $best_save_process ms (whole process)"
echo "  regedit /E:                   $best_regedit ms (whole process)"
awk -v s="$best_save" -v p="$best_save_process" -v r="$best_regedit" 'BEGIN {
  printf "  ratio SaveRegistry/regedit:   %.2f (call vs process), %.2f (process vs process)\n", s / r, p / r
}'
echo "  files: SaveRegistry $save_bytes bytes, regedit $regedit_bytes bytes, $same"

echo
echo "On the simulated machine (hostkit_bench):"
build-bench/bench/hostkit_bench --benchmark_min_time=1
