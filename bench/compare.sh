#!/usr/bin/env bash
# Measures the library against its speed goals and prints one line per goal, the measure beside
# the goal:
#   - StaticTcpipInfo::GetAdapterInfo on a simulated XP registry of 20,000 device keys (ms of
#     processor time);
#   - RegistryBackup::SaveRegistry on the simulated machine, XP format (MiB per second of
#     processor time, as the benchmark library counts bytes);
#   - loading the benchmarks' registry file into the simulated machine, against "regedit /s" of
#     the same file under Wine (how many times faster);
#   - SaveRegistry of the benchmarks' tree (100,000 values) under Wine, against "regedit /E" of
#     the same key (SaveRegistry's time over regedit's, whole process against whole process).
# Builds what it needs in the build trees the other scripts use, with -DHOSTKIT_BUILD_BENCH=ON:
# the native benchmarks in build/ and save_registry.exe beside the DLL in build-win/. The Wine measurements run in a Wine prefix
# of their own (Windows XP), the library and regedit in alternating rounds; the simulated ones
# are repeated as many times. Each line gives the median and the best of the rounds. Nothing is
# asserted of a time; the script fails only when a step fails or SaveRegistry's file differs
# from regedit's. HOSTKIT_JOBS sets the build jobs (default 2), HOSTKIT_BENCH_ROUNDS the rounds
# (default 5).
set -euo pipefail
cd "$(dirname "$0")/.."
jobs="${HOSTKIT_JOBS:-2}"
rounds="${HOSTKIT_BENCH_ROUNDS:-5}"
key='HKEY_CURRENT_USER\Software\HostkitBench'

bash scripts/install-deps.sh --windows >/dev/null
cmake -S . -B build -G Ninja -DHOSTKIT_BUILD_BENCH=ON >/dev/null
cmake --build build -j "$jobs" --target hostkit_bench write_bench_tree
toolchain=()
[[ -f build-win/CMakeCache.txt ]] || toolchain=(-DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64-x86_64.cmake)
cmake -S . -B build-win -G Ninja "${toolchain[@]}" -DHOSTKIT_BUILD_BENCH=ON >/dev/null
cmake --build build-win -j "$jobs" --target save_registry

work="$PWD/build-win/compare"
mkdir -p "$work"

# "median best" of the numbers on standard input.
median_best() {
  sort -g | awk '{ v[NR] = $1 } END {
    m = NR % 2 ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2
    printf "%s %s\n", m, v[1] }'
}

# --- The simulated machine ---------------------------------------------------------------------
# One column of the repetitions of one benchmark (aggregate rows left out), each benchmark run
# on its own: the CSV report wants the same counters in every row.
column_of() {
  local csv="$work/sim-${1//\//-}.csv"
  build/bench/hostkit_bench --benchmark_repetitions="$rounds" --benchmark_filter="^$1\$" \
    --benchmark_out="$csv" --benchmark_out_format=csv >/dev/null
  awk -F, -v name="\"$1\"" -v column="$2" '
    $1 == "name" { for (i = 1; i <= NF; ++i) if ($i == column) c = i; next }
    $1 == name { print $c }' "$csv"
}
# Processor time: on a machine shared with other builds the wall time says more about them.
read -r enum_median enum_best < <(column_of BM_GetAdapterInfoXp cpu_time | median_best)
# Bytes per second: the best is the highest rate, the lowest of the negated ones.
read -r save_median save_best < <(column_of SaveRegistry/winxp bytes_per_second |
  awk '{ print -$1 / 1048576 }' | median_best)
read -r load_median load_best < <(column_of BM_LoadRegFile real_time | median_best)

# --- Under Wine --------------------------------------------------------------------------------
source scripts/wine-prefix.sh
use_wine_prefix "$PWD/build-win/bench-prefix"
# One wineserver for the whole run, so that no process below pays for starting it.
wineserver --persistent=300
trap 'wineserver --kill >/dev/null 2>&1 || true' EXIT
wine reg add 'HKCU\Software\Wine' /v Version /d winxp /f >/dev/null 2>&1

now_ns() { date +%s%N; }
ms_since() { echo $((($(now_ns) - $1) / 1000000)); }
winpath() { winepath -w "$1" 2>/dev/null; }

build/bench/write_bench_tree "$work/tree.reg"
tree="$(winpath "$work/tree.reg")"
: >"$work/import.ms"
: >"$work/save.ms"
: >"$work/save-call.ms"
: >"$work/regedit.ms"
for ((round = 1; round <= rounds; round++)); do
  wine reg delete "$key" /f >/dev/null 2>&1 || true
  start=$(now_ns)
  wine regedit /s "$tree"
  ms_since "$start" >>"$work/import.ms"

  rm -f "$work/save.reg" "$work/regedit.reg"
  start=$(now_ns)
  wine build-win/save_registry.exe "$key" "$(winpath "$work/save.reg")" | tr -d '\r' \
    >>"$work/save-call.ms"
  ms_since "$start" >>"$work/save.ms"
  start=$(now_ns)
  wine regedit /E "$(winpath "$work/regedit.reg")" "$key"
  ms_since "$start" >>"$work/regedit.ms"
  if ! cmp -s "$work/save.reg" "$work/regedit.reg"; then
    echo "compare: round $round: SaveRegistry's file differs from regedit's" >&2
    exit 1
  fi
  echo "round $round: regedit /s $(tail -n1 "$work/import.ms") ms," \
    "SaveRegistry $(tail -n1 "$work/save.ms") ms (in the call $(tail -n1 "$work/save-call.ms") ms)," \
    "regedit /E $(tail -n1 "$work/regedit.ms") ms"
done
read -r import_median import_best < <(median_best <"$work/import.ms")
read -r wsave_median wsave_best < <(median_best <"$work/save.ms")
read -r regedit_median regedit_best < <(median_best <"$work/regedit.ms")

echo
echo "$rounds rounds, median and best; files of SaveRegistry and regedit /E identical" \
  "($(stat -c %s "$work/save.reg") bytes); the registry file $(stat -c %s "$work/tree.reg") bytes"
awk -v em="$enum_median" -v eb="$enum_best" -v sm="$save_median" -v sb="$save_best" \
  -v lm="$load_median" -v lb="$load_best" -v im="$import_median" -v ib="$import_best" \
  -v wm="$wsave_median" -v wb="$wsave_best" -v rm="$regedit_median" -v rb="$regedit_best" 'BEGIN {
  printf "%-58s %-26s %s\n", "what", "median / best", "goal"
  printf "%-58s %-26s %s\n", "GetAdapterInfo, simulated XP, 20,000 keys (CPU time)",
    sprintf("%.1f / %.1f ms", em, eb), "at most 50 ms"
  printf "%-58s %-26s %s\n", "SaveRegistry under Wine over regedit /E (process times)",
    sprintf("%.2f / %.2f", wm / rm, wb / rb), "at most 1.0"
  printf "%-58s %-26s %s\n", "SaveRegistry, simulated XP",
    sprintf("%.0f / %.0f MiB/s", -sm, -sb), "at least 150 MiB/s"
  printf "%-58s %-26s %s\n", "loading the registry file: regedit /s time over the sim",
    sprintf("%.1f / %.1f times", im / lm, ib / lb), "at least 20 times"
}'
