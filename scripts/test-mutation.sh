#!/usr/bin/env bash
# A fixed sample of mutants of the library code (scripts/mutation-test.py): fails when the tests
# kill fewer than 85% of them. The builds and tests run in build-mut/ at low priority (nice 10).
# The full run over every mutant is for a developer to start by hand:
#   scripts/mutation-test.py --jobs 2
# Not yet called by scripts/test.sh: this sample's kill rate is still under 85% (the survivors it
# lists are the tests still missing).
set -euo pipefail
cd "$(dirname "$0")/.."
exec python3 scripts/mutation-test.py --sample "${HOSTKIT_MUTANTS:-40}" \
  --seed "${HOSTKIT_MUTATION_SEED:-16}" --min-kill-rate 85 \
  --survivors build-mut/ci-survivors.txt
