#!/usr/bin/env bash
# scripts/shuffle.sh [SEED]: builds the tests and runs each test program as one process with its
# tests in a random order, so a test that leans on another's leftovers (a global, the
# environment, a file) fails here even though ctest, one process per test, never shows it.
# Every program uses the same seed (random unless given); rerun with it to repeat an order.
set -euo pipefail
source "$(dirname "$0")/common.sh"
qf_ensure_packages "${QF_PACKAGES[@]}"
seed=${1:-$((RANDOM % 99999 + 1))}
dir="$QF_ROOT/build"
qf_build_main
echo "Shuffling with seed $seed (repeat with: scripts/shuffle.sh $seed)"
export QT_QPA_PLATFORM=offscreen
failed=()
cd "$dir/tests"
for program in ./test_*; do
  [ -x "$program" ] && [ -f "$program" ] || continue
  log=$(mktemp)
  start=$(date +%s)
  if "$program" --gtest_shuffle --gtest_random_seed="$seed" --gtest_brief=1 >"$log" 2>&1; then
    echo "--- ${program#./}: passed $(grep -o '[0-9]* tests\?' "$log" | tail -n 1) ($(($(date +%s) - start)) s)"
  else
    echo "--- ${program#./}: FAILED with seed $seed"
    cat "$log"
    failed+=("${program#./}")
  fi
  rm -f "$log"
done
if [ ${#failed[@]} -ne 0 ]; then
  echo "Failed in random order (seed $seed): ${failed[*]}"
  exit 1
fi
