#!/usr/bin/env bash
# scripts/bench.sh [BENCH...]: builds the benchmarks optimised and runs them (all by default):
# the Google Benchmark programs bench/*Bench.cpp and the scripts bench/*Bench.sh, which are
# handed the optimised quillfeed-cli and compare it with other programs.
set -euo pipefail
shopt -s nullglob
source "$(dirname "$0")/common.sh"
qf_ensure_packages "${QF_PACKAGES[@]}" python3-feedparser newsboat time
dir="$QF_ROOT/build-bench"
qf_build "$dir" -DCMAKE_BUILD_TYPE=Release -DQF_BUILD_BENCH=ON -DQF_BUILD_TESTS=OFF
benches=("$@")
if [ ${#benches[@]} -eq 0 ]; then
  for f in "$QF_ROOT"/bench/*Bench.cpp "$QF_ROOT"/bench/*Bench.sh; do
    benches+=("$(basename "${f%.*}")")
  done
fi
for name in "${benches[@]}"; do
  echo "--- $name"
  if [ -f "$QF_ROOT/bench/$name.sh" ]; then
    bash "$QF_ROOT/bench/$name.sh" "$dir/quillfeed-cli"
  else
    "$dir/bench/$name"
  fi
done
