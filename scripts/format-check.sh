#!/usr/bin/env bash
# scripts/format-check.sh: fails when clang-format, with the repository's .clang-format, would
# change any tracked C++ source or header, and names those files. Fix them with clang-format -i.
set -euo pipefail
source "$(dirname "$0")/common.sh"
qf_ensure_packages clang-format
cd "$QF_ROOT"
mapfile -d '' files < <(git ls-files -z -- '*.cpp' '*.h')
unformatted=()
for file in "${files[@]}"; do
  clang-format --style=file "$file" | cmp -s - "$file" || unformatted+=("$file")
done
if [ ${#unformatted[@]} -ne 0 ]; then
  echo "These files are not formatted as .clang-format asks (run clang-format -i on them):"
  printf '  %s\n' "${unformatted[@]}"
  exit 1
fi
echo "All ${#files[@]} C++ files are formatted."
