#!/usr/bin/env bash
# Installs the build into a temporary prefix and uses it as a user would: every file in its
# place, the window module found beside the installed program, a report of a tree.
set -euo pipefail
build=$1 app_id=$2 version=$3
fail() { echo "$*" >&2; exit 1; }
for tool in jq file; do
  command -v "$tool" >/dev/null || fail "$tool is missing: run scripts/setup"
done
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
export HOME=$tmp/home XDG_CONFIG_HOME=$tmp/config XDG_DATA_HOME=$tmp/data XDG_CACHE_HOME=$tmp/cache
mkdir -p "$HOME" "$XDG_CONFIG_HOME" "$XDG_DATA_HOME" "$XDG_CACHE_HOME" "$tmp/tree/attic/chest"
echo gold >"$tmp/tree/attic/chest/coin"
prefix=$tmp/prefix share=$tmp/prefix/share bin=$tmp/prefix/bin/dustmere
cmake --install "$build" --prefix "$prefix" >/dev/null

for f in applications/$app_id.desktop metainfo/$app_id.metainfo.xml icons/hicolor/scalable/apps/dustmere.svg; do
  test -f "$share/$f" || fail "not installed: $f"
done
for px in 48 128 256; do
  png=$share/icons/hicolor/${px}x$px/apps/dustmere.png
  file -b "$png" | grep -q "^PNG image data, $px x $px," || fail "not a $px px PNG: $png"
done
for option in $("$bin" --help | grep -o -- '--[a-z-]*' | sort -u); do
  grep -qF -- "${option//-/\\-}" "$share/man/man1/dustmere.1" || fail "the manual lacks $option"
done

[ "$("$bin" --version)" = "dustmere $version" ] || fail "--version does not say $version"
env -u DISPLAY -u WAYLAND_DISPLAY "$bin" --scan="$tmp/tree" --report=json >"$tmp/report.json"
jq -e --arg tree "$tmp/tree" '.root.path == $tree and .root.children[0].name == "attic"' \
  "$tmp/report.json" >/dev/null || fail "unexpected report: $(cat "$tmp/report.json")"

# Only the window module starts Qt's platform plugins: naming one that does not exist stops the
# program right after the installed module was found and loaded.
ulimit -c 0
window=$(DISPLAY=:0 QT_QPA_PLATFORM=no-such-platform "$bin" "$tmp/tree" 2>&1 || true)
grep -q "Qt platform plugin" <<<"$window" || fail "the installed window did not load: $window"
echo "installed program: ok"
