#!/usr/bin/env bash
# Style checks: every C++ file formatted as .clang-format says, and (with --tidy) clang-tidy
# clean on the checks .clang-tidy enables, over the native build's compile commands.
set -euo pipefail
cd "$(dirname "$0")/.."

mapfile -t files < <(git ls-files '*.cpp' '*.h')
clang-format --dry-run -Werror "${files[@]}"
echo "lint: ${#files[@]} files formatted"

if [[ "${1:-}" == "--tidy" ]]; then
  [[ -f build/compile_commands.json ]] || bash scripts/build.sh
  run-clang-tidy -p build -j "${HOSTKIT_JOBS:-2}" -quiet 'src/|tools/|tests/'
fi
