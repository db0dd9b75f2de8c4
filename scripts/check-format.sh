#!/usr/bin/env bash
# Every C++ source of the project follows .clang-format.
set -euo pipefail
cd "$(dirname "$0")/.."
git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run --Werror
