#!/usr/bin/env bash
# Installs what is missing, builds Quillfeed with its tests and benchmarks and runs every test
# through ctest.
# Extra arguments go to ctest (for example -R Feed or -L parse).
set -euo pipefail
source "$(dirname "$0")/scripts/common.sh"
qf_ensure_packages "${QF_PACKAGES[@]}"
qf_build_main
ctest --test-dir "$QF_ROOT/build" --output-on-failure -j "$(nproc)" "$@"
