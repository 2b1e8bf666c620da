#!/usr/bin/env bash
# scripts/sanitize.sh SANITIZERS [ctest options]: builds a separate tree with the given
# sanitizers (address,undefined or thread) and runs the tests there; any report fails the run.
set -euo pipefail
source "$(dirname "$0")/common.sh"
sanitizers=$1
shift
qf_ensure_packages "${QF_PACKAGES[@]}"
dir="$QF_ROOT/build-${sanitizers//,/-}"
qf_build "$dir" -DCMAKE_BUILD_TYPE=Debug "-DQF_SANITIZE=$sanitizers"
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1:strict_string_checks=1:detect_stack_use_after_return=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
export TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1:suppressions=$QF_ROOT/tests/support/tsan-qt.supp
ctest --test-dir "$dir" --output-on-failure -j "$(nproc)" "$@"
