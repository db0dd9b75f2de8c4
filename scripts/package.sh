#!/usr/bin/env bash
# Builds the program as it ships (build/, RelWithDebInfo, no tests) and makes its Debian package in
# build/package/. With --install it also installs the package, and what it depends on, through apt.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DBUILD_TESTING=OFF
cmake --build build
rm -f build/package/*.deb
(cd build && cpack)
deb=$(ls build/package/*.deb)
echo "$deb"
if [[ "${1:-}" == --install ]]; then
  apt-get install -y "./$deb"
fi
