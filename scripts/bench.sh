#!/usr/bin/env bash
# scripts/bench.sh [BENCH...]: builds the benchmarks optimised and runs them (all by default).
set -euo pipefail
shopt -s nullglob
source "$(dirname "$0")/common.sh"
qf_ensure_packages "${QF_PACKAGES[@]}" python3-feedparser
dir="$QF_ROOT/build-bench"
qf_build "$dir" -DCMAKE_BUILD_TYPE=Release -DQF_BUILD_BENCH=ON -DQF_BUILD_TESTS=OFF
benches=("$@")
if [ ${#benches[@]} -eq 0 ]; then
  for f in "$QF_ROOT"/bench/*Bench.cpp; do benches+=("$(basename "$f" .cpp)"); done
fi
for name in "${benches[@]}"; do
  echo "--- $name"
  "$dir/bench/$name"
done
