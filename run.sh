#!/usr/bin/env bash
# Installs what is missing, builds Quillfeed and starts the GUI. Arguments go to Qt (for example
# -platform offscreen); the command-line companion is build/quillfeed-cli.
set -euo pipefail
source "$(dirname "$0")/scripts/common.sh"
qf_ensure_packages "${QF_PACKAGES[@]}"
qf_build "$QF_ROOT/build"
exec "$QF_ROOT/build/quillfeed" "$@"
