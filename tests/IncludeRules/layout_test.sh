#!/usr/bin/env bash
# Every file has the layout of .clang-format.
set -euo pipefail
cd "$1"
find include source macsource host modules tools examples tests bench fuzz \( -name '*.h' -o -name '*.cpp' \) -print0 |
    xargs -0 "$2" --dry-run -Werror
