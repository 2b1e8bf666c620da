#!/usr/bin/env bash
# scripts/fuzz.sh [SECONDS] [FUZZER...]: builds the libFuzzer targets with clang and runs each
# for SECONDS (default 60) from its seed corpus under fuzz/corpus/<name>. New inputs stay in a
# scratch folder; a crash leaves its reproducer in build-fuzz/artifacts.
set -euo pipefail
shopt -s nullglob
source "$(dirname "$0")/common.sh"
seconds=${1:-60}
shift || true
qf_ensure_packages "${QF_PACKAGES[@]}" clang libclang-rt-14-dev
dir="$QF_ROOT/build-fuzz"
CC=clang CXX=clang++ qf_build "$dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQF_BUILD_FUZZ=ON \
  -DQF_BUILD_TESTS=OFF -DQF_SANITIZE=address,undefined \
  -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_CXX_FLAGS=-fsanitize=fuzzer-no-link
fuzzers=("$@")
if [ ${#fuzzers[@]} -eq 0 ]; then
  for f in "$QF_ROOT"/fuzz/*Fuzzer.cpp; do fuzzers+=("$(basename "$f" .cpp)"); done
fi
mkdir -p "$dir/artifacts"
for name in "${fuzzers[@]}"; do
  scratch=$(mktemp -d)
  cp -r "$QF_ROOT/fuzz/corpus/$name/." "$scratch/" 2>/dev/null || true
  echo "--- $name for ${seconds}s"
  "$dir/fuzz/$name" -max_total_time="$seconds" -rss_limit_mb=2048 -timeout=10 \
    -artifact_prefix="$dir/artifacts/$name-" -print_final_stats=1 "$scratch" 2>&1 | tail -n 12
  rc=${PIPESTATUS[0]}
  rm -rf "$scratch"
  [ "$rc" -eq 0 ] || { echo "$name failed (exit $rc)"; exit 1; }
done
