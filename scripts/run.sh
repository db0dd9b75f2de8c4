#!/usr/bin/env bash
# Installs what is needed, builds the program into build/ and starts it. With no real modem
# configured (no settings file of your own yet, or VARNEL_SIMULATED=1), it starts the modem
# simulator on a pseudo-terminal and points port 1 of a private settings file at it.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DBUILD_TESTING=OFF
cmake --build build

config="${XDG_CONFIG_HOME:-$HOME/.config}"
if [[ "${VARNEL_SIMULATED:-}" == 1 || ! -f "$config/varnel-utility.INI" ]]; then
  demo="$PWD/build/demo"
  mkdir -p "$demo"
  link="$demo/modem"
  rm -f "$link"
  build/bin/varnel-modem-sim --link "$link" &
  sim=$!
  trap 'kill $sim 2>/dev/null || true' EXIT
  for _ in $(seq 50); do [[ -e "$link" ]] && break; sleep 0.1; done
  if [[ ! -f "$demo/varnel-utility.INI" ]]; then
    printf '[Port Map]\nCOM1=%s\n\n[Port_Phone]\nComm Port=1\nSettings=9600,n,8,1\nDTREnable=True\nRTSEnable=True\nHandshaking=0\n' \
      "$link" > "$demo/varnel-utility.INI"
  fi
  build/bin/varnel-utility --settings "$demo/varnel-utility.INI"
else
  build/bin/varnel-utility
fi
