#!/usr/bin/env bash
# Checks the Debian package scripts/package.sh made: name and version, dependencies, the files it
# holds, the menu entry, software-centre data, icons and manual pages, and that the installed
# programs start on a machine without a display.
set -euo pipefail
cd "$(dirname "$0")/.."

fail() {
  echo "check-package: $*" >&2
  exit 1
}

version=$(sed -n 's/^project(VarnelUtility VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
deb=build/package/varnel-utility_${version}_$(dpkg --print-architecture).deb
[[ -f $deb ]] || fail "no package $deb"
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
dpkg-deb -x "$deb" "$root"
id=com.varnel.utility

[[ $(dpkg-deb -f "$deb" Package) == varnel-utility ]] || fail "wrong package name"
[[ $(dpkg-deb -f "$deb" Version) == "$version" ]] || fail "version is not the project's $version"

# Every library a program loads directly comes from a package the package depends on.
depends=$(dpkg-deb -f "$deb" Depends | tr ',' '\n' | awk '{print $1}')
for program in "$root"/usr/bin/*; do
  for lib in $(objdump -p "$program" | awk '$1 == "NEEDED" {print $2}'); do
    owners=$(dpkg -S "*/$lib" | cut -d: -f1 | sort -u)
    grep -qxF -f <(echo "$owners") <(echo "$depends") || fail "$lib ($owners) is missing in Depends"
  done
done

expected=(
  usr/bin/varnel-modem-sim usr/bin/varnel-utility
  "usr/share/applications/$id.desktop" "usr/share/metainfo/$id.metainfo.xml"
  "usr/share/icons/hicolor/scalable/apps/$id.svg"
  usr/share/man/man1/varnel-modem-sim.1.gz usr/share/man/man1/varnel-utility.1.gz
)
sizes=()
for png in "dist/icons/$id"-*.png; do
  size=${png##*-}
  size=${size%.png}
  sizes+=("$size")
  expected+=("usr/share/icons/hicolor/${size}x$size/apps/$id.png")
done
diff <(printf '%s\n' "${expected[@]}" | sort) <(cd "$root" && find . -type f -printf '%P\n' | sort) ||
  fail "the package holds other files than these"
for size in "${sizes[@]}"; do
  # The PNG header holds width and height as big-endian words from byte 16.
  actual=$(od -An -tu1 -j16 -N8 "$root/usr/share/icons/hicolor/${size}x$size/apps/$id.png" |
    awk '{printf "%dx%d", $3 * 256 + $4, $7 * 256 + $8}')
  [[ $actual == "${size}x$size" ]] || fail "the ${size}x$size icon is $actual"
done

out=$(desktop-file-validate "$root/usr/share/applications/$id.desktop" 2>&1) || true
[[ -z $out ]] || fail "desktop entry: $out"
grep -qx "Icon=$id" "$root/usr/share/applications/$id.desktop" || fail "the desktop entry names another icon"
appstreamcli validate-tree --no-net --strict "$root" || fail "metainfo does not validate"

for page in varnel-utility varnel-modem-sim; do
  out=$(LC_ALL=C.UTF-8 MANWIDTH=80 man --warnings -l "$root/usr/share/man/man1/$page.1.gz" 2>&1 >/dev/null)
  [[ -z $out ]] || fail "manual page $page: $out"
done
manual=$(LC_ALL=C.UTF-8 MANWIDTH=200 man -l "$root/usr/share/man/man1/varnel-utility.1.gz" 2>/dev/null)
for needle in "Varnel Utility $version" "--settings file" "[Port Map]" "COM1=/dev/ttyUSB0" "/dev/ttyS*" "dialout"; do
  [[ $manual == *"$needle"* ]] || fail "the manual page of varnel-utility does not say $needle"
done

# No display, no Qt platform, no settings: only what the package installed.
run() { env -i PATH=/usr/bin:/bin HOME="$root" "$root/usr/bin/$1" "${@:2}"; }
[[ $(run varnel-utility --version) == "Varnel Utility $version" ]] || fail "varnel-utility --version"
help=$(run varnel-utility --help) || fail "varnel-utility --help"
for needle in "--settings <file>" "[Port Map]" "/dev/ttyUSB*" "dialout" "varnel-utility.INI"; do
  [[ $help == *"$needle"* ]] || fail "varnel-utility --help does not say $needle"
done
[[ $(run varnel-modem-sim --help) == *"varnel-utility --settings"* ]] || fail "varnel-modem-sim --help"
[[ $(run varnel-modem-sim --list) == *demo* ]] || fail "varnel-modem-sim --list"
echo "check-package: $deb is sound"
