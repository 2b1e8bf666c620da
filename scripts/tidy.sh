#!/usr/bin/env bash
# scripts/tidy.sh [FILE...]: runs clang-tidy with the repository's .clang-tidy over the program's
# own sources (every .cpp of the core, the command line and the GUI, or the files given), one per
# core at a time; any finding fails the run. The tests are left out: GoogleTest's macros trip
# checks written for production code. Uses build/'s compile_commands.json, configuring it if needed.
set -euo pipefail
source "$(dirname "$0")/common.sh"
qf_ensure_packages "${QF_PACKAGES[@]}" clang-tidy
dir="$QF_ROOT/build"
# The compile database is all clang-tidy needs, but the GUI's sources include the files moc
# generates, so those are built first.
QF_BUILD_TARGETS=quillfeedui_autogen qf_build_main
cd "$QF_ROOT"
files=("$@")
if [ ${#files[@]} -eq 0 ]; then
  mapfile -t files < <(git ls-files -- 'platform/*.cpp' 'model/*.cpp' 'parse/*.cpp' 'net/*.cpp' \
    'store/*.cpp' 'sync/*.cpp' 'render/*.cpp' 'cli/*.cpp' 'ui/*.cpp')
fi
echo "clang-tidy over ${#files[@]} files"
log=$(mktemp)
if ! printf '%s\n' "${files[@]}" |
  xargs -P "$(nproc)" -n 4 clang-tidy -p "$dir" --quiet --use-color=false >"$log" 2>&1; then
  # The findings once each (a header's show up for every file including it), or, when clang-tidy
  # failed otherwise, all it said.
  grep -E ': (warning|error): ' "$log" | sort -u || cat "$log"
  rm -f "$log"
  echo "clang-tidy found the problems above"
  exit 1
fi
rm -f "$log"
echo "clang-tidy: no findings"
