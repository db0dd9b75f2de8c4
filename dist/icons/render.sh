#!/usr/bin/env bash
# Renders the icon's PNG sizes from its drawing. Run it after changing the SVG and commit the PNGs;
# the build only copies them. Needs rsvg-convert (Debian package librsvg2-bin).
set -euo pipefail
cd "$(dirname "$0")"
for size in 16 24 32 48 64 128 256; do
  rsvg-convert --width "$size" --height "$size" com.varnel.utility.svg --output "com.varnel.utility-$size.png"
done
