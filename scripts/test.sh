#!/usr/bin/env bash
# Installs what is needed, checks the formatting, builds the Debian package and checks it, then
# builds everything with AddressSanitizer and UndefinedBehaviorSanitizer and runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
scripts/check-format.sh
scripts/package.sh
scripts/check-package.sh
cmake -S . -B build-tests -G Ninja -DCMAKE_BUILD_TYPE=Debug -DVARNEL_SANITIZE=ON
cmake --build build-tests
export QT_QPA_PLATFORM=offscreen
ctest --test-dir build-tests --output-on-failure --timeout 300 -j"$(nproc)"
