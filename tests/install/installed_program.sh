#!/usr/bin/env bash
# Installs the build into a temporary prefix and uses it as a user would: every file in its
# place and valid, the window module found beside the installed program, a report of a tree.
set -euo pipefail
build=$1 app_id=$2 version=$3
for tool in jq file desktop-file-validate appstreamcli; do
  command -v "$tool" >/dev/null || { echo "$tool is missing: run scripts/setup" >&2; exit 1; }
done
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
export HOME=$tmp/home XDG_CONFIG_HOME=$tmp/config XDG_DATA_HOME=$tmp/data XDG_CACHE_HOME=$tmp/cache
mkdir -p "$HOME" "$XDG_CONFIG_HOME" "$XDG_DATA_HOME" "$XDG_CACHE_HOME" "$tmp/tree/attic/chest"
echo gold >"$tmp/tree/attic/chest/coin"
prefix=$tmp/prefix share=$tmp/prefix/share bin=$tmp/prefix/bin/dustmere
cmake --install "$build" --prefix "$prefix" >/dev/null

desktop-file-validate "$share/applications/$app_id.desktop"
appstreamcli validate --no-net "$share/metainfo/$app_id.metainfo.xml"
test -f "$share/icons/hicolor/scalable/apps/dustmere.svg"
for px in 48 128 256; do
  file -b "$share/icons/hicolor/${px}x$px/apps/dustmere.png" | grep -q "^PNG image data, $px x $px,"
done
for option in $("$bin" --help | grep -o -- '--[a-z-]*' | sort -u); do
  grep -qF -- "${option//-/\\-}" "$share/man/man1/dustmere.1" ||
    { echo "the manual lacks $option" >&2; exit 1; }
done

test "$("$bin" --version)" = "dustmere $version"
env -u DISPLAY -u WAYLAND_DISPLAY "$bin" --scan="$tmp/tree" --report=json >"$tmp/report.json"
jq -e --arg tree "$tmp/tree" '.root.path == $tree and .root.children[0].name == "attic"' \
  "$tmp/report.json" >/dev/null || { echo "unexpected report:" >&2; cat "$tmp/report.json" >&2; exit 1; }

# Only the window module starts Qt's platform plugins: naming one that does not exist stops the
# program right after the installed module was found and loaded.
ulimit -c 0
window=$(DISPLAY=:0 QT_QPA_PLATFORM=no-such-platform "$bin" "$tmp/tree" 2>&1 || true)
grep -q "Qt platform plugin" <<<"$window" ||
  { echo "the installed program did not load its window: $window" >&2; exit 1; }
echo "installed program: ok"
