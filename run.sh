#!/usr/bin/env bash
# Installs what is missing, builds Quillfeed and starts it. Arguments go to the program.
set -euo pipefail
source "$(dirname "$0")/scripts/common.sh"
qf_ensure_packages "${QF_PACKAGES[@]}"
qf_build "$QF_ROOT/build"
if [ $# -eq 0 ]; then
  set -- --help
fi
exec "$QF_ROOT/build/quillfeed-cli" "$@"
