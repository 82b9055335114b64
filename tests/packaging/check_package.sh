#!/usr/bin/env bash
# Builds the Debian package from the build folder and checks, without
# installing it, what apt would see: the control fields, the dependencies
# dpkg-shlibdeps computed, and the file list.
# usage: check_package.sh BUILD_DIR VERSION
set -uo pipefail
build=$1
version=$2

for tool in cpack dpkg-deb dpkg-shlibdeps dpkg lintian; do
    command -v "$tool" >/dev/null || { echo "SKIP: $tool not installed (scripts/install-deps.sh installs dpkg-dev)"; exit 77; }
done

tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
failures=0
fail() { echo "FAIL: $*" >&2; failures=$((failures + 1)); }

cpack --config "$build/CPackConfig.cmake" -B "$tmp" >"$tmp/cpack.log" 2>&1 || { cat "$tmp/cpack.log"; exit 1; }
arch=$(dpkg --print-architecture)
deb=$tmp/kelviewer_${version}_$arch.deb
[ -f "$deb" ] || { ls "$tmp"; echo "FAIL: no $(basename "$deb")" >&2; exit 1; }

field() { dpkg-deb -f "$deb" "$1"; }
[ "$(field Package)" = kelviewer ] || fail "Package is '$(field Package)'"
[ "$(field Version)" = "$version" ] || fail "Version is '$(field Version)'"
[ "$(field Architecture)" = "$arch" ] || fail "Architecture is '$(field Architecture)'"
[ -n "$(field Maintainer)" ] || fail "no Maintainer"
[ -n "$(field Description)" ] || fail "no Description"

# Dependencies: what the programs link (computed, with versions) and the
# plugins loaded at run time; never a development package.
depends=$(field Depends)
names=$(sed -e 's/ ([^)]*)//g' -e 's/, */\n/g' <<<"$depends")
for package in libc6 libstdc++6 zlib1g libqt6core6 libqt6gui6 libqt6widgets6 qt6-qpa-plugins libqt6svg6 \
    fonts-liberation; do
    grep -qxF "$package" <<<"$names" || fail "Depends lacks $package: $depends"
done
grep -Eq "libqt6core6 \(>= [0-9.]+\)" <<<"$depends" || fail "Depends are not computed with versions: $depends"
grep -q -- "-dev$" <<<"$names" && fail "Depends names a development package: $depends"

# The file list: everything under /usr, the programs and data present, no
# build or test leftovers.
dpkg-deb -c "$deb" | awk '{ print $6 }' | sed 's|^\./|/|' >"$tmp/files"
for f in /usr/bin/kelviewer /usr/bin/kel /usr/libexec/kelviewer/kel-render \
    /usr/share/applications/se.brennvik.kelviewer.desktop \
    /usr/share/metainfo/se.brennvik.kelviewer.metainfo.xml \
    /usr/share/mime/packages/kelviewer.xml \
    /usr/share/icons/hicolor/scalable/apps/kelviewer.svg \
    /usr/share/icons/hicolor/48x48/apps/kelviewer.png \
    /usr/share/icons/hicolor/48x48/mimetypes/application-x-kel.png \
    /usr/share/man/man1/kel.1.gz /usr/share/man/man1/kelviewer.1.gz \
    /usr/share/bash-completion/completions/kel \
    /usr/share/kelviewer/samples/employee-survey-en.kel /usr/share/doc/kelviewer/copyright \
    /usr/share/doc/kelviewer/changelog.gz; do
    grep -qx "$f" "$tmp/files" || fail "the package lacks $f"
done
outside=$(grep -v -e '^/usr/' -e '^/$' "$tmp/files")
[ -z "$outside" ] || fail "files outside /usr: $outside"
leftovers=$(grep -E '\.(a|h|o)$|/kelwrite$|/test_|/bench_' "$tmp/files")
[ -z "$leftovers" ] || fail "build leftovers in the package: $leftovers"

# The programs are stripped (CPACK_STRIP_FILES), as Debian ships them.
dpkg-deb -x "$deb" "$tmp/root"
for program in bin/kel bin/kelviewer libexec/kelviewer/kel-render; do
    readelf -S "$tmp/root/usr/$program" | grep -q '\.debug_info' && fail "/usr/$program is not stripped"
done
# The counting commands of kel need QtCore, never the drawing libraries.
readelf -d "$tmp/root/usr/bin/kel" | grep -q 'NEEDED.*libQt6Core' || fail "kel does not name QtCore"
readelf -d "$tmp/root/usr/bin/kel" | grep -qE 'NEEDED.*libQt6(Gui|Widgets|Charts)' && fail "kel links drawing libraries"

# Debian's own package checker: no error and no warning. The tags kept on
# purpose are overridden in data/lintian-overrides, each with its reason.
lintian --fail-on error,warning --display-info --tag-display-limit 0 "$deb" >"$tmp/lintian.log" 2>&1 \
    || { cat "$tmp/lintian.log" >&2; fail "lintian reports errors or warnings"; }

[ "$failures" -eq 0 ] || { echo "$failures check(s) failed" >&2; exit 1; }
echo "$(basename "$deb"): all checks passed"
