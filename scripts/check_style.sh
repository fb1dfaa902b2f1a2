#!/usr/bin/env bash
# Checks the layout of all sources, and runs clang-tidy over what is named (or over everything with --tidy-all).
#   scripts/check_style.sh [--tidy-all | FILE.cpp...]
set -euo pipefail
cd "$(dirname "$0")/.."

git ls-files '*.h' '*.cpp' | xargs clang-format-14 --dry-run -Werror
[ $# -gt 0 ] || exit 0
files=("$@")
[ "$1" != --tidy-all ] || mapfile -t files < <(git ls-files '*.cpp' ':!tests/fuzz')
# With commands for clang, which knows no warnings of other compilers.
cmake --preset clang -DCMAKE_CXX_COMPILER_LAUNCHER= >/dev/null
printf '%s\n' "${files[@]}" | xargs -P "$(nproc)" -n 4 clang-tidy -p build/clang --quiet
